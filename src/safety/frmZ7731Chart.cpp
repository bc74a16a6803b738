// SPDX-License-Identifier: GPL-3.0-or-later
#include "safety/frmZ7731Chart.h"

#include <array>
#include <charconv>
#include <utility>

#include "panels/alarm_state.h"
#include "safety/Functions.h"
#include "safety/panel_plan.h"
#include "safety/unit_poll.h"
#include "safety/unit_settings.h"
#include "shell/Common.h"

namespace brelant {

namespace {

using z7731::kAlarms;
using z7731::kChannels;

constexpr Colour kErrorBack = 65535;

constexpr int kUnitShift = 2;
constexpr int kUnitMask = 7;
constexpr int kHighByte = 256;
constexpr int kLowByteMask = 255;

UnitPanel::Layout LayoutOfPanel() {
  std::vector<UnitPanel::Channel> channels;
  for (const auto& place : kChannels) channels.push_back({place.field, place.name, place.caption});
  return {z7731::kLiveFields,
          z7731::kNames,
          channels,
          static_cast<int>(kAlarms.size()),
          "mTempUnitFahrenheit",
          {"mOptions", "m_LoadSettings", "m_SaveSettins"}};
}

std::string TextOf(double number) {
  return NumberText(static_cast<float>(number));
}

std::string TextOf(std::string_view name) {
  return std::string(name);
}

int UnitCode(std::int32_t caseWord) {
  return caseWord >> kUnitShift & kUnitMask;
}

}  // namespace

frmZ7731Chart::frmZ7731Chart(const PanelContext& context)
    : UnitPanel(context, "frmZ7731Chart", LayoutOfPanel()),
      alarmLabels(MakeAlarmLabels()),
      cbxKelrelay(form, "cbxKelrelay", unit_.Relay1, context.machine.userInterface),
      cbxKelrelay2(form, "cbxKelrelay2", unit_.Relay2, context.machine.userInterface),
      m_Temp1(form.AddMenu("mCalibrate", "m_Temp1", "TEMP 1")),
      m_Temp2(form.AddMenu("mCalibrate", "m_Temp2", "TEMP 2")),
      m_CO2(form.AddMenu("mCalibrate", "m_CO2", "CO2")),
      m_Zero(form.AddMenu("m_CO2", "m_Zero", "Zero")),
      m_Weight(form.AddMenu("mCalibrate", "m_Weight", "WEIGHT")),
      m_EmptyTank(form.AddMenu("m_Weight", "m_EmptyTank", "Empty tank")),
      m_FullTank(form.AddMenu("m_Weight", "m_FullTank", "Full tank")),
      m_ConfigureSensor(form.AddMenu("M0", "m_ConfigureSensor", "Sensor configuration...")),
      m_ConfigureABC(form.AddMenu("M0", "m_ConfigureABC", "ABC configuration...")),
      m_ConfigureLogger(form.AddMenu("M0", "m_ConfigureLogger", "Logger configuration...")),
      m_ExportLogger1(form.AddMenu("M0", "m_ExportLogger1", "Export logger 1...")),
      m_ExportLogger2(form.AddMenu("M0", "m_ExportLogger2", "Export logger 2...")),
      m_Options(form.AddMenu("mFile", "m_Options", "Options...")),
      m_About(form.AddMenu("", "m_About", "About")),
      SensorConfig(Desk()),
      ABC(Desk()),
      Logger(Desk()),
      Options(Desk()),
      About(Desk()) {
  SetMenus();
  SetCommands();
  SetRules();
}

ControlArray frmZ7731Chart::MakeAlarmLabels() {
  std::vector<Control*> labels;
  for (const auto& alarm : kAlarms) {
    labels.push_back(&form.AddIndexed(ControlKind::label, alarm.label, alarm.box, alarm.name));
  }
  return ControlArray(labels);
}

void frmZ7731Chart::SetMenus() {
  for (const int i : snsZ7731::AvailableChannels) mDisplayMode[i].SetVisible(true);
  for (int i = 0; i < kDisplayModes; ++i) {
    mDisplayMode[i].SetText(TextOf(snsZ7731::DisplayModes.at(static_cast<std::size_t>(i))));
  }
}

UnitDesk frmZ7731Chart::Desk() {
  return {context_.machine,
          context_.session,
          context_.screen,
          unit_,
          UpdatePeriod,
          [this]() -> BRECOM& { return Connection(); },
          [this](const std::string& name, float value) { return WriteToSensor(name, value, true); },
          [this] {
            ShowProgress("", true);
            context_.session.LastError.clear();
            context_.session.CancelPressed = false;
          }};
}

void frmZ7731Chart::SetCommands() {
  m_Temp1.onClick = Question(calibrateTempZero);
  m_Temp2.onClick = Question(calibrateTemp2Zero);
  m_Zero.onClick = Question(calibrateCO2Zero);
  m_EmptyTank.onClick = Question(calibrateWeightEmpty);
  m_FullTank.onClick = Question(calibrateWeightFull);
  m_ExportLogger1.onClick = Requesting(exportLogger1);
  m_ExportLogger2.onClick = Requesting(exportLogger2);
  const auto opening = [this](UnitDialog& dialog) {
    return [this, &dialog] { WhenFree([&dialog] { dialog.ShowModal(); }); };
  };
  m_ConfigureABC.onClick = opening(ABC);
  m_ConfigureLogger.onClick = opening(Logger);
  m_Options.onClick = opening(Options);
  m_About.onClick = opening(About);
  m_ConfigureSensor.onClick = [this] {
    WhenFree([this] {
      SensorConfig.Model = modelCode_;
      SensorConfig.ShowModal();
      // So that the panel shows what was changed.
      if (!context_.session.Over()) Request(readSensor);
    });
  };
}

void frmZ7731Chart::SetRules() {
  txbID.editable = [] { return false; };
  for (const int field : {z7731::temp1, z7731::temp2}) {
    lblCH_Type[field].onClick = [this] { ChooseTemperatureUnit(); };
  }
  for (int i = 0; i < lblDisplayMode.Count(); ++i) {
    lblDisplayMode[i].onClick = [this, i] { ChooseDisplay(i); };
  }
}

std::vector<Control*> frmZ7731Chart::SensorCommands() const {
  return {&mLoadsettings,   &mSavesettings,   &m_Temp1,           &m_Temp2,
          &m_Zero,          &m_EmptyTank,     &m_FullTank,        &m_ConfigureABC,
          &m_ExportLogger1, &m_ExportLogger2, &m_ConfigureLogger, &m_ConfigureSensor};
}

// Opening and closing

bool frmZ7731Chart::FormUpdateInit() {
  const bool isModbus = context_.comSet.optComProt[frmComSet::modBus].Value() == 1;
  TakeDialog();
  UpdatePeriod = StoredPeriod();
  unit_ = snsZ7731();
  unit_.ProtocolInUse = isModbus || Simulated() ? snsZ7731::modbus : snsZ7731::kiBus;
  if (Simulated()) {
    FillSimulated();
    return true;
  }
  return Open(isModbus);
}

int frmZ7731Chart::StoredPeriod() const {
  const auto text = context_.machine.settingsStore.Read(kApplication, "Z7731", "UpdatePeriod", "");
  int period = 0;
  std::from_chars(text.data(), text.data() + text.size(), period);
  return period < 1 ? kUsualPeriod : period;
}

void frmZ7731Chart::FillSimulated() {
  unit_.Relay1.Init(z7731::kSimulatedRelay1);
  unit_.Relay2.Init(z7731::kSimulatedRelay2);
  for (int i = 0; i < snsZ7731::kPositions; ++i) {
    unit_.SetDisplayMode(i, z7731::kSimulatedSequence.at(static_cast<std::size_t>(i)));
  }
  for (auto* channel : {&unit_.Temp1, &unit_.Temp2}) {
    channel->SetCase(z7731::kSimulatedTemperatureCase, unit_.ProtocolInUse);
  }
  for (auto* channel : {&unit_.CO2, &unit_.TWA}) {
    channel->SetCase(z7731::kSimulatedGasCase, unit_.ProtocolInUse);
  }
  unit_.Weight.SetCase(z7731::kSimulatedWeightCase, unit_.ProtocolInUse);
  for (const auto& value : z7731::kSimulatedValues) txbCHact[value.index].SetText(value.text);
  for (const auto& level : z7731::kSimulatedLevels) txbKelLevel[level.index].SetText(level.text);
  ShowUnits();
  ShowSequence();
  for (auto* boxes : {&cbxKelrelay, &cbxKelrelay2}) boxes->Show();
  cbxTWAonP0.SetValue(unit_.TWACentralUnit ? 1 : 0);
}

// The live view

bool frmZ7731Chart::FormUpdate() {
  if (Simulated()) return true;
  return Try([this](BRECOM& connection) {
    PollUnit(connection, unit_);
    ShowValues();
    ShowAlarms();
    ShowStateLine(connection);
  });
}

void frmZ7731Chart::ShowValues() {
  for (const auto& place : kChannels) {
    const auto& channel = unit_.*place.channel;
    if (!channel.Present) continue;
    txbCHact[place.field].SetText(TextOf(Functions::RawToDisplay(channel.Value, channel.Case())));
  }
}

void frmZ7731Chart::ShowAlarms() {
  for (std::size_t i = 0; i < kAlarms.size(); ++i) {
    const auto& alarm = kAlarms.at(i);
    const auto& channel = unit_.*alarm.channel;
    if (!channel.Present) continue;
    auto& field = txbStatus[static_cast<int>(i)];
    ShowAlarm(field, unit_.*alarm.flag);
    if (channel.Status == 0) continue;
    field.SetText("ERR");
    field.SetBack(kErrorBack);
  }
}

std::vector<Panel::LiveValue> frmZ7731Chart::LiveValues() const {
  std::vector<LiveValue> values;
  for (const auto& place : kChannels) {
    if (!(unit_.*place.channel).Present) continue;
    values.push_back({place.caption, txbCHact[place.field].Text(), lblCH_Type[place.field].Text()});
  }
  return values;
}

std::vector<Panel::Alarm> frmZ7731Chart::Alarms() const {
  std::vector<Alarm> alarms;
  for (std::size_t i = 0; i < kAlarms.size(); ++i) {
    if (!(unit_.*kAlarms.at(i).channel).Present) continue;
    alarms.push_back({kAlarms.at(i).name, txbStatus[static_cast<int>(i)].Text()});
  }
  return alarms;
}

// All settings, from the unit

bool frmZ7731Chart::GetAllStaticValues(bool fromSensor) {
  return ReadSettings(fromSensor, ChoicesOfForm());
}

bool frmZ7731Chart::ReadSettings(bool fromSensor, const Choices& sent) {
  if (Simulated()) return true;
  return Try([&](BRECOM& connection) {
    // A unit that was read by halves is not shown.
    auto unit = unit_;
    const auto identity = ReadUnit(connection, unit, fromSensor);
    for (int i = 0; i < snsZ7731::kPositions; ++i) static_cast<void>(unit.GetDisplayMode(i));
    // What the user has chosen meanwhile stays, to be sent with the next edit.
    const auto chosen = ChoicesOfForm();
    unit_ = unit;
    if (IsKnown()) KeepChanges(sent, chosen);
    modelCode_ = identity.modelCode;
    txbSN.SetText(identity.serialNumber);
    SettingsAreKnown();
    ShowSettings();
  });
}

frmZ7731Chart::Choices frmZ7731Chart::ChoicesOfForm() const {
  return {unit_.Relay1, unit_.Relay2, unit_.Sequence(), cbxTWAonP0.Value() == 1};
}

void frmZ7731Chart::KeepChanges(const Choices& before, const Choices& now) {
  if (now.relay1 != before.relay1) unit_.Relay1 = now.relay1;
  if (now.relay2 != before.relay2) unit_.Relay2 = now.relay2;
  if (now.sequence != before.sequence) unit_.SetSequence(now.sequence);
  if (now.isTWAonP0 != before.isTWAonP0) unit_.TWACentralUnit = now.isTWAonP0;
}

void frmZ7731Chart::ShowSettings() {
  ShowPresence();
  ShowUnits();
  for (int i = 0; i < txbKelLevel.Count(); ++i) Level(i).Show(LevelText(i));
  for (auto* boxes : {&cbxKelrelay, &cbxKelrelay2}) boxes->Show();
  ShowSequence();
  cbxTWAonP0.SetValue(unit_.TWACentralUnit ? 1 : 0);
  txbID.SetText(std::to_string(unit_.SensorID));
}

std::string frmZ7731Chart::LevelText(int index) const {
  const auto& alarm = kAlarms.at(static_cast<std::size_t>(index));
  const auto& channel = unit_.*alarm.channel;
  const bool isWeight = alarm.channel == &snsZ7731::Weight;
  const auto raw = channel.*alarm.level - (isWeight ? unit_.WeightHysteresis : 0);
  return TextOf(Functions::RawToDisplay(raw, channel.Case()));
}

/// A channel that is not there has no fields.
void frmZ7731Chart::ShowPresence() {
  for (const auto& place : kChannels) {
    const bool isThere = (unit_.*place.channel).Present;
    for (auto* control : {&lblCH_Name[place.name], &lblCH_Type[place.field], &txbCHact[place.field]}) {
      control->SetVisible(isThere);
    }
  }
  for (int i = 0; i < txbStatus.Count(); ++i) {
    const auto& alarm = kAlarms.at(static_cast<std::size_t>(i));
    const bool isThere = (unit_.*alarm.channel).Present;
    for (auto* control : {&alarmLabels[i], &txbStatus[i], &txbKelLevel[i], &lblFKelunit[i],
                          &cbxKelrelay.boxes[alarm.box], &cbxKelrelay2.boxes[alarm.box]}) {
      control->SetVisible(isThere);
    }
    if (isThere) continue;
    txbStatus[i].SetText("N/A");
    txbStatus[i].SetBack(kStyleColour);
    txbStatus[i].SetFore(kStyleColour);
  }
  m_Temp2.SetEnabled(unit_.Temp2.Present);
  m_Weight.SetEnabled(unit_.Weight.Present);
}

void frmZ7731Chart::ShowUnits() {
  const auto unitOf = [this](z7731::ChannelOf channel) {
    return Functions::UnitLetter((unit_.*channel).Case());
  };
  for (const auto& place : kChannels) lblCH_Type[place.field].SetText(unitOf(place.channel));
  for (int i = 0; i < lblFKelunit.Count(); ++i) {
    lblFKelunit[i].SetText(unitOf(kAlarms.at(static_cast<std::size_t>(i)).channel));
  }
}

void frmZ7731Chart::ShowSequence() {
  for (int i = 0; i < lblDisplayMode.Count(); ++i) lblDisplayMode[i].SetText(unit_.GetDisplayMode(i));
}

// All settings, to the unit

bool frmZ7731Chart::WriteToSensor(const std::string& name, float value, bool toSensor) {
  return HasConnection() && WriteVerified(Connection(), name, value, toSensor, [this] {
           const auto& session = context_.session;
           if (session.CancelPressed || session.Over() || !Connection().Connected()) return true;
           // From now on it may take long, so there is a box with a Cancel button.
           ShowProgress("Sending to sensor", false);
           return false;
         });
}

bool frmZ7731Chart::FormRead(bool toSensor) {
  if (Simulated()) return true;
  return RequireKnown() && SendFields(toSensor);
}

/// The raw value of a level as it stands in its field.
std::int32_t frmZ7731Chart::RawLevel(int index) {
  const auto& alarm = kAlarms.at(static_cast<std::size_t>(index));
  auto& level = Level(index);
  const auto raw = Functions::DisplayToRaw(ParseNumber(level.Text()), (unit_.*alarm.channel).Case());
  if (alarm.channel != &snsZ7731::Weight) return raw;
  // The user sees the level above the offset and cannot go below it.
  if (raw >= 0) return raw + unit_.WeightHysteresis;
  level.Correct("0");
  return unit_.WeightHysteresis;
}

bool frmZ7731Chart::SendFields(bool toSensor) {
  struct Write {
    std::string name;
    std::int32_t value;
  };
  const auto protocol = unit_.ProtocolInUse;
  // All of it is taken from the form first: the user may go on editing while it is sent.
  std::vector<Write> writes{
      {unit_.Temp1.HRCOMP_B(protocol), RawLevel(3)}, {unit_.Temp1.HRCOMP_A(protocol), RawLevel(4)},
      {unit_.CO2.HRCOMP_B(protocol), RawLevel(0)},   {unit_.CO2.HRCOMP_A(protocol), RawLevel(1)},
      {unit_.TWA.HRCOMP_B(protocol), RawLevel(2)},   {unit_.TWA.HRCOMP_A(protocol), RawLevel(2)}};
  const auto add = [&writes](const std::string& name, std::int32_t value) {
    writes.push_back({name, value});
  };
  if (unit_.Temp2.Present) {
    add(unit_.Temp2.HRCOMP_A(protocol), RawLevel(7));
    add(unit_.Temp2.HRCOMP_B(protocol), RawLevel(8));
  }
  if (unit_.Weight.Present) {
    add(unit_.Weight.HRCOMP_A(protocol), RawLevel(5));
    add(unit_.Weight.HRCOMP_B(protocol), RawLevel(6));
  }
  add(TextOf(snsZ7731::P0Algorithm),
      cbxTWAonP0.Value() == 1 ? snsZ7731::TWAonP0Value : snsZ7731::CO2onP0Value);
  add("eaCountPar_9", unit_.Relay1.Get());
  add("eaCountPar_10", unit_.Relay1.Get());
  add("eaCountPar_11", unit_.Relay2.Get());
  const auto sequence = DisplaySequenceNames(modelCode_);
  for (int i = 0; i < lblDisplayMode.Count(); ++i) {
    add(sequence.at(static_cast<std::size_t>(i)),
        Functions::IndexInList(snsZ7731::DisplayModes, lblDisplayMode[i].Text()));
  }
  TakeLevels();
  const int unitCode = UnitCode(unit_.Temp1.Case());
  const std::array formats{unit_.Temp1.CaseValueFormat(), unit_.Temp2.CaseValueFormat()};

  auto& session = context_.session;
  const auto isCancelled = [&session] { return session.CancelPressed || session.Over(); };
  bool done = true;
  for (const auto& [name, value] : writes) {
    if (!WriteToSensor(name, static_cast<float>(value), toSensor)) done = false;
    if (isCancelled()) return false;
  }
  for (const auto& format : formats) {
    if (!WriteToSensor(format, static_cast<float>(unitCode), toSensor)) return false;
  }
  if (done) return true;
  context_.machine.userInterface.MessageBox(
      "Writing one or more values to Sensor FAILED.\n\nPlease try to send the values one more time.",
      UserInterface::Buttons::ok, "Write to Meter Failed", UserInterface::Icon::none);
  return false;
}

void frmZ7731Chart::SendAndReadBack() {
  const auto sent = ChoicesOfForm();
  SendEdit();
  ReadSettings(true, sent);
}

// Choices

void frmZ7731Chart::ChooseTemperatureUnit() {
  const auto isFahrenheit = AskForFahrenheit();
  if (!isFahrenheit) return;
  const auto unitBits = *isFahrenheit ? Functions::kFahrenheitBits : Functions::kCelsiusBits;
  WhenFree([this, unitBits] { SetTemperatureUnit(unitBits); });
}

void frmZ7731Chart::SetTemperatureUnit(std::int32_t unitBits) {
  const auto former = Functions::UnitLetter(unit_.Temp1.Case());
  const auto withUnit = [unitBits](std::int32_t word) { return (word & Functions::kWithoutUnit) | unitBits; };
  const auto first = withUnit(unit_.Temp1.Case());
  const auto second = withUnit(unit_.Temp2.Case());
  const auto before = unit_;
  const bool isModbus = unit_.ProtocolInUse == snsZ7731::modbus;
  unit_.Temp1.SetCase(isModbus ? first * kHighByte : first, unit_.ProtocolInUse);
  unit_.Temp2.SetCase(isModbus ? second * kHighByte : second, unit_.ProtocolInUse);
  const bool isOther = former != Functions::UnitLetter(unit_.Temp1.Case());
  if (isOther && !Simulated() && !Try([&](BRECOM& connection) { SendCases(connection, first, second); })) {
    // The texts are still in the unit's own unit, and a level must not be taken for one in the other.
    unit_.Temp1 = before.Temp1;
    unit_.Temp2 = before.Temp2;
    if (context_.session.LastError != kCancelled) {
      context_.machine.userInterface.Tell(std::exchange(context_.session.LastError, {}));
    }
    return;
  }
  ConvertTemperatures(former);
}

void frmZ7731Chart::SendCases(BRECOM& connection, std::int32_t first, std::int32_t second) {
  const auto send = [&](const std::string& name, std::int32_t word) {
    auto node = connection.Nodes().FindNode(name, "");
    if (unit_.ProtocolInUse == snsZ7731::modbus) {
      // The register holds another channel's Case word too.
      word = word * kHighByte + (node.GetValue(true) & kLowByteMask);
    }
    node.SetValue(true, word);
  };
  send(unit_.Temp1.IRCase(unit_.ProtocolInUse), first);
  send(unit_.Temp2.IRCase(unit_.ProtocolInUse), second);
}

/// Re-expresses what stands in the temperature fields, and names the unit.
void frmZ7731Chart::ConvertTemperatures(const std::string& formerUnit) {
  const auto unit = Functions::UnitLetter(unit_.Temp1.Case());
  if (unit != formerUnit) {
    const auto converted = [this, &unit](const std::string& text) {
      if (text.empty()) return text;
      const double number = ParseNumber(text);
      return TextOf(Functions::RoundToDecimals(
          unit == "F" ? Functions::CelsiusToFahrenheit(number) : Functions::FahrenheitToCelsius(number),
          unit_.Temp1.Case()));
    };
    for (const int field : {z7731::temp1, z7731::temp2}) {
      txbCHact[field].SetText(converted(txbCHact[field].Text()));
    }
    for (const int level : {3, 4, 7, 8}) Level(level).Convert(converted);
  }
  ShowUnits();
  ShowSequence();
}

void frmZ7731Chart::ChooseDisplay(int position) {
  const auto channel = AskForDisplayMode();
  if (!channel) return;
  unit_.SetDisplayMode(position, *channel);
  lblDisplayMode[position].SetText(unit_.GetDisplayMode(position));
}

}  // namespace brelant
