// SPDX-License-Identifier: GPL-3.0-or-later
#include "safety/dialog_fixture.h"

namespace brelant {
namespace {

using test::Click;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Not;

constexpr std::size_t kChannel1 = 4564;
constexpr std::size_t kChannel2 = 4568;
constexpr std::size_t kTiming = 4444;
constexpr std::size_t kSize = 4640;
constexpr const char* kNoEstimate =
    "Could not estimate total logger period. Please check logger value in textbox.";

/// Both loggers and the timing have bits that belong to the unit.
class LoggerDialogTest : public test::DialogTest {
 protected:
  LoggerDialogTest() {
    PutSetting(kChannel1, 0xAB05);
    PutSetting(kChannel2, 0x7F09);
    PutSetting(kTiming, 0x415C);
  }
  void In(const std::function<void()>& acts) {
    EXPECT_EQ(DialogTest::In(panel.m_ConfigureLogger, dialog.form, acts), 1);
  }
  void Choose(Control& list, const std::string& channel) { EXPECT_TRUE(dialog.form.Choose(list, channel)); }
  void Minutes(const std::string& text) { EXPECT_TRUE(dialog.form.ChangeText(dialog.txtMinutes, text)); }
  /// What a press with that text writes, and what the field shows then.
  struct Set {
    int word;
    std::string shown;
    bool operator==(const Set&) const = default;
    friend void PrintTo(const Set& set, std::ostream* stream) { *stream << set.word << " " << set.shown; }
  };
  Set SetTo(const std::string& text) {
    Set set{};
    In([&] {
      Minutes(text);
      EXPECT_TRUE(Click(dialog.btnChangeInterval));
      set = {Setting(kTiming), dialog.txtMinutes.Text()};
    });
    return set;
  }

  frmZ7731Logger& dialog = panel.Logger;
};

TEST_F(LoggerDialogTest, HasItsCaptions) {
  EXPECT_EQ(dialog.form.Name(), "frmZ7731Logger");
  EXPECT_EQ(dialog.form.Caption(), "Logger Configuration");
  EXPECT_EQ(dialog.btnChangeValues.Text(), "Update logger values");
  EXPECT_EQ(dialog.btnChangeInterval.Text(), "Update logger interval");
  EXPECT_EQ(dialog.btnEstimate.Text(), "Estimate total logger period");
}

TEST_F(LoggerDialogTest, OpensWithWhatTheUnitHas) {
  for (const auto road : test::kRoads) {
    StartOn(road);
    In([this] {
      for (const auto* list : {&dialog.cmbLoggerValue1, &dialog.cmbLoggerValue2}) {
        EXPECT_THAT(list->Items(), ElementsAre("CO2", "TEMP 1", "TEMP 2", "WEIGHT", "TWA CO2"));
      }
      EXPECT_EQ(dialog.cmbLoggerValue1.Text(), "CO2");
      EXPECT_EQ(dialog.cmbLoggerValue1.Value(), 0);
      EXPECT_EQ(dialog.cmbLoggerValue2.Text(), "TEMP 2");
      EXPECT_EQ(dialog.cmbLoggerValue2.Value(), 2);
      // 2^9 x 9 / 8 = 576 s
      EXPECT_EQ(dialog.txtMinutes.Text(), "10");
      EXPECT_TRUE(dialog.form.Modal());
    });
    EXPECT_THAT(Writes(), IsEmpty());
    EXPECT_THAT(Told(), IsEmpty());
    panel.LeaveSession();
  }
}

TEST_F(LoggerDialogTest, AChannelThatCannotBeChosenSelectsNothing) {
  PutSetting(kChannel1, 0xAB03);
  PutSetting(kChannel2, 0x000F);
  StartOnKiBus();
  In([this] {
    for (const auto* list : {&dialog.cmbLoggerValue1, &dialog.cmbLoggerValue2}) {
      EXPECT_EQ(list->Value(), -1);
      EXPECT_EQ(list->Text(), "");
      EXPECT_EQ(list->Items().size(), 5U);
    }
  });
}

TEST_F(LoggerDialogTest, ThePeriodIsShownInMinutesRoundedUp) {
  struct Case {
    int code;
    const char* minutes;
  };
  // 2 s, 60 s, 64 s, 120 s, 5632 s, 122880 s; bit 7 is not the code's, nor is the low byte.
  for (const auto& [code, minutes] : {Case{0, "1"}, Case{39, "1"}, Case{40, "2"}, Case{47, "2"},
                                      Case{91, "94"}, Case{127, "2048"}, Case{128 + 39, "1"}}) {
    PutSetting(kTiming, code * 256 + 255);
    StartOnKiBus();
    In([this, text = minutes, number = code] { EXPECT_EQ(dialog.txtMinutes.Text(), text) << number; });
    panel.LeaveSession();
  }
}

TEST_F(LoggerDialogTest, ChannelsKeepTheHigherBits) {
  StartOnKiBus();
  In([this] {
    Choose(dialog.cmbLoggerValue1, "TWA CO2");
    Choose(dialog.cmbLoggerValue2, "WEIGHT");
    EXPECT_TRUE(Click(dialog.btnChangeValues));
  });
  // 0xAB08 and 0x7F0B
  EXPECT_THAT(Writes(), ElementsAre("E4564 = 43784", "E4568 = 32523"));
  EXPECT_THAT(Told(), ElementsAre("Logger values changed"));
}

TEST_F(LoggerDialogTest, ChannelsGoOverModbusToo) {
  StartOnModbus();
  In([this] {
    Choose(dialog.cmbLoggerValue1, "TEMP 1");
    EXPECT_TRUE(Click(dialog.btnChangeValues));
  });
  // 8192 + 4564 / 2; the second stays as it was.
  EXPECT_THAT(Writes(), ElementsAre("H10474 = 43780", "H10476 = 32521"));
  EXPECT_EQ(Setting(kChannel1), 0xAB04);
  EXPECT_THAT(Told(), ElementsAre("Logger values changed"));
}

TEST_F(LoggerDialogTest, WhatTheUnitChangedMeanwhileStays) {
  StartOnKiBus();
  In([this] {
    PutSetting(kChannel1, 0x1235);
    Choose(dialog.cmbLoggerValue1, "TEMP 1");
    EXPECT_TRUE(Click(dialog.btnChangeValues));
  });
  EXPECT_EQ(Setting(kChannel1), 0x1234);
}

TEST_F(LoggerDialogTest, AChannelThatIsNotTakenIsToldAndBothAreTried) {
  struct Case {
    std::size_t refused;
    const char* fiveTimes;
    const char* once;
  };
  for (const auto& [refused, fiveTimes, once] : {Case{kChannel1, "E4564 = 43780", "E4568 = 32516"},
                                                 Case{kChannel2, "E4568 = 32516", "E4564 = 43780"}}) {
    const auto answer = port.onOutput;
    PutSetting(kChannel1, 0xAB05);
    PutSetting(kChannel2, 0x7F09);
    StartOnKiBus();
    Refuse(refused, 2);
    In([this] {
      Choose(dialog.cmbLoggerValue1, "TEMP 1");
      Choose(dialog.cmbLoggerValue2, "TEMP 1");
      EXPECT_TRUE(Click(dialog.btnChangeValues));
    });
    EXPECT_THAT(Told(), ElementsAre("Could not change logger values")) << refused;
    const auto writes = Writes();
    EXPECT_EQ(writes.size(), 6U);
    EXPECT_EQ(std::count(writes.begin(), writes.end(), fiveTimes), 5);
    EXPECT_EQ(std::count(writes.begin(), writes.end(), once), 1);
    EXPECT_FALSE(ground.msg.Visible());
    panel.LeaveSession();
    port.onOutput = answer;
  }
}

TEST_F(LoggerDialogTest, TheLongestPeriodWithinTheMinutesIsTaken) {
  StartOnKiBus();
  // Bit 7 and the code, above the low byte that stays: 60, 576, 5632 and 122880 s.
  EXPECT_EQ(SetTo("1"), (Set{(128 + 39) * 256 + 0x5C, "1"}));
  EXPECT_EQ(SetTo("10"), (Set{(128 + 65) * 256 + 0x5C, "10"}));
  EXPECT_EQ(SetTo("100"), (Set{(128 + 91) * 256 + 0x5C, "94"}));
  EXPECT_EQ(SetTo("2048"), (Set{(128 + 127) * 256 + 0x5C, "2048"}));
  EXPECT_THAT(Told(), testing::Each(std::string("Log interval changed")));
  EXPECT_EQ(Told().size(), 4U);
}

TEST_F(LoggerDialogTest, NoMinutesAreTheShortestPeriod) {
  StartOnKiBus();
  EXPECT_EQ(SetTo("0"), (Set{128 * 256 + 0x5C, "1"}));
  EXPECT_THAT(Writes(), ElementsAre("E4444 = 32860"));
}

TEST_F(LoggerDialogTest, APeriodAboveTheLongestIsTheLongest) {
  StartOnKiBus();
  for (const char* text : {"2049", "5000", "32767"}) {
    EXPECT_EQ(SetTo(text), (Set{255 * 256 + 0x5C, "2048"})) << text;
  }
}

TEST_F(LoggerDialogTest, HalvesGoToTheEvenNeighbourWithEitherMark) {
  StartOnKiBus();
  // 120 and 240 s
  for (const char* text : {"2.5", "2,5", " 2 "}) {
    EXPECT_EQ(SetTo(text), (Set{(128 + 47) * 256 + 0x5C, "2"})) << text;
  }
  for (const char* text : {"3.5", "3,5"}) {
    EXPECT_EQ(SetTo(text), (Set{(128 + 55) * 256 + 0x5C, "4"})) << text;
  }
}

TEST_F(LoggerDialogTest, TheIntervalGoesOverModbusToo) {
  StartOnModbus();
  EXPECT_EQ(SetTo("100"), (Set{(128 + 91) * 256 + 0x5C, "94"}));
  EXPECT_THAT(Writes(), ElementsAre("H10414 = 56156"));
}

TEST_F(LoggerDialogTest, WhatTheUnitReallyUsesIsShown) {
  StartOnKiBus();
  In([this] {
    Minutes("1");
    // Another one writes to the unit after the value was found to be there.
    ground.ui.onMessage = [] { FAIL(); };
    TimeFrames();
    port.onOutput = [this, answer = port.onOutput](const test::Bytes& bytes) {
      const auto before = unit.frames.size();
      answer(bytes);
      // The read of the old word, the write, the read of the new one.
      if (before != unit.frames.size() && unit.frames.size() == 3) PutSetting(kTiming, 0x5B5C);
    };
    ground.ui.onMessage = nullptr;
    EXPECT_TRUE(Click(dialog.btnChangeInterval));
    EXPECT_EQ(dialog.txtMinutes.Text(), "94");
  });
  EXPECT_THAT(Frames(), ElementsAre("E4444+2", "E4444 = 42844", "E4444+2", "E4444+2"));
  EXPECT_THAT(Told(), ElementsAre("Log interval changed"));
}

TEST_F(LoggerDialogTest, AnIntervalThatIsNotTakenIsTold) {
  StartOnKiBus();
  Refuse(kTiming, 2);
  In([this] {
    Minutes("100");
    EXPECT_TRUE(Click(dialog.btnChangeInterval));
    EXPECT_EQ(dialog.txtMinutes.Text(), "100");
  });
  EXPECT_THAT(Told(), ElementsAre("Could not change logger period"));
  EXPECT_EQ(Writes().size(), 5U);
}

TEST_F(LoggerDialogTest, AnIntervalThatIsNoNumberSendsNothing) {
  StartOnKiBus();
  for (const char* text : {"", "abc", "1x", "99999", "1 2", "nan", "inf"}) {
    In([&] {
      Forget();
      Minutes(text);
      EXPECT_TRUE(Click(dialog.btnChangeInterval));
      EXPECT_EQ(dialog.txtMinutes.Text(), text);
    });
    EXPECT_THAT(Frames(), IsEmpty()) << text;
    EXPECT_THAT(Told(), ElementsAre("Could not change logger period")) << text;
  }
}

TEST_F(LoggerDialogTest, TheEstimateIsInDaysWithOneDecimal) {
  StartOnKiBus();
  struct Case {
    int samples;
    const char* minutes;
    const char* days;
  };
  // 41.67, 62.5, 0.07, 1.04, 0
  for (const auto& [samples, minutes, days] :
       {Case{1000, "60", "41.7"}, Case{1500, "60", "62.5"}, Case{100, "1", "0.1"}, Case{1500, "1", "1"},
        Case{1000, "0", "0"}, Case{1536, "2048", "2184.5"}}) {
    PutSetting(kSize, samples);
    In([this, text = minutes] {
      Forget();
      Minutes(text);
      EXPECT_TRUE(Click(dialog.btnEstimate));
    });
    EXPECT_THAT(Told(), ElementsAre("Estimated total logger period = " + std::string(days) + " days"));
    EXPECT_THAT(Frames(), ElementsAre("E4640+2"));
  }
}

TEST_F(LoggerDialogTest, AnEstimateThatCannotBeMadeIsTold) {
  StartOnKiBus();
  for (const char* text : {"", "abc", "40000"}) {
    In([&] {
      Forget();
      Minutes(text);
      EXPECT_TRUE(Click(dialog.btnEstimate));
    });
    EXPECT_THAT(Told(), ElementsAre(kNoEstimate)) << text;
  }
  In([this] {
    Forget();
    Silence();
    Minutes("60");
    EXPECT_TRUE(Click(dialog.btnEstimate));
  });
  EXPECT_THAT(Told(), ElementsAre(kNoEstimate));
}

TEST_F(LoggerDialogTest, ADialogThatCannotBeFilledTellsWhyAndDoesNotOpen) {
  StartOnKiBus();
  Silence();
  EXPECT_EQ(DialogTest::In(panel.m_ConfigureLogger, dialog.form, [] {}), 0);
  EXPECT_FALSE(dialog.form.Visible());
  EXPECT_THAT(Told(), ElementsAre(Not(IsEmpty())));
}

TEST_F(LoggerDialogTest, ASecondPressWhileTheFirstOneWorksDoesNothing) {
  StartOnKiBus();
  In([this] {
    After(std::chrono::milliseconds(5), [this] { Click(dialog.btnChangeInterval); });
    Minutes("100");
    EXPECT_TRUE(Click(dialog.btnChangeInterval));
  });
  EXPECT_EQ(Writes().size(), 1U);
  EXPECT_THAT(Told(), ElementsAre("Log interval changed"));
}

TEST_F(LoggerDialogTest, ThePanelDoesNotPollWhileItIsOpen) {
  StartOnKiBus();
  After(std::chrono::milliseconds(500), [this] {
    DialogTest::In(panel.m_ConfigureLogger, dialog.form, [this] {
      Forget();
      const auto until = ground.clock.Now() + std::chrono::seconds(10);
      while (ground.clock.Now() < until) ground.pump.Wait(until);
      EXPECT_THAT(Frames(), IsEmpty());
    });
  });
  Run(std::chrono::seconds(14));
  EXPECT_THAT(Frames(), testing::Contains(kPollBegins));
}

}  // namespace
}  // namespace brelant
