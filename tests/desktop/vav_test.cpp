// SPDX-License-Identifier: GPL-3.0-or-later
// The ends of a damper that are moved from the real window, on a sensor at the line's own speed.
#include <QLineEdit>
#include <chrono>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "panel_fixture.h"

namespace brelant::test {
namespace {

using testing::AnyOf;
using testing::Each;
using testing::ElementsAreArray;
using testing::IsEmpty;

using Memory = std::vector<int>;

/// A unit whose damper goes from 25 to 75 %. A step is looked at when the panel is idle again, with all that
/// went over the line for it.
class PacedVavTest : public PanelTest, public testing::WithParamInterface<int> {
 protected:
  PacedVavTest() {
    Start(GetParam(), 1);
    Sensor() = bench::VirtualSensor({.part = GetParam(), .variant = 1, .pace = true});
    // A function feeds the damper yet. The bytes beside and behind are not those of the set-up.
    Sensor().Eeprom()[Cleared().front()] = 4;
    Sensor().Eeprom()[Beside()] = 64 + 2;
    Sensor().Eeprom()[GetParam() == 222 ? 142 : 144] = 70;
    AfterPoll([this] {
      EXPECT_EQ(Text("txbUseMax"), "75");
      EXPECT_EQ(Text("txbUseMin"), "25");
      Look();
    });
  }

  bench::VirtualSensor& Sensor() const { return desk->port.sensor; }
  /// The byte that stands for the end that was moved last; the bytes around it that a limit puts to 0.
  std::size_t Base() const { return GetParam() == 222 ? 139 : 142; }
  std::vector<std::size_t> Cleared() const {
    return GetParam() == 222 ? std::vector<std::size_t>{138, 140} : std::vector<std::size_t>{141, 143};
  }
  /// Goes over the line with them as it is in the image.
  std::size_t Beside() const { return GetParam() == 222 ? 141 : 140; }
  int Byte() const { return Sensor().Eeprom()[Base()]; }

  void Look() {
    ram_ = Ram();
    eeprom_ = Eeprom();
    saves_ = Sensor().Count().saves;
    Sensor().ForgetFrames();
    desk->port.Forget();
    began_ = desk->clock.Now();
  }
  Memory Eeprom() const { return {Sensor().Eeprom().begin(), Sensor().Eeprom().end()}; }
  Memory Ram() const {
    Memory ram(Sensor().Ram().begin(), Sensor().Ram().end());
    // The TMO counter is written by every unlock.
    ram[230] = 0;
    return ram;
  }

  /// The sensor holds what it held, but for the limit and what a limit clears.
  void ExpectMemory(int limit) const {
    auto expected = eeprom_;
    for (const auto address : Cleared()) expected[address] = 0;
    expected[Base()] = limit;
    EXPECT_EQ(Eeprom(), expected);
    EXPECT_EQ(Ram(), ram_);
  }
  /// Frames that are no reads, without their checksums.
  std::vector<Bytes> Told() const {
    std::vector<Bytes> told;
    for (auto frame : Sensor().Frames()) {
      if (frame.front() >= 128 && frame.front() != 147) continue;
      frame.pop_back();
      told.push_back(frame);
    }
    return told;
  }
  /// The whole story of one limit: the TMO counter and the unlock, the words with a byte that has changed,
  /// the lock, the save.
  void ExpectLine() const {
    std::vector<std::uint8_t> words;
    for (std::size_t word = 0; word < 512; word += 2) {
      if (eeprom_[word] == Eeprom()[word] && eeprom_[word + 1] == Eeprom()[word + 1]) continue;
      words.push_back(static_cast<std::uint8_t>(word / 2));
    }
    std::vector<Bytes> expected{{65, 102, 0}, {147, 0}};
    if (!words.empty()) {
      Bytes write{static_cast<std::uint8_t>(8 + 2 * words.size()), words.front()};
      for (std::size_t i = 0; i < 2 * words.size(); ++i) {
        write.push_back(Sensor().Eeprom()[words.front() * 2U + i]);
      }
      expected.push_back(write);
    }
    expected.push_back({16, 0});
    expected.push_back({32, 0});
    EXPECT_THAT(Told(), ElementsAreArray(expected));
    const auto allowed = GetParam() == 222 ? AnyOf(69, 70) : AnyOf(70, 71);
    EXPECT_THAT(words, Each(allowed));
    EXPECT_EQ(Sensor().Count().saves, saves_ + 1);
    EXPECT_EQ(Sensor().Count().wrong_checksums + Sensor().Count().refused, 0);
    EXPECT_TRUE(Sensor().Locked());
    EXPECT_FALSE(desk->port.PortOpen());
  }
  /// 22 bytes at least go over the line for a limit, and each takes 1.04 ms; nobody waits for a second.
  void ExpectPace() const {
    const auto took = desk->clock.Now() - began_;
    EXPECT_GT(took, std::chrono::milliseconds(23));
    EXPECT_LT(took, std::chrono::milliseconds(500));
  }

  /// Does it and expects its limit in the field and the sensor, and that nothing else has moved.
  void Limit(const std::function<void()>& act, const QString& field, const QString& shown, int byte) {
    OnPanel([this, act] {
      Look();
      act();
      EXPECT_EQ(Eeprom(), eeprom_) << "nothing is sent in the click itself";
    });
    OnPanel([this, field, shown, byte] {
      EXPECT_EQ(Text(field), shown);
      EXPECT_EQ(Byte(), byte) << field.toStdString() << " at " << shown.toStdString();
      ExpectMemory(byte);
      ExpectLine();
      ExpectPace();
    });
  }
  void Click(const QString& button, const QString& shown, int byte) {
    const QString field = button == "Command5" || button == "Command6" ? "txbUseMax" : "txbUseMin";
    Limit([this, button] { Press(Widget(button)); }, field, shown, byte);
  }
  void Enter(const QString& field, const QString& text, const QString& shown, int byte) {
    Limit(
        [this, field, text] {
          Type(Widget(field), text);
          PressKey(Widget(field), Qt::Key_Return);
        },
        field, shown, byte);
  }
  void RunToTheEnd() {
    desk->Run();
    EXPECT_EQ(desk->StepsLeft(), 0U);
    EXPECT_EQ(FindWindow("MessageBox"), nullptr);
  }

  Memory ram_;
  Memory eeprom_;
  int saves_ = 0;
  unsigned polls_ = 0;
  std::chrono::microseconds began_{};
};
INSTANTIATE_TEST_SUITE_P(, PacedVavTest, testing::Values(222, 223),
                         [](const auto& part) { return "Part" + std::to_string(part.param); });

// The byte of a limit is (limit + 200) x 0.64, rounded up; the field shows byte x 1.5625 - 200, cut.

TEST_P(PacedVavTest, TheUpperEndGoesUpAndDownClickByClick) {
  Click("Command6", "76", 177);  // 176.64; 76.56
  Click("Command6", "78", 178);  // 77: 177.28; 78.13
  Click("Command6", "79", 179);  // 178.56; 79.69
  Click("Command5", "78", 178);  // 177.92
  // 77 is 178 too and would show 78 again; two less than that is 76.
  Click("Command5", "76", 177);
  Click("Command5", "75", 176);  // 176
  Click("Command6", "76", 177);
  RunToTheEnd();
}

TEST_P(PacedVavTest, TheLowerEndGoesUpAndDownClickByClick) {
  Click("Command1", "26", 145);  // 144.64; 26.56
  Click("Command1", "28", 146);  // 27: 145.28; 28.13
  Click("Command1", "29", 147);  // 146.56; 29.69
  Click("Command2", "28", 146);  // 145.92
  Click("Command2", "26", 145);  // 27 is 146 again; 26
  Click("Command2", "25", 144);  // 144
  RunToTheEnd();
}

TEST_P(PacedVavTest, TheEndsTakeTurns) {
  Click("Command6", "76", 177);
  Click("Command1", "26", 145);
  Click("Command5", "75", 176);
  Click("Command2", "25", 144);
  RunToTheEnd();
}

TEST_P(PacedVavTest, TheUpperEndStopsAt100AndAt0) {
  Enter("txbUseMax", "97", "98", 191);  // 190.08; 98.44
  Click("Command6", "100", 192);        // 99: 191.36; 100
  // 101 is 193, but the text that counts is 100 again.
  Click("Command6", "100", 192);
  Click("Command6", "100", 192);
  Click("Command5", "98", 191);       // 99 is 192 again; 98: 190.72
  Enter("txbUseMax", "3", "3", 130);  // 129.92; 3.13
  Click("Command5", "1", 129);        // 2 is 130 again; 1: 128.64; 1.56
  Click("Command5", "0", 128);
  // -1 is 128 again; -2 is 127, and its text becomes 0.
  Click("Command5", "0", 128);
  Click("Command5", "0", 128);
  Click("Command6", "1", 129);
  RunToTheEnd();
}

TEST_P(PacedVavTest, TheLowerEndStopsAt0AndAt100) {
  Enter("txbUseMin", "3", "3", 130);
  Click("Command2", "1", 129);
  Click("Command2", "0", 128);
  Click("Command2", "0", 128);
  Click("Command2", "0", 128);
  Click("Command1", "1", 129);
  Enter("txbUseMin", "99", "100", 192);  // 191.36; 100
  Click("Command1", "100", 192);
  Click("Command1", "100", 192);
  Click("Command2", "98", 191);
  RunToTheEnd();
}

TEST_P(PacedVavTest, ATypedEndIsLimitedAndWrittenAtOnce) {
  Enter("txbUseMax", "60", "60", 167);  // 166.4; 60.94
  Enter("txbUseMin", "40", "40", 154);  // 153.6; 40.63
  Enter("txbUseMax", "150", "100", 192);
  Enter("txbUseMin", "-5", "0", 128);
  Enter("txbUseMax", "-5", "0", 128);
  Enter("txbUseMin", "150", "100", 192);
  Enter("txbUseMax", "198", "100", 192);
  Enter("txbUseMin", "30.5", "31", 148);  // 147.52; 31.25
  RunToTheEnd();
}

TEST_P(PacedVavTest, ATypedEndIsWrittenWhenTheTabKeyLeavesIt) {
  Limit(
      [this] {
        Type(Widget("txbUseMax"), "60");
        PressKey(Widget("txbUseMax"), Qt::Key_Tab);
      },
      "txbUseMax", "60", 167);
  RunToTheEnd();
}

TEST_P(PacedVavTest, AButtonThatIsPressedInTheMiddleOfTypingCountsFromWhatWasTyped) {
  Limit(
      [this] {
        Type(Widget("txbUseMax"), "60");
        Press(Widget("Command6"));
      },
      // 61: 167.04, which shows 62; and 62: 167.68.
      "txbUseMax", "62", 168);
  RunToTheEnd();
}

TEST_P(PacedVavTest, WhatElseWasEditedIsNotSentWithALimit) {
  Enter("txbUseMax", "60", "60", 167);
  // The form is taken: the set-up is in the image, and the two ends are told from two bytes again.
  Edit("txbSetPV1CO2", "900");
  Edit("txbID", "9");
  OnPanel([this] {
    ExpectMemory(167);
    EXPECT_EQ(desk->program.image.EepromImage[18], 5900 / 256);
    Look();
    // The set-up of the first part has 16 there; of the second 0, and the time of the other output is 8 s.
    eeprom_[Beside()] = GetParam() == 222 ? 16 : 2;
    Press(Widget("Command1"));
  });
  OnPanel([this] { ExpectMemory(145); });
  RunToTheEnd();
}

TEST_P(PacedVavTest, AClickDuringAWriteIsTakenAlongByTheNextOne) {
  // Its command is lost, its text stands.
  struct Case {
    const char* during;
    const char* shown;
    int byte;
  };
  // 76, 78, 79: 178.56. 81, 82, 84 from 83: 181.12. 85, 87, 89 from 88: 184.32.
  for (const auto& [during, shown, byte] :
       {Case{"Unlocking EEPROM", "79", 179}, Case{"Sending to sensor", "84", 182},
        Case{"Locking EEPROM", "89", 185}}) {
    OnPanel([this] {
      Look();
      Press(Widget("Command6"));
    });
    desk->When([this, text = std::string(during)] { return desk->program.session.BusBusyText == text; },
               [this] { Press(Widget("Command6")); });
    OnPanel([this] { ExpectMemory(Byte()); });
    Click("Command6", shown, byte);
  }
  RunToTheEnd();
}

TEST_P(PacedVavTest, BetweenTheClicksThePanelPollsAndWritesNothing) {
  for (const int byte : {177, 178, 179}) {
    OnPanel([this] { Press(Widget("Command6")); });
    OnPanel([this] {
      Look();
      polls_ = desk->program.session.polls;
    });
    desk->When([this] { return desk->program.session.polls > polls_ + 1; }, [] {});
    OnPanel([this, byte] {
      EXPECT_FALSE(Sensor().Frames().empty());
      EXPECT_THAT(Told(), IsEmpty());
      EXPECT_EQ(Eeprom(), eeprom_);
      EXPECT_EQ(Byte(), byte);
    });
  }
  RunToTheEnd();
}

}  // namespace
}  // namespace brelant::test
