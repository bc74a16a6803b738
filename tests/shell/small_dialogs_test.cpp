// SPDX-License-Identifier: GPL-3.0-or-later
#include <gtest/gtest.h>

#include "shell/frmSim.h"
#include "shell/frmSpanCalNote.h"
#include "support/virtual_machine.h"

namespace brelant {
namespace {

class SmallDialogsTest : public testing::Test {
 protected:
  test::VirtualMachine<test::ScriptedPort> machine;
  Session session;
  Screen screen;
  frmSim sim{session, screen};
  frmSpanCalNote note{session, screen};
};

TEST_F(SmallDialogsTest, SimHasItsTextsAndAnEmptyList) {
  EXPECT_EQ(sim.form.Name(), "frmSim");
  EXPECT_EQ(sim.form.Caption(), "Simulated mode");
  EXPECT_EQ(sim.Label1.Text(), "Type of sensor to simulate:");
  EXPECT_EQ(sim.Command1.Text(), "Next");
  EXPECT_EQ(sim.Command2.Text(), "Cancel");
  EXPECT_TRUE(sim.cmbTypeOfS.Items().empty());
}

TEST_F(SmallDialogsTest, SimNextHidesAndSaysNothing) {
  sim.form.Show();
  sim.form.Click(sim.Command1);
  EXPECT_FALSE(sim.form.Visible());
  EXPECT_EQ(session.LastError, "");
}

TEST_F(SmallDialogsTest, SimCancelHidesAndCancels) {
  sim.form.Show();
  sim.form.Click(sim.Command2);
  EXPECT_FALSE(sim.form.Visible());
  EXPECT_EQ(session.LastError, "Avbryt");
}

TEST_F(SmallDialogsTest, NoteHasItsTexts) {
  EXPECT_EQ(note.form.Name(), "frmSpanCalNote");
  EXPECT_EQ(note.form.Caption(), "Span cal note");
  EXPECT_EQ(note.Label1.Text(), "Note!");
  EXPECT_EQ(note.Label2.Text(),
            "The Span constant is given from the factory calibration  and  is not expected to vary with age. "
            "  If span calibration still is needed then it is recommended to perform a single point "
            "calibration first, then to use a well specified gas concentration to flow through the sensor "
            "with a flow of 0.3 l/min.");
  EXPECT_EQ(note.Command2.Text(), "Next");
  EXPECT_EQ(note.Command1.Text(), "Cancel");
}

TEST_F(SmallDialogsTest, NoteOpensWithTheFocusOnCancelAndWaits) {
  Control* focused = nullptr;
  bool modal = false;
  machine.pump.After(std::chrono::seconds(3), [&] {
    focused = note.form.Focused();
    modal = note.form.Modal();
    note.form.Click(note.Command2);
  });
  note.ShowModal(machine.pump);
  EXPECT_EQ(focused, &note.Command1);
  EXPECT_TRUE(modal);
  EXPECT_FALSE(note.form.Visible());
  EXPECT_EQ(session.LastError, "");
}

TEST_F(SmallDialogsTest, NoteNextLeavesAnErrorAsItWas) {
  session.LastError = "Ej klart";
  note.form.Show();
  note.form.Click(note.Command2);
  EXPECT_EQ(session.LastError, "Ej klart");
}

TEST_F(SmallDialogsTest, NoteCancelHidesAndCancels) {
  machine.pump.After(std::chrono::seconds(3), [&] { note.form.Click(note.Command1); });
  note.ShowModal(machine.pump);
  EXPECT_FALSE(note.form.Visible());
  EXPECT_EQ(session.LastError, "Avbryt");
}

TEST_F(SmallDialogsTest, NoteGivesWayWhenTheSessionEnds) {
  machine.pump.After(std::chrono::seconds(3), [&] { session.sessionOver = true; });
  note.ShowModal(machine.pump);
  EXPECT_FALSE(note.form.Visible());
}

}  // namespace
}  // namespace brelant
