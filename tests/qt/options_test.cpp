// SPDX-License-Identifier: GPL-3.0-or-later
#include "qt/options.h"

#include <CLI/CLI.hpp>
#include <QCoreApplication>
#include <QFileInfo>
#include <QTemporaryDir>

#include <gtest/gtest.h>

namespace brelant {
namespace {

Options Parse(std::vector<std::string> arguments) {
  CLI::App app;
  Options options;
  AddCommonOptions(app, options);
  std::reverse(arguments.begin(), arguments.end());
  app.parse(arguments);
  return options;
}

TEST(OptionsTest, AreEmptyUnlessGiven) {
  const auto options = Parse({});
  EXPECT_EQ(options.appDir, "");
  EXPECT_EQ(options.settings, "");
  EXPECT_EQ(options.port, "");
}

TEST(OptionsTest, AreTaken) {
  const QTemporaryDir folder;
  const auto path = folder.path().toStdString();
  const auto options = Parse({"--app-dir", path, "--settings", "s.ini", "--port", "/dev/pts/3"});
  EXPECT_EQ(options.appDir, path);
  EXPECT_EQ(options.settings, "s.ini");
  EXPECT_EQ(options.port, "/dev/pts/3");
}

TEST(OptionsTest, AnApplicationFolderThatIsNotThereMakesNoSense) {
  EXPECT_THROW(Parse({"--app-dir", "/no/such/folder"}), CLI::ParseError);
}

TEST(OptionsTest, TheToldFolderWins) {
  Options options;
  options.appDir = "/some/where";
  EXPECT_EQ(ResolveAppDir(options), "/some/where");
}

TEST(OptionsTest, TheFolderBesideTheProgramIsUsedIfItCanBeWritten) {
  const auto beside = QCoreApplication::applicationDirPath();
  if (!QFileInfo(beside).isWritable()) GTEST_SKIP() << "it cannot";
  EXPECT_EQ(ResolveAppDir({}), beside.toStdString());
}

}  // namespace
}  // namespace brelant
