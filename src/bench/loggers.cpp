// SPDX-License-Identifier: GPL-3.0-or-later
#include "bench/loggers.h"

#include <algorithm>
#include <cmath>
#include <cstdint>

#include "bench/central_unit.h"

namespace brelant::bench {
namespace {

using std::chrono::microseconds;
using std::chrono::seconds;

// RAM.
constexpr std::size_t kCount = 336;
constexpr std::size_t kNext = 340;
constexpr std::size_t kAge = 344;
constexpr std::size_t kSamples = 1024;
constexpr std::size_t kSamplesOfOne = 3072;
constexpr int kMostAge = 65535;

int CodeIn(const Memory& memory) {
  return memory.eeprom[central::kLoggerTiming] & 127;
}

int SizeIn(const Memory& memory) {
  return std::min(Word(memory.eeprom, central::kLoggerSize), static_cast<int>(kSamplesOfOne / 2));
}

std::size_t ChannelIn(const Memory& memory, std::size_t logger) {
  return memory.eeprom[central::LoggerChannelAt(logger) + 1] & 15U;
}

seconds PeriodOf(int code) {
  const int exponent = code >> 4;
  const int upper = code >> 3 & 1;
  const double eighths = 8 + code % 8;
  // nearbyint: halves go to the even neighbour.
  return seconds(std::lrint(std::nearbyint(std::exp2(2 * exponent + 1 + upper) * eighths / 16 * 2)));
}

}  // namespace

void Loggers::Start(const Memory& memory, microseconds now) {
  code_ = CodeIn(memory);
  size_ = SizeIn(memory);
  for (std::size_t i = 0; i < rings_.size(); ++i) {
    rings_[i] = {ChannelIn(memory, i), Word(memory.ram, kCount + 2 * i), Word(memory.ram, kNext + 2 * i)};
  }
  newest_ = now - seconds(Word(memory.ram, kAge));
  minded_ = now;
}

void Loggers::Mind(const Product& product, Memory& memory, microseconds now) {
  Follow(memory);
  minded_ = std::max(minded_, now);
  Record(product, memory, minded_);
  Publish(memory);
}

void Loggers::Follow(const Memory& memory) {
  const bool all_anew = code_ != CodeIn(memory) || size_ != SizeIn(memory);
  code_ = CodeIn(memory);
  size_ = SizeIn(memory);
  if (all_anew) newest_ = minded_;
  for (std::size_t i = 0; i < rings_.size(); ++i) {
    const std::size_t channel = ChannelIn(memory, i);
    if (all_anew || rings_[i].channel != channel) rings_[i] = {channel, 0, 0};
  }
}

void Loggers::Record(const Product& product, Memory& memory, microseconds now) {
  const microseconds period = PeriodOf(code_);
  const std::int64_t due = (now - newest_) / period;
  // After a long pause only what the ring still holds at its end.
  for (std::int64_t i = std::max<std::int64_t>(0, due - size_); size_ > 0 && i < due; ++i) {
    const double moment = std::chrono::duration<double>(newest_ + (i + 1) * period).count();
    for (std::size_t logger = 0; logger < rings_.size(); ++logger) {
      const auto place = static_cast<std::size_t>((rings_[logger].next + i) % size_);
      PutWord(memory.ram, kSamples + kSamplesOfOne * logger + 2 * place,
              central::ChannelWord(product, memory, rings_[logger].channel, moment));
    }
  }
  for (Ring& ring : rings_) {
    if (size_ == 0) break;
    ring.count = static_cast<int>(std::min<std::int64_t>(size_, ring.count + due));
    ring.next = static_cast<int>((ring.next + due) % size_);
  }
  newest_ += due * period;
}

void Loggers::Publish(Memory& memory) const {
  for (std::size_t i = 0; i < rings_.size(); ++i) {
    PutWord(memory.ram, kCount + 2 * i, rings_[i].count);
    PutWord(memory.ram, kNext + 2 * i, rings_[i].next);
  }
  const std::int64_t age = std::chrono::duration_cast<seconds>(minded_ - newest_).count();
  PutWord(memory.ram, kAge, static_cast<int>(std::min<std::int64_t>(age, kMostAge)));
}

}  // namespace brelant::bench
