// SPDX-License-Identifier: GPL-3.0-or-later
// The panels of platform 8 through the program, on a virtual unit.
#include <QDir>

#include "console/brelantctl_process.h"

namespace {

using brelant::test::json;
using brelant::test::Outcome;
using brelant::test::SensorTest;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

/// The texts of what happened of one kind.
std::vector<std::string> Texts(const Outcome& outcome, const std::string& event, const std::string& key) {
  std::vector<std::string> texts;
  for (const auto& line : outcome.Lines()) {
    if (line.is_object() && line.value("event", "") == event) texts.push_back(line[key]);
  }
  return texts;
}

class Panel8ScriptTest : public SensorTest {
 protected:
  void StartUnit(int variant) { StartSensor({"--part", "175", "--variant", QString::number(variant)}); }
  Outcome Play(const std::string& panel, const std::string& onPanel) {
    EXPECT_TRUE(QDir(folder_.path()).mkpath("app"));
    const auto script = "click optStartMode(0)\nclick optComProt(0)\nclick btnStartKVX\nwait form " + panel +
                        "\nwait poll 1\n" + onPanel + "close\nwait form frmComSet\nquit\n";
    return Run(OnPort({"--app-dir", folder_.filePath("app"), "run", Put(QByteArray::fromStdString(script))}));
  }
  std::string SettingsFile() const { return folder_.filePath("a.set").toStdString(); }
};

TEST_F(Panel8ScriptTest, IdentifyTellsTheUnit) {
  StartUnit(2);
  const auto outcome = Run(OnPort({"identify", "--json"}));
  ASSERT_EQ(outcome.status, 0) << outcome.error;
  const json expected{{"part", 175},  {"platform", 8},  {"generation", 0},
                      {"variant", 2}, {"serial", 1042}, {"identity", "17501042"}};
  EXPECT_EQ(outcome.Lines().at(0), expected);
}

TEST_F(Panel8ScriptTest, WatchShowsTheWeightWhereThereIsATank) {
  for (const int variant : {1, 2}) {
    StartUnit(variant);
    const auto outcome = Run(OnPort({"watch", "--json", "--count", "1"}));
    ASSERT_EQ(outcome.status, 0) << outcome.error;
    const auto line = outcome.Lines().at(0);
    EXPECT_EQ(line["values"].size(), variant == 1 ? 3U : 4U);
    EXPECT_EQ(line["values"].back()["name"], variant == 1 ? "TWA CO2" : "WEIGHT");
    EXPECT_EQ(line["alarms"].size(), 5U);
    TearDown();
  }
}

TEST_F(Panel8ScriptTest, AnEditIsSavedAndComesBackFromItsFile) {
  StartUnit(1);
  const auto outcome = Play("frm8Chart",
                            "type txbKelLevel(1) 3,25\nwait idle\nexpect txbKelLevel(1) text 3.25\n"
                            "file " +
                                SettingsFile() +
                                "\nclick mSavesettings\nwait idle\n"
                                "type txbKelLevel(1) 2\nwait idle\nexpect txbKelLevel(1) text 2\n"
                                "file " +
                                SettingsFile() +
                                "\nclick mLoadsettings\nwait idle\n"
                                "expect txbKelLevel(1) text 3.25\n"
                                "click mReadfromsensor\nwait idle\nexpect txbKelLevel(1) text 3.25\n");
  EXPECT_EQ(outcome.status, 0) << outcome.out << outcome.error;
  EXPECT_THAT(Texts(outcome, "message", "text"), IsEmpty());
}

TEST_F(Panel8ScriptTest, EveryCalibrationRunsFromTheMenu) {
  StartUnit(2);
  const auto outcome = Play("frm8_2Chart",
                            "answer 20\nclick CalTemp\nwait idle\n"
                            "click mCalCO2Zero\nwait idle\nclick mCalCO2Background\nwait idle\n"
                            "answer 0.8\nclick mCalCO2Other\nwait idle\n"
                            "answer 4\nclick mCalCO2span\nwait idle\n"
                            "reply yes\nclick mCalWeightEmpty\nwait idle\n"
                            "click mTWAreset\nwait idle\n"
                            "click mLoggerExp\nwait idle\nclick mLoggerCheckT\nwait idle\n"
                            "click mLoggerSetT\nwait idle\nclick mLoggerReset\nwait idle\n"
                            "expect cbxSimulated value 0\n");
  EXPECT_EQ(outcome.status, 0) << outcome.out << outcome.error;
  EXPECT_THAT(Texts(outcome, "input", "prompt"),
              ElementsAre("Please enter correct temperature", "Please enter CO2 concentration",
                          "Please enter span gas concentration"));
  EXPECT_THAT(
      Texts(outcome, "message", "text"),
      ElementsAre("Start empty tank calibration?", "Empty tank calibration completed", "Unkown protokol"));
}

}  // namespace
