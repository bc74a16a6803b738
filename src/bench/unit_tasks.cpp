// SPDX-License-Identifier: GPL-3.0-or-later
#include "bench/unit_tasks.h"

#include "bench/central_unit.h"

namespace brelant::bench {
namespace {

using std::chrono::microseconds;

constexpr std::size_t kTankCommand = 304;
constexpr std::size_t kProcedure = 306;
constexpr microseconds kCalibrationTime = std::chrono::seconds(1);

// The tank leaves what it does not know; a result stays until the next command.
bool IsTankCommand(int word) {
  return word == 1 || word == 2;
}
bool IsProcedure(int word) {
  return word != 0 && word != 100;
}

}  // namespace

std::optional<microseconds> Errand::Due(const Memory& memory, microseconds now) {
  const int word = Word(memory.ram, at_);
  if (!is_command_(word)) {
    due_.reset();
  } else if (!due_ || word != command_) {
    due_ = now + kCalibrationTime;
  }
  command_ = word;
  return due_;
}

void Errand::Finish(const Product& product, Memory& memory) {
  const double moment = std::chrono::duration<double>(*due_).count();
  PutWord(memory.ram, at_, work_(product, memory, command_, moment));
  due_.reset();
}

UnitTasks::UnitTasks()
    : tank_(kTankCommand, IsTankCommand, central::CalibrateTank),
      procedure_(kProcedure, IsProcedure, central::CarryOutProcedure) {}

void UnitTasks::Mind(const Product& product, Memory& memory, microseconds now) {
  const auto log_until = [&](microseconds moment) {
    if (product.platform == 9) loggers_.Mind(product, memory, moment);
  };
  for (;;) {
    const auto tank = tank_.Due(memory, now);
    const auto procedure = procedure_.Due(memory, now);
    const bool tank_first = tank && (!procedure || *tank <= *procedure);
    const auto due = tank_first ? tank : procedure;
    if (!due || *due > now) break;
    // Samples that were taken before are not touched by what comes now.
    log_until(*due);
    (tank_first ? tank_ : procedure_).Finish(product, memory);
  }
  log_until(now);
}

}  // namespace brelant::bench
