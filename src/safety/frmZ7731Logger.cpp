// SPDX-License-Identifier: GPL-3.0-or-later
#include "safety/frmZ7731Logger.h"

#include "safety/Functions.h"
#include "shell/Common.h"

namespace brelant {

namespace {

constexpr std::int32_t kChannelMask = 15;
constexpr int kHighByte = 256;
constexpr std::int32_t kLowByteMask = 255;
constexpr std::int32_t kCodeMask = 127;
constexpr float kMinute = 60;
constexpr double kMinutesOfDay = 1440;

}  // namespace

frmZ7731Logger::frmZ7731Logger(const UnitDesk& desk)
    : UnitDialog(desk, "frmZ7731Logger", "Logger Configuration"),
      cmbLoggerValue1(form.Add(ControlKind::list, "cmbLoggerValue1")),
      cmbLoggerValue2(form.Add(ControlKind::list, "cmbLoggerValue2")),
      btnChangeValues(form.Add(ControlKind::button, "btnChangeValues", "Update logger values")),
      txtMinutes(form.Add(ControlKind::text, "txtMinutes")),
      btnChangeInterval(form.Add(ControlKind::button, "btnChangeInterval", "Update logger interval")),
      btnEstimate(form.Add(ControlKind::button, "btnEstimate", "Estimate total logger period")),
      btnCancel(form.Add(ControlKind::button, "btnCancel", "Cancel")) {
  btnChangeValues.onClick = Working([this] { ChangeValues(); }, "Could not change logger values");
  btnChangeInterval.onClick = Working([this] { ChangeInterval(); }, "Could not change logger period");
  btnEstimate.onClick =
      Working([this] { Estimate(); },
              "Could not estimate total logger period. Please check logger value in textbox.");
  btnCancel.onClick = [this] { form.Hide(); };
}

void frmZ7731Logger::Fill() {
  const auto first = Read(snsZ7731::Log1Node) & kChannelMask;
  const auto second = Read(snsZ7731::Log2Node) & kChannelMask;
  const auto nameOf = [](std::int32_t channel) {
    return std::string(snsZ7731::DisplayModes.at(static_cast<std::size_t>(channel)));
  };
  Offer(cmbLoggerValue1, nameOf(first));
  Offer(cmbLoggerValue2, nameOf(second));
  ShowInterval();
}

/// What the unit really uses, in whole minutes rounded up.
void frmZ7731Logger::ShowInterval() {
  const auto code = Read(snsZ7731::LogTimerNode) / kHighByte & kCodeMask;
  const auto seconds = static_cast<float>(Functions::LoggerPeriodSeconds(code));
  txtMinutes.SetText(NumberText(RoundUp(seconds / kMinute)));
}

void frmZ7731Logger::ChangeValues() {
  const auto with = [this](std::string_view name, const Control& list) {
    return (Read(name) & ~kChannelMask) | SelectedChannel(list);
  };
  const auto first = with(snsZ7731::Log1Node, cmbLoggerValue1);
  const auto second = with(snsZ7731::Log2Node, cmbLoggerValue2);
  const bool isFirstDone = Write(snsZ7731::Log1Node, first);
  const bool isSecondDone = Write(snsZ7731::Log2Node, second);
  Tell(isFirstDone && isSecondDone ? "Logger values changed" : "Could not change logger values");
}

void frmZ7731Logger::ChangeInterval() {
  const int minutes = IntegerOf(txtMinutes);
  const auto old = Read(snsZ7731::LogTimerNode);
  const auto code = Functions::LoggerCodeForMinutes(minutes);
  if (!Write(snsZ7731::LogTimerNode, code * kHighByte | (old & kLowByteMask))) {
    return Tell("Could not change logger period");
  }
  ShowInterval();
  Tell("Log interval changed");
}

void frmZ7731Logger::Estimate() {
  const int minutes = IntegerOf(txtMinutes);
  const auto samples = Read("eaLoggBufferSize_0");
  const double days = Round(minutes * static_cast<double>(samples) / kMinutesOfDay * 10) / 10;
  Tell("Estimated total logger period = " + NumberText(static_cast<float>(days)) + " days");
}

}  // namespace brelant
