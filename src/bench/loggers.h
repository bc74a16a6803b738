// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <array>
#include <chrono>
#include <cstddef>

#include "bench/memory.h"
#include "bench/product.h"

namespace brelant::bench {

/// The two loggers of a platform 9 unit (docs/memory-maps.md, Loggers).
class Loggers {
 public:
  /// Goes on at `now`, after power-on, from what the memory says.
  void Start(const Memory& memory, std::chrono::microseconds now);

  /// Takes all samples that are due up to `now`, each with what its channel had at its moment. Settings that
  /// differ from those met last time count from then on, so who changes one calls it before and after.
  void Mind(const Product& product, Memory& memory, std::chrono::microseconds now);

 private:
  struct Ring {
    std::size_t channel = 0;
    int count = 0;
    int next = 0;
  };

  void Follow(const Memory& memory);
  void Record(const Product& product, Memory& memory, std::chrono::microseconds now);
  void Publish(Memory& memory) const;

  int code_ = 0;
  int size_ = 0;
  std::array<Ring, 2> rings_;
  std::chrono::microseconds newest_{};  // the last moment for samples, or when the loggers were set off
  std::chrono::microseconds minded_{};
};

}  // namespace brelant::bench
