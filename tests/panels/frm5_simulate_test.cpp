// SPDX-License-Identifier: GPL-3.0-or-later
#include "panels/loop_act.h"

namespace brelant {
namespace {

using test::Frm5Test;
using testing::ElementsAre;

/// The panel with nothing that feeds an output, base lines 0 and no shift, to be built up from there.
class Frm5SimulateTest : public Frm5Test {
 protected:
  Frm5SimulateTest() {
    SetRam(32, {47});
    SetRam(189, {0, 128, 0, 0, 0, 128, 0, 0});
    panel.SimMode(true);
    panel.FormUpdate();
    for (auto* field : panel.txbOutOut) field->SetText("0");
  }

  void MakeDigital(int output) { panel.form.Select(panel.optOut5Digital[output]); }
  /// A function on CO2 from 400 to 1400, which feeds the output.
  void Feed(int output, int function, bool sign, bool slope) {
    panel.rows.lblFchannel[function].SetText("CO2");
    panel.rows.txbFa[function].SetText("400");
    panel.rows.txbFb[function].SetText("1400");
    (output == 0 ? panel.rows.cbxFout[0] : panel.rows.cbxFout[1])[function].SetValue(1);
    panel.rows.functions.FunkTypeUpdate(function, false, sign, slope);
  }
  void SetCO2(const std::string& text) { panel.txbCHact[1].SetText(text); }
  std::string Simulated(int output) {
    panel.Simulate();
    return panel.txbOutOut[output].Text();
  }
};

TEST_F(Frm5SimulateTest, ABaseLineIsTheOutput) {
  struct Case {
    const char* base;
    const char* output;
  };
  for (const auto& [base, output] : {Case{"0", "0"}, Case{"37", "37"}, Case{"100", "100"}, Case{"-20", "0"},
                                     Case{"140", "100"}, Case{"12.5", "12"}, Case{"37.5", "38"}}) {
    panel.txbOutBaseLine[0].SetText(base);
    EXPECT_EQ(Simulated(0), output) << base;
    EXPECT_EQ(panel.txbOutOut[1].Text(), "0");
  }
}

TEST_F(Frm5SimulateTest, EveryShapeRampsFromAToBAndSaturates) {
  struct Case {
    bool sign;
    bool slope;
    const char* base;
    std::array<const char*, 5> outputs;  // at 300, 400, 650, 1400, 1500
  };
  for (const auto& [sign, slope, base, outputs] :
       {Case{true, true, "0", {"0", "0", "25", "100", "100"}},
        Case{true, false, "0", {"100", "100", "75", "0", "0"}},
        Case{false, false, "100", {"100", "100", "75", "0", "0"}},
        Case{false, true, "100", {"0", "0", "25", "100", "100"}}}) {
    Feed(0, 0, sign, slope);
    panel.txbOutBaseLine[0].SetText(base);
    static constexpr std::array<const char*, 5> kInputs{"300", "400", "650", "1400", "1500"};
    for (std::size_t i = 0; i < kInputs.size(); ++i) {
      SetCO2(kInputs[i]);
      EXPECT_EQ(Simulated(0), outputs[i]) << sign << slope << " at " << kInputs[i];
    }
  }
}

TEST_F(Frm5SimulateTest, ADigitalShapeContributesAsItsAnalogOne) {
  // A function that feeds both outputs has a digital picture and ramps the analog one all the same.
  MakeDigital(1);
  struct Case {
    bool sign;
    bool slope;
    const char* base;
    const char* output;
  };
  SetCO2("650");
  for (const auto& [sign, slope, base, output] :
       {Case{true, true, "0", "25"}, Case{true, false, "0", "75"}, Case{false, false, "100", "75"},
        Case{false, true, "100", "25"}}) {
    panel.rows.cbxFout[1][0].SetValue(1);
    Feed(0, 0, sign, slope);
    ASSERT_LE(panel.rows.functions.VisibleType(0).value_or(99), 3);
    panel.txbOutBaseLine[0].SetText(base);
    EXPECT_EQ(Simulated(0), output) << sign << slope;
  }
}

TEST_F(Frm5SimulateTest, NegativeShapesPullBelowZero) {
  SetCO2("650");
  Feed(0, 0, false, false);
  EXPECT_EQ(Simulated(0), "0");
  panel.txbOutBaseLine[0].SetText("60");
  EXPECT_EQ(Simulated(0), "35");
  Feed(0, 0, false, true);
  panel.txbOutBaseLine[0].SetText("80");
  EXPECT_EQ(Simulated(0), "5");
}

TEST_F(Frm5SimulateTest, TheSumIsLimitedAfterEachFunction) {
  // 50 + 100 is 100, less 25 is 75; limited at the end only it would be 100.
  panel.txbOutBaseLine[0].SetText("50");
  Feed(0, 0, true, true);
  panel.rows.txbFb[0].SetText("650");
  Feed(0, 1, false, false);
  SetCO2("650");
  EXPECT_EQ(Simulated(0), "75");
}

TEST_F(Frm5SimulateTest, TheOrderOfTheFunctionsMatters) {
  // 50 - 25 + 100 ends at 100.
  panel.txbOutBaseLine[0].SetText("50");
  Feed(0, 0, false, false);
  Feed(0, 1, true, true);
  panel.rows.txbFb[1].SetText("650");
  SetCO2("650");
  EXPECT_EQ(Simulated(0), "100");
}

TEST_F(Frm5SimulateTest, TheSumIsLimitedBelowToo) {
  // Twice -100 is -100, and 30 + 100 more is 30.
  Feed(0, 0, false, false);
  Feed(0, 1, false, false);
  Feed(0, 2, true, true);
  Feed(0, 3, true, true);
  panel.rows.txbFa[3].SetText("1400");
  panel.rows.txbFb[3].SetText("5400");
  SetCO2("2600");
  EXPECT_EQ(Simulated(0), "30");
}

TEST_F(Frm5SimulateTest, ALimitedSumIsWhatTheNextFunctionAddsTo) {
  // The base line of -100 is no floor of its own: -100 - 25 stays -100, + 100 is 0.
  panel.txbOutBaseLine[0].SetText("-100");
  Feed(0, 0, false, false);
  Feed(0, 1, true, true);
  panel.rows.txbFb[1].SetText("650");
  Feed(0, 2, true, true);
  SetCO2("650");
  EXPECT_EQ(Simulated(0), "25");
}

TEST_F(Frm5SimulateTest, EachOutputHasItsOwnFunctions) {
  Feed(0, 0, true, true);
  Feed(1, 1, true, false);
  SetCO2("650");
  panel.Simulate();
  EXPECT_THAT(Texts(panel.txbOutOut), ElementsAre("25", "75"));
}

TEST_F(Frm5SimulateTest, AFunctionTakesTheChannelOfItsName) {
  Feed(0, 0, true, true);
  panel.txbCHact[0].SetText("650");
  panel.txbCHact[1].SetText("900");
  panel.txbCHact[2].SetText("1150");
  EXPECT_EQ(Simulated(0), "50");
  panel.rows.lblFchannel[0].SetText("TEMP");
  EXPECT_EQ(Simulated(0), "25");
  panel.rows.lblFchannel[0].SetText("RH");
  EXPECT_EQ(Simulated(0), "75");
}

TEST_F(Frm5SimulateTest, AFunctionWithoutAChannelIsSkipped) {
  panel.txbOutBaseLine[0].SetText("40");
  Feed(0, 0, true, true);
  panel.rows.lblFchannel[0].SetText("OFF");
  panel.rows.txbFb[0].SetText("400");
  SetCO2("650");
  EXPECT_EQ(Simulated(0), "40");
}

TEST_F(Frm5SimulateTest, TheShiftButtonActsOnItsChannelAlone) {
  Feed(0, 0, true, true);
  Feed(1, 1, true, true);
  panel.rows.lblFchannel[1].SetText("RH");
  panel.txbCHact[1].SetText("400");
  panel.txbCHact[2].SetText("400");
  panel.lblShiftb.SetText("CO2");
  panel.txbShiftBamount.SetText("250");
  panel.Simulate();
  EXPECT_THAT(Texts(panel.txbOutOut), ElementsAre("25", "0"));
  panel.lblShiftb.SetText("RH");
  panel.Simulate();
  EXPECT_THAT(Texts(panel.txbOutOut), ElementsAre("0", "25"));
  panel.txbShiftBamount.SetText("-250");
  panel.txbCHact[2].SetText("900");
  panel.Simulate();
  EXPECT_THAT(Texts(panel.txbOutOut), ElementsAre("0", "25"));
}

TEST_F(Frm5SimulateTest, WithAAboveBBothLimitsHoldInOrder) {
  // x goes to b and then to a: q is 0.
  Feed(0, 0, true, false);
  panel.rows.txbFa[0].SetText("1400");
  panel.rows.txbFb[0].SetText("400");
  SetCO2("650");
  EXPECT_EQ(Simulated(0), "100");
}

TEST_F(Frm5SimulateTest, AnEqualToBLeavesBothOutputs) {
  panel.txbOutBaseLine[0].SetText("40");
  Feed(1, 1, true, true);
  panel.rows.txbFb[1].SetText("400");
  panel.txbOutOut[0].SetText("77");
  panel.txbOutOut[1].SetText("88");
  for (const char* value : {"300", "400", "500"}) {
    SetCO2(value);
    EXPECT_NO_THROW(panel.Simulate());
    EXPECT_THAT(Texts(panel.txbOutOut), ElementsAre("77", "88"));
  }
  EXPECT_TRUE(panel.FormUpdate());
}

TEST_F(Frm5SimulateTest, AnEqualToBOfAFunctionThatFeedsNothingIsNoFault) {
  panel.txbOutBaseLine[0].SetText("40");
  panel.rows.txbFa[0].SetText("400");
  panel.rows.txbFb[0].SetText("400");
  EXPECT_EQ(Simulated(0), "40");
}

// The trigger

TEST_F(Frm5SimulateTest, ATriggerThatDoesNotRunAddsNothing) {
  panel.trigger.cbxDigTout[0].SetValue(1);
  EXPECT_EQ(Simulated(0), "0");
}

TEST_F(Frm5SimulateTest, APositiveTriggerAddsItsLevel) {
  panel.trigger.cbxDigTout[0].SetValue(1);
  panel.trigger.linDigTPsign.SetVisible(true);
  panel.Simulate();
  EXPECT_THAT(Texts(panel.txbOutOut), ElementsAre("29", "0"));
  panel.txbOutBaseLine[0].SetText("90");
  EXPECT_EQ(Simulated(0), "100");
}

TEST_F(Frm5SimulateTest, ANegativeTriggerCountsDouble) {
  panel.trigger.cbxDigTout[1].SetValue(1);
  panel.trigger.linDigTNsign.SetVisible(true);
  panel.trigger.txbDigTlevel.SetText("-29");
  panel.txbOutBaseLine[0].SetText("100");
  panel.txbOutBaseLine[1].SetText("100");
  panel.Simulate();
  EXPECT_THAT(Texts(panel.txbOutOut), ElementsAre("100", "42"));
}

TEST_F(Frm5SimulateTest, TheTriggerComesAfterTheFunctions) {
  // 100 at the limit less 2 x 29.
  panel.txbOutBaseLine[0].SetText("80");
  Feed(0, 0, true, true);
  SetCO2("1400");
  panel.trigger.cbxDigTout[0].SetValue(1);
  panel.trigger.linDigTNsign.SetVisible(true);
  panel.trigger.txbDigTlevel.SetText("-29");
  EXPECT_EQ(Simulated(0), "42");
}

// Digital outputs

TEST_F(Frm5SimulateTest, ADigitalOutputIsOnOrOff) {
  MakeDigital(0);
  Feed(0, 0, true, true);
  struct Case {
    const char* input;
    const char* shown;
    const char* output;
  };
  for (const auto& [input, shown, output] :
       {Case{"300", "100", "0"}, Case{"400", "100", "0"}, Case{"1000", "0", "0"}, Case{"1000", "100", "100"},
        Case{"1000", "50", "0"}, Case{"401", "100", "100"}, Case{"1399", "0", "0"}, Case{"1400", "0", "100"},
        Case{"1500", "0", "100"}}) {
    SetCO2(input);
    panel.txbOutOut[0].SetText(shown);
    EXPECT_EQ(Simulated(0), output) << input << " from " << shown;
  }
}

TEST_F(Frm5SimulateTest, ADigitalOutputHasHysteresis) {
  MakeDigital(1);
  Feed(1, 0, true, true);
  const auto at = [&](const char* value) {
    SetCO2(value);
    return Simulated(1);
  };
  EXPECT_EQ(at("1000"), "0");
  EXPECT_EQ(at("1400"), "100");
  EXPECT_EQ(at("1000"), "100");
  EXPECT_EQ(at("401"), "100");
  EXPECT_EQ(at("400"), "0");
  EXPECT_EQ(at("1399"), "0");
}

TEST_F(Frm5SimulateTest, ADigitalOutputHasNoBaseLine) {
  MakeDigital(0);
  panel.txbOutBaseLine[0].SetText("100");
  EXPECT_EQ(Simulated(0), "0");
}

TEST_F(Frm5SimulateTest, ANegativeSumTurnsADigitalOutputOff) {
  MakeDigital(0);
  Feed(0, 0, false, false);
  SetCO2("650");
  panel.txbOutOut[0].SetText("100");
  EXPECT_EQ(Simulated(0), "0");
}

TEST_F(Frm5SimulateTest, ATriggerSwitchesADigitalOutput) {
  MakeDigital(0);
  panel.trigger.cbxDigTout[0].SetValue(1);
  panel.trigger.txbDigTlevel.SetText("100");
  EXPECT_EQ(Simulated(0), "0");
  panel.trigger.linDigTPsign.SetVisible(true);
  EXPECT_EQ(Simulated(0), "100");
}

TEST_F(Frm5SimulateTest, ASumAboveAHundredTurnsADigitalOutputOn) {
  MakeDigital(0);
  Feed(0, 0, true, true);
  SetCO2("1400");
  panel.trigger.cbxDigTout[0].SetValue(1);
  panel.trigger.linDigTPsign.SetVisible(true);
  EXPECT_EQ(Simulated(0), "100");
}

TEST_F(Frm5SimulateTest, TheFormSimulatesOnlyInSimulatedMode) {
  SetRam(190, {149, 31});
  panel.SimMode(false);
  panel.FormUpdate();
  EXPECT_EQ(panel.txbOutOut[0].Text(), "0");
  panel.SimMode(true);
  panel.FormUpdate();
  EXPECT_EQ(panel.txbOutOut[0].Text(), "33");
}

TEST_F(Frm5SimulateTest, TheLoopMakesAPassBeforeItWaitsForAnEvent) {
  panel.txbOutBaseLine[0].SetText("25");
  std::string seen;
  // The first event that could come.
  ground.pump.After(std::chrono::milliseconds(1), [&] { seen = panel.txbOutOut[0].Text(); });
  test::RunLoop(ground, panel, std::chrono::seconds(1));
  EXPECT_EQ(seen, "25");
}

}  // namespace
}  // namespace brelant
