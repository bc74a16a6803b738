// SPDX-License-Identifier: GPL-3.0-or-later
#include <utility>
#include <vector>

#include "panels/panel_fixture.h"

namespace brelant {
namespace {

using test::Click;
using test::Frm5Test;
using test::kGreen;
using test::kYellow;

class SimulatedModeTest : public Frm5Test {
 protected:
  void ExpectMode(bool simulated) {
    EXPECT_EQ(panel.cbxSimulated.Value(), simulated ? 1 : 0);
    for (const auto* field : panel.txbCHact) EXPECT_EQ(field->Fore(), simulated ? kYellow : kGreen);
    for (const auto* control : {&panel.mReadfromsensor, &panel.mSendtosensor, &panel.mCalibrate,
                                &panel.mTWAreset, &panel.btnReadFromSensor, &panel.btnSendToSensor}) {
      EXPECT_EQ(control->Enabled(), !simulated) << control->Name();
    }
    EXPECT_EQ(panel.form.Caption(), simulated ? "KVX3.0 Simulated mode" : "KVX3.0");
    EXPECT_EQ(panel.trigger.btnDigTrig.Visible(), simulated);
  }
};

TEST_F(SimulatedModeTest, OnAndOff) {
  panel.SimMode(true);
  ExpectMode(true);
  panel.SimMode(false);
  ExpectMode(false);
  panel.SimMode(true);
  ExpectMode(true);
}

TEST_F(SimulatedModeTest, OnLeavesTheErrorAndOffSilencesIt) {
  ground.session.LastError = "trouble";
  panel.SimMode(true);
  EXPECT_EQ(ground.session.LastError, "trouble");
  panel.SimMode(false);
  EXPECT_EQ(ground.session.LastError, "Avbryt");
  ground.session.LastError.clear();
  panel.SimMode(true);
  EXPECT_EQ(ground.session.LastError, "");
}

TEST_F(SimulatedModeTest, TheCheckBoxSwitchesTheMode) {
  panel.SimMode(false);
  EXPECT_TRUE(Click(panel.cbxSimulated));
  ExpectMode(true);
  EXPECT_TRUE(Click(panel.cbxSimulated));
  ExpectMode(false);
  EXPECT_EQ(ground.session.LastError, "Avbryt");
}

TEST_F(SimulatedModeTest, CommandsOfTheSensorCannotBeGiven) {
  panel.SimMode(true);
  for (auto* control : {&panel.mReadfromsensor, &panel.mSendtosensor, &panel.mTWAreset,
                        &panel.btnReadFromSensor, &panel.btnSendToSensor}) {
    EXPECT_FALSE(Click(*control)) << control->Name();
  }
  EXPECT_EQ(ground.session.PanelCommand, 0);
}

TEST_F(SimulatedModeTest, NorCanThoseUnderADisabledMenu) {
  // They are enabled themselves, the menu over them or over that one is not.
  std::vector<Control*> entries;
  for (const char* name : {"CalTemp", "mCalCO2span", "mCalCO2Zero", "mCalCO2Background", "mCalCO2Other"}) {
    entries.push_back(panel.form.Find(name));
  }
  panel.SimMode(true);
  for (auto* entry : entries) {
    EXPECT_TRUE(entry->Enabled()) << entry->Name();
    EXPECT_FALSE(Click(*entry)) << entry->Name();
    EXPECT_EQ(ground.session.PanelCommand, 0) << entry->Name();
  }
  panel.SimMode(false);
  for (auto* entry : entries) {
    EXPECT_TRUE(Click(*entry)) << entry->Name();
    EXPECT_NE(std::exchange(ground.session.PanelCommand, 0), 0) << entry->Name();
  }
}

TEST_F(SimulatedModeTest, TheImageStaysAsItWas) {
  panel.SimMode(true);
  panel.SimMode(false);
  EXPECT_EQ(WholeRam(), test::SampleRam());
}

}  // namespace
}  // namespace brelant
