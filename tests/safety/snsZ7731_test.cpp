// SPDX-License-Identifier: GPL-3.0-or-later
#include "safety/snsZ7731.h"

#include <stdexcept>
#include <utility>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace brelant {
namespace {

using testing::ElementsAre;
using Channel = snsZ7731::Channel;

constexpr std::int32_t kKiBus = 0;
constexpr std::int32_t kModbus = 1;

/// The names of a channel, in the order value, Case, COMP_A, COMP_B.
std::vector<std::string> NamesOf(const Channel& channel, std::int32_t protocol) {
  return {channel.IRValue(protocol), channel.IRCase(protocol), channel.HRCOMP_A(protocol),
          channel.HRCOMP_B(protocol)};
}

/// Every alarm flag, in the order of the bits of kind 2 and then of kind 1.
std::vector<bool> AlarmsOf(const snsZ7731& unit) {
  return {unit.CO2PreAlarm,    unit.CO2MainAlarm,   unit.TWAAlarm,
          unit.Temp1HighAlarm, unit.Temp1LowAlarm,  unit.Temp2HighAlarm,
          unit.Temp2LowAlarm,  unit.WeightPreAlarm, unit.WeightMainAlarm};
}

std::vector<int> StatusOf(const snsZ7731& unit) {
  return {unit.Temp1.Status, unit.Temp2.Status, unit.Weight.Status, unit.TWA.Status, unit.CO2.Status};
}

std::vector<int> Entries(const snsZ7731::RelayList& list) {
  return {list.Entry(0), list.Entry(1), list.Entry(2), list.Entry(3)};
}

TEST(SnsZ7731Names, OnKiBusAreTheFixedOnes) {
  const snsZ7731 unit;
  EXPECT_THAT(NamesOf(unit.Temp1, kKiBus),
              ElementsAre("raChan_4", "eaCaseChannel_4", "eaRegPar0_4", "eaRegPar1_4"));
  EXPECT_THAT(NamesOf(unit.Temp2, kKiBus),
              ElementsAre("raChan_9", "eaCaseChannel_9", "eaRegPar0_7", "eaRegPar1_7"));
  EXPECT_THAT(NamesOf(unit.Weight, kKiBus),
              ElementsAre("raChan_11", "eaCaseChannel_11", "eawPar_1", "eawPar_2"));
  EXPECT_THAT(NamesOf(unit.TWA, kKiBus),
              ElementsAre("raChan_8", "eaCaseChannel_8", "eaRegPar0_6", "eaRegPar1_6"));
  EXPECT_THAT(NamesOf(unit.CO2, kKiBus),
              ElementsAre("raChan_5", "eaCaseChannel_5", "eaRegPar0_5", "eaRegPar1_5"));
  EXPECT_EQ(unit.WeightHRHysteresis(kKiBus), "eawPar_3");
}

TEST(SnsZ7731Names, OnModbusAreRegisters) {
  const snsZ7731 unit;
  EXPECT_THAT(NamesOf(unit.Temp1, kModbus), ElementsAre("miIR_7", "miIR_16", "mhHR_20", "mhHR_21"));
  EXPECT_THAT(NamesOf(unit.Temp2, kModbus), ElementsAre("miIR_9", "miIR_17", "mhHR_29", "mhHR_30"));
  EXPECT_THAT(NamesOf(unit.Weight, kModbus), ElementsAre("miIR_11", "miIR_18", "mhHR_11", "mhHR_12"));
  EXPECT_THAT(NamesOf(unit.TWA, kModbus), ElementsAre("miIR_13", "miIR_19", "mhHR_26", "mhHR_27"));
  EXPECT_THAT(NamesOf(unit.CO2, kModbus), ElementsAre("miIR_6", "miIR_16", "mhHR_23", "mhHR_24"));
  EXPECT_EQ(unit.WeightHRHysteresis(kModbus), "mhHR_13");
}

TEST(SnsZ7731Names, AreEmptyOnAnyOtherProtocol) {
  const snsZ7731 unit;
  for (const std::int32_t protocol : {2, -1, 256, 65536}) {
    for (const auto* channel : {&unit.Temp1, &unit.Temp2, &unit.Weight, &unit.TWA, &unit.CO2}) {
      EXPECT_THAT(NamesOf(*channel, protocol), ElementsAre("", "", "", "")) << protocol;
    }
    EXPECT_EQ(unit.WeightHRHysteresis(protocol), "") << protocol;
  }
}

TEST(SnsZ7731Names, OfTheTemperaturesTellTheFormatToo) {
  const snsZ7731 unit;
  EXPECT_EQ(unit.Temp1.CaseValueFormat(), "eaCaseChannelUnit_4");
  EXPECT_EQ(unit.Temp1.CaseNode(), "eaCaseChannel_4");
  EXPECT_EQ(unit.Temp2.CaseValueFormat(), "eaCaseChannelUnit_9");
  EXPECT_EQ(unit.Temp2.CaseNode(), "eaCaseChannel_9");
}

TEST(SnsZ7731Case, OfATemperatureIsKeptAsItStandsOnKiBus) {
  snsZ7731 unit;
  for (auto* channel : {&unit.Temp1, &unit.Temp2}) {
    channel->SetCase(0x1234, kKiBus);
    EXPECT_EQ(channel->Case(), 0x1234);
  }
}

TEST(SnsZ7731Case, OfATemperatureIsTheHighByteOnModbus) {
  snsZ7731 unit;
  for (auto* channel : {&unit.Temp1, &unit.Temp2}) {
    channel->SetCase(0x1234, kModbus);
    EXPECT_EQ(channel->Case(), 0x12);
    channel->SetCase(0xFF00, kModbus);
    EXPECT_EQ(channel->Case(), 0xFF);
    channel->SetCase(0x00FF, kModbus);
    EXPECT_EQ(channel->Case(), 0);
  }
}

TEST(SnsZ7731Case, OfATemperatureStaysOnAnyOtherProtocol) {
  snsZ7731 unit;
  for (auto* channel : {&unit.Temp1, &unit.Temp2}) {
    channel->SetCase(0x56, kKiBus);
    for (const std::int32_t protocol : {2, -1, 256}) channel->SetCase(0x1234, protocol);
    EXPECT_EQ(channel->Case(), 0x56);
  }
}

TEST(SnsZ7731Case, OfTheOthersIsReadAsItsLowByteOnEveryProtocol) {
  snsZ7731 unit;
  for (auto* channel : {&unit.Weight, &unit.TWA, &unit.CO2}) {
    for (const std::int32_t protocol : {kKiBus, kModbus, 2}) {
      channel->SetCase(0, protocol);
      EXPECT_EQ(channel->Case(), 0);
      channel->SetCase(0x1234, protocol);
      EXPECT_EQ(channel->Case(), 0x34);
      channel->SetCase(0xAB00, protocol);
      EXPECT_EQ(channel->Case(), 0);
    }
  }
}

TEST(SnsZ7731Case, OfOneRegisterIsSharedByTheFirstTemperatureAndCO2) {
  snsZ7731 unit;
  ASSERT_EQ(unit.Temp1.IRCase(kModbus), unit.CO2.IRCase(kModbus));
  unit.Temp1.SetCase(0x0611, kModbus);
  unit.CO2.SetCase(0x0611, kModbus);
  EXPECT_EQ(unit.Temp1.Case(), 0x06);
  EXPECT_EQ(unit.CO2.Case(), 0x11);
}

TEST(SnsZ7731Defaults, AreThoseOfTheTables) {
  const snsZ7731 unit;
  EXPECT_THAT(snsZ7731::AvailableChannels, ElementsAre(5, 4, 9, 11, 8));
  EXPECT_THAT(snsZ7731::StatusArray, ElementsAre(10, 15));
  EXPECT_THAT(snsZ7731::AlarmArray, ElementsAre(1, 2));
  EXPECT_THAT(snsZ7731::DisplayModes, ElementsAre("", "", "", "", "TEMP 1", "CO2", "", "", "TWA CO2",
                                                  "TEMP 2", "", "WEIGHT", "", "", "", ""));
  EXPECT_EQ(snsZ7731::TWAonP0Value, 37302);
  EXPECT_EQ(snsZ7731::CO2onP0Value, 37301);
  EXPECT_EQ(snsZ7731::P0Algorithm, "eaState1Alg_30");
  EXPECT_EQ(snsZ7731::Log1Node, "eaState0Alg_21");
  EXPECT_EQ(snsZ7731::Log2Node, "eaState0Alg_22");
  EXPECT_EQ(snsZ7731::LogTimerNode, "eaCountPar_14");
}

TEST(SnsZ7731Defaults, OfTheRegulatorsAreThoseOfTheRelayLists) {
  EXPECT_EQ(snsZ7731::RegCO2Pre, 8);
  EXPECT_EQ(snsZ7731::RegCO2Main, 5);
  EXPECT_EQ(snsZ7731::RegTWA, 6);
  EXPECT_EQ(snsZ7731::RegTemp1Low, 14);
  EXPECT_EQ(snsZ7731::RegTemp1High, 14);
  EXPECT_EQ(snsZ7731::RegTemp2Low, 15);
  EXPECT_EQ(snsZ7731::RegTemp2High, 15);
  EXPECT_EQ(snsZ7731::RegWeightPre, 13);
  EXPECT_EQ(snsZ7731::RegWeightMain, 13);
}

TEST(SnsZ7731Defaults, LeaveAllElseAtNothing) {
  const snsZ7731 unit;
  for (const auto* channel : {&unit.Temp1, &unit.Temp2, &unit.Weight, &unit.TWA, &unit.CO2}) {
    EXPECT_EQ(channel->Case(), 0);
    EXPECT_EQ(channel->Value, 0);
    EXPECT_EQ(channel->COMP_A, 0);
    EXPECT_EQ(channel->COMP_B, 0);
    EXPECT_EQ(channel->Status, 0);
  }
  EXPECT_TRUE(unit.Temp2.Present);
  EXPECT_TRUE(unit.Weight.Present);
  EXPECT_TRUE(unit.TWACentralUnit);
  EXPECT_EQ(unit.WeightHysteresis, 0);
  EXPECT_EQ(unit.SensorID, 0);
  EXPECT_EQ(unit.ProtocolInUse, 0);
  EXPECT_EQ(AlarmsOf(unit), std::vector<bool>(9, false));
  EXPECT_THAT(Entries(unit.Relay1), ElementsAre(0, 0, 0, 0));
  EXPECT_THAT(Entries(unit.Relay2), ElementsAre(0, 0, 0, 0));
  for (int position = 0; position < 4; ++position) EXPECT_EQ(unit.GetDisplayMode(position), "");
}

TEST(SnsZ7731Status, OfKind10IsThatOfTemperaturesAndCO2) {
  snsZ7731 unit;
  unit.AddStatus(0x1E23, 10);
  EXPECT_THAT(StatusOf(unit), ElementsAre(2, 1, 0, 0, 3));
  unit.AddStatus(0xF000, 10);
  EXPECT_THAT(StatusOf(unit), ElementsAre(0, 15, 0, 0, 0));
}

TEST(SnsZ7731Status, OfKind15IsThatOfWeightAndTWA) {
  snsZ7731 unit;
  unit.AddStatus(0xA5B7, 15);
  EXPECT_THAT(StatusOf(unit), ElementsAre(0, 0, 7, 5, 0));
}

TEST(SnsZ7731Status, OfOneKindLeavesTheOthersAlone) {
  snsZ7731 unit;
  unit.AddStatus(0xFFFF, 10);
  unit.AddStatus(0xFFFF, 15);
  EXPECT_THAT(StatusOf(unit), ElementsAre(15, 15, 15, 15, 15));
  unit.AddStatus(0, 10);
  EXPECT_THAT(StatusOf(unit), ElementsAre(0, 0, 15, 15, 0));
  unit.AddStatus(0, 15);
  EXPECT_THAT(StatusOf(unit), ElementsAre(0, 0, 0, 0, 0));
}

TEST(SnsZ7731Status, OfAnyOtherKindChangesNothing) {
  snsZ7731 unit;
  for (int kind = -1; kind <= 16; ++kind) {
    if (kind != 10 && kind != 15) unit.AddStatus(0xFFFF, kind);
  }
  EXPECT_THAT(StatusOf(unit), ElementsAre(0, 0, 0, 0, 0));
}

/// The alarm flags that a word of one bit sets in a unit without alarms.
std::vector<bool> AlarmsOfBit(int bit, int kind) {
  snsZ7731 unit;
  unit.AddAlarm(1 << bit, kind);
  return AlarmsOf(unit);
}

TEST(SnsZ7731Alarms, OfEachBitAreItsOwn) {
  // The place of the flag in AlarmsOf; -1: no flag.
  const std::vector<int> kKind2{0, 1, 2, -1, -1, 3, 4, 5, 6, -1, -1, -1, -1, -1, -1, -1};
  for (int bit = 0; bit < 16; ++bit) {
    std::vector<bool> expected(9);
    const int flag = kKind2.at(static_cast<std::size_t>(bit));
    if (flag >= 0) expected.at(static_cast<std::size_t>(flag)) = true;
    EXPECT_EQ(AlarmsOfBit(bit, 2), expected) << bit;

    std::vector<bool> ofWeight(9);
    if (bit == 0) ofWeight.at(7) = true;
    if (bit == 1) ofWeight.at(8) = true;
    EXPECT_EQ(AlarmsOfBit(bit, 1), ofWeight) << bit;
  }
}

TEST(SnsZ7731Alarms, OfBit3And4AreReadByNothing) {
  EXPECT_EQ(AlarmsOfBit(3, 2), std::vector<bool>(9));
  EXPECT_EQ(AlarmsOfBit(4, 2), std::vector<bool>(9));
}

TEST(SnsZ7731Alarms, AreSetAndClearedOnEveryCall) {
  snsZ7731 unit;
  unit.AddAlarm(0xFFFF, 2);
  unit.AddAlarm(0xFFFF, 1);
  EXPECT_EQ(AlarmsOf(unit), std::vector<bool>(9, true));
  unit.AddAlarm(0x18, 2);
  EXPECT_EQ(AlarmsOf(unit), (std::vector<bool>{false, false, false, false, false, false, false, true, true}));
  unit.AddAlarm(2, 1);
  EXPECT_FALSE(unit.WeightPreAlarm);
  EXPECT_TRUE(unit.WeightMainAlarm);
  unit.AddAlarm(0, 1);
  EXPECT_EQ(AlarmsOf(unit), std::vector<bool>(9));
}

TEST(SnsZ7731Alarms, OfAnyOtherKindChangeNothing) {
  snsZ7731 unit;
  for (const int kind : {-1, 0, 3, 4, 10, 15}) unit.AddAlarm(0xFFFF, kind);
  EXPECT_EQ(AlarmsOf(unit), std::vector<bool>(9));
}

TEST(SnsZ7731Display, ShowsTheNameOfTheChannelAtEachPosition) {
  snsZ7731 unit;
  const std::vector<std::pair<int, std::string>> kSequence{
      {5, "CO2"}, {11, "WEIGHT"}, {8, "TWA CO2"}, {9, "TEMP 2"}};
  for (int position = 0; position < 4; ++position) {
    unit.SetDisplayMode(position, kSequence.at(static_cast<std::size_t>(position)).first);
  }
  for (int position = 0; position < 4; ++position) {
    EXPECT_EQ(unit.GetDisplayMode(position), kSequence.at(static_cast<std::size_t>(position)).second);
  }
  unit.SetDisplayMode(0, 4);
  EXPECT_EQ(unit.GetDisplayMode(0), "TEMP 1");
}

TEST(SnsZ7731Display, IsEmptyForAChannelWithoutAName) {
  snsZ7731 unit;
  for (const int channel : {0, 1, 2, 3, 6, 7, 10, 12, 13, 14, 15}) {
    unit.SetDisplayMode(2, channel);
    EXPECT_EQ(unit.GetDisplayMode(2), "") << channel;
  }
}

TEST(SnsZ7731Display, OfAChannelOutOfBoundsIsAnErrorWhenItIsShown) {
  snsZ7731 unit;
  for (const int channel : {16, 17, 255, -1}) {
    EXPECT_NO_THROW(unit.SetDisplayMode(1, channel));
    EXPECT_THROW(unit.GetDisplayMode(1), std::out_of_range) << channel;
  }
}

TEST(SnsZ7731Display, HasFourPositions) {
  snsZ7731 unit;
  for (const int position : {-1, 4, 5}) {
    EXPECT_THROW(unit.SetDisplayMode(position, 5), std::out_of_range) << position;
    EXPECT_THROW(unit.GetDisplayMode(position), std::out_of_range) << position;
  }
}

/// Both lists, which follow the same rules.
class SnsZ7731RelayTest : public testing::TestWithParam<snsZ7731::RelayList snsZ7731::*> {
 protected:
  snsZ7731 unit;
  snsZ7731::RelayList& list = unit.*GetParam();
  snsZ7731::RelayList& other = GetParam() == &snsZ7731::Relay1 ? unit.Relay2 : unit.Relay1;
};

TEST_P(SnsZ7731RelayTest, IsFourNibblesOfAWordTheMostSignificantFirst) {
  list.Init(0x8690);
  EXPECT_THAT(Entries(list), ElementsAre(8, 6, 9, 0));
  EXPECT_EQ(list.Get(), 0x8690);
  EXPECT_THAT(Entries(other), ElementsAre(0, 0, 0, 0));
}

TEST_P(SnsZ7731RelayTest, ComesBackAsTheSameWord) {
  for (std::int32_t word = 0; word <= 0xFFFF; word += 7) {
    list.Init(word);
    ASSERT_EQ(list.Get(), word);
    ASSERT_EQ(list.Entry(0) * 4096 + list.Entry(1) * 256 + list.Entry(2) * 16 + list.Entry(3), word);
  }
  list.Init(0xFFFF);
  EXPECT_EQ(list.Get(), 0xFFFF);
}

TEST_P(SnsZ7731RelayTest, HasFourEntries) {
  EXPECT_THROW(list.Entry(-1), std::out_of_range);
  EXPECT_THROW(list.Entry(4), std::out_of_range);
}

TEST_P(SnsZ7731RelayTest, TakesARegulatorIntoTheFirstFreeEntry) {
  list.Init(0x8006);
  EXPECT_TRUE(list.Add(5));
  EXPECT_EQ(list.Get(), 0x8506);
  EXPECT_TRUE(list.Add(13));
  EXPECT_EQ(list.Get(), 0x85D6);
}

TEST_P(SnsZ7731RelayTest, TakesFourAndRefusesTheFifth) {
  for (const int regulator : {8, 5, 6, 14}) EXPECT_TRUE(list.Add(regulator)) << regulator;
  EXPECT_EQ(list.Get(), 0x856E);
  EXPECT_FALSE(list.Add(13));
  EXPECT_EQ(list.Get(), 0x856E);
  EXPECT_EQ(other.Get(), 0);
}

TEST_P(SnsZ7731RelayTest, TakesTheSameRegulatorTwice) {
  EXPECT_TRUE(list.Add(5));
  EXPECT_TRUE(list.Add(5));
  EXPECT_EQ(list.Get(), 0x5500);
}

TEST_P(SnsZ7731RelayTest, ClearsEveryEntryOfARegulator) {
  list.Init(0x5856);
  list.Remove(5);
  EXPECT_EQ(list.Get(), 0x0806);
  list.Remove(13);
  EXPECT_EQ(list.Get(), 0x0806);
}

TEST_P(SnsZ7731RelayTest, IsLeftAsItWasByRegulator0) {
  list.Init(0x8060);
  EXPECT_TRUE(list.Add(0));
  EXPECT_EQ(list.Get(), 0x8060);
  list.Remove(0);
  EXPECT_EQ(list.Get(), 0x8060);
}

INSTANTIATE_TEST_SUITE_P(Lists, SnsZ7731RelayTest, testing::Values(&snsZ7731::Relay1, &snsZ7731::Relay2));

}  // namespace
}  // namespace brelant
