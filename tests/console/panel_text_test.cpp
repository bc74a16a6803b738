// SPDX-License-Identifier: GPL-3.0-or-later
#include "console/panel_text.h"

#include <gtest/gtest.h>

#include "fake_panel.h"

namespace brelant {
namespace {

TEST(PanelTextTest, IsAligned) {
  Screen screen;
  test::FakePanel panel(screen);
  panel.values = {{"TEMP", "21.5", "C"}, {"M\xc3\xa4tv\xc3\xa4rde", "412", "ppm"}};
  panel.alarms = {{"A1", "ALARM"}};
  auto fields = panel.form.AddArray(ControlKind::text, "txbFa", 2);
  fields[0].SetText("400");
  fields[1].SetText("5");
  panel.form.Add(ControlKind::text, "txbHidden", "x").SetVisible(false);
  panel.form.Add(ControlKind::label, "lblUnit", "C");
  panel.form.Add(ControlKind::label, "lblEmpty", "");
  panel.form.AddIndexed(ControlKind::label, "Label1", 42, "Base line");
  panel.form.Add(ControlKind::option, "opt", "Digital").SetValue(1);
  EXPECT_EQ(PanelText(panel),
            "BRELANT\n"
            "\n"
            "Live values\n"
            "  TEMP      21.5  C\n"
            "  M\xc3\xa4tv\xc3\xa4rde  412   ppm\n"
            "\n"
            "Alarms\n"
            "  A1  ALARM\n"
            "\n"
            "Fields\n"
            "  cbxSimulated  [ ]\n"
            "  txbFa         400          5\n"
            "  lblUnit       C\n"
            "  opt           [x] Digital\n");
}

TEST(PanelTextTest, LeavesOutWhatThereIsNot) {
  Screen screen;
  test::FakePanel panel(screen);
  panel.cbxSimulated.SetVisible(false);
  EXPECT_EQ(PanelText(panel), "BRELANT\n");
}

}  // namespace
}  // namespace brelant
