// SPDX-License-Identifier: GPL-3.0-or-later
#include <QAbstractButton>
#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QMessageBox>
#include <QProgressBar>

#include <gtest/gtest.h>

#include "desk.h"

namespace brelant::test {
namespace {

class SmallWindowsTest : public testing::Test {
 protected:
  void InDialog(Desk::Step step) { desk.In("frmComSet", std::move(step)); }
  QWidget& Dialog(const QString& name) const { return desk.Find("frmComSet", name); }
  QString ProgressText() const {
    return FindWindow("frmMsg") == nullptr ? QString() : desk.Find<QLabel>("frmMsg", "Label1").text();
  }
  void WhenProgress(const QString& text, Desk::Step step) {
    desk.When([this, text] { return ProgressText() == text; }, std::move(step));
  }
  /// The text of the message box, which is acknowledged.
  void Acknowledge(QString& text) {
    desk.When([] { return FindWindow("MessageBox") != nullptr; },
              [&text] {
                auto& box = *static_cast<QMessageBox*>(FindWindow("MessageBox"));
                text = box.text();
                box.button(QMessageBox::Ok)->click();
              });
  }

  Desk desk;
};

TEST_F(SmallWindowsTest, TheDialogComesFirst) {
  desk.port.available = {{"/dev/ttyUSB0", "Adapter"}, {"/dev/ttyS0", ""}};
  InDialog([this] {
    EXPECT_EQ(FindWindow("frmComSet")->windowTitle(), "Communication setup");
    EXPECT_EQ(desk.Find<QLabel>("frmComSet", "Label1").text(), "Brelant Safety System");
    EXPECT_EQ(desk.Find<QLabel>("frmComSet", "Label2").text(), "Version 2.1.0");
    auto& port = desk.Find<QLineEdit>("frmComSet", "txbComPort");
    EXPECT_EQ(port.text(), "1");
    auto& box = *static_cast<QComboBox*>(port.parentWidget());
    ASSERT_EQ(box.count(), 2);
    EXPECT_EQ(box.itemText(0), "/dev/ttyUSB0  Adapter");
    box.setCurrentIndex(0);
    box.activated(0);
  });
  InDialog([this] {
    EXPECT_EQ(desk.Find<QLineEdit>("frmComSet", "txbComPort").text(), "/dev/ttyUSB0");
    EXPECT_EQ(desk.program.comSet.txbComPort.Text(), "/dev/ttyUSB0");
  });
  desk.Run();
}

TEST_F(SmallWindowsTest, TheIDIsAskedForANetworkSensorOnly) {
  InDialog([this] {
    EXPECT_FALSE(Dialog("txbID").isVisible());
    Press(Dialog("optStartMode(1)"));
  });
  InDialog([this] {
    EXPECT_TRUE(Dialog("txbID").isVisible());
    EXPECT_TRUE(Dialog("lblID").isVisible());
    Type(Dialog("txbID"), "7");
    Press(Dialog("optStartMode(0)"));
  });
  InDialog([this] {
    EXPECT_FALSE(Dialog("txbID").isVisible());
    EXPECT_EQ(desk.program.comSet.txbID.Text(), "7");
  });
  desk.Run();
}

TEST_F(SmallWindowsTest, ClosingTheDialogEndsTheProgram) {
  bool stillThere = false;
  InDialog([&] {
    FindWindow("frmComSet")->close();
    stillThere = FindWindow("frmComSet") != nullptr;
  });
  desk.When([] { return false; }, [] {});
  desk.Run();
  EXPECT_TRUE(stillThere) << "the window is the form's to close";
  EXPECT_EQ(FindWindow("frmComSet"), nullptr);
  EXPECT_EQ(desk.store.values["BRELANT/Start/Com"], "1");
}

TEST_F(SmallWindowsTest, EscapeInTheDialogIsItsCloseButton) {
  InDialog([&] { PressKey(*FindWindow("frmComSet"), Qt::Key_Escape); });
  desk.When([] { return false; }, [] {});
  desk.Run();
  EXPECT_TRUE(desk.program.session.processOver);
}

TEST_F(SmallWindowsTest, EnterStarts) {
  InDialog([this] {
    Press(Dialog("optStartMode(0)"));
    auto& port = desk.Find<QLineEdit>("frmComSet", "txbComPort");
    Press(port);
    PressKey(port, Qt::Key_Return);
  });
  bool hadBar = true;
  WhenProgress("Please wait", [&] {
    hadBar = desk.Find("frmMsg", "ProgressBar1").isVisible();
    EXPECT_EQ(FindWindow("frmComSet"), nullptr);
  });
  desk.OnPanel([] {});
  desk.Run();
  EXPECT_FALSE(hadBar);
}

TEST_F(SmallWindowsTest, TheProgressBoxShowsHowFarTheTransferIs) {
  desk.StartSession();
  int last = 0;
  bool grew = false;
  desk.When(
      [&] {
        if (ProgressText() != "Reading sensor") return grew;
        auto& bar = desk.Find<QProgressBar>("frmMsg", "ProgressBar1");
        grew = grew || (last > 0 && bar.value() > last);
        last = bar.value();
        return grew;
      },
      [this] { EXPECT_TRUE(desk.Find("frmMsg", "ProgressBar1").isVisible()); });
  desk.OnPanel([] { EXPECT_EQ(FindWindow("frmMsg"), nullptr); });
  desk.Run();
  EXPECT_TRUE(grew);
}

TEST_F(SmallWindowsTest, CancelLeadsBackToTheDialogInSilence) {
  for (const bool byKey : {false, true}) {
    desk.StartSession();
    WhenProgress("Reading sensor", [this, byKey] {
      if (byKey) {
        PressKey(*FindWindow("frmMsg"), Qt::Key_Escape);
      } else {
        Press(desk.Find("frmMsg", "Command1"));
      }
    });
    InDialog([] { EXPECT_EQ(FindWindow("MessageBox"), nullptr); });
  }
  desk.Run();
  EXPECT_EQ(desk.StepsLeft(), 0U);
}

TEST_F(SmallWindowsTest, ClosingTheProgressBoxIsCancel) {
  desk.StartSession();
  bool stillThere = false;
  WhenProgress("Reading sensor", [&] {
    FindWindow("frmMsg")->close();
    stillThere = FindWindow("frmMsg") != nullptr;
  });
  desk.When([this] { return desk.program.session.CancelPressed; }, [] {});
  InDialog([] {});
  desk.Run();
  EXPECT_TRUE(stillThere);
}

TEST_F(SmallWindowsTest, NoKeyButEscapeCancels) {
  desk.StartSession();
  WhenProgress("Reading sensor", [] {
    for (const auto key : {Qt::Key_Return, Qt::Key_Space}) PressKey(*FindWindow("frmMsg"), key);
  });
  desk.OnPanel([this] { EXPECT_FALSE(desk.program.session.CancelPressed); });
  desk.Run();
}

TEST_F(SmallWindowsTest, AFailureIsToldAndTheDialogComesBack) {
  desk.port.failOpen = true;
  desk.StartSession();
  QString text;
  Acknowledge(text);
  InDialog([] {});
  desk.Run();
  EXPECT_EQ(text, "This port is locked by other devise");
}

TEST_F(SmallWindowsTest, SendingAFileNeedsItsName) {
  InDialog([this] {
    auto& send = desk.Find<QAbstractButton>("frmComSet", "cmdSendFile");
    EXPECT_TRUE(send.isEnabled());
    EXPECT_EQ(send.toolTip(), "");
    Press(send);
  });
  QString text;
  Acknowledge(text);
  // A name that is typed does not count, and nothing is said.
  InDialog([this] {
    Type(Dialog("txbFileName"), "C:\\KVX\\last.set");
    Press(Dialog("cmdSendFile"));
  });
  InDialog([this] {
    EXPECT_EQ(FindWindow("MessageBox"), nullptr);
    EXPECT_EQ(desk.port.sensor.Count().frames, 0);
  });
  desk.Run();
  EXPECT_EQ(text, "Please enter file name in the textbox.");
}

TEST_F(SmallWindowsTest, TheChooserListsWhatCanBeSimulated) {
  InDialog([this] { Press(Dialog("optStartMode(2)")); });
  InDialog([this] { Press(Dialog("btnStartKVX")); });
  desk.files.Put("C:\\KVX\\Vega 3.sim", {});
  desk.In("frmSim", [this] {
    EXPECT_EQ(FindWindow("frmSim")->windowTitle(), "Simulated mode");
    auto& list = desk.Find<QListWidget>("frmSim", "cmbTypeOfS");
    ASSERT_EQ(list.count(), 2);
    EXPECT_EQ(list.item(0)->text(), "Platform 5 part 120");
    EXPECT_EQ(list.currentRow(), 0);
    EXPECT_TRUE(FindWindow("frmSim")->isModal());
    PressKey(list, Qt::Key_Down);
  });
  desk.In("frmSim", [this] {
    EXPECT_EQ(desk.program.sim.cmbTypeOfS.Text(), "Vega 3");
    PressKey(*FindWindow("frmSim"), Qt::Key_Escape);
  });
  InDialog([] { EXPECT_EQ(FindWindow("MessageBox"), nullptr); });
  desk.Run();
}

TEST_F(SmallWindowsTest, TheSpanNoteHasTheFocusOnCancelAndEnterPressesThat) {
  InDialog([this] { desk.program.spanNote.ShowModal(desk.pump); });
  desk.In("frmSpanCalNote", [this] {
    auto& note = *FindWindow("frmSpanCalNote");
    EXPECT_EQ(desk.Find<QLabel>("frmSpanCalNote", "Label1").text(), "Note!");
    EXPECT_TRUE(note.isModal());
    ASSERT_NE(note.focusWidget(), nullptr);
    EXPECT_EQ(note.focusWidget()->objectName(), "Command1");
    PressKey(*note.focusWidget(), Qt::Key_Return);
  });
  InDialog([this] {
    EXPECT_EQ(FindWindow("frmSpanCalNote"), nullptr);
    EXPECT_EQ(desk.program.session.LastError, "Avbryt");
    desk.program.session.LastError.clear();
    desk.program.spanNote.ShowModal(desk.pump);
  });
  desk.In("frmSpanCalNote", [this] { Press(desk.Find("frmSpanCalNote", "Command2")); });
  InDialog([this] { EXPECT_EQ(desk.program.session.LastError, ""); });
  desk.Run();
}

}  // namespace
}  // namespace brelant::test
