// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <functional>
#include <sstream>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "console/script/runner.h"
#include "support/virtual_clock.h"
#include "support/virtual_pump.h"

namespace brelant::test {

/// A small program of two forms and the progress box, played by scripts on the virtual clock.
class PlayTest : public ::testing::Test {
 protected:
  /// Shows the first form and pumps until the process is over. The exit status.
  int Play(const std::vector<std::string>& lines) {
    script::Script script;
    for (const auto& line : lines) script.Append(line);
    script.Complete();
    return Play(script);
  }

  int Play(script::Script& script) {
    script::Runner runner(script, user, out, {session, screen, image, msg, clock, pump});
    pump.OnPass([&runner] { return runner.Pass(); });
    ::testing::internal::CaptureStderr();
    first.Show();
    while (!session.processOver) {
      pump.Wait(std::chrono::microseconds::max());
      if (loop) loop();
    }
    const int status = runner.Finish();
    errors = ::testing::internal::GetCapturedStderr();
    return status;
  }

  /// The lines printed, without the events of the first form's opening and of the end.
  std::vector<std::string> Printed() const {
    std::vector<std::string> lines;
    std::istringstream text(text_.str());
    for (std::string line; std::getline(text, line);) lines.push_back(line);
    EXPECT_GE(lines.size(), 2U);
    EXPECT_EQ(lines.front(), R"({"event":"form","form":"frmA","visible":true})");
    EXPECT_THAT(lines.back(), ::testing::StartsWith(R"({"event":"exit","status":)"));
    return {lines.begin() + 1, lines.end() - 1};
  }
  std::string LastLine() const {
    auto text = text_.str();
    text.pop_back();
    return text.substr(text.rfind('\n') + 1);
  }

  VirtualClock clock;
  VirtualPump pump{clock};
  Session session;
  Screen screen;
  SensorImage image;
  frmMsg msg{session, pump, screen};
  Form first{screen, "frmA", "First"};
  Form second{screen, "frmB", "Second"};
  Control& field{first.Add(ControlKind::text, "txb", "old")};
  Control& other{first.Add(ControlKind::text, "txbOther")};
  Control& button{first.Add(ControlKind::button, "btn", "Go")};

  /// What the program does between two waits.
  std::function<void()> loop;
  /// What the run printed on the standard error.
  std::string errors;

 private:
  std::ostringstream text_;

 protected:
  JsonLines out{text_};
  script::ScriptedUser user{out, [](const std::string& path) { return path; }};
};

}  // namespace brelant::test
