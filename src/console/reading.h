// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <string>
#include <vector>

#include "console/json_lines.h"
#include "shell/panel.h"

namespace brelant {

/// What a panel shows of its sensor after a poll.
struct Reading {
  /// ISO 8601, with the offset from UTC.
  std::string time;
  std::vector<Panel::LiveValue> values;
  std::vector<Panel::Alarm> alarms;
};

Reading TakeReading(const Panel& panel);

Json ReadingJson(const Reading& reading);
/// One line for people.
std::string ReadingText(const Reading& reading);
/// The names of the columns, the values with their units.
std::string CsvHeader(const Reading& reading);
std::string CsvRow(const Reading& reading);

}  // namespace brelant
