// SPDX-License-Identifier: GPL-3.0-or-later
#include "panels/platform61/AlarmRows.h"

#include <algorithm>

#include "panels/alarm_state.h"
#include "panels/flagged_word.h"
#include "shell/Common.h"

namespace brelant::platform61 {

namespace {

constexpr int kBase = 834;
constexpr int kSize = 6;
constexpr std::size_t kLevel = 0;
constexpr std::size_t kSlope = 2;
constexpr int kConstant = 4;
constexpr float kConstantWord = 16383;
constexpr int kChannelBase = 925;
constexpr int kChannelSize = 2;
constexpr int kLowNibble = 15;
constexpr int kMainRow = 1;

constexpr const char* kBelow = "<";
constexpr const char* kAbove = ">";

int AddressOf(int row) {
  return kBase + kSize * row;
}
std::size_t ChannelAddress(int row) {
  return static_cast<std::size_t>(kChannelBase + kChannelSize * row);
}
template <typename Image>
auto RecordOf(Image& image, int row) {
  return std::span(image.EepromImage).subspan(static_cast<std::size_t>(AddressOf(row)), kSize);
}

}  // namespace

AlarmRows::AlarmRows(Form& form, SensorImage& image, SnsInfo& info, const Rules& rules)
    : pctAlarm07(form.Add(ControlKind::picture, "pctAlarm07")),
      lblAlarm7Channel(form.AddArray(ControlKind::label, "lblAlarm7Channel", kRows)),
      lblAlarm7Unit(form.AddArray(ControlKind::label, "lblAlarm7Unit", kRows)),
      lblAlarm7Slope(form.AddArray(ControlKind::label, "lblAlarm7Slope", kRows)),
      lblAlarm7Level(form.AddArray(ControlKind::text, "lblAlarm7Level", kRows)),
      txbAlarm7StatusPre(form.Add(ControlKind::text, "txbAlarm7StatusPre")),
      txbAlarm7StatusMain(form.Add(ControlKind::text, "txbAlarm7StatusMain")),
      image_(image),
      info_(info) {
  txbAlarm7StatusPre.editable = txbAlarm7StatusMain.editable = [] { return false; };
  for (int k = 0; k < kRows; ++k) {
    rules.makeEditable(lblAlarm7Level[k]);
    lblAlarm7Channel[k].onClick = [choose = rules.chooseChannel, k] { choose(k); };
    auto& slope = lblAlarm7Slope[k];
    slope.onClick = [this, &slope, k] { slope.SetText(IsBelow(k) ? kAbove : kBelow); };
  }
}

void AlarmRows::SetVisible(bool visible) {
  for (const auto* controls : {&lblAlarm7Channel, &lblAlarm7Unit, &lblAlarm7Slope, &lblAlarm7Level}) {
    for (auto* control : *controls) control->SetVisible(visible);
  }
  for (auto* control : {&pctAlarm07, &txbAlarm7StatusPre, &txbAlarm7StatusMain}) control->SetVisible(visible);
}

bool AlarmRows::FetchChannels() {
  for (int k = 0; k < kRows; ++k) {
    if (info_.GetChannelScale(static_cast<float>(ChannelOf(k))) == 0) return false;
  }
  return true;
}

bool AlarmRows::IsBelow(int row) const {
  return lblAlarm7Slope[row].Text() == kBelow;
}

int AlarmRows::ChannelOf(int row) const {
  return Bits(image_.EepromImage.at(ChannelAddress(row))) & kLowNibble;
}

void AlarmRows::Update(const ControlArray& channels) {
  for (int k = 0; k < kRows; ++k) {
    const auto record = RecordOf(image_, k);
    const auto channel = static_cast<float>(ChannelOf(k));
    lblAlarm7Channel[k].SetText(channels[ChannelOf(k)].Text());
    lblAlarm7Unit[k].SetText(info_.GetChannelUnit(channel));
    lblAlarm7Slope[k].SetText(FlagOf(record.subspan(kSlope)) ? kBelow : kAbove);
    lblAlarm7Level[k].SetText(info_.RawToText(WordOf(record.subspan(kLevel)), channel, false));
  }
}

void AlarmRows::Read() {
  for (int k = 0; k < kRows; ++k) {
    const auto record = RecordOf(image_, k);
    const auto channel = static_cast<float>(ChannelOf(k));
    StoreWord(record.subspan(kLevel), info_.TextToRaw(lblAlarm7Level[k].Text(), channel, false), false);
    auto& slope = record[kSlope];
    slope = static_cast<float>((Bits(slope) & (kWordFlag - 1)) | (IsBelow(k) ? kWordFlag : 0));
    image_.SetEepromWord(AddressOf(k) + kConstant, kConstantWord);
  }
}

void AlarmRows::StoreChannel(int row, int channel) {
  auto& byte = image_.EepromImage.at(ChannelAddress(row));
  byte = static_cast<float>((Bits(byte) & ~kLowNibble) | channel);
}

void AlarmRows::ShowStates(std::span<const Value> values) {
  ShowAlarm(txbAlarm7StatusPre, false);
  ShowAlarm(txbAlarm7StatusMain, false);
  float value = 0;
  for (int k = 0; k < kRows; ++k) {
    const auto watched = std::find_if(values.begin(), values.end(), [&](const Value& candidate) {
      return candidate.caption.Text() == lblAlarm7Channel[k].Text();
    });
    if (watched != values.end()) value = ParseNumber(watched->field.Text());
    const float level = ParseNumber(lblAlarm7Level[k].Text());
    const bool active = IsBelow(k) ? level > value : level < value;
    if (active) ShowAlarm(k == kMainRow ? txbAlarm7StatusMain : txbAlarm7StatusPre, true);
  }
}

void AlarmRows::ForgetStates() {
  for (auto* state : {&txbAlarm7StatusPre, &txbAlarm7StatusMain}) ForgetAlarm(*state);
}

std::vector<Panel::Alarm> AlarmRows::States() const {
  return {{"PRE ALARM", txbAlarm7StatusPre.Text()}, {"MAIN ALARM", txbAlarm7StatusMain.Text()}};
}

}  // namespace brelant::platform61
