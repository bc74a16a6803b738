// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QBoxLayout>
#include <QFrame>

#include "desktop/kit/Views.h"

namespace brelant {

/// One live value as on an instrument's display: name, large number, unit. The whole tile has the colour of
/// its field, so that it is seen from afar when the number is being edited.
class LiveTile : public QFrame {
 public:
  struct Controls {
    Control& name;
    Control& value;
    /// Tells whether there is such a channel.
    Control& presence;
    /// The unit, which stands for a choice if it can be clicked; nullptr: `fixedUnit` is shown.
    Control* unit;
  };
  /// Of the number, as a multiple of the usual size.
  static constexpr double kUsualNumber = 3;

  LiveTile(Views& views, const Controls& controls, const QString& fixedUnit, double numberSize,
           QWidget* parent);

 protected:
  void paintEvent(QPaintEvent* event) override;

 private:
  void AddName(Views& views, QBoxLayout& layout);
  void AddValue(Views& views, QBoxLayout& layout, const QString& fixedUnit, double numberSize);
  QWidget& MakeUnit(Views& views, const QString& fixedUnit);
  QString Unit(const QString& fixedUnit) const;
  void TakeColour();
  void TakeEditable();

  Controls controls_;
  QWidget* value_ = nullptr;
  QColor back_;
  bool editable_ = false;
};

}  // namespace brelant
