// SPDX-License-Identifier: GPL-3.0-or-later
#include "connection/CalibrationLibrary.h"

#include <algorithm>
#include <array>
#include <limits>
#include <optional>

#include "connection/connection_error.h"
#include "shell/Common.h"
#include "shell/user_number.h"

namespace brelant {

namespace {

constexpr const char* kCommand = "raGenStat_9";
constexpr std::chrono::milliseconds kPollPeriod(500);
constexpr std::chrono::seconds kLimit(30);
constexpr int kDone = 100;

constexpr const char* kFailed = "Calibration error";

double RequireNumber(const std::string& text) {
  const auto number = FindNumber(text);
  if (!number) throw ConnectionError("'" + text + "' is no number.");
  return *number;
}

template <typename Word>
void RequireRoom(double raw, const std::string& text) {
  using Limits = std::numeric_limits<Word>;
  if (raw >= Limits::min() && raw <= Limits::max()) return;
  throw ConnectionError("The value " + text + " does not fit into its place.");
}

}  // namespace

/// What a procedure is to the unit (docs/names.md, Calibration).
struct CalibrationLibrary::Plan {
  std::string_view name;
  std::int32_t command;
  /// Empty: the procedure has no value.
  std::string_view value;
  /// The Case word that tells how the value is scaled.
  std::string_view caseWord;
  /// In hPa. Empty: the procedure has none.
  std::string_view pressure;
};

const CalibrationLibrary::Plan& CalibrationLibrary::PlanOf(std::string_view name) {
  static constexpr std::array<Plan, 5> kPlans{
      {{"cpSpaceTempOffsetAdjust", 1, "cvSpaceTempOffsetAdjustCorrectTemp", "eaCaseChannel_4", ""},
       {"cpCO2ZeroCal", 2, "", "", ""},
       {"cpCO2BackGround", 3, "", "", ""},
       {"cpCO2OffsetCal", 4, "cvCO2OffsetCalGas", "eaCaseChannel_5", "cvCO2OffsetCalPressure"},
       {"cpCO2SpanCal", 5, "cvCO2SpanCalGas", "eaCaseChannel_5", "cvCO2SpanCalPressure"}}};
  const auto plan =
      std::find_if(kPlans.begin(), kPlans.end(), [&](const auto& each) { return each.name == name; });
  if (plan == kPlans.end()) throw ConnectionError("Unknown procedure '" + std::string(name) + "'.");
  return *plan;
}

CalibrationValue& CalibrationValues::Item(std::string_view name) {
  const auto value = values_.find(name);
  if (value == values_.end()) throw ConnectionError("Unknown value '" + std::string(name) + "'.");
  return value->second;
}

void CalibrationProcedure::Run() {
  auto values = values_;
  // A gas of the last time would be a wrong one.
  for (auto& [name, value] : values_.values_) value.Text.clear();
  library_.Run(CalibrationLibrary::PlanOf(name_), values);
}

CalibrationLibrary::CalibrationLibrary(const Context& context) : context_(context) {}

CalibrationProcedure& CalibrationLibrary::Procedure(std::string_view name) {
  const auto known = procedures_.find(name);
  if (known != procedures_.end()) return known->second;
  const auto& plan = PlanOf(name);
  CalibrationProcedure procedure(*this, name);
  for (const auto value : {plan.value, plan.pressure}) {
    if (!value.empty()) procedure.values_.values_[std::string(value)];
  }
  return procedures_.emplace(name, procedure).first->second;
}

void CalibrationLibrary::Run(const Plan& plan, CalibrationValues values) {
  if (!plan.value.empty()) Hand(plan, values);
  Set(kCommand, plan.command);
  Await(plan.command);
}

/// The values of a procedure; nothing is sent until all of them are known to be right.
void CalibrationLibrary::Hand(const Plan& plan, CalibrationValues& values) {
  const auto& text = values.Item(plan.value).Text;
  const double value = RequireNumber(text);
  double pressure = 0;
  if (!plan.pressure.empty() && !values.Item(plan.pressure).Text.empty()) {
    const auto& told = values.Item(plan.pressure).Text;
    pressure = Round(RequireNumber(told));
    RequireRoom<std::uint16_t>(pressure, told);
  }
  const auto raw = context_.displayToRaw(value, Get(plan.caseWord));
  RequireRoom<std::int16_t>(raw, text);
  Set("raCalPar_0", raw);
  Set("raCalPar_1", static_cast<std::int32_t>(pressure));
}

void CalibrationLibrary::Await(std::int32_t command) {
  using std::chrono::microseconds;
  const auto& clock = context_.clock;
  const auto start = clock.Now();
  while (clock.Now() - start < kLimit) {
    PauseUntil(clock.Now() + kPollPeriod);
    const auto state = Get(kCommand);
    if (state != 0 && state != command) throw ConnectionError(kFailed);
    const auto part = (clock.Now() - start) * kDone / microseconds(kLimit);
    if (onProgress) onProgress(state == 0 ? kDone : static_cast<int>(std::min<std::int64_t>(part, kDone)));
    if (state == 0) return;
  }
  throw ConnectionError(kFailed);
}

void CalibrationLibrary::PauseUntil(std::chrono::microseconds moment) {
  while (context_.clock.Now() < moment) context_.pump.Wait(moment);
}

std::int32_t CalibrationLibrary::Get(std::string_view name) {
  return context_.connection.Nodes().FindNode(name, "").GetValue(true);
}

void CalibrationLibrary::Set(std::string_view name, std::int32_t value) {
  context_.connection.Nodes().FindNode(name, "").SetValue(true, value);
}

}  // namespace brelant
