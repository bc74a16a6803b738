// SPDX-License-Identifier: GPL-3.0-or-later
#include "panels/OutputStage.h"

#include <algorithm>

#include "knowledge/gas_curve.h"
#include "shell/Common.h"

namespace brelant {

namespace {

std::optional<double> NumberIn(const Control& field) {
  if (field.Text().empty()) return {};
  return ParseNumber(field.Text());
}

Transfer::Input& Named(std::vector<Transfer::Input>& inputs, const std::string& name) {
  const auto known =
      std::find_if(inputs.begin(), inputs.end(), [&](const auto& input) { return input.name == name; });
  return known != inputs.end() ? *known : inputs.emplace_back(Transfer::Input{name, {}, {}, {}});
}

}  // namespace

std::vector<Transfer::Input> OutputStage::InputsOf(int output) const {
  const auto& rows = Rows();
  std::vector<Input> inputs;
  for (int i = 0; i < rows.lblFchannel.Count(); ++i) {
    const auto& channel = rows.lblFchannel[i].Text();
    const auto* field = LiveField(channel);
    if (!rows.FeedsOutput(i, output) || field == nullptr) continue;
    auto& input = Named(inputs, channel);
    input.unit = rows.lblFaUnit[i].Text();
    input.value = NumberIn(*field);
    for (const auto* end : {&rows.txbFa[i], &rows.txbFb[i]}) {
      input.ends.push_back(ParseNumber(end->Text()) - ShiftOf(channel));
    }
  }
  for (auto& input : inputs) {
    auto& ends = input.ends;
    std::sort(ends.begin(), ends.end());
    ends.erase(std::unique(ends.begin(), ends.end()), ends.end());
  }
  return inputs;
}

std::optional<double> OutputStage::ShownOf(int output) const {
  return NumberIn(OutputFields()[output]);
}

std::optional<double> OutputStage::PercentAt(int output, const std::string& channel, double value,
                                             double shown) const {
  const auto input = [&](const std::string& name) {
    return name == channel ? std::optional(value + ShiftOf(name)) : InputNow(name);
  };
  try {
    return Percent(output, shown, input);
  } catch (const NoResult&) {
    return {};
  }
}

void OutputStage::ShowOutputs() {
  const auto& fields = OutputFields();
  const auto input = [this](const std::string& channel) { return InputNow(channel); };
  std::vector<std::string> texts;
  try {
    for (int j = 0; j < fields.Count(); ++j) {
      const double percent = Percent(j, ParseNumber(fields[j].Text()), input);
      texts.push_back(NumberText(static_cast<float>(Round(percent))));
    }
  } catch (const NoResult&) {
    return;
  }
  for (int j = 0; j < fields.Count(); ++j) fields[j].SetText(texts.at(static_cast<std::size_t>(j)));
}

std::optional<double> OutputStage::InputNow(const std::string& channel) const {
  const auto* field = LiveField(channel);
  if (field == nullptr) return {};
  return ParseNumber(field->Text()) + ShiftOf(channel);
}

}  // namespace brelant
