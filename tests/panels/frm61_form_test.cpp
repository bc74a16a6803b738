// SPDX-License-Identifier: GPL-3.0-or-later
#include "panels/frm61_fixture.h"

namespace brelant {
namespace {

using test::Bytes;
using test::Click;
using test::Frm61Test;
using test::kBlack;
using test::kEnter;
using test::kFieldBack;
using test::kGreen;
using test::kPart61;
using test::kPart7;
using test::kWhite;
using test::kYellow;
using test::Product61;
using test::PutBytes;
using test::Sample61;
using test::Sample7;
using test::SampleOf;
using test::Texts;
using test::Type;
using test::Visibles;
using testing::Each;
using testing::ElementsAre;
using testing::IsEmpty;

constexpr Product61 kBoth{61, 0};
constexpr Product61 kGas{61, 1};
constexpr Product61 kRows{7, 2};

class Frm61FormTest : public Frm61Test {
 protected:
  /// The image holds the sample of the product, but for these bytes.
  void ExpectChanged(const Product61& product, std::size_t address, std::initializer_list<std::uint8_t> put) {
    auto expected = SampleOf(product);
    PutBytes(expected, address, put);
    EXPECT_EQ(Eeprom(), expected);
  }
  void ExpectUnchanged(const Product61& product) { ExpectChanged(product, 0, {}); }

  std::vector<int> VisibleEntries() const {
    std::vector<int> visible;
    for (int i = 0; i < panel.mCHannel.Count(); ++i) {
      if (panel.mCHannel[i].Visible()) visible.push_back(i);
    }
    return visible;
  }
  /// The controls of the fixed alarms, of the rows and of the status line.
  std::vector<bool> FixedAlarmsVisible() {
    std::vector<bool> visible;
    for (const char* name : {"pctAlarm061", "lblAlarm061(0)", "txbAlarm061Level(3)", "lblAlarm061Unit(1)",
                             "txbAlarm061Status(2)", "lblOC3", "lblOC4", "cbxOC3(0)", "cbxOC4(3)",
                             "lblAlarm061Logic1(0)", "lblAlarm061Logic2(2)"}) {
      visible.push_back(Entry(name).Visible());
    }
    return visible;
  }
  std::vector<bool> RowsVisible() {
    std::vector<bool> visible;
    for (const char* name : {"pctAlarm07", "pctDisplay6", "lblAlarm7Channel(0)", "lblAlarm7Unit(1)",
                             "lblAlarm7Slope(2)", "lblAlarm7Level(0)", "txbAlarm7StatusPre",
                             "txbAlarm7StatusMain", "pctChannel(5)", "lblCH_Name(5)", "txbCHact(5)"}) {
      visible.push_back(Entry(name).Visible());
    }
    return visible;
  }
};

// The faces

TEST_F(Frm61FormTest, Platform61Variant0ShowsThreeChannelsAndItsAlarms) {
  Show(kBoth);
  EXPECT_THAT(Visibles(panel.pctChannel), ElementsAre(true, true, true, false));
  EXPECT_THAT(Visibles(panel.txbCHact), ElementsAre(true, true, true, false));
  EXPECT_THAT(Visibles(panel.lblCH_Name), ElementsAre(true, true, true, false));
  EXPECT_THAT(Visibles(panel.lblCH_Type), ElementsAre(true, true, true, false));
  EXPECT_THAT(Texts(panel.lblCH_Name), ElementsAre("TEMP", "CO2", "O2", ""));
  EXPECT_THAT(Texts(panel.lblCH_Type), ElementsAre("C", "%", "%", ""));
  EXPECT_THAT(VisibleEntries(), ElementsAre(4, 5, 6));
  EXPECT_EQ(panel.mCHannel[4].Text(), "TEMP");
  EXPECT_EQ(panel.mCHannel[5].Text(), "CO2");
  EXPECT_EQ(panel.mCHannel[6].Text(), "O2");
  EXPECT_THAT(FixedAlarmsVisible(), Each(true));
  EXPECT_THAT(RowsVisible(), Each(false));
}

TEST_F(Frm61FormTest, Platform61Variant1ShowsTwoChannelsAndNoAlarms) {
  Show(kGas);
  EXPECT_THAT(Visibles(panel.pctChannel), ElementsAre(true, true, false, false));
  EXPECT_THAT(Visibles(panel.txbCHact), ElementsAre(true, true, false, false));
  EXPECT_EQ(panel.lblCH_Name[0].Text(), "TEMP");
  EXPECT_EQ(panel.lblCH_Name[1].Text(), "CO2");
  EXPECT_EQ(panel.lblCH_Type[0].Text(), "C");
  EXPECT_EQ(panel.lblCH_Type[1].Text(), "ppm");
  EXPECT_THAT(VisibleEntries(), ElementsAre(4, 5));
  EXPECT_EQ(panel.mCHannel[4].Text(), "TEMP");
  EXPECT_EQ(panel.mCHannel[5].Text(), "CO2");
  EXPECT_THAT(FixedAlarmsVisible(), Each(false));
  EXPECT_THAT(RowsVisible(), Each(false));
}

TEST_F(Frm61FormTest, TheNamesAndUnitsOfPlatform61AreFixed) {
  auto eeprom = Sample61(0);
  // F, ppm and nothing.
  PutBytes(eeprom, 222, {0x8A, 0x90, 0x82});
  Show(kPart61, eeprom);
  EXPECT_THAT(Texts(panel.lblCH_Type), ElementsAre("C", "%", "%", ""));
  EXPECT_THAT(Texts(panel.alarms.lblAlarm061Unit), ElementsAre("%", "%", "%", "%"));
}

TEST_F(Frm61FormTest, Platform7ShowsThreeChannelsAStatusAndItsRows) {
  for (const int variant : {1, 2}) {
    Show({7, variant});
    EXPECT_THAT(Visibles(panel.pctChannel), ElementsAre(true, true, true, false));
    EXPECT_THAT(Texts(panel.lblCH_Name), ElementsAre("Temp", "CO2", "O2", ""));
    EXPECT_THAT(Texts(panel.lblCH_Type), ElementsAre("C", "%", "%", ""));
    EXPECT_EQ(Entry("lblCH_Name(5)").Text(), "Status");
    EXPECT_THAT(VisibleEntries(), ElementsAre(4, 5, 6));
    EXPECT_THAT(FixedAlarmsVisible(), Each(false));
    EXPECT_THAT(RowsVisible(), Each(true));
  }
}

TEST_F(Frm61FormTest, TheUnitsOfPlatform7AreThoseOfTheSensor) {
  auto eeprom = Sample7(2);
  // F, ppm and V.
  PutBytes(eeprom, 796, {2 << 2 | 2, 4 << 2, 3 << 2});
  Show(kPart7, eeprom);
  EXPECT_THAT(Texts(panel.lblCH_Type), ElementsAre("F", "ppm", "V", ""));
  EXPECT_THAT(Texts(panel.rows.lblAlarm7Unit), ElementsAre("ppm", "ppm", "V"));
}

TEST_F(Frm61FormTest, AChannelThatIsNotOnThePanelIsNamedByItsNumber) {
  Show(kRows);
  EXPECT_THAT(Texts(panel.mCHannel),
              ElementsAre("Ch 0", "Ch 1", "Ch 2", "Ch 3", "Temp", "CO2", "O2", "Ch 7", "Ch 8", "Ch 9",
                          "Ch 10", "Ch 11", "Ch 12", "Ch 13", "Ch 14", "Ch 15"));
  Show(kGas);
  EXPECT_EQ(panel.mCHannel[6].Text(), "Ch 6");
  EXPECT_EQ(panel.mCHannel[14].Text(), "Old 0");
  EXPECT_EQ(panel.mCHannel[15].Text(), "Dtemp");
}

TEST_F(Frm61FormTest, SettingsFilesAndTwoZeroPointsAreNotForPlatform7) {
  for (const auto& [product, has] : {std::pair{kRows, false}, {kBoth, true}, {kGas, true}}) {
    Show(product);
    EXPECT_EQ(panel.mLoadsettings.Enabled(), has) << product;
    EXPECT_EQ(panel.mSavesettings.Enabled(), has) << product;
    EXPECT_EQ(Entry("mCalCO2SPBackground").Visible(), has) << product;
    EXPECT_EQ(Entry("mCalCO2SPOther").Visible(), has) << product;
    EXPECT_TRUE(Entry("mCalCO2SPzero").Visible()) << product;
  }
  Show(kRows);
  for (const char* name : {"mLoadsettings", "mSavesettings", "mCalCO2SPBackground", "mCalCO2SPOther"}) {
    EXPECT_FALSE(Click(Entry(name))) << name;
  }
  EXPECT_EQ(ground.session.PanelCommand, 0);
}

TEST_F(Frm61FormTest, SimModeDoesNotGiveTheSettingsFilesBack) {
  Show(kRows);
  panel.SimMode(true);
  panel.SimMode(false);
  EXPECT_FALSE(panel.mLoadsettings.Enabled());
  EXPECT_FALSE(panel.mSavesettings.Enabled());
}

TEST_F(Frm61FormTest, OffLineIsOfferedOnAllFaces) {
  for (const auto& product : {kBoth, kGas, kRows}) {
    panel.cbxSimulated.SetVisible(false);
    Show(product);
    EXPECT_TRUE(panel.cbxSimulated.Visible()) << product;
    EXPECT_EQ(panel.cbxSimulated.Text(), "Off line") << product;
  }
}

TEST_F(Frm61FormTest, TheMenusHaveTheirCaptions) {
  Show(kBoth);
  for (const auto& [name, caption] : {std::pair{"mCalTemp", "TEMP"},
                                      {"mCalCO2", "CO2 single point"},
                                      {"mCalCO2SPzero", "Zero"},
                                      {"mCalCO2SPBackground", "Fresh air"},
                                      {"mCalCO2SPOther", "Other"},
                                      {"mCalCO2span", "CO2 span"},
                                      {"mCalO2zero", "O2 zero"},
                                      {"mCalO2span", "O2 span"}}) {
    EXPECT_EQ(Entry(name).Text(), caption);
  }
  // The names of other panels.
  for (const char* name : {"CalTemp", "mCalCO2Zero", "mCalCO2Background", "mCalCO2Other"}) {
    EXPECT_EQ(panel.form.Find(name), nullptr) << name;
  }
  EXPECT_EQ(panel.form.Name(), "frm61");
  EXPECT_FALSE(Entry("mChannels").Visible());
  EXPECT_FALSE(Entry("mDisplayModes").Visible());
}

TEST_F(Frm61FormTest, OneSensorAfterTheOtherChangesTheFace) {
  for (const auto& product : {kRows, kBoth, kGas, kBoth, kRows, kGas}) {
    Show(product);
    EXPECT_THAT(FixedAlarmsVisible(), Each(product.platform == 61 && product.variant == 0)) << product;
    EXPECT_THAT(RowsVisible(), Each(product.platform == 7)) << product;
    EXPECT_EQ(panel.pctChannel[2].Visible(), product.variant != 1) << product;
    EXPECT_EQ(panel.lblDisp[0].Enabled(), product.variant != 1) << product;
  }
}

// Platform 61

TEST_F(Frm61FormTest, ShowsTheFieldsOfPlatform61) {
  Show(kBoth);
  EXPECT_EQ(panel.txbSN.Text(), "21501042");
  EXPECT_EQ(panel.txbID.Text(), "7");
  EXPECT_THAT(Texts(panel.lblDisp), ElementsAre("TEMP", "CO2", "Dtemp", "O2"));
  EXPECT_THAT(Texts(panel.alarms.lblAlarm061),
              ElementsAre("CO2 PRE ALARM:", "CO2 MAIN ALARM:", "O2 PRE ALARM:", "O2 MAIN ALARM:"));
  EXPECT_THAT(Texts(panel.alarms.txbAlarm061Level), ElementsAre("1.5", "3", "19", "18"));
}

TEST_F(Frm61FormTest, Variant1ShowsItsDisplayAndNoLevels) {
  for (auto* field : panel.alarms.txbAlarm061Level) field->SetText("x");
  Show(kGas);
  EXPECT_EQ(panel.txbSN.Text(), "21501042");
  EXPECT_EQ(panel.txbID.Text(), "7");
  EXPECT_THAT(Texts(panel.lblDisp), ElementsAre("TEMP", "CO2", "Dtemp", "Ch 6"));
  EXPECT_THAT(Texts(panel.alarms.txbAlarm061Level), Each("x"));
}

TEST_F(Frm61FormTest, TheLevelsAreScaledByTheirOwnChannels) {
  auto eeprom = Sample61(0);
  // CO2 in ppm without an offset, O2 in tenths with one, temperature like neither.
  PutBytes(eeprom, 222, {0x8E, 0x10, 0x97});
  Show(kPart61, eeprom);
  EXPECT_THAT(Texts(panel.alarms.txbAlarm061Level), ElementsAre("6500", "8000", "190", "180"));
  EXPECT_TRUE(panel.FormRead());
  EXPECT_EQ(Eeprom(), eeprom);
}

TEST_F(Frm61FormTest, AnEditedLevelIsStoredAtItsAddress) {
  struct Case {
    int field;
    const char* typed;
    const char* shown;
    std::size_t address;
    std::uint8_t high;
    std::uint8_t low;
  };
  // 5000 + 2500 = 29 x 256 + 76; 5000 + 12345 = 67 x 256 + 193; 5000 + 2090 = 27 x 256 + 178; 5000 + 1705 =
  // 26 x 256 + 49.
  for (const auto& [field, typed, shown, address, high, low] :
       {Case{0, "2,5", "2.5", 76, 29, 76}, Case{1, "12.3456 %", "12.345", 78, 67, 193},
        Case{2, "20.90", "20.9", 80, 27, 178}, Case{3, "17.059", "17.05", 84, 26, 49}}) {
    Show(kBoth);
    Type(panel.alarms.txbAlarm061Level[field], typed);
    EXPECT_EQ(panel.alarms.txbAlarm061Level[field].Text(), shown);
    ExpectChanged(kBoth, address, {high, low});
  }
}

TEST_F(Frm61FormTest, ALevelFieldHasTheEditRules) {
  Show(kBoth);
  auto& level = panel.alarms.txbAlarm061Level[1];
  EXPECT_EQ(level.Back(), kFieldBack);
  EXPECT_EQ(level.Fore(), kYellow);
  panel.form.GainFocus(level);
  EXPECT_EQ(level.Back(), kWhite);
  EXPECT_EQ(level.Fore(), kBlack);
  panel.form.ChangeText(level, "2.5000");
  EXPECT_TRUE(panel.form.PressKey(level, kEnter));
  EXPECT_EQ(level.Back(), kFieldBack);
  EXPECT_EQ(level.Fore(), kYellow);
  EXPECT_EQ(level.Text(), "2.5");
  ExpectChanged(kBoth, 78, {29, 76});
}

TEST_F(Frm61FormTest, FormReadTakesIdAndDisplays) {
  Show(kBoth);
  panel.txbID.SetText("12");
  panel.lblDisp[0].SetText("O2");
  panel.lblDisp[3].SetText("Old 0");
  EXPECT_TRUE(panel.FormRead());
  auto expected = Sample61(0);
  PutBytes(expected, 32, {12});
  PutBytes(expected, 50, {0x56, 0xEF});
  EXPECT_EQ(Eeprom(), expected);
}

TEST_F(Frm61FormTest, OnVariant1FormReadTakesTheIdAlone) {
  Show(kGas);
  panel.txbID.SetText("12");
  panel.lblDisp[0].SetText("CO2");
  panel.alarms.txbAlarm061Level[0].SetText("2");
  EXPECT_TRUE(panel.FormRead());
  ExpectChanged(kGas, 32, {12});
}

TEST_F(Frm61FormTest, OnVariant1ADisplayCannotBeChosen) {
  Show(kGas);
  ground.ui.choices = {0, 0, 0, 0};
  for (auto* label : panel.lblDisp) EXPECT_FALSE(Click(*label)) << label->Name();
  EXPECT_THAT(ground.ui.popups, IsEmpty());
}

// The outputs that reach no sensor

TEST_F(Frm61FormTest, TheLogicLabelsOfAnOutputAreOneSetting) {
  Show(kBoth);
  auto& first = panel.alarms.lblAlarm061Logic1;
  auto& second = panel.alarms.lblAlarm061Logic2;
  EXPECT_EQ(panel.alarms.lblOC3.Text(), "OC 1");
  EXPECT_EQ(panel.alarms.lblOC4.Text(), "OC 2");
  for (int i = 0; i < 3; ++i) {
    EXPECT_TRUE(Click(first[i]));
    EXPECT_THAT(Texts(first), ElementsAre("AND", "AND", "AND")) << i;
    EXPECT_THAT(Texts(second), ElementsAre("OR", "OR", "OR")) << i;
    EXPECT_TRUE(Click(second[2 - i]));
    EXPECT_THAT(Texts(second), ElementsAre("AND", "AND", "AND")) << i;
    EXPECT_TRUE(Click(first[2 - i]));
    EXPECT_THAT(Texts(first), ElementsAre("OR", "OR", "OR")) << i;
    EXPECT_TRUE(Click(second[i]));
    EXPECT_THAT(Texts(second), ElementsAre("OR", "OR", "OR")) << i;
  }
}

TEST_F(Frm61FormTest, TheClickedLogicLabelDecides) {
  Show(kBoth);
  auto& labels = panel.alarms.lblAlarm061Logic1;
  labels[1].SetText("AND");
  EXPECT_TRUE(Click(labels[1]));
  EXPECT_THAT(Texts(labels), Each("OR"));
  labels[1].SetText("AND");
  EXPECT_TRUE(Click(labels[0]));
  EXPECT_THAT(Texts(labels), Each("AND"));
}

TEST_F(Frm61FormTest, TheOutputsChangeNoMemoryAndAreForgotten) {
  Show(kBoth);
  EXPECT_TRUE(Click(panel.alarms.lblAlarm061Logic1[0]));
  EXPECT_TRUE(Click(panel.alarms.lblAlarm061Logic2[0]));
  for (const auto* boxes : {&panel.alarms.cbxOC3, &panel.alarms.cbxOC4}) {
    for (auto* box : *boxes) EXPECT_TRUE(Click(*box)) << box->Name();
  }
  const auto ram = ground.image.RamImage;
  EXPECT_TRUE(panel.FormRead());
  EXPECT_TRUE(panel.FormUpdate());
  ExpectUnchanged(kBoth);
  EXPECT_EQ(ground.image.RamImage, ram);
  EXPECT_THAT(Texts(panel.alarms.lblAlarm061Logic1), Each("AND"));
  EXPECT_THAT(Texts(panel.alarms.lblAlarm061Logic2), Each("AND"));
  for (const auto* box : panel.alarms.cbxOC3) EXPECT_EQ(box->Value(), 1);
  for (const auto* box : panel.alarms.cbxOC4) EXPECT_EQ(box->Value(), 1);

  frm61 another(ground.context);
  EXPECT_TRUE(another.FormUpdateInit());
  EXPECT_TRUE(another.FormUpdate());
  EXPECT_THAT(Texts(another.alarms.lblAlarm061Logic1), Each("OR"));
  EXPECT_THAT(Texts(another.alarms.lblAlarm061Logic2), Each("OR"));
  for (const auto* box : another.alarms.cbxOC3) EXPECT_EQ(box->Value(), 0);
  for (const auto* box : another.alarms.cbxOC4) EXPECT_EQ(box->Value(), 0);
}

TEST_F(Frm61FormTest, UnitLabelsDoNothing) {
  for (const auto& product : {kBoth, kRows}) {
    Show(product);
    const auto revision = panel.form.Revision();
    for (const auto* labels : {&panel.lblCH_Type, &panel.alarms.lblAlarm061Unit, &panel.rows.lblAlarm7Unit}) {
      for (auto* label : *labels) {
        EXPECT_EQ(Click(*label), label->Visible()) << label->Name();
      }
    }
    EXPECT_THAT(ground.ui.popups, IsEmpty());
    EXPECT_EQ(panel.form.Revision(), revision) << product;
    ExpectUnchanged(product);
  }
}

// Labels that stand for a choice

TEST_F(Frm61FormTest, ADisplayIsChosenFromTheChannelsOnThePanelAndTakenLater) {
  Show(kBoth);
  Choose(panel.lblDisp[0], 2);
  EXPECT_THAT(ground.ui.popups, ElementsAre(ElementsAre("TEMP", "CO2", "O2")));
  EXPECT_THAT(Texts(panel.lblDisp), ElementsAre("O2", "CO2", "Dtemp", "O2"));
  ExpectUnchanged(kBoth);
  EXPECT_TRUE(panel.FormRead());
  ExpectChanged(kBoth, 50, {0x56});

  Show(kRows);
  Choose(panel.lblDisp[3], 0);
  EXPECT_THAT(ground.ui.popups.back(), ElementsAre("Temp", "CO2", "O2"));
  ExpectUnchanged(kRows);
  EXPECT_TRUE(panel.FormRead());
  ExpectChanged(kRows, 388, {4});
}

TEST_F(Frm61FormTest, ADisplayWithoutAChoiceStays) {
  Show(kBoth);
  EXPECT_TRUE(Click(panel.lblDisp[2]));
  EXPECT_EQ(panel.lblDisp[2].Text(), "Dtemp");
}

TEST_F(Frm61FormTest, TheDisplayModeIsChosenAndStoredNowhere) {
  for (const auto& product : {kBoth, kRows}) {
    Show(product);
    ground.ui.popups.clear();
    Choose(panel.lblDisplayMode, 3);
    EXPECT_THAT(ground.ui.popups, ElementsAre(ElementsAre("Mode 0", "Mode 1", "Mode 2", "Mode 3", "Mode 4")));
    EXPECT_EQ(panel.lblDisplayMode.Text(), "Mode 3");
    EXPECT_TRUE(panel.FormRead());
    ExpectUnchanged(product);
  }
}

// Platform 7

TEST_F(Frm61FormTest, ShowsTheFieldsOfPlatform7) {
  Show(kRows);
  EXPECT_EQ(panel.txbSN.Text(), "5001042");
  EXPECT_EQ(panel.txbID.Text(), "7");
  EXPECT_THAT(Texts(panel.lblDisp), ElementsAre("Temp", "CO2", "O2", "Ch 8"));
  EXPECT_THAT(Texts(panel.rows.lblAlarm7Channel), ElementsAre("CO2", "CO2", "O2"));
  EXPECT_THAT(Texts(panel.rows.lblAlarm7Unit), ElementsAre("%", "%", "%"));
  EXPECT_THAT(Texts(panel.rows.lblAlarm7Slope), ElementsAre(">", ">", "<"));
  EXPECT_THAT(Texts(panel.rows.lblAlarm7Level), ElementsAre("1.5", "3", "19"));
}

TEST_F(Frm61FormTest, ASerialNumberOfMoreThanFiveDigitsShowsNothing) {
  auto eeprom = Sample7(2);
  PutBytes(eeprom, 998, {0xA0, 0x86, 1});  // 100000
  Show(kPart7, eeprom);
  EXPECT_EQ(panel.txbSN.Text(), "");
  PutBytes(eeprom, 998, {0x9F, 0x86, 1});
  Show(kPart7, eeprom);
  EXPECT_EQ(panel.txbSN.Text(), "5099999");
}

TEST_F(Frm61FormTest, ThePanelMarksTheLayoutAsItGoes) {
  Show(kPart7, Sample7(1));
  EXPECT_THAT(Eeprom(1023, 1), ElementsAre(2));
  SetEeprom(1023, {1});
  EXPECT_TRUE(panel.FormRead());
  EXPECT_THAT(Eeprom(1023, 1), ElementsAre(2));
  SetEeprom(1023, {1});
  EXPECT_TRUE(panel.FormUpdate());
  EXPECT_THAT(Eeprom(1023, 1), ElementsAre(2));
  // Not behind the smaller memory of the other platform.
  Show(kBoth);
  EXPECT_TRUE(panel.FormRead());
  EXPECT_EQ(ground.image.EepromImage[1023], 0);
}

TEST_F(Frm61FormTest, ALevelIsShownThroughTheChannelOfItsRow) {
  auto eeprom = Sample7(2);
  PutBytes(eeprom, 925, {0xF4, 1, 0x06, 2, 0x59});
  eeprom[801] = 7 << 2 | 3;  // channel 9: tenths of tools
  Show(kPart7, eeprom);
  EXPECT_THAT(Texts(panel.rows.lblAlarm7Channel), ElementsAre("Temp", "O2", "Ch 9"));
  EXPECT_THAT(Texts(panel.rows.lblAlarm7Unit), ElementsAre("C", "%", "tool"));
  EXPECT_THAT(Texts(panel.rows.lblAlarm7Level), ElementsAre("15", "30", "190"));
  EXPECT_TRUE(panel.FormRead());
  EXPECT_EQ(Eeprom(), eeprom);
}

TEST_F(Frm61FormTest, AnEditedRowLevelIsStoredAtItsAddress) {
  struct Case {
    int row;
    const char* typed;
    const char* shown;
    std::size_t address;
    std::uint8_t high;
    std::uint8_t low;
  };
  for (const auto& [row, typed, shown, address, high, low] :
       {Case{0, "2,5", "2.5", 834, 9, 196}, Case{1, "0.0009", "0", 840, 0, 0},
        Case{2, "20.90", "20.9", 846, 8, 42}}) {
    Show(kRows);
    Type(panel.rows.lblAlarm7Level[row], typed);
    EXPECT_EQ(panel.rows.lblAlarm7Level[row].Text(), shown);
    ExpectChanged(kRows, address, {high, low});
  }
}

TEST_F(Frm61FormTest, ALevelIsStoredInFifteenBits) {
  Show(kRows);
  // 40000 = 156 x 256 + 64, and 156 - 128 = 28; 28 x 256 + 64 = 7232.
  Type(panel.rows.lblAlarm7Level[0], "40");
  EXPECT_THAT(Eeprom(834, 2), ElementsAre(28, 64));
  EXPECT_EQ(panel.rows.lblAlarm7Level[0].Text(), "7.232");
  // -1 is 65535.
  Type(panel.rows.lblAlarm7Level[1], "-0.001");
  EXPECT_THAT(Eeprom(840, 2), ElementsAre(127, 255));
  EXPECT_EQ(panel.rows.lblAlarm7Level[1].Text(), "32.767");
}

TEST_F(Frm61FormTest, TheTopBitOfALevelIsNeitherShownNorKept) {
  auto eeprom = Sample7(2);
  for (const std::size_t address : {834U, 840U, 846U}) eeprom[address] |= 128;
  Show(kPart7, eeprom);
  EXPECT_THAT(Texts(panel.rows.lblAlarm7Level), ElementsAre("1.5", "3", "19"));
  EXPECT_EQ(Eeprom(), eeprom);
  EXPECT_TRUE(panel.FormRead());
  ExpectUnchanged(kRows);
}

TEST_F(Frm61FormTest, TheConstantOfARowIsStoredAnew) {
  auto eeprom = Sample7(2);
  for (const std::size_t address : {838U, 844U, 850U}) PutBytes(eeprom, address, {1, 2});
  Show(kPart7, eeprom);
  EXPECT_EQ(Eeprom(), eeprom);
  EXPECT_TRUE(panel.FormRead());
  // 16383 = 63 x 256 + 255.
  ExpectUnchanged(kRows);
}

TEST_F(Frm61FormTest, ThereAreThreeRowsAndWhatLiesBehindThemIsLeftAlone) {
  Show(kRows);
  EXPECT_EQ(panel.rows.lblAlarm7Level.Count(), 3);
  EXPECT_EQ(panel.form.Find("lblAlarm7Level(3)"), nullptr);
  EXPECT_TRUE(panel.FormRead());
  const auto sample = Sample7(2);
  EXPECT_THAT(Eeprom(852, 6),
              ElementsAre(sample[852], sample[853], sample[854], sample[855], sample[856], sample[857]));
  EXPECT_THAT(Eeprom(931, 2), ElementsAre(77, 4));
}

TEST_F(Frm61FormTest, AClickOnASlopeTurnsItAndIsTakenLater) {
  Show(kRows);
  for (auto* slope : panel.rows.lblAlarm7Slope) EXPECT_TRUE(Click(*slope));
  EXPECT_THAT(Texts(panel.rows.lblAlarm7Slope), ElementsAre("<", "<", ">"));
  EXPECT_THAT(ground.ui.popups, IsEmpty());
  ExpectUnchanged(kRows);
  EXPECT_TRUE(panel.FormRead());
  auto expected = Sample7(2);
  expected[836] = 0x80 | 0x45;
  expected[842] = 0x80 | 0x21;
  expected[848] = 0x12;
  EXPECT_EQ(Eeprom(), expected);
  EXPECT_TRUE(panel.FormUpdate());
  for (auto* slope : panel.rows.lblAlarm7Slope) EXPECT_TRUE(Click(*slope));
  EXPECT_THAT(Texts(panel.rows.lblAlarm7Slope), ElementsAre(">", ">", "<"));
  EXPECT_TRUE(panel.FormRead());
  ExpectUnchanged(kRows);
}

TEST_F(Frm61FormTest, AnotherChannelOfARowIsStoredAtOnceAndShowsItsLevelAnew) {
  struct Case {
    int row;
    std::size_t choice;
    std::size_t address;
    std::uint8_t byte;
    const char* channel;
    const char* unit;
    const char* level;
  };
  for (const auto& [row, choice, address, byte, channel, unit, level] :
       {Case{0, 0, 925, 0xA4, "Temp", "C", "15"}, Case{1, 2, 927, 0x36, "O2", "%", "30"},
        Case{2, 1, 929, 0x95, "CO2", "%", "1.9"}}) {
    Show(kRows);
    ground.ui.popups.clear();
    Choose(panel.rows.lblAlarm7Channel[row], choice);
    EXPECT_THAT(ground.ui.popups, ElementsAre(ElementsAre("Temp", "CO2", "O2")));
    EXPECT_EQ(panel.rows.lblAlarm7Channel[row].Text(), channel);
    EXPECT_EQ(panel.rows.lblAlarm7Unit[row].Text(), unit);
    EXPECT_EQ(panel.rows.lblAlarm7Level[row].Text(), level);
    ExpectChanged(kRows, address, {byte});
  }
}

TEST_F(Frm61FormTest, AChannelIsChosenAfterTheFormWasTaken) {
  Show(kRows);
  panel.txbID.SetText("12");
  EXPECT_TRUE(Click(panel.rows.lblAlarm7Slope[1]));
  panel.rows.lblAlarm7Level[0].SetText("2.5");
  Choose(panel.rows.lblAlarm7Channel[0], 0);
  auto expected = Sample7(2);
  expected[16] = 12;
  expected[842] |= 128;
  // Through CO2, which the row had until then: 2500 = 9 x 256 + 196.
  PutBytes(expected, 834, {9, 196});
  expected[925] = 0xA4;
  EXPECT_EQ(Eeprom(), expected);
  EXPECT_EQ(panel.rows.lblAlarm7Level[0].Text(), "25");
}

TEST_F(Frm61FormTest, ARowWithoutAChoiceKeepsItsChannel) {
  auto eeprom = Sample7(2);
  eeprom[925] = 0xAB;
  Show(kPart7, eeprom);
  EXPECT_TRUE(Click(panel.rows.lblAlarm7Channel[0]));
  EXPECT_EQ(panel.rows.lblAlarm7Channel[0].Text(), "Ch 11");
  EXPECT_THAT(Eeprom(925, 1), ElementsAre(0xAB));
}

TEST_F(Frm61FormTest, ADisplayOf9AndAboveKeepsTheOldByte) {
  Show(kRows);
  panel.lblDisp[0].SetText("Ch 8");
  panel.lblDisp[1].SetText("Ch 9");
  panel.lblDisp[2].SetText("Ch 15");
  panel.lblDisp[3].SetText("Ch 0");
  EXPECT_TRUE(panel.FormRead());
  ExpectChanged(kRows, 385, {8, 5, 6, 0});
  // Such bytes are shown, or nothing is, and stay.
  SetEeprom(385, {9, 15, 16, 255});
  EXPECT_TRUE(panel.FormUpdate());
  EXPECT_THAT(Texts(panel.lblDisp), ElementsAre("Ch 9", "Ch 15", "", ""));
  EXPECT_TRUE(panel.FormRead());
  EXPECT_THAT(Eeprom(385, 4), ElementsAre(9, 15, 16, 255));
}

// The bus ID

TEST_F(Frm61FormTest, AnIdAbove29Becomes29AndIsTakenLater) {
  for (const auto& [product, address] : {std::pair{kBoth, 32U}, {kGas, 32U}, {kRows, 16U}}) {
    Show(product);
    for (const auto& [typed, shown] : {std::pair{"35", "29"}, {"29", "29"}, {"08", "8"}}) {
      Type(panel.txbID, typed);
      EXPECT_EQ(panel.txbID.Text(), shown);
    }
    Type(panel.txbID, "35");
    ExpectUnchanged(product);
    EXPECT_TRUE(panel.FormRead());
    ExpectChanged(product, address, {29});
  }
}

// Modes

TEST_F(Frm61FormTest, SimModeColoursFourLiveFieldsAndNotTheStatus) {
  Show(kRows);
  ShowLive(2250, 400, 2090);
  EXPECT_EQ(panel.txbStatus.Fore(), kGreen);
  panel.SimMode(true);
  EXPECT_EQ(panel.txbCHact.Count(), 4);
  for (const auto* field : panel.txbCHact) EXPECT_EQ(field->Fore(), kYellow) << field->Name();
  EXPECT_EQ(panel.txbStatus.Fore(), kGreen);
  panel.txbStatus.SetFore(255);
  panel.SimMode(false);
  for (const auto* field : panel.txbCHact) EXPECT_EQ(field->Fore(), kGreen) << field->Name();
  EXPECT_EQ(panel.txbStatus.Fore(), 255);
}

TEST_F(Frm61FormTest, SimModeSwitchesTheCommandsOfTheSensorButTheReset) {
  Show(kBoth);
  for (const bool on : {true, false, true}) {
    ground.session.LastError.clear();
    panel.SimMode(on);
    for (const auto* control : {&panel.mReadfromsensor, &panel.mSendtosensor, &panel.mCalibrate,
                                &panel.btnReadFromSensor, &panel.btnSendToSensor}) {
      EXPECT_EQ(control->Enabled(), !on) << control->Name();
    }
    EXPECT_TRUE(panel.mTWAreset.Enabled());
    EXPECT_EQ(panel.cbxSimulated.Value(), on ? 1 : 0);
    EXPECT_EQ(panel.form.Caption(), on ? "KVX3.0 Simulated mode" : "KVX3.0");
    EXPECT_EQ(ground.session.LastError, on ? "" : "Avbryt");
  }
}

// Another platform

TEST_F(Frm61FormTest, OnAnotherPlatformTheFieldsStayEmptyAndNothingIsDone) {
  constexpr std::uint8_t kPartOf6 = 88;
  size = 512;
  auto eeprom = Sample61(0);
  eeprom[164] = kPartOf6;
  Load(kPartOf6, eeprom);
  panel.FormUpdateInit();
  panel.FormUpdate();
  panel.FormUpdateM();
  panel.FormReadM();
  panel.Simulate();
  EXPECT_THAT(Texts(panel.txbCHact), Each(""));
  EXPECT_THAT(Texts(panel.lblDisp), Each(""));
  EXPECT_EQ(panel.txbSN.Text(), "");
  EXPECT_EQ(panel.txbID.Text(), "");
  EXPECT_THAT(Visibles(panel.pctChannel), Each(false));
  EXPECT_THAT(VisibleEntries(), IsEmpty());
  EXPECT_FALSE(panel.ActionSensorWrite());
  EXPECT_FALSE(panel.ActionSensorRead());
  EXPECT_EQ(Eeprom(), eeprom);
  EXPECT_THAT(panel.LiveValues(), IsEmpty());
  EXPECT_THAT(panel.Alarms(), IsEmpty());
}

}  // namespace
}  // namespace brelant
