// SPDX-License-Identifier: GPL-3.0-or-later
#include "panels/panel_fixture.h"

namespace brelant {
namespace {

using test::Frm5Test;
using test::RamBytes;
using test::SampleRam;
using testing::ElementsAre;

class Frm5FormTest : public Frm5Test {
 protected:
  /// Takes the form with this text in the field, and the field is not left.
  void Read(Control& field, const std::string& text) {
    field.SetText(text);
    EXPECT_TRUE(panel.FormRead());
  }
};

// Image to fields

TEST_F(Frm5FormTest, ShowsTheGeneralFields) {
  EXPECT_EQ(panel.txbSN.Text(), "10401042");
  EXPECT_EQ(panel.txbID.Text(), "7");
  EXPECT_EQ(panel.lblDisplayMode.Text(), panel.mDisplayMode[2].Text());
  EXPECT_EQ(panel.lblShiftb.Text(), "CO2");
  EXPECT_EQ(panel.txbShiftBamount.Text(), "500");
  EXPECT_EQ(panel.lblShiftb_Type.Text(), "ppm");
  EXPECT_THAT(Texts(panel.lblCH_Type), ElementsAre("C", "ppm", "%"));
}

TEST_F(Frm5FormTest, ASerialNumberHasFiveDigits) {
  SetRam(66, {0, 9});
  panel.FormUpdate();
  EXPECT_EQ(panel.txbSN.Text(), "10400009");
  SetRam(66, {255, 255});
  panel.FormUpdate();
  EXPECT_EQ(panel.txbSN.Text(), "10465535");
}

TEST_F(Frm5FormTest, ShowsTheDisplayModes) {
  for (int mode = 0; mode < 5; ++mode) {
    SetRam(31, {mode});
    panel.FormUpdate();
    EXPECT_EQ(panel.lblDisplayMode.Text(), panel.mDisplayMode[mode].Text()) << mode;
  }
}

TEST_F(Frm5FormTest, ShowsTheShiftButtonInUnitsOfItsChannel) {
  SetRam(207, {0xF0});
  SetRam(32, {31});
  panel.FormUpdate();
  EXPECT_EQ(panel.lblShiftb.Text(), "TEMP");
  EXPECT_EQ(panel.lblShiftb_Type.Text(), "C");
  EXPECT_EQ(panel.txbShiftBamount.Text(), "40");
  SetRam(207, {2});
  SetRam(32, {0xE0});
  panel.FormUpdate();
  EXPECT_EQ(panel.lblShiftb.Text(), "RH");
  EXPECT_EQ(panel.lblShiftb_Type.Text(), "%");
  EXPECT_EQ(panel.txbShiftBamount.Text(), "-375");
}

TEST_F(Frm5FormTest, ShowsTheFunctions) {
  EXPECT_THAT(Texts(panel.rows.lblFchannel), ElementsAre("CO2", "TEMP", "RH", "CO2", "TEMP"));
  EXPECT_THAT(Texts(panel.rows.txbFa), ElementsAre("400", "18", "40", "800", "-10"));
  EXPECT_THAT(Texts(panel.rows.txbFb), ElementsAre("1400", "26", "60", "1000", "0"));
  EXPECT_THAT(Texts(panel.rows.lblFaUnit), ElementsAre("ppm", "C", "%", "ppm", "C"));
  EXPECT_THAT(Texts(panel.rows.lblFbUnit), ElementsAre("ppm", "C", "%", "ppm", "C"));
  EXPECT_THAT(Values(panel.rows.cbxFout[0]), ElementsAre(1, 1, 0, 0, 0));
  EXPECT_THAT(Values(panel.rows.cbxFout[1]), ElementsAre(0, 0, 1, 0, 0));
}

TEST_F(Frm5FormTest, EachFunctionHasItsFiveBytes) {
  for (int i = 0; i < 5; ++i) {
    SetRam(static_cast<std::size_t>(162 + 5 * i), {1, 128 + 19, 136 + i, 128 + 23, 112 + i});
    panel.FormUpdate();
    EXPECT_EQ(panel.rows.lblFchannel[i].Text(), "CO2") << i;
    EXPECT_EQ(panel.rows.txbFa[i].Text(), std::to_string(i)) << i;
    EXPECT_EQ(panel.rows.txbFb[i].Text(), std::to_string(1000 + i)) << i;
  }
}

TEST_F(Frm5FormTest, TheFlagsAreNoPartOfTheWords) {
  SetRam(162, {1, 0x7F, 0xFF, 0xFF, 0xFF});
  panel.FormUpdate();
  EXPECT_EQ(panel.rows.txbFa[0].Text(), "27767");
  EXPECT_EQ(panel.rows.txbFb[0].Text(), "27767");
}

TEST_F(Frm5FormTest, ShowsTheOutputs) {
  EXPECT_THAT(Values(panel.optOut5V), ElementsAre(1, 0));
  EXPECT_THAT(Values(panel.optOut5mA), ElementsAre(0, 1));
  EXPECT_THAT(Values(panel.optOut5Digital), ElementsAre(0, 0));
  EXPECT_THAT(Texts(panel.txbOutBaseLine), ElementsAre("0", "100"));
  EXPECT_THAT(Texts(panel.txbOutIntTime), ElementsAre("16", "2"));
  EXPECT_EQ(panel.trigger.cbxDigTout[0].Value(), 1);
  EXPECT_EQ(panel.trigger.cbxDigTout[1].Value(), 0);
}

TEST_F(Frm5FormTest, EveryBitOfTheFeedsHasItsCheckBox) {
  for (int i = 0; i < 5; ++i) {
    std::vector<int> expected(5);
    expected[static_cast<std::size_t>(i)] = 1;
    SetRam(189, {1 << i});
    SetRam(193, {31 - (1 << i)});
    panel.FormUpdate();
    EXPECT_EQ(Values(panel.rows.cbxFout[0]), expected);
    for (auto& value : expected) value = 1 - value;
    EXPECT_EQ(Values(panel.rows.cbxFout[1]), expected);
  }
  SetRam(189, {0});
  SetRam(193, {32});
  panel.FormUpdate();
  EXPECT_EQ(panel.trigger.cbxDigTout[0].Value(), 0);
  EXPECT_EQ(panel.trigger.cbxDigTout[1].Value(), 1);
}

TEST_F(Frm5FormTest, ShowsBaseLinesInWholePercent) {
  struct Case {
    int high;
    int low;
    const char* text;
  };
  for (const auto& [high, low, text] :
       {Case{64, 0, "-100"}, Case{128, 0, "0"}, Case{192, 0, "100"}, Case{149, 31, "33"}, Case{0, 0, "-200"},
        Case{255, 255, "200"}, Case{136, 0, "12"}, Case{152, 0, "38"}, Case{120, 0, "-12"}}) {
    SetRam(190, {high, low});
    panel.FormUpdate();
    EXPECT_EQ(panel.txbOutBaseLine[0].Text(), text) << high << " " << low;
  }
}

TEST_F(Frm5FormTest, ShowsIntegrationTimesAsPowersOfTwo) {
  struct Case {
    int exponent;
    const char* text;
  };
  for (const auto& [exponent, text] :
       {Case{0, "2"}, Case{1, "4"}, Case{8, "512"}, Case{12, "8192"}, Case{20, "2097152"}}) {
    SetRam(196, {exponent});
    panel.FormUpdate();
    EXPECT_EQ(panel.txbOutIntTime[1].Text(), text);
  }
}

TEST_F(Frm5FormTest, ShowsTheTrigger) {
  EXPECT_EQ(panel.trigger.txbDigTtime.Text(), "2.5");
  EXPECT_EQ(panel.trigger.lblDigTunit.Text(), "Sec");
  EXPECT_EQ(panel.trigger.txbDigTlevel.Text(), "29");
  EXPECT_TRUE(panel.trigger.pctDigTPsign.Visible());
  EXPECT_FALSE(panel.trigger.pctDigTNsign.Visible());
  SetRam(187, {255, 166});
  panel.FormUpdate();
  EXPECT_EQ(panel.trigger.txbDigTtime.Text(), "31.75");
  EXPECT_EQ(panel.trigger.lblDigTunit.Text(), "Min");
  EXPECT_EQ(panel.trigger.txbDigTlevel.Text(), "-29");
  EXPECT_FALSE(panel.trigger.pctDigTPsign.Visible());
  EXPECT_TRUE(panel.trigger.pctDigTNsign.Visible());
}

TEST_F(Frm5FormTest, CutsTheTriggerLevel) {
  struct Case {
    int byte;
    const char* text;
  };
  for (const auto& [byte, text] :
       {Case{0, "0"}, Case{1, "0"}, Case{2, "1"}, Case{126, "99"}, Case{127, "100"}, Case{255, "-100"},
        Case{128 + 64, "-50"}, Case{63, "49"}}) {
    SetRam(188, {byte});
    panel.FormUpdate();
    EXPECT_EQ(panel.trigger.txbDigTlevel.Text(), text) << byte;
  }
}

TEST_F(Frm5FormTest, LeavesTheLiveFieldsToThePoll) {
  for (auto* field : panel.txbCHact) field->SetText("x");
  for (auto* field : panel.txbOutOut) field->SetText("y");
  panel.FormUpdate();
  EXPECT_THAT(Texts(panel.txbCHact), ElementsAre("x", "x", "x", "x"));
  EXPECT_THAT(Texts(panel.txbOutOut), ElementsAre("y", "y"));
}

TEST_F(Frm5FormTest, ShowsTheLiveValues) {
  EXPECT_TRUE(panel.FormUpdateM());
  EXPECT_THAT(Texts(panel.txbCHact), ElementsAre("21.5", "812", "45.3", "-50"));
  EXPECT_THAT(Texts(panel.txbOutOut), ElementsAre("50", "100"));
}

TEST_F(Frm5FormTest, ShowsNoOutputAboveAHundred) {
  struct Case {
    int word;
    const char* text;
  };
  for (const auto& [word, text] : {Case{0, "0"}, Case{2048, "12"}, Case{6144, "38"}, Case{16384, "100"},
                                   Case{16466, "100"}, Case{19661, "100"}, Case{65535, "100"}}) {
    SetRam(197, {word / 256, word % 256, word / 256, word % 256});
    panel.FormUpdateM();
    EXPECT_THAT(Texts(panel.txbOutOut), ElementsAre(text, text)) << word;
  }
}

TEST_F(Frm5FormTest, NonsenseInTheSensorStopsNothing) {
  for (int byte = 0; byte < 256; ++byte) {
    RamBytes ram{};
    ram.fill(static_cast<std::uint8_t>(byte));
    ram[65] = 104;
    ground.Load(ram);
    EXPECT_NO_THROW({
      panel.FormUpdateInit();
      panel.FormUpdate();
      panel.FormUpdateM();
      panel.FormRead();
      panel.FormUpdate();
      panel.Simulate();
    }) << byte;
  }
}

// Fields to image

TEST_F(Frm5FormTest, AFormTakenBackUntouchedLeavesTheImage) {
  EXPECT_TRUE(panel.FormRead());
  EXPECT_EQ(WholeRam(), SampleRam());
}

TEST_F(Frm5FormTest, TakesTheId) {
  Read(panel.txbID, "12");
  ExpectChanged(208, {12});
}

TEST_F(Frm5FormTest, TakesTheDisplayModeByItsCaption) {
  for (std::uint8_t mode = 0; mode < 5; ++mode) {
    Read(panel.lblDisplayMode, panel.mDisplayMode[mode].Text());
    ExpectChanged(31, {mode});
  }
  Read(panel.lblDisplayMode, "no such mode");
  ExpectChanged(31, {4});
}

TEST_F(Frm5FormTest, TakesLevelsIntoFifteenBitsAndKeepsTheFlags) {
  struct Case {
    const char* text;
    std::uint8_t high;
    std::uint8_t low;
  };
  // 5000 on top of each; what is above 65535 counts as 65535.
  for (const auto& [text, high, low] :
       {Case{"401", 21, 25}, Case{"-1000", 15, 160}, Case{"27767", 127, 255}, Case{"27768", 0, 0},
        Case{"90000", 127, 255}, Case{"-5000", 0, 0}, Case{"12,5 ppm", 19, 148}}) {
    Show(SampleRam());
    Read(panel.rows.txbFa[0], text);
    ExpectChanged(163, {static_cast<std::uint8_t>(128 + high), low});
    Show(SampleRam());
    Read(panel.rows.txbFb[3], text);
    ExpectChanged(180, {high, low});
  }
}

TEST_F(Frm5FormTest, TakesLevelsInTheUnitOfTheirChannel) {
  Read(panel.rows.txbFb[2], "61.5");
  ExpectChanged(175, {128 + 21, 239});
  Show(SampleRam());
  Read(panel.rows.txbFa[1], "19.9");
  ExpectChanged(168, {128 + 27, 78});
}

TEST_F(Frm5FormTest, TakesSignAndSlopeFromThePicture) {
  struct Case {
    bool sign;
    bool slope;
    std::uint8_t first;
    std::uint8_t third;
  };
  for (const auto& [sign, slope, first, third] : {Case{true, true, 149, 153}, Case{true, false, 149, 25},
                                                  Case{false, true, 21, 153}, Case{false, false, 21, 25}}) {
    panel.rows.functions.FunkTypeUpdate(0, false, sign, slope);
    EXPECT_TRUE(panel.FormRead());
    ExpectChanged(163, {first, 24, third, 0});
  }
}

TEST_F(Frm5FormTest, TakesWhatFeedsTheOutputs) {
  for (int i = 0; i < 5; ++i) {
    Show(SampleRam());
    for (int k = 0; k < 5; ++k) {
      panel.rows.cbxFout[0][k].SetValue(k == i ? 1 : 0);
      panel.rows.cbxFout[1][k].SetValue(k == i ? 0 : 1);
    }
    panel.trigger.cbxDigTout[0].SetValue(0);
    panel.trigger.cbxDigTout[1].SetValue(1);
    EXPECT_TRUE(panel.FormRead());
    EXPECT_EQ(Ram(189), 1 << i);
    EXPECT_EQ(Ram(193), 31 - (1 << i) + 32);
  }
}

TEST_F(Frm5FormTest, TakesBaseLines) {
  struct Case {
    const char* text;
    std::uint8_t high;
    std::uint8_t low;
  };
  // "200" is one more than fits, and what does not fit counts as 65535.
  for (const auto& [text, high, low] :
       {Case{"0", 128, 0}, Case{"100", 192, 0}, Case{"-100", 64, 0}, Case{"33", 149, 31},
        Case{"200", 255, 255}, Case{"250", 255, 255}, Case{"-200", 0, 0}, Case{"12,5", 136, 0}}) {
    Show(SampleRam());
    Read(panel.txbOutBaseLine[0], text);
    ExpectChanged(190, {high, low});
  }
  Show(SampleRam());
  Read(panel.txbOutBaseLine[1], "-100");
  ExpectChanged(194, {64, 0});
}

TEST_F(Frm5FormTest, TakesIntegrationTimesDownToThePowerOfTwo) {
  struct Case {
    const char* text;
    std::uint8_t exponent;
    const char* shown;
  };
  for (const auto& [text, exponent, shown] :
       {Case{"2", 0, "2"}, Case{"3", 0, "2"}, Case{"3.99", 0, "2"}, Case{"4", 1, "4"}, Case{"8", 2, "8"},
        Case{"1000", 8, "512"}, Case{"1024", 9, "1024"}}) {
    Show(SampleRam());
    Read(panel.txbOutIntTime[0], text);
    ExpectChanged(192, {exponent});
    panel.FormUpdate();
    EXPECT_EQ(panel.txbOutIntTime[0].Text(), shown);
  }
}

TEST_F(Frm5FormTest, EveryIntegrationTimeThatIsShownInFullComesBack) {
  for (int exponent = 0; exponent <= 48; ++exponent) {
    SetRam(192, {exponent});
    panel.FormUpdate();
    EXPECT_TRUE(panel.FormRead());
    EXPECT_EQ(Ram(192), exponent);
  }
}

TEST_F(Frm5FormTest, ATimeWithoutALogarithmEndsTheReadingBeforeAnythingIsWritten) {
  for (const char* text : {"0", "", "-4", "none"}) {
    ground.session.LastError.clear();
    panel.txbID.SetText("12");
    panel.rows.txbFa[0].SetText("401");
    panel.trigger.txbDigTtime.SetText("5");
    panel.txbOutIntTime[1].SetText(text);
    EXPECT_FALSE(panel.FormRead()) << text;
    EXPECT_EQ(WholeRam(), SampleRam()) << text;
    EXPECT_NE(ground.session.LastError, "") << text;
  }
  ground.session.LastError = "first";
  EXPECT_FALSE(panel.FormRead());
  EXPECT_EQ(ground.session.LastError, "first");
}

TEST_F(Frm5FormTest, TakesTheTriggerTimeInQuarters) {
  struct Case {
    const char* text;
    std::uint8_t byte;
  };
  // 2.6 is 10.4 quarters, 2.625 and 2.875 lie between two; 32 does not fit into seven bits.
  for (const auto& [text, byte] : {Case{"2.6", 10}, Case{"2.625", 10}, Case{"2.875", 12}, Case{"0", 0},
                                   Case{"31.75", 127}, Case{"32", 0}, Case{"33", 4}}) {
    Show(SampleRam());
    Read(panel.trigger.txbDigTtime, text);
    ExpectChanged(187, {byte});
  }
  panel.trigger.txbDigTtime.SetText("2.6");
  Read(panel.trigger.lblDigTunit, "Min");
  ExpectChanged(187, {128 + 10});
  Read(panel.trigger.lblDigTunit, "Sec");
  ExpectChanged(187, {10});
}

TEST_F(Frm5FormTest, TakesTheTriggerLevel) {
  struct Case {
    const char* text;
    std::uint8_t byte;
    const char* shown;
  };
  // 30 % is 38.1 of 127; 150 % is 190.5, which goes to the even 190, of which seven bits are kept.
  for (const auto& [text, byte, shown] :
       {Case{"-30", 166, "-29"}, Case{"30", 38, "29"}, Case{"100", 127, "100"}, Case{"-100", 255, "-100"},
        Case{"0", 0, "0"}, Case{"150", 62, "48"}, Case{"50", 64, "50"}, Case{"-50", 192, "-50"}}) {
    Show(SampleRam());
    Read(panel.trigger.txbDigTlevel, text);
    ExpectChanged(188, {byte});
    panel.FormUpdate();
    EXPECT_EQ(panel.trigger.txbDigTlevel.Text(), shown);
  }
}

TEST_F(Frm5FormTest, TakesTheShiftAmountInStepsOf250RoundedAndLimited) {
  struct Case {
    const char* text;
    std::uint8_t amount;
    const char* shown;
  };
  // text / 250 + 15; 625 and 875 lie between two steps.
  for (const auto& [text, amount, shown] :
       {Case{"0", 15, "0"}, Case{"250", 16, "250"}, Case{"600", 17, "500"}, Case{"625", 18, "750"},
        Case{"875", 18, "750"}, Case{"4000", 31, "4000"}, Case{"4100", 31, "4000"}, Case{"99999", 31, "4000"},
        Case{"-3750", 0, "-3750"}, Case{"-4000", 0, "-3750"}, Case{"-99999", 0, "-3750"}}) {
    Show(SampleRam());
    Read(panel.txbShiftBamount, text);
    ExpectChanged(32, {static_cast<std::uint8_t>(32 + amount)});
    panel.FormUpdate();
    EXPECT_EQ(panel.txbShiftBamount.Text(), shown) << text;
  }
}

TEST_F(Frm5FormTest, TheShiftByteKeepsItsLowEightBits) {
  // A channel of 9 would be bits 9 to 5; above channel 3 the text is the raw value itself.
  SetRam(207, {9});
  panel.FormUpdate();
  EXPECT_EQ(panel.txbShiftBamount.Text(), "500");
  EXPECT_TRUE(panel.FormRead());
  EXPECT_EQ(Ram(32), 9 * 32 + 17 - 256);
  EXPECT_EQ(Ram(207), 9);
}

TEST_F(Frm5FormTest, TakesTheShiftChannelWithAFactorOf32) {
  Read(panel.lblShiftb, "RH");
  // 500 % is 5000 raw units, far more than 16 steps of 250.
  auto expected = SampleRam();
  expected[207] = 6 * 32 + 2;
  expected[32] = 2 * 32 + 31;
  EXPECT_EQ(WholeRam(), expected);
  Read(panel.lblShiftb, "TEMP");
  EXPECT_EQ(Ram(207), 0);
}

TEST_F(Frm5FormTest, TheShiftChannelKeepsItsLowEightBits) {
  auto channels = test::SampleChannels();
  channels[1].type = 15;
  ground.Define(105, channels);
  auto ram = SampleRam();
  ram[65] = 105;
  ram[206] = 0xF1;
  Show(ram);
  EXPECT_TRUE(panel.FormRead());
  EXPECT_EQ(Ram(207), 15 * 32 + 1 - 256);
}

TEST_F(Frm5FormTest, AShiftChannelThatIsNotInTheMenuStays) {
  Read(panel.lblShiftb, "no such channel");
  EXPECT_EQ(Ram(207), 129);
}

}  // namespace
}  // namespace brelant
