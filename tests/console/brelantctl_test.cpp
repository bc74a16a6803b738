// SPDX-License-Identifier: GPL-3.0-or-later
// The program brelantctl from outside, alone and on a virtual sensor.
#include <QCoreApplication>

#include "console/brelantctl_process.h"

namespace {

using brelant::test::BrelantctlTest;
using brelant::test::json;
using brelant::test::SensorTest;
using ::testing::AllOf;
using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;

TEST_F(BrelantctlTest, OptionsThatMakeNoSenseGiveTwo) {
  for (const QStringList& arguments : {QStringList{},
                                       {"jump"},
                                       {"run", "a", "b"},
                                       {"--speed", "run"},
                                       {"--app-dir", "/no/such", "run"},
                                       {"identify"},
                                       {"show"},
                                       {"watch"},
                                       {"watch", "--port", "1", "--id", "30"},
                                       {"watch", "--port", "1", "--count", "0"},
                                       {"watch", "--port", "1", "--csv", "--json"}}) {
    const auto outcome = Run(arguments);
    EXPECT_EQ(outcome.status, 2) << arguments.join(' ').toStdString();
    EXPECT_EQ(outcome.out, "");
    EXPECT_NE(outcome.error, "");
  }
}

TEST_F(BrelantctlTest, HelpIsNoError) {
  const auto outcome = Run({"--help"});
  EXPECT_EQ(outcome.status, 0);
  for (const auto* command : {"run", "identify", "show", "watch", "--app-dir", "--settings", "--port"}) {
    EXPECT_THAT(outcome.out, HasSubstr(command));
  }
}

TEST_F(BrelantctlTest, AScriptIsCheckedBeforeAnythingRuns) {
  const auto outcome = Run({"run", Put("get txbComPort\njump\n")});
  EXPECT_EQ(outcome.status, 2);
  EXPECT_EQ(outcome.out, "");
  EXPECT_THAT(outcome.error, HasSubstr("script.txt:2: jump"));
  EXPECT_EQ(Run({"run", folder_.filePath("none")}).status, 2);
}

TEST_F(BrelantctlTest, AScriptFromTheStandardInputRunsUpToItsFaultyLine) {
  const auto outcome = Run({"run"}, "get txbComPort text\njump\nget txbID\n");
  EXPECT_EQ(outcome.status, 2);
  const auto lines = outcome.Lines();
  ASSERT_EQ(lines.size(), 4U);
  EXPECT_EQ(lines[0], json::parse(R"({"event":"form","form":"frmComSet","visible":true})"));
  EXPECT_EQ(lines[1], "1");
  EXPECT_EQ(lines[2]["line"], 2);
  EXPECT_EQ(lines[3], json::parse(R"({"event":"exit","status":2})"));
}

TEST_F(BrelantctlTest, EndsWithItsScript) {
  EXPECT_EQ(Run({"run", Put("")}).status, 0);
  EXPECT_EQ(Run({"run"}).status, 0);
  EXPECT_EQ(Run({"run", Put("expect txbComPort text 1")}).status, 0);
  EXPECT_EQ(Run({"run", Put("expect txbComPort text 2")}).status, 1);
}

TEST_F(BrelantctlTest, ThePortIsSetBeforeTheSessionBegins) {
  EXPECT_EQ(Run({"--port", "/dev/pts/99", "run", Put("expect txbComPort text /dev/pts/99")}).status, 0);
  EXPECT_EQ(Run({"run", "--port", "/dev/pts/99", Put("expect txbComPort text /dev/pts/99")}).status, 0);
}

TEST_F(BrelantctlTest, SettingsAreKept) {
  EXPECT_EQ(Run({"run", Put("type txbComPort 7\nclick btnExit\n")}).status, 0);
  EXPECT_EQ(Run({"run", Put("expect txbComPort text 7")}).status, 0);
}

TEST_F(BrelantctlTest, AnotherProgramMayTalkWithIt) {
  QProcess process;
  Start(process, {"run"});
  const auto say = [&](const QByteArray& line) { process.write(line + "\n"); };
  const auto hear = [&] {
    while (!process.canReadLine() && process.waitForReadyRead()) continue;
    return json::parse(process.readLine().toStdString());
  };
  EXPECT_EQ(hear()["form"], "frmComSet");
  say("get txbID text");
  EXPECT_EQ(hear(), "");
  say("click optStartMode(1)");
  say("type txbID 7");
  say("get txbID text");
  EXPECT_EQ(hear(), "7");
  say("quit");
  EXPECT_EQ(hear(), json::parse(R"({"event":"exit","status":0})"));
  EXPECT_EQ(End(process).status, 0);
}

TEST_F(BrelantctlTest, APortThatIsNotThereIsToldAndGivesOne) {
  for (const auto* command : {"identify", "show", "watch"}) {
    const auto outcome = Run({command, "--port", "/dev/no-such-device"});
    EXPECT_EQ(outcome.status, 1) << command;
    EXPECT_EQ(outcome.out, "");
    EXPECT_EQ(outcome.error, "This port is locked by other devise\n");
  }
}

TEST_F(SensorTest, IdentifyTellsWhatIsAttached) {
  StartSensor({"--part", "231"});
  const auto outcome = Run(OnPort({"identify", "--json"}));
  EXPECT_EQ(outcome.status, 0) << outcome.error;
  const auto identity = json::parse(outcome.out);
  EXPECT_EQ(identity["part"], 231);
  EXPECT_EQ(identity["platform"], 5);
  EXPECT_EQ(identity["generation"], 2);
  EXPECT_EQ(identity["variant"], 0);
  EXPECT_EQ(identity["identity"].get<std::string>().substr(0, 3), "231");
}

TEST_F(SensorTest, IdentifyNeedsNoPanel) {
  StartSensor({"--part", "33", "--variant", "3"});
  const auto outcome = Run(OnPort({"identify"}));
  EXPECT_EQ(outcome.status, 0) << outcome.error;
  EXPECT_THAT(outcome.out, AllOf(HasSubstr("part        33\n"), HasSubstr("platform    7\n"),
                                 HasSubstr("generation  2\n")));
  const auto shown = Run(OnPort({"show"}));
  EXPECT_EQ(shown.status, 1);
  EXPECT_EQ(shown.error, "Unknown sensor type, can't connect to sensor.\n");
}

TEST_F(SensorTest, ModbusIsNotSpokenYet) {
  StartSensor({"--part", "231"});
  const auto outcome = Run(OnPort({"identify", "--modbus"}));
  EXPECT_EQ(outcome.status, 1);
  EXPECT_EQ(outcome.error, "Can't read from sensor\n");
}

TEST_F(SensorTest, AddressesOneSensorOfANetwork) {
  StartSensor({"--part", "231", "--id", "5"});
  const auto outcome = Run(OnPort({"show", "--id", "5", "--json"}));
  EXPECT_EQ(outcome.status, 0) << outcome.error;
  EXPECT_EQ(json::parse(outcome.out)["controls"]["txbID"]["text"], "5");
}

TEST_F(SensorTest, ShowPrintsThePanelAndLeavesNothingBehind) {
  const auto last = QString(PROGRAM).section('/', 0, -2) + "/last.set";
  const bool before = QFile::exists(last);
  StartSensor({"--part", "231"});
  const auto outcome = Run(OnPort({"show", "--json"}));
  EXPECT_EQ(outcome.status, 0) << outcome.error;
  const auto panel = json::parse(outcome.out);
  EXPECT_EQ(panel["form"], "frm5");
  EXPECT_EQ(panel["visible"], true);
  EXPECT_NE(panel["controls"]["txbCHact(0)"]["text"], "");
  EXPECT_FALSE(QFile::exists(folder_.filePath("store.ini")));
  EXPECT_EQ(QFile::exists(last), before);
}

TEST_F(SensorTest, WatchPrintsALineAPoll) {
  StartSensor({"--part", "231"});
  const auto outcome = Run(OnPort({"watch", "--json", "--count", "2"}));
  EXPECT_EQ(outcome.status, 0) << outcome.error;
  const auto lines = outcome.Lines();
  ASSERT_EQ(lines.size(), 2U);
  for (const auto& line : lines) {
    EXPECT_TRUE(line["time"].is_string());
    EXPECT_FALSE(line["values"].empty());
  }
}

TEST_F(SensorTest, WatchEndsAtAnInterrupt) {
  StartSensor({"--part", "231"});
  QProcess process;
  Start(process, OnPort({"watch", "--csv"}));
  while (!process.canReadLine()) ASSERT_TRUE(process.waitForReadyRead());
  process.terminate();
  const auto outcome = End(process);
  EXPECT_EQ(outcome.status, 0) << outcome.error;
  EXPECT_THAT(outcome.out, HasSubstr("time,"));
}

TEST_F(SensorTest, ASensorThatVanishesIsToldAndGivesOne) {
  StartSensor({"--part", "231"});
  QProcess process;
  Start(process, OnPort({"watch", "--json"}));
  while (!process.canReadLine()) ASSERT_TRUE(process.waitForReadyRead());
  sensor_.terminate();
  sensor_.waitForFinished();
  const auto outcome = End(process);
  EXPECT_EQ(outcome.status, 1);
  EXPECT_EQ(outcome.error, "No sensor detected, entering simulated mode.\n");
}

}  // namespace

int main(int argc, char** argv) {
  ::testing::InitGoogleTest(&argc, argv);
  const QCoreApplication application(argc, argv);
  return RUN_ALL_TESTS();
}
