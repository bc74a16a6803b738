// SPDX-License-Identifier: GPL-3.0-or-later
#include "panels/frm5Chart.h"

#include <array>

#include "comm/platform_rule.h"
#include "panels/alarm_state.h"
#include "panels/flagged_word.h"
#include "shell/Common.h"

namespace brelant {

namespace {

constexpr int kState = 14;
constexpr int kLiveWord = 20;
constexpr int kDisplayMode = 31;
constexpr int kPart = 65;
constexpr int kFunctionChannel = 162;
constexpr int kRelays = 189;
constexpr int kTypeOverride = 205;
constexpr int kUnits = 207;
constexpr int kVariant = 226;
constexpr int kAlarms = 255;

constexpr int kTempAlarmEnabled = 128;
constexpr int kRelayBits = 31;
constexpr float kTWAChannel = 3;
constexpr float kTWAType = 15;
constexpr float kTWADrivesP0 = 3;
constexpr float kCO2DrivesP0 = 1;
constexpr float kTWAOverride = 243;
constexpr float kFahrenheit = 32;
constexpr float kCelsius = 16;
constexpr float kVariantStored = 3;

constexpr Colour kEnabledWhenSimulated = 16777215;
constexpr const char* kEnabled = "Enabled";
constexpr const char* kDisabled = "Disabled";

/// The channels of the three live values, and where their words stand.
constexpr std::array<float, frm5Chart::kLiveValues> kLiveChannels{0, 1, 3};

/// A level is one of the two words of its function block; the other one lies a fixed band away.
struct Level {
  const char* caption;
  int aAddress;
  bool isA;
  float channel;
  float bandToA;
  float bandToB;
};
constexpr std::array<Level, frm5Chart::kLevels> kLevelTable{{
    {"CO2 PRE ALARM:", 163, false, 1, -10, 0},
    {"CO2 MAIN ALARM:", 168, false, 1, -10, 0},
    {"CO2 TWA ALARM:", 173, false, 1, 0, 0},
    {"TEMP ALARM LOW:", 178, true, 0, 0, 100},
    {"TEMP ALARM HIGH:", 183, false, 0, -100, 0},
}};

const Level& LevelOf(int level) {
  return kLevelTable.at(static_cast<std::size_t>(level));
}
float LiveChannel(int index) {
  return kLiveChannels.at(static_cast<std::size_t>(index));
}
double Number(const Control& control) {
  return ParseNumber(control.Text());
}

}  // namespace

frm5Chart::frm5Chart(const PanelContext& context)
    : Panel5(context, "frm5Chart",
             {"Simulated", "Calibrating temperature", "TEMP", "CO2 sinle point", "options"}),
      txbVersion(form.Add(ControlKind::text, "txbVersion")),
      lblCH_Name(form.AddArray(ControlKind::label, "lblCH_Name", kLiveValues)),
      lblCH_Type(form.AddArray(ControlKind::label, "lblCH_Type", kLiveValues)),
      txbCHact(form.AddArray(ControlKind::text, "txbCHact", kLiveValues)),
      lblStatus(form.AddArray(ControlKind::label, "lblStatus", kLevels)),
      txbStatus(form.AddArray(ControlKind::text, "txbStatus", kLevels)),
      txbKelLevel(form.AddArray(ControlKind::text, "txbKelLevel", kLevels)),
      lblFKelunit(form.AddArray(ControlKind::label, "lblFKelunit", kLevels)),
      cbxKelrelay(form.AddArray(ControlKind::check, "cbxKelrelay", kLevels)),
      cbxTWAonP0(form.Add(ControlKind::check, "cbxTWAonP0", "TWA on P0")),
      lblKELActTempAenable(
          form.Add(ControlKind::label, "lblKELActTempAenable", "Temp alarm on central unit:")),
      txbKELActTempAenable(form.Add(ControlKind::text, "txbKELActTempAenable")) {
  SetRules();
}

void frm5Chart::SetRules() {
  const auto never = [] { return false; };
  txbVersion.editable = txbKELActTempAenable.editable = never;
  for (auto* field : txbStatus) field->editable = never;
  for (auto* field : txbCHact) {
    field->editable = [this] { return Simulated(); };
    MakeEditable(*field);
  }
  for (int i = 0; i < kLevels; ++i) {
    lblStatus[i].SetText(LevelOf(i).caption);
    MakeEditable(txbKelLevel[i]);
    cbxKelrelay[i].SetText("Relay");
    cbxKelrelay[i].onClick = [this] { Restore(); };
  }
  cbxTWAonP0.onClick = [this] { Restore(); };
  for (int i = 0; i < kLiveValues; ++i) {
    lblCH_Type[i].onClick = [this, i] {
      ChooseTempUnit(lblCH_Type[i], i == 0);
      FormUpdateM();
    };
  }
  txbKELActTempAenable.SetBack(colours::kFieldBack);
  txbKELActTempAenable.onFocus = [this] { ToggleTempAlarm(); };
}

// Filling the form

bool frm5Chart::FormUpdate() {
  // Before the type is overwritten, as a reload would bring its own.
  context_.definitions.RequireDefinition();
  context_.definitions.Channel(static_cast<int>(kTWAChannel)).ChannelType = kTWAType;
  cbxTWAonP0.SetValue(Ram(kFunctionChannel) == kTWADrivesP0 ? 1 : 0);
  if (!TWAOnP0()) Ram(kUnits) = Ram(kTypeOverride);
  SetDisplayModes();
  UpdateIdentity();
  txbVersion.SetText(NumberText(context_.info.GetProductVariant()));
  for (int i = 0; i < kLiveValues; ++i) {
    lblCH_Name[i].SetText(context_.info.GetChannelName(LiveChannel(i), false));
    const auto unit = context_.info.GetChannelUnit(LiveChannel(i));
    lblCH_Type[i].SetText(unit);
    lblCH_Type[i].SetEnabled(IsTemperature(unit));
  }
  for (int i = 0; i < kLevels; ++i) UpdateLevel(i);
  if (Simulated()) Simulate();
  return true;
}

void frm5Chart::SetDisplayModes() {
  mDisplayMode[1].SetText(TWAOnP0() ? "CO2 TWA" : "TEMP");
  mDisplayMode[3].SetText(TWAOnP0() ? "CO2 TWA + CO2" : "TEMP + CO2");
}

/// The first level is shown through another channel than the one through which it is stored.
float frm5Chart::ShownChannel(int level) const {
  return level == 0 && !TWAOnP0() ? kTWAChannel : LevelOf(level).channel;
}

void frm5Chart::UpdateLevel(int level) {
  const int address = LevelOf(level).aAddress + (LevelOf(level).isA ? 0 : 2);
  const float channel = ShownChannel(level);
  txbKelLevel[level].SetText(context_.info.RawToText(WordOf(Bytes(address)), channel, false));
  lblFKelunit[level].SetText(context_.info.GetChannelUnit(channel));
  cbxKelrelay[level].SetValue(HasBit(Ram(kRelays), 1 << level) ? 1 : 0);
}

bool frm5Chart::FormUpdateM() {
  for (int i = 0; i < kLiveValues; ++i) {
    const float channel = LiveChannel(i);
    const float word = context_.image.RamWord(kLiveWord + 2 * static_cast<int>(channel));
    txbCHact[i].SetText(context_.info.RawToText(word, channel, false));
  }
  txbKELActTempAenable.SetText(HasBit(Ram(kState), kTempAlarmEnabled) ? kEnabled : kDisabled);
  for (int i = 0; i < kLevels; ++i) ShowAlarm(txbStatus[i], HasBit(Ram(kAlarms), 1 << i));
  return true;
}

std::vector<Panel::LiveValue> frm5Chart::LiveValues() const {
  std::vector<LiveValue> values;
  for (int i = 0; i < kLiveValues; ++i) {
    values.push_back({lblCH_Name[i].Text(), txbCHact[i].Text(), lblCH_Type[i].Text()});
  }
  return values;
}

std::vector<Panel::Alarm> frm5Chart::Alarms() const {
  return AlarmsOf(lblStatus, txbStatus);
}

// Taking the form

bool frm5Chart::FormRead() {
  ReadIdentity();
  for (int i = 0; i < kLevels; ++i) ReadLevel(i);
  int relays = Bits(Ram(kRelays)) & ~kRelayBits;
  for (int i = 0; i < kLevels; ++i) relays |= cbxKelrelay[i].Value() << i;
  Ram(kRelays) = static_cast<float>(relays);
  ReadUnits();
  Ram(kVariant) = kVariantStored;
  return true;
}

void frm5Chart::ReadLevel(int level) {
  const auto& rule = LevelOf(level);
  const float raw = context_.info.TextToRaw(txbKelLevel[level].Text(), rule.channel, false);
  const auto store = [this](int address, float word) {
    StoreWord(Bytes(address), word, FlagOf(Bytes(address)));
  };
  store(rule.aAddress, raw + rule.bandToA);
  store(rule.aAddress + 2, raw + rule.bandToB);
}

void frm5Chart::ReadUnits() {
  const float unit = lblCH_Type[0].Text() == mTempUnitFarenheit.Text() ? kFahrenheit : kCelsius;
  Ram(kFunctionChannel) = TWAOnP0() ? kTWADrivesP0 : kCO2DrivesP0;
  Ram(kTypeOverride) = TWAOnP0() ? kTWAOverride : unit;
  Ram(kUnits) = unit;
}

// The sensor

bool frm5Chart::ActionSensorReadM() {
  const auto read = [this](int address, std::uint8_t count, bool keepPortOpen) {
    return context_.com.ReadSensorMemory(0, static_cast<float>(address), count, false, keepPortOpen);
  };
  if (read(kState, 1, true) && read(kLiveWord, 8, true) && read(kAlarms, 1, false)) return FormUpdateM();
  // The loop tells of a failed poll too, unless it was cancelled.
  if (context_.session.Over()) return false;
  TellNoSensor();
  cbxSimulated.SetValue(1);
  return false;
}

bool frm5Chart::ActionSensorWrite() {
  if (!FormRead()) return false;
  ShowProgress("Sending to sensor", false);
  for (const int address : {kDisplayMode, kTypeOverride, kUnits, kVariant, kFunctionChannel}) {
    if (!context_.com.WriteSensorMemory(0, static_cast<float>(address), 1, false, true, false, true, true,
                                        true)) {
      return false;
    }
  }
  return true;
}

bool frm5Chart::ActionTWAReset() {
  ShowProgress("TWA reset", true);
  return context_.com.SensorCommand(snscom::twaReset, false);
}

// The offline model

void frm5Chart::SimMode(bool on) {
  Panel5::SimMode(on);
  txbKELActTempAenable.SetFore(on ? kEnabledWhenSimulated : colours::kLive);
}

/// The alarm of the average is not simulated: it keeps what it shows.
void frm5Chart::Simulate() {
  // By the image alone: a simulated pass never asks the line.
  if (PlatformOfPart(static_cast<std::uint8_t>(AsByte(Ram(kPart)))) != 5) return;
  const auto& watched = txbCHact[TWAOnP0() ? 1 : 2];
  ShowAlarm(txbStatus[0], Number(txbKelLevel[0]) <= Number(watched));
  ShowAlarm(txbStatus[1], Number(txbKelLevel[1]) <= Number(txbCHact[1]));
  ShowAlarm(txbStatus[3], Number(txbKelLevel[3]) >= Number(txbCHact[0]));
  ShowAlarm(txbStatus[4], Number(txbKelLevel[4]) <= Number(txbCHact[0]));
}

void frm5Chart::ToggleTempAlarm() {
  if (!Simulated()) return;
  txbKELActTempAenable.SetText(txbKELActTempAenable.Text() == kEnabled ? kDisabled : kEnabled);
}

}  // namespace brelant
