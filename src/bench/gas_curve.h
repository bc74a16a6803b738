// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <array>

#include "bench/memory.h"

namespace brelant::bench {

/// A number as definition files hold it: mantissa x 10^exponent.
struct Decimal {
  int mantissa = 0;
  int exponent = 0;
  double Value() const;
};

/// The response of a measuring path to a gas (docs/memory-maps.md):
/// y(c) = a1 e^(kc) + a2 e^(kbc) + a3 e^(kbbc) + 1 - a1 - a2 - a3.
struct GasCurve {
  Decimal a1;
  Decimal k;
  Decimal a2;
  Decimal b;
  Decimal a3;
  double ppm_per_unit = 1;  ///< what one unit of c is here

  /// The transmission at `c` units.
  double Transmission(double c) const;
  /// The whole or broken number of units, 0..9999, at which the transmission is `y`.
  double Concentration(double y) const;
};

inline constexpr GasCurve kCurveA{{115081, -6}, {-185441, -8}, {42264, -5}, {114645, -6}, {2415, -4}, 1};
inline constexpr GasCurve kCurveB{{717408, -7}, {-995154, -8}, {218223, -6}, {194551, -6}, {386614, -6}, 10};
inline constexpr GasCurve kCurveC{{124038, -6}, {-162505, -8}, {390136, -6}, {130051, -6}, {213468, -6}, 1};
inline constexpr GasCurve kCurveD{{514902, -7}, {-1291, -5}, {178395, -6}, {173295, -6}, {480166, -6}, 10};

/// A position on the common scale: this one stands for no gas.
inline constexpr double kZeroGas = 61440;

/// A sensor's linearisation: entry i belongs to the position 4096 i, entry 16 continues the last segment.
using Table = std::array<int, 17>;

/// The table of a gas from entry 15 (no gas) down to the transmission `floor` at entry 0.
Table GasTable(const GasCurve& curve, double floor, int offset);
/// The table that a host computes from a definition file (docs/memory-maps.md, Definition files).
Table DefinitionTable(const GasCurve& curve, double full_scale, int offset);
/// The table whose entries rise evenly.
Table EvenTable(int first, int step);

Table ReadTable(ConstBytes memory, std::size_t address);
void PutTable(Bytes memory, std::size_t address, const Table& table);

/// The value of a table at a position; positions beyond 0..61440 count as these.
double ValueAt(const Table& table, double position);
/// The position at which a rising or falling table has this value; the nearer end if it has not.
double PositionOf(const Table& table, double value);

}  // namespace brelant::bench
