// SPDX-License-Identifier: GPL-3.0-or-later
// The panel of the safety system through the program, on a virtual central unit on both protocols.
#include <QDir>
#include <map>

#include "console/brelantctl_process.h"

namespace {

using brelant::test::json;
using brelant::test::Outcome;
using brelant::test::SensorTest;
using ::testing::ElementsAre;
using ::testing::HasSubstr;

const std::vector<std::string> kValues{"TEMP 1", "TWA CO2", "CO2", "TEMP 2", "WEIGHT"};
const std::vector<std::string> kAlarms{"CO2 pre-alarm",     "CO2 main alarm", "TWA alarm",
                                       "TEMP 1 low",        "TEMP 1 high",    "WEIGHT pre-alarm",
                                       "WEIGHT main alarm", "TEMP 2 low",     "TEMP 2 high"};

std::vector<std::string> NamesOf(const json& entries) {
  std::vector<std::string> names;
  for (const auto& entry : entries) names.push_back(entry["name"]);
  return names;
}

std::map<std::string, std::string> States(const json& line) {
  std::map<std::string, std::string> states;
  for (const auto& alarm : line["alarms"]) states[alarm["name"]] = alarm["state"];
  return states;
}

double Value(const json& line, const std::string& name) {
  for (const auto& value : line["values"]) {
    if (value["name"] == name) return std::stod(value["value"].get<std::string>());
  }
  ADD_FAILURE() << "no value " << name;
  return 0;
}

/// With --modbus or without.
class SafetyScriptTest : public SensorTest, public ::testing::WithParamInterface<bool> {
 protected:
  QStringList Road() const { return GetParam() ? QStringList{"--modbus"} : QStringList{}; }
  void StartUnit(const QStringList& options = {}) {
    StartSensor(QStringList{"--part", "154"} + Road() + options);
  }
  Outcome Watch(const QStringList& options) {
    EXPECT_TRUE(QDir(folder_.path()).mkpath("app"));
    return Run(
        OnPort(QStringList{"--app-dir", folder_.filePath("app"), "watch", "--json"} + Road() + options));
  }
  Outcome Play(const std::string& onPanel) {
    EXPECT_TRUE(QDir(folder_.path()).mkpath("app"));
    const auto script = std::string("click optStartMode(0)\nclick optComProt(") + (GetParam() ? "1" : "0") +
                        ")\nclick btnStartKVX\nwait form frmZ7731Chart\nwait poll 1\n" + onPanel +
                        "close\nwait form frmComSet\nquit\n";
    return Run(OnPort({"--app-dir", folder_.filePath("app"), "run", Put(QByteArray::fromStdString(script))}));
  }
};

TEST_P(SafetyScriptTest, WatchShowsValuesAndAlarmsThatFitThem) {
  StartUnit();
  const auto outcome = Watch({"--count", "3"});
  ASSERT_EQ(outcome.status, 0) << outcome.error;
  const auto lines = outcome.Lines();
  ASSERT_EQ(lines.size(), 3U);
  for (const auto& line : lines) {
    EXPECT_EQ(NamesOf(line["values"]), kValues);
    EXPECT_EQ(NamesOf(line["alarms"]), kAlarms);
  }
  // The first poll with known scales is the second at the latest. Levels of a new unit: 2.5 % and 1.5 %.
  for (std::size_t i = 1; i < lines.size(); ++i) {
    const auto states = States(lines[i]);
    if (states.at("CO2 main alarm") == "ERR") continue;
    const double gas = Value(lines[i], "CO2");
    EXPECT_EQ(states.at("CO2 main alarm"), gas >= 2.5 ? "ALARM" : "OK") << lines[i];
    EXPECT_EQ(states.at("CO2 pre-alarm"), gas >= 1.5 ? "ALARM" : "OK") << lines[i];
    EXPECT_EQ(lines[i]["values"][0]["unit"], "C");
    EXPECT_EQ(lines[i]["values"][2]["unit"], "%");
  }
}

TEST_P(SafetyScriptTest, AbsentChannelsAreNotThere) {
  StartUnit({"--variant", "5"});
  const auto outcome = Watch({"--count", "2"});
  ASSERT_EQ(outcome.status, 0) << outcome.error;
  const auto line = outcome.Lines().back();
  EXPECT_THAT(NamesOf(line["values"]), ElementsAre("TEMP 1", "TWA CO2", "CO2"));
  EXPECT_EQ(line["alarms"].size(), 5U);
}

TEST_P(SafetyScriptTest, FaultsOnTheLineShowNothingWrong) {
  StartUnit({"--seed", "5", "--fault", "silence=0.02,wrong=0.02,short=0.02,noise=0.02"});
  const auto outcome = Watch({"--count", "4"});
  ASSERT_EQ(outcome.status, 0) << outcome.error;
  for (const auto& line : outcome.Lines()) {
    for (const auto& alarm : line["alarms"]) {
      EXPECT_THAT(alarm["state"].get<std::string>(), ::testing::AnyOf("OK", "ALARM", "ERR"));
    }
  }
  const auto last = outcome.Lines().back();
  EXPECT_GT(Value(last, "TEMP 1"), 15);
  EXPECT_LT(Value(last, "TEMP 1"), 30);
  EXPECT_LT(Value(last, "CO2"), 6);
}

TEST_P(SafetyScriptTest, AnEditReachesTheUnitAndIsReadBack) {
  StartUnit();
  const auto outcome = Play(
      "type txbKelLevel(1) 3,25\nwait idle\nexpect txbKelLevel(1) text 3.25\n"
      "click mReadfromsensor\nwait idle\nexpect txbKelLevel(1) text 3.25\n"
      "expect txbKelLevel(0) text 1.5\n");
  EXPECT_EQ(outcome.status, 0) << outcome.out << outcome.error;
}

TEST_P(SafetyScriptTest, ALostUnitIsTold) {
  StartUnit();
  EXPECT_TRUE(QDir(folder_.path()).mkpath("app"));
  const auto script = std::string("click optStartMode(0)\nclick optComProt(") + (GetParam() ? "1" : "0") +
                      ")\nclick btnStartKVX\nwait form frmZ7731Chart\nwait poll 1\nwait message 40\n"
                      "expect cbxSimulated value 1\nclose\nwait form frmComSet\nquit\n";
  QProcess process;
  Start(process,
        OnPort({"--app-dir", folder_.filePath("app"), "run", Put(QByteArray::fromStdString(script))}));
  std::string out;
  while (out.find("\"frmZ7731Chart\",\"visible\":true") == std::string::npos) {
    ASSERT_TRUE(process.waitForReadyRead(20000)) << out;
    out += process.readAllStandardOutput().toStdString();
  }
  sensor_.kill();
  sensor_.waitForFinished();
  const auto outcome = End(process);
  EXPECT_EQ(outcome.status, 0) << outcome.out << outcome.error;
  EXPECT_THAT(outcome.out, HasSubstr("No sensor detected, entering simulated mode."));
}

INSTANTIATE_TEST_SUITE_P(Roads, SafetyScriptTest, ::testing::Bool(),
                         [](const auto& of) { return of.param ? "Modbus" : "KiBus"; });

class NamesScriptTest : public SensorTest {
 protected:
  void PutNames(const QByteArray& text) {
    QFile file(folder_.filePath("names.json"));
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write(text);
  }
  Outcome Identify() { return Run(OnPort({"--app-dir", folder_.path(), "identify", "--modbus", "--json"})); }
};

TEST_F(NamesScriptTest, AnIntegratorCorrectsTheUnitThatIsMeant) {
  StartSensor({"--part", "154", "--modbus", "--id", "7"});
  PutNames(R"({"modbus": {"onlyUnit": 7}})");
  const auto outcome = Identify();
  ASSERT_EQ(outcome.status, 0) << outcome.error;
  const auto identity = outcome.Lines().at(0);
  EXPECT_EQ(identity["part"], 154);
  EXPECT_EQ(identity["platform"], 9);
  EXPECT_EQ(identity["variant"], 3);
  EXPECT_EQ(identity["serial"], 1042);
  EXPECT_EQ(identity["identity"], "15401042");
}

TEST_F(NamesScriptTest, AFileThatSaysWhatCannotBeIsTold) {
  StartSensor({"--part", "154", "--modbus"});
  PutNames(R"({"names": [{"name": "raChan_4", "memory": "ram", "address": 20, "bytes": 3}]})");
  const auto outcome = Identify();
  EXPECT_EQ(outcome.status, 1);
  EXPECT_THAT(outcome.error, HasSubstr("names.json, row 1 (\"raChan_4\")"));
}

}  // namespace
