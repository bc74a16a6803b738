// SPDX-License-Identifier: GPL-3.0-or-later
// The panel of platforms 61 and 7 through the program, on a virtual sensor whose levels lie around its
// values.
#include <QDir>
#include <map>

#include "console/brelantctl_process.h"

namespace {

using brelant::test::json;
using brelant::test::Outcome;
using brelant::test::SensorTest;
using ::testing::IsEmpty;

using Bytes = std::vector<std::uint8_t>;

constexpr std::size_t kRam = 256;

class Panel61ScriptTest : public SensorTest {
 protected:
  QString ImageFile() const { return folder_.filePath("sensor.img"); }
  Bytes Image() const {
    QFile file(ImageFile());
    EXPECT_TRUE(file.open(QIODevice::ReadOnly));
    const auto bytes = file.readAll();
    return {bytes.begin(), bytes.end()};
  }
  void PutImage(const Bytes& image) const {
    QFile file(ImageFile());
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    for (const auto byte : image) file.putChar(static_cast<char>(byte));
  }
  static int Word(const Bytes& image, std::size_t eeprom) {
    return image[kRam + eeprom] * 256 + image[kRam + eeprom + 1];
  }
  static void PutWord(Bytes& image, std::size_t eeprom, int word) {
    image[kRam + eeprom] = static_cast<std::uint8_t>(word / 256);
    image[kRam + eeprom + 1] = static_cast<std::uint8_t>(word % 256);
  }
  void StopSensor() {
    sensor_.terminate();
    sensor_.waitForFinished();
  }
  /// A sensor with these levels, as words of its EEPROM.
  void StartWithLevels(const QStringList& options, const std::map<std::size_t, int>& levels) {
    const auto all = options + QStringList{"--image", ImageFile()};
    StartSensor(all);
    StopSensor();
    auto image = Image();
    for (const auto& [address, word] : levels) PutWord(image, address, word);
    PutImage(image);
    StartSensor(all);
  }
  /// Plays a session: connects, does this and closes the panel.
  Outcome Play(const std::string& onPanel) {
    EXPECT_TRUE(QDir(folder_.path()).mkpath("app"));
    const auto script = "click optStartMode(0)\nclick btnStartKVX\nwait form frm61\nwait poll 1\n" + onPanel +
                        "close\nwait form frmComSet\nquit\n";
    return Run(OnPort({"--app-dir", folder_.filePath("app"), "run", Put(QByteArray::fromStdString(script))}));
  }
  static double Value(const json& line, const std::string& name) {
    for (const auto& value : line["values"]) {
      if (value["name"] == name) return std::stod(value["value"].get<std::string>());
    }
    ADD_FAILURE() << "no value " << name;
    return 0;
  }
  /// States by name.
  static std::map<std::string, std::string> Alarms(const json& line) {
    std::map<std::string, std::string> alarms;
    for (const auto& alarm : line["alarms"]) alarms[alarm["name"]] = alarm["state"];
    return alarms;
  }
  static std::string StateIf(bool alarm) { return alarm ? "ALARM" : "OK"; }
};

// A new sensor starts at 1.83 % CO2 and rises by 0.18 % a second, and at 19.3 % O2, rising by 0.13 %.

TEST_F(Panel61ScriptTest, WatchShowsTheFixedAlarmsAsTheValuesCrossTheirLevels) {
  StartWithLevels({"--part", "215", "--variant", "0"},
                  {{76, 5000 + 2100}, {78, 5000 + 2600}, {80, 5000 + 1980}, {84, 5000 + 1800}});
  const auto outcome = Run(OnPort({"watch", "--json", "--count", "3"}));
  ASSERT_EQ(outcome.status, 0) << outcome.error;
  const auto lines = outcome.Lines();
  ASSERT_EQ(lines.size(), 3U);
  std::vector<std::string> main;
  for (const auto& line : lines) {
    const double gas = Value(line, "CO2");
    const double oxygen = Value(line, "O2");
    const auto alarms = Alarms(line);
    ASSERT_EQ(alarms.size(), 4U);
    EXPECT_EQ(alarms.at("CO2 PRE ALARM"), StateIf(gas > 2.1)) << line;
    EXPECT_EQ(alarms.at("CO2 MAIN ALARM"), StateIf(gas > 2.6)) << line;
    EXPECT_EQ(alarms.at("O2 PRE ALARM"), StateIf(oxygen < 19.8)) << line;
    EXPECT_EQ(alarms.at("O2 MAIN ALARM"), StateIf(oxygen < 18)) << line;
    main.push_back(alarms.at("CO2 MAIN ALARM"));
    EXPECT_EQ(line["values"].size(), 3U);
  }
  EXPECT_EQ(main.back(), "ALARM");
}

TEST_F(Panel61ScriptTest, WatchShowsTheRowsAndTheStatusOfPlatform7) {
  StartWithLevels({"--part", "50"}, {{834, 2100}, {840, 2600}, {846, 1980}});
  const auto outcome = Run(OnPort({"watch", "--json", "--count", "3"}));
  ASSERT_EQ(outcome.status, 0) << outcome.error;
  const auto lines = outcome.Lines();
  ASSERT_EQ(lines.size(), 3U);
  std::vector<std::string> main;
  for (const auto& line : lines) {
    const double gas = Value(line, "CO2");
    const double oxygen = Value(line, "O2");
    const auto alarms = Alarms(line);
    ASSERT_EQ(alarms.size(), 2U);
    EXPECT_EQ(alarms.at("PRE ALARM"), StateIf(gas > 2.1 || oxygen < 19.8)) << line;
    EXPECT_EQ(alarms.at("MAIN ALARM"), StateIf(gas > 2.6)) << line;
    main.push_back(alarms.at("MAIN ALARM"));
    ASSERT_EQ(line["values"].size(), 4U);
    EXPECT_EQ(line["values"][3]["name"], "Status");
    EXPECT_EQ(line["values"][3]["value"], "OK");
  }
  EXPECT_EQ(main.back(), "ALARM");
}

TEST_F(Panel61ScriptTest, WatchTellsOfNoAlarmsWhereThereAreNone) {
  StartSensor({"--part", "215", "--variant", "1"});
  const auto outcome = Run(OnPort({"watch", "--json", "--count", "1"}));
  ASSERT_EQ(outcome.status, 0) << outcome.error;
  ASSERT_EQ(outcome.Lines().size(), 1U);
  EXPECT_THAT(outcome.Lines()[0]["alarms"], IsEmpty());
  EXPECT_EQ(outcome.Lines()[0]["values"].size(), 2U);
}

TEST_F(Panel61ScriptTest, SendsTheSettingsOfPlatform7) {
  StartSensor({"--part", "50", "--variant", "1", "--image", ImageFile()});
  const auto outcome = Play(
      "type txbID 9\n"
      "type lblAlarm7Level(0) 2,5\n"
      "click lblAlarm7Slope(1)\n"
      "choose O2\nclick lblAlarm7Channel(0)\n"
      "expect lblAlarm7Channel(0) text O2\n"
      "expect lblAlarm7Level(0) text 25\n"
      "click mSendtosensor\nwait idle\n"
      "click mReadfromsensor\nwait idle\n"
      "expect txbID text 9\nexpect lblAlarm7Slope(1) text <\n");
  ASSERT_EQ(outcome.status, 0) << outcome.out << outcome.error;
  StopSensor();
  const auto image = Image();
  ASSERT_EQ(image.size(), kRam + 1024);
  EXPECT_EQ(image[kRam + 16], 9);
  EXPECT_EQ(Word(image, 834), 2500);
  EXPECT_EQ(image[kRam + 842], 128);
  EXPECT_EQ(image[kRam + 925], 6);
  EXPECT_EQ(image[kRam + 1023], 2);
}

TEST_F(Panel61ScriptTest, SavesLoadsAndSendsTheSettingsOfPlatform61) {
  StartSensor({"--part", "215", "--variant", "0", "--image", ImageFile()});
  const auto file = "file " + folder_.filePath("saved.set").toStdString() + "\n";
  const auto outcome = Play("type txbAlarm061Level(0) 2.5\n" + file + "click mSavesettings\nwait idle\n" +
                            "type txbAlarm061Level(0) 1\n" + file +
                            "click mLoadsettings\nwait idle\nexpect txbAlarm061Level(0) text 2.5\n" +
                            "click mSendtosensor\nwait idle\n");
  ASSERT_EQ(outcome.status, 0) << outcome.out << outcome.error;
  StopSensor();
  const auto image = Image();
  ASSERT_EQ(image.size(), kRam + 512);
  EXPECT_EQ(Word(image, 76), 7500);
  EXPECT_EQ(Word(image, 78), 8000);
}

}  // namespace
