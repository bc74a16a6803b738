// SPDX-License-Identifier: GPL-3.0-or-later
#include "shell/frmComSet.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "support/virtual_machine.h"

namespace brelant {
namespace {

using test::ScriptedPort;
using testing::ElementsAre;

class frmComSetTest : public testing::Test {
 protected:
  void Store(const std::string& key, const std::string& value) {
    machine.store.values["BRELANT/Start/" + key] = value;
  }
  frmComSet Load() { return frmComSet(session, machine.machine, screen); }
  static int Selected(const ControlArray& options) {
    for (int i = 0; i < options.Count(); ++i) {
      if (options[i].Value() == 1) return i;
    }
    return -1;
  }

  test::VirtualMachine<ScriptedPort> machine;
  Session session;
  Screen screen;
};

TEST_F(frmComSetTest, HasItsTexts) {
  auto dialog = Load();
  EXPECT_EQ(dialog.form.Name(), "frmComSet");
  EXPECT_EQ(dialog.form.Caption(), "Communication setup");
  EXPECT_EQ(dialog.Label1.Text(), "Brelant Safety System");
  EXPECT_EQ(dialog.Label2.Text(), "Version 2.1.0");
  EXPECT_EQ(dialog.optComProt[0].Text(), "KiBus");
  EXPECT_EQ(dialog.optComProt[1].Text(), "ModBus");
  EXPECT_EQ(dialog.cbxLoggcom.Text(), "Logg communication");
  EXPECT_EQ(dialog.cbxDontShow.Text(), "Don't show this dialog in the future");
  EXPECT_EQ(dialog.Command5.Text(), "...");
  EXPECT_EQ(dialog.cmdSendFile.Text(), "Send file to sensor");
  EXPECT_EQ(dialog.btnHelp.Text(), "Help");
}

TEST_F(frmComSetTest, FindsItsControlsByName) {
  auto dialog = Load();
  for (const char* name : {"txbComPort", "optStartMode(0)", "optStartMode(1)", "optStartMode(2)", "lblID",
                           "txbID", "optComProt(0)", "optComProt(1)", "cbxLoggcom", "cbxDontShow",
                           "txbFileName", "Command5", "cmdSendFile", "btnHelp", "btnStartKVX", "btnExit"}) {
    EXPECT_NE(dialog.form.Find(name), nullptr) << name;
  }
}

TEST_F(frmComSetTest, FirstStartWithAnEmptyStore) {
  auto dialog = Load();
  EXPECT_EQ(dialog.txbComPort.Text(), "1");
  EXPECT_EQ(Selected(dialog.optStartMode), -1);
  EXPECT_EQ(dialog.txbID.Text(), "");
  EXPECT_EQ(dialog.cbxDontShow.Value(), 0);
  EXPECT_EQ(Selected(dialog.optComProt), 0);
  EXPECT_FALSE(dialog.txbID.Visible());
  EXPECT_FALSE(dialog.lblID.Visible());
}

TEST_F(frmComSetTest, ReadsTheKeysInOrderWithTheProtocolLast) {
  auto dialog = Load();
  EXPECT_THAT(machine.store.reads,
              ElementsAre("BRELANT/Start/Com", "BRELANT/Start/StartMode0", "BRELANT/Start/StartMode1",
                          "BRELANT/Start/StartMode2", "BRELANT/Start/ID", "BRELANT/Start/Dont",
                          "BRELANT/Start/Prot"));
}

TEST_F(frmComSetTest, TakesWhatIsStored) {
  Store("Com", "/dev/ttyUSB3");
  Store("StartMode0", "False");
  Store("StartMode1", "True");
  Store("StartMode2", "False");
  Store("ID", "17");
  Store("Dont", "1");
  Store("Prot", "ModBus");
  auto dialog = Load();
  EXPECT_EQ(dialog.txbComPort.Text(), "/dev/ttyUSB3");
  EXPECT_EQ(Selected(dialog.optStartMode), 1);
  EXPECT_EQ(dialog.txbID.Text(), "17");
  EXPECT_EQ(dialog.cbxDontShow.Value(), 1);
  EXPECT_EQ(Selected(dialog.optComProt), 1);
  EXPECT_TRUE(dialog.txbID.Visible());
  EXPECT_TRUE(dialog.lblID.Visible());
}

TEST_F(frmComSetTest, OnlyTheExactWordsSelect) {
  Store("StartMode1", "true");
  Store("Dont", "True");
  Store("Prot", "modbus");
  auto dialog = Load();
  EXPECT_EQ(Selected(dialog.optStartMode), -1);
  EXPECT_EQ(dialog.cbxDontShow.Value(), 0);
  EXPECT_EQ(Selected(dialog.optComProt), 0);
}

TEST_F(frmComSetTest, SimulatedModeIsNotRemembered) {
  Store("StartMode0", "False");
  Store("StartMode2", "True");
  auto dialog = Load();
  EXPECT_EQ(Selected(dialog.optStartMode), 0);
  EXPECT_EQ(dialog.optStartMode[2].Value(), 0);
}

TEST_F(frmComSetTest, TheIdShowsWithTheNetworkSensorOnly) {
  auto dialog = Load();
  dialog.form.Show();
  dialog.form.Click(dialog.optStartMode[1]);
  EXPECT_TRUE(dialog.txbID.Visible());
  EXPECT_TRUE(dialog.lblID.Visible());
  dialog.form.Click(dialog.optStartMode[2]);
  EXPECT_FALSE(dialog.txbID.Visible());
  EXPECT_FALSE(dialog.lblID.Visible());
  EXPECT_EQ(Selected(dialog.optStartMode), 2);
  dialog.form.Click(dialog.optStartMode[1]);
  dialog.form.Click(dialog.optStartMode[0]);
  EXPECT_FALSE(dialog.txbID.Visible());
}

TEST_F(frmComSetTest, StartWritesEverythingInOrderAndHides) {
  auto dialog = Load();
  dialog.form.Show();
  dialog.form.ChangeText(dialog.txbComPort, "4");
  dialog.form.Click(dialog.optStartMode[1]);
  dialog.form.ChangeText(dialog.txbID, "12");
  dialog.form.Click(dialog.optComProt[1]);
  dialog.form.Click(dialog.btnStartKVX);
  EXPECT_THAT(machine.store.writes,
              ElementsAre("BRELANT/Start/Com=4", "BRELANT/Start/StartMode0=False",
                          "BRELANT/Start/StartMode1=True", "BRELANT/Start/StartMode2=False",
                          "BRELANT/Start/ID=12", "BRELANT/Start/Dont=0", "BRELANT/Start/Prot=ModBus"));
  EXPECT_FALSE(dialog.form.Visible());
  EXPECT_FALSE(session.processOver);
}

TEST_F(frmComSetTest, StartWritesTheOtherProtocol) {
  Store("Prot", "ModBus");
  auto dialog = Load();
  dialog.form.Show();
  dialog.form.Click(dialog.optComProt[0]);
  dialog.form.Click(dialog.btnStartKVX);
  EXPECT_EQ(machine.store.writes.back(), "BRELANT/Start/Prot=KiBus");
}

TEST_F(frmComSetTest, StartWithNoProtocolSelectedWritesKiBus) {
  auto dialog = Load();
  dialog.form.Show();
  dialog.optComProt[0].SetValue(0);
  dialog.optComProt[1].SetValue(0);
  dialog.form.Click(dialog.btnStartKVX);
  EXPECT_EQ(machine.store.writes.back(), "BRELANT/Start/Prot=KiBus");
}

TEST_F(frmComSetTest, SimulatedModeIsWrittenAllTheSame) {
  auto dialog = Load();
  dialog.form.Show();
  dialog.form.Click(dialog.optStartMode[2]);
  dialog.form.Click(dialog.btnStartKVX);
  EXPECT_EQ(machine.store.values["BRELANT/Start/StartMode2"], "True");
}

TEST_F(frmComSetTest, ExitLosesAChangeOfTheProtocol) {
  Store("Prot", "KiBus");
  auto dialog = Load();
  dialog.form.Show();
  dialog.form.Click(dialog.optComProt[1]);
  dialog.form.Click(dialog.btnExit);
  EXPECT_THAT(
      machine.store.writes,
      ElementsAre("BRELANT/Start/Com=1", "BRELANT/Start/StartMode0=False", "BRELANT/Start/StartMode1=False",
                  "BRELANT/Start/StartMode2=False", "BRELANT/Start/ID=", "BRELANT/Start/Dont=0"));
  EXPECT_EQ(machine.store.values["BRELANT/Start/Prot"], "KiBus");
  EXPECT_TRUE(session.processOver);
  EXPECT_FALSE(dialog.form.Visible());
}

TEST_F(frmComSetTest, ExitKeepsTheTickOfDontShow) {
  auto dialog = Load();
  dialog.form.Show();
  dialog.form.Click(dialog.cbxDontShow);
  dialog.form.Click(dialog.btnExit);
  EXPECT_EQ(machine.store.values["BRELANT/Start/Dont"], "1");
  auto next = Load();
  EXPECT_EQ(next.cbxDontShow.Value(), 1);
}

TEST_F(frmComSetTest, ClosingIsLeaving) {
  auto dialog = Load();
  dialog.form.Show();
  dialog.form.Close();
  ASSERT_EQ(machine.store.writes.size(), 6U);
  EXPECT_EQ(machine.store.writes.back(), "BRELANT/Start/Dont=0");
  EXPECT_TRUE(session.processOver);
}

TEST_F(frmComSetTest, TheLogStaysOnOnceTicked) {
  auto dialog = Load();
  dialog.form.Show();
  EXPECT_FALSE(session.TrafficLogOn);
  dialog.form.Click(dialog.cbxLoggcom);
  EXPECT_TRUE(session.TrafficLogOn);
  dialog.form.Click(dialog.cbxLoggcom);
  EXPECT_EQ(dialog.cbxLoggcom.Value(), 0);
  EXPECT_TRUE(session.TrafficLogOn);
  dialog.form.Click(dialog.cbxLoggcom);
  EXPECT_TRUE(session.TrafficLogOn);
}

TEST_F(frmComSetTest, TheTickOfTheLogIsNotStored) {
  auto dialog = Load();
  dialog.form.Show();
  dialog.form.Click(dialog.cbxLoggcom);
  dialog.form.Click(dialog.btnStartKVX);
  EXPECT_EQ(machine.store.writes.size(), 7U);
  auto next = Load();
  EXPECT_EQ(next.cbxLoggcom.Value(), 0);
}

TEST_F(frmComSetTest, HelpOpensItsPage) {
  session.AppDir = "C:\\KVX\\";
  auto dialog = Load();
  dialog.form.Show();
  dialog.form.Click(dialog.btnHelp);
  EXPECT_THAT(machine.ui.opened, ElementsAre("C:\\KVX\\\\helpComSet.html"));
}

TEST_F(frmComSetTest, TheFileDialogFillsTheFileName) {
  auto dialog = Load();
  dialog.form.Show();
  machine.ui.chosenFiles.push_back("D:\\room 4.set");
  dialog.form.Click(dialog.Command5);
  EXPECT_EQ(dialog.txbFileName.Text(), "D:\\room 4.set");
  ASSERT_EQ(machine.ui.dialogs.size(), 1U);
  EXPECT_EQ(machine.ui.dialogs[0].filter, "(*.Set)|*.Set");
  EXPECT_EQ(machine.ui.dialogs[0].use, UserInterface::FileUse::open);
}

TEST_F(frmComSetTest, ACancelledFileDialogChangesNothing) {
  auto dialog = Load();
  dialog.form.Show();
  dialog.form.ChangeText(dialog.txbFileName, "old.set");
  dialog.form.Click(dialog.Command5);
  EXPECT_EQ(dialog.txbFileName.Text(), "old.set");
}

TEST_F(frmComSetTest, AStoreThatIsBrokenStopsNothing) {
  Store("Com", "9");
  machine.store.broken = true;
  auto dialog = Load();
  EXPECT_EQ(dialog.txbComPort.Text(), "1");
  dialog.form.Show();
  dialog.form.Click(dialog.btnStartKVX);
  EXPECT_FALSE(dialog.form.Visible());
}

TEST_F(frmComSetTest, OffersThePortsThatAreThereNow) {
  auto dialog = Load();
  machine.port.available = {{"ttyUSB0", "adapter A"}, {"ttyS0", ""}};
  dialog.Show();
  ASSERT_EQ(dialog.txbComPort.Items().size(), 2U);
  EXPECT_THAT(dialog.txbComPort.Items()[0], testing::HasSubstr("ttyUSB0"));
  EXPECT_THAT(dialog.txbComPort.Items()[0], testing::HasSubstr("adapter A"));
  EXPECT_EQ(dialog.txbComPort.Items()[1], "ttyS0");
  dialog.form.Choose(dialog.txbComPort, dialog.txbComPort.Items()[0]);
  EXPECT_EQ(dialog.txbComPort.Text(), "ttyUSB0");
}

}  // namespace
}  // namespace brelant
