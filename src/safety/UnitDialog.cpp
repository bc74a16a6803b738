// SPDX-License-Identifier: GPL-3.0-or-later
#include "safety/UnitDialog.h"

#include <charconv>
#include <cmath>
#include <exception>
#include <limits>
#include <stdexcept>
#include <utility>
#include <vector>

#include "safety/Functions.h"
#include "shell/Common.h"

namespace brelant {

UnitDialog::UnitDialog(const UnitDesk& desk, const std::string& name, const std::string& title)
    : form(desk.screen, name, title), desk_(desk) {}

void UnitDialog::ShowModal() {
  try {
    Fill();
  } catch (const std::exception& error) {
    if (!desk_.session.Over()) Tell(error.what());
    return;
  }
  form.ShowModal(desk_.machine.pump, [this] { return desk_.session.Over(); });
}

/// While one button's work waits for the unit, another one is not taken.
Control::Handler UnitDialog::Working(std::function<void()> work, const std::string& failure) {
  return [this, work = std::move(work), failure] {
    if (isWorking_) return;
    isWorking_ = true;
    form.SetBusy(true);
    try {
      work();
    } catch (const std::exception& error) {
      if (!desk_.session.Over()) Tell(failure.empty() ? error.what() : failure);
    }
    desk_.clear();
    form.SetBusy(false);
    isWorking_ = false;
  };
}

std::int32_t UnitDialog::Read(std::string_view name) {
  return desk_.connection().Nodes().FindNode(name, "").GetValue(true);
}

bool UnitDialog::Write(std::string_view name, std::int32_t value) {
  return desk_.WriteToSensor(std::string(name), static_cast<float>(value));
}

void UnitDialog::Offer(Control& list, const std::string& selected) {
  std::vector<std::string> names;
  int line = -1;
  for (const int channel : snsZ7731::AvailableChannels) {
    names.emplace_back(snsZ7731::DisplayModes.at(static_cast<std::size_t>(channel)));
    if (names.back() == selected) line = static_cast<int>(names.size()) - 1;
  }
  list.SetItems(names);
  list.SetValue(line);
  list.SetText(line < 0 ? std::string() : selected);
}

int UnitDialog::SelectedChannel(const Control& list) {
  return Functions::IndexInList(snsZ7731::DisplayModes, list.Text());
}

int UnitDialog::IntegerOf(const Control& field) {
  auto text = field.Text();
  while (!text.empty() && text.front() == ' ') text.erase(0, 1);
  while (!text.empty() && text.back() == ' ') text.pop_back();
  for (auto& c : text) c = c == ',' ? '.' : c;
  double number = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
  using Limits = std::numeric_limits<std::int16_t>;
  const bool isNumber = error == std::errc() && end == text.data() + text.size() && std::isfinite(number);
  if (!isNumber || Round(number) < Limits::min() || Round(number) > Limits::max()) {
    throw std::invalid_argument("\"" + field.Text() + "\" is no whole number.");
  }
  return static_cast<int>(Round(number));
}

}  // namespace brelant
