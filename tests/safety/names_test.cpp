// SPDX-License-Identifier: GPL-3.0-or-later
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "connection/name_table.h"
#include "safety/snsZ7731.h"

namespace brelant {
namespace {

constexpr std::int32_t kKiBus = 0;
constexpr std::int32_t kModbus = 1;

class SafetyNamesTest : public testing::Test {
 protected:
  /// Both names are one register with one sign, so that both protocols show the same number.
  void ExpectSame(const std::string& onKiBus, const std::string& onModbus) const {
    EXPECT_EQ(table.OnModbus(onModbus), table.OnModbus(onKiBus)) << onKiBus << ", " << onModbus;
    EXPECT_EQ(table.OnKiBus(onKiBus).isSigned, table.OnModbus(onModbus).isSigned) << onKiBus;
  }

  const NameTable table = NameTable::Standard();
  const snsZ7731 unit;
  const std::vector<const snsZ7731::Channel*> channels{&unit.Temp1, &unit.Temp2, &unit.Weight, &unit.TWA,
                                                       &unit.CO2};
};

TEST_F(SafetyNamesTest, OfAValueOrALevelMeanTheSameOnBothProtocols) {
  for (const auto* channel : channels) {
    ExpectSame(channel->IRValue(kKiBus), channel->IRValue(kModbus));
    ExpectSame(channel->HRCOMP_A(kKiBus), channel->HRCOMP_A(kModbus));
    ExpectSame(channel->HRCOMP_B(kKiBus), channel->HRCOMP_B(kModbus));
  }
  ExpectSame(unit.WeightHRHysteresis(kKiBus), unit.WeightHRHysteresis(kModbus));
}

TEST_F(SafetyNamesTest, OfACaseWordAreTheByteThatTheClassTakesOfTheRegister) {
  for (const auto* channel : channels) {
    const auto byte = table.OnModbus(channel->IRCase(kKiBus));
    const auto whole = table.OnModbus(channel->IRCase(kModbus));
    EXPECT_EQ(byte.space, whole.space);
    EXPECT_EQ(byte.first, whole.first);
    snsZ7731::Channel taken = *channel;
    taken.SetCase(0x1234, kModbus);
    EXPECT_EQ(taken.Case(), 0x1234 >> byte.shift & 0xFF) << channel->IRCase(kKiBus);
  }
}

TEST_F(SafetyNamesTest, OfEverythingElseAreKnownOnBothProtocols) {
  std::vector<std::string> names{std::string(snsZ7731::P0Algorithm), std::string(snsZ7731::Log1Node),
                                 std::string(snsZ7731::Log2Node), std::string(snsZ7731::LogTimerNode)};
  for (const auto* channel : {&unit.Temp1, &unit.Temp2}) {
    names.push_back(channel->CaseNode());
    names.push_back(channel->CaseValueFormat());
  }
  for (const auto& name : names) {
    EXPECT_NO_THROW(table.OnKiBus(name)) << name;
    EXPECT_NO_THROW(table.OnModbus(name)) << name;
  }
}

TEST_F(SafetyNamesTest, OfStatusAndAlarmsAreInputRegistersWithoutASign) {
  for (const int number : {10, 15, 1, 2}) {
    const Target expected{Space::input, number, 1, 0, 16, false};
    EXPECT_EQ(table.OnModbus("miIR_" + std::to_string(number)), expected) << number;
  }
}

}  // namespace
}  // namespace brelant
