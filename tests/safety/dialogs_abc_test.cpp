// SPDX-License-Identifier: GPL-3.0-or-later
#include "safety/dialog_fixture.h"

namespace brelant {
namespace {

using test::Click;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Not;

constexpr std::size_t kPointer = 7868;
constexpr const char* kFailed = "Could not change ABC calibration interval";

class AbcDialogTest : public test::DialogTest {
 protected:
  /// Where the block is, how long a period is and how many there are.
  void PutBlock(std::size_t base, int tick, int count) {
    base_ = base;
    PutSetting(base + 8, tick);
    PutSetting(base + 4, count);
  }
  void PutPointed(int pointer, std::size_t base, int tick, int count) {
    PutSetting(kPointer, pointer);
    PutBlock(base, tick, count);
  }
  void In(const std::function<void()>& acts) {
    EXPECT_EQ(DialogTest::In(panel.m_ConfigureABC, dialog.form, acts), 1);
  }
  /// The number of periods after a press with that text.
  int CountAfter(const std::string& days) {
    In([&] {
      Forget();
      EXPECT_TRUE(dialog.form.ChangeText(dialog.txtDays, days));
      EXPECT_TRUE(Click(dialog.btnChangeInterval));
      shown_ = dialog.txtCurrent.Text();
    });
    return Setting(base_ + 4);
  }
  const std::string& Shown() const { return shown_; }

  frmZ7731ABC& dialog = panel.ABC;

 private:
  std::size_t base_ = 0;
  std::string shown_;
};

TEST_F(AbcDialogTest, HasItsCaptions) {
  EXPECT_EQ(dialog.form.Name(), "frmZ7731ABC");
  EXPECT_EQ(dialog.form.Caption(), "ABC Configuration");
  EXPECT_EQ(dialog.btnChangeInterval.Text(), "Update ABC parameters");
}

TEST_F(AbcDialogTest, OpensWithTheIntervalInDays) {
  // 168 periods of an hour
  PutPointed(7200, 7200, 1800, 168);
  for (const auto road : test::kRoads) {
    StartOn(road);
    In([this] {
      EXPECT_EQ(dialog.txtCurrent.Text(), "7");
      EXPECT_FALSE(dialog.txtCurrent.Editable());
      EXPECT_TRUE(dialog.txtDays.Editable());
    });
    EXPECT_THAT(Writes(), IsEmpty());
    panel.LeaveSession();
  }
}

TEST_F(AbcDialogTest, TheHighWindowIsTakenOffTheBase) {
  // 0xE123 is 57635, less 57344.
  PutPointed(0xE123, 291, 1800, 240);
  StartOnKiBus();
  In([this] { EXPECT_EQ(dialog.txtCurrent.Text(), "10"); });
  EXPECT_THAT(Frames(), ElementsAre("E7868+2", "E299+2", "E295+2"));
  EXPECT_EQ(CountAfter("8"), 192);
  EXPECT_THAT(Writes(), ElementsAre("E295 = 192"));
}

TEST_F(AbcDialogTest, ABaseUpToTheEndOfMemoryStandsAsItIs) {
  PutPointed(8180, 8180, 1800, 24);
  StartOnKiBus();
  In([this] { EXPECT_EQ(dialog.txtCurrent.Text(), "1"); });
  EXPECT_THAT(Frames(), ElementsAre("E7868+2", "E8188+2", "E8184+2"));
}

TEST_F(AbcDialogTest, DaysAreRounded) {
  PutPointed(7200, 7200, 1800, 0);
  StartOnKiBus();
  struct Case {
    int tick;
    int count;
    const char* days;
  };
  // 0.46, 0.54, 1.5, 2.5 and 7.9999 days
  for (const auto& [tick, count, days] : {Case{1800, 11, "0"}, Case{1800, 13, "1"}, Case{1800, 36, "2"},
                                          Case{1800, 60, "2"}, Case{7, 49371, "8"}, Case{0, 500, "0"}}) {
    PutBlock(7200, tick, count);
    In([&, days = days] { EXPECT_EQ(dialog.txtCurrent.Text(), days); });
  }
}

TEST_F(AbcDialogTest, TheNumberOfPeriodsIsRounded) {
  PutPointed(7200, 7200, 7, 1);
  for (const auto road : test::kRoads) {
    StartOn(road);
    // 8 x 86400 / 14 = 49371.4
    EXPECT_EQ(CountAfter("8"), 49371);
    EXPECT_EQ(Shown(), "8");
    // 10 x 86400 / 14 = 61714.3, 10.5: 64800
    EXPECT_EQ(CountAfter("10"), 61714);
    EXPECT_EQ(CountAfter("10,5"), 64800);
    EXPECT_EQ(CountAfter("10.5"), 64800);
    EXPECT_EQ(CountAfter("0"), 0);
    EXPECT_EQ(Shown(), "0");
    EXPECT_THAT(Told(), IsEmpty());
    panel.LeaveSession();
  }
}

TEST_F(AbcDialogTest, ThePeriodIsAskedForAtThePress) {
  PutPointed(7200, 7200, 1800, 24);
  StartOnKiBus();
  In([this] {
    PutBlock(7200, 900, 24);
    Forget();
    EXPECT_TRUE(dialog.form.ChangeText(dialog.txtDays, "1"));
    EXPECT_TRUE(Click(dialog.btnChangeInterval));
    EXPECT_EQ(dialog.txtCurrent.Text(), "1");
  });
  EXPECT_THAT(Frames(), ElementsAre("E7208+2", "E7204 = 48", "E7208+2", "E7204+2"));
}

TEST_F(AbcDialogTest, APeriodOfNothingIsAFailure) {
  PutPointed(7200, 7200, 0, 24);
  StartOnKiBus();
  for (const char* days : {"8", "0", "-1"}) {
    EXPECT_EQ(CountAfter(days), 24) << days;
    EXPECT_THAT(Writes(), IsEmpty());
    EXPECT_THAT(Told(), ElementsAre(kFailed)) << days;
  }
}

TEST_F(AbcDialogTest, AnIntervalWithoutRoomOrBelowNothingIsAFailure) {
  PutPointed(7200, 7200, 7, 24);
  StartOnKiBus();
  // 10.7 days are 66034 periods; 65535 are 10.619 days.
  for (const char* days : {"10.7", "-1", "100000"}) {
    EXPECT_EQ(CountAfter(days), 24) << days;
    EXPECT_THAT(Writes(), IsEmpty());
    EXPECT_THAT(Told(), ElementsAre(kFailed)) << days;
  }
  EXPECT_EQ(CountAfter("10.619"), 65534);
}

TEST_F(AbcDialogTest, ATextWithoutANumberIsAFailure) {
  PutPointed(7200, 7200, 1800, 24);
  StartOnKiBus();
  for (const char* days : {"", "week", "-"}) {
    EXPECT_EQ(CountAfter(days), 24) << days;
    EXPECT_THAT(Writes(), IsEmpty()) << days;
    EXPECT_THAT(Told(), ElementsAre(kFailed)) << days;
  }
}

TEST_F(AbcDialogTest, AWriteThatFailsIsTold) {
  PutPointed(7200, 7200, 1800, 24);
  StartOnKiBus();
  In([this] {
    Silence();
    EXPECT_TRUE(Click(dialog.btnChangeInterval));
    EXPECT_EQ(dialog.txtCurrent.Text(), "1");
  });
  EXPECT_THAT(Told(), ElementsAre(kFailed));
}

TEST_F(AbcDialogTest, WhatTheUnitHasIsShownAfterTheWrite) {
  PutPointed(7200, 7200, 1800, 24);
  StartOnKiBus();
  Refuse(7204, 2);
  EXPECT_EQ(CountAfter("8"), 24);
  EXPECT_EQ(Shown(), "1");
}

TEST_F(AbcDialogTest, ADialogThatCannotBeFilledTellsWhyAndDoesNotOpen) {
  // Its block would lie before the memory.
  PutSetting(kPointer, 8192);
  StartOnKiBus();
  EXPECT_EQ(DialogTest::In(panel.m_ConfigureABC, dialog.form), 0);
  EXPECT_THAT(Told(), ElementsAre(Not(IsEmpty())));
  PutPointed(7200, 7200, 1800, 24);
  Silence();
  ground.ui.messages.clear();
  EXPECT_EQ(DialogTest::In(panel.m_ConfigureABC, dialog.form), 0);
  EXPECT_THAT(Told(), ElementsAre(Not(IsEmpty())));
}

}  // namespace
}  // namespace brelant
