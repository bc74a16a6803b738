// SPDX-License-Identifier: GPL-3.0-or-later
#include "desktop/kit/bind.h"

#include <algorithm>
#include <memory>
#include <utility>

#include "desktop/kit/make.h"
#include "desktop/kit/text.h"

namespace brelant {

namespace {

void TakeName(const Control& control, QWidget& widget) {
  widget.setObjectName(QString::fromStdString(control.Name()));
}

void Reflect(const Control& control, QWidget& widget) {
  widget.setEnabled(control.Enabled());
  widget.setToolTip(QString::fromStdString(control.Tip()));
  SetShown(widget, control.Visible());
}

QStringList ItemsOf(const Control& control) {
  QStringList items;
  for (const auto& item : control.Items()) items.append(QString::fromStdString(item));
  return items;
}

/// Checks and options act by their value alone.
bool HasRule(const Control& control) {
  return control.onClick != nullptr || control.Kind() != ControlKind::button;
}

void Fill(const Control& control, QAbstractButton& button, const ButtonFace& face) {
  Reflect(control, button);
  button.setEnabled(control.Enabled() && HasRule(control));
  if (face.spokenName.isEmpty()) {
    const auto text = WithMnemonic(TextOf(control), face.mnemonic);
    if (button.text() != text) button.setText(text);
  }
  if (button.isCheckable()) button.setChecked(control.Value() == 1);
}

/// A box that is filled takes the first item for its text, which is none of the control's.
bool FillItems(const Control& control, QComboBox& box) {
  const auto items = ItemsOf(control);
  QStringList shown;
  for (int i = 0; i < box.count(); ++i) shown.append(box.itemText(i));
  if (shown == items) return false;
  box.clear();
  box.addItems(items);
  box.setCurrentIndex(-1);
  return true;
}

void Fill(const Control& control, QComboBox& box) {
  if (FillItems(control, box)) box.setEditText(TextOf(control));
  Reflect(control, box);
}

void FillChoice(const Control& control, QComboBox& box) {
  FillItems(control, box);
  if (box.currentIndex() != control.Value()) box.setCurrentIndex(control.Value());
  Reflect(control, box);
}

void Fill(const Control& control, QListWidget& list) {
  const auto items = ItemsOf(control);
  QStringList shown;
  for (int i = 0; i < list.count(); ++i) shown.append(list.item(i)->text());
  if (shown != items) {
    list.clear();
    list.addItems(items);
  }
  list.setCurrentRow(control.Value());
  Reflect(control, list);
}

}  // namespace

void Bind(Views& views, Control& control, QLineEdit& edit, SpokenName name) {
  views.Keep(std::make_unique<EditBinding>(views, control, edit, std::move(name)));
}

void Bind(Views& views, Control& control, QLabel& label) {
  TakeName(control, label);
  label.setTextFormat(Qt::PlainText);
  views.OnRefresh([&] {
    Reflect(control, label);
    if (label.text() != TextOf(control)) label.setText(TextOf(control));
  });
}

void Bind(Views& views, Control& control, QAbstractButton& button, const ButtonFace& face) {
  TakeName(control, button);
  if (!face.spokenName.isEmpty()) button.setAccessibleName(face.spokenName);
  views.OnRefresh([&control, &button, face] { Fill(control, button, face); });
  QObject::connect(&button, &QAbstractButton::clicked, &button,
                   [&views, &control, &button] { views.ReportClick(button, control); });
}

void Bind(Views& views, Control& control, QComboBox& box, SpokenName name) {
  views.OnRefresh([&] { Fill(control, box); });
  Bind(views, control, *box.lineEdit(), std::move(name));
  box.setInsertPolicy(QComboBox::NoInsert);
  box.setCompleter(nullptr);
  QObject::connect(&box, &QComboBox::activated, &box, [&](int index) {
    views.Report(box, [&views, &control, text = box.itemText(index).toStdString()] {
      views.Model().ChangeText(control, text);
    });
  });
}

void BindChoice(Views& views, Control& control, QComboBox& box, SpokenName name) {
  TakeName(control, box);
  views.OnRefresh([&control, &box, name = std::move(name)] {
    FillChoice(control, box);
    const auto spoken = name();
    if (box.accessibleName() != spoken) box.setAccessibleName(spoken);
  });
  QObject::connect(&box, &QComboBox::activated, &box, [&](int index) {
    views.Report(box, [&views, &control, text = box.itemText(index).toStdString()] {
      views.Model().Choose(control, text);
    });
  });
}

void Bind(Views& views, Control& control, QListWidget& list, const QString& name) {
  TakeName(control, list);
  list.setAccessibleName(name);
  views.OnRefresh([&] { Fill(control, list); });
  QObject::connect(&list, &QListWidget::currentRowChanged, &list, [&](int row) {
    if (row < 0 || row == control.Value()) return;
    views.Report(list, [&views, &control, text = list.item(row)->text().toStdString()] {
      views.Model().Choose(control, text);
    });
  });
}

void Bind(Views& views, Control& control, QProgressBar& bar) {
  TakeName(control, bar);
  bar.setRange(0, 100);
  views.OnRefresh([&] {
    Reflect(control, bar);
    bar.setValue(control.Value());
  });
}

}  // namespace brelant
