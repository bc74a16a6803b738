// SPDX-License-Identifier: GPL-3.0-or-later
#include "console/script/runner.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "play.h"

namespace brelant::test {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;

class RunnerTest : public PlayTest {
 protected:
  /// Notes every act on the field.
  void RecordField() {
    field.onFocus = [this] { acts.emplace_back("focus"); };
    field.onChange = [this] { acts.push_back("change " + field.Text()); };
    field.onLeave = [this] { acts.emplace_back("leave"); };
    field.onKey = [this](int code) {
      acts.push_back("key " + std::to_string(code));
      return true;
    };
  }

  std::vector<std::string> acts;
};

// The end of a script

TEST_F(RunnerTest, AnEmptyScriptEndsTheProcess) {
  EXPECT_EQ(Play({}), 0);
  EXPECT_EQ(LastLine(), R"({"event":"exit","status":0})");
  EXPECT_EQ(errors, "");
}

TEST_F(RunnerTest, TheProcessEndsAfterTheLastCommand) {
  bool clicked = false;
  button.onClick = [&] { clicked = true; };
  EXPECT_EQ(Play({"click btn"}), 0);
  EXPECT_TRUE(clicked);
}

TEST_F(RunnerTest, TheLastCommandEndsOnlyWhenItHasReturned) {
  bool returned = false;
  button.onClick = [&] {
    pump.DoEvents();
    EXPECT_FALSE(session.processOver);
    returned = true;
  };
  EXPECT_EQ(Play({"click btn"}), 0);
  EXPECT_TRUE(returned);
}

TEST_F(RunnerTest, QuitEndsTheProcessAtOnce) {
  EXPECT_EQ(Play({"quit", "get none"}), 0);
  EXPECT_THAT(Printed(), IsEmpty());
}

TEST_F(RunnerTest, AFailedCommandEndsTheScript) {
  EXPECT_EQ(Play({"# first", "click none", "get txb text"}), 1);
  EXPECT_THAT(Printed(), ElementsAre(R"({"event":"error","line":2,"command":"click none",)"
                                     R"("text":"form frmA in front has no control none"})"));
  EXPECT_EQ(LastLine(), R"({"event":"exit","status":1})");
  EXPECT_THAT(errors, HasSubstr("line 2: click none: "));
}

TEST_F(RunnerTest, ALineThatMakesNoSenseEndsTheScriptWithTwo) {
  EXPECT_EQ(Play({"get txb text", "jump", "get txb text"}), 2);
  EXPECT_THAT(Printed(), ElementsAre(R"("old")", R"({"event":"error","line":2,"command":"jump",)"
                                                 R"("text":"\"jump\" is not a command"})"));
}

TEST_F(RunnerTest, AProcessThatEndsByItselfEndsTheScript) {
  button.onClick = [this] { session.processOver = true; };
  EXPECT_EQ(Play({"click btn"}), 0);
}

TEST_F(RunnerTest, QuitMayFollowTheEndOfTheProcess) {
  button.onClick = [this] { session.processOver = true; };
  EXPECT_EQ(Play({"click btn", "quit"}), 0);
}

TEST_F(RunnerTest, ACommandThatTheProcessDoesNotLiveToSeeHasFailed) {
  button.onClick = [this] { session.processOver = true; };
  EXPECT_EQ(Play({"click btn", "expect txb text old"}), 1);
  EXPECT_THAT(Printed(), ElementsAre(R"({"event":"error","line":2,"command":"expect txb text old",)"
                                     R"("text":"the process has ended"})"));
}

TEST_F(RunnerTest, CommandsThatComeLaterAreCarriedOutAsTheyCome) {
  script::Script script;
  pump.After(std::chrono::seconds(1), [&] { script.Append("get txb text"); });
  pump.After(std::chrono::seconds(2), [&] { script.Append("quit"); });
  EXPECT_EQ(Play(script), 0);
  EXPECT_THAT(Printed(), ElementsAre(R"("old")"));
}

// Looking

TEST_F(RunnerTest, GetPrintsTheControl) {
  EXPECT_EQ(Play({"get txb", "get frmA.btn"}), 0);
  EXPECT_THAT(Printed(), ElementsAre(R"({"control":"txb","text":"old","value":0,"visible":true,)"
                                     R"("enabled":true,"back":-1,"fore":-1,"tip":""})",
                                     R"({"control":"btn","text":"Go","value":0,"visible":true,)"
                                     R"("enabled":true,"back":-1,"fore":-1,"tip":""})"));
}

TEST_F(RunnerTest, GetPrintsAPropertyAsAValue) {
  field.SetFore(65280);
  EXPECT_EQ(Play({"get txb text", "get txb value", "get txb visible", "get txb fore"}), 0);
  EXPECT_THAT(Printed(), ElementsAre(R"("old")", "0", "true", "65280"));
}

TEST_F(RunnerTest, AFormThatIsNotShownCanBeLookedAt) {
  second.Add(ControlKind::label, "lbl", "here");
  EXPECT_EQ(Play({"get frmB.lbl text"}), 0);
  EXPECT_THAT(Printed(), ElementsAre(R"("here")"));
}

TEST_F(RunnerTest, AControlWithoutAFormIsLookedForFromTheFrontBackwards) {
  second.Add(ControlKind::label, "btn", "in front");
  button.onClick = [this] { second.Show(); };
  EXPECT_EQ(Play({"click btn", "get btn text", "get txb text"}), 0);
  EXPECT_THAT(Printed(),
              ElementsAre(R"({"event":"form","form":"frmB","visible":true})", R"("in front")", R"("old")"));
}

TEST_F(RunnerTest, UnknownFormsAndControlsFail) {
  for (const auto* line : {"get none", "get frmA.none", "get frmC.txb", "dump frmC", "close frmC"}) {
    session.processOver = false;
    EXPECT_EQ(Play({line}), 1) << line;
  }
}

TEST_F(RunnerTest, WithoutAFormInFrontNothingIsFound) {
  for (const auto* line : {"get txb", "dump", "close"}) {
    session.processOver = false;
    EXPECT_EQ(Play({"close", line}), 1) << line;
  }
}

TEST_F(RunnerTest, DumpPrintsTheFormInFrontOrTheOneNamed) {
  second.Add(ControlKind::label, "lbl", "x");
  EXPECT_EQ(Play({"dump frmB", "dump"}), 0);
  const auto lines = Printed();
  ASSERT_EQ(lines.size(), 2U);
  EXPECT_EQ(lines[0], R"({"form":"frmB","caption":"Second","visible":false,"controls":{"lbl":{"text":"x",)"
                      R"("value":0,"visible":true,"enabled":true,"back":-1,"fore":-1,"tip":""}}})");
  EXPECT_THAT(lines[1], HasSubstr(R"({"form":"frmA","caption":"First","visible":true,"controls":{"txb":)"));
}

TEST_F(RunnerTest, ExpectHoldsOrFailsTheScript) {
  field.SetValue(3);
  EXPECT_EQ(Play({"expect txb text old", "expect txb value 3", "expect txb visible true",
                  "expect txb enabled true", "expect frmA.txb back -1", "expect txb tip \"\""}),
            0);
  EXPECT_THAT(Printed(), IsEmpty());
  session.processOver = false;
  EXPECT_EQ(Play({"expect txb text new"}), 1);
  EXPECT_THAT(errors, HasSubstr("it is \"old\""));
}

TEST_F(RunnerTest, ImagePrintsBytesWithTheirFlags) {
  image.RamImage[255] = 12.5F;
  image.RamImage[256] = 7;
  image.RamValid[256] = true;
  image.EepromImage[8194] = 255;
  image.EepromValid[8194] = true;
  EXPECT_EQ(Play({"image ram 255 3", "image eeprom 8194"}), 0);
  EXPECT_THAT(Printed(),
              ElementsAre(R"({"image":"ram","from":255,"bytes":[12.5,7,0],"valid":[false,true,false]})",
                          R"({"image":"eeprom","from":8194,"bytes":[255],"valid":[true]})"));
}

TEST_F(RunnerTest, ImageFailsBeyondTheImage) {
  for (const auto* line :
       {"image ram 258", "image ram 257 2", "image ram 0 2147483647", "image eeprom 8195"}) {
    session.processOver = false;
    EXPECT_EQ(Play({line}), 1) << line;
  }
}

// Acts

TEST_F(RunnerTest, TypeFocusesReplacesAndLeaves) {
  RecordField();
  EXPECT_EQ(Play({"type txb 12,5 ppm"}), 0);
  EXPECT_THAT(acts, ElementsAre("focus", "change 12,5 ppm", "leave"));
}

TEST_F(RunnerTest, EnterKeepsTheFocus) {
  RecordField();
  EXPECT_EQ(Play({"enter txb 7", "leave txb"}), 0);
  EXPECT_THAT(acts, ElementsAre("focus", "change 7", "key 13", "leave"));
}

TEST_F(RunnerTest, FocusAndLeaveAreTheTwoHalves) {
  RecordField();
  EXPECT_EQ(Play({"focus txb", "get txb text", "leave txb"}), 0);
  EXPECT_THAT(acts, ElementsAre("focus", "leave"));
}

TEST_F(RunnerTest, LeavingWhatDoesNotHaveTheFocusFails) {
  EXPECT_EQ(Play({"leave txb"}), 1);
}

TEST_F(RunnerTest, TypingNeedsATextField) {
  EXPECT_EQ(Play({"type btn x"}), 1);
  EXPECT_EQ(button.Text(), "Go");
}

TEST_F(RunnerTest, ClickChecksAndSelects) {
  auto& check = first.Add(ControlKind::check, "cbx");
  auto options = first.AddArray(ControlKind::option, "opt", 2);
  first.Select(options[0]);
  EXPECT_EQ(Play({"click cbx", "click opt(1)"}), 0);
  EXPECT_EQ(check.Value(), 1);
  EXPECT_EQ(options[0].Value(), 0);
  EXPECT_EQ(options[1].Value(), 1);
}

TEST_F(RunnerTest, WhatIsHiddenOrDisabledCannotBeReached) {
  for (const auto* line : {"click txb", "type txb 1", "enter txb 1", "focus txb", "select txb a"}) {
    for (const bool hidden : {true, false}) {
      field.SetVisible(!hidden);
      field.SetEnabled(hidden);
      session.processOver = false;
      EXPECT_EQ(Play({line}), 1) << line;
      EXPECT_THAT(errors, HasSubstr(hidden ? "txb is hidden" : "txb is disabled"));
    }
  }
  EXPECT_EQ(field.Text(), "old");
}

TEST_F(RunnerTest, AMenuEntryIsReachedThroughItsMenus) {
  bool clicked = false;
  auto& menu = first.AddMenu("", "mCalibrate", "Calibrate");
  first.AddMenu("mCalibrate", "mCalCO2", "CO2");
  first.AddMenu("mCalCO2", "mCalCO2Zero", "Zero").onClick = [&] { clicked = true; };
  menu.SetEnabled(false);
  EXPECT_EQ(Play({"click mCalCO2Zero"}), 1);
  EXPECT_FALSE(clicked);
  menu.SetEnabled(true);
  session.processOver = false;
  EXPECT_EQ(Play({"click mCalCO2Zero"}), 0);
  EXPECT_TRUE(clicked);
}

TEST_F(RunnerTest, AFormThatIsNotShownCannotBeActedOn) {
  second.Add(ControlKind::button, "btnB");
  EXPECT_EQ(Play({"click frmB.btnB"}), 1);
  session.processOver = false;
  EXPECT_EQ(Play({"close frmB"}), 1);
}

TEST_F(RunnerTest, AModalFormHasToBeLeftFirst) {
  auto& next = second.Add(ControlKind::button, "btnNext");
  next.onClick = [this] { second.Hide(); };
  button.onClick = [this] { second.ShowModal(pump, [this] { return session.processOver; }); };
  EXPECT_EQ(Play({"click btn", "click frmA.btn"}), 1);
  EXPECT_THAT(errors, HasSubstr("form frmB has to be left first"));
  session.processOver = false;
  EXPECT_EQ(Play({"click btn", "get btn text"}), 1);
  session.processOver = false;
  EXPECT_EQ(Play({"click btn", "click btnNext", "click frmA.txb"}), 0);
}

TEST_F(RunnerTest, SelectChoosesALine) {
  auto& list = first.Add(ControlKind::list, "cmb");
  list.SetItems({"Last", "Vega 3"});
  EXPECT_EQ(Play({"select cmb Vega 3"}), 0);
  EXPECT_EQ(list.Value(), 1);
  EXPECT_EQ(list.Text(), "Vega 3");
  session.processOver = false;
  EXPECT_EQ(Play({"select cmb Vega 4"}), 1);
  EXPECT_THAT(errors, HasSubstr(R"(cmb offers ["Last","Vega 3"])"));
}

TEST_F(RunnerTest, CloseClosesTheFormInFrontOrTheOneNamed) {
  std::vector<std::string> closed;
  first.onClose = [&] { closed.emplace_back("frmA"); };
  second.onClose = [&] { closed.emplace_back("frmB"); };
  button.onClick = [this] { second.Show(); };
  EXPECT_EQ(Play({"click btn", "close", "close frmA"}), 0);
  EXPECT_THAT(closed, ElementsAre("frmB", "frmA"));
}

// Answers

TEST_F(RunnerTest, AnswersAreQueuedForTheQuestions) {
  std::vector<std::string> got;
  button.onClick = [&] {
    using Buttons = UserInterface::Buttons;
    got.push_back(user.InputBox("p").value_or("(cancelled)"));
    got.push_back(user.InputBox("p").value_or("(cancelled)"));
    got.push_back(user.FileDialog(UserInterface::FileUse::open, "f").value_or("(cancelled)"));
    got.push_back(std::to_string(user.PopupMenu({"a", "b c"}).value_or(99)));
    got.emplace_back(user.MessageBox("m", Buttons::yesNo, "", UserInterface::Icon::none) ==
                             UserInterface::Reply::yes
                         ? "yes"
                         : "no");
  };
  EXPECT_EQ(Play({"answer 22", "answer cancel", "file /a b.set", "choose b c", "reply yes", "click btn"}), 0);
  EXPECT_THAT(got, ElementsAre("22", "(cancelled)", "/a b.set", "1", "yes"));
}

TEST_F(RunnerTest, AnAnswerThatDoesNotFitFailsTheScript) {
  button.onClick = [&] { user.PopupMenu({"a"}); };
  EXPECT_EQ(Play({"choose b", "click btn", "get txb"}), 1);
  EXPECT_THAT(Printed(), ElementsAre(R"({"event":"popup","captions":["a"],"choice":null})",
                                     R"({"event":"error","line":2,"command":"click btn",)"
                                     R"("text":"the popup menu has no \"b\""})"));
}

// Events

TEST_F(RunnerTest, FormsAndTheProgressBoxAreTold) {
  button.onClick = [this] {
    msg.ShowProgress("Please wait", true, &first);
    msg.ShowProgress("Sending to sensor", false, &first);
    msg.ShowProgress("", true, &first);
  };
  EXPECT_EQ(Play({"click btn"}), 0);
  EXPECT_THAT(Printed(), ElementsAre(R"({"event":"form","form":"frmMsg","visible":true})",
                                     R"({"event":"progress","text":"Please wait"})",
                                     R"({"event":"progress","text":"Sending to sensor"})",
                                     R"({"event":"form","form":"frmMsg","visible":false})",
                                     R"({"event":"progress","text":""})"));
}

TEST_F(RunnerTest, CommandsRunInThePassesOfACommand) {
  bool broken = false;
  button.onClick = [&] {
    msg.ShowProgress("Reading from sensor", true, &first);
    for (int i = 0; i < 10 && session.LastError.empty(); ++i) {
      pump.Wait(clock.Now() + std::chrono::milliseconds(100));
    }
    broken = session.LastError == kCancelled;
    msg.ShowProgress("", true, &first);
  };
  EXPECT_EQ(Play({"click btn", "wait progress Reading from sensor", "click frmMsg.Command1", "wait idle",
                  "get txb text"}),
            0);
  EXPECT_TRUE(broken);
  EXPECT_EQ(Printed().back(), R"("old")");
}

}  // namespace
}  // namespace brelant::test
