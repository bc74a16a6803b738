// SPDX-License-Identifier: GPL-3.0-or-later
#include "safety/z7731_fixture.h"

namespace brelant {
namespace {

using test::Click;
using testing::ElementsAre;
using testing::IsEmpty;

constexpr const char* kFull = "Only 3 channels can be chosen at the same time for each relay";

/// With the parameter true, the boxes of the second relay.
class Z7731RelaysTest : public test::StillUnitTest, public testing::WithParamInterface<bool> {
 protected:
  void StartWith(int word) {
    PutSetting(4436, GetParam() ? 0x5555 : word);
    PutSetting(4438, GetParam() ? word : 0x5555);
    StartOnKiBus();
  }
  RelayBoxes& Relay() { return GetParam() ? panel.cbxKelrelay2 : panel.cbxKelrelay; }
  RelayBoxes& OtherRelay() { return GetParam() ? panel.cbxKelrelay : panel.cbxKelrelay2; }
  void Toggle(int box) { ASSERT_TRUE(Click(Relay().boxes[box])); }
  std::vector<int> Boxes() { return Ticked(Relay()); }
  /// The list, as it reaches the unit.
  int List() {
    EXPECT_TRUE(panel.FormRead(true));
    EXPECT_EQ(Setting(GetParam() ? 4436 : 4438), 0x5555);
    EXPECT_EQ(Setting(4434), Setting(4436));
    return Setting(GetParam() ? 4438 : 4436);
  }
};

TEST_P(Z7731RelaysTest, AClickChangesTheListInTheUnitWithTheNextSendingOnly) {
  StartWith(0);
  Toggle(1);
  EXPECT_THAT(unit.frames, IsEmpty());
  EXPECT_EQ(Setting(GetParam() ? 4438 : 4436), 0);
  EXPECT_EQ(List(), 0x5000);
}

TEST_P(Z7731RelaysTest, EachBoxHasItsRegulator) {
  struct Case {
    int box;
    int list;
    std::vector<int> ticked;
  };
  for (const auto& [box, list, ticked] :
       {Case{0, 0x8000, {0, 5}}, Case{1, 0x5000, {1, 5}}, Case{2, 0x6000, {2, 5}}, Case{3, 0xE000, {3, 4, 5}},
        Case{4, 0xE000, {3, 4, 5}}, Case{7, 0xD000, {5, 7}}, Case{8, 0xF000, {5, 8, 9}},
        Case{9, 0xF000, {5, 8, 9}}}) {
    StartWith(0);
    Toggle(box);
    EXPECT_EQ(Boxes(), ticked) << box;
    EXPECT_EQ(List(), list) << box;
    panel.LeaveSession();
  }
}

TEST_P(Z7731RelaysTest, TheFirstFreePlaceIsTaken) {
  StartWith(0x5060);
  Toggle(7);
  Toggle(0);
  EXPECT_EQ(List(), 0x5D68);
}

TEST_P(Z7731RelaysTest, AFourthOneIsTakenAndAFifthRefused) {
  StartWith(0);
  for (const int box : {0, 1, 2, 7}) Toggle(box);
  EXPECT_THAT(Told(), IsEmpty());
  Toggle(3);
  EXPECT_THAT(Told(), ElementsAre(kFull));
  EXPECT_THAT(Boxes(), ElementsAre(0, 1, 2, 5, 7));
  EXPECT_EQ(List(), 0x856D);
}

TEST_P(Z7731RelaysTest, ARefusedSingleBoxIsClearedAgain) {
  StartWith(0x56EF);
  for (const int box : {0, 7}) {
    ground.ui.messages.clear();
    Toggle(box);
    EXPECT_THAT(Told(), ElementsAre(kFull));
    EXPECT_EQ(Relay().boxes[box].Value(), 0);
  }
  EXPECT_EQ(List(), 0x56EF);
}

TEST_P(Z7731RelaysTest, ARefusedPairIsClearedAgain) {
  StartWith(0x568D);
  for (const int box : {3, 4, 8, 9}) {
    ground.ui.messages.clear();
    Toggle(box);
    EXPECT_THAT(Told(), ElementsAre(kFull));
    EXPECT_THAT(Boxes(), ElementsAre(0, 1, 2, 7)) << box;
  }
  EXPECT_EQ(List(), 0x568D);
}

TEST_P(Z7731RelaysTest, AfterOneIsClearedAnotherIsTaken) {
  StartWith(0x568D);
  Toggle(3);
  ASSERT_THAT(Told(), ElementsAre(kFull));
  Toggle(2);
  EXPECT_THAT(Boxes(), ElementsAre(0, 1, 7));
  Toggle(3);
  EXPECT_THAT(Told(), ElementsAre(kFull));
  EXPECT_THAT(Boxes(), ElementsAre(0, 1, 3, 4, 7));
  EXPECT_EQ(List(), 0x5E8D);
}

TEST_P(Z7731RelaysTest, ClearingRemovesEveryEntryOfTheRegulator) {
  StartWith(0x5855);
  Toggle(1);
  EXPECT_THAT(Boxes(), ElementsAre(0));
  EXPECT_EQ(List(), 0x0800);
}

TEST_P(Z7731RelaysTest, APairIsClearedByEitherOfItsBoxes) {
  for (const int box : {3, 4}) {
    StartWith(0xEF00);
    Toggle(box);
    EXPECT_THAT(Boxes(), ElementsAre(5, 8, 9)) << box;
    EXPECT_EQ(List(), 0x0F00) << box;
    panel.LeaveSession();
  }
  for (const int box : {8, 9}) {
    StartWith(0xEF00);
    Toggle(box);
    EXPECT_THAT(Boxes(), ElementsAre(3, 4, 5)) << box;
    EXPECT_EQ(List(), 0xE000) << box;
    panel.LeaveSession();
  }
}

TEST_P(Z7731RelaysTest, AWordThatEndsInNineHasThreeFreePlaces) {
  StartWith(0x0009);
  for (const int box : {0, 1, 2}) Toggle(box);
  EXPECT_THAT(Told(), IsEmpty());
  Toggle(7);
  EXPECT_THAT(Told(), ElementsAre(kFull));
  EXPECT_EQ(List(), 0x8569);
}

TEST_P(Z7731RelaysTest, TheBoxesWithoutARegulatorLeaveTheListAsItWas) {
  for (const int box : {5, 6}) {
    StartWith(0x5009);
    const int before = Relay().boxes[box].Value();
    Toggle(box);
    EXPECT_EQ(Relay().boxes[box].Value(), 1 - before);
    Toggle(box);
    EXPECT_EQ(Relay().boxes[box].Value(), before);
    EXPECT_THAT(Told(), IsEmpty());
    EXPECT_EQ(List(), 0x5009);
    panel.LeaveSession();
  }
}

TEST_P(Z7731RelaysTest, TheyAreRefusedOnAFullListToo) {
  for (const int box : {5, 6}) {
    StartWith(0x568D);
    Toggle(box);
    EXPECT_THAT(Told(), ElementsAre(kFull)) << box;
    EXPECT_EQ(Relay().boxes[box].Value(), 0) << box;
    EXPECT_EQ(List(), 0x568D);
    panel.LeaveSession();
  }
}

TEST_P(Z7731RelaysTest, TheOtherRelayStaysAsItIs) {
  StartWith(0);
  const auto other = Ticked(OtherRelay());
  for (const int box : {0, 3, 8, 7}) Toggle(box);
  EXPECT_EQ(Ticked(OtherRelay()), other);
  EXPECT_EQ(List(), 0x8EFD);
}

TEST_P(Z7731RelaysTest, WithoutAUnitTheBoxesWorkToo) {
  ASSERT_TRUE(StartSimulated());
  for (int box = 0; box < 10; ++box) {
    if (Relay().boxes[box].Value() == 1) Toggle(box);
  }
  EXPECT_THAT(Boxes(), IsEmpty());
  // The entry of regulator 9 cannot be cleared: three places are free.
  for (const int box : {0, 1, 3}) Toggle(box);
  EXPECT_THAT(Told(), IsEmpty());
  Toggle(9);
  EXPECT_THAT(Told(), ElementsAre(kFull));
  EXPECT_THAT(Boxes(), ElementsAre(0, 1, 3, 4));
}

INSTANTIATE_TEST_SUITE_P(Relays, Z7731RelaysTest, testing::Values(false, true),
                         [](const auto& relay) { return relay.param ? "Relay2" : "Relay1"; });

}  // namespace
}  // namespace brelant
