// SPDX-License-Identifier: GPL-3.0-or-later
#include "desktop/Appearance.h"

#include <QPainter>
#include <QProxyStyle>
#include <QStyleOption>
#include <algorithm>
#include <memory>

namespace brelant {

namespace {

constexpr int kMiddle = 128;

bool IsDark(const QPalette& palette) {
  return palette.color(QPalette::Window).lightness() < kMiddle;
}

/// The few colours that a palette is made of.
struct Tones {
  QColor window, base, alternate, button, text, dimmed, disabled, edge, highlight, highlightedText, link;
};

Tones LightTones() {
  return {"#eef1f4", "#ffffff", "#e4e9ee", "#f7f9fb", "#14191f", "#4a5561",
          "#848e99", "#7d8995", "#1f66ad", "#ffffff", "#1f66ad"};
}

Tones DarkTones() {
  return {"#1e2328", "#15191d", "#2a3037", "#2f363d", "#e8ecf0", "#a8b3be",
          "#78838e", "#6b7783", "#2f74b8", "#ffffff", "#6db3f2"};
}

/// Fields, boxes and circles with an edge that is seen on dark grounds too, and the latter large enough for a
/// hand in a glove: as high as their text, where that is large.
class InstrumentStyle : public QProxyStyle {
 public:
  InstrumentStyle() : QProxyStyle("Fusion") {}

  int pixelMetric(PixelMetric metric, const QStyleOption* option, const QWidget* widget) const override {
    const int size = QProxyStyle::pixelMetric(metric, option, widget);
    const bool isIndicator = metric == PM_IndicatorWidth || metric == PM_IndicatorHeight ||
                             metric == PM_ExclusiveIndicatorWidth || metric == PM_ExclusiveIndicatorHeight;
    if (!isIndicator) return size;
    return std::max(size * 5 / 4, widget == nullptr ? 0 : widget->fontMetrics().height());
  }

  int styleHint(StyleHint hint, const QStyleOption* option, const QWidget* widget,
                QStyleHintReturn* data) const override {
    if (hint == SH_DialogButtonBox_ButtonsHaveIcons) return 0;
    return QProxyStyle::styleHint(hint, option, widget, data);
  }

  void drawPrimitive(PrimitiveElement element, const QStyleOption* option, QPainter* painter,
                     const QWidget* widget) const override {
    QProxyStyle::drawPrimitive(element, option, painter, widget);
    const auto wire = InkOf(option->palette).wire;
    if (element == PE_IndicatorCheckBox) DrawEdge(*option, *painter, wire, kCorner);
    if (element == PE_IndicatorRadioButton) DrawEdge(*option, *painter, wire, option->rect.width() / 2.0);
    if (element == PE_FrameLineEdit) DrawFieldEdge(*option, *painter);
  }

  void drawComplexControl(ComplexControl control, const QStyleOptionComplex* option, QPainter* painter,
                          const QWidget* widget) const override {
    QProxyStyle::drawComplexControl(control, option, painter, widget);
    if (control != CC_ComboBox) return;
    DrawFieldEdge(*option, *painter);
    // Without this the choice in focus would be told by nothing but a fainter edge.
    const bool hasFocus = (option->state & State_HasFocus) != 0;
    if (hasFocus) DrawEdge(*option, *painter, option->palette.color(QPalette::Highlight), kCorner);
  }

 private:
  static constexpr double kCorner = 2;

  /// The focus has an edge of its own.
  static void DrawFieldEdge(const QStyleOption& option, QPainter& painter) {
    if ((option.state & State_HasFocus) != 0) return;
    DrawEdge(option, painter, option.palette.color(QPalette::Mid), kCorner);
  }

  static void DrawEdge(const QStyleOption& option, QPainter& painter, const QColor& colour, double corner) {
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setBrush(Qt::NoBrush);
    painter.setPen(QPen(colour, 1));
    painter.drawRoundedRect(QRectF(option.rect).adjusted(0.5, 0.5, -0.5, -0.5), corner, corner);
    painter.restore();
  }
};

QPalette PaletteOf(const Tones& tones) {
  QPalette palette(tones.button, tones.window);
  palette.setColor(QPalette::Window, tones.window);
  palette.setColor(QPalette::Base, tones.base);
  palette.setColor(QPalette::AlternateBase, tones.alternate);
  palette.setColor(QPalette::Button, tones.button);
  palette.setColor(QPalette::Mid, tones.edge);
  palette.setColor(QPalette::Highlight, tones.highlight);
  palette.setColor(QPalette::HighlightedText, tones.highlightedText);
  palette.setColor(QPalette::Link, tones.link);
  palette.setColor(QPalette::ToolTipBase, tones.base);
  palette.setColor(QPalette::PlaceholderText, tones.dimmed);
  for (const auto role :
       {QPalette::WindowText, QPalette::Text, QPalette::ButtonText, QPalette::ToolTipText}) {
    palette.setColor(role, tones.text);
    palette.setColor(QPalette::Disabled, role, tones.disabled);
  }
  return palette;
}

}  // namespace

void ApplyStyle(QApplication& application, Style style) {
  const bool isDark = style == Style::dark || (style == Style::system && IsDark(QApplication::palette()));
  auto instrument = std::make_unique<InstrumentStyle>();
  instrument->setParent(&application);
  QApplication::setStyle(instrument.release());
  application.setPalette(PaletteOf(isDark ? DarkTones() : LightTones()));
}

Ink InkOf(const QPalette& palette) {
  if (IsDark(palette)) {
    return {"#aab7c4",
            "#3a434c",
            "#272d33",
            "#4d5863",
            QColor(109, 179, 242, 70),
            "#4ade80",
            {"#58aaf0", "#f0a047", "#3fc79a", "#e58acb"}};
  }
  return {"#5b6875",
          "#ccd4dc",
          "#fbfcfd",
          "#b7c1cb",
          QColor(31, 102, 173, 50),
          "#15803d",
          {"#1f66ad", "#b45309", "#0b7a5e", "#a03386"}};
}

}  // namespace brelant
