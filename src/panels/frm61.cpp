// SPDX-License-Identifier: GPL-3.0-or-later
#include "panels/frm61.h"

#include <array>
#include <utility>

#include "panels/display_bytes.h"
#include "panels/platform61/status_text.h"
#include "panels/platform61/transfers.h"
#include "shell/Common.h"

namespace brelant {

namespace {

/// The platforms of the panel.
constexpr int kTransmitters = 61;
constexpr int kRows = 7;
bool IsKnown(int platform) {
  return platform == kTransmitters || platform == kRows;
}

constexpr int kStatusIndex = 5;
constexpr int kLiveWord = 20;
constexpr int kStatusByte = 67;
constexpr int kFirstChannel = 4;
constexpr float kGasChannel = 5;
constexpr float kOxygenChannel = 6;

constexpr int kIdOf61 = 32;
constexpr int kIdOf7 = 16;
constexpr int kDisplayOf7 = 385;
constexpr int kDisplayLimit = 9;
constexpr int kLayout = 1023;
constexpr float kLayoutStored = 2;

constexpr std::int32_t kSelection = 12;

/// What a typed value of platform 7 is multiplied by.
constexpr std::array<float, frm61::kShown> kFactorsOf7{100, 1000, 100};

float ChannelOf(int index) {
  return static_cast<float>(kFirstChannel + index);
}
int WordOf(int index) {
  return kLiveWord + 2 * index;
}

ImagePanel::Captions CaptionsOfPanel() {
  ImagePanel::Captions captions{"Off line", "Calibrating temperature ", "TEMP", "CO2 single point"};
  captions.names = {"mCalTemp", "mCalCO2SPzero", "mCalCO2SPBackground", "mCalCO2SPOther"};
  captions.furtherCalibrations = {{"mCalO2zero", "O2 zero"}, {"mCalO2span", "O2 span"}};
  return captions;
}

}  // namespace

frm61::frm61(const PanelContext& context)
    : ImagePanel(context, "frm61", CaptionsOfPanel()),
      txbSN(form.Add(ControlKind::text, "txbSN")),
      txbID(form.Add(ControlKind::text, "txbID")),
      lblDisp(form.AddArray(ControlKind::label, "lblDisp", kDisplays)),
      pctDisplay6(form.Add(ControlKind::picture, "pctDisplay6")),
      lblDisplayMode(form.Add(ControlKind::label, "lblDisplayMode")),
      pctChannel(form.AddArray(ControlKind::picture, "pctChannel", kLiveValues)),
      lblCH_Name(form.AddArray(ControlKind::label, "lblCH_Name", kLiveValues)),
      lblCH_Type(form.AddArray(ControlKind::label, "lblCH_Type", kLiveValues)),
      txbCHact(form.AddArray(ControlKind::text, "txbCHact", kLiveValues)),
      pctStatus(form.AddIndexed(ControlKind::picture, "pctChannel", kStatusIndex)),
      lblStatusName(form.AddIndexed(ControlKind::label, "lblCH_Name", kStatusIndex, "Status")),
      txbStatus(form.AddIndexed(ControlKind::text, "txbCHact", kStatusIndex)),
      alarms(form, context.image, context.info, [this](Control& field) { MakeEditable(field); }),
      rows(form, context.image, context.info,
           {[this](Control& field) { MakeEditable(field); }, [this](int row) { ChooseAlarmChannel(row); }}),
      mChannels(form.AddMenu("", "mChannels", "Channels")),
      mCHannel(form.AddArray(ControlKind::menu, "mCHannel", kChannels)),
      mDisplayModes(form.AddMenu("", "mDisplayModes", "Display modes")),
      mDisplayMode(form.AddArray(ControlKind::menu, "mDisplayMode", kDisplayModes)) {
  SetMenus();
  SetRules();
}

void frm61::SetMenus() {
  for (auto* menu : {&mChannels, &mDisplayModes}) menu->SetVisible(false);
  for (auto* entry : mCHannel) entry->parent = mChannels.Name();
  for (int i = 0; i < kDisplayModes; ++i) {
    mDisplayMode[i].parent = mDisplayModes.Name();
    mDisplayMode[i].SetText("Mode " + std::to_string(i));
  }
  furtherCalibrations_[0].onClick = Question(calibrateO2Zero);
  furtherCalibrations_[1].onClick = Question(calibrateO2Span);
}

void frm61::SetRules() {
  txbSN.editable = txbStatus.editable = [] { return false; };
  MakeIdEditable(txbID);
  for (auto* field : txbCHact) {
    field->editable = [this] { return Simulated(); };
    MakeEditable(*field, {}, [this] {
      if (!ImageIsWhole()) return;
      Restore();
      FormReadM();
      FormUpdateM();
    });
  }
  for (auto* label : lblDisp) label->onClick = [this, label] { PopUp(*label, mCHannel); };
  lblDisplayMode.onClick = [this] { PopUp(lblDisplayMode, mDisplayMode); };
}

// The faces

void frm61::TakeProduct() {
  const int platform = context_.info.GetPlatform();
  auto face = platform == kRows ? Face::alarmRows : Face::none;
  if (platform == kTransmitters) {
    const float variant = context_.info.GetProductVariant();
    face = variant == 0 ? Face::fixedAlarms : variant == 1 ? Face::noAlarms : Face::none;
  }
  const bool isOther = std::exchange(platform_, platform) != platform;
  if (std::exchange(face_, face) != face || isOther) ForgetLive();
}

/// What another product showed says nothing about this one.
void frm61::ForgetLive() {
  for (auto* field : txbCHact) field->SetText("");
  txbStatus.SetText("");
  alarms.ForgetStates();
  rows.ForgetStates();
}

bool frm61::FormUpdateInit() {
  TakeProduct();
  NameChannels();
  ShowFace();
  return context_.session.LastError.empty();
}

std::vector<frm61::Channel> frm61::ChannelsOfFace() {
  switch (face_) {
    case Face::fixedAlarms:
      return {{"TEMP", "C"}, {"CO2", "%"}, {"O2", "%"}};
    case Face::noAlarms:
      return {{"TEMP", "C"}, {"CO2", "ppm"}};
    case Face::alarmRows: {
      std::vector<Channel> channels;
      for (int i = 0; i < kShown; ++i) {
        channels.push_back(
            {context_.info.GetChannelName(ChannelOf(i), false), context_.info.GetChannelUnit(ChannelOf(i))});
      }
      return channels;
    }
    case Face::none:
      break;
  }
  return {};
}

void frm61::NameChannels() {
  for (int k = 0; k < kChannels; ++k) {
    mCHannel[k].SetText(context_.info.GetChannelName(static_cast<float>(k), false));
    mCHannel[k].SetVisible(false);
  }
  const auto channels = ChannelsOfFace();
  for (int i = 0; i < kLiveValues; ++i) {
    const bool shown = i < static_cast<int>(channels.size());
    for (const auto* controls : {&pctChannel, &lblCH_Name, &lblCH_Type, &txbCHact}) {
      (*controls)[i].SetVisible(shown);
    }
    if (!shown) continue;
    const auto& [name, unit] = channels.at(static_cast<std::size_t>(i));
    lblCH_Name[i].SetText(name);
    lblCH_Type[i].SetText(unit);
    mCHannel[kFirstChannel + i].SetText(name);
    mCHannel[kFirstChannel + i].SetVisible(true);
  }
}

void frm61::ShowFace() {
  const bool hasRows = platform_ == kRows;
  alarms.SetVisible(face_ == Face::fixedAlarms);
  alarms.ShowUnits(lblCH_Type[1].Text(), lblCH_Type[2].Text());
  rows.SetVisible(hasRows);
  for (auto* control : {&pctDisplay6, &pctStatus, &lblStatusName, &txbStatus}) control->SetVisible(hasRows);
  for (auto* entry : {&mLoadsettings, &mSavesettings}) entry->SetEnabled(!hasRows);
  for (auto* entry : {&mCalCO2Background, &mCalCO2Other}) entry->SetVisible(!hasRows);
  // Where the choice of a display is not stored it is shown only.
  for (auto* label : lblDisp) label->SetEnabled(face_ != Face::noAlarms);
  cbxSimulated.SetVisible(true);
}

// Filling the form

bool frm61::FormUpdate() {
  if (!IsKnown(platform_)) return false;
  txbSN.SetText(context_.info.GetSensorIdentity());
  txbID.SetText(NumberText(Eeprom(IdAddress())));
  UpdateDisplays();
  if (face_ == Face::fixedAlarms) alarms.Update();
  if (face_ == Face::alarmRows) {
    rows.Update(mCHannel);
    Eeprom(kLayout) = kLayoutStored;
    // Known without a read, as nobody asks for another value.
    context_.image.EepromValid.at(kLayout) = true;
  }
  return context_.session.LastError.empty();
}

int frm61::IdAddress() const {
  return platform_ == kTransmitters ? kIdOf61 : kIdOf7;
}

void frm61::UpdateDisplays() {
  if (platform_ == kTransmitters) return ShowDisplays(context_.image, mCHannel, lblDisp);
  for (int i = 0; i < kDisplays; ++i) {
    lblDisp[i].SetText(CaptionAt(mCHannel, Bits(Eeprom(kDisplayOf7 + i))));
  }
}

bool frm61::FormUpdateM() {
  if (face_ == Face::noAlarms) return UpdateFromSensor();
  if (face_ == Face::none) return true;
  if (!UpdateFromRam()) return false;
  if (face_ == Face::fixedAlarms) {
    alarms.ShowStates(txbCHact[1], txbCHact[2]);
  } else {
    ShowStatus();
    ShowRowStates();
  }
  return true;
}

/// The sensor is asked for each value, which must not happen while it is simulated: a typed value stays.
bool frm61::UpdateFromSensor() {
  if (Simulated()) return true;
  constexpr int kWithoutOxygen = 2;
  for (int i = 0; i < kWithoutOxygen; ++i) {
    const float raw = context_.info.GetChannelRaw(ChannelOf(i), false);
    if (!context_.session.LastError.empty()) return false;
    txbCHact[i].SetText(context_.info.RawToText(raw, ChannelOf(i), false));
  }
  return true;
}

/// False, and nothing shown, if it cannot be told how a channel is scaled.
bool frm61::UpdateFromRam() {
  std::array<std::string, kShown> texts;
  for (int i = 0; i < kShown; ++i) {
    texts.at(static_cast<std::size_t>(i)) =
        context_.info.RawToText(context_.image.RamWord(WordOf(i)), ChannelOf(i), false);
  }
  if (!context_.session.LastError.empty()) return false;
  for (int i = 0; i < kShown; ++i) txbCHact[i].SetText(texts.at(static_cast<std::size_t>(i)));
  return true;
}

void frm61::ShowStatus() {
  const auto faults = platform61::StatusText(context_.image.RamImage.at(kStatusByte));
  txbStatus.SetText(faults.empty() ? "OK" : faults);
  txbStatus.SetFore(faults.empty() ? colours::kLive : colours::kFault);
  txbStatus.SetTip(txbStatus.Text());
}

void frm61::ShowRowStates() {
  std::vector<platform61::AlarmRows::Value> values;
  for (int i = 0; i < kShown; ++i) values.push_back({mCHannel[kFirstChannel + i], txbCHact[i]});
  rows.ShowStates(values);
}

std::vector<Panel::LiveValue> frm61::LiveValues() const {
  std::vector<LiveValue> values;
  for (int i = 0; i < kLiveValues; ++i) {
    if (!pctChannel[i].Visible()) continue;
    values.push_back({lblCH_Name[i].Text(), txbCHact[i].Text(), lblCH_Type[i].Text()});
  }
  if (pctStatus.Visible()) values.push_back({lblStatusName.Text(), txbStatus.Text(), ""});
  return values;
}

std::vector<Panel::Alarm> frm61::Alarms() const {
  if (face_ == Face::fixedAlarms) return alarms.States();
  if (face_ == Face::alarmRows) return rows.States();
  return {};
}

// Taking the form

bool frm61::FormRead() {
  if (!IsKnown(platform_)) return false;
  Eeprom(IdAddress()) = ParseNumber(txbID.Text());
  ReadDisplayBytes();
  if (face_ == Face::fixedAlarms) alarms.Read();
  if (face_ == Face::alarmRows) {
    rows.Read();
    Eeprom(kLayout) = kLayoutStored;
  }
  return true;
}

void frm61::ReadDisplayBytes() {
  if (face_ == Face::fixedAlarms) return ReadDisplays(context_.image, mCHannel, lblDisp);
  if (face_ != Face::alarmRows) return;
  for (int i = 0; i < kDisplays; ++i) {
    const auto channel = FindCaption(mCHannel, kChannels, lblDisp[i].Text());
    if (channel && *channel < kDisplayLimit) Eeprom(kDisplayOf7 + i) = static_cast<float>(*channel);
  }
}

void frm61::FormReadM() {
  for (int i = 0; i < kShown; ++i) {
    const auto& text = txbCHact[i].Text();
    if (face_ == Face::fixedAlarms) {
      context_.image.SetRamWord(WordOf(i), context_.info.TextToRaw(text, ChannelOf(i), false));
    } else if (face_ == Face::alarmRows) {
      context_.image.SetRamWord(WordOf(i), ParseNumber(text) * kFactorsOf7.at(static_cast<std::size_t>(i)));
    }
  }
}

void frm61::ChooseAlarmChannel(int row) {
  auto& label = rows.lblAlarm7Channel[row];
  Choose(label, mCHannel, [&] {
    const auto channel = FindCaption(mCHannel, kChannels, label.Text());
    if (channel) rows.StoreChannel(row, *channel);
  });
}

// The sensor

double frm61::LastPollAfterMidnight(double now) const {
  return now - kPollPeriod;
}

bool frm61::RunAction(int command) {
  switch (command) {
    case calibrateO2Zero:
      return ActionCalO2Zero();
    case calibrateO2Span:
      return ActionCalO2Span();
    default:
      return ImagePanel::RunAction(command);
  }
}

bool frm61::ActionSensorReadM() {
  if (!IsKnown(platform_)) return false;
  const bool done = platform_ == kTransmitters ? platform61::ReadLiveOf61(context_.com)
                                               : platform61::ReadLiveOf7(context_.com);
  return done && FormUpdateM();
}

bool frm61::ActionSensorRead() {
  ShowProgress("Reading from sensor", false);
  if (!ReadAfresh([this] { return ReadAttached(); })) return false;
  // Another sensor may be attached, or the same one measure in another unit.
  if (!FormUpdateInit() || !FormUpdate()) return false;
  cbxSimulated.SetValue(0);
  return true;
}

bool frm61::ReadAttached() {
  switch (context_.info.GetPlatform()) {
    case kTransmitters:
      return ReadEeprom();
    case kRows:
      return platform61::ReadSettingsOf7(context_.com) && FetchChannels();
    default:
      return false;
  }
}

/// So that no level is shown, and taken back, as none, and no value either.
bool frm61::FetchChannels() {
  if (!rows.FetchChannels()) return false;
  for (int i = 0; i < kShown; ++i) {
    if (context_.info.GetChannelScale(ChannelOf(i)) == 0) return false;
  }
  return true;
}

bool frm61::ActionSensorWrite() {
  if (platform_ != kRows) return SendEeprom();
  if (!FormRead()) return false;
  ShowProgress("Sending to sensor", false);
  return platform61::WriteSettingsOf7(context_.com);
}

bool frm61::ActionSettingsSave() {
  const auto name = AskForFile(UserInterface::FileUse::save, "Saving settings");
  if (!name) return true;
  if (!FormRead()) return false;
  static constexpr std::array kBlocks{snsFil::BlockWrite{snsFil::eeprom, false},
                                      snsFil::BlockWrite{snsFil::selection, true}};
  return SaveSelected(*name, kSelection, kBlocks);
}

bool frm61::CalibrateSpan(const std::string& text) {
  if (platform_ == kTransmitters) return CalibrateSpanOf(kGasChannel, text);
  return platform_ == kRows &&
         context_.cal.CalibrateCO2SpanPlatform7(context_.info.TextToRaw(text, kGasChannel, false));
}

bool frm61::ActionCalO2Zero() {
  ShowProgress("Calibrating O2", false);
  return Calibrated(context_.cal.CalibrateO2Zero());
}

bool frm61::ActionCalO2Span() {
  const auto text = Ask("Enter correct O2 reading");
  if (!text) return true;
  ShowProgress("Calibrating O2 span", false);
  return Calibrated(context_.cal.CalibrateO2Span(context_.info.TextToRaw(*text, kOxygenChannel, false)));
}

// The offline model

void frm61::Simulate() {
  if (face_ == Face::fixedAlarms) alarms.ShowStates(txbCHact[1], txbCHact[2]);
}

}  // namespace brelant
