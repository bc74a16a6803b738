// SPDX-License-Identifier: GPL-3.0-or-later
#include "desktop/panels/platform61/AlarmRowTable.h"

#include <QPainter>
#include <QPainterPath>
#include <QToolButton>

#include "desktop/Appearance.h"
#include "desktop/kit/PopupLabel.h"
#include "desktop/kit/StatusLamp.h"
#include "desktop/kit/bind.h"
#include "desktop/kit/fields.h"
#include "desktop/kit/make.h"
#include "desktop/kit/text.h"
#include "desktop/panels/alarms/AlarmGrid.h"

namespace brelant::platform61 {

namespace {

constexpr int kSpacing = 8;
constexpr double kTitleSize = 1.6;
/// On top of what a lamp has.
constexpr double kLampSize = 1.6;
constexpr double kChoiceSize = 1.3;
constexpr double kSlopeSize = 1.6;

enum Column { title, lamp, wires, name, channel, slope, level, unit };

/// Leads rows of the same height to the lamp on its left.
class Wires : public QWidget {
 public:
  Wires(int rows, QWidget* parent) : QWidget(parent), rows_(rows) { setFixedWidth(Digits(*this, 4)); }

 protected:
  void paintEvent(QPaintEvent* /*event*/) override {
    QPainter painter(this);
    painter.setPen(QPen(InkOf(palette()).wire, 2));
    const double middle = width() / 2.0;
    const double pitch = static_cast<double>(height() + kSpacing) / rows_;
    const auto centre = [pitch](int row) { return (row + 0.5) * pitch - kSpacing / 2.0; };
    QPainterPath path(QPointF(0, height() / 2.0));
    path.lineTo(middle, height() / 2.0);
    if (rows_ > 1) {
      path.moveTo(middle, centre(0));
      path.lineTo(middle, centre(rows_ - 1));
    }
    for (int row = 0; row < rows_; ++row) {
      path.moveTo(middle, centre(row));
      path.lineTo(width(), centre(row));
    }
    painter.drawPath(path);
  }

 private:
  int rows_;
};

QString NameOf(int index) {
  return QString("Alarm %1").arg(index + 1);
}

}  // namespace

AlarmRowTable::AlarmRowTable(Views& views, QWidget* parent) : Card(parent) {
  auto& grid = LayOut<QGridLayout>(*this, kSpacing);
  grid.setContentsMargins(14, 10, 14, 10);
  grid.setColumnStretch(lamp, 1);
  AddGroup(views, {"PRE ALARM", views("txbAlarm7StatusPre"), {0, 2}}, grid);
  AddGroup(views, {"MAIN ALARM", views("txbAlarm7StatusMain"), {1}}, grid);
}

void AlarmRowTable::AddGroup(Views& views, const Group& group, QGridLayout& grid) {
  const int first = grid.count() == 0 ? 0 : grid.rowCount();
  const int count = static_cast<int>(group.rows.size());
  auto& label = Make<QLabel>(*this, group.title);
  ScaleFont(label, kTitleSize, QFont::DemiBold);
  grid.addWidget(&label, first, title, count, 1);
  auto& state = Make<StatusLamp>(*this, views, group.state, Always(group.title + ":"));
  ScaleFont(state, kLampSize, QFont::Bold);
  grid.addWidget(&state, first, lamp, count, 1);
  grid.addWidget(&Make<Wires>(*this, count), first, wires, count, 1);
  for (int i = 0; i < count; ++i) {
    AddRow(views, group.rows.at(static_cast<std::size_t>(i)), first + i, grid);
  }
}

void AlarmRowTable::AddRow(Views& views, int index, int row, QGridLayout& grid) {
  grid.setRowStretch(row, 1);
  grid.setRowMinimumHeight(row, fontMetrics().height() * 7 / 2);
  grid.addWidget(&Make<QLabel>(*this, NameOf(index)), row, name);
  auto& choice = Make<PopupLabel>(*this, views, views("lblAlarm7Channel", index),
                                  Always(NameOf(index) + " channel"), true);
  ScaleFont(choice, kChoiceSize);
  grid.addWidget(&choice, row, channel, Qt::AlignVCenter);
  AddSlope(views, index, row, grid);
  auto& unitControl = views("lblAlarm7Unit", index);
  const auto spoken = [index, &unitControl] { return NameOf(index) + " level, " + TextOf(unitControl); };
  grid.addWidget(&alarms::MakeLevel(views, views("lblAlarm7Level", index), spoken, *this), row, level);
  grid.addWidget(&alarms::MakeUnit(views, unitControl, *this), row, unit);
}

void AlarmRowTable::AddSlope(Views& views, int index, int row, QGridLayout& grid) {
  auto& control = views("lblAlarm7Slope", index);
  auto& button = Make<QToolButton>(*this);
  ScaleFont(button, kSlopeSize, QFont::Bold);
  button.setFixedWidth(Digits(button, 3));
  Bind(views, control, button);
  views.OnRefresh([&button, &control, index] {
    const QString meaning = control.Text() == "<" ? "alarm below the level" : "alarm above the level";
    button.setAccessibleName(NameOf(index) + ", " + meaning);
    button.setToolTip(button.accessibleName());
  });
  grid.addWidget(&button, row, slope, Qt::AlignVCenter);
}

}  // namespace brelant::platform61
