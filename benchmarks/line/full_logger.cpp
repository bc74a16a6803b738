// SPDX-License-Identifier: GPL-3.0-or-later
#include "line/full_logger.h"

#include <chrono>
#include <cmath>
#include <cstdint>
#include <fstream>
#include <span>
#include <stdexcept>

#include "bench/virtual_sensor.h"
#include "bench/whole_file.h"

namespace brelant::benchmark {

namespace {

// As a new unit is set (docs/memory-maps.md, Loggers).
constexpr int kPart = 154;
constexpr std::chrono::seconds kPeriod{576};
constexpr int kSize = 1500;
/// The ring goes round once and begins to do so again.
constexpr int kTaken = 2000;
constexpr std::size_t kSamples = 1024;

int SignedWord(std::span<const std::uint8_t> memory, std::size_t at) {
  return static_cast<std::int16_t>(memory[at] << 8 | memory[at + 1]);
}

}  // namespace

FullLogger::FullLogger() {
  bench::VirtualSensor unit({.part = kPart});
  unit.Advance(kTaken * kPeriod);
  for (int i = kTaken - kSize; i < kTaken; ++i) {
    logged_.push_back(SignedWord(unit.Ram(), kSamples + 2 * static_cast<std::size_t>(i % kSize)));
  }
  bench::WriteWhole(ImageFile(), unit.Image());
}

void FullLogger::CheckExport() const {
  std::ifstream file(ExportFile());
  std::vector<int> rows;
  bool isBelow = false;
  for (std::string row; std::getline(file, row);) {
    const auto tab = row.find('\t');
    // Values of the first channel have two decimals.
    if (isBelow) rows.push_back(static_cast<int>(std::lround(100 * std::stod(row.substr(tab + 1)))));
    isBelow = isBelow || row.substr(0, tab) == "Time";
  }
  if (rows != logged_) throw std::runtime_error("The export is not what the unit has logged.");
}

}  // namespace brelant::benchmark
