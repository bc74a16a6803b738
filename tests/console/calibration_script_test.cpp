// SPDX-License-Identifier: GPL-3.0-or-later
// Calibrations and settings files by script, on a virtual sensor whose memory is looked at afterwards.
#include <QDir>
#include <QFileInfo>
#include <cmath>
#include <map>

#include "console/brelantctl_process.h"

namespace {

using brelant::test::json;
using brelant::test::Outcome;
using brelant::test::SensorTest;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::IsSupersetOf;

constexpr double kZeroGas = 61440;

/// A panel of platform 5, with a sensor that gets it and concentrations as one types them there.
struct PanelKind {
  std::string form;
  QStringList sensor;
  /// Raw 5900 and 6000.
  std::string other;
  std::string span;

  friend std::ostream& operator<<(std::ostream& out, const PanelKind& kind) { return out << kind.form; }
};

/// What a script printed of the image, step by step: each step begins with a text that was asked for.
class Prints {
 public:
  Prints(const Outcome& outcome, const std::vector<std::string>& steps) {
    std::size_t step = 0;
    for (const auto& line : outcome.Lines()) {
      if (line.is_string()) ++step;
      if (line.contains("image")) {
        bytes_[steps.at(step - 1)][line["from"].get<int>()] = line["bytes"].get<std::vector<int>>();
      }
    }
  }
  int Byte(const std::string& step, int address) const { return Bytes(step, address).at(0); }
  int Word(const std::string& step, int address, std::size_t entry = 0) const {
    const auto& bytes = Bytes(step, address);
    return bytes.at(2 * entry) * 256 + bytes.at(2 * entry + 1);
  }

 private:
  const std::vector<int>& Bytes(const std::string& step, int address) const {
    return bytes_.at(step).at(address);
  }
  std::map<std::string, std::map<int, std::vector<int>>> bytes_;
};

class CalibrationScriptTest : public SensorTest, public ::testing::WithParamInterface<PanelKind> {
 protected:
  void SetUp() override {
    // The definitions alone, so that a session leaves its last settings nowhere else.
    ASSERT_TRUE(QDir(folder_.path()).mkdir("app"));
    const QDir shipped(QFileInfo(PROGRAM).path());
    for (const auto& name : shipped.entryList({"DEF*.PDT"})) {
      ASSERT_TRUE(QFile::copy(shipped.filePath(name), InApp(name)));
    }
    StartSensor(GetParam().sensor + QStringList{"--image", ImageFile()});
  }

  QString InApp(const QString& name) const { return folder_.filePath("app/" + name); }
  QString ImageFile() const { return folder_.filePath("sensor.img"); }
  QString SetFile() const { return folder_.filePath("saved.set"); }

  /// Plays a session: connects, does this, closes the panel and does that in the dialog.
  Outcome Play(const std::string& onPanel, const std::string& inDialog = {}) const {
    const auto script = "click optStartMode(0)\nclick btnStartKVX\nwait form " + GetParam().form +
                        "\nwait poll 1\n" + onPanel + "close\nwait form frmComSet\n" + inDialog + "quit\n";
    return Run(OnPort({"--app-dir", folder_.filePath("app"), "run", Put(QByteArray::fromStdString(script))}));
  }
  std::vector<std::uint8_t> SensorMemory() {
    sensor_.terminate();
    sensor_.waitForFinished();
    QFile file(ImageFile());
    EXPECT_TRUE(file.open(QIODevice::ReadOnly));
    const auto bytes = file.readAll();
    return {bytes.begin(), bytes.end()};
  }
  static std::vector<std::string> Events(const Outcome& outcome, const std::string& event,
                                         const std::string& property) {
    std::vector<std::string> texts;
    for (const auto& line : outcome.Lines()) {
      if (line.contains("event") && line["event"] == event)
        texts.push_back(line[property].get<std::string>());
    }
    return texts;
  }
};

INSTANTIATE_TEST_SUITE_P(, CalibrationScriptTest,
                         ::testing::Values(PanelKind{"frm5", {"--part", "112"}, "900", "1000"},
                                           PanelKind{
                                               "frm5Chart", {"--part", "231", "--variant", "1"}, "0.9", "1"}),
                         [](const auto& kind) { return kind.param.form; });

/// Where a raw value lies in a table of falling values.
double PositionOf(const Prints& prints, int value) {
  const auto entry = [&](std::size_t e) { return prints.Word("start", 34, e); };
  for (std::size_t e = 0; e < 16; ++e) {
    if (value > entry(e) || value < entry(e + 1) || entry(e) == entry(e + 1)) continue;
    return (static_cast<double>(value - entry(e)) / (entry(e + 1) - entry(e)) + static_cast<double>(e)) *
           4096;
  }
  return -1;
}

TEST_P(CalibrationScriptTest, CalibratesInTheOrderOfAWorkshop) {
  const auto& kind = GetParam();
  std::vector<std::string> steps;
  const auto step = [&steps](const std::string& name) {
    steps.push_back(name);
    return std::string("get txbSN text\n");
  };
  const std::string zeroAndSignal = "wait idle\nimage ram 70 2\nimage ram 130 2\n";
  const std::string note = "click mCalCO2span\nwait form frmSpanCalNote\nclick frmSpanCalNote.";
  const std::string refuseNote = note + "Command1\n";
  const std::string passNote = note + "Command2\n";
  std::string script = step("start") + "image eeprom 34 34\nimage ram 216 2\n";
  script += step("zero") + "click mCalCO2Zero\n" + zeroAndSignal;
  script += step("air") + "click mCalCO2Background\n" + zeroAndSignal;
  script += step("other") + "answer " + kind.other + "\nclick mCalCO2Other\n" + zeroAndSignal;
  script += step("cancelled") + "answer cancel\nclick mCalCO2Other\nwait idle\n" + refuseNote +
            "wait idle\nanswer cancel\n" + passNote + "wait idle\nanswer cancel\nclick CalTemp\nwait idle\n" +
            "image ram 128 2\nimage ram 130 2\nimage ram 138 2\n";
  script += step("span") + "answer " + kind.span + "\n" + passNote + zeroAndSignal +
            "image ram 138 2\nimage ram 202 1\nimage ram 234 1\n";
  script +=
      step("warm") + "wait poll 1\nanswer 23\nclick CalTemp\nwait idle\nimage ram 20 2\nimage ram 128 2\n";
  const auto outcome = Play(script);
  ASSERT_EQ(outcome.status, 0) << outcome.out << outcome.error;
  const Prints prints(outcome, steps);

  const auto zeroFor = [&](const std::string& when, double position) {
    return position * 2048 / prints.Word(when, 70);
  };
  // Cut to whole numbers, which single precision may do one beside.
  EXPECT_NEAR(prints.Word("zero", 130), std::floor(zeroFor("zero", kZeroGas)), 1);
  // A new sensor's span word is 1.
  EXPECT_NEAR(prints.Word("air", 130), std::floor(zeroFor("air", prints.Word("start", 216))), 20);
  EXPECT_NEAR(prints.Word("other", 130), std::floor(zeroFor("other", PositionOf(prints, 5900))), 1);
  EXPECT_EQ(prints.Word("cancelled", 128), 4096);
  EXPECT_EQ(prints.Word("cancelled", 130), prints.Word("other", 130));
  EXPECT_EQ(prints.Word("cancelled", 138), 2048);
  const double deviation = (prints.Byte("span", 202) - 127) * (prints.Byte("span", 234) - 127) / 32.0;
  const double absorbed =
      kZeroGas - static_cast<double>(prints.Word("span", 130)) * prints.Word("span", 70) / 2048;
  EXPECT_NEAR(prints.Word("span", 138),
              (kZeroGas - PositionOf(prints, 6000)) * 2048 / absorbed / ((deviation + 2048) / 2048), 1.5);
  EXPECT_EQ(prints.Word("warm", 128), 4096 + 5000 + 2300 - prints.Word("warm", 20));

  EXPECT_THAT(Events(outcome, "message", "text"), IsEmpty());
  EXPECT_THAT(Events(outcome, "input", "prompt"),
              ElementsAre("Please enter CO2 concentration", "Please enter CO2 concentration",
                          "Please enter span gas concentration", "Please enter correct temperature",
                          "Please enter span gas concentration", "Please enter correct temperature"));
  EXPECT_THAT(Events(outcome, "progress", "text"),
              IsSupersetOf({"Please wait", "Calibrating CO2 zero point", "Calibrating CO2 span",
                            "Calibrating temperature"}));

  // In the sensor, and saved there.
  const auto memory = SensorMemory();
  ASSERT_EQ(memory.size(), 256U + 512);
  const auto word = [&](std::size_t address) { return memory[address] * 256 + memory[address + 1]; };
  for (const std::size_t copy : {0U, 256U}) {
    EXPECT_EQ(word(copy + 128), prints.Word("warm", 128));
    EXPECT_EQ(word(copy + 130), prints.Word("other", 130));
    EXPECT_EQ(word(copy + 138), prints.Word("span", 138));
  }
}

TEST_P(CalibrationScriptTest, SavesLoadsAndSends) {
  const auto file = "file " + SetFile().toStdString() + "\n";
  const bool isChart = GetParam().form == "frm5Chart";
  const auto outcome =
      Play("type txbID 9\n" + file + "click mSavesettings\nwait idle\n" +
               "file cancel\nclick mSavesettings\nwait idle\n" + "type txbID 5\n" + file +
               "click mLoadsettings\nwait idle\nexpect txbID text 9\n" +
               "file cancel\nclick mLoadsettings\nwait idle\nexpect txbID text 9\n" +
               "type txbID 7\nclick mSendtosensor\nwait idle\n",
           file + "click Command5\nclick cmdSendFile\nwait progress Reading sensor\nwait idle\n");
  ASSERT_EQ(outcome.status, 0) << outcome.out << outcome.error;
  EXPECT_THAT(Events(outcome, "progress", "text"),
              IsSupersetOf({"Saving settings", "Loading settings", "Sending to sensor", "Reading sensor"}));
  QFile saved(SetFile());
  ASSERT_TRUE(saved.open(QIODevice::ReadOnly));
  const auto settings = saved.readAll();
  ASSERT_EQ(settings.size(), 261);
  const auto kept = [&](int address) { return static_cast<std::uint8_t>(settings[21 + address - 16]); };
  EXPECT_EQ(kept(208), 9);

  const auto memory = SensorMemory();
  if (isChart) {
    // The chart sends five bytes, of which the variant takes the sensor out of reach of a file.
    EXPECT_THAT(Events(outcome, "message", "text"),
                ElementsAre("Unknown sensor type, can't connect to sensor."));
    EXPECT_EQ(memory[208], 1);
    EXPECT_EQ(memory[226], 3);
    EXPECT_EQ(memory[256 + 226], 3);
  } else {
    // 7 was sent by the panel, then 9 by the file.
    EXPECT_THAT(Events(outcome, "message", "text"), IsEmpty());
    EXPECT_EQ(memory[208], 9);
    EXPECT_EQ(memory[256 + 208], 9);
    for (std::size_t i = 162; i < 197; ++i) EXPECT_EQ(memory[i], kept(static_cast<int>(i))) << i;
  }
}

}  // namespace
