// SPDX-License-Identifier: GPL-3.0-or-later
#include "safety/temperature_table.h"

#include <array>

#include "safety/Functions.h"
#include "shell/Common.h"

namespace brelant::Functions {

namespace {

constexpr std::size_t kWords = 16;
constexpr int kReadings = 3;
constexpr int kBetweenReadings = 1500;
/// What a negative word is folded with, as required; it is not 65536.
constexpr double kFold = 65535;

std::string WordName(std::size_t index) {
  return "eaTable3_" + std::to_string(index);
}

double MeanReading(SensorNodes nodes, const std::string& name, const std::function<void(int)>& sleep) {
  double sum = 0;
  for (int i = 0; i < kReadings; ++i) {
    if (i > 0) sleep(kBetweenReadings);
    sum += nodes.FindNode(name, "").GetValue(true);
  }
  return sum / kReadings;
}

}  // namespace

bool CalibrateTemp2Table(BRECOM& connection, const snsZ7731& unit, double actual, std::int32_t caseWord,
                         const TableTools& tools) {
  const double target = DisplayToRaw(actual, caseWord);
  auto nodes = connection.Nodes();
  const double error = target - MeanReading(nodes, unit.Temp2.IRValue(unit.ProtocolInUse), tools.Sleep);
  std::array<double, kWords> table{};
  for (std::size_t i = 0; i < kWords; ++i) table.at(i) = nodes.FindNode(WordName(i), "").GetValue(true);
  for (auto& word : table) {
    word = Round(word + error);
    if (word < 0) word += kFold;
  }
  for (std::size_t i = 0; i < kWords; ++i) {
    if (!tools.WriteToSensor(WordName(i), static_cast<float>(table.at(i)))) return false;
  }
  return true;
}

}  // namespace brelant::Functions
