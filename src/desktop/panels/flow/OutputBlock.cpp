// SPDX-License-Identifier: GPL-3.0-or-later
#include "desktop/panels/flow/OutputBlock.h"

#include <QCheckBox>
#include <QGridLayout>
#include <QPainter>
#include <QRadioButton>

#include "desktop/Appearance.h"
#include "desktop/kit/bind.h"
#include "desktop/kit/fields.h"
#include "desktop/kit/make.h"
#include "desktop/kit/text.h"
#include "desktop/panels/flow/TransferButton.h"

namespace brelant::flow {

namespace {

constexpr double kNumberSize = 4.2;
constexpr double kDenseNumberSize = 3;
constexpr int kEdge = 5;
constexpr int kSpacing = 6;

QLabel& MakeCaption(Views& views, const Caption& caption, QWidget& parent) {
  auto& label = Make<QLabel>(parent, caption.text);
  if (caption.label != nullptr) Bind(views, *caption.label, label);
  return label;
}

QAbstractButton& MakeKind(const Control& control, QWidget& parent) {
  if (control.Kind() == ControlKind::check) return Make<QCheckBox>(parent);
  return Make<QRadioButton>(parent);
}

}  // namespace

OutputBlock::OutputBlock(Views& views, const OutputPlan& plan, std::size_t output, const Transfer* transfer,
                         bool dense, QWidget* parent)
    : Card(parent), place_(output) {
  auto& layout = LayOut<QVBoxLayout>(*this, dense ? kSpacing / 2 : kSpacing);
  layout.setContentsMargins(12 + kEdge, dense ? 4 : 8, 12, dense ? 6 : 10);
  AddValue(views, plan, transfer, dense, layout);
  layout.addStretch();
  AddKinds(views, plan, layout);
  if (dense) {
    AddSettingsInRow(views, plan, layout);
  } else {
    AddSettings(views, plan, layout);
  }
  setFixedWidth(Digits(*this, dense ? 41 : 36));
  setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Expanding);
  if (plan.presence == nullptr) return;
  views.OnRefresh([this, presence = plan.presence] { SetShown(*this, presence->Visible()); });
}

void OutputBlock::AddValue(Views& views, const OutputPlan& plan, const Transfer* transfer, bool dense,
                           QBoxLayout& layout) {
  auto& title = MakeCaption(views, {plan.name, QString("Out %1").arg(place_ + 1)}, *this);
  OutputValue::Face face{&title, dense, dense ? kDenseNumberSize : kNumberSize, place_};
  if (transfer != nullptr) {
    face.button =
        &Make<TransferButton>(*this, views, *transfer, static_cast<int>(place_), [this] { return place_; });
  }
  value_ = &Make<OutputValue>(*this, views, *plan.value, face, [this] { return Spoken("%"); });
  layout.addWidget(value_);
}

void OutputBlock::AddKinds(Views& views, const OutputPlan& plan, QBoxLayout& layout) {
  auto& kinds = Make<QWidget>(*this);
  layout.addWidget(&kinds);
  auto& row = LayOut<QHBoxLayout>(kinds, 10);
  for (auto* control : plan.kinds) {
    auto& button = MakeKind(*control, kinds);
    Bind(views, *control, button);
    views.OnRefresh([this, &button] { button.setAccessibleName(Spoken(button.text())); });
    row.addWidget(&button);
  }
  row.addStretch();
}

void OutputBlock::AddSetting(Views& views, const OutputPlan::Setting& setting, int digits,
                             const std::function<void(QWidget&)>& place) {
  auto& before = MakeCaption(views, setting.caption, *this);
  auto& after = MakeCaption(views, setting.unit, *this);
  auto& edit = MakeNumber(
      views, *setting.field, Digits(*this, digits),
      [this, &before, &after] { return Spoken(before.text() + ", " + after.text()); }, *this);
  for (auto* widget : std::initializer_list<QWidget*>{&before, &edit, &after}) {
    KeepPlace(*widget);
    place(*widget);
  }
}

void OutputBlock::AddSettings(Views& views, const OutputPlan& plan, QBoxLayout& layout) {
  auto& grid = *std::make_unique<QGridLayout>().release();
  grid.setVerticalSpacing(4);
  layout.addLayout(&grid);
  int line = 0;
  for (const auto& setting : plan.settings) {
    int column = 0;
    AddSetting(views, setting, 9, [&](QWidget& widget) { grid.addWidget(&widget, line, column++); });
    ++line;
  }
  grid.setColumnStretch(0, 1);
}

void OutputBlock::AddSettingsInRow(Views& views, const OutputPlan& plan, QBoxLayout& layout) {
  auto& row = AddRow(layout, kSpacing);
  for (const auto& setting : plan.settings) {
    AddSetting(views, setting, 7, [&](QWidget& widget) { row.addWidget(&widget); });
    row.addStretch();
  }
}

void OutputBlock::SetPlace(std::size_t place) {
  if (place == place_) return;
  place_ = place;
  value_->SetPlace(place);
  update();
}

QString OutputBlock::Spoken(const QString& what) const {
  return QString("Output %1, ").arg(place_ + 1) + what;
}

void OutputBlock::paintEvent(QPaintEvent* event) {
  Card::paintEvent(event);
  QPainter painter(this);
  painter.fillRect(QRect(0, 0, kEdge, height()), InkOf(palette()).output.at(place_));
}

}  // namespace brelant::flow
