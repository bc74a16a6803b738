// SPDX-License-Identifier: GPL-3.0-or-later
#include "bench/gas_curve.h"

#include <algorithm>
#include <cmath>

namespace brelant::bench {
namespace {

constexpr double kSegment = 4096;
constexpr std::size_t kLastSegment = 14;
constexpr double kMostGas = 9999;

}  // namespace

double Decimal::Value() const {
  return mantissa * std::pow(10.0, exponent);
}

double GasCurve::Transmission(double c) const {
  const double slow = k.Value() * c;
  const double ratio = b.Value();
  return 1 + a1.Value() * std::expm1(slow) + a2.Value() * std::expm1(slow * ratio) +
         a3.Value() * std::expm1(slow * ratio * ratio);
}

double GasCurve::Concentration(double y) const {
  double low = 0;
  double high = kMostGas;
  for (int i = 0; i < 60; ++i) {
    const double middle = (low + high) / 2;
    (Transmission(middle) > y ? low : high) = middle;
  }
  return (low + high) / 2;
}

namespace {

// Halves its way to the gas. It stops at the first step that meets the position without its fraction, which
// may be beside the true place; a host that reads a table back expects the same entries.
int GasByHalves(const GasCurve& curve, double full, double position) {
  double gas = 32768;
  for (double step = gas / 2; step > 0; step /= 2) {
    const double met = std::trunc((curve.Transmission(gas) - full) / (1 - full) * kZeroGas);
    if (met == position) break;
    gas += position > met ? -step : step;
  }
  return static_cast<int>(gas);
}

// Entry 16 continues the last segment.
void Finish(Table& table, int offset) {
  table[15] = offset;
  table[16] = 2 * table[15] - table[14];
}

}  // namespace

Table DefinitionTable(const GasCurve& curve, double full_scale, int offset) {
  Table table{};
  const double full = curve.Transmission(full_scale);
  for (std::size_t i = 0; i < 15; ++i) {
    table[i] = GasByHalves(curve, full, kSegment * static_cast<double>(i)) + offset;
  }
  Finish(table, offset);
  return table;
}

Table GasTable(const GasCurve& curve, double floor, int offset) {
  Table table{};
  for (std::size_t i = 0; i < 15; ++i) {
    const double y = floor + (1 - floor) * static_cast<double>(i) / 15;
    table[i] = static_cast<int>(curve.Concentration(y)) + offset;
  }
  Finish(table, offset);
  return table;
}

Table EvenTable(int first, int step) {
  Table table{};
  for (std::size_t i = 0; i < table.size(); ++i) table[i] = first + step * static_cast<int>(i);
  return table;
}

Table ReadTable(ConstBytes memory, std::size_t address) {
  Table table{};
  for (std::size_t i = 0; i < table.size(); ++i) table[i] = Word(memory, address + 2 * i);
  return table;
}

void PutTable(Bytes memory, std::size_t address, const Table& table) {
  for (std::size_t i = 0; i < table.size(); ++i) PutWord(memory, address + 2 * i, table[i]);
}

double ValueAt(const Table& table, double position) {
  const double place = std::clamp(position, 0.0, kZeroGas) / kSegment;
  const std::size_t i = std::min(static_cast<std::size_t>(place), kLastSegment);
  return table[i] + (place - static_cast<double>(i)) * (table[i + 1] - table[i]);
}

double PositionOf(const Table& table, double value) {
  for (std::size_t i = 0; i <= kLastSegment; ++i) {
    const auto [low, high] = std::minmax(table[i], table[i + 1]);
    if (low == high || value < low || value > high) continue;
    return kSegment * (static_cast<double>(i) + (value - table[i]) / (table[i + 1] - table[i]));
  }
  const bool beyond_the_end = std::abs(value - table[15]) < std::abs(value - table[0]);
  return beyond_the_end ? kZeroGas : 0;
}

}  // namespace brelant::bench
