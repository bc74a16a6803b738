// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstddef>

#include "bench/memory.h"

namespace brelant::bench {

/// One function of the output network, five bytes: channel, a with its sign flag, b with its slope flag.
struct FunctionBlock {
  int channel;
  int a;  ///< raw words of that channel, 15 bits
  int b;
  bool positive;
  bool rising;

  /// From 0 at a to 1 at b, no further.
  double Ramp(int raw) const;
};

FunctionBlock ReadBlock(ConstBytes memory, std::size_t address);
void PutBlock(Bytes memory, std::size_t address, const FunctionBlock& block);

/// What a function with a sign adds to an output, in percent.
double Contribution(const FunctionBlock& block, int raw);

/// The output word of a percentage: 16384 stands for 100 %.
int OutputWord(double percent);

/// What a digital output makes of a percentage; between the ends it stays at `before`.
double Switched(double percent, double before);

}  // namespace brelant::bench
