// SPDX-License-Identifier: GPL-3.0-or-later
#include "console/script/script.h"

#include <cstdio>
#include <fstream>

#include <gtest/gtest.h>

namespace brelant::script {
namespace {

TEST(ScriptTest, GivesCommandsWithTheirLineNumbers) {
  Script script;
  for (const auto* line : {"# a script", "", "get a", "quit"}) script.Append(line);
  EXPECT_FALSE(script.Over());
  EXPECT_EQ(script.Take()->number, 3);
  EXPECT_EQ(script.Take()->text, "quit");
  EXPECT_FALSE(script.Take());
}

TEST(ScriptTest, IsOverWhenItIsEmptyAndComplete) {
  Script script;
  EXPECT_FALSE(script.Over());
  script.Append("quit");
  script.Complete();
  EXPECT_FALSE(script.Over());
  script.Take();
  EXPECT_TRUE(script.Over());
}

TEST(ScriptTest, StopsAtTheLineThatMakesNoSense) {
  Script script;
  for (const auto* line : {"get a", "jump", "run", "quit"}) script.Append(line);
  ASSERT_TRUE(script.FaultyLine());
  EXPECT_EQ(script.FaultyLine()->line, 2);
  EXPECT_EQ(script.FaultyLine()->text, "jump");
  EXPECT_TRUE(script.Take());
  EXPECT_FALSE(script.Take());
  EXPECT_TRUE(script.Over());
}

class LoadScriptTest : public ::testing::Test {
 protected:
  void SetUp() override {
    path_ =
        ::testing::TempDir() + "brelant_" + ::testing::UnitTest::GetInstance()->current_test_info()->name();
  }
  void TearDown() override { std::remove(path_.c_str()); }
  void Put(const std::string& content) const { std::ofstream(path_, std::ios::binary) << content; }

  std::string path_;
};

TEST_F(LoadScriptTest, ReadsLinesOfEveryMachine) {
  Put("get a\r\n\nget b\nquit");
  auto script = LoadScript(path_);
  ASSERT_TRUE(script);
  EXPECT_TRUE(script->Take()->command == Command(Get{{"", "a"}, std::nullopt}));
  EXPECT_EQ(script->Take()->number, 3);
  EXPECT_EQ(script->Take()->number, 4);
  EXPECT_TRUE(script->Over());
}

TEST_F(LoadScriptTest, ReadsAnEmptyFile) {
  Put("");
  const auto script = LoadScript(path_);
  ASSERT_TRUE(script);
  EXPECT_TRUE(script->Over());
  EXPECT_FALSE(script->FaultyLine());
}

TEST_F(LoadScriptTest, GivesNothingForWhatIsNoReadableFile) {
  EXPECT_FALSE(LoadScript(path_ + "/none"));
  EXPECT_FALSE(LoadScript(::testing::TempDir()));
}

}  // namespace
}  // namespace brelant::script
