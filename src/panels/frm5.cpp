// SPDX-License-Identifier: GPL-3.0-or-later
#include "panels/frm5.h"

#include <algorithm>
#include <cmath>
#include <exception>

#include "panels/output_model.h"
#include "shell/Common.h"

namespace brelant {

using std::chrono::milliseconds;

namespace {

constexpr int kShiftAmount = 32;
constexpr int kOutputKind = 57;
constexpr int kFunctionBase = 162;
constexpr int kTriggerTime = 187;
constexpr int kTriggerLevel = 188;
constexpr int kOutputBase = 189;
constexpr int kOutputSize = 4;
constexpr int kOutputWord = 197;
constexpr int kShiftChannel = 207;
constexpr int kLiveWord = 20;

constexpr int kSevenBits = 127;
constexpr int kTriggerFeeds = 32;
constexpr int kDigital = 64;
constexpr int kUnknownBit = 128;
constexpr int kShiftMiddle = 15;
constexpr int kShiftMost = 31;
constexpr float kShiftStep = 250;
constexpr float kFullOutput = 16384;
constexpr float kZeroBaseLine = 32768;
constexpr float kLeastIntTime = 2;
constexpr std::uint8_t kTWAPart = 231;

constexpr int kSettingsBlock = 6;

int OutputRecord(int output) {
  return kOutputBase + kOutputSize * output;
}
int KindBit(int output) {
  return output == 0 ? 2 : 4;
}

}  // namespace

frm5::frm5(const PanelContext& context)
    : Panel5(context, "frm5", {"Simulated", "Calibrating temperature", "Temp", "CO2 single point"}),
      lblShiftb(form.Add(ControlKind::label, "lblShiftb")),
      txbShiftBamount(form.Add(ControlKind::text, "txbShiftBamount")),
      lblShiftb_Type(form.Add(ControlKind::label, "lblShiftb_Type")),
      lblCH_Name(form.AddArray(ControlKind::label, "lblCH_Name", kChannels)),
      lblCH_Type(form.AddArray(ControlKind::label, "lblCH_Type", 3)),
      pctChannel(form.AddArray(ControlKind::picture, "pctChannel", 5)),
      txbCHact(form.AddArray(ControlKind::text, "txbCHact", kChannels)),
      rows(form, {kFunctions, kOutputs},
           {[this](int function) { return ClassOf(function); },
            [this](Control& field) { MakeEditable(field); }, [this] { Restore(); }}),
      trigger(form, kOutputs, context.machine.clock,
              {[this](Control& field) { MakeEditable(field); }, [this] { Restore(); },
               [this](Control& label, const ControlArray& menu) { ChooseAndStore(label, menu); }}),
      optOut5V(form.AddArray(ControlKind::option, "optOut5V", kOutputs)),
      optOut5mA(form.AddArray(ControlKind::option, "optOut5mA", kOutputs)),
      optOut5Digital(form.AddArray(ControlKind::option, "optOut5Digital", kOutputs)),
      txbOutBaseLine(form.AddArray(ControlKind::text, "txbOutBaseLine", kOutputs)),
      txbOutIntTime(form.AddArray(ControlKind::text, "txbOutIntTime", kOutputs)),
      txbOutOut(form.AddArray(ControlKind::text, "txbOutOut", kOutputs)),
      mChannels(form.AddMenu("", "mChannels", "Channels")),
      mCHannel(form.AddArray(ControlKind::menu, "mCHannel", 5)),
      outputLabels_{AddOutputLabels({42, 49, 38, 50}), AddOutputLabels({12, 15, 11, 16})} {
  SetMenus();
  SetRules();
}

frm5::Labels frm5::AddOutputLabels(const std::array<int, 4>& indexes) {
  static constexpr std::array<const char*, 4> kTexts{"Base line", "%", "Int. time", "s"};
  Labels labels{};
  for (std::size_t i = 0; i < labels.size(); ++i) {
    labels[i] = &form.AddIndexed(ControlKind::label, "Label1", indexes[i], kTexts[i]);
  }
  return labels;
}

void frm5::SetMenus() {
  mChannels.SetVisible(false);
  for (auto* entry : mCHannel) entry->parent = mChannels.Name();
}

void frm5::SetRules() {
  for (auto* field : txbOutOut) field->editable = [] { return false; };
  for (auto* field : txbCHact) {
    field->editable = [this] { return Simulated(); };
    MakeEditable(*field);
  }
  MakeEditable(txbShiftBamount);
  for (int j = 0; j < kOutputs; ++j) {
    MakeEditable(txbOutBaseLine[j]);
    auto& time = txbOutIntTime[j];
    MakeEditable(time, [&time] {
      if (ParseNumber(time.Text()) < kLeastIntTime) time.SetText(NumberText(kLeastIntTime));
    });
    for (auto* kind : {&optOut5V[j], &optOut5mA[j], &optOut5Digital[j]}) {
      kind->group = j + 1;
      kind->onClick = [this] { Restore(); };
    }
    optOut5V[j].SetText("0-100%");
    optOut5mA[j].SetText("20-100%");
    optOut5Digital[j].SetText("Digital");
  }
  for (int i = 0; i < kFunctions; ++i) {
    rows.lblFchannel[i].onClick = [this, i] { ChooseFunctionChannel(i); };
  }
  lblShiftb.onClick = [this] { ChooseShiftChannel(); };
  for (int i = 0; i < lblCH_Type.Count(); ++i)
    lblCH_Type[i].onClick = [this, i] { ChooseTempUnit(lblCH_Type[i], i == 0); };
}

// Filling the form

bool frm5::FormUpdateInit() {
  try {
    for (int k = 0; k < mCHannel.Count(); ++k) {
      const auto channel = static_cast<float>(k);
      const bool present = context_.info.IsChannelPresent(channel, false, false);
      const auto name = context_.info.GetChannelName(channel, false);
      mCHannel[k].SetText(name);
      mCHannel[k].SetVisible(present);
      pctChannel[k].SetVisible(present);
      if (!present || k >= kChannels) continue;
      lblCH_Name[k].SetText(name);
      if (k < lblCH_Type.Count()) lblCH_Type[k].SetText(context_.info.GetChannelUnit(channel));
    }
  } catch (const std::exception&) {
    context_.session.Fail("Sensor is corrupt");
    return false;
  }
  cbxSimulated.SetVisible(true);
  return true;
}

bool frm5::FormUpdate() {
  UpdateIdentity();
  UpdateGeneral();
  for (int j = 0; j < kOutputs; ++j) UpdateOutput(j);
  for (int i = 0; i < kFunctions; ++i) {
    const float channel = FunctionRecord(i)[0];
    rows.Update(i, FunctionRecord(i), channel, CaptionAt(mCHannel, Bits(channel)), context_.info);
  }
  UpdateTrigger();
  if (Simulated()) Simulate();
  return true;
}

void frm5::UpdateGeneral() {
  for (int k = 0; k < lblCH_Type.Count(); ++k) {
    const auto unit = context_.info.GetChannelUnit(static_cast<float>(k));
    lblCH_Type[k].SetText(unit);
    lblCH_Type[k].SetEnabled(IsTemperature(unit));
  }
  const float channel = ShiftChannel();
  lblShiftb.SetText(CaptionAt(mCHannel, static_cast<int>(channel)));
  lblShiftb_Type.SetText(context_.info.GetChannelUnit(channel));
  const int steps = (Bits(Ram(kShiftAmount)) & kShiftMost) - kShiftMiddle;
  txbShiftBamount.SetText(context_.info.RawToText(static_cast<float>(steps) * kShiftStep, channel, true));
}

float frm5::ShiftChannel() {
  return static_cast<float>(Bits(Ram(kShiftChannel)) & 15);
}

std::span<float> frm5::FunctionRecord(int function) {
  return std::span(context_.image.RamImage)
      .subspan(static_cast<std::size_t>(kFunctionBase + FunctionRows::kRecordSize * function),
               FunctionRows::kRecordSize);
}

void frm5::UpdateOutput(int output) {
  const int record = OutputRecord(output);
  const auto& feeds = rows.FeedsOf(output);
  for (int i = 0; i < kFunctions; ++i) feeds[i].SetValue(HasBit(Ram(record), 1 << i) ? 1 : 0);
  trigger.cbxDigTout[output].SetValue(HasBit(Ram(record), kTriggerFeeds) ? 1 : 0);

  const bool digital = HasBit(Ram(record), kDigital);
  const bool from20 = HasBit(Ram(kOutputKind), KindBit(output));
  form.Select(digital ? optOut5Digital[output] : from20 ? optOut5mA[output] : optOut5V[output]);
  txbOutBaseLine[output].SetVisible(!digital);
  txbOutIntTime[output].SetVisible(!digital);
  for (auto* label : outputLabels_.at(static_cast<std::size_t>(output))) label->SetVisible(!digital);

  const double baseLine = context_.image.RamWord(record + 1) - kZeroBaseLine;
  txbOutBaseLine[output].SetText(NumberText(static_cast<float>(Round(baseLine / kFullOutput * 100))));
  txbOutIntTime[output].SetText(NumberText(2 * std::exp2(Ram(record + 3))));
}

void frm5::UpdateTrigger() {
  const float time = Ram(kTriggerTime);
  trigger.txbDigTtime.SetText(NumberText(static_cast<float>(Bits(time) & kSevenBits) / 4));
  trigger.ShowUnit(time);
  trigger.triggerLevel.Show(Ram(kTriggerLevel), Fix);
}

bool frm5::FormUpdateM() {
  for (int k = 0; k < kChannels; ++k) {
    txbCHact[k].SetText(
        context_.info.RawToText(context_.image.RamWord(kLiveWord + 2 * k), static_cast<float>(k), false));
  }
  for (int j = 0; j < kOutputs; ++j) {
    const double percent = Round(context_.image.RamWord(kOutputWord + 2 * j) / kFullOutput * 100);
    txbOutOut[j].SetText(percent > 100 ? "100" : NumberText(static_cast<float>(percent)));
  }
  return true;
}

std::vector<Panel::LiveValue> frm5::LiveValues() const {
  std::vector<LiveValue> values;
  for (int k = 0; k < kChannels; ++k) {
    if (!mCHannel[k].Visible()) continue;
    values.push_back(
        {mCHannel[k].Text(), txbCHact[k].Text(), context_.info.GetChannelUnit(static_cast<float>(k))});
  }
  for (int j = 0; j < kOutputs; ++j) {
    values.push_back({NameOf(j), txbOutOut[j].Text(), "%"});
  }
  return values;
}

std::string frm5::NameOf(int output) const {
  return "Out " + std::to_string(output + 1);
}

// Taking the form

bool frm5::FormRead() {
  std::array<float, kOutputs> exponents{};
  // Before anything is written: a form that cannot be taken whole leaves the image alone.
  if (!ReadExponents(exponents)) return false;
  ReadIdentity();
  ReadShift();
  for (int i = 0; i < kFunctions; ++i) rows.Read(i, FunctionRecord(i), FunctionRecord(i)[0], context_.info);
  for (int j = 0; j < kOutputs; ++j) ReadOutput(j, exponents.at(static_cast<std::size_t>(j)));
  ReadTrigger();
  return true;
}

bool frm5::ReadExponents(std::array<float, kOutputs>& exponents) {
  for (int j = 0; j < kOutputs; ++j) {
    const float time = ParseNumber(txbOutIntTime[j].Text());
    if (time <= 0) {
      context_.session.Fail("Can't compute the integration time of output " + std::to_string(j + 1));
      return false;
    }
    exponents.at(static_cast<std::size_t>(j)) = static_cast<float>(Fix(std::log2(time)) - 1);
  }
  return true;
}

void frm5::ReadShift() {
  if (const auto channel = FindCaption(mCHannel, kChannels, lblShiftb.Text())) {
    // A choice from the menu stores the type times 16; the two factors differ, and only the low four bits are
    // ever read back.
    Ram(kShiftChannel) = AsByte(context_.definitions.Channel(*channel).ChannelType * 32.0 + *channel);
  }
  const float channel = ShiftChannel();
  const double raw = context_.info.TextToRaw(txbShiftBamount.Text(), channel, true);
  const double amount = std::clamp(Round(raw / kShiftStep + kShiftMiddle), 0.0, double{kShiftMost});
  Ram(kShiftAmount) = AsByte(channel * 32 + amount);
}

void frm5::ReadOutput(int output, float exponent) {
  const int record = OutputRecord(output);
  const auto& feeds = rows.FeedsOf(output);
  const bool digital = IsDigital(output);
  int bits = Bits(Ram(record)) & kUnknownBit;
  for (int i = 0; i < kFunctions; ++i) bits |= feeds[i].Value() << i;
  bits |= trigger.cbxDigTout[output].Value() * kTriggerFeeds;
  bits |= digital ? kDigital : 0;
  Ram(record) = static_cast<float>(bits);

  // A digital output has no kind of its own; the bit waits for the output to become analog again.
  const int kind = Bits(Ram(kOutputKind));
  if (optOut5mA[output].Value() == 1) Ram(kOutputKind) = static_cast<float>(kind | KindBit(output));
  if (optOut5V[output].Value() == 1) Ram(kOutputKind) = static_cast<float>(kind & ~KindBit(output));

  const double baseLine = ParseNumber(txbOutBaseLine[output].Text()) / 100.0 * kFullOutput + kZeroBaseLine;
  context_.image.SetRamWord(record + 1, digital ? kZeroBaseLine : static_cast<float>(baseLine));
  Ram(record + 3) = exponent;
}

void frm5::ReadTrigger() {
  const int time = Bits(ParseNumber(trigger.txbDigTtime.Text()) * 4) & kSevenBits;
  Ram(kTriggerTime) = static_cast<float>(time + trigger.UnitBit());
  Ram(kTriggerLevel) = trigger.triggerLevel.Byte();
}

// The user's choices

void frm5::ChooseFunctionChannel(int function) {
  auto& label = rows.lblFchannel[function];
  Choose(label, mCHannel, [&] {
    const auto channel = FindCaption(mCHannel, kChannels, label.Text());
    if (channel) FunctionRecord(function)[0] = static_cast<float>(*channel);
  });
}

void frm5::ChooseShiftChannel() {
  Choose(lblShiftb, mCHannel, [&] {
    const auto channel = FindCaption(mCHannel, kChannels, lblShiftb.Text());
    if (!channel) return;
    Ram(kShiftChannel) = AsByte(context_.definitions.Channel(*channel).ChannelType * 16.0 + *channel);
  });
}

// The sensor

bool frm5::ActionSensorReadM() {
  const auto read = [this](float address, std::uint8_t count) {
    return context_.com.ReadSensorMemory(0, address, count, false, true);
  };
  return read(14, 1) && read(kLiveWord, 8) && read(kOutputWord, 4) && FormUpdateM();
}

bool frm5::ActionSensorWrite() {
  if (!FormRead()) return false;
  ShowProgress("Sending to sensor", false);
  return context_.com.WriteSensorMemory(kSettingsBlock, 0, 0, false, true, false, true, true, true);
}

bool frm5::ActionTWAReset() {
  if (context_.info.GetPlatform() != 5 || context_.info.GetPartNumber() != kTWAPart) return true;
  ShowProgress("TWA reset", true);
  return context_.com.SensorCommand(snscom::twaReset, false);
}

// The offline model

void frm5::SimMode(bool on) {
  Panel5::SimMode(on);
  trigger.btnDigTrig.SetVisible(on);
}

void frm5::Simulate() {
  ShowOutputs();
}

double frm5::Percent(int output, double shown, const FunctionRows::Input& input) const {
  const double baseLine = IsDigital(output) ? 0 : ParseNumber(txbOutBaseLine[output].Text());
  double sum = rows.Sum(output, baseLine, input);
  if (trigger.Feeds(output)) {
    const double level = ParseNumber(trigger.txbDigTlevel.Text());
    if (trigger.Active()) sum += level;
    // A negative trigger counts double.
    if (trigger.linDigTNsign.Visible()) sum += level;
  }
  return OutputOf(LimitSum(sum), IsDigital(output), shown);
}

const Control* frm5::LiveField(const std::string& channel) const {
  for (int c = 0; c < kChannels; ++c) {
    if (lblCH_Name[c].Text() == channel) return &txbCHact[c];
  }
  return nullptr;
}

double frm5::ShiftOf(const std::string& channel) const {
  return lblShiftb.Text() == channel ? ParseNumber(txbShiftBamount.Text()) : 0;
}

FunctionClass frm5::ClassOf(int function) const {
  return rows.FeedsDigital(function, optOut5Digital) ? FunctionClass::digital : FunctionClass::analog;
}

void frm5::SimulatedPass() {
  trigger.Move();
  Simulate();
}

std::optional<milliseconds> frm5::SimulatedPeriod() const {
  // Often enough for a bar that runs smoothly.
  if (trigger.Runs()) return milliseconds(40);
  return {};
}

}  // namespace brelant
