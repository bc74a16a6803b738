// SPDX-License-Identifier: GPL-3.0-or-later
#include "safety/dialog_fixture.h"

namespace brelant {
namespace {

using test::Click;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Not;

constexpr const char* kChanged = "Sensor ID changed\n\nSensor must be restarted for changes to take effect";
constexpr const char* kInvalid = "Invalid Sensor ID!\n\nSensor ID must be greater then 0 and less then 30";

class ConfigDialogTest : public test::DialogTest {
 protected:
  ConfigDialogTest() {
    Put(4401, {5, 4, 8, 11});
    Put(4409, {9, 9, 4, 5});
    unit.eeprom[4160] = 17;
  }

  void Put(std::size_t address, const std::vector<std::uint8_t>& bytes) {
    std::copy(bytes.begin(), bytes.end(), unit.eeprom.begin() + static_cast<std::ptrdiff_t>(address));
  }
  void In(const std::function<void()>& acts) {
    EXPECT_EQ(DialogTest::In(panel.m_ConfigureSensor, dialog.form, acts), 1);
  }
  void Choose(int list, const std::string& channel) {
    EXPECT_TRUE(dialog.form.Choose(*dialog.cmbValue.at(static_cast<std::size_t>(list)), channel));
  }
  void SetId(const std::string& text) {
    In([&] {
      Forget();
      EXPECT_TRUE(dialog.form.ChangeText(dialog.txtNewID, text));
      EXPECT_TRUE(Click(dialog.btnUpdateNetworkD));
      shownId = dialog.txtCurrentID.Text();
    });
  }
  /// Presses one of the two options and the button.
  void SetFormat(int option) {
    In([&] {
      Forget();
      EXPECT_TRUE(Click(dialog.optTemp[option]));
      EXPECT_TRUE(Click(dialog.btnUpdateTempFormat));
    });
  }

  frmZ7731SensorConfig& dialog = panel.SensorConfig;
  std::string shownId;
};

TEST_F(ConfigDialogTest, HasItsCaptions) {
  EXPECT_EQ(dialog.form.Name(), "frmZ7731SensorConfig");
  EXPECT_EQ(dialog.form.Caption(), "Sensor Configuration");
  EXPECT_EQ(dialog.btnUpdateDisplaySequence.Text(), "Update display sequence");
  EXPECT_EQ(dialog.optTemp[0].Text(), "Celsius");
  EXPECT_EQ(dialog.optTemp[1].Text(), "Fahrenheit");
  EXPECT_EQ(dialog.btnUpdateTempFormat.Text(), "Update temperature format");
  EXPECT_EQ(dialog.btnUpdateNetworkD.Text(), "Update network ID");
}

TEST_F(ConfigDialogTest, OpensWithWhatThePanelKnows) {
  for (const auto road : test::kRoads) {
    StartOn(road);
    In([this] {
      EXPECT_EQ(dialog.txtCurrentID.Text(), "17");
      EXPECT_EQ(dialog.txtNewID.Text(), "17");
      EXPECT_FALSE(dialog.txtCurrentID.Editable());
      std::vector<std::string> chosen;
      std::vector<int> lines;
      for (const auto* list : dialog.cmbValue) {
        EXPECT_THAT(list->Items(), ElementsAre("CO2", "TEMP 1", "TEMP 2", "WEIGHT", "TWA CO2"));
        chosen.push_back(list->Text());
        lines.push_back(list->Value());
      }
      EXPECT_THAT(chosen, ElementsAre("CO2", "TEMP 1", "TWA CO2", "WEIGHT"));
      EXPECT_THAT(lines, ElementsAre(0, 1, 4, 3));
      EXPECT_EQ(dialog.optTemp[0].Value(), 1);
      EXPECT_EQ(dialog.optTemp[1].Value(), 0);
    });
    EXPECT_EQ(Transfers(), 0U);
    panel.LeaveSession();
  }
}

TEST_F(ConfigDialogTest, FahrenheitIsChosenForAUnitInIt) {
  unit.eeprom[7964] = 10;
  StartOnKiBus();
  In([this] {
    EXPECT_EQ(dialog.optTemp[0].Value(), 0);
    EXPECT_EQ(dialog.optTemp[1].Value(), 1);
  });
}

TEST_F(ConfigDialogTest, NeitherIsChosenForAnotherUnit) {
  unit.eeprom[7964] = 4 << 2;
  StartOnKiBus();
  In([this] {
    EXPECT_EQ(dialog.optTemp[0].Value(), 0);
    EXPECT_EQ(dialog.optTemp[1].Value(), 0);
  });
}

TEST_F(ConfigDialogTest, TheSequenceIsWrittenInOrder) {
  StartOnKiBus();
  In([this] {
    Choose(0, "WEIGHT");
    Choose(2, "TEMP 2");
    EXPECT_TRUE(Click(dialog.btnUpdateDisplaySequence));
  });
  EXPECT_THAT(Writes(), ElementsAre("E4401 = 11", "E4402 = 4", "E4403 = 9", "E4404 = 11"));
  EXPECT_THAT(Told(), ElementsAre("Display sequence changed"));
}

TEST_F(ConfigDialogTest, ModelSevenHasItsOwnSequence) {
  unit.eeprom[4125] = 7;
  for (const auto road : test::kRoads) {
    Put(4409, {9, 9, 4, 5});
    StartOn(road);
    In([this] {
      EXPECT_EQ(dialog.Model, 7);
      EXPECT_EQ(dialog.cmbValue[0]->Text(), "TEMP 2");
      EXPECT_EQ(dialog.cmbValue[3]->Text(), "CO2");
      Choose(1, "TWA CO2");
      EXPECT_TRUE(Click(dialog.btnUpdateDisplaySequence));
    });
    mirror.Mind();
    EXPECT_THAT(std::vector(unit.eeprom.begin() + 4409, unit.eeprom.begin() + 4413), ElementsAre(9, 8, 4, 5));
    EXPECT_THAT(std::vector(unit.eeprom.begin() + 4401, unit.eeprom.begin() + 4405),
                ElementsAre(5, 4, 8, 11));
    EXPECT_THAT(Told(), ElementsAre("Display sequence changed"));
    panel.LeaveSession();
  }
}

TEST_F(ConfigDialogTest, AllFourAreTriedWhenOneIsNotTaken) {
  StartOnKiBus();
  Refuse(4402, 1);
  In([this] {
    for (int i = 0; i < 4; ++i) Choose(i, "TEMP 2");
    EXPECT_TRUE(Click(dialog.btnUpdateDisplaySequence));
  });
  EXPECT_THAT(Writes(), ElementsAre("E4401 = 9", "E4402 = 9", "E4402 = 9", "E4402 = 9", "E4402 = 9",
                                    "E4402 = 9", "E4403 = 9", "E4404 = 9"));
  EXPECT_THAT(Told(), ElementsAre("Could not change display sequence"));
}

TEST_F(ConfigDialogTest, TheFormatIsWrittenToBothTemperatures) {
  unit.eeprom[7964] = 0x67;  // the bits around the unit, one decimal
  unit.eeprom[7969] = 0x86;
  StartOnKiBus();
  SetFormat(1);
  // (0x67 and 227) or 8, (0x86 and 227) or 8; then both are read anew.
  EXPECT_THAT(Writes(), ElementsAre("E7964 = 107", "E7969 = 138"));
  EXPECT_THAT(Told(), ElementsAre("Temperature format changed"));
  SetFormat(0);
  EXPECT_THAT(Writes(), ElementsAre("E7964 = 103", "E7969 = 134"));
}

TEST_F(ConfigDialogTest, TheFormatThatWasReadBackIsThePanels) {
  StartOnKiBus();
  In([this] {
    EXPECT_TRUE(Click(dialog.optTemp[1]));
    EXPECT_TRUE(Click(dialog.btnUpdateTempFormat));
    EXPECT_THAT(Frames(),
                ElementsAre("E7964 = 10", "E7964+1", "E7969 = 10", "E7969+1", "E7964+1", "E7969+1"));
  });
  // It opens with Fahrenheit though nothing was read since; and the live value is shown in it.
  In([this] { EXPECT_EQ(dialog.optTemp[1].Value(), 1); });
  PutLive(4, 2200);
  ASSERT_TRUE(panel.FormUpdate());
  EXPECT_EQ(panel.txbCHact[0].Text(), "71.6");
}

TEST_F(ConfigDialogTest, TheFormatGoesOverModbusToo) {
  unit.eeprom[7965] = 22;
  unit.eeprom[7968] = 18;
  StartOnModbus();
  SetFormat(1);
  EXPECT_THAT(Told(), ElementsAre("Temperature format changed"));
  mirror.Mind();
  // The neighbours in their registers stay.
  EXPECT_THAT(std::vector(unit.eeprom.begin() + 7964, unit.eeprom.begin() + 7966), ElementsAre(10, 22));
  EXPECT_THAT(std::vector(unit.eeprom.begin() + 7968, unit.eeprom.begin() + 7970), ElementsAre(18, 10));
  In([this] { EXPECT_EQ(dialog.optTemp[1].Value(), 1); });
}

TEST_F(ConfigDialogTest, AFormatThatIsNotTakenIsTold) {
  for (const std::size_t refused : {7964, 7969}) {
    const auto answer = port.onOutput;
    unit.eeprom[7964] = unit.eeprom[7969] = 6;
    StartOnKiBus();
    Refuse(refused, 1);
    SetFormat(1);
    EXPECT_THAT(Told(), ElementsAre("Could not change temperature format"));
    // Both are tried, and the panel keeps what it had.
    EXPECT_EQ(Writes().size(), 6U);
    In([this] { EXPECT_EQ(dialog.optTemp[0].Value(), 1); });
    panel.LeaveSession();
    port.onOutput = answer;
  }
}

TEST_F(ConfigDialogTest, IdsFrom1To29AreTaken) {
  for (const auto road : test::kRoads) {
    StartOn(road);
    for (const char* id : {"1", "29"}) {
      SetId(id);
      EXPECT_EQ(shownId, id);
      EXPECT_THAT(Told(), ElementsAre(kChanged));
      // Register 8192 and half the address.
      const int there =
          road == frmComSet::kiBus ? unit.eeprom[4160] : modbus.units.at(1).holding.at(10272) >> 8;
      EXPECT_EQ(std::to_string(there), id);
    }
    panel.LeaveSession();
  }
}

TEST_F(ConfigDialogTest, AnIdIsWrittenOnceAndNotReadBack) {
  StartOnKiBus();
  SetId("29");
  EXPECT_THAT(Frames(), ElementsAre("E4160 = 29"));
  In([this] {
    EXPECT_EQ(dialog.txtCurrentID.Text(), "29");
    EXPECT_EQ(dialog.txtNewID.Text(), "29");
  });
}

TEST_F(ConfigDialogTest, OtherIdsAreRefused) {
  StartOnKiBus();
  for (const char* id : {"0", "30", "-1", "255", "29.6", "0,5"}) {
    SetId(id);
    EXPECT_THAT(Told(), ElementsAre(kInvalid)) << id;
    EXPECT_EQ(ground.ui.messages.at(0).title, "Invalid Sensor ID");
    EXPECT_THAT(Frames(), IsEmpty());
    EXPECT_EQ(shownId, "17");
  }
}

TEST_F(ConfigDialogTest, ATextThatIsNoNumberChangesNothing) {
  StartOnKiBus();
  for (const char* id : {"", "abc", "2x"}) {
    SetId(id);
    EXPECT_THAT(Frames(), IsEmpty()) << id;
    EXPECT_EQ(shownId, "17") << id;
    EXPECT_THAT(Told(), ElementsAre(Not(IsEmpty())));
  }
}

TEST_F(ConfigDialogTest, AnIdThatCannotBeWrittenChangesNothing) {
  StartOnKiBus();
  In([this] {
    Silence();
    EXPECT_TRUE(dialog.form.ChangeText(dialog.txtNewID, "12"));
    EXPECT_TRUE(Click(dialog.btnUpdateNetworkD));
    EXPECT_EQ(dialog.txtCurrentID.Text(), "17");
  });
  EXPECT_THAT(Told(), ElementsAre(Not(kChanged)));
}

TEST_F(ConfigDialogTest, AChangedIdLeavesTheConnectionInUse) {
  StartOnKiBus();
  SetId("12");
  port.Forget();
  ASSERT_TRUE(panel.GetAllStaticValues(true)) << session.LastError;
  // Still the request to the only unit there is, 254, and not 224 and the new ID.
  EXPECT_EQ(port.Sent().front(), 254);
  EXPECT_EQ(panel.txbID.Text(), "12");
}

TEST_F(ConfigDialogTest, ThePanelReadsAnewBehindIt) {
  StartOnKiBus();
  NoteBox();
  After(std::chrono::milliseconds(500), [this] {
    In([this] {
      PutSetting(4240, 2450);
      boxes.clear();
    });
    EXPECT_EQ(session.PanelCommand, 1);
  });
  Run(std::chrono::milliseconds(1900));
  EXPECT_EQ(panel.txbKelLevel[4].Text(), "24.5");
  EXPECT_THAT(boxes, ElementsAre("Please wait", "Reading from sensor", ""));
}

}  // namespace
}  // namespace brelant
