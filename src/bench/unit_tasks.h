// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <chrono>
#include <cstddef>
#include <optional>

#include "bench/loggers.h"
#include "bench/memory.h"
#include "bench/product.h"

namespace brelant::bench {

/// A command in a word of RAM, which a unit of platform 8 or 9 carries out and puts the result in its place.
class Errand {
 public:
  using Work = int (*)(const Product& product, Memory& memory, int command, double seconds);

  Errand(std::size_t at, bool (*is_command)(int), Work work)
      : at_(at), is_command_(is_command), work_(work) {}

  /// When the command that stands in the word at `now` is to be done with; none without one.
  std::optional<std::chrono::microseconds> Due(const Memory& memory, std::chrono::microseconds now);

  /// Carries the command out.
  void Finish(const Product& product, Memory& memory);

 private:
  std::size_t at_;
  bool (*is_command_)(int);
  Work work_;
  int command_ = 0;
  std::optional<std::chrono::microseconds> due_;
};

/// What a unit of platform 8 or 9 does by itself.
class UnitTasks {
 public:
  UnitTasks();

  /// Begins at `now`, after power-on.
  void Start(const Memory& memory, std::chrono::microseconds now) { loggers_.Start(memory, now); }

  /// Does all that is due up to `now`, in its order.
  void Mind(const Product& product, Memory& memory, std::chrono::microseconds now);

 private:
  Errand tank_;
  Errand procedure_;
  Loggers loggers_;
};

}  // namespace brelant::bench
