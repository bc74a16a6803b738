// SPDX-License-Identifier: GPL-3.0-or-later
#include "connection/both_roads.h"

namespace brelant {
namespace {

using test::kCancel;
using testing::ElementsAre;

class ProgressTest : public test::BothRoadsTest {
 protected:
  ProgressTest() {
    sens.onProgress = [this](int percent) { told.push_back(percent); };
  }
  std::vector<int> told;
};

TEST_P(ProgressTest, WithoutAnAnnouncementEachTransferIsAll) {
  Get("eaSensorID_0");
  Get("eaCountPar_9");
  EXPECT_THAT(told, ElementsAre(100, 100));
}

TEST_P(ProgressTest, IsThePartOfTheAnnouncedCellsThatHasArrived) {
  // 1, 2, 2 and 3 bytes of EEPROM: 1, 1, 1 and 2 registers.
  sens.Nodes().Announce({"eaSensorID_0", "eaCountPar_9", "eaCountPar_11", "eaMenuItemMPar1_0",
                         "eaMenuItemMPar2_0", "eaMenuItemMPar3_0"});
  Get("eaSensorID_0");
  Get("eaCountPar_9");
  Get("eaCountPar_11");
  Get("eaMenuItemMPar1_0");
  Get("eaMenuItemMPar2_0");
  Get("eaMenuItemMPar3_0");
  if (IsModbus()) {
    // The last two share a register, so the second of them is read anew.
    EXPECT_THAT(told, ElementsAre(20, 40, 60, 100, 100));
  } else {
    // Of 8 bytes: 1, 3, 5, 8.
    EXPECT_THAT(told, ElementsAre(12, 37, 62, 100));
  }
}

TEST_P(ProgressTest, WhatIsNotAnnouncedDoesNotMoveIt) {
  sens.Nodes().Announce({"eaCountPar_9", "eaCountPar_11"});
  Get("eaCountPar_9");
  Get("eaSensorID_0");
  Get("eaCountPar_11");
  Get("eaSensorID_0");
  EXPECT_THAT(told, ElementsAre(50, 50, 100, 100));
}

TEST_P(ProgressTest, BeginsAnewWithTheNextAnnouncementAndEndsWithAWrite) {
  sens.Nodes().Announce({"eaCountPar_9", "eaCountPar_11"});
  Get("eaCountPar_9");
  sens.Nodes().Announce({"eaCountPar_9", "eaCountPar_11"});
  Get("eaCountPar_9");
  Set("eaCountPar_11", 5);
  Get("eaCountPar_11");
  EXPECT_THAT(told, ElementsAre(50, 50, 100, 100));
}

TEST_P(ProgressTest, CanBeAPartOfSomethingLonger) {
  const auto readHalves = [this] {
    sens.Nodes().Announce({"eaCountPar_9", "eaCountPar_11"});
    Get("eaCountPar_9");
    Get("eaCountPar_11");
  };
  {
    const ProgressShare share(sens, 20, 60);
    readHalves();
    {
      const ProgressShare none(sens, 0, 0);
      readHalves();
    }
    Get("eaSensorID_0");
  }
  readHalves();
  EXPECT_THAT(told, ElementsAre(40, 60, 0, 0, 60, 50, 100));
}

TEST_P(ProgressTest, IsAWholeAgainAfterAPartThatFails) {
  try {
    const ProgressShare share(sens, 0, 0);
    Get("eaNobody_0");
    ADD_FAILURE();
  } catch (const ConnectionError&) {
    Get("eaSensorID_0");
  }
  EXPECT_THAT(told, ElementsAre(100));
}

class CancelTest : public test::BothRoadsTest {};

TEST_P(CancelTest, LetsNothingBeginUntilItIsCleared) {
  bus.session.CancelPressed = true;
  EXPECT_EQ(FailureOfGet("eaSensorID_0"), kCancel);
  EXPECT_EQ(test::FailureOf([&] { Set("eaSensorID_0", 5); }), kCancel);
  EXPECT_EQ(Transfers(), 0U);
  EXPECT_TRUE(sens.Connected());
  bus.session.CancelPressed = false;
  EXPECT_EQ(FailureOfGet("eaSensorID_0"), "");
}

INSTANTIATE_TEST_SUITE_P(Roads, ProgressTest, testing::Bool(), test::RoadName);
INSTANTIATE_TEST_SUITE_P(Roads, CancelTest, testing::Bool(), test::RoadName);

}  // namespace
}  // namespace brelant
