// SPDX-License-Identifier: GPL-3.0-or-later
#include "desktop/panels/platform6/SequentialFaceView.h"

#include "desktop/kit/make.h"
#include "desktop/panels/platform6/set_up.h"

namespace brelant::platform6 {

namespace {

constexpr int kSpacing = 10;
constexpr int kTemperature = 3;
constexpr int kGas = 11;

}  // namespace

SequentialFaceView::SequentialFaceView(Views& views, QWidget* parent) : QWidget(parent) {
  auto& layout = LayOut<QVBoxLayout>(*this, kSpacing);
  AddOutputs(views, AddRow(layout, kSpacing));
  AddSettings(views, layout);
  layout.addStretch();
}

void SequentialFaceView::AddSettings(Views& views, QBoxLayout& layout) {
  const auto celsius = UnitOf(views, {kTemperature, kTemperature - 1});
  const auto gas = UnitOf(views, {kGas});
  auto& points = AddNumbers(AddCard("Set points", layout));
  AddNumber(views, views("txbV4SetPtemp"), "Set point", "Temperature", celsius, points);
  AddNumber(views, views("txbV4SetPCO2"), "Set point", "CO2", gas, points);
  auto& ventilation = AddNumbers(AddCard("Ventilation", layout));
  AddNumber(views, views("txbV4PrangeVentTemp"), "Ventilation", "Range, temperature", celsius, ventilation);
  AddNumber(views, views("txbV4PrangeVentCO2"), "Ventilation", "Range, CO2", gas, ventilation);
  AddNumber(views, views("txbV4MinVent"), "Ventilation", "Least ventilation", Fixed("%"), ventilation);
  auto& cooling = AddNumbers(AddCard("Cooling", layout));
  AddNumber(views, views("txbV4PrangeCoolTemp"), "Cooling", "Range, temperature", celsius, cooling);
}

void SequentialFaceView::AddOutputs(Views& views, QBoxLayout& layout) {
  AddOutputCard(views, "Out 1, ventilation", views("txbV4Out1Out"), 0, true, layout);
  AddOutputCard(views, "Out 2, cooling", views("txbV4Out2Out"), 1, true, layout);
}

}  // namespace brelant::platform6
