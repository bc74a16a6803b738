// SPDX-License-Identifier: GPL-3.0-or-later
#include <cmath>
#include <random>

#include "panels/frm6_fixture.h"
#include "panels/transfer_curve.h"

namespace brelant {
namespace {

using test::Frm5Test;
using test::Frm6Test;
using test::kPart88;
using test::Put;
using test::SampleEeprom;
using testing::DoubleEq;
using testing::DoubleNear;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Optional;

/// What functions give at their ends a and b.
struct Ends {
  double atA;
  double atB;
};

/// The same contribution a second way: the straight line through the values at both ends.
double Between(const Ends& ends, double x, double a, double b) {
  if (x >= b) return ends.atB;
  if (x <= a) return ends.atA;
  return (ends.atA * (b - x) + ends.atB * (x - a)) / (b - a);
}

double Limited(double sum) {
  return sum < -100 ? -100 : sum > 100 ? 100 : sum;
}

/// Positive from 0 to 100, negative from -100 to 0 or the other way round.
Ends Signed(bool sign, bool slope) {
  if (sign) return slope ? Ends{0, 100} : Ends{100, 0};
  return slope ? Ends{-100, 0} : Ends{0, -100};
}
Ends TwoSided(bool slope) {
  return slope ? Ends{-100, 100} : Ends{100, -100};
}

/// The rows of both panels, fed by CO2 from 400 to 1400 unless told otherwise.
void Feed(FunctionRows& rows, int output, int function, bool sign, bool slope,
          const std::string& channel = "CO2") {
  rows.lblFchannel[function].SetText(channel);
  rows.txbFa[function].SetText("400");
  rows.txbFb[function].SetText("1400");
  rows.FeedsOf(output)[function].SetValue(1);
  rows.functions.FunkTypeUpdate(function, false, sign, slope);
}

std::vector<std::string> NamesOf(const std::vector<Transfer::Input>& inputs) {
  std::vector<std::string> names;
  for (const auto& input : inputs) names.push_back(input.name);
  return names;
}

/// Settings at random, the same ones in every run.
class Dice {
 public:
  int Throw(int least, int greatest) {
    return least + static_cast<int>(engine_() % static_cast<unsigned>(greatest - least + 1));
  }
  bool Flip() { return Throw(0, 1) == 1; }

 private:
  std::mt19937 engine_{42};
};

/// Nothing feeds an output, base lines are 0, there is no shift.
class Transfer5Test : public Frm5Test {
 protected:
  Transfer5Test() {
    SetRam(32, {47});
    SetRam(189, {0, 128, 0, 0, 0, 128, 0, 0});
    panel.SimMode(true);
    panel.FormUpdate();
    for (auto* field : panel.txbOutOut) field->SetText("0");
  }
  void MakeDigital(int output) { panel.form.Select(panel.optOut5Digital[output]); }
  void Feed(int output, int function, bool sign, bool slope, const std::string& channel = "CO2") {
    brelant::Feed(panel.rows, output, function, sign, slope, channel);
  }
  std::optional<double> At(double co2, double shown = 0, int output = 0) const {
    return transfer.PercentAt(output, "CO2", co2, shown);
  }

  const Transfer& transfer = panel;
};

TEST_F(Transfer5Test, TellsItsOutputs) {
  EXPECT_EQ(transfer.Outputs(), 2);
  EXPECT_EQ(transfer.NameOf(0), "Out 1");
  EXPECT_EQ(transfer.NameOf(1), "Out 2");
  MakeDigital(1);
  EXPECT_FALSE(transfer.IsDigital(0));
  EXPECT_TRUE(transfer.IsDigital(1));
  panel.txbOutOut[1].SetText("100");
  EXPECT_THAT(transfer.ShownOf(1), Optional(DoubleEq(100)));
  panel.txbOutOut[1].SetText("");
  EXPECT_EQ(transfer.ShownOf(1), std::nullopt);
}

TEST_F(Transfer5Test, EveryShapeRampsFromAToBUnrounded) {
  for (const bool sign : {true, false}) {
    for (const bool slope : {true, false}) {
      Feed(0, 0, sign, slope);
      panel.txbOutBaseLine[0].SetText(sign ? "0" : "100");
      for (const double x : {300.0, 400.0, 400.5, 655.0, 1399.0, 1400.0, 1500.0}) {
        const double expected = Between(Signed(sign, slope), x, 400, 1400) + (sign ? 0 : 100);
        EXPECT_THAT(At(x), Optional(DoubleNear(expected, 1e-9))) << sign << slope << " at " << x;
      }
    }
  }
  Feed(0, 0, true, true);
  panel.txbOutBaseLine[0].SetText("0");
  EXPECT_THAT(At(655), Optional(DoubleNear(25.5, 1e-9)));
}

TEST_F(Transfer5Test, TheSumIsLimitedAfterEachFunction) {
  // 50 + 100 is 100, less 25 is 75.
  panel.txbOutBaseLine[0].SetText("50");
  Feed(0, 0, true, true);
  panel.rows.txbFb[0].SetText("650");
  Feed(0, 1, false, false);
  EXPECT_THAT(At(650), Optional(DoubleNear(75, 1e-9)));
}

TEST_F(Transfer5Test, TheBaseLineIsThatOfAnAnalogOutputAlone) {
  panel.txbOutBaseLine[0].SetText("37.5");
  EXPECT_THAT(At(0), Optional(DoubleEq(37.5)));
  panel.txbOutBaseLine[0].SetText("100");
  MakeDigital(0);
  EXPECT_THAT(At(0), Optional(DoubleEq(0)));
}

TEST_F(Transfer5Test, TheOtherInputsStayAsTheyAre) {
  Feed(0, 0, true, true);
  Feed(0, 1, true, true, "RH");
  panel.txbCHact[1].SetText("1400");
  panel.txbCHact[2].SetText("600");
  // 25 of CO2 and 20 of RH, whatever CO2 is now.
  EXPECT_THAT(At(650), Optional(DoubleNear(45, 1e-9)));
  EXPECT_THAT(transfer.PercentAt(0, "RH", 500, 0), Optional(DoubleNear(100, 1e-9)));
}

TEST_F(Transfer5Test, ADigitalOutputIsWhatItWasBetweenTheEnds) {
  MakeDigital(0);
  Feed(0, 0, true, true);
  // On the panel it is on, which does not matter.
  panel.txbOutOut[0].SetText("100");
  for (const double shown : {0.0, 100.0}) {
    EXPECT_THAT(At(400, shown), Optional(DoubleEq(0)));
    EXPECT_THAT(At(900, shown), Optional(DoubleEq(shown)));
    EXPECT_THAT(At(1400, shown), Optional(DoubleEq(100)));
  }
  EXPECT_THAT(At(900, 50), Optional(DoubleEq(0)));
}

TEST_F(Transfer5Test, ATriggerThatRunsIsInIt) {
  Feed(0, 0, true, true);
  panel.trigger.cbxDigTout[0].SetValue(1);
  panel.trigger.txbDigTlevel.SetText("30");
  EXPECT_THAT(At(650), Optional(DoubleNear(25, 1e-9)));
  panel.trigger.linDigTPsign.SetVisible(true);
  EXPECT_THAT(At(650), Optional(DoubleNear(55, 1e-9)));
  EXPECT_THAT(At(650, 0, 1), Optional(DoubleEq(0)));
  panel.trigger.linDigTPsign.SetVisible(false);
  panel.trigger.linDigTNsign.SetVisible(true);
  panel.trigger.txbDigTlevel.SetText("-10");
  // A negative trigger counts double.
  EXPECT_THAT(At(650), Optional(DoubleNear(5, 1e-9)));
}

TEST_F(Transfer5Test, TheShiftButtonMovesItsChannel) {
  Feed(0, 0, true, true);
  Feed(1, 1, true, true, "RH");
  panel.lblShiftb.SetText("CO2");
  panel.txbShiftBamount.SetText("250");
  EXPECT_THAT(At(400), Optional(DoubleNear(25, 1e-9)));
  EXPECT_THAT(transfer.PercentAt(1, "RH", 650, 0), Optional(DoubleNear(25, 1e-9)));
  // 650 with it is where b of 1400 is reached: at 1150.
  EXPECT_THAT(transfer.InputsOf(0).at(0).ends, ElementsAre(150, 1150));
  EXPECT_THAT(transfer.InputsOf(1).at(0).ends, ElementsAre(400, 1400));
}

TEST_F(Transfer5Test, WithEqualEndsThereIsNothingToTellOfThatOutput) {
  Feed(0, 0, true, true);
  Feed(1, 1, true, true);
  panel.rows.txbFb[1].SetText("400");
  EXPECT_THAT(At(650, 0, 0), Optional(DoubleNear(25, 1e-9)));
  for (const double x : {300.0, 400.0, 500.0}) EXPECT_EQ(At(x, 0, 1), std::nullopt);
  EXPECT_THAT(transfer.InputsOf(1).at(0).ends, ElementsAre(400));
  EXPECT_EQ(TransferCurveOf(transfer, 1, transfer.InputsOf(1).at(0)), std::nullopt);
}

TEST_F(Transfer5Test, InputsAreTheLiveChannelsOfItsFunctions) {
  EXPECT_THAT(transfer.InputsOf(0), IsEmpty());
  Feed(0, 0, true, true, "RH");
  Feed(0, 1, true, true);
  Feed(0, 3, true, true);
  Feed(0, 4, true, true, "OFF");
  Feed(1, 2, true, true, "TEMP");
  panel.rows.txbFa[3].SetText("200");
  panel.rows.txbFb[3].SetText("1400");
  panel.rows.lblFaUnit[1].SetText("ppm");
  panel.rows.lblFaUnit[3].SetText("ppm");
  panel.txbCHact[1].SetText("812.5");
  panel.txbCHact[2].SetText("");
  const auto inputs = transfer.InputsOf(0);
  ASSERT_THAT(NamesOf(inputs), ElementsAre("RH", "CO2"));
  EXPECT_EQ(inputs[0].value, std::nullopt);
  EXPECT_THAT(inputs[1].value, Optional(DoubleEq(812.5)));
  EXPECT_EQ(inputs[1].unit, "ppm");
  EXPECT_THAT(inputs[1].ends, ElementsAre(200, 400, 1400));
  EXPECT_THAT(NamesOf(transfer.InputsOf(1)), ElementsAre("TEMP"));
}

TEST_F(Transfer5Test, AskingChangesNothing) {
  Feed(0, 0, true, true);
  const auto before = panel.form.Revision();
  At(650);
  transfer.InputsOf(0);
  EXPECT_EQ(panel.form.Revision(), before);
}

TEST_F(Transfer5Test, AtThePresentValueItIsWhatTheModelShows) {
  Dice dice;
  const std::array<std::string, 3> channels{"TEMP", "CO2", "RH"};
  for (int round = 0; round < 400; ++round) {
    for (int c = 0; c < 3; ++c) panel.txbCHact[c].SetText(std::to_string(dice.Throw(-50, 150)));
    panel.lblShiftb.SetText(channels.at(static_cast<std::size_t>(dice.Throw(0, 2))));
    panel.txbShiftBamount.SetText(std::to_string(dice.Throw(-30, 30)));
    panel.trigger.txbDigTlevel.SetText(std::to_string(dice.Throw(-60, 60)));
    const int line = dice.Throw(0, 2);
    panel.trigger.linDigTPsign.SetVisible(line == 1);
    panel.trigger.linDigTNsign.SetVisible(line == 2);
    for (int j = 0; j < frm5::kOutputs; ++j) {
      panel.form.Select(dice.Flip() ? panel.optOut5Digital[j] : panel.optOut5V[j]);
      panel.txbOutBaseLine[j].SetText(std::to_string(dice.Throw(-120, 120)));
      panel.trigger.cbxDigTout[j].SetValue(dice.Throw(0, 1));
      panel.txbOutOut[j].SetText(std::to_string(100 * dice.Throw(0, 1)));
    }
    struct Function {
      std::size_t channel;
      double a;
      double b;
      Ends ends;
    };
    std::vector<Function> functions;
    for (int i = 0; i < frm5::kFunctions; ++i) {
      const auto channel = static_cast<std::size_t>(dice.Throw(0, 2));
      const int a = dice.Throw(-60, 60);
      const int b = a + dice.Throw(1, 90);
      const bool sign = dice.Flip();
      const bool slope = dice.Flip();
      for (int j = 0; j < frm5::kOutputs; ++j) panel.rows.FeedsOf(j)[i].SetValue(dice.Throw(0, 1));
      panel.rows.lblFchannel[i].SetText(channels.at(channel));
      panel.rows.txbFa[i].SetText(std::to_string(a));
      panel.rows.txbFb[i].SetText(std::to_string(b));
      panel.rows.functions.FunkTypeUpdate(i, false, sign, slope);
      functions.push_back({channel, double(a), double(b), Signed(sign, slope)});
    }
    std::array<double, frm5::kOutputs> told{};
    std::array<double, frm5::kOutputs> expected{};
    for (int j = 0; j < frm5::kOutputs; ++j) {
      const double shown = std::stod(panel.txbOutOut[j].Text());
      const bool digital = transfer.IsDigital(j);
      double sum = digital ? 0 : std::stod(panel.txbOutBaseLine[j].Text());
      for (int i = 0; i < frm5::kFunctions; ++i) {
        const auto& function = functions[static_cast<std::size_t>(i)];
        if (panel.rows.FeedsOf(j)[i].Value() == 0) continue;
        double x = std::stod(panel.txbCHact[static_cast<int>(function.channel)].Text());
        if (channels.at(function.channel) == panel.lblShiftb.Text())
          x += std::stod(panel.txbShiftBamount.Text());
        sum = Limited(sum + Between(function.ends, x, function.a, function.b));
      }
      if (panel.trigger.cbxDigTout[j].Value() == 1)
        sum += line * std::stod(panel.trigger.txbDigTlevel.Text());
      sum = Limited(sum);
      // Sums of this kind that are meant to be 0 or 100 are not always exactly that.
      if (digital) sum = sum > 1e-9 && sum < 100 - 1e-9 ? shown : sum < 50 ? 0 : 100;
      const auto out = static_cast<std::size_t>(j);
      expected.at(out) = std::max(sum, 0.0);
      const auto inputs = transfer.InputsOf(j);
      const auto percent = inputs.empty()
                               ? transfer.PercentAt(j, "OFF", 0, shown)
                               : transfer.PercentAt(j, inputs.back().name, *inputs.back().value, shown);
      ASSERT_TRUE(percent.has_value());
      told.at(out) = *percent;
    }
    panel.Simulate();
    for (int j = 0; j < frm5::kOutputs; ++j) {
      const auto out = static_cast<std::size_t>(j);
      EXPECT_NEAR(told.at(out), expected.at(out), 1e-9) << round << " output " << j;
      EXPECT_EQ(panel.txbOutOut[j].Text(), std::to_string(std::lrint(told.at(out)))) << round;
    }
  }
}

/// Nothing feeds an output and base lines are 0. Live values: Temp 1, Temp 2, RH, CO2.
class Transfer6Test : public Frm6Test {
 protected:
  Transfer6Test() { ShowEmpty(0, kPart88); }

  void ShowEmpty(int variant, std::uint8_t part) {
    auto eeprom = SampleEeprom(part, variant);
    Put(eeprom, 138, {0, 128, 0, 0, 128, 0, 0, 128, 0, 0, 128, 0});
    Show(eeprom);
    panel.SimMode(true);
    for (auto* field : panel.outputs.txbOutOut) field->SetText("0");
  }
  void Feed(int output, int function, bool sign, bool slope, const std::string& channel = "CO2") {
    brelant::Feed(panel.rows, output, function, sign, slope, channel);
  }
  std::optional<double> At(double co2, double shown = 0, int output = 0) const {
    return transfer.PercentAt(output, "CO2", co2, shown);
  }
  void SetBase(int output, const std::string& text) { panel.outputs.txbOutBaseLine[output].SetText(text); }
  void MakeDigital(int output) { panel.form.Select(panel.outputs.optOut6Digital[output]); }

  const Transfer& transfer = panel;
};

TEST_F(Transfer6Test, TellsTheOutputsOfTheGenericFace) {
  EXPECT_EQ(transfer.Outputs(), 4);
  EXPECT_EQ(transfer.NameOf(3), "Out 4");
  ShowEmpty(2, kPart88);
  EXPECT_EQ(transfer.Outputs(), 3);
  for (const int variant : {1, 3, 4, 5}) {
    ShowEmpty(variant, kPart88);
    EXPECT_EQ(transfer.Outputs(), 0) << variant;
  }
  ShowEmpty(0, 223);
  EXPECT_EQ(transfer.NameOf(0), "Out 2");
  EXPECT_EQ(transfer.NameOf(1), "Out 1");
}

TEST_F(Transfer6Test, TheFirstThreeFunctionsAreTwoSided) {
  for (int function = 0; function < 6; ++function) {
    for (const bool sign : {true, false}) {
      for (const bool slope : {true, false}) {
        Feed(0, function, sign, slope);
        const auto ends = function < 3 ? TwoSided(slope) : Signed(sign, slope);
        for (const double x : {300.0, 400.0, 655.0, 1025.0, 1400.0, 1500.0}) {
          // From below and from above, so that no half is cut off.
          for (const double base : {60.0, -60.0}) {
            SetBase(0, std::to_string(static_cast<int>(base)));
            const double expected = Limited(base + Between(ends, x, 400, 1400));
            EXPECT_THAT(At(x), Optional(DoubleNear(expected < 0 ? 0 : expected, 1e-9)))
                << function << sign << slope << " at " << x << " on " << base;
          }
        }
      }
    }
    panel.rows.FeedsOf(0)[function].SetValue(0);
  }
}

TEST_F(Transfer6Test, TheDigitalInputIsInItWhileItIsActive) {
  Feed(0, 3, true, true);
  panel.outputs.cbxDigout[0].SetValue(1);
  panel.txbDigLevel.SetText("-20");
  EXPECT_THAT(At(900), Optional(DoubleNear(50, 1e-9)));
  panel.cbxDigActive.SetValue(1);
  EXPECT_THAT(At(900), Optional(DoubleNear(30, 1e-9)));
}

TEST_F(Transfer6Test, ATriggerThatRunsIsInItOnce) {
  Feed(0, 3, true, true);
  panel.trigger.cbxDigTout[0].SetValue(1);
  panel.trigger.txbDigTlevel.SetText("-20");
  EXPECT_THAT(At(900), Optional(DoubleNear(50, 1e-9)));
  panel.trigger.linDigTNsign.SetVisible(true);
  EXPECT_THAT(At(900), Optional(DoubleNear(30, 1e-9)));
}

TEST_F(Transfer6Test, AnInvertedOutputGivesTheAmount) {
  Feed(0, 3, false, false);
  EXPECT_THAT(At(650), Optional(DoubleEq(0)));
  panel.outputs.cbxOut6Invert[0].SetValue(1);
  EXPECT_THAT(At(650), Optional(DoubleNear(25, 1e-9)));
}

TEST_F(Transfer6Test, ADigitalOutputKeepsWhatItShows) {
  MakeDigital(0);
  Feed(0, 3, true, true);
  for (const double shown : {0.0, 33.0, 100.0}) EXPECT_THAT(At(900, shown), Optional(DoubleEq(shown)));
  EXPECT_THAT(At(400, 100), Optional(DoubleEq(0)));
  EXPECT_THAT(At(1400, 0), Optional(DoubleEq(100)));
  SetBase(0, "30");
  EXPECT_THAT(At(400, 100), Optional(DoubleEq(100))) << "it has its base line";
}

TEST_F(Transfer6Test, EqualEndsTellNothing) {
  Feed(3, 5, true, true);
  panel.rows.txbFa[5].SetText("1400");
  EXPECT_EQ(At(900, 0, 3), std::nullopt);
  EXPECT_THAT(At(900, 0, 2), Optional(DoubleEq(0)));
}

TEST_F(Transfer6Test, AChannelThatThePanelDoesNotShowIsNoInput) {
  Feed(0, 3, true, true, "AH");
  SetBase(0, "7");
  EXPECT_THAT(transfer.InputsOf(0), IsEmpty());
  EXPECT_THAT(transfer.PercentAt(0, "CO2", 900, 0), Optional(DoubleEq(7)));
}

TEST_F(Transfer6Test, AtThePresentValueItIsWhatTheModelShows) {
  Dice dice;
  constexpr int kOutputs = platform6::OutputRows::kOutputs;
  const std::array<std::string, 4> channels{"Temp 1", "Temp 2", "RH", "CO2"};
  for (int round = 0; round < 400; ++round) {
    for (int c = 0; c < 4; ++c) panel.txbCHact[c].SetText(std::to_string(dice.Throw(-50, 150)));
    panel.trigger.txbDigTlevel.SetText(std::to_string(dice.Throw(-60, 60)));
    panel.trigger.linDigTPsign.SetVisible(dice.Flip());
    panel.txbDigLevel.SetText(std::to_string(dice.Throw(-60, 60)));
    panel.cbxDigActive.SetValue(dice.Throw(0, 1));
    for (int j = 0; j < kOutputs; ++j) {
      panel.form.Select(dice.Flip() ? panel.outputs.optOut6Digital[j] : panel.outputs.optOut6Analog[j]);
      SetBase(j, std::to_string(dice.Throw(-120, 120)));
      panel.trigger.cbxDigTout[j].SetValue(dice.Throw(0, 1));
      panel.outputs.cbxDigout[j].SetValue(dice.Throw(0, 1));
      panel.outputs.cbxOut6Invert[j].SetValue(dice.Throw(0, 1));
      panel.outputs.txbOutOut[j].SetText(std::to_string(dice.Throw(0, 100)));
    }
    for (int i = 0; i < frm6::kFunctions; ++i) {
      const int a = dice.Throw(-60, 60);
      for (int j = 0; j < kOutputs; ++j) panel.rows.FeedsOf(j)[i].SetValue(dice.Throw(0, 1));
      panel.rows.lblFchannel[i].SetText(channels.at(static_cast<std::size_t>(dice.Throw(0, 3))));
      panel.rows.txbFa[i].SetText(std::to_string(a));
      panel.rows.txbFb[i].SetText(std::to_string(a + dice.Throw(1, 90)));
      panel.rows.functions.FunkTypeUpdate(i, false, dice.Flip(), dice.Flip());
    }
    std::array<double, kOutputs> told{};
    for (int j = 0; j < kOutputs; ++j) {
      const auto inputs = transfer.InputsOf(j);
      const double shown = *transfer.ShownOf(j);
      const auto percent = inputs.empty()
                               ? transfer.PercentAt(j, "OFF", 0, shown)
                               : transfer.PercentAt(j, inputs.front().name, *inputs.front().value, shown);
      ASSERT_TRUE(percent.has_value());
      told.at(static_cast<std::size_t>(j)) = *percent;
    }
    panel.Simulate();
    for (int j = 0; j < kOutputs; ++j) {
      EXPECT_EQ(panel.outputs.txbOutOut[j].Text(),
                std::to_string(std::lrint(told.at(static_cast<std::size_t>(j)))))
          << round << " output " << j;
    }
  }
}

// The curve

/// One output and one input, with what the test makes of them.
class OneOutput : public Transfer {
 public:
  explicit OneOutput(bool digital) : digital_(digital) {}
  int Outputs() const override { return 1; }
  std::string NameOf(int /*output*/) const override { return "Out 1"; }
  bool IsDigital(int /*output*/) const override { return digital_; }
  std::vector<Input> InputsOf(int /*output*/) const override { return {}; }
  std::optional<double> ShownOf(int /*output*/) const override { return {}; }
  std::optional<double> PercentAt(int /*output*/, const std::string& channel, double value,
                                  double shown) const override {
    EXPECT_EQ(channel, "CO2");
    if (!digital_) return value / 10;
    return value >= 300 ? 100 : value <= 100 ? 0 : shown;
  }

 private:
  bool digital_;
};

Transfer::Input InputFrom(double a, double b, std::optional<double> value) {
  return {"CO2", "ppm", value, {a, b}};
}

TEST(TransferCurveTest, ReachesFromBelowAllEndsAndThePresentValueToAboveThem) {
  struct Case {
    std::optional<double> value;
    double least;
    double greatest;
  };
  for (const auto& [value, least, greatest] :
       {Case{std::nullopt, 100, 300}, Case{200, 100, 300}, Case{50, 50, 300}, Case{700, 100, 700}}) {
    const auto curve = TransferCurveOf(OneOutput(false), 0, InputFrom(100, 300, value)).value();
    EXPECT_LT(curve.least, least);
    EXPECT_GT(curve.greatest, greatest);
    EXPECT_GT(curve.least, least - (greatest - least) / 2) << "not far away";
    EXPECT_LT(curve.greatest, greatest + (greatest - least) / 2);
    EXPECT_EQ(curve.rising.front().input, curve.least);
    EXPECT_EQ(curve.rising.back().input, curve.greatest);
  }
}

TEST(TransferCurveTest, HasAPointAtEveryStepAndAtBothEnds) {
  const auto curve = TransferCurveOf(OneOutput(false), 0, InputFrom(100.1, 299.7, {})).value();
  EXPECT_EQ(curve.rising.size(), kTransferSteps + 1 + 2U);
  EXPECT_THAT(curve.falling, IsEmpty());
  const auto has = [&](double input) {
    return std::count(curve.rising.begin(), curve.rising.end(), TransferPoint{input, input / 10});
  };
  EXPECT_EQ(has(100.1), 1);
  EXPECT_EQ(has(299.7), 1);
  for (std::size_t i = 1; i < curve.rising.size(); ++i) {
    EXPECT_LT(curve.rising[i - 1].input, curve.rising[i].input);
  }
}

/// The input at which a way of a digital output jumps; it must be upright, and the only one.
double JumpOf(const std::vector<TransferPoint>& way, double from, double to) {
  EXPECT_EQ(way.front().percent, from);
  EXPECT_EQ(way.back().percent, to);
  std::vector<double> jumps;
  for (std::size_t i = 1; i < way.size(); ++i) {
    if (way[i].percent == way[i - 1].percent) continue;
    EXPECT_EQ(way[i].input, way[i - 1].input);
    jumps.push_back(way[i].input);
  }
  EXPECT_EQ(jumps.size(), 1U);
  return jumps.empty() ? NAN : jumps.front();
}

TEST(TransferCurveTest, ADigitalOutputGoesUpAtBAndDownAtA) {
  const auto curve = TransferCurveOf(OneOutput(true), 0, InputFrom(100, 300, 200)).value();
  EXPECT_EQ(JumpOf(curve.rising, 0, 100), 300);
  EXPECT_EQ(JumpOf(curve.falling, 100, 0), 100);
  EXPECT_EQ(curve.falling.front().input, curve.greatest);
}

TEST(TransferCurveTest, AWidthOfNothingIsWidened) {
  const auto curve = TransferCurveOf(OneOutput(false), 0, {"CO2", "", 400, {400}}).value();
  EXPECT_LT(curve.least, 400);
  EXPECT_GT(curve.greatest, 400);
}

TEST_F(Transfer6Test, TheCurveOfADigitalOutputIsALoopOnThePanelToo) {
  MakeDigital(0);
  Feed(0, 3, true, true);
  panel.txbCHact[3].SetText("900");
  const auto curve = TransferCurveOf(transfer, 0, transfer.InputsOf(0).at(0)).value();
  EXPECT_EQ(JumpOf(curve.rising, 0, 100), 1400);
  EXPECT_EQ(JumpOf(curve.falling, 100, 0), 400);
}

}  // namespace
}  // namespace brelant
