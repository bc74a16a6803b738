// SPDX-License-Identifier: GPL-3.0-or-later
#include "desktop/panels/platform6/VavFaceView.h"

#include <QPainter>
#include <QPushButton>
#include <QRadioButton>
#include <algorithm>

#include "desktop/Appearance.h"
#include "desktop/kit/bind.h"
#include "desktop/kit/fields.h"
#include "desktop/kit/make.h"
#include "desktop/kit/text.h"
#include "desktop/panels/platform6/set_up.h"
#include "shell/Common.h"

namespace brelant::platform6 {

namespace {

constexpr int kSpacing = 10;
/// For a hand in a glove.
constexpr double kButtonSize = 1.6;
constexpr int kTemperature1 = 2;
constexpr int kTemperature2 = 3;
constexpr int kGas = 11;
/// The place of the note that belongs to the upper end; anything below belongs to the lower one.
constexpr int kUpperNote = 270;

enum Column { caption, less, number, more, unit, note };

double PercentOf(const Control& control) {
  return std::clamp(double{ParseNumber(control.Text())}, 0.0, 100.0);
}

/// The way of a damper from closed to open: where its two ends are, and where it is now.
class DamperBar : public QWidget {
 public:
  DamperBar(Views& views, QWidget* parent)
      : QWidget(parent), min_(views("txbUseMin")), max_(views("txbUseMax")), now_(views("txbOutV1OutVAV")) {
    setObjectName("pctOutV1VAV");
    setFixedHeight(fontMetrics().height() * 3 / 2);
    views.OnRefresh([this] { update(); });
  }

 protected:
  void paintEvent(QPaintEvent* /*event*/) override {
    const auto ink = InkOf(palette());
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const QRectF whole = QRectF(rect()).adjusted(0.5, height() / 4.0, -0.5, -height() / 4.0);
    painter.setPen(QPen(ink.wire, 1));
    painter.setBrush(palette().color(QPalette::Base));
    painter.drawRect(whole);
    const auto at = [&](const Control& control) {
      return whole.left() + whole.width() * PercentOf(control) / 100;
    };
    const double low = at(min_);
    const double high = at(max_);
    painter.fillRect(QRectF(QPointF(low, whole.top()), QPointF(high, whole.bottom())), ink.area);
    for (const double end : {low, high}) {
      painter.drawLine(QPointF(end, whole.top() - 3), QPointF(end, whole.bottom() + 3));
    }
    const double x = std::clamp(at(now_), 2.0, width() - 2.0);
    painter.setPen(QPen(ink.output.front(), 4, Qt::SolidLine, Qt::FlatCap));
    painter.drawLine(QPointF(x, 0), QPointF(x, height()));
  }

 private:
  const Control& min_;
  const Control& max_;
  const Control& now_;
};

QPushButton& MakeButton(Views& views, const char* name, const QString& spoken, QWidget& parent) {
  auto& button = Make<QPushButton>(parent);
  ScaleFont(button, kButtonSize, QFont::DemiBold);
  button.setFixedWidth(Digits(button, 4));
  Bind(views, views(name), button);
  button.setAccessibleName(spoken);
  return button;
}

}  // namespace

VavFaceView::VavFaceView(Views& views, QWidget* parent) : QWidget(parent) {
  auto& layout = LayOut<QVBoxLayout>(*this, kSpacing);
  AddSetPoints(views, layout);
  AddDamper(views, layout);
  AddOther(views, layout);
  layout.addStretch();
}

void VavFaceView::AddSetPoints(Views& views, QBoxLayout& layout) {
  auto& grid = AddNumbers(AddCard("Set points", layout));
  AddNumber(views, views("txbSetPV1Temp"), "Set point", "Temperature",
            UnitOf(views, {kTemperature1, kTemperature2}), grid);
  AddNumber(views, views("txbSetPV1CO2"), "Set point", "CO2", UnitOf(views, {kGas}), grid);
}

void VavFaceView::AddDamper(Views& views, QBoxLayout& layout) {
  auto& inside = AddOutputCard(views, "Out 1, VAV damper", views("txbOutV1OutVAV"), 0, false, layout);
  inside.addWidget(&Make<DamperBar>(*inside.parentWidget(), views));
  auto& ends = *std::make_unique<QGridLayout>().release();
  inside.addLayout(&ends);
  ends.setColumnStretch(note, 1);
  AddEnd(views, {"Max", "txbUseMax", "Command5", "Command6"}, 0, ends);
  AddEnd(views, {"Min", "txbUseMin", "Command2", "Command1"}, 1, ends);
  AddNote(views, ends);
  AddNumber(views, views("txbOutV1IntTimeVAV"), "VAV damper", "Int. time", Fixed("s"), AddNumbers(inside));
}

void VavFaceView::AddEnd(Views& views, const End& end, int row, QGridLayout& grid) {
  auto& card = *grid.parentWidget();
  const auto spoken = end.name + " of the damper";
  grid.addWidget(&MakeCaption(end.name, card), row, caption);
  grid.addWidget(&MakeButton(views, end.less, spoken + ", less", card), row, less);
  auto& field = MakeNumber(views, views(end.field), Digits(card, 9), Always(spoken + ", %"), card);
  grid.addWidget(&field, row, number);
  grid.addWidget(&MakeButton(views, end.more, spoken + ", more", card), row, more);
  grid.addWidget(&Make<QLabel>(card, "%"), row, unit);
}

/// Stands beside the end that is being written.
void VavFaceView::AddNote(Views& views, QGridLayout& grid) {
  auto& label = Make<QLabel>(*grid.parentWidget());
  ScaleFont(label, 1, QFont::DemiBold);
  label.setAlignment(Qt::AlignRight | Qt::AlignVCenter);
  auto& control = views("lblV1Note");
  Bind(views, control, label);
  KeepPlace(label);
  views.OnRefresh([&label, &control, &grid] {
    const int row = control.Value() <= kUpperNote ? 0 : 1;
    const auto* there = grid.itemAtPosition(row, note);
    if (there != nullptr && there->widget() == &label) return;
    grid.removeWidget(&label);
    grid.addWidget(&label, row, note);
  });
}

void VavFaceView::AddOther(Views& views, QBoxLayout& layout) {
  auto& inside = AddOutputCard(views, "Out 2", views("txbOutV1Out"), 1, true, layout);
  auto& card = *inside.parentWidget();
  auto& row = AddRow(inside, kSpacing);
  row.addWidget(&MakeCaption("Slope", card));
  for (const char* name : {"optV1SlopePos", "optV1SlopeNeg"}) {
    auto& option = Make<QRadioButton>(card);
    Bind(views, views(name), option);
    option.setAccessibleName("Slope, " + option.text());
    row.addWidget(&option);
  }
  row.addStretch();
  AddNumber(views, views("txbOutV1IntTime"), "Out 2", "Int. time", Fixed("s"), AddNumbers(inside));
}

}  // namespace brelant::platform6
