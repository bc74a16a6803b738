// SPDX-License-Identifier: GPL-3.0-or-later
#include "panels/platform6/SequentialFace.h"

#include "panels/flagged_word.h"
#include "panels/platform6/base_line.h"
#include "panels/platform6/offset_word.h"
#include "shell/Common.h"

namespace brelant::platform6 {

namespace {

constexpr int kTemperatureSetPoint = 0;
constexpr int kGasSetPoint = 18;
constexpr int kCoolTemperature = 112;
constexpr int kVentGas = 117;
constexpr int kVentTemperatureFrom = 122;
constexpr int kVentTemperatureTo = 124;
constexpr int kMinVent = 142;
constexpr float kTemperatureChannel = 3;
constexpr float kGasChannel = 11;

}  // namespace

SequentialFace::SequentialFace(Form& form, SensorImage& image, SnsInfo& info,
                               const std::function<void(Control&)>& makeEditable)
    : pctSecCont(form.Add(ControlKind::picture, "pctSecCont")),
      txbV4SetPtemp(form.Add(ControlKind::text, "txbV4SetPtemp")),
      txbV4SetPCO2(form.Add(ControlKind::text, "txbV4SetPCO2")),
      txbV4PrangeVentTemp(form.Add(ControlKind::text, "txbV4PrangeVentTemp")),
      txbV4PrangeCoolTemp(form.Add(ControlKind::text, "txbV4PrangeCoolTemp")),
      txbV4PrangeVentCO2(form.Add(ControlKind::text, "txbV4PrangeVentCO2")),
      txbV4MinVent(form.Add(ControlKind::text, "txbV4MinVent")),
      txbV4Out1Out(form.Add(ControlKind::text, "txbV4Out1Out")),
      txbV4Out2Out(form.Add(ControlKind::text, "txbV4Out2Out")),
      image_(image),
      info_(info) {
  for (auto* field : Fields()) makeEditable(*field);
  txbV4Out1Out.editable = txbV4Out2Out.editable = [] { return false; };
}

ControlArray SequentialFace::Fields() const {
  return ControlArray({&txbV4SetPtemp, &txbV4SetPCO2, &txbV4PrangeVentTemp, &txbV4PrangeCoolTemp,
                       &txbV4PrangeVentCO2, &txbV4MinVent});
}

void SequentialFace::SetVisible(bool visible) {
  for (auto* field : Fields()) field->SetVisible(visible);
  for (auto* control : {&pctSecCont, &txbV4Out1Out, &txbV4Out2Out}) control->SetVisible(visible);
}

void SequentialFace::Update() {
  const auto range = [this](int address, float channel) {
    return info_.RawToText(WordOf(Bytes(address + 2)) - kWordOffset, channel, true);
  };
  txbV4SetPtemp.SetText(OffsetWordText(image_, info_, kTemperatureSetPoint, kTemperatureChannel));
  txbV4SetPCO2.SetText(OffsetWordText(image_, info_, kGasSetPoint, kGasChannel));
  txbV4PrangeVentTemp.SetText(LessText(kVentTemperatureTo, Value(kVentTemperatureFrom)));
  txbV4PrangeCoolTemp.SetText(range(kCoolTemperature, kTemperatureChannel));
  txbV4PrangeVentCO2.SetText(range(kVentGas, kGasChannel));
  txbV4MinVent.SetText(BaseLineText(Eeprom(kMinVent)));
}

void SequentialFace::Read() {
  StoreOffsetWord(image_, info_, kTemperatureSetPoint, kTemperatureChannel, txbV4SetPtemp.Text());
  StoreOffsetWord(image_, info_, kGasSetPoint, kGasChannel, txbV4SetPCO2.Text());
  const auto from = LessText(kVentTemperatureTo, ParseNumber(txbV4PrangeVentTemp.Text()));
  Store(kVentTemperatureFrom, info_.TextToRaw(from, kTemperatureChannel, false));
  ReadRange(kCoolTemperature, txbV4PrangeCoolTemp, image_.EepromWord(kTemperatureSetPoint),
            kTemperatureChannel);
  ReadRange(kVentGas, txbV4PrangeVentCO2, image_.EepromWord(kGasSetPoint), kGasChannel);
  Eeprom(kMinVent) = BaseLineByte(ParseNumber(txbV4MinVent.Text()));
}

/// The first word of the function follows from set point and range, the second one is the range itself.
void SequentialFace::ReadRange(int address, const Control& field, float setPoint, float channel) {
  const float range = info_.TextToRaw(field.Text(), channel, true);
  Store(address, setPoint - range);
  Store(address + 2, range + kWordOffset);
}

std::span<float> SequentialFace::Bytes(int address) {
  return std::span(image_.EepromImage).subspan(static_cast<std::size_t>(address), 2);
}

void SequentialFace::Store(int address, float word) {
  StoreWord(Bytes(address), word, FlagOf(Bytes(address)));
}

float SequentialFace::Value(int address) {
  return ParseNumber(info_.RawToText(WordOf(Bytes(address)), kTemperatureChannel, false));
}

/// In the decimals of the channel: what a single adds to a difference would be cut as a grain on its way
/// back.
std::string SequentialFace::LessText(int address, float value) {
  const double scale = info_.GetChannelScale(kTemperatureChannel);
  const double difference = static_cast<double>(Value(address)) - value;
  return NumberText(static_cast<float>(Round(difference * scale) / scale));
}

void SequentialFace::UpdateLive(const ShowLive& show) {
  show(txbV4Out1Out, 1);
  show(txbV4Out2Out, 0);
}

}  // namespace brelant::platform6
