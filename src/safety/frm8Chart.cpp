// SPDX-License-Identifier: GPL-3.0-or-later
#include "safety/frm8Chart.h"

#include <algorithm>
#include <limits>

#include "connection/connection_error.h"
#include "panels/alarm_state.h"
#include "safety/Functions.h"
#include "shell/Common.h"

namespace brelant {

namespace {

constexpr const char* kCelsiusText = "°C";
constexpr const char* kFahrenheitText = "°F";

constexpr const char* kUnitNode = "eaCaseChannelUnit_4";
constexpr std::int32_t kUnitCelsius = 1;
constexpr std::int32_t kUnitFahrenheit = 2;

constexpr const char* kIdNode = "eaSensorID_0";
constexpr const char* kOutputNode = "eaState0Alg_25";
constexpr std::uint16_t kCO2onP0 = 37301;
constexpr std::uint16_t kTWAonP0 = 37302;

constexpr const char* kRelay1Node = "eaCountPar_10";
constexpr const char* kRelay2Node = "eaCountPar_11";
constexpr std::int32_t kRelayReset = 0x99;
constexpr std::int32_t kNoAlarm = 9;
/// The alarm of each box as the relay words have it.
constexpr std::array<std::int32_t, frm8Chart::kAlarms> kRegulators{5, 7, 6, 4, 8};
constexpr int kNibble = 4;
constexpr int kNibbleMask = 15;

constexpr const char* kWithoutAlarms =
    "\n\nThe relays may be without alarms until everything has been sent again.";

constexpr const char* kEnabled = "Enabled";
constexpr const char* kDisabled = "Disabled";

/// The alarms, by index.
enum class Of { temperature, CO2, TWA };
struct AlarmRule {
  const char* caption;
  Of measure;
  int regulator;
};
constexpr std::array<AlarmRule, frm8Chart::kAlarms> kAlarmRules{{{"CO2 pre-alarm", Of::CO2, 5},
                                                                 {"CO2 main alarm", Of::CO2, 7},
                                                                 {"TWA alarm", Of::TWA, 6},
                                                                 {"TEMP 1 low", Of::temperature, 4},
                                                                 {"TEMP 1 high", Of::temperature, 8}}};

const AlarmRule& RuleOf(int alarm) {
  return kAlarmRules.at(static_cast<std::size_t>(alarm));
}

/// The index of an alarm's measure among those of every panel.
std::size_t MeasureOf(int alarm) {
  return static_cast<std::size_t>(RuleOf(alarm).measure);
}

bool IsRelay(const std::string& name) {
  return name == kRelay1Node || name == kRelay2Node;
}

std::string CaseNode(int channel) {
  return "eaCaseChannel_" + std::to_string(channel);
}

/// Each level is kept twice.
std::string LevelNode(int alarm, int side) {
  return "eaRegPar" + std::to_string(side) + "_" + std::to_string(RuleOf(alarm).regulator);
}

std::string DisplayNode(int position) {
  return "eaMenuItemMPar" + std::to_string(position + 1) + "_0";
}

std::int32_t Get(KICOM2& sens, const std::string& name) {
  return sens.Nodes().FindNode(name, "").GetValue(true);
}

std::array<int, frm8Chart::kAlarms> ValuesOf(const ControlArray& boxes) {
  std::array<int, frm8Chart::kAlarms> values{};
  std::transform(boxes.begin(), boxes.end(), values.begin(), [](const auto* box) { return box->Value(); });
  return values;
}

/// Ticks the alarms of a relay word. The low nibble is none of them.
void Tick(const ControlArray& boxes, std::int32_t word) {
  for (int i = 0; i < boxes.Count(); ++i) {
    bool isThere = false;
    for (int entry = 1; entry <= frm8Chart::kMostOfRelay; ++entry) {
      const auto regulator = word >> (kNibble * entry) & kNibbleMask;
      isThere = isThere || regulator == kRegulators.at(static_cast<std::size_t>(i));
    }
    boxes[i].SetValue(isThere ? 1 : 0);
  }
}

std::int32_t RelayWord(const ControlArray& boxes) {
  std::int32_t word = kNoAlarm;
  int entry = 1;
  for (int i = 0; i < boxes.Count(); ++i) {
    if (boxes[i].Value() == 0 || entry > frm8Chart::kMostOfRelay) continue;
    word |= kRegulators.at(static_cast<std::size_t>(i)) << (kNibble * entry);
    ++entry;
  }
  return word;
}

std::string NumberOf(double value) {
  return NumberText(static_cast<float>(value));
}

/// Rounded. Throws for what has no room in its place, as nothing is read back here.
template <typename Place>
std::int32_t Whole(double value, const std::string& text) {
  const double whole = Round(value);
  if (whole < std::numeric_limits<Place>::min() || whole > std::numeric_limits<Place>::max()) {
    throw ConnectionError("The value " + text + " does not fit into its place.");
  }
  return static_cast<std::int32_t>(whole);
}

/// Two decimals are the grain of the raw word: a level that is shown and sent back stays what it was.
double Rounded(double degrees) {
  return Round(degrees * 100) / 100;
}
double ToFahrenheit(double celsius) {
  return Rounded(celsius * 1.8 + 32);
}
double ToCelsius(double fahrenheit) {
  return (fahrenheit - 32) / 1.8;
}

}  // namespace

frm8Chart::frm8Chart(const PanelContext& context)
    : frm8Chart(context, "frm8Chart", std::array{kTemperature, kCO2, kTWA}) {}

frm8Chart::frm8Chart(const PanelContext& context, const std::string& name, std::span<const Measure> measures)
    : UnitPanel(context, name, LayoutOf(measures)),
      txbVersion(form.Add(ControlKind::text, "txbVersion")),
      lblStatus(form.AddArray(ControlKind::label, "lblStatus", kAlarms)),
      cbxKelrelay(form.AddArray(ControlKind::check, "cbxKelrelay", kAlarms)),
      cbxKelrelay2(form.AddArray(ControlKind::check, "cbxKelrelay2", kAlarms)),
      Command1(form.Add(ControlKind::button, "Command1", "Exit")),
      mTimeUnits(form.AddMenu("", "mTimeUnits", "Time unit")),
      mTimeUnitMin(form.AddMenu("mTimeUnits", "mTimeUnitMin", "Min")),
      mTimeUnitSec(form.AddMenu("mTimeUnits", "mTimeUnitSec", "Sec")),
      CalTemp(form.AddMenu("mCalibrate", "CalTemp", "TEMP 1")),
      mCalCO2(form.AddMenu("mCalibrate", "mCalCO2", "CO2 single point")),
      mCalCO2Zero(form.AddMenu("mCalCO2", "mCalCO2Zero", "Zero")),
      mCalCO2Background(form.AddMenu("mCalCO2", "mCalCO2Background", "Fresh air")),
      mCalCO2Other(form.AddMenu("mCalCO2", "mCalCO2Other", "Other")),
      mCalCO2span(form.AddMenu("mCalibrate", "mCalCO2span", "CO2 span")),
      mTWAreset(form.AddMenu("M0", "mTWAreset", "TWA reset")),
      measures_(measures.begin(), measures.end()) {
  SetMenus();
  SetRules();
}

UnitPanel::Layout frm8Chart::LayoutOf(std::span<const Measure> measures) {
  std::vector<Channel> channels;
  for (const auto& measure : measures) channels.push_back({measure.field, measure.name, measure.caption});
  const auto& last = measures.back();
  return {last.field + 1, last.name + 1, channels, kAlarms, "mTempUnitFarenheit"};
}

void frm8Chart::SetMenus() {
  mTimeUnits.SetVisible(false);
  for (const auto& measure : {kTemperature, kCO2, kTWA}) {
    mDisplayMode[measure.channel].SetText(measure.caption);
    mDisplayMode[measure.channel].SetVisible(true);
  }
  CalTemp.onClick = Question(calibrateTempZero);
  mCalCO2Zero.onClick = Requesting(calibrateCO2Zero);
  mCalCO2Background.onClick = Requesting(calibrateCO2Background);
  mCalCO2Other.onClick = Requesting(calibrateCO2Other);
  mCalCO2span.onClick = Question(calibrateCO2Span);
  mTWAreset.onClick = Requesting(resetTWA);
  Command1.onClick = Requesting(exitPanel);
}

void frm8Chart::SetRules() {
  txbVersion.editable = [] { return false; };
  for (int i = 0; i < kAlarms; ++i) {
    lblStatus[i].SetText(RuleOf(i).caption);
    for (const auto* boxes : {&cbxKelrelay, &cbxKelrelay2}) {
      (*boxes)[i].onClick = [this, boxes, i] { ClickRelay(*boxes, i); };
    }
  }
  MakeIdEditable(txbID, [this] {
    idField_.EditEnds();
    // It is not sent by itself, so it is a choice like the others from here on.
    idField_.Taken();
  });
  Guard(txbID, idField_);
  lblCH_Type[kTemperature.field].onClick = [this] { ChooseTemperatureUnit(); };
  for (int i = 0; i < lblDisplayMode.Count(); ++i) {
    lblDisplayMode[i].onClick = [this, i] { ChooseDisplay(i); };
  }
  txbKELActTempAenable.onFocus = [this] { ToggleTempAlarm(); };
  form.onClose = [this, close = form.onClose] {
    if (!relaysAreReset_) return close();
    WhenFree(close);
  };
}

std::vector<Control*> frm8Chart::SensorCommands() const {
  return {&mLoadsettings,     &mSavesettings, &CalTemp,     &mCalCO2Zero,
          &mCalCO2Background, &mCalCO2Other,  &mCalCO2span, &mTWAreset};
}

bool frm8Chart::RunAction(int command) {
  switch (command) {
    case updateForm:
      return ActionFormUpdate();
    case calibrateTempZero:
      return ActionCalTempZero();
    case calibrateCO2Zero:
      return ActionCalCO2Zero(0);
    case calibrateCO2Background:
      return ActionCalCO2Zero(1);
    case calibrateCO2Other:
      return ActionCalCO2Zero(2);
    case calibrateCO2Span:
      return ActionCalCO2span();
    case resetTWA:
      return ActionTWAReset();
    default:
      return UnitPanel::RunAction(command);
  }
}

bool frm8Chart::FormUpdateInit() {
  TakeDialog();
  if (Simulated()) {
    ShowUnits({kCelsiusText, "%", "ppm"});
    return true;
  }
  return Open(false) &&
         Try([this](KICOM2& sens) { txbVersion.SetText(std::to_string(Get(sens, "eaUserInfo_29"))); });
}

// Numbers

bool frm8Chart::IsFahrenheit() const {
  return lblCH_Type[kTemperature.field].Text() == kFahrenheitText;
}

std::string frm8Chart::TextOf(std::int32_t raw, Scale scale) const {
  const double word = SignedWord(static_cast<std::uint16_t>(raw));
  switch (scale) {
    case Scale::temperature:
      return NumberOf(IsFahrenheit() ? ToFahrenheit(word / 100) : word / 100);
    case Scale::thousandths:
      return NumberOf(word / 1000);
    default:
      return NumberOf(word);
  }
}

std::int32_t frm8Chart::RawOf(const std::string& text, Scale scale) const {
  double raw = ParseNumber(text);
  if (scale == Scale::temperature) raw = (IsFahrenheit() ? ToCelsius(raw) : raw) * 100;
  if (scale == Scale::thousandths) raw *= 1000;
  // A level that has lost its sign would be another one.
  return Whole<std::int16_t>(raw, text);
}

/// What the library knows of a channel.
std::string frm8Chart::UnitOf(KICOM2& sens, const Measure& measure) const {
  const auto unit = Functions::UnitLetter(Get(sens, CaseNode(measure.channel)));
  if (measure.scale != Scale::temperature) return unit;
  return unit == "F" ? kFahrenheitText : unit == "C" ? kCelsiusText : unit;
}

// The live view

bool frm8Chart::FormUpdateM() {
  if (Simulated()) return true;
  return Try([this](KICOM2& sens) {
    std::vector<std::string> names;
    for (const auto& measure : measures_) names.push_back("raChan_" + std::to_string(measure.channel));
    sens.Nodes().Announce(names);
    for (std::size_t i = 0; i < names.size(); ++i) {
      const auto& measure = measures_.at(i);
      txbCHact[measure.field].SetText(TextOf(Get(sens, names.at(i)), measure.scale));
    }
    for (int i = 0; i < kAlarms; ++i) {
      ShowAlarm(txbStatus[i], sens.Memory().ReadBytes(kStateAddress, 1, SensorMemory::ram, 1 << i) == 1);
    }
    ShowStateLine(sens);
  });
}

std::vector<Panel::LiveValue> frm8Chart::LiveValues() const {
  std::vector<LiveValue> values;
  for (const auto& measure : measures_) {
    values.push_back({measure.caption, txbCHact[measure.field].Text(), lblCH_Type[measure.field].Text()});
  }
  return values;
}

std::vector<Panel::Alarm> frm8Chart::Alarms() const {
  return AlarmsOf(lblStatus, txbStatus);
}

// All settings, from the unit

bool frm8Chart::FormUpdate() {
  return ReadSettings(ChoicesOfForm());
}

bool frm8Chart::ReadSettings(const Choices& sent) {
  if (Simulated()) return true;
  return Try([&](KICOM2& sens) {
    // A unit that was read by halves is not shown.
    const auto read = AskUnit(sens);
    Show(read, sent);
    SettingsAreKnown();
  });
}

std::vector<std::string> frm8Chart::NamesOfSettings() const {
  std::vector<std::string> names{kIdNode, kOutputNode, kRelay1Node, kRelay2Node};
  for (int i = 0; i < kPositions; ++i) names.push_back(DisplayNode(i));
  for (const auto& measure : measures_) names.push_back(CaseNode(measure.channel));
  for (int i = 0; i < kAlarms; ++i) names.push_back(LevelNode(i, 0));
  return names;
}

frm8Chart::Settings frm8Chart::AskUnit(KICOM2& sens) const {
  Settings read{};
  sens.Nodes().Announce(NamesOfSettings());
  for (std::size_t i = 0; i < read.sequence.size(); ++i) {
    read.sequence.at(i) = Get(sens, DisplayNode(static_cast<int>(i)));
  }
  read.serialNumber = sens.SerialNumberText();
  read.id = Get(sens, kIdNode);
  for (const auto& measure : measures_) read.units.push_back(UnitOf(sens, measure));
  for (std::size_t i = 0; i < read.levels.size(); ++i) {
    read.levels.at(i) = Get(sens, LevelNode(static_cast<int>(i), 0));
  }
  read.output = Get(sens, kOutputNode);
  read.relay1 = Get(sens, kRelay1Node);
  read.relay2 = Get(sens, kRelay2Node);
  return read;
}

/// What the user has chosen since the sending stays, to be sent with the next one.
void frm8Chart::Show(const Settings& read, const Choices& sent) {
  const auto now = ChoicesOfForm();
  const auto isChanged = [&](const auto& before, const auto& after) { return IsKnown() && before != after; };
  for (int i = 0; i < kPositions; ++i) {
    const auto at = static_cast<std::size_t>(i);
    if (isChanged(sent.sequence.at(at), now.sequence.at(at))) continue;
    lblDisplayMode[i].SetText(CaptionAt(mDisplayMode, read.sequence.at(at)));
  }
  sequence_ = read.sequence;
  txbSN.SetText(read.serialNumber);
  if (!isChanged(sent.id, now.id)) idField_.Show(std::to_string(read.id));
  ShowUnits(read.units);
  for (int i = 0; i < kAlarms; ++i) {
    const auto scale = measures_.at(MeasureOf(i)).scale;
    Level(i).Show(TextOf(read.levels.at(static_cast<std::size_t>(i)), scale));
  }
  if (!isChanged(sent.isTWAonP0, now.isTWAonP0)) {
    cbxTWAonP0.SetValue(static_cast<std::uint16_t>(read.output) == kCO2onP0 ? 0 : 1);
  }
  // What a broken-off sending has left in a relay is nobody's choice, and the ticks are still to be sent.
  const auto isLeft = [this](std::int32_t word) { return relaysAreReset_ && word == kRelayReset; };
  if (!isLeft(read.relay1) && !isChanged(sent.relay1, now.relay1)) Tick(cbxKelrelay, read.relay1);
  if (!isLeft(read.relay2) && !isChanged(sent.relay2, now.relay2)) Tick(cbxKelrelay2, read.relay2);
  relaysAreReset_ = isLeft(read.relay1) || isLeft(read.relay2);
}

void frm8Chart::ShowUnits(const std::vector<std::string>& units) {
  for (std::size_t i = 0; i < units.size(); ++i) lblCH_Type[measures_.at(i).field].SetText(units.at(i));
  for (int i = 0; i < kAlarms; ++i) lblFKelunit[i].SetText(units.at(MeasureOf(i)));
}

frm8Chart::Choices frm8Chart::ChoicesOfForm() const {
  Choices choices{{}, ValuesOf(cbxKelrelay), ValuesOf(cbxKelrelay2), cbxTWAonP0.Value(), idField_.Text()};
  for (int i = 0; i < kPositions; ++i) {
    choices.sequence.at(static_cast<std::size_t>(i)) = lblDisplayMode[i].Text();
  }
  return choices;
}

// All settings, to the unit

bool frm8Chart::FormRead(bool toSensor) {
  if (Simulated()) return true;
  if (!RequireKnown()) return false;
  TakeLevels();
  const bool isSent = Try([&](KICOM2& sens) {
    // All of it is taken from the form first: the user may go on editing while it is sent.
    const auto chosen = ChosenSequence();
    const auto writes = WritesOfForm();
    // It counts again when it has been sent or read.
    sequence_ = {};
    for (const auto& write : writes) Send(sens, write, toSensor);
    sequence_ = chosen;
    relaysAreReset_ = false;
  });
  auto& session = context_.session;
  if (relaysAreReset_ && !session.Over()) session.LastError += kWithoutAlarms;
  return isSent;
}

/// Between its reset and its word a relay has no alarms. A Cancel comes too late there.
void frm8Chart::Send(KICOM2& sens, const Write& write, bool toSensor) {
  auto& session = context_.session;
  relaysAreReset_ = relaysAreReset_ || (write.value == kRelayReset && IsRelay(write.name));
  for (;;) {
    try {
      return sens.Nodes().FindNode(write.name, "").SetValue(toSensor, write.value);
    } catch (const ConnectionError&) {
      if (!relaysAreReset_ || !session.CancelPressed || session.Over()) throw;
    }
    session.CancelPressed = false;
    session.LastError.clear();
  }
}

frm8Chart::Channels frm8Chart::ChosenSequence() const {
  auto sequence = sequence_;
  for (int i = 0; i < kPositions; ++i) {
    const auto channel = FindCaption(mDisplayMode, mDisplayMode.Count(), lblDisplayMode[i].Text());
    if (channel) sequence.at(static_cast<std::size_t>(i)) = *channel;
  }
  return sequence;
}

std::vector<frm8Chart::Write> frm8Chart::WritesOfForm() {
  std::vector<Write> writes{{kUnitNode, IsFahrenheit() ? kUnitFahrenheit : kUnitCelsius}};
  const auto add = [&writes](const std::string& name, std::int32_t value) {
    writes.push_back({name, value});
  };
  for (int i = 0; i < kPositions; ++i) {
    const auto& chosen = lblDisplayMode[i].Text();
    if (chosen == CaptionAt(mDisplayMode, sequence_.at(static_cast<std::size_t>(i)))) continue;
    if (const auto channel = FindCaption(mDisplayMode, mDisplayMode.Count(), chosen)) {
      add(DisplayNode(i), *channel);
    }
  }
  add(kIdNode, Whole<std::uint8_t>(ParseNumber(idField_.Text()), idField_.Text()));
  for (int i = 0; i < kAlarms; ++i) {
    const auto raw = RawOf(Level(i).Text(), measures_.at(MeasureOf(i)).scale);
    for (const int side : {0, 1}) add(LevelNode(i, side), raw);
  }
  add(kRelay1Node, kRelayReset);
  add(kRelay2Node, kRelayReset);
  add(kOutputNode, cbxTWAonP0.Value() == 0 ? kCO2onP0 : kTWAonP0);
  add(kRelay1Node, RelayWord(cbxKelrelay));
  add(kRelay2Node, RelayWord(cbxKelrelay2));
  return writes;
}

void frm8Chart::SendAndReadBack() {
  const auto sent = ChoicesOfForm();
  SendEdit();
  ReadSettings(sent);
}

/// What is sent, in the order in which it is.
void frm8Chart::MarkForSave() {
  auto nodes = Connection().Nodes();
  nodes.FindNode(kUnitNode, "").MarkForSave(kWholeByte);
  for (int i = 0; i < kPositions; ++i) nodes.FindNode(DisplayNode(i), "").MarkForSave(kWholeByte);
  nodes.FindNode(kIdNode, "").MarkForSave(kWholeByte);
  for (int i = 0; i < kAlarms; ++i) {
    for (const int side : {0, 1}) nodes.FindNode(LevelNode(i, side), "").MarkForSave(kWholeWord);
  }
  for (const auto* name : {kOutputNode, kRelay1Node, kRelay2Node}) {
    nodes.FindNode(name, "").MarkForSave(kWholeWord);
  }
}

// Choices

void frm8Chart::ClickRelay(const ControlArray& boxes, int index) {
  const auto values = ValuesOf(boxes);
  if (std::count(values.begin(), values.end(), 1) <= kMostOfRelay) return;
  boxes[index].SetValue(0);
  context_.machine.userInterface.Tell("Only 3 channels can be chosen at the same time for each relay");
}

void frm8Chart::ToggleTempAlarm() {
  if (!Simulated()) return;
  txbKELActTempAenable.SetText(txbKELActTempAenable.Text() == kEnabled ? kDisabled : kEnabled);
}

void frm8Chart::ChooseDisplay(int position) {
  if (const auto channel = AskForDisplayMode()) {
    lblDisplayMode[position].SetText(mDisplayMode[*channel].Text());
  }
}

void frm8Chart::ChooseTemperatureUnit() {
  const auto toFahrenheit = AskForFahrenheit();
  if (!toFahrenheit) return;
  WhenFree([this, toFahrenheit] { SetTemperatureUnit(*toFahrenheit); });
}

/// The texts change with the unit, as a level must never stand in the form in another unit than it names.
void frm8Chart::SetTemperatureUnit(bool toFahrenheit) {
  const bool isSent = Simulated() || Try([&](KICOM2& sens) {
                        const auto unit = toFahrenheit ? kUnitFahrenheit : kUnitCelsius;
                        sens.Nodes().FindNode(kUnitNode, "").SetValue(true, unit);
                      });
  auto& session = context_.session;
  if (!isSent) {
    if (!session.Over()) TellLastError();
    return;
  }
  if (toFahrenheit != IsFahrenheit()) {
    const auto converted = [toFahrenheit](const std::string& text) {
      if (text.empty()) return text;
      const double degrees = ParseNumber(text);
      return NumberOf(toFahrenheit ? ToFahrenheit(degrees) : Rounded(ToCelsius(degrees)));
    };
    auto& value = txbCHact[kTemperature.field];
    value.SetText(converted(value.Text()));
    for (int i = 0; i < kAlarms; ++i) {
      if (RuleOf(i).measure == Of::temperature) Level(i).Convert(converted);
    }
  }
  const auto* text = toFahrenheit ? kFahrenheitText : kCelsiusText;
  lblCH_Type[kTemperature.field].SetText(text);
  for (int i = 0; i < kAlarms; ++i) {
    if (RuleOf(i).measure == Of::temperature) lblFKelunit[i].SetText(text);
  }
  if (!Simulated() && session.PanelCommand == 0) Request(updateForm);
}

// Calibrations

bool frm8Chart::ActionCalTempZero() {
  const auto answer = Ask("Please enter correct temperature");
  return answer && Calibrate("Calibrating temperature", "cpSpaceTempOffsetAdjust",
                             "cvSpaceTempOffsetAdjustCorrectTemp", *answer);
}

bool frm8Chart::ActionCalCO2Zero(int mode) {
  constexpr const char* kProgress = "Calibrating CO2 zero point";
  if (mode == 0) return Calibrate(kProgress, "cpCO2ZeroCal");
  if (mode == 1) return Calibrate(kProgress, "cpCO2BackGround");
  const auto answer = Ask("Please enter CO2 concentration");
  // The pressure is not asked for, so the unit takes its own.
  return answer && Calibrate(kProgress, "cpCO2OffsetCal", "cvCO2OffsetCalGas", *answer);
}

bool frm8Chart::ActionCalCO2span() {
  const auto answer = Ask("Please enter span gas concentration");
  return answer && Calibrate("Calibrating CO2 span", "cpCO2SpanCal", "cvCO2SpanCalGas", *answer);
}

bool frm8Chart::ActionTWAReset() {
  ShowProgress("TWA reset", true);
  // The port belongs to the connection: nothing may be opened for a command that has no frame.
  return Try([this](KICOM2& sens) { TakePartNumber(sens); }) && context_.com.GetProtocolGeneration() != 0 &&
         context_.com.SensorCommand(snscom::twaReset, true);
}

}  // namespace brelant
