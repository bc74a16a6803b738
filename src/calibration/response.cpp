// SPDX-License-Identifier: GPL-3.0-or-later
#include "calibration/response.h"

namespace brelant {

namespace {

constexpr double kZeroGas = 61440;
constexpr double kOne = 2048;
constexpr int kSegment = 4096;
constexpr int kZeroGasEntry = 15;

}  // namespace

std::vector<ResponsePoint> ResponseOf(const GasTable& table, double zeroWord, double spread) {
  if (zeroWord == 0 || spread == 0) return {};
  std::vector<ResponsePoint> points;
  for (const auto& point : ResponseOf(table)) {
    const double signal = (kZeroGas - (kZeroGas - point.signal) / spread) * kOne / zeroWord;
    if (signal >= 0) points.push_back({static_cast<float>(signal), point.value});
  }
  return points;
}

std::vector<ResponsePoint> ResponseOf(const GasTable& table) {
  std::vector<ResponsePoint> points;
  for (int i = kZeroGasEntry; i >= 0; --i) {
    points.push_back({static_cast<float>(kSegment * i), table.at(static_cast<std::size_t>(i))});
  }
  return points;
}

}  // namespace brelant
