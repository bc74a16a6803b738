// SPDX-License-Identifier: GPL-3.0-or-later
#include "bench/function_block.h"

#include <algorithm>
#include <cmath>

namespace brelant::bench {
namespace {

constexpr int kFlag = 0x8000;

}  // namespace

double FunctionBlock::Ramp(int raw) const {
  if (a == b) return raw >= b ? 1 : 0;
  return std::clamp(static_cast<double>(raw - a) / (b - a), 0.0, 1.0);
}

FunctionBlock ReadBlock(ConstBytes memory, std::size_t address) {
  const int a = Word(memory, address + 1);
  const int b = Word(memory, address + 3);
  return {.channel = memory[address],
          .a = a & ~kFlag,
          .b = b & ~kFlag,
          .positive = (a & kFlag) != 0,
          .rising = (b & kFlag) != 0};
}

void PutBlock(Bytes memory, std::size_t address, const FunctionBlock& block) {
  memory[address] = static_cast<std::uint8_t>(block.channel);
  PutWord(memory, address + 1, block.a | (block.positive ? kFlag : 0));
  PutWord(memory, address + 3, block.b | (block.rising ? kFlag : 0));
}

double Contribution(const FunctionBlock& block, int raw) {
  const double climb = block.Ramp(raw) * 100;
  if (block.positive) return block.rising ? climb : 100 - climb;
  return block.rising ? climb - 100 : -climb;
}

int OutputWord(double percent) {
  return static_cast<int>(std::lround(percent / 100 * 16384));
}

double Switched(double percent, double before) {
  if (percent <= 0) return 0;
  return percent >= 100 ? 100 : before;
}

}  // namespace brelant::bench
