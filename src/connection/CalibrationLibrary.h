// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <chrono>
#include <cstdint>
#include <functional>
#include <map>
#include <string>
#include <string_view>

#include "connection/BRECOM.h"
#include "platform/clock.h"
#include "platform/pump.h"

namespace brelant {

class CalibrationLibrary;

/// A value that is handed to a calibration procedure, as the user typed it.
struct CalibrationValue {
  std::string Text;
};

/// The values of a procedure.
class CalibrationValues {
 public:
  /// Throws ConnectionError for a name that the procedure does not have.
  CalibrationValue& Item(std::string_view name);

 private:
  friend class CalibrationLibrary;
  friend class CalibrationProcedure;
  std::map<std::string, CalibrationValue, std::less<>> values_;
};

/// A calibration that the unit carries out by itself.
class CalibrationProcedure {
 public:
  CalibrationValues& Values() { return values_; }
  /// Returns when the unit is done. Throws ConnectionError: nothing has been sent if a value is missing, is
  /// no number or has no room; "Calibration error" if the unit refuses or does not end. The values count for
  /// one run.
  void Run();

 private:
  friend class CalibrationLibrary;
  CalibrationProcedure(CalibrationLibrary& library, std::string_view name) : library_(library), name_(name) {}

  CalibrationLibrary& library_;
  std::string name_;
  CalibrationValues values_;
};

/// The calibration procedures of units that are reached by name (docs/names.md, Calibration).
class CalibrationLibrary {
 public:
  struct Context {
    BRECOM& connection;
    Clock& clock;
    Pump& pump;
    /// A number in the unit of a Case word as a raw value.
    std::function<std::int32_t(double value, std::int32_t caseWord)> displayToRaw;
  };

  explicit CalibrationLibrary(const Context& context);
  CalibrationLibrary(const CalibrationLibrary&) = delete;
  CalibrationLibrary& operator=(const CalibrationLibrary&) = delete;

  /// The same object each time. Throws ConnectionError for an unknown name.
  CalibrationProcedure& Procedure(std::string_view name);

  /// Told between the looks at a running procedure: the part of the longest time it may take, in percent.
  std::function<void(int)> onProgress;

 private:
  friend class CalibrationProcedure;
  struct Plan;
  static const Plan& PlanOf(std::string_view name);

  void Run(const Plan& plan, CalibrationValues values);
  void Hand(const Plan& plan, CalibrationValues& values);
  void Await(std::int32_t command);
  void PauseUntil(std::chrono::microseconds moment);
  std::int32_t Get(std::string_view name);
  void Set(std::string_view name, std::int32_t value);

  Context context_;
  std::map<std::string, CalibrationProcedure, std::less<>> procedures_;
};

}  // namespace brelant
