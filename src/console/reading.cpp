// SPDX-License-Identifier: GPL-3.0-or-later
#include "console/reading.h"

#include <QDateTime>
#include <nlohmann/json.hpp>

namespace brelant {

namespace {

std::string Now() {
  const auto now = QDateTime::currentDateTime();
  return now.toOffsetFromUtc(now.offsetFromUtc()).toString(Qt::ISODateWithMs).toStdString();
}

std::string WithUnit(const std::string& text, const std::string& unit) {
  return unit.empty() ? text : text + " " + unit;
}

std::string CsvField(const std::string& text) {
  if (text.find_first_of(",\"\r\n") == std::string::npos) return text;
  std::string quoted = "\"";
  for (const char c : text) {
    if (c == '"') quoted += c;
    quoted += c;
  }
  return quoted + "\"";
}

}  // namespace

Reading TakeReading(const Panel& panel) {
  return {Now(), panel.LiveValues(), panel.Alarms()};
}

Json ReadingJson(const Reading& reading) {
  Json values = Json::array();
  for (const auto& value : reading.values) {
    values.push_back({{"name", value.name}, {"value", value.text}, {"unit", value.unit}});
  }
  Json alarms = Json::array();
  for (const auto& alarm : reading.alarms) alarms.push_back({{"name", alarm.name}, {"state", alarm.state}});
  return {{"time", reading.time}, {"values", std::move(values)}, {"alarms", std::move(alarms)}};
}

std::string ReadingText(const Reading& reading) {
  auto text = reading.time;
  for (const auto& value : reading.values) text += "  " + value.name + " " + WithUnit(value.text, value.unit);
  for (const auto& alarm : reading.alarms) text += "  " + alarm.name + " " + alarm.state;
  return text;
}

std::string CsvHeader(const Reading& reading) {
  std::string row = "time";
  for (const auto& value : reading.values) {
    row += "," + CsvField(value.unit.empty() ? value.name : value.name + " [" + value.unit + "]");
  }
  for (const auto& alarm : reading.alarms) row += "," + CsvField(alarm.name);
  return row;
}

std::string CsvRow(const Reading& reading) {
  auto row = reading.time;
  for (const auto& value : reading.values) row += "," + CsvField(value.text);
  for (const auto& alarm : reading.alarms) row += "," + CsvField(alarm.state);
  return row;
}

}  // namespace brelant
