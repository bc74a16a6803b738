// SPDX-License-Identifier: GPL-3.0-or-later
#include "bench/modbus_registers.h"

#include "bench/central_unit.h"

namespace brelant::bench {
namespace {

using central::ChannelKindAt;
using central::ChannelStatusAt;
using central::FirstLevelAt;
using central::kAverage;
using central::kAverageBit;
using central::kGas;
using central::kGasMainBit;
using central::kGasPreBit;
using central::kHighBit;
using central::kLowBit;
using central::kTemperature1;
using central::kTemperature2;
using central::kWatchAverage;
using central::kWatchGas;
using central::kWatchTemperature1;
using central::kWatchTemperature2;
using central::kWatchWeight;
using central::kWeight;
using central::kWeightMainBit;
using central::kWeightPreBit;
using central::LiveAt;
using central::RegulatorStatusAt;
using central::SecondLevelAt;
using central::WeightLevelAt;

constexpr int kRamWindow = 4096;
constexpr int kEepromWindow = 8192;

/// Status and configuration bytes as the registers gather them.
class Gatherer {
 public:
  Gatherer(ConstBytes ram, ConstBytes eeprom) : ram_(ram), eeprom_(eeprom) {}

  int Live(std::size_t channel) const { return Word(ram_, LiveAt(channel)); }
  int Kind(std::size_t channel) const { return eeprom_[ChannelKindAt(channel)]; }

  int WeightAlarms() const {
    return Alarm(kWatchWeight, kWeightPreBit) | Alarm(kWatchWeight, kWeightMainBit) << 1;
  }

  int OtherAlarms() const {
    return Alarm(kWatchGas, kGasPreBit) | Alarm(kWatchGas, kGasMainBit) << 1 |
           Alarm(kWatchAverage, kAverageBit) << 2 | Alarm(kWatchTemperature1, kHighBit) << 5 |
           Alarm(kWatchTemperature1, kLowBit) << 6 | Alarm(kWatchTemperature2, kHighBit) << 7 |
           Alarm(kWatchTemperature2, kLowBit) << 8;
  }

  int GasAndTemperatureStatus() const {
    return Status(kGas) | Status(kTemperature1) << 4 | Status(kTemperature2) << 12;
  }

  int WeightAndAverageStatus() const { return Status(kWeight) | Status(kAverage) << 8; }

 private:
  int Alarm(std::size_t regulator, int bit) const { return ram_[RegulatorStatusAt(regulator)] >> bit & 1; }
  int Status(std::size_t channel) const { return ram_[ChannelStatusAt(channel)] & 15; }

  ConstBytes ram_;
  ConstBytes eeprom_;
};

std::optional<int> Gathered(const Gatherer& unit, int number) {
  switch (number) {
    case 1:
      return unit.WeightAlarms();
    case 2:
      return unit.OtherAlarms();
    case 6:
      return unit.Live(kGas);
    case 7:
      return unit.Live(kTemperature1);
    case 9:
      return unit.Live(kTemperature2);
    case 10:
      return unit.GasAndTemperatureStatus();
    case 11:
      return unit.Live(kWeight);
    case 13:
      return unit.Live(kAverage);
    case 15:
      return unit.WeightAndAverageStatus();
    case 16:
      return unit.Kind(kTemperature1) << 8 | unit.Kind(kGas);
    case 17:
      return unit.Kind(kTemperature2) << 8;
    case 18:
      return unit.Kind(kWeight);
    case 19:
      return unit.Kind(kAverage);
    default:
      return std::nullopt;
  }
}

std::optional<std::size_t> LevelAt(int number) {
  switch (number) {
    case 11:
    case 12:
    case 13:
      return WeightLevelAt(static_cast<std::size_t>(number - 10));
    case 20:
      return FirstLevelAt(kWatchTemperature1);
    case 21:
      return SecondLevelAt(kWatchTemperature1);
    case 23:
      return FirstLevelAt(kWatchGas);
    case 24:
      return SecondLevelAt(kWatchGas);
    case 26:
      return FirstLevelAt(kWatchAverage);
    case 27:
      return SecondLevelAt(kWatchAverage);
    case 29:
      return FirstLevelAt(kWatchTemperature2);
    case 30:
      return SecondLevelAt(kWatchTemperature2);
    default:
      return std::nullopt;
  }
}

std::optional<std::size_t> InWindow(std::size_t size, int number, int first) {
  if (number < first) return std::nullopt;
  const auto address = static_cast<std::size_t>(number - first) * 2;
  if (address >= size) return std::nullopt;
  return address;
}

}  // namespace

std::optional<std::uint16_t> InputRegister(ConstBytes ram, ConstBytes eeprom, int number) {
  const std::optional<int> word = Gathered(Gatherer(ram, eeprom), number);
  if (!word) return std::nullopt;
  return static_cast<std::uint16_t>(*word);
}

std::optional<RegisterPlace> HoldingRegister(std::size_t ram_size, std::size_t eeprom_size, int number) {
  if (const auto level = LevelAt(number)) return RegisterPlace{true, *level};
  if (const auto address = InWindow(ram_size, number, kRamWindow)) return RegisterPlace{false, *address};
  if (const auto address = InWindow(eeprom_size, number, kEepromWindow)) return RegisterPlace{true, *address};
  return std::nullopt;
}

}  // namespace brelant::bench
