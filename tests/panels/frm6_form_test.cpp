// SPDX-License-Identifier: GPL-3.0-or-later
#include "panels/frm6_fixture.h"

namespace brelant {
namespace {

using test::Click;
using test::Frm6Test;
using test::kPart88;
using test::Put;
using test::SampleEeprom;
using test::Texts;
using test::Type;
using test::Values;
using test::Visibles;
using testing::Each;
using testing::ElementsAre;

/// The generic face of frm6 on the sample.
class Frm6FormTest : public Frm6Test {
 protected:
  Frm6FormTest() { Show(SampleEeprom(kPart88)); }

  /// The image holds the sample, but for these bytes.
  void ExpectChanged(std::size_t address, std::initializer_list<std::uint8_t> bytes) {
    auto expected = SampleEeprom(kPart88);
    Put(expected, address, bytes);
    EXPECT_EQ(Eeprom(), expected);
  }
  std::vector<int> Types() {
    std::vector<int> types;
    for (int i = 0; i < 6; ++i) types.push_back(panel.rows.functions.VisibleType(i).value_or(-1));
    return types;
  }
  void Choose(Control& label, std::size_t choice) {
    ground.ui.choices.emplace_back(choice);
    EXPECT_TRUE(Click(label)) << label.Name();
  }
};

// Filling

TEST_F(Frm6FormTest, ShowsTheGeneralFields) {
  EXPECT_EQ(panel.txbSN.Text(), "8801042");
  EXPECT_EQ(panel.txbID.Text(), "7");
  EXPECT_THAT(Texts(panel.lblDisp), ElementsAre("Temp 1", "CO2", "Temp 2", "RH"));
  EXPECT_EQ(panel.cbxSimulated.Text(), "Off line");
}

TEST_F(Frm6FormTest, CaptionsAreThoseOfThisPanel) {
  EXPECT_EQ(Entry("CalTemp").Text(), "Temp");
  EXPECT_EQ(Entry("mCalCO2").Text(), "CO2 single point");
  EXPECT_EQ(panel.cbxDigActive.Text(), "Active");
  for (const auto& names : {Texts(panel.outputs.optOut6Analog), Texts(panel.outputs.optOut6Digital),
                            Texts(panel.outputs.optOut6TMO), Texts(panel.outputs.cbxOut6Invert)}) {
    EXPECT_THAT(names, Each(names.front()));
    EXPECT_NE(names.front(), "");
  }
}

TEST_F(Frm6FormTest, TheMenusOfChannelsAreHiddenAndOnlyPoppedUp) {
  EXPECT_FALSE(Entry("mChannels").Visible());
  EXPECT_FALSE(Entry("mFChannels").Visible());
  for (const auto* entry : panel.mCHannel) EXPECT_EQ(entry->parent, "mChannels");
  for (const auto* entry : panel.mFchannel) EXPECT_EQ(entry->parent, "mFChannels");
}

TEST_F(Frm6FormTest, MakingItFitASensorShowsTheMode) {
  panel.cbxSimulated.SetVisible(false);
  EXPECT_TRUE(panel.FormUpdateInit());
  EXPECT_TRUE(panel.cbxSimulated.Visible());
}

TEST_F(Frm6FormTest, TheHighestIdIs29AndItIsStoredWithTheNextEdit) {
  Type(panel.txbID, "35");
  EXPECT_EQ(panel.txbID.Text(), "29");
  EXPECT_EQ(Eeprom(), SampleEeprom(kPart88));
  Type(panel.txbID, "29");
  EXPECT_EQ(panel.txbID.Text(), "29");
  Type(panel.rows.txbFa[0], "400");
  ExpectChanged(32, {29});
}

TEST_F(Frm6FormTest, WhatOnlyShowsTakesNoEdit) {
  const auto& face = panel.sequential;
  for (const auto* field : {&panel.txbSN, &panel.vav.txbOutV1OutVAV, &panel.vav.txbOutV1Out,
                            &face.txbV4Out1Out, &face.txbV4Out2Out}) {
    EXPECT_FALSE(field->Editable()) << field->Name();
  }
  for (const auto* fields : {&panel.outputs.txbOutOut, &panel.jumper.txb6v3AN}) {
    for (const auto* field : *fields) EXPECT_FALSE(field->Editable()) << field->Name();
  }
}

TEST_F(Frm6FormTest, LiveValuesAreTypedInSimulatedModeOnly) {
  for (auto* field : panel.txbCHact) EXPECT_FALSE(field->Editable()) << field->Name();
  panel.txbCHact[0].SetText("21");
  panel.rows.txbFa[0].SetText("401");
  Type(panel.txbCHact[0], "33");
  EXPECT_EQ(panel.txbCHact[0].Text(), "21");
  EXPECT_EQ(panel.txbCHact[0].Back(), test::kFieldBack);
  EXPECT_EQ(Eeprom(), SampleEeprom(kPart88));
  panel.SimMode(true);
  for (auto* field : panel.txbCHact) EXPECT_TRUE(field->Editable()) << field->Name();
  Type(panel.txbCHact[0], "33");
  EXPECT_EQ(panel.txbCHact[0].Text(), "33");
  // Leaving it takes the form.
  ExpectChanged(108, {25});
}

TEST_F(Frm6FormTest, EveryFieldChangesItsColoursAndIsTakenWhenItIsLeft) {
  for (auto* field : {&panel.rows.txbFa[5], &panel.rows.txbFb[0], &panel.outputs.txbOutBaseLine[3],
                      &panel.outputs.txbOutIntTime[0], &panel.txbDigLevel, &panel.trigger.txbDigTlevel,
                      &panel.trigger.txbDigTtime}) {
    Show(SampleEeprom(kPart88));
    panel.rows.txbFa[0].SetText("401");
    panel.form.GainFocus(*field);
    EXPECT_EQ(field->Back(), test::kWhite) << field->Name();
    EXPECT_EQ(field->Fore(), test::kBlack) << field->Name();
    panel.form.LoseFocus(*field);
    EXPECT_EQ(field->Back(), test::kFieldBack) << field->Name();
    EXPECT_EQ(field->Fore(), test::kYellow) << field->Name();
    ExpectChanged(108, {25});
  }
}

TEST_F(Frm6FormTest, ShowsTheFunctions) {
  EXPECT_THAT(Texts(panel.rows.lblFchannel), ElementsAre("CO2", "Temp 1", "RH", "CO2", "Temp 2", "CO2"));
  EXPECT_THAT(Texts(panel.rows.txbFa), ElementsAre("400", "18", "40", "800", "-10", "2000"));
  EXPECT_THAT(Texts(panel.rows.txbFb), ElementsAre("1400", "26", "60", "1000", "0", "3000"));
  EXPECT_THAT(Texts(panel.rows.lblFaUnit), ElementsAre("ppm", "C", "%", "ppm", "C", "ppm"));
  EXPECT_THAT(Texts(panel.rows.lblFbUnit), ElementsAre("ppm", "C", "%", "ppm", "C", "ppm"));
}

TEST_F(Frm6FormTest, ShowsWhatFeedsWhat) {
  EXPECT_THAT(Values(panel.rows.FeedsOf(0)), ElementsAre(1, 0, 0, 1, 0, 0));
  EXPECT_THAT(Values(panel.rows.FeedsOf(1)), ElementsAre(0, 1, 0, 0, 0, 0));
  EXPECT_THAT(Values(panel.rows.FeedsOf(2)), ElementsAre(0, 0, 0, 0, 1, 0));
  EXPECT_THAT(Values(panel.rows.FeedsOf(3)), ElementsAre(0, 0, 0, 0, 0, 1));
  EXPECT_THAT(Values(panel.trigger.cbxDigTout), ElementsAre(1, 0, 0, 0));
  EXPECT_THAT(Values(panel.outputs.cbxDigout), ElementsAre(0, 0, 1, 0));
}

TEST_F(Frm6FormTest, ShowsTheOutputs) {
  EXPECT_THAT(Texts(panel.outputs.txbOutBaseLine), ElementsAre("0", "100", "-100", "1"));
  EXPECT_THAT(Texts(panel.outputs.txbOutIntTime), ElementsAre("16", "2", "256", "4"));
  EXPECT_THAT(Values(panel.outputs.cbxOut6Invert), ElementsAre(0, 1, 0, 0));
  EXPECT_THAT(Values(panel.outputs.optOut6Analog), ElementsAre(1, 1, 0, 0));
  EXPECT_THAT(Values(panel.outputs.optOut6Digital), ElementsAre(0, 0, 1, 0));
  EXPECT_THAT(Values(panel.outputs.optOut6TMO), ElementsAre(0, 0, 0, 1));
}

TEST_F(Frm6FormTest, ShowsTheDigitalBlocksRounded) {
  // 38 / 127 is 29.92 % and 37 / 127 is 29.13 %.
  EXPECT_EQ(panel.txbDigLevel.Text(), "-30");
  EXPECT_FALSE(panel.pctDigPSign.Visible());
  EXPECT_TRUE(panel.pctDigNSign.Visible());
  EXPECT_EQ(panel.trigger.txbDigTlevel.Text(), "29");
  EXPECT_TRUE(panel.trigger.pctDigTPsign.Visible());
  EXPECT_FALSE(panel.trigger.pctDigTNsign.Visible());
  EXPECT_EQ(panel.trigger.txbDigTtime.Text(), "10");
  EXPECT_EQ(panel.trigger.lblDigTunit.Text(), "Min");
}

TEST_F(Frm6FormTest, AFormOnTheGrainIsTakenBackByteForByte) {
  EXPECT_TRUE(panel.FormRead());
  EXPECT_EQ(Eeprom(), SampleEeprom(kPart88));
}

TEST_F(Frm6FormTest, ShowsTheDisplayChannelsOfEachNibble) {
  SetEeprom(50, {0x01, 0xED});
  panel.FormUpdate();
  EXPECT_THAT(Texts(panel.lblDisp), ElementsAre("Out 2", "Out 1", "Error", "Ch 14"));
  SetEeprom(50, {0xF9, 0xCA});
  panel.FormUpdate();
  EXPECT_THAT(Texts(panel.lblDisp), ElementsAre("Out 3", "Ch 15", "Out 4", "CO"));
  EXPECT_TRUE(panel.FormRead());
  EXPECT_THAT(Eeprom(50, 2), ElementsAre(0xF9, 0xCA));
}

TEST_F(Frm6FormTest, ADisplayChannelIsChosenAmongThoseThatArePresent) {
  Choose(panel.lblDisp[1], 4);
  EXPECT_THAT(ground.ui.popups, ElementsAre(ElementsAre("Out 1", "Out 2", "Temp 1", "Temp 2", "RH", "Out 3",
                                                        "Out 4", "CO2", "Error")));
  ExpectChanged(50, {0x62, 0x63});
}

TEST_F(Frm6FormTest, ACaptionThatNoChannelHasStoresChannel0) {
  panel.lblDisp[0].SetText("nonsense");
  panel.lblDisp[3].SetText("");
  EXPECT_TRUE(panel.FormRead());
  ExpectChanged(50, {0xB0, 0x03});
}

TEST_F(Frm6FormTest, TheInputOfAFunctionIsItsChannelLess2) {
  Choose(panel.rows.lblFchannel[4], 3);
  // No output is an input.
  EXPECT_THAT(ground.ui.popups, ElementsAre(ElementsAre("Temp 1", "Temp 2", "RH", "CO2")));
  EXPECT_EQ(panel.rows.lblFchannel[4].Text(), "CO2");
  EXPECT_EQ(panel.rows.txbFa[4].Text(), "-1000");
  EXPECT_EQ(panel.rows.lblFaUnit[4].Text(), "ppm");
  ExpectChanged(126, {9});
}

TEST_F(Frm6FormTest, ChoosingAnInputTakesTheFormFirst) {
  panel.rows.txbFa[0].SetText("401");
  Choose(panel.rows.lblFchannel[4], 3);
  auto expected = SampleEeprom(kPart88);
  expected[108] = 25;
  expected[126] = 9;
  EXPECT_EQ(Eeprom(), expected);
}

TEST_F(Frm6FormTest, AnInputThatNoMenuHasIsShownWithoutAName) {
  for (const int input : {11, 15, 200}) {
    SetEeprom(106, {input});
    EXPECT_TRUE(panel.FormUpdate());
    EXPECT_EQ(panel.rows.lblFchannel[0].Text(), "") << input;
    EXPECT_THAT(Eeprom(106, 1), ElementsAre(input));
  }
}

TEST_F(Frm6FormTest, OnlyOneTemperatureHasNoNumberAndIsFoundByItsName) {
  auto eeprom = SampleEeprom(kPart88);
  eeprom[98] = 2;
  Show(eeprom);
  Choose(panel.rows.lblFchannel[0], 0);
  EXPECT_THAT(ground.ui.popups.back(), ElementsAre("Temp", "CO2"));
  EXPECT_THAT(Eeprom(106, 1), ElementsAre(1));
}

// Words of functions

TEST_F(Frm6FormTest, FunctionWordsTakeTheirFlagsFromThePicture) {
  Type(panel.rows.txbFa[3], "-4000");
  Type(panel.rows.txbFb[4], "12.345");
  // 5000 - 4000 = 3 x 256 + 232 with the sign; 5000 + 1234 = 24 x 256 + 90 with the slope.
  EXPECT_THAT(Eeprom(121, 5), ElementsAre(9, 131, 232, 23, 112));
  EXPECT_THAT(Eeprom(126, 5), ElementsAre(1, 15, 160, 152, 90));
  EXPECT_EQ(panel.rows.txbFb[4].Text(), "12.34");
}

TEST_F(Frm6FormTest, AFunctionWithoutASignKeepsItsSignFlag) {
  for (const int flag : {0, 128}) {
    SetEeprom(106, {9, flag + 21, 24, 153, 0});
    panel.FormUpdate();
    ASSERT_EQ(Types()[0], 8);
    EXPECT_TRUE(Click(Entry("pctFPslope(0)")));
    EXPECT_THAT(Eeprom(106, 5), ElementsAre(9, flag + 21, 24, 25, 0));
    EXPECT_EQ(Types()[0], 9);
  }
}

TEST_F(Frm6FormTest, TheFirstThreeFunctionsHaveNoSign) {
  EXPECT_THAT(Types(), ElementsAre(8, 9, 8, 6, 2, 7));
}

TEST_F(Frm6FormTest, WhatFeedsADigitalOutputHasADigitalShape) {
  for (int output = 0; output < 4; ++output) {
    Show(SampleEeprom(kPart88));
    for (int i = 0; i < 6; ++i) {
      for (int j = 0; j < 4; ++j) panel.rows.FeedsOf(j)[i].SetValue(j == output ? 1 : 0);
    }
    EXPECT_TRUE(Click(panel.outputs.optOut6Digital[output]));
    EXPECT_THAT(Types(), ElementsAre(10, 11, 10, 1, 2, 0)) << output;
    EXPECT_TRUE(Click(panel.outputs.optOut6TMO[output]));
    // Output 2 is digital by itself; nothing feeds it now unless it is this one.
    EXPECT_THAT(Types(), ElementsAre(8, 9, 8, 6, 5, 7)) << output;
  }
}

TEST_F(Frm6FormTest, APictureStepsOnInItsClass) {
  EXPECT_TRUE(Click(Entry("pctFPsignNslope(3)")));
  EXPECT_EQ(Types()[3], 7);
  EXPECT_THAT(Eeprom(121, 5), ElementsAre(9, 150, 168, 151, 112));
  EXPECT_TRUE(Click(Entry("pctFPsignPslope(3)")));
  EXPECT_EQ(Types()[3], 4);
  EXPECT_THAT(Eeprom(121, 5), ElementsAre(9, 22, 168, 23, 112));
}

// Outputs

TEST_F(Frm6FormTest, BaseLinesAreCutToWholePercentAndStoredRoundedUp) {
  struct Case {
    const char* typed;
    int byte;
    const char* shown;
  };
  for (const auto& [typed, byte, shown] :
       {Case{"100", 192, "100"}, Case{"1", 129, "1"}, Case{"0", 128, "0"}, Case{"2", 130, "3"},
        Case{"-1", 128, "0"}, Case{"-2", 127, "-2"}, Case{"-199", 1, "-199"}, Case{"-200", 0, "-200"},
        Case{"198", 255, "198"}, Case{"1.5625", 129, "1"}, Case{"1.5626", 130, "3"}}) {
    Type(panel.outputs.txbOutBaseLine[0], typed);
    EXPECT_THAT(Eeprom(139, 1), ElementsAre(byte)) << typed;
    EXPECT_EQ(panel.outputs.txbOutBaseLine[0].Text(), shown) << typed;
  }
}

TEST_F(Frm6FormTest, ABaseLineThatNoByteHoldsIsTheHighestByte) {
  for (const char* typed : {"199", "200", "201", "1000"}) {
    Type(panel.outputs.txbOutBaseLine[2], typed);
    EXPECT_THAT(Eeprom(145, 1), ElementsAre(255)) << typed;
    EXPECT_EQ(panel.outputs.txbOutBaseLine[2].Text(), "198") << typed;
  }
}

TEST_F(Frm6FormTest, ABaseLineOutOfRangeIsCorrectedInItsField) {
  panel.outputs.txbOutBaseLine[0].SetText("250");
  panel.outputs.txbOutBaseLine[1].SetText("-250");
  panel.outputs.txbOutBaseLine[2].SetText("150.5");
  EXPECT_TRUE(panel.FormRead());
  EXPECT_EQ(panel.outputs.txbOutBaseLine[0].Text(), "200");
  EXPECT_EQ(panel.outputs.txbOutBaseLine[1].Text(), "-200");
  EXPECT_EQ(panel.outputs.txbOutBaseLine[2].Text(), "150.5");
  EXPECT_THAT(Eeprom(142, 1), ElementsAre(0));
}

TEST_F(Frm6FormTest, IntegrationTimesArePowersOfTwoUpTo256) {
  struct Case {
    const char* typed;
    int exponent;
    const char* shown;
  };
  for (const auto& [typed, exponent, shown] :
       {Case{"3", 0, "2"}, Case{"4", 1, "4"}, Case{"1", 0, "2"}, Case{"-5", 0, "2"}, Case{"0", 0, "2"},
        Case{"255", 6, "128"}, Case{"256", 7, "256"}, Case{"1000", 7, "256"}}) {
    Type(panel.outputs.txbOutIntTime[3], typed);
    // The other bits of the byte stay.
    EXPECT_THAT(Eeprom(149, 1), ElementsAre(128 + 64 + 8 + exponent)) << typed;
    EXPECT_EQ(panel.outputs.txbOutIntTime[3].Text(), shown) << typed;
  }
}

TEST_F(Frm6FormTest, ATimeBelow2IsExponent0AlsoWhereItsFieldWasNotLeft) {
  for (const char* text : {"1", "1.9", "0.3"}) {
    SetEeprom(149, {128 + 64 + 8 + 5});
    panel.FormUpdate();
    panel.outputs.txbOutIntTime[3].SetText(text);
    EXPECT_TRUE(panel.FormRead());
    EXPECT_THAT(Eeprom(149, 1), ElementsAre(128 + 64 + 8)) << text;
  }
}

TEST_F(Frm6FormTest, ATimeThatIsNoNumberAbove0IsRefusedAndNothingIsTaken) {
  for (const char* text : {"0", "-4", "", "x"}) {
    Show(SampleEeprom(kPart88));
    panel.txbID.SetText("12");
    panel.rows.txbFa[0].SetText("401");
    panel.outputs.txbOutBaseLine[0].SetText("100");
    panel.outputs.txbOutIntTime[3].SetText(text);
    ground.session.LastError.clear();
    EXPECT_FALSE(panel.FormRead()) << text;
    EXPECT_NE(ground.session.LastError, "") << text;
    EXPECT_EQ(Eeprom(), SampleEeprom(kPart88)) << text;
  }
}

TEST_F(Frm6FormTest, EveryTickHasItsBit) {
  for (int j = 0; j < 4; ++j) {
    const auto record = static_cast<std::size_t>(138 + 3 * j);
    SetEeprom(138, {0, 128, 0, 0, 128, 0, 0, 128, 0, 0, 128, 0});
    panel.FormUpdate();
    for (int i = 0; i < 5; ++i) {
      EXPECT_TRUE(Click(panel.rows.FeedsOf(j)[i]));
      EXPECT_THAT(Eeprom(record, 3), ElementsAre(1 << i, 128, 0));
      EXPECT_TRUE(Click(panel.rows.FeedsOf(j)[i]));
    }
    EXPECT_TRUE(Click(panel.rows.FeedsOf(j)[5]));
    EXPECT_THAT(Eeprom(record, 3), ElementsAre(0, 128, 128));
    EXPECT_TRUE(Click(panel.trigger.cbxDigTout[j]));
    EXPECT_THAT(Eeprom(record, 3), ElementsAre(32, 128, 128));
    EXPECT_TRUE(Click(panel.outputs.cbxDigout[j]));
    EXPECT_THAT(Eeprom(record, 3), ElementsAre(32, 128, 128 + 32));
    EXPECT_TRUE(Click(panel.outputs.cbxOut6Invert[j]));
    EXPECT_THAT(Eeprom(record, 3), ElementsAre(32, 128, 128 + 32 + 16));
    EXPECT_TRUE(Click(panel.outputs.optOut6TMO[j]));
    EXPECT_THAT(Eeprom(record, 3), ElementsAre(32, 128, 128 + 64 + 32 + 16));
    EXPECT_TRUE(Click(panel.outputs.optOut6Digital[j]));
    EXPECT_THAT(Eeprom(record, 3), ElementsAre(32 + 64, 128, 128 + 32 + 16));
    EXPECT_TRUE(Click(panel.outputs.optOut6Analog[j]));
    EXPECT_THAT(Eeprom(record, 3), ElementsAre(32, 128, 128 + 32 + 16));
  }
}

// Digital blocks

TEST_F(Frm6FormTest, LevelsAreStoredByAmountAndSign) {
  struct Case {
    const char* typed;
    int byte;
    const char* shown;
  };
  for (const auto& [typed, byte, shown] :
       {Case{"-30", 128 + 38, "-30"}, Case{"30", 38, "30"}, Case{"100", 127, "100"},
        Case{"-100", 255, "-100"}, Case{"50", 64, "50"}, Case{"0", 0, "0"}, Case{"101", 0, "0"},
        Case{"150", 190 - 128, "49"}}) {
    Type(panel.txbDigLevel, typed);
    Type(panel.trigger.txbDigTlevel, typed);
    EXPECT_THAT(Eeprom(96, 1), ElementsAre(byte)) << typed;
    EXPECT_THAT(Eeprom(136, 1), ElementsAre(byte)) << typed;
    EXPECT_EQ(panel.txbDigLevel.Text(), shown) << typed;
    EXPECT_EQ(panel.trigger.txbDigTlevel.Text(), shown) << typed;
    EXPECT_EQ(panel.pctDigNSign.Visible(), byte >= 128);
    EXPECT_EQ(panel.trigger.pctDigTNsign.Visible(), byte >= 128);
  }
}

TEST_F(Frm6FormTest, ANegativeLevelBelowTheGrainLosesItsSignWhenItIsTakenAgain) {
  Type(panel.txbDigLevel, "-0.2");
  EXPECT_THAT(Eeprom(96, 1), ElementsAre(128));
  EXPECT_EQ(panel.txbDigLevel.Text(), "-0");
  EXPECT_TRUE(panel.pctDigNSign.Visible());
  EXPECT_TRUE(panel.FormRead());
  EXPECT_THAT(Eeprom(96, 1), ElementsAre(0));
}

TEST_F(Frm6FormTest, APressOnASignTurnsItsLevel) {
  EXPECT_TRUE(Click(panel.pctDigNSign));
  EXPECT_EQ(panel.txbDigLevel.Text(), "30");
  EXPECT_TRUE(panel.pctDigPSign.Visible());
  EXPECT_FALSE(panel.pctDigNSign.Visible());
  EXPECT_TRUE(Click(panel.trigger.pctDigTPsign));
  EXPECT_EQ(panel.trigger.txbDigTlevel.Text(), "-29");
  EXPECT_FALSE(panel.trigger.pctDigTPsign.Visible());
  EXPECT_TRUE(panel.trigger.pctDigTNsign.Visible());
  EXPECT_TRUE(panel.FormRead());
  EXPECT_THAT(Eeprom(96, 1), ElementsAre(38));
  EXPECT_THAT(Eeprom(136, 1), ElementsAre(128 + 37));
}

TEST_F(Frm6FormTest, TriggerTimesAreWholeNumbersUpTo127) {
  struct Case {
    const char* typed;
    int byte;
  };
  for (const auto& [typed, byte] :
       {Case{"127", 255}, Case{"128", 128}, Case{"2.6", 128 + 3}, Case{"1", 129}, Case{"130", 130}}) {
    Type(panel.trigger.txbDigTtime, typed);
    EXPECT_THAT(Eeprom(137, 1), ElementsAre(byte)) << typed;
    EXPECT_EQ(panel.trigger.txbDigTtime.Text(), std::to_string(byte - 128)) << typed;
  }
}

TEST_F(Frm6FormTest, TheTriggerTimeIsInMinutesOrSeconds) {
  Choose(panel.trigger.lblDigTunit, 1);
  EXPECT_THAT(ground.ui.popups, ElementsAre(ElementsAre("Min", "Sec")));
  ExpectChanged(137, {10});
  Choose(panel.trigger.lblDigTunit, 0);
  EXPECT_EQ(Eeprom(), SampleEeprom(kPart88));
}

// Faces

std::vector<std::string> kVavNames{"pctSetpV1",       "pctOutV1",       "pctOutV1VAV",   "txbSetPV1Temp",
                                   "txbSetPV1CO2",    "optV1SlopePos",  "optV1SlopeNeg", "txbOutV1IntTimeVAV",
                                   "txbOutV1IntTime", "txbOutV1OutVAV", "txbOutV1Out",   "txbUseMax",
                                   "txbUseMin",       "Command1",       "Command2",      "Command5",
                                   "Command6"};
std::vector<std::string> kJumperNames{"pct6v3Settings", "txb6v3A1",    "txb6v3A2",    "txb6v3B",
                                      "txb6v3C",        "txb6v3D1",    "txb6v3D2",    "txb6v3E",
                                      "txb6v3F",        "txb6v3G1",    "txb6v3G2",    "txb6v3I",
                                      "txb6v3K",        "txb6v3AN(0)", "txb6v3AN(1)", "txb6v3AN(2)"};
std::vector<std::string> kSequentialNames{"pctSecCont",          "txbV4SetPtemp",       "txbV4SetPCO2",
                                          "txbV4PrangeVentTemp", "txbV4PrangeCoolTemp", "txbV4PrangeVentCO2",
                                          "txbV4MinVent",        "txbV4Out1Out",        "txbV4Out2Out"};
std::vector<std::string> kGenericNames{"pctFunction(0)",
                                       "pctFunction(5)",
                                       "pctOut(0)",
                                       "pctOut(2)",
                                       "pctD",
                                       "pctDT",
                                       "lblFchannel(0)",
                                       "txbFa(5)",
                                       "txbFb(0)",
                                       "lblFaUnit(1)",
                                       "lblFbUnit(2)",
                                       "cbxFout1(0)",
                                       "cbxFout3(5)",
                                       "cbxDigout1",
                                       "cbxDigTout1",
                                       "optOut6Analog(0)",
                                       "optOut6Digital(1)",
                                       "optOut6TMO(2)",
                                       "txbDigTtime",
                                       "txbDigTlevel",
                                       "txbDigLevel",
                                       "lblDigTunit",
                                       "txbOutBaseLine(0)",
                                       "txbOutOut(2)",
                                       "cbxOut6Invert(2)",
                                       "txbOutIntTime(1)",
                                       "lblOutName(0)"};

class Frm6FaceTest : public Frm6Test {
 protected:
  void ExpectFace(const std::vector<std::string>* face) {
    for (const auto* names : {&kVavNames, &kJumperNames, &kSequentialNames, &kGenericNames}) {
      for (const auto& name : *names) EXPECT_EQ(Entry(name).Visible(), names == face) << name;
    }
  }
};

TEST_F(Frm6FaceTest, EachVariantHasItsFace) {
  const std::vector<std::vector<std::string>*> faces{&kGenericNames, &kVavNames,        &kGenericNames,
                                                     &kJumperNames,  &kSequentialNames, nullptr};
  // Twice, so that each face comes after another one.
  for (const int variant : {0, 1, 2, 3, 4, 5, 3, 1, 0}) {
    Show(SampleEeprom(kPart88, variant));
    ExpectFace(faces.at(static_cast<std::size_t>(variant)));
    EXPECT_TRUE(panel.txbSN.Visible() && panel.txbID.Visible() && panel.lblDisp[3].Visible());
    EXPECT_FALSE(panel.vav.lblV1Note.Visible());
  }
}

TEST_F(Frm6FaceTest, PicturesOfFunctionsAndSignsAreTheGenericFacesAlone) {
  const auto shown = [this] {
    std::vector<std::string> names;
    for (const auto& control : panel.form.Controls()) {
      const auto& name = control.Name();
      const bool isSign = name.rfind("pctDig", 0) == 0;
      const bool isShape = name.rfind("pctF", 0) == 0 && name.find("slope") != std::string::npos;
      if ((isSign || isShape) && control.Visible()) names.push_back(name);
    }
    return names;
  };
  for (const int variant : {1, 3, 4, 5}) {
    Show(SampleEeprom(kPart88, 0));
    EXPECT_THAT(shown(), testing::UnorderedElementsAre("pctFPslope(0)", "pctFNslope(1)", "pctFPslope(2)",
                                                       "pctFPsignNslope(3)", "pctFDigNsignPslope(4)",
                                                       "pctFPsignPslope(5)", "pctDigNSign", "pctDigTPsign"));
    Show(SampleEeprom(kPart88, variant));
    EXPECT_THAT(shown(), testing::IsEmpty()) << variant;
  }
}

TEST_F(Frm6FaceTest, Part221IsCompact) {
  Show(SampleEeprom(221, 0));
  ExpectFace(nullptr);
  auto eeprom = SampleEeprom(221, 0);
  test::MakeVariant(eeprom, 4);
  Show(eeprom);
  ExpectFace(&kSequentialNames);
}

TEST_F(Frm6FaceTest, OnVariant2ThreeOutputsRemain) {
  Show(SampleEeprom(kPart88, 2));
  EXPECT_THAT(Visibles(panel.pctOut), ElementsAre(true, true, true, false));
  EXPECT_THAT(Visibles(panel.outputs.cbxDigout), ElementsAre(true, true, true, false));
  EXPECT_THAT(Visibles(panel.trigger.cbxDigTout), ElementsAre(true, true, true, false));
  EXPECT_THAT(Visibles(panel.outputs.cbxOut6Invert), ElementsAre(true, true, true, false));
  EXPECT_THAT(Visibles(panel.rows.FeedsOf(2)), Each(true));
  EXPECT_THAT(Visibles(panel.rows.FeedsOf(3)), Each(false));
  // What is hidden is taken back as it was. Channel 2 is absent, and its name is channel 3's.
  EXPECT_TRUE(panel.FormRead());
  auto expected = SampleEeprom(kPart88, 2);
  expected[50] = 0xB3;
  EXPECT_EQ(Eeprom(), expected);
  Show(SampleEeprom(kPart88, 0));
  EXPECT_THAT(Visibles(panel.pctOut), Each(true));
  EXPECT_THAT(Visibles(panel.outputs.cbxOut6Invert), Each(true));
}

TEST_F(Frm6FaceTest, TheFirstTwoOutputsExchangeTheirNamesOnPart223Alone) {
  for (const int part : {88, 222, 223, 95, 216}) {
    Show(SampleEeprom(static_cast<std::uint8_t>(part), 0));
    const std::string first = part == 223 ? "Out 2" : "Out 1";
    const std::string second = part == 223 ? "Out 1" : "Out 2";
    EXPECT_THAT(Texts(panel.outputs.lblOutName), ElementsAre(first, second, "Out 3", "Out 4")) << part;
    EXPECT_THAT(Texts(panel.outputs.cbxDigout), ElementsAre(first, second, "Out 3", "Out 4"));
    EXPECT_THAT(Texts(panel.trigger.cbxDigTout), ElementsAre(first, second, "Out 3", "Out 4"));
    EXPECT_THAT(Texts(panel.rows.FeedsOf(0)), Each(first));
    EXPECT_THAT(Texts(panel.rows.FeedsOf(1)), Each(second));
    EXPECT_THAT(Texts(panel.rows.FeedsOf(2)), Each("Out 3"));
    // Memory keeps its order.
    EXPECT_THAT(Texts(panel.outputs.txbOutBaseLine), ElementsAre("0", "100", "-100", "1"));
    EXPECT_THAT(Values(panel.rows.FeedsOf(0)), ElementsAre(1, 0, 0, 1, 0, 0));
    EXPECT_TRUE(panel.FormRead());
    EXPECT_EQ(Eeprom(), SampleEeprom(static_cast<std::uint8_t>(part), 0));
  }
}

TEST_F(Frm6FaceTest, TheNamesAreExchangedOnEveryFace) {
  for (const int variant : {1, 2, 3, 4, 5}) {
    Show(SampleEeprom(223, variant));
    EXPECT_EQ(panel.outputs.lblOutName[0].Text(), "Out 2") << variant;
    Show(SampleEeprom(222, variant));
    EXPECT_EQ(panel.outputs.lblOutName[0].Text(), "Out 1") << variant;
  }
}

TEST_F(Frm6FaceTest, LiveValuesAreThePresentChannelsButOutputsAndDtemp) {
  auto eeprom = SampleEeprom(kPart88, 0);
  eeprom[98] = 0xFF;  // Dtemp, channel 8, is hidden
  eeprom[158] = 0;
  Show(eeprom);
  // Nine are present: the eighth and ninth have no field.
  EXPECT_THAT(Visibles(panel.pctChannel), Each(true));
  EXPECT_THAT(Values(panel.pctChannel), ElementsAre(2, 3, 4, 5, 6, 7, 11));
  EXPECT_THAT(Texts(panel.lblCH_Name),
              ElementsAre("Temp 1", "Temp 2", "AH 1", "AH 2", "RH 1", "RH 2", "CO2"));
  EXPECT_THAT(Texts(panel.lblCH_Type), ElementsAre("C", "C", "g/kg", "g/kg", "%", "%", "ppm"));
  eeprom[98] = 64 + 8;
  eeprom[158] = 2;
  Show(eeprom);
  EXPECT_THAT(Visibles(panel.pctChannel), ElementsAre(true, true, false, false, false, false, false));
  EXPECT_EQ(panel.pctChannel[0].Value(), 5);
  EXPECT_EQ(panel.lblCH_Name[0].Text(), "AH");
  EXPECT_EQ(panel.pctChannel[1].Value(), 12);
}

TEST_F(Frm6FaceTest, OnVariant2TheFourthOutputIsALiveValue) {
  Show(SampleEeprom(kPart88, 2));
  EXPECT_THAT(Visibles(panel.pctChannel), ElementsAre(true, true, true, true, false, false, false));
  EXPECT_EQ(panel.pctChannel[2].Value(), 10);
  EXPECT_EQ(panel.lblCH_Name[2].Text(), "CO");
}

TEST_F(Frm6FaceTest, TheCompactFaceTakesTheGeneralFieldsAlone) {
  Show(SampleEeprom(221, 0));
  panel.rows.txbFa[0].SetText("401");
  panel.outputs.txbOutIntTime[0].SetText("0");
  panel.txbID.SetText("12");
  panel.lblDisp[0].SetText("CO2");
  EXPECT_TRUE(panel.FormRead());
  auto expected = SampleEeprom(221, 0);
  expected[32] = 12;
  expected[50] = 0xBB;
  EXPECT_EQ(Eeprom(), expected);
}

TEST_F(Frm6FaceTest, HelpIsAPageOfEachVariant) {
  for (const int variant : {0, 3, 4}) {
    Show(SampleEeprom(kPart88, variant));
    EXPECT_TRUE(Click(Entry("mHelp")));
  }
  EXPECT_THAT(ground.ui.opened,
              ElementsAre("C:\\KVX\\help6v0.html", "C:\\KVX\\help6v3.html", "C:\\KVX\\help6v4.html"));
}

}  // namespace
}  // namespace brelant
