// SPDX-License-Identifier: GPL-3.0-or-later
#include "panels/FunctionRows.h"

#include "panels/flagged_word.h"
#include "panels/output_model.h"

namespace brelant {

namespace {

constexpr std::size_t kA = 1;
constexpr std::size_t kB = 3;

std::vector<ControlArray> AddTicks(Form& form, const FunctionRows::Size& size) {
  std::vector<ControlArray> ticks;
  for (int j = 1; j <= size.outputs; ++j) {
    ticks.push_back(form.AddArray(ControlKind::check, "cbxFout" + std::to_string(j), size.functions));
    for (auto* tick : ticks.back()) tick->SetText("Out " + std::to_string(j));
  }
  return ticks;
}

}  // namespace

FunctionRows::FunctionRows(Form& form, const Size& size, const Rules& rules)
    : lblFchannel(form.AddArray(ControlKind::label, "lblFchannel", size.functions)),
      txbFa(form.AddArray(ControlKind::text, "txbFa", size.functions)),
      lblFaUnit(form.AddArray(ControlKind::label, "lblFaUnit", size.functions)),
      txbFb(form.AddArray(ControlKind::text, "txbFb", size.functions)),
      lblFbUnit(form.AddArray(ControlKind::label, "lblFbUnit", size.functions)),
      cbxFout(AddTicks(form, size)),
      functions(form, size.functions, size.types, rules.classOf, rules.changed) {
  for (int i = 0; i < size.functions; ++i) {
    rules.makeEditable(txbFa[i]);
    rules.makeEditable(txbFb[i]);
    for (auto& ticks : cbxFout) ticks[i].onClick = rules.changed;
  }
}

void FunctionRows::Update(int function, std::span<const float> record, float channel,
                          const std::string& caption, SnsInfo& info) {
  UpdateInput(function, channel, caption, info);
  txbFa[function].SetText(info.RawToText(WordOf(record.subspan(kA)), channel, false));
  txbFb[function].SetText(info.RawToText(WordOf(record.subspan(kB)), channel, false));
  functions.FunkTypeUpdate(function, false, FlagOf(record.subspan(kA)), FlagOf(record.subspan(kB)));
}

void FunctionRows::UpdateInput(int function, float channel, const std::string& caption, SnsInfo& info) {
  lblFchannel[function].SetText(caption);
  lblFaUnit[function].SetText(info.GetChannelUnit(channel));
  lblFbUnit[function].SetText(lblFaUnit[function].Text());
}

void FunctionRows::Read(int function, std::span<float> record, float channel, SnsInfo& info) const {
  bool sign = FlagOf(record.subspan(kA));
  bool slope = FlagOf(record.subspan(kB));
  functions.FunkTypeRead(function, sign, slope);
  StoreWord(record.subspan(kA), info.TextToRaw(txbFa[function].Text(), channel, false), sign);
  StoreWord(record.subspan(kB), info.TextToRaw(txbFb[function].Text(), channel, false), slope);
}

double FunctionRows::Sum(int output, double sum, const Input& input) const {
  for (int i = 0; i < lblFchannel.Count(); ++i) {
    const auto type = functions.VisibleType(i);
    const auto x = input(lblFchannel[i].Text());
    if (!FeedsOutput(i, output) || !x || !type) continue;
    sum += FunctionContribution(*type, *x, ParseNumber(txbFa[i].Text()), ParseNumber(txbFb[i].Text()));
    sum = LimitSum(sum);
  }
  return sum;
}

bool FunctionRows::FeedsDigital(int function, const ControlArray& digitalOutputs) const {
  for (int j = 0; j < digitalOutputs.Count(); ++j) {
    if (FeedsOutput(function, j) && digitalOutputs[j].Value() == 1) return true;
  }
  return false;
}

}  // namespace brelant
