// SPDX-License-Identifier: GPL-3.0-or-later
#include "panels/platform6/OutputRows.h"

#include <algorithm>
#include <cmath>

#include "knowledge/gas_curve.h"
#include "panels/platform6/base_line.h"
#include "shell/Common.h"

namespace brelant::platform6 {

namespace {

constexpr int kInFirstByte = 5;  // functions whose ticks stand in the first byte
constexpr int kTriggerFeeds = 32;
constexpr int kDigital = 64;
constexpr int kUnknownFirst = 128;
constexpr int kExponent = 7;
constexpr int kUnknownLast = 8;
constexpr int kInvert = 16;
constexpr int kInputFeeds = 32;
constexpr int kTMO = 64;
constexpr int kLastFunctionFeeds = 128;
constexpr double kHighestBaseLine = 200;
constexpr double kLeastTime = 2;

ControlArray AddNumbered(Form& form, const std::string& name) {
  std::vector<Control*> controls;
  for (int j = 1; j <= OutputRows::kOutputs; ++j) {
    const auto number = std::to_string(j);
    controls.push_back(&form.Add(ControlKind::check, name + number, "Out " + number));
  }
  return ControlArray(controls);
}

}  // namespace

int IntegrationExponent(double seconds) {
  if (seconds <= 0) throw NoResult("Can't compute the integration time");
  return static_cast<int>(std::clamp(Fix(std::log2(seconds)) - 1, 0.0, double{kExponent}));
}

std::string IntegrationText(float byte) {
  return NumberText(static_cast<float>(2 * std::exp2(Bits(byte) & kExponent)));
}

OutputRows::OutputRows(Form& form, const Rules& rules)
    : lblOutName(form.AddArray(ControlKind::label, "lblOutName", kOutputs)),
      optOut6Analog(form.AddArray(ControlKind::option, "optOut6Analog", kOutputs)),
      optOut6Digital(form.AddArray(ControlKind::option, "optOut6Digital", kOutputs)),
      optOut6TMO(form.AddArray(ControlKind::option, "optOut6TMO", kOutputs)),
      cbxOut6Invert(form.AddArray(ControlKind::check, "cbxOut6Invert", kOutputs)),
      txbOutBaseLine(form.AddArray(ControlKind::text, "txbOutBaseLine", kOutputs)),
      txbOutIntTime(form.AddArray(ControlKind::text, "txbOutIntTime", kOutputs)),
      txbOutOut(form.AddArray(ControlKind::text, "txbOutOut", kOutputs)),
      cbxDigout(AddNumbered(form, "cbxDigout")),
      form_(form) {
  for (int j = 0; j < kOutputs; ++j) {
    lblOutName[j].SetText("Out " + std::to_string(j + 1));
    optOut6Analog[j].SetText("Analog");
    optOut6Digital[j].SetText("Digital");
    optOut6TMO[j].SetText("TMO");
    cbxOut6Invert[j].SetText("Invert");
    for (auto* kind : {&optOut6Analog[j], &optOut6Digital[j], &optOut6TMO[j]}) {
      kind->group = j + 1;
      kind->onClick = rules.changed;
    }
    cbxOut6Invert[j].onClick = cbxDigout[j].onClick = rules.changed;
    txbOutOut[j].editable = [] { return false; };
    rules.makeEditable(txbOutBaseLine[j], {});
    rules.makeEditable(txbOutIntTime[j], [&time = txbOutIntTime[j]] {
      if (ParseNumber(time.Text()) < kLeastTime) time.SetText(NumberText(static_cast<float>(kLeastTime)));
    });
  }
}

void OutputRows::RequireTimes() const {
  for (const auto* time : txbOutIntTime) IntegrationExponent(ParseNumber(time->Text()));
}

void OutputRows::Update(int output, std::span<const float> record, const ControlArray& feeds,
                        Control& trigger) {
  const int first = Bits(record[0]);
  const int last = Bits(record[2]);
  for (int i = 0; i < kInFirstByte; ++i) feeds[i].SetValue(first >> i & 1);
  feeds[kInFirstByte].SetValue((last & kLastFunctionFeeds) != 0 ? 1 : 0);
  trigger.SetValue((first & kTriggerFeeds) != 0 ? 1 : 0);
  cbxDigout[output].SetValue((last & kInputFeeds) != 0 ? 1 : 0);
  cbxOut6Invert[output].SetValue((last & kInvert) != 0 ? 1 : 0);
  form_.Select((first & kDigital) != 0 ? optOut6Digital[output]
               : (last & kTMO) != 0    ? optOut6TMO[output]
                                       : optOut6Analog[output]);
  txbOutBaseLine[output].SetText(BaseLineText(record[1]));
  txbOutIntTime[output].SetText(IntegrationText(record[2]));
}

void OutputRows::Read(int output, std::span<float> record, const ControlArray& feeds,
                      const Control& trigger) {
  const int exponent = IntegrationExponent(ParseNumber(txbOutIntTime[output].Text()));
  const auto flag = [](const Control& control, int mask) { return control.Value() == 1 ? mask : 0; };
  int first = Bits(record[0]) & kUnknownFirst;
  for (int i = 0; i < kInFirstByte; ++i) first |= flag(feeds[i], 1 << i);
  first |= flag(trigger, kTriggerFeeds) | flag(optOut6Digital[output], kDigital);
  int last = (Bits(record[2]) & kUnknownLast) | exponent;
  last |= flag(cbxOut6Invert[output], kInvert) | flag(cbxDigout[output], kInputFeeds) |
          flag(optOut6TMO[output], kTMO) | flag(feeds[kInFirstByte], kLastFunctionFeeds);

  auto& baseLine = txbOutBaseLine[output];
  const double percent = ParseNumber(baseLine.Text());
  const double limited = std::clamp(percent, -kHighestBaseLine, kHighestBaseLine);
  if (limited != percent) baseLine.SetText(NumberText(static_cast<float>(limited)));
  record[0] = static_cast<float>(first);
  record[1] = BaseLineByte(limited);
  record[2] = static_cast<float>(last);
}

}  // namespace brelant::platform6
