// SPDX-License-Identifier: GPL-3.0-or-later
#include "panels/frm6_fixture.h"

namespace brelant {
namespace {

using std::chrono::milliseconds;
using std::chrono::seconds;
using test::Click;
using test::kPart88;
using test::Put;
using test::SampleEeprom;
using test::Texts;
using testing::Each;
using testing::ElementsAre;

/// The offline model of frm6, with nothing that feeds an output and base lines 0, to be built up from there.
/// Live values: Temp 1, Temp 2, RH, CO2.
class Frm6SimulateTest : public test::Frm6Test {
 protected:
  Frm6SimulateTest() {
    auto eeprom = SampleEeprom(kPart88);
    Put(eeprom, 138, {0, 128, 0, 0, 128, 0, 0, 128, 0, 0, 128, 0});
    Show(eeprom);
    panel.SimMode(true);
    for (auto* field : panel.outputs.txbOutOut) field->SetText("0");
  }

  void MakeDigital(int output) { panel.form.Select(panel.outputs.optOut6Digital[output]); }
  /// A function on CO2 from 400 to 1400, which feeds the output.
  void Feed(int output, int function, bool sign, bool slope) {
    panel.rows.lblFchannel[function].SetText("CO2");
    panel.rows.txbFa[function].SetText("400");
    panel.rows.txbFb[function].SetText("1400");
    panel.rows.FeedsOf(output)[function].SetValue(1);
    panel.rows.functions.FunkTypeUpdate(function, false, sign, slope);
  }
  void SetCO2(const std::string& text) { panel.txbCHact[3].SetText(text); }
  std::string Simulated(int output) {
    panel.Simulate();
    return panel.outputs.txbOutOut[output].Text();
  }
  void SetBase(int output, const std::string& text) { panel.outputs.txbOutBaseLine[output].SetText(text); }
};

TEST_F(Frm6SimulateTest, TheSignedShapesOfTheLastThreeFunctions) {
  struct Case {
    bool sign;
    bool slope;
    const char* base;
    std::array<const char*, 5> outputs;  // at 300, 400, 650, 1400, 1500
  };
  for (const bool digital : {false, true}) {
    // Another output that the function feeds makes its shape digital and nothing else.
    if (digital) MakeDigital(1);
    for (const auto& [sign, slope, base, outputs] :
         {Case{true, true, "0", {"0", "0", "25", "100", "100"}},
          Case{true, false, "0", {"100", "100", "75", "0", "0"}},
          Case{false, false, "100", {"100", "100", "75", "0", "0"}},
          Case{false, true, "100", {"0", "0", "25", "100", "100"}}}) {
      panel.rows.FeedsOf(1)[3].SetValue(digital ? 1 : 0);
      Feed(0, 3, sign, slope);
      ASSERT_EQ(panel.rows.functions.VisibleType(3).value_or(99) < 4, digital);
      SetBase(0, base);
      static constexpr std::array<const char*, 5> kInputs{"300", "400", "650", "1400", "1500"};
      for (std::size_t i = 0; i < kInputs.size(); ++i) {
        SetCO2(kInputs[i]);
        EXPECT_EQ(Simulated(0), outputs[i]) << sign << slope << " at " << kInputs[i];
      }
    }
  }
}

TEST_F(Frm6SimulateTest, TheFirstThreeFunctionsGoFromMinus100To100) {
  struct Case {
    bool slope;
    const char* base;
    std::array<const char*, 6> outputs;  // at 300, 650, 900, 1025, 1400, 1500
  };
  for (const bool digital : {false, true}) {
    if (digital) MakeDigital(1);
    for (int function = 0; function < 3; ++function) {
      for (const auto& [slope, base, outputs] : {Case{true, "0", {"0", "0", "0", "25", "100", "100"}},
                                                 Case{false, "0", {"100", "50", "0", "0", "0", "0"}},
                                                 Case{true, "60", {"0", "10", "60", "85", "100", "100"}},
                                                 Case{false, "60", {"100", "100", "60", "35", "0", "0"}}}) {
        panel.rows.FeedsOf(1)[function].SetValue(digital ? 1 : 0);
        Feed(0, function, true, slope);
        ASSERT_EQ(panel.rows.functions.VisibleType(function).value_or(99) >= 10, digital);
        SetBase(0, base);
        static constexpr std::array<const char*, 6> kInputs{"300", "650", "900", "1025", "1400", "1500"};
        for (std::size_t i = 0; i < kInputs.size(); ++i) {
          SetCO2(kInputs[i]);
          EXPECT_EQ(Simulated(0), outputs[i]) << function << slope << " at " << kInputs[i];
        }
      }
      panel.rows.FeedsOf(0)[function].SetValue(0);
    }
  }
}

TEST_F(Frm6SimulateTest, EachOutputHasItsOwnFunctionsAndAllSixCanFeedIt) {
  SetCO2("650");
  for (int j = 0; j < 4; ++j) Feed(j, 5 - j, true, true);
  SetBase(3, "90");
  panel.Simulate();
  // Function 2 has no sign: -50.
  EXPECT_THAT(Texts(panel.outputs.txbOutOut), ElementsAre("25", "25", "25", "40"));
}

TEST_F(Frm6SimulateTest, TheSumIsLimitedAfterEachFunction) {
  SetCO2("1400");
  SetBase(0, "50");
  Feed(0, 0, true, true);
  Feed(0, 3, false, false);
  // 50 + 100 is 100, less 100 is 0.
  EXPECT_EQ(Simulated(0), "0");
}

TEST_F(Frm6SimulateTest, AFunctionTakesTheChannelOfItsName) {
  Feed(0, 3, true, true);
  panel.txbCHact[0].SetText("650");
  panel.txbCHact[2].SetText("1150");
  panel.rows.lblFchannel[3].SetText("Temp 1");
  EXPECT_EQ(Simulated(0), "25");
  panel.rows.lblFchannel[3].SetText("RH");
  EXPECT_EQ(Simulated(0), "75");
  panel.rows.lblFchannel[3].SetText("AH");
  SetBase(0, "7");
  EXPECT_EQ(Simulated(0), "7");
}

TEST_F(Frm6SimulateTest, AChannelThatIsGoneFeedsNoFunction) {
  SetCO2("1400");
  auto eeprom = SampleEeprom(kPart88);
  Put(eeprom, 138, {0, 128, 0, 0, 128, 0, 0, 128, 0, 0, 128, 0});
  eeprom[158] |= 2;  // no CO2
  Show(eeprom);
  ASSERT_THAT(test::Visibles(panel.pctChannel), ElementsAre(true, true, true, false, false, false, false));
  Feed(0, 3, true, true);
  SetBase(0, "7");
  EXPECT_EQ(Simulated(0), "7");
}

TEST_F(Frm6SimulateTest, ADigitalOutputHasItsBaseLine) {
  MakeDigital(0);
  for (const auto& [base, output] :
       {std::pair{"100", "100"}, std::pair{"0", "0"}, std::pair{"-50", "0"}, std::pair{"150", "100"}}) {
    SetBase(0, base);
    panel.outputs.txbOutOut[0].SetText("33");
    EXPECT_EQ(Simulated(0), output) << base;
  }
}

TEST_F(Frm6SimulateTest, ADigitalOutputKeepsWhatItShowsBetweenTheEnds) {
  MakeDigital(0);
  Feed(0, 3, true, true);
  struct Case {
    const char* input;
    const char* shown;
    const char* output;
  };
  // The step to 0 of the older panel is absent: 33 stays 33.
  for (const auto& [input, shown, output] :
       {Case{"400", "100", "0"}, Case{"1000", "0", "0"}, Case{"1000", "100", "100"}, Case{"1000", "33", "33"},
        Case{"401", "100", "100"}, Case{"1399", "0", "0"}, Case{"1400", "0", "100"}}) {
    SetCO2(input);
    panel.outputs.txbOutOut[0].SetText(shown);
    EXPECT_EQ(Simulated(0), output) << input << " from " << shown;
  }
}

TEST_F(Frm6SimulateTest, AnInvertedOutputShowsTheAmount) {
  panel.outputs.cbxOut6Invert[0].SetValue(1);
  for (const auto& [base, output] :
       {std::pair{"-30", "30"}, std::pair{"40", "40"}, std::pair{"-150", "100"}, std::pair{"0", "0"}}) {
    SetBase(0, base);
    EXPECT_EQ(Simulated(0), output) << base;
    SetBase(1, base);
  }
  SetBase(1, "-30");
  EXPECT_EQ(Simulated(1), "0");
}

TEST_F(Frm6SimulateTest, AnInvertedDigitalOutputSwitchesOnTheAmount) {
  MakeDigital(0);
  panel.outputs.cbxOut6Invert[0].SetValue(1);
  SetBase(0, "-100");
  EXPECT_EQ(Simulated(0), "100");
}

TEST_F(Frm6SimulateTest, TheTriggerAddsItsLevelOnceWhicheverLineRuns) {
  panel.trigger.cbxDigTout[0].SetValue(1);
  SetBase(0, "80");
  SetBase(1, "80");
  EXPECT_EQ(Simulated(0), "80");
  panel.trigger.txbDigTlevel.SetText("-29");
  for (auto* line : {&panel.trigger.linDigTPsign, &panel.trigger.linDigTNsign}) {
    line->SetVisible(true);
    EXPECT_EQ(Simulated(0), "51") << line->Name();
    EXPECT_EQ(panel.outputs.txbOutOut[1].Text(), "80");
    line->SetVisible(false);
  }
}

TEST_F(Frm6SimulateTest, TheDigitalInputAddsItsLevelWhileItIsActive) {
  panel.outputs.cbxDigout[0].SetValue(1);
  panel.txbDigLevel.SetText("-30");
  SetBase(0, "80");
  SetBase(1, "80");
  EXPECT_EQ(Simulated(0), "80");
  EXPECT_TRUE(Click(panel.cbxDigActive));
  EXPECT_EQ(Simulated(0), "50");
  EXPECT_EQ(panel.outputs.txbOutOut[1].Text(), "80");
}

TEST_F(Frm6SimulateTest, TheSumIsLimitedBetweenTriggerAndInputAndBehindThem) {
  panel.trigger.cbxDigTout[0].SetValue(1);
  panel.trigger.linDigTPsign.SetVisible(true);
  panel.outputs.cbxDigout[0].SetValue(1);
  panel.cbxDigActive.SetValue(1);
  panel.trigger.txbDigTlevel.SetText("60");
  panel.txbDigLevel.SetText("-30");
  SetBase(0, "80");
  // 140 is 100, less 30.
  EXPECT_EQ(Simulated(0), "70");
  panel.outputs.cbxOut6Invert[0].SetValue(1);
  panel.trigger.txbDigTlevel.SetText("-180");
  panel.txbDigLevel.SetText("-60");
  // -100 less 60 is -100 still.
  EXPECT_EQ(Simulated(0), "100");
}

TEST_F(Frm6SimulateTest, ADigitalOutputIsSwitchedByTheInput) {
  MakeDigital(2);
  panel.outputs.cbxDigout[2].SetValue(1);
  panel.txbDigLevel.SetText("100");
  EXPECT_EQ(Simulated(2), "0");
  panel.cbxDigActive.SetValue(1);
  EXPECT_EQ(Simulated(2), "100");
}

TEST_F(Frm6SimulateTest, EndsInTheWrongOrderGiveTheEndA) {
  Feed(0, 3, true, true);
  panel.rows.txbFa[3].SetText("1400");
  panel.rows.txbFb[3].SetText("400");
  SetBase(0, "30");
  for (const char* input : {"300", "900", "1500"}) {
    SetCO2(input);
    EXPECT_EQ(Simulated(0), "30") << input;
  }
}

TEST_F(Frm6SimulateTest, OutputsAreRoundedToTheNearestAndTheEvenNeighbour) {
  for (const auto& [base, output] :
       {std::pair{"24.6", "25"}, std::pair{"24.4", "24"}, std::pair{"24.5", "24"}, std::pair{"25.5", "26"}}) {
    SetBase(0, base);
    EXPECT_EQ(Simulated(0), output) << base;
  }
}

TEST_F(Frm6SimulateTest, AnEditMovesTheOutputsAtOnceInSimulatedModeOnly) {
  test::Type(panel.outputs.txbOutBaseLine[0], "50");
  EXPECT_EQ(panel.outputs.txbOutOut[0].Text(), "50");
  panel.SimMode(false);
  test::Type(panel.outputs.txbOutBaseLine[0], "75");
  EXPECT_EQ(panel.outputs.txbOutOut[0].Text(), "50");
}

TEST_F(Frm6SimulateTest, AnEqualToBLeavesAllOutputs) {
  Feed(3, 5, true, true);
  panel.rows.txbFb[5].SetText("400");
  SetBase(0, "40");
  for (auto* field : panel.outputs.txbOutOut) field->SetText("77");
  EXPECT_NO_THROW(panel.Simulate());
  EXPECT_THAT(Texts(panel.outputs.txbOutOut), Each("77"));
}

TEST_F(Frm6SimulateTest, OtherFacesHaveNoModel) {
  for (const int variant : {1, 3, 4, 5}) {
    Show(SampleEeprom(kPart88, variant));
    panel.SimMode(true);
    SetBase(0, "40");
    for (auto* field : panel.outputs.txbOutOut) field->SetText("77");
    panel.Simulate();
    EXPECT_THAT(Texts(panel.outputs.txbOutOut), Each("77")) << variant;
    EXPECT_FALSE(panel.cbxDigActive.Visible()) << variant;
    EXPECT_FALSE(panel.trigger.btnDigTrig.Visible()) << variant;
  }
}

// The pass of the loop

TEST_F(Frm6SimulateTest, InputAndTriggerAreThereInSimulatedModeOnly) {
  EXPECT_TRUE(panel.cbxDigActive.Visible());
  EXPECT_TRUE(panel.trigger.btnDigTrig.Visible());
  panel.SimMode(false);
  EXPECT_FALSE(panel.cbxDigActive.Visible());
  EXPECT_FALSE(panel.trigger.btnDigTrig.Visible());
}

TEST_F(Frm6SimulateTest, AnotherFaceTakesThemAway) {
  auto eeprom = SampleEeprom(kPart88, 3);
  Load(eeprom);
  EXPECT_TRUE(panel.FormUpdateInit());
  EXPECT_FALSE(panel.cbxDigActive.Visible());
  EXPECT_FALSE(panel.trigger.btnDigTrig.Visible());
  Load(SampleEeprom(kPart88, 0));
  EXPECT_TRUE(panel.FormUpdateInit());
  EXPECT_TRUE(panel.cbxDigActive.Visible());
  EXPECT_TRUE(panel.trigger.btnDigTrig.Visible());
}

TEST_F(Frm6SimulateTest, ATypedLiveValueStopsThePassUntilItIsLeft) {
  Feed(0, 3, true, true);
  SetCO2("400");
  std::vector<std::string> outputs;
  const auto look = [&] { outputs.push_back(panel.outputs.txbOutOut[0].Text()); };
  panel.form.GainFocus(panel.txbCHact[0]);
  panel.outputs.txbOutOut[0].SetText("66");
  After(seconds(1), [&] {
    look();
    SetCO2("650");
  });
  After(seconds(2), [&] {
    look();
    SetEeprom(121, {9, 128 + 21, 24, 128 + 25, 0});
    panel.form.LoseFocus(panel.txbCHact[0]);
  });
  After(seconds(3), look);
  Run(seconds(4));
  ASSERT_EQ(outputs.size(), 3U);
  EXPECT_EQ(outputs[0], "66");
  EXPECT_EQ(outputs[1], "66");
  EXPECT_EQ(outputs[2], "25");
}

TEST_F(Frm6SimulateTest, ATypedLiveValueStopsTheBarToo) {
  panel.trigger.txbDigTtime.SetText("10");
  panel.trigger.lblDigTunit.SetText("Sec");
  EXPECT_TRUE(Click(panel.trigger.btnDigTrig));
  std::vector<int> bars;
  const auto look = [&] {
    bars.push_back(panel.trigger.linDigTPsign.Visible() ? panel.trigger.linDigTPsign.Value() : -1);
  };
  After(milliseconds(2500), [&] {
    look();
    panel.form.GainFocus(panel.txbCHact[1]);
  });
  After(seconds(12), [&] {
    look();
    panel.form.LoseFocus(panel.txbCHact[1]);
  });
  After(seconds(13), look);
  Run(seconds(14));
  ASSERT_EQ(bars.size(), 3U);
  EXPECT_NEAR(bars[0], 25, 2);
  EXPECT_EQ(bars[1], bars[0]);
  EXPECT_EQ(bars[2], -1);
}

TEST_F(Frm6SimulateTest, TheTriggerRunsForItsWholeSeconds) {
  auto eeprom = SampleEeprom(kPart88);
  Put(eeprom, 136, {64, 4});
  Put(eeprom, 138, {32, 128, 0});
  Show(eeprom);
  EXPECT_EQ(panel.trigger.txbDigTtime.Text(), "4");
  std::vector<std::string> outputs;
  const auto look = [&] { outputs.push_back(panel.outputs.txbOutOut[0].Text()); };
  After(seconds(1), [&] {
    look();
    EXPECT_TRUE(Click(panel.trigger.btnDigTrig));
  });
  for (const int moment : {2000, 4900, 5100}) After(milliseconds(moment), look);
  Run(seconds(6));
  EXPECT_THAT(outputs, ElementsAre("0", "50", "50", "0"));
  EXPECT_FALSE(panel.trigger.linDigTPsign.Visible());
}

TEST_F(Frm6SimulateTest, TheBarIsOnTheLineOfTheSignInForce) {
  EXPECT_TRUE(Click(panel.trigger.btnDigTrig));
  EXPECT_TRUE(panel.trigger.linDigTPsign.Visible());
  EXPECT_FALSE(panel.trigger.linDigTNsign.Visible());
  // The sample's 10 minutes are over.
  Run(std::chrono::minutes(11));
  EXPECT_FALSE(panel.trigger.linDigTPsign.Visible());
  EXPECT_TRUE(Click(panel.trigger.pctDigTPsign));
  EXPECT_TRUE(Click(panel.trigger.btnDigTrig));
  EXPECT_FALSE(panel.trigger.linDigTPsign.Visible());
  EXPECT_TRUE(panel.trigger.linDigTNsign.Visible());
}

TEST_F(Frm6SimulateTest, ATimeOf0StartsNothingAndHoldsARunningTrigger) {
  panel.trigger.txbDigTtime.SetText("0");
  EXPECT_TRUE(Click(panel.trigger.btnDigTrig));
  EXPECT_FALSE(panel.trigger.Active());
  panel.trigger.txbDigTtime.SetText("5");
  panel.trigger.lblDigTunit.SetText("Sec");
  EXPECT_TRUE(Click(panel.trigger.btnDigTrig));
  panel.trigger.txbDigTtime.SetText("0");
  Run(seconds(20));
  EXPECT_TRUE(panel.trigger.linDigTPsign.Visible());
  EXPECT_EQ(panel.trigger.linDigTPsign.Value(), 0);
  panel.trigger.txbDigTtime.SetText("5");
  Run(seconds(1));
  EXPECT_FALSE(panel.trigger.linDigTPsign.Visible());
}

TEST_F(Frm6SimulateTest, ATriggerThatRunsIsNotStartedAgain) {
  panel.trigger.txbDigTtime.SetText("10");
  panel.trigger.lblDigTunit.SetText("Sec");
  EXPECT_TRUE(Click(panel.trigger.btnDigTrig));
  After(seconds(8), [this] { EXPECT_TRUE(Click(panel.trigger.btnDigTrig)); });
  bool active = true;
  After(seconds(11), [&] { active = panel.trigger.Active(); });
  Run(seconds(12));
  EXPECT_FALSE(active);
}

TEST_F(Frm6SimulateTest, ATriggerTimeInMinutes) {
  panel.trigger.txbDigTtime.SetText("2");
  panel.trigger.lblDigTunit.SetText("Min");
  EXPECT_TRUE(Click(panel.trigger.btnDigTrig));
  std::vector<bool> active;
  for (const int second : {110, 130}) {
    After(seconds(second), [&] { active.push_back(panel.trigger.Active()); });
  }
  Run(seconds(140));
  EXPECT_THAT(active, ElementsAre(true, false));
}

TEST_F(Frm6SimulateTest, EnteringSimulatedModeLeavesTheBar) {
  EXPECT_TRUE(Click(panel.trigger.btnDigTrig));
  panel.SimMode(true);
  EXPECT_TRUE(panel.trigger.linDigTPsign.Visible());
}

TEST_F(Frm6SimulateTest, LeavingSimulatedModeHidesTheBar) {
  for (const char* level : {"29", "-29"}) {
    Show(SampleEeprom(kPart88));
    panel.SimMode(true);
    test::Type(panel.trigger.txbDigTlevel, level);
    EXPECT_TRUE(Click(panel.trigger.btnDigTrig));
    EXPECT_TRUE(panel.trigger.Active());
    EXPECT_TRUE(Click(panel.cbxSimulated));
    EXPECT_FALSE(panel.trigger.linDigTPsign.Visible());
    EXPECT_FALSE(panel.trigger.linDigTNsign.Visible());
    panel.SimMode(true);
    Run(std::chrono::minutes(11));
  }
}

}  // namespace
}  // namespace brelant
