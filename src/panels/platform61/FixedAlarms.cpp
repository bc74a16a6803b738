// SPDX-License-Identifier: GPL-3.0-or-later
#include "panels/platform61/FixedAlarms.h"

#include <array>

#include "panels/alarm_state.h"
#include "shell/Common.h"

namespace brelant::platform61 {

namespace {

constexpr float kGasChannel = 5;
constexpr float kOxygenChannel = 6;

struct Alarm {
  const char* caption;
  int address;
  float channel;
};
/// The last level does not follow the one before it.
constexpr std::array<Alarm, FixedAlarms::kAlarms> kAlarmTable{{
    {"CO2 PRE ALARM:", 76, kGasChannel},
    {"CO2 MAIN ALARM:", 78, kGasChannel},
    {"O2 PRE ALARM:", 80, kOxygenChannel},
    {"O2 MAIN ALARM:", 84, kOxygenChannel},
}};

const Alarm& AlarmOf(int index) {
  return kAlarmTable.at(static_cast<std::size_t>(index));
}
bool WatchesGas(int index) {
  return AlarmOf(index).channel == kGasChannel;
}

}  // namespace

FixedAlarms::FixedAlarms(Form& form, SensorImage& image, SnsInfo& info,
                         const std::function<void(Control&)>& makeEditable)
    : pctAlarm061(form.Add(ControlKind::picture, "pctAlarm061")),
      lblAlarm061(form.AddArray(ControlKind::label, "lblAlarm061", kAlarms)),
      txbAlarm061Level(form.AddArray(ControlKind::text, "txbAlarm061Level", kAlarms)),
      lblAlarm061Unit(form.AddArray(ControlKind::label, "lblAlarm061Unit", kAlarms)),
      txbAlarm061Status(form.AddArray(ControlKind::text, "txbAlarm061Status", kAlarms)),
      lblOC3(form.Add(ControlKind::label, "lblOC3", "OC 1")),
      lblOC4(form.Add(ControlKind::label, "lblOC4", "OC 2")),
      cbxOC3(form.AddArray(ControlKind::check, "cbxOC3", kAlarms)),
      cbxOC4(form.AddArray(ControlKind::check, "cbxOC4", kAlarms)),
      lblAlarm061Logic1(form.AddArray(ControlKind::label, "lblAlarm061Logic1", kLinks)),
      lblAlarm061Logic2(form.AddArray(ControlKind::label, "lblAlarm061Logic2", kLinks)),
      image_(image),
      info_(info) {
  for (int i = 0; i < kAlarms; ++i) {
    lblAlarm061[i].SetText(AlarmOf(i).caption);
    makeEditable(txbAlarm061Level[i]);
    txbAlarm061Status[i].editable = [] { return false; };
  }
  for (const auto* labels : {&lblAlarm061Logic1, &lblAlarm061Logic2}) SetLogic(*labels);
}

/// The labels of a group are one setting.
void FixedAlarms::SetLogic(const ControlArray& labels) {
  for (auto* label : labels) {
    label->SetText("OR");
    label->onClick = [labels, label] {
      const std::string choice = label->Text() == "OR" ? "AND" : "OR";
      for (auto* each : labels) each->SetText(choice);
    };
  }
}

std::vector<Control*> FixedAlarms::Controls() const {
  std::vector<Control*> controls{&pctAlarm061, &lblOC3, &lblOC4};
  for (const auto* array : {&lblAlarm061, &txbAlarm061Level, &lblAlarm061Unit, &txbAlarm061Status, &cbxOC3,
                            &cbxOC4, &lblAlarm061Logic1, &lblAlarm061Logic2}) {
    controls.insert(controls.end(), array->begin(), array->end());
  }
  return controls;
}

void FixedAlarms::SetVisible(bool visible) {
  for (auto* control : Controls()) control->SetVisible(visible);
}

void FixedAlarms::ShowUnits(const std::string& gas, const std::string& oxygen) {
  for (int i = 0; i < kAlarms; ++i) lblAlarm061Unit[i].SetText(WatchesGas(i) ? gas : oxygen);
}

void FixedAlarms::Update() {
  for (int i = 0; i < kAlarms; ++i) {
    const auto& alarm = AlarmOf(i);
    txbAlarm061Level[i].SetText(info_.RawToText(image_.EepromWord(alarm.address), alarm.channel, false));
  }
}

void FixedAlarms::Read() {
  for (int i = 0; i < kAlarms; ++i) {
    const auto& alarm = AlarmOf(i);
    image_.SetEepromWord(alarm.address, info_.TextToRaw(txbAlarm061Level[i].Text(), alarm.channel, false));
  }
}

void FixedAlarms::ShowStates(const Control& gas, const Control& oxygen) {
  for (int i = 0; i < kAlarms; ++i) {
    const float level = ParseNumber(txbAlarm061Level[i].Text());
    const bool active = WatchesGas(i) ? ParseNumber(gas.Text()) > level : ParseNumber(oxygen.Text()) < level;
    ShowAlarm(txbAlarm061Status[i], active);
  }
}

void FixedAlarms::ForgetStates() {
  for (auto* state : txbAlarm061Status) ForgetAlarm(*state);
}

std::vector<Panel::Alarm> FixedAlarms::States() const {
  return AlarmsOf(lblAlarm061, txbAlarm061Status);
}

}  // namespace brelant::platform61
