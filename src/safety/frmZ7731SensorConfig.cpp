// SPDX-License-Identifier: GPL-3.0-or-later
#include "safety/frmZ7731SensorConfig.h"

#include "safety/Functions.h"
#include "safety/unit_settings.h"

namespace brelant {

namespace {

constexpr int kLowestId = 1;
constexpr int kHighestId = 29;

}  // namespace

frmZ7731SensorConfig::frmZ7731SensorConfig(const UnitDesk& desk)
    : UnitDialog(desk, "frmZ7731SensorConfig", "Sensor Configuration"),
      cmbValue{&form.Add(ControlKind::list, "cmbValue1"), &form.Add(ControlKind::list, "cmbValue2"),
               &form.Add(ControlKind::list, "cmbValue3"), &form.Add(ControlKind::list, "cmbValue4")},
      btnUpdateDisplaySequence(
          form.Add(ControlKind::button, "btnUpdateDisplaySequence", "Update display sequence")),
      optTemp(form.AddArray(ControlKind::option, "optTemp", 2)),
      btnUpdateTempFormat(form.Add(ControlKind::button, "btnUpdateTempFormat", "Update temperature format")),
      txtCurrentID(form.Add(ControlKind::text, "txtCurrentID")),
      txtNewID(form.Add(ControlKind::text, "txtNewID")),
      btnUpdateNetworkD(form.Add(ControlKind::button, "btnUpdateNetworkD", "Update network ID")),
      btnCancel(form.Add(ControlKind::button, "btnCancel", "Cancel")) {
  optTemp[celsius].SetText("Celsius");
  optTemp[fahrenheit].SetText("Fahrenheit");
  txtCurrentID.editable = [] { return false; };
  btnUpdateDisplaySequence.onClick =
      Working([this] { UpdateDisplaySequence(); }, "Could not change display sequence");
  btnUpdateTempFormat.onClick =
      Working([this] { UpdateTempFormat(); }, "Could not change temperature format");
  btnUpdateNetworkD.onClick = Working([this] { UpdateNetworkID(); });
  btnCancel.onClick = [this] { form.Hide(); };
}

void frmZ7731SensorConfig::Fill() {
  const auto& unit = desk_.unit;
  txtCurrentID.SetText(std::to_string(unit.SensorID));
  txtNewID.SetText(std::to_string(unit.SensorID));
  for (int i = 0; i < snsZ7731::kPositions; ++i) {
    Offer(*cmbValue.at(static_cast<std::size_t>(i)), unit.GetDisplayMode(i));
  }
  const auto letter = Functions::UnitLetter(unit.Temp1.Case());
  optTemp[celsius].SetValue(letter == "C" ? 1 : 0);
  optTemp[fahrenheit].SetValue(letter == "F" ? 1 : 0);
}

void frmZ7731SensorConfig::UpdateDisplaySequence() {
  const auto names = DisplaySequenceNames(Model);
  bool done = true;
  for (std::size_t i = 0; i < names.size(); ++i) {
    done = Write(names.at(i), SelectedChannel(*cmbValue.at(i))) && done;
  }
  Tell(done ? "Display sequence changed" : "Could not change display sequence");
}

void frmZ7731SensorConfig::UpdateTempFormat() {
  auto& unit = desk_.unit;
  const auto chosen = [this](const snsZ7731::Channel& channel) {
    const auto word = channel.Case() & Functions::kWithoutUnit;
    if (optTemp[celsius].Value() == 1) return word | Functions::kCelsiusBits;
    return optTemp[fahrenheit].Value() == 1 ? word | Functions::kFahrenheitBits : word;
  };
  const auto first = chosen(unit.Temp1);
  const auto second = chosen(unit.Temp2);
  const bool isFirstDone = Write(unit.Temp1.CaseNode(), first);
  const bool isSecondDone = Write(unit.Temp2.CaseNode(), second);
  if (!isFirstDone || !isSecondDone) return Tell("Could not change temperature format");
  for (auto* channel : {&unit.Temp1, &unit.Temp2}) {
    channel->SetCase(Read(channel->IRCase(unit.ProtocolInUse)), unit.ProtocolInUse);
  }
  Tell("Temperature format changed");
}

void frmZ7731SensorConfig::UpdateNetworkID() {
  const int id = IntegerOf(txtNewID);
  if (id < kLowestId || id > kHighestId) {
    desk_.machine.userInterface.MessageBox(
        "Invalid Sensor ID!\n\nSensor ID must be greater then 0 and less then 30", UserInterface::Buttons::ok,
        "Invalid Sensor ID", UserInterface::Icon::none);
    return;
  }
  desk_.connection().Nodes().FindNode("eaSensorID_0", "").SetValue(true, id);
  desk_.unit.SensorID = id;
  txtCurrentID.SetText(std::to_string(id));
  Tell("Sensor ID changed\n\nSensor must be restarted for changes to take effect");
}

}  // namespace brelant
