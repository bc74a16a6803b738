// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QAbstractButton>
#include <QImage>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QStyleOptionFrame>
#include <vector>

#include <gtest/gtest.h>

namespace brelant::test {

/// What a photograph of a window is looked at for: that everything on it is drawn, that no text is cut off,
/// and that nothing lies on top of something else.

inline std::string CalledFor(const QWidget& widget) {
  const auto* label = qobject_cast<const QLabel*>(&widget);
  const auto text = label == nullptr ? widget.accessibleName() : label->text();
  return (widget.objectName() + " \"" + text + "\"").toStdString();
}

/// Texts, fields, buttons, and what is painted by the program itself: all that has nothing inside.
inline std::vector<const QWidget*> LeavesOf(const QWidget& window) {
  std::vector<const QWidget*> leaves;
  for (const auto* widget : window.findChildren<QWidget*>()) {
    if (!widget->isVisible() || widget->window() != &window) continue;
    const bool isText = qobject_cast<const QLabel*>(widget) != nullptr ||
                        qobject_cast<const QLineEdit*>(widget) != nullptr ||
                        qobject_cast<const QAbstractButton*>(widget) != nullptr;
    if (isText && !widget->objectName().startsWith("qt_")) leaves.push_back(widget);
  }
  return leaves;
}

inline QRect PlaceIn(const QWidget& window, const QWidget& widget) {
  return {widget.mapTo(&window, QPoint(0, 0)), widget.size()};
}

inline int TextWidth(const QWidget& widget, const QString& text) {
  return widget.fontMetrics().size(Qt::TextShowMnemonic, text).width();
}

inline void ExpectTextFits(const QWidget& widget) {
  if (const auto* label = qobject_cast<const QLabel*>(&widget)) {
    if (label->wordWrap()) return;
    EXPECT_LE(TextWidth(*label, label->text()), label->contentsRect().width()) << CalledFor(widget);
    EXPECT_LE(label->fontMetrics().tightBoundingRect(label->text()).height(), label->height())
        << CalledFor(widget);
  } else if (const auto* edit = qobject_cast<const QLineEdit*>(&widget)) {
    QStyleOptionFrame option;
    option.initFrom(edit);
    option.lineWidth = edit->hasFrame() ? 1 : 0;
    const auto inside = edit->style()->subElementRect(QStyle::SE_LineEditContents, &option, edit);
    // The field keeps a margin of two points on each side.
    EXPECT_LE(TextWidth(*edit, edit->text()), inside.width() - 4) << CalledFor(widget);
    EXPECT_LE(edit->fontMetrics().ascent(), edit->height()) << CalledFor(widget);
  } else if (const auto* button = qobject_cast<const QAbstractButton*>(&widget)) {
    if (const auto* push = qobject_cast<const QPushButton*>(button)) {
      EXPECT_LE(TextWidth(*push, push->text()) + 8, push->width()) << CalledFor(widget);
    } else if (!button->text().isEmpty()) {
      EXPECT_LE(button->sizeHint().width(), button->width()) << CalledFor(widget);
      EXPECT_LE(button->sizeHint().height(), button->height() + 1) << CalledFor(widget);
    }
  }
}

inline bool IsBlank(const QWidget& widget) {
  if (const auto* label = qobject_cast<const QLabel*>(&widget)) return label->text().trimmed().isEmpty();
  const auto* edit = qobject_cast<const QLineEdit*>(&widget);
  return edit != nullptr && edit->text().isEmpty() && !edit->hasFrame();
}

/// More than one colour in the middle of it.
inline bool IsDrawn(const QImage& picture, const QRect& place) {
  const auto first = picture.pixel(place.center());
  for (int y = place.top(); y <= place.bottom(); ++y) {
    for (int x = place.left(); x <= place.right(); ++x) {
      if (picture.pixel(x, y) != first) return true;
    }
  }
  return false;
}

inline void ExpectSeenWhole(QWidget& window) {
  const auto picture = window.grab().toImage();
  const auto leaves = LeavesOf(window);
  EXPECT_GT(leaves.size(), 3U);
  for (const auto* leaf : leaves) {
    const auto place = PlaceIn(window, *leaf);
    ASSERT_FALSE(place.isEmpty()) << CalledFor(*leaf);
    ASSERT_TRUE(window.rect().contains(place)) << CalledFor(*leaf) << " leaves the window";
    EXPECT_TRUE(leaf->parentWidget()->rect().contains(leaf->geometry())) << CalledFor(*leaf) << " is cut off";
    ExpectTextFits(*leaf);
    EXPECT_TRUE(IsBlank(*leaf) || IsDrawn(picture, place)) << CalledFor(*leaf) << " is not drawn";
    for (const auto* other : leaves) {
      if (other == leaf || other->isAncestorOf(leaf) || leaf->isAncestorOf(other)) continue;
      EXPECT_FALSE(place.intersects(PlaceIn(window, *other)))
          << CalledFor(*leaf) << " and " << CalledFor(*other);
    }
  }
}

}  // namespace brelant::test
