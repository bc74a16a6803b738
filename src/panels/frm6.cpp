// SPDX-License-Identifier: GPL-3.0-or-later
#include "panels/frm6.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <exception>
#include <utility>

#include "panels/display_bytes.h"
#include "panels/flagged_word.h"
#include "panels/output_model.h"
#include "shell/Common.h"

namespace brelant {

using std::chrono::milliseconds;

namespace {

constexpr int kId = 32;
constexpr int kInputLevel = 96;
constexpr int kFunctionBase = 106;
constexpr int kTriggerLevel = 136;
constexpr int kTriggerTime = 137;
constexpr int kOutputBase = 138;

constexpr int kFlag = 128;
constexpr int kSevenBits = 127;
constexpr float kFirstInput = 2;
constexpr int kUnsignedFunctions = 3;
constexpr std::array kOutputChannels{0, 1, 9, 10};
constexpr float kGasChannel = 11;
constexpr std::uint8_t kExchangedPart = 223;
constexpr float kThreeOutputs = 2;
constexpr int kFourthOutput = 3;

constexpr std::int32_t kSelection = 13;
constexpr std::int32_t kSelectionOfThreeOutputs = 15;

}  // namespace

frm6::frm6(const PanelContext& context)
    : ImagePanel(context, "frm6", {"Off line", "Calibrating temperature ", "Temp", "CO2 single point"}),
      txbSN(form.Add(ControlKind::text, "txbSN")),
      txbID(form.Add(ControlKind::text, "txbID")),
      lblDisp(form.AddArray(ControlKind::label, "lblDisp", kDisplays)),
      pctChannel(form.AddArray(ControlKind::picture, "pctChannel", kLiveValues)),
      lblCH_Name(form.AddArray(ControlKind::label, "lblCH_Name", kLiveValues)),
      lblCH_Type(form.AddArray(ControlKind::label, "lblCH_Type", kLiveValues)),
      txbCHact(form.AddArray(ControlKind::text, "txbCHact", kLiveValues)),
      pctFunction(form.AddArray(ControlKind::picture, "pctFunction", kFunctions)),
      pctOut(form.AddArray(ControlKind::picture, "pctOut", platform6::OutputRows::kOutputs)),
      pctD(form.Add(ControlKind::picture, "pctD")),
      pctDT(form.Add(ControlKind::picture, "pctDT")),
      rows(form, {kFunctions, platform6::OutputRows::kOutputs, FunctionBlocks::kTypes},
           {[this](int function) { return ClassOf(function); },
            [this](Control& field) { MakeEditable(field); }, [this] { Restore(); }}),
      outputs(form,
              {[this](Control& field, std::function<void()> check) { MakeEditable(field, std::move(check)); },
               [this] { Restore(); }}),
      trigger(form, platform6::OutputRows::kOutputs, context.machine.clock,
              {[this](Control& field) { MakeEditable(field); }, [this] { Restore(); },
               [this](Control& label, const ControlArray& menu) { ChooseAndStore(label, menu); }}),
      txbDigLevel(form.Add(ControlKind::text, "txbDigLevel")),
      pctDigPSign(form.Add(ControlKind::picture, "pctDigPSign")),
      pctDigNSign(form.Add(ControlKind::picture, "pctDigNSign")),
      cbxDigActive(form.Add(ControlKind::check, "cbxDigActive", "Active")),
      vav(form, context.image, context.info, VavRules()),
      jumper(form,
             [this](Control& field) {
               MakeEditable(field, {}, [this] {
                 if (!ImageIsWhole()) return;
                 Read6v3();
                 FormUpdate();
               });
             }),
      sequential(form, context.image, context.info, [this](Control& field) { MakeEditable(field); }),
      mChannels(form.AddMenu("", "mChannels", "Channels")),
      mCHannel(form.AddArray(ControlKind::menu, "mCHannel", kChannels)),
      mFChannels(form.AddMenu("", "mFChannels", "Function inputs")),
      mFchannel(form.AddArray(ControlKind::menu, "mFchannel", kInputs)),
      inputLevel_{txbDigLevel, pctDigPSign, pctDigNSign} {
  SetMenus();
  SetRules();
}

platform6::VavFace::Rules frm6::VavRules() {
  return {[this](Control& field, std::function<void()> check) { MakeEditable(field, std::move(check)); },
          [this] { Restore(); },
          [this](bool isMax) { context_.session.PanelCommand = isMax ? vavMax : vavMin; },
          [this] { ShowProgress("Please wait", true); }, [this] { return ImageIsWhole(); }};
}

void frm6::SetMenus() {
  for (auto* menu : {&mChannels, &mFChannels}) menu->SetVisible(false);
  for (auto* entry : mCHannel) entry->parent = mChannels.Name();
  for (auto* entry : mFchannel) entry->parent = mFChannels.Name();
}

void frm6::SetRules() {
  // The two buttons ask for their command without the box that their menu entries show.
  btnReadFromSensor.onClick = [this] { context_.session.PanelCommand = readSensor; };
  btnSendToSensor.onClick = [this] { context_.session.PanelCommand = writeSensor; };
  txbSN.editable = [] { return false; };
  MakeIdEditable(txbID);
  for (auto* field : txbCHact) {
    field->editable = [this] { return Simulated(); };
    MakeEditable(*field);
  }
  MakeEditable(txbDigLevel);
  inputLevel_.SetRules();
  cbxDigActive.SetVisible(false);
  for (auto* label : lblDisp) label->onClick = [this, label] { ChooseAndStore(*label, mCHannel); };
  for (int i = 0; i < kFunctions; ++i) rows.lblFchannel[i].onClick = [this, i] { ChooseFunctionChannel(i); };
}

// The faces

frm6::Face frm6::FaceNow() const {
  switch (static_cast<int>(variant_)) {
    case 0:
    case 2:
      return Face::generic;
    case 1:
      return Face::vav;
    case 3:
      return Face::jumper;
    case 4:
      return Face::sequential;
    default:
      return Face::compact;
  }
}

bool frm6::FormUpdateInit() {
  try {
    variant_ = context_.info.GetProductVariant();
    NameChannels();
    NameOutputs();
  } catch (const std::exception&) {
    context_.session.Fail("Sensor is corrupt");
    return false;
  }
  ShowFace();
  cbxSimulated.SetVisible(true);
  return true;
}

void frm6::NameChannels() {
  auto& info = context_.info;
  int shown = 0;
  for (int k = 0; k < kChannels; ++k) {
    const auto channel = static_cast<float>(k);
    mCHannel[k].SetText(info.GetChannelName(channel, false));
    mCHannel[k].SetVisible(info.IsChannelPresent(channel, false, false));
    const int input = k - static_cast<int>(kFirstInput);
    if (input < 0 || input >= kInputs) continue;
    mFchannel[input].SetText(mCHannel[k].Text());
    mFchannel[input].SetVisible(info.IsChannelPresent(channel, false, true));
    if (shown >= kLiveValues || !info.IsChannelPresent(channel, true, true)) continue;
    pctChannel[shown].SetValue(k);
    pctChannel[shown].SetVisible(true);
    lblCH_Name[shown].SetText(mCHannel[k].Text());
    lblCH_Type[shown].SetText(info.GetChannelUnit(channel));
    ++shown;
  }
  for (; shown < kLiveValues; ++shown) pctChannel[shown].SetVisible(false);
}

/// On one part number the first two outputs have changed names; their memory is the same.
void frm6::NameOutputs() {
  const bool exchanged = context_.info.GetPartNumber() == kExchangedPart;
  for (const int j : {0, 1}) {
    const auto name = "Out " + std::to_string((exchanged ? 1 - j : j) + 1);
    outputs.lblOutName[j].SetText(name);
    outputs.cbxDigout[j].SetText(name);
    trigger.cbxDigTout[j].SetText(name);
    for (auto* tick : rows.FeedsOf(j)) tick->SetText(name);
  }
}

void frm6::ShowFace() {
  const auto face = FaceNow();
  ShowGeneric(face == Face::generic);
  vav.SetVisible(face == Face::vav);
  jumper.SetVisible(face == Face::jumper);
  sequential.SetVisible(face == Face::sequential);
  ShowSimulation();
}

void frm6::ShowGeneric(bool visible) {
  const std::array ofFunctions{&pctFunction,    &rows.lblFchannel, &rows.txbFa,
                               &rows.lblFaUnit, &rows.txbFb,       &rows.lblFbUnit};
  for (const auto* controls : ofFunctions) {
    for (auto* control : *controls) control->SetVisible(visible);
  }
  for (int j = 0; j < platform6::OutputRows::kOutputs; ++j) {
    ShowOutput(j, visible && (j != kFourthOutput || variant_ != kThreeOutputs));
  }
  for (auto* control :
       {&pctD, &pctDT, &trigger.txbDigTtime, &trigger.lblDigTunit, &trigger.txbDigTlevel, &txbDigLevel}) {
    control->SetVisible(visible);
  }
  if (visible) return;
  rows.functions.Hide();
  for (auto* sign : {&trigger.pctDigTPsign, &trigger.pctDigTNsign, &pctDigPSign, &pctDigNSign}) {
    sign->SetVisible(false);
  }
}

void frm6::ShowOutput(int output, bool visible) {
  for (auto* tick : rows.FeedsOf(output)) tick->SetVisible(visible);
  for (const auto* controls :
       {&pctOut, &outputs.lblOutName, &outputs.optOut6Analog, &outputs.optOut6Digital, &outputs.optOut6TMO,
        &outputs.cbxOut6Invert, &outputs.txbOutBaseLine, &outputs.txbOutIntTime, &outputs.txbOutOut,
        &outputs.cbxDigout, &trigger.cbxDigTout}) {
    (*controls)[output].SetVisible(visible);
  }
}

// Filling the form

bool frm6::FormUpdate() {
  UpdateGeneral();
  switch (FaceNow()) {
    case Face::generic:
      UpdateGeneric();
      UpdateDigital();
      break;
    case Face::vav:
      vav.Update();
      break;
    case Face::jumper:
      // Out of reach here, but the table is made of the functions, and a view shows them.
      for (int i = 0; i < kFunctions; ++i) {
        rows.UpdateInput(i, InputChannel(i), InputName(i), context_.info);
      }
      jumper.Update(Ends(), EventPass());
      trigger.triggerLevel.ShowText(Eeprom(kTriggerLevel), Round);
      break;
    case Face::sequential:
      sequential.Update();
      break;
    case Face::compact:
      break;
  }
  if (Simulated()) Simulate();
  return true;
}

void frm6::UpdateGeneral() {
  txbSN.SetText(context_.info.GetSensorIdentity());
  txbID.SetText(NumberText(Eeprom(kId)));
  ShowDisplays(context_.image, mCHannel, lblDisp);
}

void frm6::UpdateGeneric() {
  for (int j = 0; j < platform6::OutputRows::kOutputs; ++j) {
    outputs.Update(j, OutputRecord(j), rows.FeedsOf(j), trigger.cbxDigTout[j]);
  }
  for (int i = 0; i < kFunctions; ++i) {
    rows.Update(i, FunctionRecord(i), InputChannel(i), InputName(i), context_.info);
  }
}

std::string frm6::InputName(int function) {
  const int input = Bits(FunctionRecord(function)[0]);
  return input < kInputs ? mFchannel[input].Text() : "";
}

void frm6::UpdateDigital() {
  inputLevel_.Show(Eeprom(kInputLevel), Round);
  trigger.triggerLevel.Show(Eeprom(kTriggerLevel), Round);
  const float time = Eeprom(kTriggerTime);
  trigger.txbDigTtime.SetText(NumberText(static_cast<float>(Bits(time) & kSevenBits)));
  trigger.ShowUnit(time);
}

std::span<float> frm6::FunctionRecord(int function) {
  return std::span(context_.image.EepromImage)
      .subspan(static_cast<std::size_t>(kFunctionBase + FunctionRows::kRecordSize * function),
               FunctionRows::kRecordSize);
}

std::span<float> frm6::OutputRecord(int output) {
  using platform6::OutputRows;
  return std::span(context_.image.EepromImage)
      .subspan(static_cast<std::size_t>(kOutputBase + OutputRows::kRecordSize * output),
               OutputRows::kRecordSize);
}

float frm6::InputChannel(int function) {
  return FunctionRecord(function)[0] + kFirstInput;
}

platform6::FunctionEnds frm6::Ends() {
  platform6::FunctionEnds ends;
  for (int i = 0; i < kFunctions; ++i) {
    const auto value = [&](std::size_t offset) {
      const float word = WordOf(FunctionRecord(i).subspan(offset));
      return ParseNumber(context_.info.RawToText(word, InputChannel(i), false));
    };
    ends.A(i + 1) = value(1);
    ends.B(i + 1) = value(3);
  }
  return ends;
}

platform6::Pass frm6::EventPass() {
  return [this] { context_.machine.pump.DoEvents(); };
}

bool frm6::FormUpdateM() {
  bool refresh = true;
  // A value that could not be read leaves its field: the panel simulates from the last values.
  const auto show = [&](Control& field, int channel) {
    const auto number = static_cast<float>(channel);
    const float raw = context_.info.GetChannelRaw(number, std::exchange(refresh, false));
    const auto text = context_.info.RawToText(raw, number, false);
    if (context_.session.LastError.empty()) field.SetText(text);
  };
  for (int i = 0; i < kLiveValues; ++i) {
    if (pctChannel[i].Visible()) show(txbCHact[i], pctChannel[i].Value());
  }
  switch (FaceNow()) {
    case Face::generic:
      for (std::size_t j = 0; j < kOutputChannels.size(); ++j) {
        show(outputs.txbOutOut[static_cast<int>(j)], kOutputChannels.at(j));
      }
      break;
    case Face::vav:
      vav.UpdateLive(show);
      break;
    case Face::jumper:
      jumper.UpdateLive(show);
      break;
    case Face::sequential:
      sequential.UpdateLive(show);
      break;
    case Face::compact:
      break;
  }
  return context_.session.LastError.empty();
}

std::vector<Panel::LiveValue> frm6::LiveValues() const {
  std::vector<LiveValue> values;
  for (int i = 0; i < kLiveValues; ++i) {
    if (!pctChannel[i].Visible()) continue;
    values.push_back({lblCH_Name[i].Text(), txbCHact[i].Text(), lblCH_Type[i].Text()});
  }
  for (int j = 0; j < pctOut.Count(); ++j) {
    if (pctOut[j].Visible())
      values.push_back({outputs.lblOutName[j].Text(), outputs.txbOutOut[j].Text(), "%"});
  }
  return values;
}

// Taking the form

bool frm6::FormRead() {
  try {
    ReadFace();
  } catch (const NoResult& fault) {
    context_.session.Fail(fault.what());
    return false;
  }
  ReadGeneral();
  return true;
}

void frm6::ReadFace() {
  switch (FaceNow()) {
    case Face::generic:
      ReadGeneric();
      break;
    case Face::vav:
      vav.Read();
      break;
    case Face::jumper:
      ReadJumper();
      break;
    case Face::sequential:
      sequential.Read();
      break;
    case Face::compact:
      break;
  }
}

void frm6::ReadGeneral() {
  Eeprom(kId) = ParseNumber(txbID.Text());
  ReadDisplays(context_.image, mCHannel, lblDisp);
}

void frm6::ReadGeneric() {
  // Before anything is written: a form that cannot be taken whole leaves the image alone.
  outputs.RequireTimes();
  for (int i = 0; i < kFunctions; ++i) rows.Read(i, FunctionRecord(i), InputChannel(i), context_.info);
  for (int j = 0; j < platform6::OutputRows::kOutputs; ++j) {
    outputs.Read(j, OutputRecord(j), rows.FeedsOf(j), trigger.cbxDigTout[j]);
  }
  Eeprom(kInputLevel) = inputLevel_.Byte();
  Eeprom(kTriggerLevel) = trigger.triggerLevel.Byte();
  const int time = Bits(ParseNumber(trigger.txbDigTtime.Text())) & kSevenBits;
  Eeprom(kTriggerTime) = static_cast<float>(time + trigger.UnitBit());
}

void frm6::ReadJumper() {
  const auto ends = jumper.Read(EventPass());
  for (int i = 0; i < kFunctions; ++i) {
    const auto store = [&](std::size_t offset, float value) {
      const auto bytes = FunctionRecord(i).subspan(offset);
      StoreWord(bytes, context_.info.TextToRaw(NumberText(value), InputChannel(i), false), FlagOf(bytes));
    };
    store(1, ends.A(i + 1));
    store(3, ends.B(i + 1));
  }
  auto& level = Eeprom(kTriggerLevel);
  const int amount = Bits(trigger.triggerLevel.Byte()) & kSevenBits;
  level = static_cast<float>((Bits(level) & kFlag) | amount);
}

void frm6::ChooseFunctionChannel(int function) {
  auto& label = rows.lblFchannel[function];
  Choose(label, mFchannel, [&] {
    const auto input = FindCaption(mFchannel, kInputs, label.Text());
    if (input) FunctionRecord(function)[0] = static_cast<float>(*input);
  });
}

FunctionClass frm6::ClassOf(int function) const {
  const bool digital = rows.FeedsDigital(function, outputs.optOut6Digital);
  if (function < kUnsignedFunctions) {
    return digital ? FunctionClass::unsignedDigital : FunctionClass::unsignedAnalog;
  }
  return digital ? FunctionClass::digital : FunctionClass::analog;
}

// The sensor

bool frm6::RunAction(int command) {
  if (command == vavMax || command == vavMin) return ActionVAV(command == vavMax);
  return ImagePanel::RunAction(command);
}

bool frm6::ActionSensorRead() {
  ShowProgress("Reading from sensor", false);
  if (!ReadAfresh([this] { return ReadEeprom(); })) return false;
  if (!FormUpdateInit() || !FormUpdate() || !FormUpdateM()) return false;
  vav.lblV1Note.SetVisible(false);
  return true;
}

bool frm6::ActionSensorWrite() {
  if (!SendEeprom()) return false;
  vav.lblV1Note.SetVisible(false);
  return true;
}

bool frm6::ActionSettingsLoad() {
  return LoadEeprom();
}

bool frm6::ActionSettingsSave() {
  const auto name = AskForFile(UserInterface::FileUse::save, "Saving settings");
  if (!name) return true;
  if (!FormRead()) return false;
  const float variant = context_.info.GetProductVariant();
  if (variant > 4) {
    context_.session.Fail("Cant save settings from this sensor");
    return false;
  }
  static constexpr std::array kBlocks{snsFil::BlockWrite{snsFil::selection, true},
                                      snsFil::BlockWrite{snsFil::eeprom, false}};
  return SaveSelected(*name, variant == kThreeOutputs ? kSelectionOfThreeOutputs : kSelection, kBlocks);
}

bool frm6::ActionTWAReset() {
  ShowProgress("TWA reset", true);
  return context_.com.SensorCommand(snscom::twaReset, false);
}

bool frm6::ActionVAV(bool isMax) {
  ShowProgress("Ändrar baseline", false);
  const auto write = vav.TakeLimit(isMax);
  if (!context_.com.WriteSensorMemory(0, static_cast<float>(write.address),
                                      static_cast<std::uint8_t>(write.count), true, true, false, true, true,
                                      false)) {
    return false;
  }
  vav.lblV1Note.SetVisible(false);
  return true;
}

bool frm6::CalibrateSpan(const std::string& text) {
  return CalibrateSpanOf(kGasChannel, text);
}

// The offline model

void frm6::SimMode(bool on) {
  ImagePanel::SimMode(on);
  ShowSimulation();
  if (!on) trigger.HideBar();
}

/// What a user does to the offline model only; a face without outputs has none.
void frm6::ShowSimulation() {
  const bool offline = Simulated() && FaceNow() == Face::generic;
  trigger.btnDigTrig.SetVisible(offline);
  cbxDigActive.SetVisible(offline);
}

void frm6::SimulatedPass() {
  const auto isTyped = [](const Control* field) { return field->Back() == colours::kEditBack; };
  if (std::any_of(txbCHact.begin(), txbCHact.end(), isTyped)) return;
  trigger.Move();
  Simulate();
}

std::optional<milliseconds> frm6::SimulatedPeriod() const {
  if (trigger.Runs()) return milliseconds(40);
  return {};
}

void frm6::Simulate() {
  if (FaceNow() == Face::generic) ShowOutputs();
}

int frm6::Outputs() const {
  return static_cast<int>(
      std::count_if(pctOut.begin(), pctOut.end(), [](const Control* output) { return output->Visible(); }));
}

double frm6::Percent(int output, double shown, const FunctionRows::Input& input) const {
  double sum = rows.Sum(output, ParseNumber(outputs.txbOutBaseLine[output].Text()), input);
  if (trigger.Feeds(output) && trigger.Active()) sum += ParseNumber(trigger.txbDigTlevel.Text());
  sum = LimitSum(sum);
  if (outputs.cbxDigout[output].Value() == 1 && cbxDigActive.Value() == 1) {
    sum = LimitSum(sum + ParseNumber(txbDigLevel.Text()));
  }
  if (outputs.cbxOut6Invert[output].Value() == 1) sum = std::abs(sum);
  return KeptOutputOf(sum, IsDigital(output), shown);
}

const Control* frm6::LiveField(const std::string& channel) const {
  for (int c = 0; c < kLiveValues; ++c) {
    if (pctChannel[c].Visible() && lblCH_Name[c].Text() == channel) return &txbCHact[c];
  }
  return nullptr;
}

}  // namespace brelant
