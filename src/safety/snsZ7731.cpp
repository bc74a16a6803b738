// SPDX-License-Identifier: GPL-3.0-or-later
#include "safety/snsZ7731.h"

#include <algorithm>
#include <stdexcept>

namespace brelant {

namespace {

using Parameter = snsZ7731::Parameter;
using CaseRule = snsZ7731::CaseRule;

constexpr snsZ7731::ChannelPlan kTemp1{4,
                                       "TEMP 1",
                                       CaseRule::highByteOnModbus,
                                       {"raChan_4", 7},
                                       {"eaCaseChannel_4", 16},
                                       {"eaRegPar0_4", 20},
                                       {"eaRegPar1_4", 21}};
constexpr snsZ7731::ChannelPlan kTemp2{9,
                                       "TEMP 2",
                                       CaseRule::highByteOnModbus,
                                       {"raChan_9", 9},
                                       {"eaCaseChannel_9", 17},
                                       {"eaRegPar0_7", 29},
                                       {"eaRegPar1_7", 30}};
constexpr snsZ7731::ChannelPlan kWeight{11,
                                        "WEIGHT",
                                        CaseRule::lowByteOnRead,
                                        {"raChan_11", 11},
                                        {"eaCaseChannel_11", 18},
                                        {"eawPar_1", 11},
                                        {"eawPar_2", 12}};
constexpr snsZ7731::ChannelPlan kTWA{8,
                                     "TWA CO2",
                                     CaseRule::lowByteOnRead,
                                     {"raChan_8", 13},
                                     {"eaCaseChannel_8", 19},
                                     {"eaRegPar0_6", 26},
                                     {"eaRegPar1_6", 27}};
constexpr snsZ7731::ChannelPlan kCO2{5,
                                     "CO2",
                                     CaseRule::lowByteOnRead,
                                     {"raChan_5", 6},
                                     {"eaCaseChannel_5", 16},
                                     {"eaRegPar0_5", 23},
                                     {"eaRegPar1_5", 24}};
constexpr Parameter kWeightHysteresis{"eawPar_3", 13};

constexpr std::string_view kInputRegister = "miIR_";
constexpr std::string_view kHoldingRegister = "mhHR_";

std::string NameOf(const Parameter& parameter, std::string_view prefix, std::int32_t protocol) {
  if (protocol == snsZ7731::kiBus) return std::string(parameter.name);
  if (protocol != snsZ7731::modbus) return {};
  return std::string(prefix) + std::to_string(parameter.registerNumber);
}

bool Bit(std::int32_t word, int bit) {
  return (word >> bit & 1) != 0;
}
int Nibble(std::int32_t word, int lowestBit) {
  return word >> lowestBit & 15;
}
int ShiftOf(std::size_t entry) {
  return static_cast<int>(12 - 4 * entry);
}

}  // namespace

std::int32_t snsZ7731::Channel::Case() const {
  return plan_.caseRule == CaseRule::lowByteOnRead ? case_ & 0xFF : case_;
}

void snsZ7731::Channel::SetCase(std::int32_t word, std::int32_t protocol) {
  if (plan_.caseRule == CaseRule::lowByteOnRead || protocol == kiBus) {
    case_ = word;
  } else if (protocol == modbus) {
    case_ = word >> 8;
  }
}

std::string snsZ7731::Channel::IRValue(std::int32_t protocol) const {
  return NameOf(plan_.value, kInputRegister, protocol);
}
std::string snsZ7731::Channel::IRCase(std::int32_t protocol) const {
  return NameOf(plan_.caseWord, kInputRegister, protocol);
}
std::string snsZ7731::Channel::HRCOMP_A(std::int32_t protocol) const {
  return NameOf(plan_.compA, kHoldingRegister, protocol);
}
std::string snsZ7731::Channel::HRCOMP_B(std::int32_t protocol) const {
  return NameOf(plan_.compB, kHoldingRegister, protocol);
}
std::string snsZ7731::WeightHRHysteresis(std::int32_t protocol) const {
  return NameOf(kWeightHysteresis, kHoldingRegister, protocol);
}

snsZ7731::snsZ7731() : Temp1(kTemp1), Temp2(kTemp2), Weight(kWeight), TWA(kTWA), CO2(kCO2) {}

void snsZ7731::SetDisplayMode(int position, int channel) {
  sequence_.at(static_cast<std::size_t>(position)) = channel;
}

std::string snsZ7731::GetDisplayMode(int position) const {
  const int channel = sequence_.at(static_cast<std::size_t>(position));
  return std::string(DisplayModes.at(static_cast<std::size_t>(channel)));
}

void snsZ7731::AddStatus(std::int32_t word, int kind) {
  if (kind == 10) {
    Temp1.Status = Nibble(word, 4);
    Temp2.Status = Nibble(word, 12);
    CO2.Status = Nibble(word, 0);
  } else if (kind == 15) {
    Weight.Status = Nibble(word, 0);
    TWA.Status = Nibble(word, 8);
  }
}

void snsZ7731::AddAlarm(std::int32_t word, int kind) {
  if (kind == 1) {
    WeightPreAlarm = Bit(word, 0);
    WeightMainAlarm = Bit(word, 1);
  } else if (kind == 2) {
    CO2PreAlarm = Bit(word, 0);
    CO2MainAlarm = Bit(word, 1);
    TWAAlarm = Bit(word, 2);
    Temp1HighAlarm = Bit(word, 5);
    Temp1LowAlarm = Bit(word, 6);
    Temp2HighAlarm = Bit(word, 7);
    Temp2LowAlarm = Bit(word, 8);
  }
}

void snsZ7731::RelayList::Init(std::int32_t word) {
  for (std::size_t i = 0; i < entries_.size(); ++i) entries_.at(i) = Nibble(word, ShiftOf(i));
}

std::int32_t snsZ7731::RelayList::Get() const {
  std::int32_t word = 0;
  for (std::size_t i = 0; i < entries_.size(); ++i) word += entries_.at(i) << ShiftOf(i);
  return word;
}

int snsZ7731::RelayList::Entry(int index) const {
  return entries_.at(static_cast<std::size_t>(index));
}

bool snsZ7731::RelayList::Add(int regulator) {
  const auto free = std::find(entries_.begin(), entries_.end(), 0);
  if (free == entries_.end()) return false;
  *free = regulator;
  return true;
}

void snsZ7731::RelayList::Remove(int regulator) {
  std::replace(entries_.begin(), entries_.end(), regulator, 0);
}

}  // namespace brelant
