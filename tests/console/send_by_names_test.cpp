// SPDX-License-Identifier: GPL-3.0-or-later
// `brelantctl send` to the units that are reached by name: a virtual unit at the far end of the line has the
// file's values afterwards, or none of them.
#include <QDir>
#include <map>
#include <numeric>

#include "console/brelantctl_process.h"

namespace {

using brelant::test::json;
using brelant::test::Outcome;
using brelant::test::SensorTest;
using ::testing::IsEmpty;

using Bytes = std::vector<std::uint8_t>;

constexpr std::size_t kEeprom = 8192;
constexpr const char* kOtherSensor = "This setfile can't be used on this sensor\n";

void Append(Bytes& bytes, const Bytes& more) {
  bytes.insert(bytes.end(), more.begin(), more.end());
}

Bytes LittleEndian(int value, int width) {
  Bytes bytes;
  for (int i = 0; i < width; ++i) bytes.push_back(static_cast<std::uint8_t>(value >> 8 * i & 255));
  return bytes;
}

Bytes Parameter(const std::string& name, int mask, int value) {
  Bytes bytes{static_cast<std::uint8_t>(name.size())};
  Append(bytes, {name.begin(), name.end()});
  Append(bytes, LittleEndian(mask, 4));
  Append(bytes, LittleEndian(value, 4));
  return bytes;
}

/// A settings file (docs/files.md): ID 7, the level of CO2 that is eaRegPar0_5, and 5 at E7124.
Bytes SettingsFile(int part, int model, int level) {
  Bytes blocks{30, 0, 9, 0, static_cast<std::uint8_t>(part)};
  Append(blocks, LittleEndian(117, 4));
  Append(blocks, LittleEndian(model, 4));
  auto parameters = Parameter("eaSensorID_0", 255, 7);
  Append(parameters, Parameter("eaRegPar0_5", 65535, level));
  Append(blocks, {31, 0});
  Append(blocks, LittleEndian(static_cast<int>(parameters.size()), 2));
  Append(blocks, parameters);
  Append(blocks, {32, 0, 7, 0, 1, 212, 27, 1, 0, 255, 5});
  Bytes file{1};
  Append(file, LittleEndian(std::accumulate(blocks.begin(), blocks.end(), 0), 2));
  Append(file, LittleEndian(static_cast<int>(blocks.size()), 2));
  file.resize(17);
  file[5] = 3;
  Append(file, blocks);
  return file;
}

struct Unit {
  const char* name;
  int part;
  int model;
  bool isModbus;
  const char* panel;
  /// The level, raw, as the panel shows it, and where.
  int level;
  const char* shown;
  const char* field;
};

class SendByNamesTest : public SensorTest, public ::testing::WithParamInterface<Unit> {
 protected:
  void SetUp() override { ASSERT_TRUE(QDir(folder_.path()).mkpath("app")); }

  static QStringList Road() { return GetParam().isModbus ? QStringList{"--modbus"} : QStringList{}; }
  void StartUnit() {
    StartSensor(QStringList{"--part", QString::number(GetParam().part), "--variant",
                            QString::number(GetParam().model), "--image", folder_.filePath("unit.img")} +
                Road());
  }
  /// Ends the unit. What it has in EEPROM.
  Bytes Stop() {
    sensor_.terminate();
    EXPECT_TRUE(sensor_.waitForFinished());
    QFile file(folder_.filePath("unit.img"));
    EXPECT_TRUE(file.open(QIODevice::ReadOnly));
    const auto eeprom = file.readAll().right(kEeprom);
    return {eeprom.begin(), eeprom.end()};
  }
  Outcome Send(const Bytes& content, const QStringList& options = {}) {
    QFile file(FileName());
    EXPECT_TRUE(file.open(QIODevice::WriteOnly));
    for (const auto byte : content) file.putChar(static_cast<char>(byte));
    file.close();
    return Run(
        OnPort(QStringList{"--app-dir", folder_.filePath("app"), "send", FileName()} + Road() + options));
  }
  QString FileName() const { return folder_.filePath("mine.set"); }
  Outcome Play(const std::string& onPanel) {
    const std::string panel = GetParam().panel;
    const auto script = std::string("click optStartMode(0)\nclick optComProt(") +
                        (GetParam().isModbus ? "1" : "0") + ")\nclick btnStartKVX\nwait form " + panel +
                        "\nwait poll 1\n" + onPanel + "close\nwait form frmComSet\nquit\n";
    return Run(OnPort({"--app-dir", folder_.filePath("app"), "run", Put(QByteArray::fromStdString(script))}));
  }
  Bytes NewUnit() {
    StartUnit();
    return Stop();
  }
  /// The cells that differ, with what they are in the second one.
  static std::map<std::size_t, int> Changes(const Bytes& before, const Bytes& after) {
    std::map<std::size_t, int> changes;
    for (std::size_t i = 0; i < kEeprom; ++i) {
      if (before.at(i) != after.at(i)) changes[i] = after[i];
    }
    return changes;
  }
};

INSTANTIATE_TEST_SUITE_P(
    Units, SendByNamesTest,
    ::testing::Values(
        Unit{"CentralUnitOnKiBus", 154, 3, false, "frmZ7731Chart", 325, "3.25", "txbKelLevel(1)"},
        Unit{"CentralUnitOnModbus", 154, 3, true, "frmZ7731Chart", 325, "3.25", "txbKelLevel(1)"},
        Unit{"WithoutATank", 40, 1, false, "frm8Chart", 1750, "1.75", "txbKelLevel(0)"},
        Unit{"WithATank", 40, 2, false, "frm8_2Chart", 1750, "1.75", "txbKelLevel(0)"}),
    [](const auto& unit) { return unit.param.name; });

TEST_P(SendByNamesTest, TheUnitHasTheValuesOfTheFile) {
  const auto& [name, part, model, isModbus, panel, level, shown, field] = GetParam();
  const auto before = NewUnit();
  // All differ from what a new unit has.
  ASSERT_NE(before[4160], 7);
  ASSERT_NE(before[4244], level / 256);
  ASSERT_NE(before[4245], level % 256);
  ASSERT_NE(before[7124], 5);
  StartUnit();
  const auto outcome = Send(SettingsFile(part, model, level));
  EXPECT_EQ(outcome.status, 0);
  EXPECT_EQ(outcome.error, "");
  EXPECT_EQ(outcome.out, "Sent " + FileName().toStdString() + "\n");
  const auto played = Play(std::string("expect ") + field + " text " + shown + "\nexpect txbID text 7\n");
  EXPECT_EQ(played.status, 0) << played.out << played.error;
  const std::map<std::size_t, int> expected{{4160, 7}, {4244, level / 256}, {4245, level % 256}, {7124, 5}};
  EXPECT_EQ(Changes(before, Stop()), expected);
}

TEST_P(SendByNamesTest, AFileOfAnotherUnitChangesNothing) {
  const auto& [name, part, model, isModbus, panel, level, shown, field] = GetParam();
  const auto before = NewUnit();
  StartUnit();
  // Of the other platform, and of another model.
  for (const auto& file :
       {SettingsFile(part == 40 ? 154 : 40, model, level), SettingsFile(part, model == 1 ? 2 : 1, level)}) {
    const auto outcome = Send(file);
    EXPECT_EQ(outcome.status, 1);
    EXPECT_EQ(outcome.out, "");
    EXPECT_EQ(outcome.error, kOtherSensor);
  }
  EXPECT_THAT(Changes(before, Stop()), IsEmpty());
}

TEST_P(SendByNamesTest, ADamagedFileChangesNothing) {
  const auto& [name, part, model, isModbus, panel, level, shown, field] = GetParam();
  const auto before = NewUnit();
  StartUnit();
  auto file = SettingsFile(part, model, level);
  file.back() ^= 1;
  const auto outcome = Send(file);
  EXPECT_EQ(outcome.status, 1);
  EXPECT_EQ(outcome.error, "File is damaged " + FileName().toStdString() + "\n");
  EXPECT_THAT(Changes(before, Stop()), IsEmpty());
}

TEST_P(SendByNamesTest, TheAnswerForAProgramIsAnObject) {
  const auto& unit = GetParam();
  StartUnit();
  const auto outcome = Send(SettingsFile(unit.part, unit.model, unit.level), {"--json"});
  EXPECT_EQ(outcome.status, 0) << outcome.error;
  EXPECT_EQ(json::parse(outcome.out), (json{{"sent", FileName().toStdString()}}));
}

}  // namespace
