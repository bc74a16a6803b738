// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <array>
#include <cmath>
#include <cstddef>

#include "bench/memory.h"

namespace brelant::bench {

// What a host computes, written once more from docs/memory-maps.md (Definition files, Sensor tables,
// Calibration), apart from the sensors that are tested with it.

/// A curve as the page prints it.
struct PrintedCurve {
  double k, a1, a2, b, a3;
  double At(double c) const {
    return a1 * std::exp(k * c) + a2 * std::exp(k * b * c) + a3 * std::exp(k * b * b * c) + 1 - a1 - a2 - a3;
  }
};

inline constexpr PrintedCurve kPrintedA{-0.00185441, 0.115081, 0.42264, 0.114645, 0.2415};
inline constexpr PrintedCurve kPrintedB{-0.00995154, 0.0717408, 0.218223, 0.194551, 0.386614};
inline constexpr PrintedCurve kPrintedC{-0.00162505, 0.124038, 0.390136, 0.130051, 0.213468};
inline constexpr PrintedCurve kPrintedD{-0.01291, 0.0514902, 0.178395, 0.173295, 0.480166};

using Entries = std::array<double, 17>;

inline int WordAt(ConstBytes memory, std::size_t address) {
  return memory[address] * 256 + memory[address + 1];
}

inline void SetWord(Bytes memory, std::size_t address, int value) {
  memory[address] = static_cast<std::uint8_t>(value / 256);
  memory[address + 1] = static_cast<std::uint8_t>(value % 256);
}

inline Entries EntriesAt(ConstBytes memory, std::size_t address) {
  Entries entries{};
  for (std::size_t i = 0; i < entries.size(); ++i) entries[i] = WordAt(memory, address + 2 * i);
  return entries;
}

/// The table of a definition file, as the host builds it.
inline Entries DefinedEntries(const PrintedCurve& curve, double full_scale) {
  Entries entries{};
  const double full = curve.At(full_scale);
  for (std::size_t i = 0; i < 16; ++i) {
    const double x = 4096.0 * static_cast<double>(i);
    double c = 32768;
    for (double step = 16384; step > 1e-30; step /= 2) {
      const double n = std::trunc((curve.At(c) - full) / (1 - full) * 61440);
      if (x > n) c -= step;
      if (x < n) c += step;
      if (x == n) break;
    }
    entries[i] = std::trunc(c) + 5000;
  }
  entries[16] = entries[15] - (entries[14] - entries[15]);
  return entries;
}

/// The value at a position, not rounded.
inline double Interpolated(const Entries& entries, double x) {
  for (std::size_t i = 0; i < 16; ++i) {
    if (x > 4096.0 * static_cast<double>(i + 1)) continue;
    return (x - 4096.0 * static_cast<double>(i)) / 4096 * (entries[i + 1] - entries[i]) + entries[i];
  }
  return 0;
}

/// TableToValue of the page.
inline double TableToValue(const Entries& entries, double x) {
  return std::fmin(std::fmax(std::nearbyint(Interpolated(entries, x)), 0), 65535);
}

/// ValueToTable of the page.
inline double ValueToTable(const Entries& entries, double value) {
  double result = 0;
  for (std::size_t i = 0; i < 16; ++i) {
    const double lo = entries[i];
    const double hi = entries[i + 1];
    if (lo == hi) continue;
    if (value >= std::fmin(lo, hi) && value <= std::fmax(lo, hi)) {
      result = std::nearbyint((value - lo) / (hi - lo) * 4096 + 4096.0 * static_cast<double>(i));
      break;
    }
    result = 65535;
  }
  return std::fmin(std::fmax(result, 0), 65536);
}

/// A stored word as a position, and back; `spread` is the scale factor, or the span word / 2048.
inline double PositionOfWord(double word, double spread) {
  return 61440 - (61440 - word) * spread;
}
inline double WordOfPlace(double x, double spread) {
  return std::nearbyint(61440 - (61440 - x) / spread);
}

}  // namespace brelant::bench
