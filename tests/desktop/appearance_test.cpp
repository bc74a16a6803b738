// SPDX-License-Identifier: GPL-3.0-or-later
#include "desktop/Appearance.h"

#include <QApplication>
#include <QCheckBox>
#include <QComboBox>
#include <QDialog>
#include <QStyle>
#include <QVBoxLayout>
#include <cmath>
#include <vector>

#include <gtest/gtest.h>

#include "desktop/kit/make.h"
#include "desktop/kit/text.h"
#include "panels/PanelFrame.h"

namespace brelant::test {
namespace {

// The contrast rule for accessible pages, written down once more.
double Luminance(const QColor& colour) {
  const auto linear = [](int part) {
    const double value = part / 255.0;
    return value <= 0.03928 ? value / 12.92 : std::pow((value + 0.055) / 1.055, 2.4);
  };
  return 0.2126 * linear(colour.red()) + 0.7152 * linear(colour.green()) + 0.0722 * linear(colour.blue());
}

double Contrast(const QColor& a, const QColor& b) {
  const double lighter = std::max(Luminance(a), Luminance(b));
  const double darker = std::min(Luminance(a), Luminance(b));
  return (lighter + 0.05) / (darker + 0.05);
}

constexpr double kText = 4.5;
constexpr double kLargeText = 3;

class AppearanceTest : public testing::TestWithParam<Style> {
 protected:
  AppearanceTest() { ApplyStyle(*qApp, GetParam()); }
  ~AppearanceTest() override { ApplyStyle(*qApp, Style::light); }
};

TEST_P(AppearanceTest, TextIsReadableOnEveryGround) {
  const auto palette = QApplication::palette();
  const auto at = [&](QPalette::ColorRole role) { return palette.color(QPalette::Active, role); };
  EXPECT_GE(Contrast(at(QPalette::WindowText), at(QPalette::Window)), kText);
  EXPECT_GE(Contrast(at(QPalette::WindowText), InkOf(palette).card), kText);
  EXPECT_GE(Contrast(at(QPalette::Text), at(QPalette::Base)), kText);
  EXPECT_GE(Contrast(at(QPalette::Text), at(QPalette::AlternateBase)), kText);
  EXPECT_GE(Contrast(at(QPalette::ButtonText), at(QPalette::Button)), kText);
  EXPECT_GE(Contrast(at(QPalette::ToolTipText), at(QPalette::ToolTipBase)), kText);
  EXPECT_GE(Contrast(at(QPalette::PlaceholderText), at(QPalette::Base)), kText);
  EXPECT_GE(Contrast(at(QPalette::HighlightedText), at(QPalette::Highlight)), kText);
}

TEST_P(AppearanceTest, WhatIsDrawnStandsOutFromItsGround) {
  const auto palette = QApplication::palette();
  const auto ink = InkOf(palette);
  const auto window = palette.color(QPalette::Window);
  std::vector<QColor> colours(ink.output.begin(), ink.output.end());
  colours.push_back(ink.wire);
  for (const auto& colour : colours) {
    EXPECT_GE(Contrast(colour, window), kLargeText);
    EXPECT_GE(Contrast(colour, ink.card), kLargeText);
  }
  EXPECT_GE(Contrast(palette.color(QPalette::Mid), window), kLargeText) << "the edge of a field";
  EXPECT_GE(Contrast(ink.running, palette.color(QPalette::Base)), kLargeText);
}

TEST_P(AppearanceTest, TheSystemsColourOfAButtonIsThePalettes) {
  EXPECT_EQ(ToQColor(static_cast<Colour>(0x8000000FU)), QApplication::palette().color(QPalette::Button));
  EXPECT_EQ(ToQColor(32768), QColor(0, 128, 0));
  EXPECT_FALSE(ToQColor(kStyleColour).isValid());
}

TEST_P(AppearanceTest, ATickIsAsHighAsALargeText) {
  QCheckBox usual;
  const auto height = [](const QCheckBox& box) {
    return box.style()->pixelMetric(QStyle::PM_IndicatorHeight, nullptr, &box);
  };
  EXPECT_GE(height(usual), usual.fontMetrics().height());
  QCheckBox large;
  ScaleFont(large, 2);
  EXPECT_EQ(height(large), large.fontMetrics().height());
  EXPECT_GT(height(large), height(usual) * 3 / 2);
}

TEST_P(AppearanceTest, TheChoiceInFocusHasAnEdgeOfItsOwn) {
  QDialog window;
  auto& layout = LayOut<QVBoxLayout>(window, 4);
  auto& first = Make<QComboBox>(window);
  auto& second = Make<QComboBox>(window);
  layout.addWidget(&first);
  layout.addWidget(&second);
  window.show();
  window.activateWindow();
  QApplication::processEvents();
  const auto edge = [](QComboBox& box) {
    const auto image = box.grab().toImage();
    return image.pixelColor(image.width() / 2, 0);
  };
  const auto highlight = QApplication::palette().color(QPalette::Highlight);
  first.setFocus();
  EXPECT_EQ(edge(first), highlight);
  EXPECT_NE(edge(second), highlight);
  second.setFocus();
  EXPECT_NE(edge(first), highlight);
  EXPECT_EQ(edge(second), highlight);
}

TEST_P(AppearanceTest, IsLightOrDarkAsTold) {
  EXPECT_EQ(QApplication::palette().color(QPalette::Window).lightness() < 128, GetParam() == Style::dark);
}

TEST_P(AppearanceTest, TheMachinesOwnIsTakenForWhatItIs) {
  ApplyStyle(*qApp, Style::system);
  EXPECT_EQ(QApplication::palette().color(QPalette::Window).lightness() < 128, GetParam() == Style::dark);
}

INSTANTIATE_TEST_SUITE_P(Styles, AppearanceTest, testing::Values(Style::light, Style::dark));

TEST(InkTest, IsTheOneThatIsReadBetter) {
  EXPECT_EQ(InkOn(Qt::white), QColor(Qt::black));
  EXPECT_EQ(InkOn(Qt::black), QColor(Qt::white));
  EXPECT_EQ(InkOn(QColor(255, 255, 0)), QColor(Qt::black));
  EXPECT_EQ(InkOn(ToQColor(colours::kFieldBack)), QColor(Qt::white));
  EXPECT_GE(Contrast(InkOn(ToQColor(colours::kFieldBack)), ToQColor(colours::kFieldBack)), kText);
}

TEST(InkTest, FieldsAreReadableAndLiveValuesWhereTheyAreLarge) {
  EXPECT_GE(Contrast(ToQColor(colours::kFieldText), ToQColor(colours::kFieldBack)), kText);
  EXPECT_GE(Contrast(ToQColor(colours::kLive), ToQColor(colours::kFieldBack)), kLargeText);
}

TEST(InkTest, LampsAreReadable) {
  for (const auto colour : {colours::kFault, colours::kLive}) {
    EXPECT_GE(Contrast(InkOn(ToQColor(colour)), ToQColor(colour)), kText);
  }
}

TEST(MnemonicTest, UnderlinesTheFirstSuchLetter) {
  EXPECT_EQ(WithMnemonic("Send to sensor", 'd'), "Sen&d to sensor");
  EXPECT_EQ(WithMnemonic("Start", 'T'), "S&tart");
  EXPECT_EQ(WithMnemonic("...", 'x'), "...");
  EXPECT_EQ(WithMnemonic("Start", {}), "Start");
  EXPECT_EQ(WithMnemonic("R&D", 'd'), "R&&&D");
}

}  // namespace
}  // namespace brelant::test
