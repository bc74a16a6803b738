// SPDX-License-Identifier: GPL-3.0-or-later
#include "panels/loop_act.h"

namespace brelant {
namespace {

using std::chrono::milliseconds;
using std::chrono::seconds;
using test::Click;
using testing::ElementsAre;

/// In simulated mode, so that commands are all that the loop does.
class CommandLoopTest : public test::LoopTest {
 protected:
  CommandLoopTest() { panel.SimMode(true); }
};

TEST_F(CommandLoopTest, EnteringTheLoopSimulatesOnceBeforeItWaits) {
  int seen = 0;
  // The first event that could come.
  After(milliseconds(1), [&] { seen = panel.simulations; });
  Run(seconds(1));
  EXPECT_EQ(seen, 1);
}

TEST_F(CommandLoopTest, ACodeRunsItsAction) {
  struct Case {
    int code;
    const char* action;
  };
  for (const auto& [code, action] :
       {Case{1, "read"}, Case{3, "write"}, Case{4, "load"}, Case{5, "save"}, Case{13, "TWA reset"}}) {
    panel.acts.clear();
    session.PanelCommand = code;
    Run(seconds(1));
    EXPECT_THAT(panel.acts, ElementsAre(action));
    EXPECT_EQ(session.PanelCommand, 0);
  }
}

TEST_F(CommandLoopTest, ACodeWithoutAnActionIsTakenAllTheSame) {
  for (const int code : {2, 11, 12, 15, 16, 99, -1}) {
    session.PanelCommand = code;
    Run(seconds(1));
    EXPECT_TRUE(panel.acts.empty()) << code;
    EXPECT_EQ(session.PanelCommand, 0) << code;
  }
  EXPECT_TRUE(ground.ui.messages.empty());
}

TEST_F(CommandLoopTest, NothingIsRunWithoutACode) {
  After(milliseconds(500), [] {});
  Run(seconds(1));
  EXPECT_TRUE(panel.acts.empty());
}

TEST_F(CommandLoopTest, AnOldErrorIsClearedBeforeTheCommand) {
  session.LastError = "old";
  session.PanelCommand = 1;
  std::string seen = "none";
  panel.onCommand = [&] {
    seen = session.LastError;
    return true;
  };
  Run(seconds(1));
  EXPECT_EQ(seen, "");
  EXPECT_TRUE(ground.ui.messages.empty());
}

TEST_F(CommandLoopTest, AnErrorIsShownAndCleared) {
  session.PanelCommand = 1;
  std::string text;
  panel.onCommand = [this] {
    session.LastError = "Can't read from sensor";
    return false;
  };
  int commandAtMessage = -1;
  ground.ui.onMessage = [&] { commandAtMessage = session.PanelCommand; };
  Run(seconds(1));
  ASSERT_EQ(ground.ui.messages.size(), 1U);
  const auto& message = ground.ui.messages.front();
  EXPECT_EQ(message.text, "Can't read from sensor");
  EXPECT_EQ(message.buttons, UserInterface::Buttons::ok);
  EXPECT_EQ(message.title, "");
  EXPECT_EQ(commandAtMessage, 0);
  EXPECT_EQ(session.LastError, "");
}

TEST_F(CommandLoopTest, AnErrorOfASuccessfulCommandIsShownToo) {
  session.PanelCommand = 3;
  panel.onCommand = [this] {
    session.LastError = "half done";
    return true;
  };
  Run(seconds(1));
  EXPECT_THAT(ground.ui.Texts(), ElementsAre("half done"));
}

TEST_F(CommandLoopTest, ACancelledCommandIsSilent) {
  session.PanelCommand = 1;
  panel.onCommand = [this] {
    session.LastError = "Avbryt";
    return false;
  };
  Run(seconds(1));
  EXPECT_TRUE(ground.ui.messages.empty());
  EXPECT_EQ(session.LastError, "");
}

TEST_F(CommandLoopTest, AFailureWithoutATextIsSilent) {
  session.PanelCommand = 1;
  panel.onCommand = [] { return false; };
  Run(seconds(1));
  EXPECT_TRUE(ground.ui.messages.empty());
}

TEST_F(CommandLoopTest, ACommandSetWhileAnotherRunsIsLost) {
  session.PanelCommand = 1;
  panel.onCommand = [this] {
    session.PanelCommand = 3;
    return true;
  };
  Run(seconds(1));
  EXPECT_THAT(panel.acts, ElementsAre("read"));
  EXPECT_EQ(session.PanelCommand, 0);
}

TEST_F(CommandLoopTest, OfTwoCommandsBeforeTheLoopsTurnTheSecondRuns) {
  After(milliseconds(10), [this] {
    session.PanelCommand = 1;
    session.PanelCommand = 3;
  });
  Run(seconds(1));
  EXPECT_THAT(panel.acts, ElementsAre("write"));
}

TEST_F(CommandLoopTest, ACommandOfAPollsTimeRunsAfterThePoll) {
  panel.SimMode(false);
  session.LastError.clear();
  std::vector<std::string> story;
  panel.onPoll = [&] {
    story.push_back("poll begins");
    if (story.size() == 1) session.PanelCommand = 3;
    ground.pump.DoEvents();
    story.push_back("poll ends");
    return true;
  };
  panel.onCommand = [&] {
    story.push_back("write");
    return true;
  };
  Run(seconds(1));
  EXPECT_THAT(story, ElementsAre("poll begins", "poll ends", "write"));
}

TEST_F(CommandLoopTest, TheGuardBoxCoversTheMomentUntilTheCommand) {
  panel.SimMode(false);
  session.LastError.clear();
  bool guarded = false;
  std::string text;
  bool bar = true;
  bool busy = false;
  panel.onCommand = [&] {
    guarded = ground.msg.Visible();
    text = ground.msg.Label1.Text();
    bar = ground.msg.ProgressBar1.Visible();
    busy = panel.form.Busy();
    return true;
  };
  After(milliseconds(500), [this] { EXPECT_TRUE(Click(panel.btnReadFromSensor)); });
  bool visibleAfter = true;
  After(milliseconds(600), [&] { visibleAfter = ground.msg.Visible() || panel.form.Busy(); });
  Run(seconds(1));
  EXPECT_TRUE(guarded);
  EXPECT_EQ(text, "Please wait");
  EXPECT_FALSE(bar);
  EXPECT_TRUE(busy);
  EXPECT_FALSE(visibleAfter);
}

TEST_F(CommandLoopTest, TheBoxIsGoneAfterTheMessage) {
  session.PanelCommand = 1;
  panel.onCommand = [this] {
    ground.msg.ShowProgress("Reading", false, &panel.form);
    session.LastError = "trouble";
    return false;
  };
  Run(seconds(1));
  EXPECT_FALSE(ground.msg.Visible());
  EXPECT_FALSE(panel.form.Busy());
}

TEST_F(CommandLoopTest, TheFirstActivationHidesTheBox) {
  ground.msg.ShowProgress("Reading sensor", false, &panel.form);
  bool visible = true;
  After(milliseconds(100), [&] { visible = ground.msg.Visible(); });
  Run(seconds(1));
  EXPECT_FALSE(visible);
}

TEST_F(CommandLoopTest, ASecondActivationHidesTheBoxAndStartsNoSecondLoop) {
  bool returned = false;
  bool visible = true;
  After(milliseconds(100), [&] {
    ground.msg.ShowProgress("Please wait", true, &panel.form);
    panel.PanelLoop();
    returned = true;
    visible = ground.msg.Visible();
    session.PanelCommand = 1;
  });
  Run(seconds(1));
  EXPECT_TRUE(returned);
  EXPECT_FALSE(visible);
  EXPECT_THAT(panel.acts, ElementsAre("read"));
}

TEST_F(CommandLoopTest, TheExitCodeEndsTheSession) {
  session.PanelCommand = 14;
  std::string error;
  panel.PanelLoop();
  EXPECT_EQ(ground.sessionsEnded, 1);
  EXPECT_EQ(session.LastError, "Avbryt");
  EXPECT_TRUE(ground.ui.messages.empty());
}

TEST_F(CommandLoopTest, ClosingTheWindowEndsTheSessionAtOnce) {
  After(milliseconds(100), [this] {
    ground.msg.ShowProgress("Please wait", true, &panel.form);
    panel.form.Close();
    EXPECT_EQ(ground.sessionsEnded, 1);
    // The close itself is cancelled: it is the end of the session that hides the window.
    EXPECT_TRUE(panel.form.Visible());
  });
  panel.PanelLoop();
  EXPECT_EQ(ground.sessionsEnded, 1);
}

TEST_F(CommandLoopTest, ASessionThatEndsInACommandRunsNothingMore) {
  session.PanelCommand = 1;
  panel.onCommand = [this] {
    session.LastError = "trouble";
    panel.form.Close();
    return false;
  };
  const int simulated = panel.simulations;
  panel.PanelLoop();
  EXPECT_EQ(panel.simulations, simulated);
  EXPECT_TRUE(ground.ui.messages.empty());
}

TEST_F(CommandLoopTest, ASessionThatEndsInAPollIsNotToldAsAFailure) {
  panel.SimMode(false);
  session.LastError.clear();
  panel.onPoll = [this] {
    panel.form.Close();
    session.LastError = "Can't read from sensor";
    return false;
  };
  panel.PanelLoop();
  EXPECT_TRUE(ground.ui.messages.empty());
  EXPECT_EQ(panel.cbxSimulated.Value(), 0);
}

}  // namespace
}  // namespace brelant
