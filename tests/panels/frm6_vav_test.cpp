// SPDX-License-Identifier: GPL-3.0-or-later
#include <array>
#include <map>

#include "panels/frm6_fixture.h"

namespace brelant {
namespace {

using std::chrono::seconds;
using test::Bytes;
using test::Click;
using test::EepromBytes;
using test::Frm6Test;
using test::kEnter;
using test::kPart88;
using test::Put;
using test::SampleEeprom;
using test::Type;
using testing::ElementsAre;
using testing::IsEmpty;

/// The sample of a VAV unit with a damper from 21 to 81 %: the base line -19 % (byte 116) is the upper end
/// less 100, and 40 % (byte 154) less 19 is the lower one.
EepromBytes VavSample(std::uint8_t part) {
  auto eeprom = SampleEeprom(part, 1);
  eeprom[part == 223 ? 142 : 139] = 116;
  eeprom[148] = 154;
  return eeprom;
}

/// The fixed set-up of a unit, by address.
std::map<int, int> SetUpOf(int part) {
  std::map<int, int> bytes;
  const auto put = [&bytes](int address, std::initializer_list<int> values) {
    for (const int value : values) bytes[address++] = value;
  };
  put(3, {19, 0});
  put(8, {127, 255, 0});
  put(12, {19, 136, 127, 255, 0, 6, 22, 168, 127, 255, 0, 9, 0, 0, 0, 0, 0, 0, 0, 0});
  put(106, {8, 60, 125, 191, 172, 0, 19, 136, 147, 136, 0, 19, 136, 147, 136, 9, 19, 136, 148, 80});
  put(127, {19, 136, 147, 236, 8, 0, 0, 191, 172, 0, 0});
  put(139, {128});
  put(142, {128});
  put(144, {65, 192, 0, 8, 128, 0});
  if (part == 222) {
    put(5, {6, 28, 32});
    put(11, {0});
    put(126, {0});
    put(138, {0});
    put(140, {128, 16});
    put(143, {0});
  } else {
    put(5, {1, 19, 136});
    put(11, {6});
    put(126, {1});
    put(138, {16});
    put(140, {0, 0});
    put(143, {128});
  }
  return bytes;
}

class Frm6VavFormTest : public Frm6Test {
 protected:
  void ShowPart(std::uint8_t part) { Show(VavSample(part)); }
  /// The sample with the set-up of the part.
  static EepromBytes Prepared(std::uint8_t part) {
    auto eeprom = VavSample(part);
    for (const auto& [address, value] : SetUpOf(part)) {
      eeprom.at(static_cast<std::size_t>(address)) = static_cast<std::uint8_t>(value);
    }
    return eeprom;
  }
};

TEST_F(Frm6VavFormTest, TheSetUpCoversItsAddresses) {
  for (const int part : {222, 223}) {
    const auto bytes = SetUpOf(part);
    EXPECT_EQ(bytes.size(), 29U + 44U);
    EXPECT_EQ(bytes.begin()->first, 3);
    EXPECT_EQ(bytes.rbegin()->first, 149);
    for (int address = 3; address < 150; ++address) {
      EXPECT_EQ(bytes.count(address), address < 32 || address >= 106 ? 1U : 0U) << address;
    }
  }
}

TEST_F(Frm6VavFormTest, TheSetUpIsWrittenByteForByte) {
  for (const int number : {222, 223}) {
    const auto part = static_cast<std::uint8_t>(number);
    ShowPart(part);
    panel.vav.GetInitSetVAV();
    EXPECT_EQ(Eeprom(), Prepared(part)) << number;
  }
}

TEST_F(Frm6VavFormTest, OtherPartsGetNoSetUp) {
  for (const int part : {88, 221, 95, 216}) {
    Show(VavSample(static_cast<std::uint8_t>(part)));
    panel.vav.GetInitSetVAV();
    EXPECT_EQ(Eeprom(), VavSample(static_cast<std::uint8_t>(part))) << part;
  }
}

TEST_F(Frm6VavFormTest, ShowsPart222) {
  ShowPart(222);
  EXPECT_EQ(panel.vav.txbOutV1IntTimeVAV.Text(), "16");  // 140: exponent 3
  EXPECT_EQ(panel.vav.txbOutV1IntTime.Text(), "2");      // 143: exponent 0
  EXPECT_EQ(panel.vav.txbSetPV1Temp.Text(), "22");
  EXPECT_EQ(panel.vav.txbSetPV1CO2.Text(), "800");
  EXPECT_EQ(panel.vav.optV1SlopePos.Value(), 1);
  EXPECT_EQ(panel.vav.optV1SlopeNeg.Value(), 0);
  EXPECT_EQ(panel.vav.txbUseMax.Text(), "81");
  EXPECT_EQ(panel.vav.txbUseMin.Text(), "21");
}

TEST_F(Frm6VavFormTest, ShowsPart223WithItsOutputsExchanged) {
  ShowPart(223);
  EXPECT_EQ(panel.vav.txbOutV1IntTimeVAV.Text(), "2");
  EXPECT_EQ(panel.vav.txbOutV1IntTime.Text(), "16");
  EXPECT_EQ(panel.vav.txbSetPV1Temp.Text(), "19");
  EXPECT_EQ(panel.vav.txbSetPV1CO2.Text(), "800");
  EXPECT_EQ(panel.vav.txbUseMax.Text(), "81");
  EXPECT_EQ(panel.vav.txbUseMin.Text(), "21");
}

TEST_F(Frm6VavFormTest, SetPointsGoThroughTheirChannels) {
  // Channel 2 in hundredths, channel 3 in tenths; channel 11 in tenths, channel 12 in whole ppm.
  constexpr std::array<std::uint8_t, 2> kTemperatures{0x86, 0x87};
  for (const auto& [part, temperature] : {std::pair{222, "22"}, std::pair{223, "190"}}) {
    auto eeprom = VavSample(static_cast<std::uint8_t>(part));
    std::copy(kTemperatures.begin(), kTemperatures.end(), eeprom.begin() + 220);
    Put(eeprom, 229, {0x93, 0x90});
    Show(eeprom);
    EXPECT_EQ(panel.vav.txbSetPV1Temp.Text(), temperature) << part;
    EXPECT_EQ(panel.vav.txbSetPV1CO2.Text(), "80") << part;
    panel.vav.txbSetPV1Temp.SetText("20.5");
    panel.vav.txbSetPV1CO2.SetText("90");
    EXPECT_TRUE(panel.FormRead());
    if (part == 222) {
      EXPECT_THAT(Eeprom(6, 2), ElementsAre(27, 138));  // 5000 + 2050
    } else {
      EXPECT_THAT(Eeprom(0, 2), ElementsAre(20, 85));  // 5000 + 205
    }
    EXPECT_THAT(Eeprom(18, 2), ElementsAre(23, 12));  // 5000 + 900
  }
}

TEST_F(Frm6VavFormTest, TheNoteIsHiddenAtFirstAndOnOtherFacesAndElseLeftAlone) {
  ShowPart(222);
  EXPECT_FALSE(panel.vav.lblV1Note.Visible());
  panel.vav.lblV1Note.SetVisible(true);
  EXPECT_TRUE(panel.FormUpdateInit());
  EXPECT_TRUE(panel.FormUpdate());
  EXPECT_TRUE(panel.FormRead());
  EXPECT_TRUE(panel.vav.lblV1Note.Visible());
  Show(SampleEeprom(222, 0));
  EXPECT_FALSE(panel.vav.lblV1Note.Visible());
}

TEST_F(Frm6VavFormTest, ShowsTheSlope) {
  ShowPart(222);
  SetEeprom(129, {0x7F});
  panel.FormUpdate();
  EXPECT_EQ(panel.vav.optV1SlopePos.Value(), 0);
  EXPECT_EQ(panel.vav.optV1SlopeNeg.Value(), 1);
}

TEST_F(Frm6VavFormTest, TheLowerEndGoesByTheAmountOfTheBase) {
  ShowPart(222);
  SetEeprom(139, {140});  // 18.75: 18
  panel.FormUpdate();
  EXPECT_EQ(panel.vav.txbUseMax.Text(), "118");
  EXPECT_EQ(panel.vav.txbUseMin.Text(), "22");
}

TEST_F(Frm6VavFormTest, TakingTheFormGivesTheSetUpAndTheFields) {
  struct Case {
    int part;
    std::size_t base;
    std::size_t vavExponent;
    std::size_t exponent;
    std::size_t temperature;
  };
  for (const auto& [number, base, vavExponent, exponent, temperature] :
       {Case{222, 139, 140, 143, 6}, Case{223, 142, 143, 140, 0}}) {
    const auto part = static_cast<std::uint8_t>(number);
    auto eeprom = VavSample(part);
    eeprom[173] = 1;
    eeprom[172] = 77;
    Show(eeprom);
    panel.vav.txbOutV1IntTimeVAV.SetText("64");
    panel.vav.txbOutV1IntTime.SetText("8");
    panel.vav.txbSetPV1Temp.SetText("20.5");
    panel.vav.txbSetPV1CO2.SetText("1000");
    panel.form.Select(panel.vav.optV1SlopeNeg);
    SetEeprom(173, {99});
    EXPECT_TRUE(panel.FormRead());
    auto expected = Prepared(part);
    expected[vavExponent] = 128 + 5;
    expected[exponent] = 2;
    Put(expected, temperature, {27, 138});  // 5000 + 2050
    Put(expected, 18, {23, 112});           // 5000 + 1000
    expected[129] = 19;                     // the slope flag is gone
    expected[base] = 116;
    expected[148] = 154;
    Put(expected, 124, {148, 213});  // 200 / 0.6 + 5000 = 5333.3, and the flag
    expected[172] = 77;
    expected[173] = 1;
    EXPECT_EQ(Eeprom(), expected) << number;
  }
}

TEST_F(Frm6VavFormTest, TheFormShowsTheSameAgain) {
  for (const int part : {222, 223}) {
    ShowPart(static_cast<std::uint8_t>(part));
    for (int round = 0; round < 3; ++round) {
      EXPECT_TRUE(panel.FormRead());
      panel.FormUpdate();
      EXPECT_EQ(panel.vav.txbUseMax.Text(), "81");
      EXPECT_EQ(panel.vav.txbUseMin.Text(), "21");
    }
  }
}

TEST_F(Frm6VavFormTest, APartOfItsOwnIsLaidOutAs222WithoutTheSetUp) {
  Show(VavSample(kPart88));
  EXPECT_EQ(panel.vav.txbUseMax.Text(), "81");
  EXPECT_EQ(panel.vav.txbSetPV1Temp.Text(), "22");
  panel.vav.txbSetPV1Temp.SetText("20.5");
  EXPECT_TRUE(panel.FormRead());
  auto expected = VavSample(kPart88);
  Put(expected, 6, {27, 138});
  Put(expected, 124, {148, 213});
  EXPECT_EQ(Eeprom(), expected);
}

TEST_F(Frm6VavFormTest, WithBothEndsEqualTheWordOfTheRampStays) {
  ShowPart(222);
  panel.vav.txbUseMin.SetText("81");
  EXPECT_TRUE(panel.FormRead());
  EXPECT_THAT(Eeprom(124, 2), ElementsAre(148, 80));
  // 100 - 81 + 81 = 100.
  EXPECT_THAT(Eeprom(148, 1), ElementsAre(192));
}

TEST_F(Frm6VavFormTest, ExponentsAreRoundedToTheNearest) {
  ShowPart(222);
  struct Case {
    const char* typed;
    int exponent;
    const char* shown;
  };
  // log2(3 / 2) = 0.58; log2(2.8 / 2) = 0.49; log2(180 / 2) = 6.49; log2(182 / 2) = 6.51.
  for (const auto& [typed, exponent, shown] :
       {Case{"3", 1, "4"}, Case{"2.8", 0, "2"}, Case{"180", 6, "128"}, Case{"182", 7, "256"},
        Case{"1000", 7, "256"}, Case{"1", 0, "2"}}) {
    Type(panel.vav.txbOutV1IntTimeVAV, typed);
    EXPECT_THAT(Eeprom(140, 1), ElementsAre(128 + exponent)) << typed;
    EXPECT_EQ(panel.vav.txbOutV1IntTimeVAV.Text(), shown);
  }
}

TEST_F(Frm6VavFormTest, ATimeThatIsNoNumberAbove0IsRefusedAndNothingIsTaken) {
  for (auto* time : {&panel.vav.txbOutV1IntTimeVAV, &panel.vav.txbOutV1IntTime}) {
    for (const char* text : {"0", "-2", ""}) {
      ShowPart(222);
      ground.session.LastError.clear();
      panel.txbID.SetText("12");
      time->SetText(text);
      EXPECT_FALSE(panel.FormRead());
      EXPECT_NE(ground.session.LastError, "");
      EXPECT_EQ(Eeprom(), VavSample(222));
    }
  }
}

TEST_F(Frm6VavFormTest, ASlopeIsChosen) {
  ShowPart(222);
  EXPECT_TRUE(Click(panel.vav.optV1SlopeNeg));
  EXPECT_THAT(Eeprom(129, 1), ElementsAre(19));
  EXPECT_TRUE(Click(panel.vav.optV1SlopePos));
  EXPECT_THAT(Eeprom(129, 1), ElementsAre(147));
}

// The limits as they are typed

TEST_F(Frm6VavFormTest, ALimitThatIsLeftIsLimitedAndAsksForItsCommand) {
  struct Case {
    const char* typed;
    const char* shown;
  };
  ShowPart(222);
  for (const bool isMax : {true, false}) {
    auto& field = isMax ? panel.vav.txbUseMax : panel.vav.txbUseMin;
    for (const auto& [typed, shown] :
         {Case{"150", "100"}, Case{"-5", "0"}, Case{"70", "70"}, Case{"100", "100"}}) {
      const auto before = Eeprom();
      ground.session.PanelCommand = 0;
      ground.msg.ShowProgress("", true, &panel.form);
      Type(field, typed);
      EXPECT_EQ(field.Text(), shown);
      EXPECT_EQ(ground.session.PanelCommand, isMax ? 15 : 16);
      EXPECT_EQ(ground.msg.Label1.Text(), "Please wait");
      EXPECT_TRUE(ground.msg.Visible());
      EXPECT_FALSE(ground.msg.ProgressBar1.Visible());
      EXPECT_EQ(field.Back(), test::kFieldBack);
      EXPECT_EQ(field.Fore(), test::kYellow);
      // The form is not taken.
      EXPECT_EQ(Eeprom(), before);
    }
  }
}

TEST_F(Frm6VavFormTest, ALimitIsTakenOnceByEnterAndLeaving) {
  ShowPart(222);
  panel.form.GainFocus(panel.vav.txbUseMin);
  EXPECT_EQ(panel.vav.txbUseMin.Back(), test::kWhite);
  panel.form.ChangeText(panel.vav.txbUseMin, "30");
  EXPECT_TRUE(panel.form.PressKey(panel.vav.txbUseMin, kEnter));
  EXPECT_EQ(ground.session.PanelCommand, 16);
  ground.session.PanelCommand = 0;
  panel.form.LoseFocus(panel.vav.txbUseMin);
  EXPECT_EQ(ground.session.PanelCommand, 0);
  EXPECT_FALSE(panel.form.PressKey(panel.vav.txbUseMin, 'A'));
}

// The buttons, without a line

TEST_F(Frm6VavFormTest, TheButtonsMoveAtLeastOneStep) {
  struct Case {
    const char* name;
    const char* from;
    const char* shown;
    int byte;
    int command;
  };
  for (const auto& [name, from, shown, byte, command] :
       {Case{"Command6", "81", "82", 181, 15}, Case{"Command6", "50", "51", 161, 15},
        Case{"Command1", "21", "23", 143, 16}, Case{"Command1", "0", "1", 129, 16},
        // 80 gives 180, which is 81 again; 79 is the next try.
        Case{"Command5", "81", "79", 179, 15}, Case{"Command5", "82", "81", 180, 15},
        // 49 gives 160, which is 50 again; 48 is the next try.
        Case{"Command2", "50", "48", 159, 16}, Case{"Command2", "21", "20", 141, 16},
        // Ends that no byte stands for: 79 is 178.56, 26 is 144.64.
        Case{"Command5", "80", "79", 179, 15}, Case{"Command2", "27", "26", 145, 16},
        // The ends: the byte has moved on, the text has not.
        Case{"Command6", "100", "100", 193, 15}, Case{"Command1", "100", "100", 193, 16},
        Case{"Command5", "0", "0", 127, 15}, Case{"Command2", "0", "0", 127, 16}}) {
    for (const int part : {222, 223}) {
      ShowPart(static_cast<std::uint8_t>(part));
      const bool isMax = command == 15;
      auto& field = isMax ? panel.vav.txbUseMax : panel.vav.txbUseMin;
      field.SetText(from);
      ground.session.PanelCommand = 0;
      ground.msg.ShowProgress("", true, &panel.form);
      EXPECT_TRUE(Click(Entry(name)));
      EXPECT_EQ(field.Text(), shown) << name << from;
      EXPECT_EQ(ground.session.PanelCommand, command);
      EXPECT_EQ(ground.msg.Label1.Text(), "Please wait");
      EXPECT_FALSE(ground.msg.ProgressBar1.Visible());
      // Byte 139 on either part number.
      auto expected = VavSample(static_cast<std::uint8_t>(part));
      expected[139] = static_cast<std::uint8_t>(byte);
      EXPECT_EQ(Eeprom(), expected) << name << from;
    }
  }
}

TEST_F(Frm6VavFormTest, ThroughTheWholeRangeEachPressMovesTheByte) {
  ShowPart(222);
  panel.vav.txbUseMax.SetText("0");
  int before = 128;
  for (int press = 0; press < 64; ++press) {
    EXPECT_TRUE(Click(panel.vav.Command6));
    EXPECT_EQ(Eeprom(139, 1).front(), before + 1) << press;
    before = Eeprom(139, 1).front();
  }
  EXPECT_EQ(panel.vav.txbUseMax.Text(), "100");
  for (int press = 0; press < 64 && panel.vav.txbUseMax.Text() != "0"; ++press) {
    EXPECT_TRUE(Click(panel.vav.Command5));
    EXPECT_LT(Eeprom(139, 1).front(), before) << press;
    before = Eeprom(139, 1).front();
  }
  EXPECT_EQ(panel.vav.txbUseMax.Text(), "0");
}

TEST_F(Frm6VavFormTest, AStepDownFromTheLowestByteEnds) {
  ShowPart(222);
  SetEeprom(139, {128});
  SetEeprom(148, {0});
  panel.FormUpdate();
  EXPECT_EQ(panel.vav.txbUseMin.Text(), "-200");
  // -201 is byte 0, which shows -200 again, and so does everything below.
  EXPECT_TRUE(Click(panel.vav.Command2));
  EXPECT_EQ(panel.vav.txbUseMin.Text(), "0");
  EXPECT_THAT(Eeprom(139, 1), ElementsAre(0));
}

// With a sensor

class Frm6VavSensorTest : public test::Frm6SensorTest {
 protected:
  explicit Frm6VavSensorTest(std::uint8_t part = 222) : Frm6SensorTest(part, 1, true), part_(part) {
    Hold(VavSample(part_));
    Show(VavSample(part_));
    port.sensor.ForgetFrames();
  }

  /// What the sensor holds now: the sample with these bytes changed.
  void ExpectHeld(std::size_t address, std::initializer_list<std::uint8_t> bytes) {
    auto expected = VavSample(part_);
    Put(expected, address, bytes);
    EXPECT_EQ(Held(), expected);
  }
  std::size_t BaseByte() const { return part_ == 223 ? 142 : 139; }

 private:
  std::uint8_t part_;
};
class Frm6VavSensorTest223 : public Frm6VavSensorTest {
 protected:
  Frm6VavSensorTest223() : Frm6VavSensorTest(223) {}
};

TEST_F(Frm6VavSensorTest, ALimitIsSentAtOnce) {
  panel.vav.txbUseMax.SetText("70");
  EXPECT_TRUE(panel.ActionVAV(true));
  // 270 / 400 x 256 = 172.8. What feeds the outputs and the exponent go to 0.
  EXPECT_THAT(port.sensor.Frames(),
              ElementsAre(ElementsAre(65, 102, 0, 167), ElementsAre(147, 0, 147),
                          ElementsAre(12, 69, 0, 173, 0, 2, 0), ElementsAre(16, 0, 16), testing::_));
  ExpectHeld(138, {0, 173, 0, 2});
  EXPECT_EQ(port.sensor.Count().saves, 1);
  EXPECT_TRUE(port.sensor.Locked());
  EXPECT_FALSE(port.PortOpen());
  EXPECT_EQ(panel.vav.txbUseMax.Text(), "70");
  EXPECT_EQ(panel.vav.lblV1Note.Value(), 270);
  EXPECT_FALSE(panel.vav.lblV1Note.Visible());
}

TEST_F(Frm6VavSensorTest, TheLowerEndGoesToTheSameByte) {
  panel.vav.txbUseMin.SetText("30.5");
  EXPECT_TRUE(panel.ActionVAV(false));
  // 230.5 / 400 x 256 = 147.5; 148 is 31.25 %.
  EXPECT_EQ(panel.vav.txbUseMin.Text(), "31");
  ExpectHeld(138, {0, 148, 0, 2});
  EXPECT_EQ(panel.vav.lblV1Note.Value(), 660);
  EXPECT_EQ(panel.vav.txbUseMax.Text(), "81");
}

TEST_F(Frm6VavSensorTest223, ALimitOfPart223HasItsOwnBytes) {
  panel.vav.txbUseMax.SetText("70");
  EXPECT_TRUE(panel.ActionVAV(true));
  EXPECT_THAT(Writes(), ElementsAre(ElementsAre(12, 70, 3, 0, 173, 0, 2)));
  ExpectHeld(140, {3, 0, 173, 0});
  panel.vav.txbUseMin.SetText("30");
  EXPECT_TRUE(panel.ActionVAV(false));
  ExpectHeld(140, {3, 0, 148, 0});
}

TEST_F(Frm6VavSensorTest, FourBytesGoWhateverElseTheFormHasChanged) {
  panel.vav.txbUseMax.SetText("70");
  EXPECT_TRUE(panel.ActionVAV(true));
  // The set-up: 16 in 141, and other bytes around the four.
  EXPECT_TRUE(panel.FormRead());
  EXPECT_TRUE(panel.ActionVAV(true));
  ExpectHeld(138, {0, 173, 0, 16});
}

TEST_F(Frm6VavSensorTest223, FourBytesGoWhateverElseTheFormHasChanged) {
  panel.vav.txbOutV1IntTime.SetText("8");
  panel.vav.txbUseMax.SetText("70");
  EXPECT_TRUE(panel.FormRead());
  EXPECT_TRUE(panel.ActionVAV(true));
  ExpectHeld(140, {2, 0, 173, 0});
}

TEST_F(Frm6VavSensorTest, OnlyWhatHasChangedIsSent) {
  panel.vav.txbUseMax.SetText("70");
  EXPECT_TRUE(panel.ActionVAV(true));
  port.sensor.ForgetFrames();
  panel.vav.txbUseMax.SetText("60");
  EXPECT_TRUE(panel.ActionVAV(true));
  // 260 / 400 x 256 = 166.4.
  EXPECT_THAT(Writes(), ElementsAre(ElementsAre(10, 69, 0, 167, 246)));
  port.sensor.ForgetFrames();
  EXPECT_TRUE(panel.ActionVAV(true));
  EXPECT_THAT(Writes(), IsEmpty());
}

TEST_F(Frm6VavSensorTest, NothingElseOfTheFormIsSent) {
  panel.txbID.SetText("12");
  panel.vav.txbSetPV1Temp.SetText("20");
  panel.vav.txbUseMax.SetText("70");
  EXPECT_TRUE(panel.ActionVAV(true));
  ExpectHeld(138, {0, 173, 0, 2});
}

TEST_F(Frm6VavSensorTest, TheOtherEndComesBackWhenTheFormIsTaken) {
  panel.vav.txbUseMin.SetText("30");
  EXPECT_TRUE(panel.ActionVAV(false));
  EXPECT_EQ(panel.vav.txbUseMin.Text(), "31");
  EXPECT_TRUE(panel.ActionSensorWrite());
  const auto held = Held();
  // 81 - 100 = -19, and 100 - 81 + 31 = 50.
  EXPECT_EQ(held[139], 116);
  EXPECT_EQ(held[148], 160);
  panel.FormUpdate();
  EXPECT_EQ(panel.vav.txbUseMax.Text(), "81");
  EXPECT_EQ(panel.vav.txbUseMin.Text(), "31");
}

TEST_F(Frm6VavSensorTest, SendingGivesTheUnitItsSetUp) {
  EXPECT_TRUE(panel.ActionSensorWrite());
  auto expected = VavSample(222);
  for (const auto& [address, value] : SetUpOf(222)) {
    expected.at(static_cast<std::size_t>(address)) = static_cast<std::uint8_t>(value);
  }
  expected[139] = 116;
  expected[140] = 128 + 3;
  Put(expected, 124, {148, 213});
  expected[148] = 154;
  EXPECT_EQ(Held(), expected);
}

TEST_F(Frm6VavSensorTest, TheWriteShowsItsProgress) {
  std::vector<std::string> progress;
  test::NoteProgress(ground, progress);
  EXPECT_TRUE(panel.ActionVAV(true));
  EXPECT_THAT(progress, ElementsAre("Ändrar baseline"));
}

TEST_F(Frm6VavSensorTest, TheProgressHasABarAndStandsBeforeAnythingIsTaken) {
  std::vector<int> bytes;
  bool bar = false;
  ground.pump.InPass(1, [&] { bytes = Eeprom(138, 4); });
  test::BeforeEachOutput(port, [&](const Bytes&) {
    bar = ground.msg.ProgressBar1.Visible();
    return true;
  });
  panel.vav.txbUseMax.SetText("70");
  EXPECT_TRUE(panel.ActionVAV(true));
  EXPECT_TRUE(bar);
  EXPECT_THAT(bytes, ElementsAre(41, 116, 3, 2));
}

TEST_F(Frm6VavSensorTest, AWriteThatFailsLeavesThePortClosed) {
  test::PullOff(port);
  EXPECT_FALSE(panel.ActionVAV(true));
  EXPECT_FALSE(port.PortOpen());
  EXPECT_TRUE(panel.vav.lblV1Note.Visible());
}

TEST_F(Frm6VavSensorTest, AReadOrASendThatFailsLeavesTheNote) {
  test::PullOff(port);
  panel.vav.lblV1Note.SetVisible(true);
  EXPECT_FALSE(panel.ActionSensorWrite());
  EXPECT_TRUE(panel.vav.lblV1Note.Visible());
  session.LastError.clear();
  EXPECT_FALSE(panel.ActionSensorRead());
  EXPECT_TRUE(panel.vav.lblV1Note.Visible());
}

TEST_F(Frm6VavSensorTest, TheNoteStaysUntilAWriteSucceeds) {
  const auto answer = port.onOutput;
  After(seconds(1), [this] {
    test::PullOff(port);
    Type(panel.vav.txbUseMin, "30");
  });
  Run(seconds(40));
  // And the next poll finds the line dead too.
  EXPECT_THAT(ground.ui.Texts(),
              ElementsAre(testing::StartsWith("Can't"), "No sensor detected, entering simulated mode."));
  EXPECT_TRUE(panel.vav.lblV1Note.Visible());
  EXPECT_EQ(panel.vav.lblV1Note.Value(), 660);
  port.onOutput = answer;
  session.sessionOver = false;
  EXPECT_TRUE(panel.ActionVAV(true));
  EXPECT_FALSE(panel.vav.lblV1Note.Visible());
}

TEST_F(Frm6VavSensorTest, ReadingAndSendingHideTheNoteToo) {
  panel.vav.lblV1Note.SetVisible(true);
  EXPECT_TRUE(panel.ActionSensorRead());
  EXPECT_FALSE(panel.vav.lblV1Note.Visible());
  panel.vav.lblV1Note.SetVisible(true);
  EXPECT_TRUE(panel.ActionSensorWrite());
  EXPECT_FALSE(panel.vav.lblV1Note.Visible());
}

TEST_F(Frm6VavSensorTest, ShowsTheLiveOutputsOfPart222) {
  HoldWord(236, 163 * 42);
  HoldWord(238, 163 * 17);
  EXPECT_TRUE(panel.ActionSensorReadM());
  EXPECT_EQ(panel.vav.txbOutV1OutVAV.Text(), "42");
  EXPECT_EQ(panel.vav.txbOutV1Out.Text(), "17");
}

TEST_F(Frm6VavSensorTest223, ShowsTheLiveOutputsOfPart223Exchanged) {
  HoldWord(236, 163 * 42);
  HoldWord(238, 163 * 17);
  EXPECT_TRUE(panel.ActionSensorReadM());
  EXPECT_EQ(panel.vav.txbOutV1OutVAV.Text(), "17");
  EXPECT_EQ(panel.vav.txbOutV1Out.Text(), "42");
}

/// A person who clicks once a second while the panel polls: what the damper's byte becomes.
class Frm6DamperTest : public Frm6VavSensorTest, public testing::WithParamInterface<int> {
 protected:
  Frm6DamperTest() : Frm6VavSensorTest(static_cast<std::uint8_t>(GetParam())) {}

  std::vector<int> Clicks(const std::string& button, int times) {
    std::vector<int> bytes;
    for (int i = 1; i <= times; ++i) {
      After(seconds(2 * i), [this, button] { EXPECT_TRUE(Click(Entry(button))); });
      After(seconds(2 * i) + std::chrono::milliseconds(1900),
            [this, &bytes] { bytes.push_back(port.sensor.Eeprom()[BaseByte()]); });
    }
    Run(seconds(2 * times + 2));
    return bytes;
  }
};
INSTANTIATE_TEST_SUITE_P(, Frm6DamperTest, testing::Values(222, 223));

TEST_P(Frm6DamperTest, TheButtonsMoveTheDamperWhileTheyAreClicked) {
  const auto before = Held();
  // From 81 %: 82, 83.., and down again; then the lower end from 21 %.
  EXPECT_THAT(Clicks("Command6", 3), ElementsAre(181, 182, 183));
  EXPECT_EQ(panel.vav.txbUseMax.Text(), "85");
  EXPECT_THAT(Clicks("Command5", 3), ElementsAre(182, 181, 180));
  EXPECT_EQ(panel.vav.txbUseMax.Text(), "81");
  EXPECT_THAT(Clicks("Command1", 2), ElementsAre(143, 144));
  EXPECT_EQ(panel.vav.txbUseMin.Text(), "25");
  EXPECT_THAT(Clicks("Command2", 2), ElementsAre(143, 142));
  EXPECT_EQ(panel.vav.txbUseMin.Text(), "21");
  EXPECT_TRUE(ground.ui.messages.empty());
  EXPECT_FALSE(ground.msg.Visible());
  // Nothing else has moved in the sensor.
  auto expected = before;
  if (GetParam() == 222) {
    Put(expected, 138, {0, 142, 0});
  } else {
    Put(expected, 141, {0, 142, 0});
  }
  EXPECT_EQ(Held(), expected);
}

TEST_P(Frm6DamperTest, TheDamperStopsAtItsEnds) {
  panel.vav.txbUseMax.SetText("98");
  EXPECT_THAT(Clicks("Command6", 3), ElementsAre(192, 192, 192));
  EXPECT_EQ(panel.vav.txbUseMax.Text(), "100");
  panel.vav.txbUseMin.SetText("3");
  EXPECT_THAT(Clicks("Command2", 3), ElementsAre(129, 128, 128));
  EXPECT_EQ(panel.vav.txbUseMin.Text(), "0");
}

}  // namespace
}  // namespace brelant
