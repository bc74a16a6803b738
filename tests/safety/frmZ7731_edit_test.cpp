// SPDX-License-Identifier: GPL-3.0-or-later
#include "safety/z7731_fixture.h"

namespace brelant {
namespace {

using std::chrono::milliseconds;
using std::chrono::seconds;
using test::kFieldBack;
using test::kWhite;
using test::kYellow;
using test::Type;
using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Not;
using testing::StartsWith;

class Z7731EditTest : public test::StillUnitTest {
 protected:
  /// A person who has begun to type and goes on.
  void BeginTyping(int level, const std::string& text) {
    ASSERT_TRUE(panel.form.GainFocus(panel.txbKelLevel[level]));
    ASSERT_TRUE(panel.form.ChangeText(panel.txbKelLevel[level], text));
  }
  void EndTyping(int level) { ASSERT_TRUE(panel.form.LoseFocus(panel.txbKelLevel[level])); }
  int CountWrites(const std::string& address) const {
    const auto writes = Writes();
    return static_cast<int>(std::count_if(writes.begin(), writes.end(),
                                          [&](const auto& each) { return each.starts_with(address); }));
  }
};

TEST_F(Z7731EditTest, AFinishedEditIsSentAndReadBack) {
  for (const auto protocol : {frmComSet::kiBus, frmComSet::modBus}) {
    StartOn(protocol);
    Type(panel.txbKelLevel[4], "22,456");
    EXPECT_EQ(Setting(4240), 2246);
    // As the unit's grain allows.
    EXPECT_EQ(panel.txbKelLevel[4].Text(), "22.46");
    EXPECT_EQ(Writes().size(), 20U);
    EXPECT_THAT(Told(), IsEmpty());
    PutSetting(4240, 2300);
    panel.LeaveSession();
  }
}

TEST_F(Z7731EditTest, AllIsReadBehindTheSending) {
  StartOnKiBus();
  Type(panel.txbKelLevel[4], "22");
  const auto frames = Frames();
  const auto lastWrite = std::find(frames.rbegin(), frames.rend(), "E7969 = 6");
  ASSERT_NE(lastWrite, frames.rend());
  // Its own reading back, then all settings, of which the model comes first and the relays last.
  const auto read = std::vector(lastWrite.base() + 1, frames.end());
  EXPECT_EQ(read.front(), "E4125+1");
  EXPECT_EQ(read.back(), "E4436+4");
}

TEST_F(Z7731EditTest, EnterEndsAnEditAndIsSwallowed) {
  StartOnKiBus();
  BeginTyping(0, "1.44");
  EXPECT_TRUE(panel.form.PressKey(panel.txbKelLevel[0], 13));
  EXPECT_EQ(Setting(4246), 144);
  EXPECT_EQ(panel.txbKelLevel[0].Back(), kFieldBack);
  EXPECT_EQ(panel.form.Focused(), &panel.txbKelLevel[0]);
  EXPECT_FALSE(panel.form.PressKey(panel.txbKelLevel[0], 65));
}

TEST_F(Z7731EditTest, AFieldUnderEditIsBlackOnWhite) {
  StartOnKiBus();
  for (auto* field : panel.txbKelLevel) {
    EXPECT_EQ(field->Back(), kFieldBack);
    EXPECT_EQ(field->Fore(), kYellow);
    panel.form.GainFocus(*field);
    EXPECT_EQ(field->Back(), kWhite);
    EXPECT_EQ(field->Fore(), 0);
    panel.form.LoseFocus(*field);
    EXPECT_EQ(field->Back(), kFieldBack);
    EXPECT_EQ(field->Fore(), kYellow);
  }
}

TEST_F(Z7731EditTest, ARefusedEditIsToldAndTheUnitsValueShownAgain) {
  StartOnKiBus();
  Type(panel.txbKelLevel[4], "400");  // no room for 40000 in a word with a sign: read back it is another one
  ASSERT_THAT(ground.ui.messages, testing::SizeIs(1));
  EXPECT_EQ(ground.ui.messages.front().title, "Write to Meter Failed");
}

TEST_F(Z7731EditTest, NobodyElsesLevelIsSentAsItIsBeingTyped) {
  StartOnKiBus();
  BeginTyping(3, "9");
  EXPECT_TRUE(panel.FormRead(true));
  EXPECT_EQ(Setting(4242), 2100);
  EXPECT_EQ(panel.txbKelLevel[3].Text(), "9");
}

TEST_F(Z7731EditTest, WhatIsBeingTypedIsNotOverwritten) {
  StartOnKiBus();
  BeginTyping(3, "9");
  PutSetting(4242, 1850);
  PutSetting(4240, 2550);
  EXPECT_TRUE(panel.GetAllStaticValues(true));
  EXPECT_EQ(panel.txbKelLevel[3].Text(), "9");
  EXPECT_EQ(panel.txbKelLevel[4].Text(), "25.5");
  // What counts until the edit ends is what was read.
  EXPECT_TRUE(panel.FormRead(true));
  EXPECT_EQ(Setting(4242), 1850);
  panel.form.ChangeText(panel.txbKelLevel[3], "9.5");
  EndTyping(3);
  EXPECT_EQ(Setting(4242), 950);
}

TEST_F(Z7731EditTest, TypingThatGoesOnAfterEnterIsKept) {
  StartOnKiBus();
  BeginTyping(3, "9");
  panel.form.PressKey(panel.txbKelLevel[3], 13);
  ASSERT_EQ(Setting(4242), 900);
  panel.form.ChangeText(panel.txbKelLevel[3], "95");
  EXPECT_TRUE(panel.GetAllStaticValues(true));
  EXPECT_EQ(panel.txbKelLevel[3].Text(), "95");
  EndTyping(3);
  EXPECT_EQ(Setting(4242), 9500);
}

TEST_F(Z7731EditTest, ALevelThatIsTypedWhileAnotherIsSentIsKept) {
  StartOnKiBus();
  // In the middle of the sending of the first one.
  ground.pump.After(milliseconds(60), [this] { BeginTyping(8, "7.7"); });
  Type(panel.txbKelLevel[4], "22");
  EXPECT_EQ(panel.form.Focused(), &panel.txbKelLevel[8]);
  EXPECT_EQ(panel.txbKelLevel[8].Text(), "7.7");
  EXPECT_EQ(Setting(4254), 800);
  EndTyping(8);
  EXPECT_EQ(Setting(4254), 770);
}

TEST_F(Z7731EditTest, EditsThatEndWhileTheLineIsBusyAreSentTogetherAfterwards) {
  StartOnKiBus();
  std::size_t framesBefore = 0;
  After(milliseconds(60), [&] {
    // In the first poll.
    framesBefore = unit.frames.size();
    Type(panel.txbKelLevel[3], "20");
    Type(panel.txbKelLevel[4], "24");
    Type(panel.txbKelLevel[0], "1");
    EXPECT_EQ(unit.frames.size(), framesBefore);
    EXPECT_THAT(Writes(), IsEmpty());
  });
  Run(milliseconds(1950));
  EXPECT_GT(framesBefore, 0U);
  EXPECT_LT(framesBefore, 9U);
  EXPECT_EQ(Setting(4242), 2000);
  EXPECT_EQ(Setting(4240), 2400);
  EXPECT_EQ(Setting(4246), 100);
  // Once each.
  for (const char* address : {"E4242", "E4240", "E4246", "E4602"})
    EXPECT_EQ(CountWrites(address), 1) << address;
  EXPECT_EQ(panel.txbKelLevel[4].Text(), "24");
  // The poll was not disturbed.
  const auto frames = Frames();
  EXPECT_EQ(frames.at(8), "R383+1");
}

TEST_F(Z7731EditTest, AnEditDuringAnEditsSendingIsSentAfterIt) {
  StartOnKiBus();
  ground.pump.After(milliseconds(60), [this] { Type(panel.txbKelLevel[8], "7.7"); });
  Type(panel.txbKelLevel[4], "22");
  Run(seconds(3));
  EXPECT_EQ(Setting(4254), 770);
  EXPECT_EQ(panel.txbKelLevel[8].Text(), "7.7");
  EXPECT_EQ(CountWrites("E4254"), 2);
}

TEST_F(Z7731EditTest, WithoutAUnitNothingIsSent) {
  ASSERT_TRUE(StartSimulated());
  Type(panel.txbKelLevel[4], "22,5");
  EXPECT_EQ(panel.txbKelLevel[4].Text(), "22,5");
  EXPECT_THAT(port.Sent(), IsEmpty());
  EXPECT_THAT(Told(), IsEmpty());
}

TEST_F(Z7731EditTest, InSimulatedModeNothingIsSent) {
  StartOnKiBus();
  panel.SimMode(true);
  Type(panel.txbKelLevel[4], "22");
  EXPECT_THAT(unit.frames, IsEmpty());
}

TEST_F(Z7731EditTest, WhatWasTypedInSimulatedModeIsNeverSent) {
  StartOnKiBus();
  test::Click(panel.cbxSimulated);
  Type(panel.txbKelLevel[0], "9");
  unit.isSilent = true;
  test::Click(panel.cbxSimulated);
  unit.isSilent = false;
  session.LastError.clear();
  Type(panel.txbKelLevel[1], "2.6");
  EXPECT_EQ(Setting(4246), 150);
  Run(milliseconds(1900));
  EXPECT_EQ(panel.txbKelLevel[0].Text(), "1.5");
  EXPECT_EQ(panel.cbxSimulated.Value(), 0);
}

TEST_F(Z7731EditTest, AFieldWithTheFocusAloneFollowsTheUnit) {
  StartOnKiBus();
  ASSERT_TRUE(panel.form.GainFocus(panel.txbKelLevel[3]));
  ground.ui.choices = {1};
  test::Click(panel.lblCH_Type[0]);
  EXPECT_EQ(panel.txbKelLevel[3].Text(), "69.8");
  EndTyping(3);
  EXPECT_EQ(Setting(4242), 2100);
}

TEST_F(Z7731EditTest, IdAndSerialNumberTakeNoEdit) {
  StartOnKiBus();
  Type(panel.txbID, "9");
  Type(panel.txbSN, "9");
  EXPECT_EQ(panel.txbID.Text(), "1");
  EXPECT_EQ(panel.txbSN.Text(), "15401042");
  EXPECT_THAT(unit.frames, IsEmpty());
}

// Settings that have never been read whole

class Z7731UnknownUnitTest : public Z7731EditTest {
 protected:
  /// The session begins, but its settings cannot be read.
  void StartUnread() {
    Choose(frmComSet::singleSensor, frmComSet::modBus);
    ASSERT_TRUE(Open());
    // The last of the relay lists.
    lacksRelays = true;
    ground.pump.OnPass([this] {
      if (lacksRelays) modbus.units.at(1).holding.erase(10411);
      return false;
    });
    panel.SimMode(false);
    panel.form.Show();
    session.LastError.clear();
    Forget();
  }

  bool lacksRelays = false;
};

TEST_F(Z7731UnknownUnitTest, NothingIsSentToIt) {
  StartUnread();
  Type(panel.txbKelLevel[4], "22");
  EXPECT_THAT(Writes(), IsEmpty());
  EXPECT_THAT(Told(), ElementsAre("The settings of the unit have not been read."));
  session.LastError.clear();
  EXPECT_FALSE(panel.FormRead(true));
  EXPECT_NE(session.LastError, "");
  EXPECT_THAT(Writes(), IsEmpty());
}

TEST_F(Z7731UnknownUnitTest, TheSendCommandTellsIt) {
  StartUnread();
  After(milliseconds(500), [this] { test::Click(panel.btnSendToSensor); });
  Run(milliseconds(1900));
  EXPECT_THAT(Writes(), IsEmpty());
  EXPECT_EQ(Told().size(), 1U);
}

TEST_F(Z7731UnknownUnitTest, ItIsReadWithALaterPoll) {
  StartUnread();
  After(seconds(5), [this] { lacksRelays = false; });
  Run(seconds(10));
  EXPECT_EQ(panel.txbKelLevel[4].Text(), "23");
  EXPECT_THAT(Told(), IsEmpty());
  session.sessionOver = false;
  Type(panel.txbKelLevel[4], "22");
  EXPECT_EQ(Setting(4240), 2200);
}

TEST_F(Z7731UnknownUnitTest, ANewSessionKnowsNothingOfTheUnitBefore) {
  StartOnKiBus();
  panel.LeaveSession();
  ASSERT_TRUE(panel.FormUpdateInit());
  unit.frames.clear();
  EXPECT_FALSE(panel.FormRead(true));
  EXPECT_THAT(unit.frames, IsEmpty());
}

}  // namespace
}  // namespace brelant
