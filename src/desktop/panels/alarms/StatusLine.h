// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QBoxLayout>
#include <QFrame>
#include <QLabel>

#include "desktop/kit/Views.h"

namespace brelant::alarms {

/// A state in words, in the colour that the form tells, on a ground on which each of them is read. Where the
/// form has a rule for it, a click gives it the focus.
class StatusLine : public QFrame {
 public:
  struct Controls {
    /// What it is the state of; nullptr: `fixedName` is shown.
    Control* name;
    Control& state;
  };

  /// `lines`: room for so many, so that the window keeps its size when the text becomes long.
  StatusLine(Views& views, const Controls& controls, const QString& fixedName, int lines, QWidget* parent);

 protected:
  void paintEvent(QPaintEvent* event) override;

 private:
  QLabel& AddName(Views& views, const QString& fixedName, QBoxLayout& layout);
  void AddState(Views& views, const QLabel& name, int lines, QBoxLayout& layout);
  void AddField(Views& views, const QLabel& name, QBoxLayout& layout);

  Controls controls_;
};

}  // namespace brelant::alarms
