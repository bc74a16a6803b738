// SPDX-License-Identifier: GPL-3.0-or-later
#include "console/script/scripted_user.h"

#include <sstream>

#include <gtest/gtest.h>

namespace brelant::script {
namespace {

using Buttons = UserInterface::Buttons;
using Icon = UserInterface::Icon;
using Reply = UserInterface::Reply;

class ScriptedUserTest : public ::testing::Test {
 protected:
  /// What has been printed since the last call.
  std::string Printed() {
    auto text = text_.str();
    text_.str("");
    return text;
  }

  std::ostringstream text_;
  JsonLines out_{text_};
  ScriptedUser user_{out_, [](const std::string& path) { return "<" + path + ">"; }};
};

TEST_F(ScriptedUserTest, AMessageIsAcknowledged) {
  EXPECT_EQ(user_.MessageBox("Unknown product", Buttons::ok, "", Icon::none), Reply::ok);
  EXPECT_EQ(Printed(),
            "{\"event\":\"message\",\"text\":\"Unknown product\",\"title\":\"\",\"buttons\":\"ok\","
            "\"reply\":\"ok\"}\n");
  EXPECT_EQ(user_.MessageBox("a", Buttons::okCancel, "t", Icon::stop), Reply::ok);
  EXPECT_EQ(
      Printed(),
      "{\"event\":\"message\",\"text\":\"a\",\"title\":\"t\",\"buttons\":\"okcancel\",\"reply\":\"ok\"}\n");
}

TEST_F(ScriptedUserTest, AYesNoBoxIsAnsweredNo) {
  EXPECT_EQ(user_.MessageBox("a", Buttons::yesNo, "", Icon::none), Reply::no);
  EXPECT_EQ(Printed(),
            "{\"event\":\"message\",\"text\":\"a\",\"title\":\"\",\"buttons\":\"yesno\",\"reply\":\"no\"}\n");
}

TEST_F(ScriptedUserTest, QueuedRepliesAreGivenInOrder) {
  user_.replies = {Reply::yes, Reply::cancel};
  EXPECT_EQ(user_.MessageBox("a", Buttons::yesNo, "", Icon::none), Reply::yes);
  EXPECT_EQ(user_.MessageBox("a", Buttons::okCancel, "", Icon::none), Reply::cancel);
  EXPECT_EQ(user_.MessageBox("a", Buttons::okCancel, "", Icon::none), Reply::ok);
  EXPECT_EQ(user_.Messages(), 3);
}

TEST_F(ScriptedUserTest, AReplyThatTheBoxHasNoButtonForIsAMisfit) {
  std::vector<std::string> misfits;
  user_.onMisfit = [&](const std::string& why) { misfits.push_back(why); };
  user_.replies = {Reply::yes, Reply::ok, Reply::cancel, Reply::cancel};
  EXPECT_EQ(user_.MessageBox("a", Buttons::ok, "", Icon::none), Reply::ok);
  EXPECT_EQ(user_.MessageBox("a", Buttons::yesNo, "", Icon::none), Reply::no);
  EXPECT_EQ(user_.MessageBox("a", Buttons::ok, "", Icon::none), Reply::ok);
  EXPECT_EQ(misfits.size(), 3U);
  EXPECT_EQ(user_.MessageBox("a", Buttons::okCancel, "", Icon::none), Reply::cancel);
  EXPECT_EQ(misfits.size(), 3U);
}

TEST_F(ScriptedUserTest, AnInputBoxIsCancelledUnlessAnswered) {
  EXPECT_EQ(user_.InputBox("Please enter correct temperature"), std::nullopt);
  EXPECT_EQ(Printed(),
            "{\"event\":\"input\",\"prompt\":\"Please enter correct temperature\",\"answer\":null}\n");
  user_.answers = {"21.5", std::nullopt};
  EXPECT_EQ(user_.InputBox("p"), "21.5");
  EXPECT_EQ(user_.InputBox("p"), std::nullopt);
  EXPECT_EQ(Printed(),
            "{\"event\":\"input\",\"prompt\":\"p\",\"answer\":\"21.5\"}\n"
            "{\"event\":\"input\",\"prompt\":\"p\",\"answer\":null}\n");
}

TEST_F(ScriptedUserTest, AFileDialogIsCancelledUnlessAnswered) {
  EXPECT_EQ(user_.FileDialog(UserInterface::FileUse::open, "(*.Set)|*.Set"), std::nullopt);
  user_.files = {"/a.set"};
  EXPECT_EQ(user_.FileDialog(UserInterface::FileUse::save, "(*.Set)|*.Set"), "/a.set");
  EXPECT_EQ(Printed(),
            "{\"event\":\"file\",\"use\":\"open\",\"filter\":\"(*.Set)|*.Set\",\"path\":null}\n"
            "{\"event\":\"file\",\"use\":\"save\",\"filter\":\"(*.Set)|*.Set\",\"path\":\"/a.set\"}\n");
}

TEST_F(ScriptedUserTest, APopupMenuIsLeftUnlessAnswered) {
  EXPECT_EQ(user_.PopupMenu({"TEMP", "CO2"}), std::nullopt);
  user_.choices = {"CO2"};
  EXPECT_EQ(user_.PopupMenu({"TEMP", "CO2"}), 1U);
  EXPECT_EQ(Printed(),
            "{\"event\":\"popup\",\"captions\":[\"TEMP\",\"CO2\"],\"choice\":null}\n"
            "{\"event\":\"popup\",\"captions\":[\"TEMP\",\"CO2\"],\"choice\":\"CO2\"}\n");
}

TEST_F(ScriptedUserTest, AChoiceThatTheMenuDoesNotHaveIsAMisfit) {
  int misfits = 0;
  user_.onMisfit = [&](const std::string&) { ++misfits; };
  user_.choices = {"RH"};
  EXPECT_EQ(user_.PopupMenu({"TEMP", "CO2"}), std::nullopt);
  EXPECT_EQ(misfits, 1);
}

TEST_F(ScriptedUserTest, HelpIsToldWithTheMachinesPath) {
  user_.ShellOpen("a\\help5v0.html");
  EXPECT_EQ(Printed(), "{\"event\":\"help\",\"path\":\"<a\\\\help5v0.html>\"}\n");
}

TEST_F(ScriptedUserTest, WhatIsNoUtf8IsStillPrinted) {
  user_.MessageBox("\xe5", Buttons::ok, "", Icon::none);
  EXPECT_EQ(Printed(),
            "{\"event\":\"message\",\"text\":\"\xef\xbf\xbd\",\"title\":\"\",\"buttons\":\"ok\","
            "\"reply\":\"ok\"}\n");
}

}  // namespace
}  // namespace brelant::script
