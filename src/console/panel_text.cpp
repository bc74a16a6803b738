// SPDX-License-Identifier: GPL-3.0-or-later
#include "console/panel_text.h"

#include <algorithm>
#include <optional>
#include <utility>
#include <vector>

namespace brelant {

namespace {

using Row = std::vector<std::string>;
using Rows = std::vector<Row>;

/// As many columns of the terminal as the text takes, for what stands in a panel.
std::size_t Width(const std::string& text) {
  return static_cast<std::size_t>(std::count_if(text.begin(), text.end(), [](char c) {
    constexpr int kContinuationMask = 0xC0;
    constexpr int kContinuation = 0x80;
    return (static_cast<unsigned char>(c) & kContinuationMask) != kContinuation;
  }));
}

std::string Aligned(const std::string& title, const Rows& rows) {
  if (rows.empty()) return {};
  std::vector<std::size_t> widths;
  for (const auto& row : rows) {
    if (widths.size() < row.size()) widths.resize(row.size());
    for (std::size_t i = 0; i < row.size(); ++i) widths[i] = std::max(widths[i], Width(row[i]));
  }
  auto text = "\n" + title + "\n";
  for (const auto& row : rows) {
    std::string line;
    for (std::size_t i = 0; i < row.size(); ++i) {
      line += "  " + row[i] + std::string(widths[i] - Width(row[i]), ' ');
    }
    text += line.substr(0, line.find_last_not_of(' ') + 1) + "\n";
  }
  return text;
}

/// What a control says of a setting; nothing for what only decorates.
std::optional<std::string> Says(const Control& control) {
  switch (control.Kind()) {
    case ControlKind::text:
    case ControlKind::list:
      return control.Text();
    case ControlKind::label: {
      const bool isCaption = control.Name().starts_with("Label");
      if (isCaption || control.Text().empty()) return {};
      return control.Text();
    }
    case ControlKind::check:
    case ControlKind::option:
      return (control.Value() == 1 ? "[x] " : "[ ] ") + control.Text();
    default:
      return {};
  }
}

Rows Fields(const Form& form) {
  Rows rows;
  for (const auto& control : form.Controls()) {
    const auto says = control.Visible() ? Says(control) : std::nullopt;
    if (!says) continue;
    const auto name = control.Name().substr(0, control.Name().find('('));
    if (rows.empty() || rows.back().front() != name) rows.push_back({name});
    rows.back().push_back(*says);
  }
  return rows;
}

}  // namespace

std::string PanelText(const Panel& panel) {
  Rows values;
  for (const auto& value : panel.LiveValues()) values.push_back({value.name, value.text, value.unit});
  Rows alarms;
  for (const auto& alarm : panel.Alarms()) alarms.push_back({alarm.name, alarm.state});
  return panel.form.Caption() + "\n" + Aligned("Live values", values) + Aligned("Alarms", alarms) +
         Aligned("Fields", Fields(panel.form));
}

}  // namespace brelant
