// SPDX-License-Identifier: GPL-3.0-or-later
#include "panels/platform6/VavFace.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <utility>

#include "knowledge/gas_curve.h"
#include "panels/PanelFrame.h"
#include "panels/platform6/OutputRows.h"
#include "panels/platform6/base_line.h"
#include "panels/platform6/offset_word.h"
#include "shell/Common.h"

namespace brelant::platform6 {

namespace {

constexpr std::uint8_t kPart222 = 222;
constexpr std::uint8_t kPart223 = 223;
constexpr int kSlope = 129;
constexpr int kSlopeFlag = 128;
constexpr int kMaxLess = 148;
constexpr int kDamperWord = 124;
constexpr int kVariant = 173;
constexpr int kGasSetPoint = 18;
constexpr float kGasChannel = 11;
constexpr int kButtonByte = 139;
constexpr int kExponentBits = 7;
constexpr double kFull = 100;
constexpr float kOffset = 5000;

struct Setting {
  int address;
  std::uint8_t value;
};

constexpr std::array kCommonSetUp{
    Setting{4, 0},     Setting{8, 127},   Setting{9, 255},   Setting{10, 0},    Setting{12, 19},
    Setting{13, 136},  Setting{14, 127},  Setting{15, 255},  Setting{16, 0},    Setting{17, 6},
    Setting{18, 22},   Setting{19, 168},  Setting{20, 127},  Setting{21, 255},  Setting{22, 0},
    Setting{23, 9},    Setting{24, 0},    Setting{25, 0},    Setting{26, 0},    Setting{27, 0},
    Setting{28, 0},    Setting{29, 0},    Setting{30, 0},    Setting{31, 0},    Setting{106, 8},
    Setting{107, 60},  Setting{108, 125}, Setting{109, 191}, Setting{110, 172}, Setting{111, 0},
    Setting{112, 19},  Setting{113, 136}, Setting{114, 147}, Setting{115, 136}, Setting{116, 0},
    Setting{117, 19},  Setting{118, 136}, Setting{119, 147}, Setting{120, 136}, Setting{121, 9},
    Setting{122, 19},  Setting{123, 136}, Setting{124, 148}, Setting{125, 80},  Setting{127, 19},
    Setting{128, 136}, Setting{129, 147}, Setting{130, 236}, Setting{131, 8},   Setting{132, 0},
    Setting{133, 0},   Setting{134, 191}, Setting{135, 172}, Setting{136, 0},   Setting{137, 0},
    Setting{139, 128}, Setting{142, 128}};
constexpr std::array kSetUp222{Setting{5, 6},     Setting{6, 28},   Setting{7, 32},
                               Setting{11, 0},    Setting{126, 0},  Setting{138, 0},
                               Setting{140, 128}, Setting{141, 16}, Setting{143, 0}};
constexpr std::array kSetUp223{Setting{5, 1},   Setting{6, 19},  Setting{7, 136},
                               Setting{11, 6},  Setting{126, 1}, Setting{138, 16},
                               Setting{140, 0}, Setting{141, 0}, Setting{143, 128}};
constexpr std::array kLastSetUp{Setting{3, 19},  Setting{144, 65},  Setting{145, 192}, Setting{146, 0},
                                Setting{147, 8}, Setting{148, 128}, Setting{149, 0}};

/// What differs between the two part numbers.
struct Layout {
  int vavExponent;
  int exponent;
  int temperature;
  float temperatureChannel;
  int vavOutput;
  int output;
};
constexpr Layout kUsual{140, 143, 6, 2, 0, 1};
constexpr Layout kExchanged{143, 140, 0, 3, 1, 0};

double Number(const Control& field) {
  return ParseNumber(field.Text());
}

/// Not truncated: the exponent is rounded as it is stored.
float ExponentOf(const Control& field) {
  const double time = Number(field);
  if (time <= 0) throw NoResult("Can't compute the integration time");
  return static_cast<float>(std::clamp(Round(std::log2(time / 2)), 0.0, double{kExponentBits}));
}

}  // namespace

VavFace::VavFace(Form& form, SensorImage& image, SnsInfo& info, const Rules& rules)
    : pctSetpV1(form.Add(ControlKind::picture, "pctSetpV1")),
      pctOutV1(form.Add(ControlKind::picture, "pctOutV1")),
      pctOutV1VAV(form.Add(ControlKind::picture, "pctOutV1VAV")),
      txbSetPV1Temp(form.Add(ControlKind::text, "txbSetPV1Temp")),
      txbSetPV1CO2(form.Add(ControlKind::text, "txbSetPV1CO2")),
      optV1SlopePos(form.Add(ControlKind::option, "optV1SlopePos", "Positive")),
      optV1SlopeNeg(form.Add(ControlKind::option, "optV1SlopeNeg", "Negative")),
      txbOutV1IntTimeVAV(form.Add(ControlKind::text, "txbOutV1IntTimeVAV")),
      txbOutV1IntTime(form.Add(ControlKind::text, "txbOutV1IntTime")),
      txbOutV1OutVAV(form.Add(ControlKind::text, "txbOutV1OutVAV")),
      txbOutV1Out(form.Add(ControlKind::text, "txbOutV1Out")),
      txbUseMax(form.Add(ControlKind::text, "txbUseMax")),
      txbUseMin(form.Add(ControlKind::text, "txbUseMin")),
      Command6(form.Add(ControlKind::button, "Command6", "+")),
      Command5(form.Add(ControlKind::button, "Command5", "-")),
      Command1(form.Add(ControlKind::button, "Command1", "+")),
      Command2(form.Add(ControlKind::button, "Command2", "-")),
      lblV1Note(form.Add(ControlKind::label, "lblV1Note", "Ändrar baseline")),
      image_(image),
      info_(info),
      rules_(rules) {
  constexpr int kSlopeGroup = 10;
  for (auto* option : {&optV1SlopePos, &optV1SlopeNeg}) {
    option->group = kSlopeGroup;
    option->onClick = rules_.changed;
  }
  for (auto* field : {&txbSetPV1Temp, &txbSetPV1CO2, &txbOutV1IntTimeVAV, &txbOutV1IntTime}) {
    rules_.makeEditable(*field, {});
  }
  for (auto* field : {&txbOutV1OutVAV, &txbOutV1Out}) field->editable = [] { return false; };
  for (const bool isMax : {true, false}) {
    auto& field = isMax ? txbUseMax : txbUseMin;
    rules_.makeEditable(field, {});
    field.onLeave = [this, &field, isMax] { LimitLeft(field, isMax); };
    field.onKey = [this, &field, isMax](int code) {
      if (code != PanelFrame::kEnterKey) return false;
      LimitLeft(field, isMax);
      return true;
    };
    (isMax ? Command6 : Command1).onClick = [this, &field, isMax] { StepUp(field, isMax); };
    (isMax ? Command5 : Command2).onClick = [this, &field, isMax] { StepDown(field, isMax); };
  }
  lblV1Note.SetVisible(false);
}

void VavFace::SetVisible(bool visible) {
  for (auto* control : {&pctSetpV1, &pctOutV1, &pctOutV1VAV, &txbSetPV1Temp, &txbSetPV1CO2, &optV1SlopePos,
                        &optV1SlopeNeg, &txbOutV1IntTimeVAV, &txbOutV1IntTime, &txbOutV1OutVAV, &txbOutV1Out,
                        &txbUseMax, &txbUseMin, &Command6, &Command5, &Command1, &Command2}) {
    control->SetVisible(visible);
  }
  if (!visible) lblV1Note.SetVisible(false);
}

void VavFace::Update() {
  const auto& layout = Exchanged() ? kExchanged : kUsual;
  txbOutV1IntTimeVAV.SetText(IntegrationText(Eeprom(layout.vavExponent)));
  txbOutV1IntTime.SetText(IntegrationText(Eeprom(layout.exponent)));
  txbSetPV1Temp.SetText(OffsetWordText(image_, info_, layout.temperature, layout.temperatureChannel));
  txbSetPV1CO2.SetText(OffsetWordText(image_, info_, kGasSetPoint, kGasChannel));
  optV1SlopePos.Owner().Select(HasBit(Eeprom(kSlope), kSlopeFlag) ? optV1SlopePos : optV1SlopeNeg);
  const double base = BaseLinePercent(Eeprom(BaseByte()));
  txbUseMax.SetText(NumberText(static_cast<float>(base + kFull)));
  txbUseMin.SetText(NumberText(static_cast<float>(BaseLinePercent(Eeprom(kMaxLess)) - std::abs(base))));
}

void VavFace::Read() {
  const float vavExponent = ExponentOf(txbOutV1IntTimeVAV);
  const float exponent = ExponentOf(txbOutV1IntTime);
  const auto& layout = Exchanged() ? kExchanged : kUsual;
  const auto storeExponent = [this](int address, float value) {
    Eeprom(address) = static_cast<float>((Bits(Eeprom(address)) & ~kExponentBits) | static_cast<int>(value));
  };
  GetInitSetVAV();
  Eeprom(kVariant) = 1;
  storeExponent(layout.vavExponent, vavExponent);
  storeExponent(layout.exponent, exponent);
  StoreOffsetWord(image_, info_, layout.temperature, layout.temperatureChannel, txbSetPV1Temp.Text());
  StoreOffsetWord(image_, info_, kGasSetPoint, kGasChannel, txbSetPV1CO2.Text());
  const int slope = Bits(Eeprom(kSlope)) & ~kSlopeFlag;
  Eeprom(kSlope) = static_cast<float>(slope | (optV1SlopePos.Value() == 1 ? kSlopeFlag : 0));
  ReadLimits();
}

void VavFace::ReadLimits() {
  const double max = Number(txbUseMax);
  const double min = Number(txbUseMin);
  Eeprom(kMaxLess) = BaseLineByte(kFull - max + min);
  Eeprom(BaseByte()) = BaseLineByte(max - kFull);
  if (max == min) return;
  image_.SetEepromWord(kDamperWord, static_cast<float>(2 * kFull / ((max - min) / kFull) + kOffset));
  Eeprom(kDamperWord) = static_cast<float>(Bits(Eeprom(kDamperWord)) | kSlopeFlag);
}

void VavFace::UpdateLive(const ShowLive& show) {
  const auto& layout = Exchanged() ? kExchanged : kUsual;
  show(txbOutV1OutVAV, layout.vavOutput);
  show(txbOutV1Out, layout.output);
}

void VavFace::GetInitSetVAV() {
  const auto part = info_.GetPartNumber();
  if (part != kPart222 && part != kPart223) return;
  const auto store = [this](const auto& settings) {
    for (const auto& setting : settings) Eeprom(setting.address) = setting.value;
  };
  store(kCommonSetUp);
  if (part == kPart222) {
    store(kSetUp222);
  } else {
    store(kSetUp223);
  }
  store(kLastSetUp);
}

VavFace::Write VavFace::TakeLimit(bool isMax) {
  constexpr int kUpper = 270;
  constexpr int kLower = 660;
  constexpr int kCount = 4;
  const int first = Exchanged() ? 140 : 138;
  Eeprom(Exchanged() ? 141 : 138) = 0;
  Eeprom(Exchanged() ? 143 : 140) = 0;
  lblV1Note.SetValue(isMax ? kUpper : kLower);
  lblV1Note.SetVisible(true);
  auto& field = isMax ? txbUseMax : txbUseMin;
  ShowBaseLineOf(field, Number(field), BaseByte());
  return {first, kCount};
}

void VavFace::ShowBaseLineOf(Control& field, double percent, int address) {
  Eeprom(address) = BaseLineByte(percent);
  field.SetText(BaseLineText(Eeprom(address)));
}

/// Acts once: a second loss of the focus finds the colours already back.
void VavFace::LimitLeft(Control& field, bool isMax) {
  if (field.Back() == colours::kFieldBack) return;
  field.SetBack(colours::kFieldBack);
  field.SetFore(colours::kFieldText);
  if (!rules_.mayChange()) return;
  rules_.busy();
  if (Number(field) > kFull) field.SetText("100");
  if (Number(field) < 0) field.SetText("0");
  rules_.limitChanged(isMax);
}

/// The buttons take the byte of one part number on both.
void VavFace::StepUp(Control& field, bool isMax) {
  if (!rules_.mayChange()) return;
  rules_.busy();
  ShowBaseLineOf(field, Number(field) + 1, kButtonByte);
  if (Number(field) > kFull) field.SetText("100");
  rules_.limitChanged(isMax);
}

/// The grain is coarser than 1: on until the byte has moved.
void VavFace::StepDown(Control& field, bool isMax) {
  if (!rules_.mayChange()) return;
  rules_.busy();
  const auto old = field.Text();
  ShowBaseLineOf(field, Number(field) - 1, kButtonByte);
  while (field.Text() == old && Eeprom(kButtonByte) > 0) {
    ShowBaseLineOf(field, Number(field) - 2, kButtonByte);
  }
  if (Number(field) < 0) field.SetText("0");
  rules_.limitChanged(isMax);
}

}  // namespace brelant::platform6
