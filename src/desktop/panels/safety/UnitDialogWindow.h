// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QBoxLayout>
#include <QLineEdit>
#include <QPushButton>
#include <QString>
#include <string>

#include "desktop/windows/DialogWindow.h"

namespace brelant {

/// A dialog over the safety panel: frames of fields, each with the button that sends them, and one button to
/// leave. Enter in a field presses the button of its frame.
class UnitDialogWindow : public DialogWindow {
 protected:
  UnitDialogWindow(Form& form, Acts& acts);

  QBoxLayout& Ground() { return *ground_; }
  /// A group of fields with a title.
  QVBoxLayout& AddFrame(const QString& title);
  /// A button that Enter presses while it has the focus.
  QPushButton& AddPush(const std::string& name, QChar mnemonic, QBoxLayout& layout);
  /// The one that Enter presses from any field of the frame as well.
  void AddSender(const std::string& name, QChar mnemonic, QBoxLayout& frame);
  /// The last row.
  QPushButton& AddLeave(const std::string& name, QChar mnemonic);

  /// A row of a frame: a caption with an underlined letter, a field or choice behind it, and what follows.
  QWidget& AddNumber(const QString& caption, const std::string& name, const QString& behind,
                     QBoxLayout& frame);
  /// The same of a number that is only told.
  void AddFact(const QString& caption, const std::string& name, const QString& behind, QBoxLayout& frame);
  QWidget& AddChoice(const QString& caption, const std::string& name, QBoxLayout& frame);

  /// What has the focus at first.
  void StartAt(QWidget& field) { first_ = &field; }
  QWidget* PreferredFocus() override { return first_; }

 private:
  /// A row of a caption, a number and what stands behind it.
  void Line(const QString& caption, QLineEdit& number, const QString& behind, QBoxLayout& frame);

  QBoxLayout* ground_;
  QWidget* first_ = nullptr;
};

}  // namespace brelant
