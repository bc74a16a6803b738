// SPDX-License-Identifier: GPL-3.0-or-later
#include "safety/z7731_fixture.h"

namespace brelant {
namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Not;
using testing::SizeIs;
using testing::StartsWith;

constexpr const char* kFailed =
    "Writing one or more values to Sensor FAILED.\n\nPlease try to send the values one more time.";

class Z7731SendTest : public test::StillUnitTest {
 protected:
  bool Send() { return panel.FormRead(true); }
  /// Other levels than those of the unit, each another one.
  void TypeLevels() {
    const std::vector<std::string> levels{"1.01", "2.02", "3.03", "14.04", "25.05",
                                          "6.06", "7.07", "8.08", "9.09"};
    for (int i = 0; i < 9; ++i) panel.txbKelLevel[i].SetText(levels.at(static_cast<std::size_t>(i)));
  }
  /// The unit confirms writes to that byte of EEPROM, but keeps only those behind the first `times`.
  void Forgets(std::size_t address, int times) {
    const std::string word = "E" + std::to_string(address) + " = ";
    const auto before = unit.eeprom.at(address);
    const auto next = unit.eeprom.at(address + 1);
    ground.pump.OnPass([=, this] {
      if (CountWrites(word) <= times) {
        unit.eeprom.at(address) = before;
        unit.eeprom.at(address + 1) = next;
      }
      return false;
    });
  }
  int CountWrites(const std::string& word) const {
    const auto writes = Writes();
    return static_cast<int>(std::count_if(writes.begin(), writes.end(),
                                          [&](const auto& each) { return each.starts_with(word); }));
  }
  void ExpectToldOnce() {
    ASSERT_THAT(ground.ui.messages, SizeIs(1));
    const auto& message = ground.ui.messages.front();
    EXPECT_EQ(message.text, kFailed);
    EXPECT_EQ(message.title, "Write to Meter Failed");
    EXPECT_EQ(message.buttons, UserInterface::Buttons::ok);
  }
  /// Raw words of these levels as the unit gets them.
  std::vector<std::string> WritesOfWeight(const std::string& pre, const std::string& main) {
    panel.txbKelLevel[5].SetText(pre);
    panel.txbKelLevel[6].SetText(main);
    Forget();
    EXPECT_TRUE(Send());
    auto writes = Writes();
    std::erase_if(writes,
                  [](const auto& each) { return !each.starts_with("E4354") && !each.starts_with("E4356"); });
    return writes;
  }
};

TEST_F(Z7731SendTest, SendsAllInTheToldOrderOnKiBus) {
  StartOnKiBus();
  TypeLevels();
  EXPECT_TRUE(Send());
  EXPECT_THAT(Writes(),
              ElementsAre("E4242 = 1404",   // temperature 1 low
                          "E4240 = 2505",   // high
                          "E4246 = 101",    // CO2 pre
                          "E4244 = 202",    // main
                          "E4250 = 303",    // TWA twice
                          "E4248 = 303",    //
                          "E4252 = 808",    // temperature 2 low
                          "E4254 = 909",    // high
                          "E4354 = 656",    // weight pre with the offset of 50
                          "E4356 = 757",    // main
                          "E4602 = 37302",  // TWA on P0
                          "E4434 = 34448", "E4436 = 34448", "E4438 = 24064",  // 0x8690, 0x5E00
                          "E4401 = 5", "E4402 = 4", "E4403 = 8", "E4404 = 11", "E7964 = 6", "E7969 = 6"));
  EXPECT_THAT(Told(), IsEmpty());
}

TEST_F(Z7731SendTest, SendsAllInTheToldOrderOnModbus) {
  StartOnModbus();
  TypeLevels();
  EXPECT_TRUE(Send());
  // Bytes of the window go with their neighbour: the model's list begins at the odd 4401.
  const auto writes = Writes();
  EXPECT_THAT(std::vector(writes.begin(), writes.begin() + 14),
              ElementsAre("H21 = 1404", "H20 = 2505", "H24 = 101", "H23 = 202", "H27 = 303", "H26 = 303",
                          "H29 = 808", "H30 = 909", "H11 = 656", "H12 = 757", "H10493 = 37302",
                          "H10409 = 34448", "H10410 = 34448", "H10411 = 24064"));
  ASSERT_THAT(writes, SizeIs(20));
  const std::vector<std::string> registers{
      "H10392 = ", "H10393 = ", "H10393 = ", "H10394 = ", "H12174 = ", "H12176 = "};
  for (std::size_t i = 0; i < registers.size(); ++i)
    EXPECT_THAT(writes.at(14 + i), StartsWith(registers.at(i)));
  EXPECT_THAT(Told(), IsEmpty());
}

TEST_F(Z7731SendTest, EachWriteIsReadBackAtOnce) {
  StartOnKiBus();
  EXPECT_TRUE(Send());
  const auto frames = Frames();
  for (std::size_t i = 0; i < frames.size(); ++i) {
    const auto end = frames.at(i).find(" = ");
    if (end == std::string::npos) continue;
    ASSERT_LT(i + 1, frames.size());
    EXPECT_THAT(frames.at(i + 1), StartsWith(frames.at(i).substr(0, end) + "+"));
  }
}

TEST_F(Z7731SendTest, WhatIsReadComesBackAsItWas) {
  for (const auto protocol : {frmComSet::kiBus, frmComSet::modBus}) {
    StartOn(protocol);
    const auto eeprom = unit.eeprom;
    EXPECT_TRUE(Send());
    mirror.Mind();
    EXPECT_EQ(unit.eeprom, eeprom);
    panel.LeaveSession();
  }
}

TEST_F(Z7731SendTest, ModelSevenHasItsOwnSequence) {
  unit.eeprom[4125] = 7;
  StartOnKiBus();
  EXPECT_TRUE(Send());
  EXPECT_THAT(Writes(), testing::IsSupersetOf({"E4409 = 4", "E4410 = 5", "E4411 = 9", "E4412 = 11"}));
  EXPECT_THAT(Writes(), Not(Contains(StartsWith("E4401"))));
}

TEST_F(Z7731SendTest, TheUnitOfTemperature1IsSentForBoth) {
  unit.eeprom[7964] = 64 | 2 << 2 | 3;
  StartOnKiBus();
  EXPECT_TRUE(Send());
  // The other bits of each byte stay.
  EXPECT_THAT(Writes(), testing::IsSupersetOf({"E7964 = 75", "E7969 = 10"}));
}

TEST_F(Z7731SendTest, AnUnnamedPositionIsTheFirstWithoutAName) {
  unit.eeprom[4402] = 10;
  StartOnKiBus();
  EXPECT_TRUE(Send());
  EXPECT_THAT(Writes(), Contains("E4402 = 0"));
}

TEST_F(Z7731SendTest, APositionThatIsNotInTheListIsSixteen) {
  StartOnKiBus();
  panel.lblDisplayMode[2].SetText("co2");
  EXPECT_TRUE(Send());
  EXPECT_THAT(Writes(), Contains("E4403 = 16"));
}

TEST_F(Z7731SendTest, TheBoxOfP0) {
  StartOnKiBus();
  test::Click(panel.cbxTWAonP0);
  EXPECT_TRUE(Send());
  EXPECT_THAT(Writes(), Contains("E4602 = 37301"));
}

TEST_F(Z7731SendTest, BothDecimalMarksAreTaken) {
  StartOnKiBus();
  panel.txbKelLevel[3].SetText("1,5");
  panel.txbKelLevel[4].SetText("1.5");
  EXPECT_TRUE(Send());
  EXPECT_THAT(Writes(), testing::IsSupersetOf({"E4242 = 150", "E4240 = 150"}));
}

TEST_F(Z7731SendTest, ALevelInFahrenheitIsStoredInCelsius) {
  unit.eeprom[7969] = 2 << 2 | 2;
  StartOnKiBus();
  panel.txbKelLevel[7].SetText("50");
  panel.txbKelLevel[8].SetText("-4");
  EXPECT_TRUE(Send());
  EXPECT_THAT(Writes(), testing::IsSupersetOf({"E4252 = 1000", "E4254 = 63536"}));
  EXPECT_EQ(Setting(4254), 65536 - 2000);
}

TEST_F(Z7731SendTest, AbsentChannelsAreNotSent) {
  PutLive(9, 9999);
  PutLive(11, 9999);
  StartOnKiBus();
  EXPECT_TRUE(Send());
  for (const char* address : {"E4252", "E4254", "E4354", "E4356"}) {
    EXPECT_THAT(Writes(), Not(Contains(StartsWith(address)))) << address;
  }
  // Its unit goes all the same.
  EXPECT_THAT(Writes(), Contains("E7969 = 6"));
}

// Weight

TEST_F(Z7731SendTest, AWeightLevelLiesAboveTheOffset) {
  StartOnKiBus();
  EXPECT_THAT(WritesOfWeight("15", "0.01"), ElementsAre("E4354 = 1550", "E4356 = 51"));
  EXPECT_THAT(WritesOfWeight("0", "0,0"), ElementsAre("E4354 = 50", "E4356 = 50"));
  EXPECT_EQ(panel.txbKelLevel[6].Text(), "0,0");
}

TEST_F(Z7731SendTest, AWeightLevelCannotGoBelowTheOffset) {
  StartOnKiBus();
  EXPECT_THAT(WritesOfWeight("-0.01", "8"), ElementsAre("E4354 = 50", "E4356 = 850"));
  EXPECT_EQ(panel.txbKelLevel[5].Text(), "0");
  EXPECT_EQ(panel.txbKelLevel[6].Text(), "8");
  EXPECT_THAT(WritesOfWeight("15", "-30"), ElementsAre("E4354 = 1550", "E4356 = 50"));
  EXPECT_EQ(panel.txbKelLevel[5].Text(), "15");
  EXPECT_EQ(panel.txbKelLevel[6].Text(), "0");
}

// The verified write

TEST_F(Z7731SendTest, AValueThatNeedsMoreTriesIsGood) {
  for (const int forgotten : {1, 4}) {
    StartOnKiBus();
    TypeLevels();
    Forgets(4242, forgotten);
    EXPECT_TRUE(Send());
    EXPECT_EQ(CountWrites("E4242 = 1404"), forgotten + 1);
    EXPECT_THAT(Told(), IsEmpty());
    EXPECT_EQ(Setting(4242), 1404);
    PutSetting(4242, 2100);
    panel.LeaveSession();
  }
}

TEST_F(Z7731SendTest, AfterFiveTriesTheRestIsSentAndTheFailureTold) {
  StartOnKiBus();
  TypeLevels();
  Forgets(4242, 5);
  EXPECT_FALSE(Send());
  EXPECT_EQ(CountWrites("E4242 = "), 5);
  EXPECT_THAT(Writes(), SizeIs(24));
  EXPECT_EQ(Writes().back(), "E7969 = 6");
  EXPECT_EQ(Setting(4240), 2505);
  ExpectToldOnce();
}

TEST_F(Z7731SendTest, SeveralFailuresAreToldOnce) {
  StartOnKiBus();
  TypeLevels();
  for (const std::size_t address : {4242, 4246, 4404}) Forgets(address, 99);
  // That position has to change.
  panel.lblDisplayMode[3].SetText("CO2");
  EXPECT_FALSE(Send());
  ExpectToldOnce();
  EXPECT_EQ(CountWrites("E4404 = 5"), 5);
}

TEST_F(Z7731SendTest, ATryThatTheConnectionGivesUpIsAFailedTry) {
  StartOnModbus();
  TypeLevels();
  using Kind = test::VirtualModbus::Kind;
  modbus.Fail({Kind::exception, std::nullopt, Kind::exception});
  EXPECT_TRUE(Send());
  // The first try fails in its write, the second in its reading back.
  EXPECT_EQ(CountWrites("H21 = 1404"), 3);
  EXPECT_THAT(Told(), IsEmpty());
}

TEST_F(Z7731SendTest, FiveTriesThatAreRefusedAreAFailure) {
  StartOnModbus();
  TypeLevels();
  modbus.units.at(1).holding.erase(21);
  // So that nothing fills it again.
  ground.pump.OnPass([this] {
    modbus.units.at(1).holding.erase(21);
    return false;
  });
  EXPECT_FALSE(Send());
  EXPECT_EQ(CountWrites("H21 = 1404"), 5);
  EXPECT_EQ(CountWrites("H20 = 2505"), 1);
  ExpectToldOnce();
}

TEST_F(Z7731SendTest, ALevelWithoutRoomIsAFailure) {
  StartOnKiBus();
  panel.txbKelLevel[3].SetText("9999999");
  EXPECT_FALSE(Send());
  EXPECT_EQ(CountWrites("E4242"), 0);
  EXPECT_EQ(Setting(4242), 2100);
  ExpectToldOnce();
}

TEST_F(Z7731SendTest, AFailedUnitOfMeasureEndsItSilently) {
  StartOnKiBus();
  unit.eeprom[7964] = 10;
  Forgets(7964, 99);
  EXPECT_FALSE(Send());
  EXPECT_EQ(CountWrites("E7964 = 6"), 5);
  EXPECT_EQ(CountWrites("E7969"), 0);
  EXPECT_THAT(Told(), IsEmpty());
}

TEST_F(Z7731SendTest, ItEndsSilentlyEvenAfterAnotherFailure) {
  StartOnKiBus();
  TypeLevels();
  Forgets(4242, 99);
  unit.eeprom[7969] = 10;
  Forgets(7969, 99);
  EXPECT_FALSE(Send());
  EXPECT_EQ(CountWrites("E7964 = 6"), 1);
  EXPECT_EQ(CountWrites("E7969 = 6"), 5);
  EXPECT_THAT(Told(), IsEmpty());
}

TEST_F(Z7731SendTest, ASingleParameterIsRoundedToAWholeNumber) {
  StartOnKiBus();
  struct Case {
    float value;
    int word;
  };
  for (const auto& [value, word] : {Case{2.6F, 3}, Case{2.4F, 2}, Case{2.5F, 2}, Case{3.5F, 4}}) {
    Forget();
    EXPECT_TRUE(panel.WriteToSensor("eaLoggBufferSize_0", value, true));
    EXPECT_THAT(Writes(), ElementsAre("E4640 = " + std::to_string(word)));
  }
}

TEST_F(Z7731SendTest, WithoutTheFlagNothingIsSent) {
  StartOnKiBus();
  EXPECT_TRUE(panel.WriteToSensor("eaLoggBufferSize_0", 77, false));
  EXPECT_THAT(unit.frames, IsEmpty());
}

TEST_F(Z7731SendTest, AnUnknownNameIsNotTaken) {
  StartOnKiBus();
  EXPECT_FALSE(panel.WriteToSensor("eaNobody_0", 1, true));
  EXPECT_THAT(unit.frames, IsEmpty());
}

TEST_F(Z7731SendTest, TheSendCommandSends) {
  StartOnKiBus();
  TypeLevels();
  std::vector<std::string> texts;
  ground.pump.OnPass([&] {
    const auto text = ground.msg.Visible() ? ground.msg.Label1.Text() : std::string();
    if (!text.empty() && (texts.empty() || texts.back() != text)) texts.push_back(text);
    return false;
  });
  After(std::chrono::milliseconds(1000), [this] { test::Click(panel.btnSendToSensor); });
  Run(std::chrono::seconds(6));
  EXPECT_EQ(Setting(4240), 2505);
  EXPECT_THAT(texts, ElementsAre("Please wait", "Sending to sensor"));
  EXPECT_THAT(Told(), IsEmpty());
}

TEST_F(Z7731SendTest, AFailedSendCommandTellsNothingMore) {
  StartOnKiBus();
  TypeLevels();
  Forgets(4242, 99);
  After(std::chrono::milliseconds(1000), [this] { test::Click(panel.btnSendToSensor); });
  Run(std::chrono::seconds(6));
  ExpectToldOnce();
}

}  // namespace
}  // namespace brelant
