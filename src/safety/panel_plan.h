// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <array>
#include <cstdint>

#include "safety/snsZ7731.h"

namespace brelant::z7731 {

/// Which field of the safety panel shows what (docs/architecture.md, The safety panel).

using ChannelOf = snsZ7731::Channel snsZ7731::*;

/// Fields of live values. Those of index 3 and 4 show no channel.
enum Value { temp1 = 0, co2 = 1, twa = 2, weight = 5, temp2 = 6 };
inline constexpr int kLiveFields = 7;

/// In which field a channel shows its value and its unit, and under which index its name.
struct ChannelPlace {
  ChannelOf channel;
  Value field;
  int name;
  const char* caption;
};
/// In the order in which they are shown after a poll.
inline constexpr std::array<ChannelPlace, 5> kChannels{{{&snsZ7731::Temp1, temp1, 0, "TEMP 1"},
                                                        {&snsZ7731::TWA, twa, 2, "TWA CO2"},
                                                        {&snsZ7731::CO2, co2, 1, "CO2"},
                                                        {&snsZ7731::Temp2, temp2, 7, "TEMP 2"},
                                                        {&snsZ7731::Weight, weight, 6, "WEIGHT"}}};
inline constexpr int kNames = 8;

/// An alarm: where its level and its state come from, and its row of relay boxes.
struct AlarmPlace {
  const char* name;
  ChannelOf channel;
  std::int32_t snsZ7731::Channel::*level;
  bool snsZ7731::*flag;
  int box;
  const char* label;
};
/// By the index of status, level and unit.
inline constexpr std::array<AlarmPlace, 9> kAlarms{{
    {"CO2 pre-alarm", &snsZ7731::CO2, &snsZ7731::Channel::COMP_B, &snsZ7731::CO2PreAlarm, 0,
     "lblCO2AlarmPre"},
    {"CO2 main alarm", &snsZ7731::CO2, &snsZ7731::Channel::COMP_A, &snsZ7731::CO2MainAlarm, 1,
     "lblCO2AlarmMain"},
    {"TWA alarm", &snsZ7731::TWA, &snsZ7731::Channel::COMP_A, &snsZ7731::TWAAlarm, 2, "lblTWAAlarm"},
    {"TEMP 1 low", &snsZ7731::Temp1, &snsZ7731::Channel::COMP_B, &snsZ7731::Temp1LowAlarm, 3,
     "lblTemp1AlarmLow"},
    {"TEMP 1 high", &snsZ7731::Temp1, &snsZ7731::Channel::COMP_A, &snsZ7731::Temp1HighAlarm, 4,
     "lblTemp1AlarmHigh"},
    {"WEIGHT pre-alarm", &snsZ7731::Weight, &snsZ7731::Channel::COMP_A, &snsZ7731::WeightPreAlarm, 6,
     "lblWeightAlarmLow"},
    {"WEIGHT main alarm", &snsZ7731::Weight, &snsZ7731::Channel::COMP_B, &snsZ7731::WeightMainAlarm, 7,
     "lblWeightAlarmHigh"},
    {"TEMP 2 low", &snsZ7731::Temp2, &snsZ7731::Channel::COMP_A, &snsZ7731::Temp2LowAlarm, 9,
     "lblTemp2AlarmLow"},
    {"TEMP 2 high", &snsZ7731::Temp2, &snsZ7731::Channel::COMP_B, &snsZ7731::Temp2HighAlarm, 8,
     "lblTemp2AlarmHigh"},
}};

/// What a unit without hardware shows at first.
struct SimulatedText {
  int index;
  const char* text;
};
inline constexpr std::int32_t kSimulatedRelay1 = 0x869;
inline constexpr std::int32_t kSimulatedRelay2 = 0x059;
inline constexpr std::array<int, snsZ7731::kPositions> kSimulatedSequence{5, 4, 8, 11};
/// Two decimals and the unit F, in the high byte as a register holds it.
inline constexpr std::int32_t kSimulatedTemperatureCase = 0xA00;
inline constexpr std::int32_t kSimulatedGasCase = 4 << 2;
inline constexpr std::int32_t kSimulatedWeightCase = 5 << 2;
inline constexpr std::array<SimulatedText, 5> kSimulatedValues{
    {{temp1, "68"}, {co2, "800"}, {twa, "620"}, {weight, "60"}, {temp2, "55"}}};
inline constexpr std::array<SimulatedText, 9> kSimulatedLevels{{{0, "5000"},
                                                                {1, "15000"},
                                                                {2, "5000"},
                                                                {3, "50"},
                                                                {4, "86"},
                                                                {5, "30"},
                                                                {6, "15"},
                                                                {7, "34"},
                                                                {8, "50"}}};

}  // namespace brelant::z7731
