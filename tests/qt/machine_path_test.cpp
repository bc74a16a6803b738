// SPDX-License-Identifier: GPL-3.0-or-later
#include "qt/machine_path.h"

#include <QFile>
#include <QTemporaryDir>

#include <gtest/gtest.h>

namespace brelant {
namespace {

struct Case {
  const char* told;
  const char* machines;
};

class MachinePathTest : public ::testing::TestWithParam<Case> {};

TEST_P(MachinePathTest, IsTheMachinesForm) {
  EXPECT_EQ(MachinePath(GetParam().told).toStdString(), GetParam().machines);
}

INSTANTIATE_TEST_SUITE_P(
    Paths, MachinePathTest,
    ::testing::Values(Case{"/home/u/app\\\\Last.set", "/home/u/app/last.set"},
                      Case{"/home/u/app\\\\last.set", "/home/u/app/last.set"}, Case{"LAST.SET", "last.set"},
                      Case{"/home/u/app/\\\\ComLogg.txt", "/home/u/app/ComLogg.txt"},
                      Case{"/home/u/app\\\\Vega 3.sim", "/home/u/app/Vega 3.sim"},
                      Case{"/home/u/app\\\\DEF00231.PDT", "/home/u/app/DEF00231.PDT"},
                      Case{"g:\\produktion\\def\\", "g:/produktion/def/"}, Case{"/a//b///c", "/a/b/c"},
                      Case{"/a/last.set/b", "/a/last.set/b"}, Case{"/a/Last.set.bak", "/a/Last.set.bak"},
                      Case{"/a/my last.set", "/a/my last.set"},
                      Case{"/m\xc3\xa4t/\xc3\xa5.set", "/mät/å.set"}, Case{"", ""}));

class ExistingPathTest : public ::testing::Test {
 protected:
  std::string In(const std::string& name) { return folder_.path().toStdString() + "\\\\" + name; }
  std::string Plain(const std::string& name) { return folder_.path().toStdString() + "/" + name; }
  void Make(const std::string& name) {
    ASSERT_TRUE(QFile(QString::fromStdString(Plain(name))).open(QIODevice::WriteOnly));
  }
  std::string Found(const std::string& name) { return ExistingPath(In(name)).toStdString(); }

  QTemporaryDir folder_;
};

TEST_F(ExistingPathTest, FindsANameInAnotherCase) {
  Make("def00231.pdt");
  EXPECT_EQ(Found("DEF00231.PDT"), Plain("def00231.pdt"));
}

TEST_F(ExistingPathTest, PrefersTheExactName) {
  Make("def00231.pdt");
  Make("DEF00231.PDT");
  Make("Def00231.pdt");
  EXPECT_EQ(Found("DEF00231.PDT"), Plain("DEF00231.PDT"));
}

TEST_F(ExistingPathTest, DoesNotGuessAmongSeveral) {
  Make("def00231.pdt");
  Make("Def00231.pdt");
  EXPECT_EQ(Found("DEF00231.PDT"), Plain("DEF00231.PDT"));
}

TEST_F(ExistingPathTest, KeepsTheNameOfWhatIsNotThere) {
  Make("other");
  EXPECT_EQ(Found("DEF00231.PDT"), Plain("DEF00231.PDT"));
}

TEST_F(ExistingPathTest, LastSettingsAreOneFileInWhateverCase) {
  Make("last.set");
  EXPECT_EQ(Found("Last.set"), Plain("last.set"));
  EXPECT_EQ(Found("LAST.SET"), Plain("last.set"));
}

TEST_F(ExistingPathTest, LastSettingsWrittenInAnotherCaseElsewhereAreFound) {
  Make("Last.Set");
  EXPECT_EQ(Found("last.set"), Plain("Last.Set"));
}

}  // namespace
}  // namespace brelant
