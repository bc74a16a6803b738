// SPDX-License-Identifier: GPL-3.0-or-later
#include <QAbstractButton>
#include <QApplication>
#include <QLineEdit>

#include <gtest/gtest.h>

#include "desk.h"
#include "desktop/Appearance.h"

namespace brelant::test {
namespace {

class SimulatedPanel5Test : public testing::Test {
 protected:
  SimulatedPanel5Test() { desk.StartSimulation(); }

  void OnPanel(Desk::Step step) { desk.OnPanel(std::move(step)); }
  QWidget& Widget(const QString& name) const { return desk.Panel(name); }
  QString Text(const QString& name) const { return desk.Panel<QLineEdit>(name).text(); }
  void Edit(const QString& field, const QString& text) {
    OnPanel([this, field, text] {
      Type(Widget(field), text);
      PressKey(Widget(field), Qt::Key_Return);
    });
  }
  /// Pixels of the running trigger's bar.
  int BarLength(const QString& picture) const {
    const auto image = Widget(picture).grab().toImage();
    const auto colour = InkOf(QApplication::palette()).running;
    int longest = 0;
    for (int y = 0; y < image.height(); ++y) {
      int count = 0;
      for (int x = 0; x < image.width(); ++x) count += image.pixelColor(x, y) == colour ? 1 : 0;
      longest = std::max(longest, count);
    }
    return longest;
  }

  Desk desk;
};

TEST_F(SimulatedPanel5Test, SaysSo) {
  OnPanel([this] {
    EXPECT_EQ(FindWindow("frm5")->windowTitle(), "BRELANT Simulated mode");
    EXPECT_FALSE(Widget("cbxSimulated").isVisible()) << "there is no sensor to go back to";
    EXPECT_FALSE(Widget("btnReadFromSensor").isEnabled());
    EXPECT_FALSE(Widget("btnSendToSensor").isEnabled());
    EXPECT_TRUE(Widget("btnDigTrig").isVisible());
    EXPECT_EQ(Widget("txbCHact(0)").palette().color(QPalette::Text), QColor(255, 255, 0));
    EXPECT_FALSE(desk.Panel<QLineEdit>("txbCHact(0)").isReadOnly());
  });
  desk.Run();
}

TEST_F(SimulatedPanel5Test, OutputsFollowWhatIsTyped) {
  // The shift button adds 500 ppm: 500 + 500 lies half way between 800 and 1200.
  Edit("txbCHact(1)", "500");
  OnPanel([this] {
    EXPECT_EQ(Text("txbOutOut(0)"), "50");
    EXPECT_EQ(Text("txbCHact(1)"), "500");
  });
  Edit("txbFb(0)", "1000");
  OnPanel([this] { EXPECT_EQ(Text("txbOutOut(0)"), "100"); });
  OnPanel([this] { Press(Widget("cbxFout1(0)")); });
  OnPanel([this] { EXPECT_EQ(Text("txbOutOut(0)"), "0"); });
  desk.Run();
}

TEST_F(SimulatedPanel5Test, ATileIsWhiteWhileItsValueIsTyped) {
  OnPanel([this] { Type(Widget("txbCHact(1)"), "5"); });
  OnPanel([this] {
    const auto& field = Widget("txbCHact(1)");
    EXPECT_EQ(field.palette().color(QPalette::Base), QColor(Qt::white));
    auto& tile = *field.parentWidget();
    EXPECT_EQ(tile.grab().toImage().pixelColor(tile.width() / 2, 4), QColor(Qt::white));
  });
  desk.Run();
}

TEST_F(SimulatedPanel5Test, TheTimeBarGrowsWhileTheTriggerRuns) {
  int first = 0;
  OnPanel([this] {
    EXPECT_EQ(BarLength("pctDigTPsign"), 0);
    Press(Widget("cbxDigTout1"));
    Press(Widget("btnDigTrig"));
  });
  desk.When([this] { return desk.program.screen.Find("frm5")->Find("linDigTPsign")->Value() >= 30; },
            [&] { first = BarLength("pctDigTPsign"); });
  desk.When([this] { return desk.program.screen.Find("frm5")->Find("linDigTPsign")->Value() >= 60; },
            [&] {
              EXPECT_GT(first, 0);
              EXPECT_NEAR(BarLength("pctDigTPsign"), 2 * first, 6);
              EXPECT_EQ(Text("txbOutOut(0)"), "29");
            });
  desk.When([this] { return !desk.program.screen.Find("frm5")->Find("linDigTPsign")->Visible(); }, [] {});
  OnPanel([this] {
    EXPECT_EQ(BarLength("pctDigTPsign"), 0);
    EXPECT_EQ(Text("txbOutOut(0)"), "0");
  });
  desk.Run();
}

TEST_F(SimulatedPanel5Test, LivesOnceMoreWithADifferentSensor) {
  OnPanel([] { FindWindow("frm5")->close(); });
  desk.StartSession();
  OnPanel([this] {
    EXPECT_EQ(FindWindow("frm5")->windowTitle(), "BRELANT");
    EXPECT_TRUE(Widget("cbxSimulated").isVisible());
    EXPECT_FALSE(Widget("btnDigTrig").isVisible());
    Press(Widget("cbxSimulated"));
  });
  OnPanel([this] {
    EXPECT_TRUE(Widget("btnDigTrig").isVisible());
    EXPECT_FALSE(desk.Panel<QLineEdit>("txbCHact(0)").isReadOnly());
    Press(Widget("cbxSimulated"));
  });
  desk.When([this] { return desk.program.session.polls > 1; }, [] {});
  OnPanel([this] {
    EXPECT_TRUE(desk.Panel<QLineEdit>("txbCHact(0)").isReadOnly());
    EXPECT_EQ(FindWindow("MessageBox"), nullptr);
  });
  desk.Run();
}

}  // namespace
}  // namespace brelant::test
