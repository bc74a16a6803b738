// SPDX-License-Identifier: GPL-3.0-or-later
#include "safety/unit_poll.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "connection/connection_fixture.h"

namespace brelant {
namespace {

using testing::ElementsAre;

class PollOnModbusTest : public test::ModbusUnitTest {
 protected:
  PollOnModbusTest() { record.ProtocolInUse = snsZ7731::modbus; }

  snsZ7731 record;
};

TEST_F(PollOnModbusTest, AsksInOrderAndReadsTogetherWhatLiesTogether) {
  PollUnit(sens, record);
  // Registers 10 and 9 to 11 lie beside the first status word; 7 and 6 beside each other; 1 and 2 likewise.
  EXPECT_THAT(modbus.Story(),
              ElementsAre("1 input 9+3", "1 input 15", "1 input 6+2", "1 input 13", "1 input 1+2"));
}

TEST_F(PollOnModbusTest, LeavesOutWhatIsNotPresent) {
  record.Temp2.Present = record.Weight.Present = false;
  record.Temp2.Value = record.Weight.Value = 7;
  auto& input = Unit().input;
  input[9] = input[11] = 9999;
  PollUnit(sens, record);
  EXPECT_THAT(modbus.Story(),
              ElementsAre("1 input 10", "1 input 15", "1 input 6+2", "1 input 13", "1 input 1+2"));
  EXPECT_EQ(record.Temp2.Value, 7);
  EXPECT_EQ(record.Weight.Value, 7);
}

TEST_F(PollOnModbusTest, TakesEachWordToItsPlace) {
  auto& input = Unit().input;
  input[10] = 0x3021;  // temperature 2: 3, temperature 1: 2, CO2: 1
  input[15] = 0x0504;  // TWA: 5, weight: 4
  input[7] = 2150;
  input[9] = 0xFFCE;  // -50
  input[6] = 812;
  input[13] = 640;
  input[11] = 4200;
  input[1] = 1;           // weight pre
  input[2] = 2 | 4 | 64;  // CO2 main, TWA, temperature 1 low
  PollUnit(sens, record);
  EXPECT_EQ(record.Temp1.Status, 2);
  EXPECT_EQ(record.Temp2.Status, 3);
  EXPECT_EQ(record.CO2.Status, 1);
  EXPECT_EQ(record.TWA.Status, 5);
  EXPECT_EQ(record.Weight.Status, 4);
  EXPECT_EQ(record.Temp1.Value, 2150);
  EXPECT_EQ(record.Temp2.Value, -50);
  EXPECT_EQ(record.CO2.Value, 812);
  EXPECT_EQ(record.TWA.Value, 640);
  EXPECT_EQ(record.Weight.Value, 4200);
  EXPECT_TRUE(record.WeightPreAlarm && record.CO2MainAlarm && record.TWAAlarm && record.Temp1LowAlarm);
  EXPECT_FALSE(record.WeightMainAlarm || record.CO2PreAlarm || record.Temp1HighAlarm ||
               record.Temp2HighAlarm || record.Temp2LowAlarm);
}

TEST_F(PollOnModbusTest, AFailureIsTold) {
  modbus.units.clear();
  EXPECT_NE(test::FailureOf([&] { PollUnit(sens, record); }), "");
}

class PollOnKiBusTest : public test::KiBusUnitTest {
 protected:
  void PutLive(std::size_t channel, int value) {
    unit.ram.at(12 + 2 * channel) = static_cast<std::uint8_t>(value >> 8 & 255);
    unit.ram.at(13 + 2 * channel) = static_cast<std::uint8_t>(value & 255);
  }
  std::uint8_t& State(std::size_t channel) { return unit.ram.at(256 + channel); }
  std::uint8_t& Regulator(std::size_t number) { return unit.ram.at(272 + number); }

  snsZ7731 record;
};

TEST_F(PollOnKiBusTest, TakesValuesAndStates) {
  PutLive(4, 2150);
  PutLive(5, 812);
  PutLive(8, 640);
  PutLive(9, -50);
  PutLive(11, 4200);
  State(4) = 2;
  State(5) = 1;
  State(8) = 5;
  State(9) = 3;
  State(11) = 4;
  PollUnit(sens, record);
  EXPECT_EQ(record.Temp1.Value, 2150);
  EXPECT_EQ(record.CO2.Value, 812);
  EXPECT_EQ(record.TWA.Value, 640);
  EXPECT_EQ(record.Temp2.Value, -50);
  EXPECT_EQ(record.Weight.Value, 4200);
  EXPECT_EQ(record.Temp1.Status, 2);
  EXPECT_EQ(record.CO2.Status, 1);
  EXPECT_EQ(record.TWA.Status, 5);
  EXPECT_EQ(record.Weight.Status, 4);
  // (3 x 256 | 2) x 16 | 1: the nibble of temperature 2 is bits 12 to 15.
  EXPECT_EQ(record.Temp2.Status, 3);
}

TEST_F(PollOnKiBusTest, TakesTheAlarmBitsOfEachRegulator) {
  struct Case {
    std::size_t regulator;
    int bits;
    bool snsZ7731::*alarm;
  };
  for (const auto& [regulator, bits, alarm] :
       {Case{13, 2, &snsZ7731::WeightPreAlarm}, Case{13, 8, &snsZ7731::WeightMainAlarm},
        Case{7, 8, &snsZ7731::Temp2LowAlarm}, Case{7, 1, &snsZ7731::Temp2HighAlarm},
        Case{4, 8, &snsZ7731::Temp1LowAlarm}, Case{4, 1, &snsZ7731::Temp1HighAlarm},
        Case{5, 1, &snsZ7731::CO2MainAlarm}, Case{5, 4, &snsZ7731::CO2PreAlarm}}) {
    std::fill(unit.ram.begin() + 272, unit.ram.begin() + 288, std::uint8_t{0});
    Regulator(regulator) = static_cast<std::uint8_t>(bits);
    PollUnit(sens, record);
    EXPECT_TRUE(record.*alarm) << regulator << " " << bits;
    int active = 0;
    for (const bool each : {record.WeightPreAlarm, record.WeightMainAlarm, record.Temp2LowAlarm,
                            record.Temp2HighAlarm, record.Temp1LowAlarm, record.Temp1HighAlarm,
                            record.CO2MainAlarm, record.CO2PreAlarm, record.TWAAlarm}) {
      active += each ? 1 : 0;
    }
    EXPECT_EQ(active, 1) << regulator << " " << bits;
  }
}

TEST_F(PollOnKiBusTest, TheAlarmOfTheAverageStaysOff) {
  Regulator(6) = 255;
  PollUnit(sens, record);
  EXPECT_FALSE(record.TWAAlarm);
  EXPECT_FALSE(record.CO2PreAlarm || record.CO2MainAlarm);
}

TEST_F(PollOnKiBusTest, AsksForTheSecondTemperatureFirst) {
  PollUnit(sens, record);
  ASSERT_FALSE(unit.frames.empty());
  // States 8 and 9 lie together and come with the first one asked for, in the wide form.
  EXPECT_THAT(unit.frames.front(), ElementsAre(128 + 48 + 2, 1, 8));
}

}  // namespace
}  // namespace brelant
