// SPDX-License-Identifier: GPL-3.0-or-later
#include "desktop/panels/safety/UnitDialogWindow.h"

#include <QApplication>

#include "desktop/kit/bind.h"
#include "desktop/kit/fields.h"
#include "desktop/kit/make.h"
#include "desktop/kit/text.h"
#include "desktop/windows/dialog_parts.h"

namespace brelant {

namespace {

/// The caption as it is spoken: without the mark of its letter.
QString Spoken(const QString& caption, const QString& behind) {
  auto spoken = caption;
  spoken.remove('&').remove(':');
  return behind.isEmpty() ? spoken : spoken + ", " + behind;
}

QLabel& AddBuddy(const QString& caption, QWidget& window, QBoxLayout& row) {
  auto& label = Make<QLabel>(window, caption);
  label.setMinimumWidth(Digits(label, 20));
  row.addWidget(&label);
  return label;
}

}  // namespace

UnitDialogWindow::UnitDialogWindow(Form& form, Acts& acts)
    : DialogWindow(form, acts), ground_(&LayOut<QVBoxLayout>(*this, 12)) {
  ground_->setContentsMargins(20, 16, 20, 16);
  ground_->setSizeConstraint(QLayout::SetFixedSize);
}

QVBoxLayout& UnitDialogWindow::AddFrame(const QString& title) {
  return AddGroup(title, *this, *ground_);
}

QPushButton& UnitDialogWindow::AddPush(const std::string& name, QChar mnemonic, QBoxLayout& layout) {
  auto& button = AddButton(views_, views_(name), mnemonic, *this, layout);
  button.setAutoDefault(true);
  return button;
}

void UnitDialogWindow::AddSender(const std::string& name, QChar mnemonic, QBoxLayout& frame) {
  auto& button = AddPush(name, mnemonic, frame);
  const auto* group = frame.parentWidget();
  connect(qApp, &QApplication::focusChanged, &button, [group, &button](const QWidget*, QWidget* now) {
    const bool isField = now != nullptr && qobject_cast<QPushButton*>(now) == nullptr;
    if (isField && group->isAncestorOf(now)) button.setDefault(true);
  });
}

QPushButton& UnitDialogWindow::AddLeave(const std::string& name, QChar mnemonic) {
  auto& row = AddRow(*ground_, 8);
  row.addStretch();
  return AddPush(name, mnemonic, row);
}

QWidget& UnitDialogWindow::AddNumber(const QString& caption, const std::string& name, const QString& behind,
                                     QBoxLayout& frame) {
  auto& number = MakeNumber(views_, views_(name), 0, Always(Spoken(caption, behind)), *this);
  Line(caption, number, behind, frame);
  return number;
}

void UnitDialogWindow::AddFact(const QString& caption, const std::string& name, const QString& behind,
                               QBoxLayout& frame) {
  auto& fact = MakeFact(views_, views_(name), 0, Always(Spoken(caption, behind)), *this);
  fact.setAlignment(Qt::AlignRight);
  Line(caption, fact, behind, frame);
}

void UnitDialogWindow::Line(const QString& caption, QLineEdit& number, const QString& behind,
                            QBoxLayout& frame) {
  auto& row = AddRow(frame, 8);
  AddBuddy(caption, *this, row).setBuddy(&number);
  number.setFixedWidth(Digits(*this, 9));
  row.addWidget(&number);
  if (!behind.isEmpty()) AddCaption(behind, *this, row);
  row.addStretch();
}

QWidget& UnitDialogWindow::AddChoice(const QString& caption, const std::string& name, QBoxLayout& frame) {
  auto& row = AddRow(frame, 8);
  auto& label = AddBuddy(caption, *this, row);
  auto& box = Make<QComboBox>(*this);
  box.setMinimumWidth(Digits(box, 18));
  BindChoice(views_, views_(name), box, Always(Spoken(caption, {})));
  row.addWidget(&box, 1);
  label.setBuddy(&box);
  return box;
}

}  // namespace brelant
