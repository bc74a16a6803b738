// SPDX-License-Identifier: GPL-3.0-or-later
#include <algorithm>
#include <memory>

#include "connection/KiLoggDecoder.h"
#include "connection/both_roads.h"

namespace brelant {
namespace {

using test::FailureOf;
using test::kCancel;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

constexpr int kRam = SensorMemory::ram;
constexpr int kEeprom = SensorMemory::eeprom;
constexpr const char* kName = "C:\\log.txt";
/// 2026-11-22 13:05:00 is 20779 days and 47100 seconds after the beginning of 1970.
constexpr std::int64_t kNow = 20779LL * 86400 + 47100;

/// Part 154, serial number 123. Samples of temperature 1 in hundredths, one every 60 s.
class LoggerFileTest : public test::BothRoadsTest {
 protected:
  LoggerFileTest() {
    PutByte(kEeprom, 8166, 123);
    PutWord(kEeprom, 4564, 0xAB04);
    PutWord(kEeprom, 4568, 0xAB05);
    PutWord(kEeprom, 4444, 0x9A5C);
    PutWord(kEeprom, 4640, 1500);
    PutCase(4, 6);
    PutCase(5, 22);
  }

  /// Sample of that index in the ring.
  void PutSample(int logger, int index, int value) { PutWord(kRam, 1024 + 3072 * logger + 2 * index, value); }
  void PutCounts(int logger, int count, int next) {
    PutWord(kRam, 336 + 2 * logger, count);
    PutWord(kRam, 340 + 2 * logger, next);
  }
  void PutAge(int seconds) { PutWord(kRam, 344, seconds); }
  /// A ring of that size which is full; sample i is 1000 + i, and the next one goes to `next`.
  void PutFull(int size, int next) {
    PutWord(kEeprom, 4640, size);
    for (int i = 0; i < size; ++i) PutSample(0, i, 1000 + i);
    PutCounts(0, size, next);
    PutAge(0);
  }
  /// Happens once, in the first pass in which `isDue`.
  void Once(std::function<bool()> isDue, std::function<void()> act) {
    // The pump keeps copies of its hooks.
    bus.pump.OnPass([isDue = std::move(isDue), act = std::move(act), isDone = std::make_shared<bool>(false)] {
      if (*isDone || !isDue()) return false;
      *isDone = true;
      act();
      return false;
    });
  }
  /// As soon as the first part of the long read is asked for.
  void InTheLongRead(std::function<void()> act) {
    Once([this] { return IsInLongRead(); }, std::move(act));
  }
  bool IsInLongRead() const {
    if (kiBus) {
      const auto& frames = kiBus->frames;
      return !frames.empty() && frames.back()[0] >= 176 && frames.back()[1] >= 4;
    }
    const auto& requests = modbus.Requests();
    return !requests.empty() && requests.back().first >= 4608 && requests.back().first < 8192;
  }
  std::string Exported() {
    EXPECT_TRUE(decoder.Export(kName));
    return bus.files.Text(kName);
  }
  std::string FailureOfExport() {
    return FailureOf([&] { decoder.Export(kName); });
  }
  /// The rows of samples, without their time.
  std::vector<std::string> Values() {
    const auto text = Exported();
    std::vector<std::string> values;
    auto at = text.find("Time\tValue\r\n") + 12;
    while (at < text.size()) {
      const auto end = text.find("\r\n", at);
      values.push_back(text.substr(at + 20, end - at - 20));
      at = end + 2;
    }
    return values;
  }

  std::int64_t now = kNow;
  std::vector<std::int32_t> codes;
  KiLoggDecoder decoder{
      {sens, bus.files, bus.ui, [this] { return now; },
       [](std::int32_t raw, std::int32_t caseWord) {
         return caseWord == 6 ? static_cast<std::int16_t>(raw) / 100.0 : raw == 184 ? -0.0 : raw;
       },
       [](std::int32_t caseWord) { return std::string(caseWord == 6 ? "C" : "%"); },
       [this](std::int32_t code) {
         codes.push_back(code);
         return 60;
       }}};
};

TEST_P(LoggerFileTest, IsATableThatASpreadsheetOpens) {
  PutSample(0, 0, 2150);
  PutSample(0, 1, 65531);
  PutSample(0, 2, 0);
  PutCounts(0, 3, 3);
  PutAge(30);
  EXPECT_EQ(Exported(),
            "Part number\t154\r\n"
            "Serial number\t15400123\r\n"
            "Logger\t1\r\n"
            "Channel\tTEMP 1\r\n"
            "Unit\tC\r\n"
            "Period (s)\t60\r\n"
            "Exported\t2026-11-22 13:05:00\r\n"
            "Time\tValue\r\n"
            "2026-11-22 13:02:30\t21.5\r\n"
            "2026-11-22 13:03:30\t-0.05\r\n"
            "2026-11-22 13:04:30\t0\r\n");
  // 0x9A without its highest bit.
  EXPECT_THAT(codes, testing::Each(26));
  EXPECT_EQ(Writes(), 0U);
}

// 0 is the second logger, 1 the first.
TEST_P(LoggerFileTest, EachLoggerHasItsOwnChannelAndMemory) {
  PutSample(0, 0, 2150);
  PutCounts(0, 1, 1);
  PutSample(1, 0, 183);
  // This one is shown as a 0 with a sign.
  PutSample(1, 1, 184);
  PutCounts(1, 2, 2);
  decoder.SetLogger(0);
  auto text = Exported();
  EXPECT_THAT(text, HasSubstr("Logger\t2\r\nChannel\tCO2\r\nUnit\t%\r\n"));
  EXPECT_THAT(text, HasSubstr("2026-11-22 13:04:00\t183\r\n2026-11-22 13:05:00\t0\r\n"));
  decoder.SetLogger(1);
  text = Exported();
  EXPECT_THAT(text, HasSubstr("Logger\t1\r\nChannel\tTEMP 1\r\n"));
  EXPECT_THAT(text, HasSubstr("2026-11-22 13:05:00\t21.5\r\n"));
  for (const int logger : {-1, 2}) {
    EXPECT_NE(FailureOf([&] { decoder.SetLogger(logger); }), "");
  }
}

TEST_P(LoggerFileTest, KnowsTheNamesOfTheChannels) {
  for (const auto& [number, name] : std::vector<std::pair<int, std::string>>{
           {4, "TEMP 1"}, {5, "CO2"}, {8, "TWA CO2"}, {9, "TEMP 2"}, {11, "WEIGHT"}}) {
    PutWord(kEeprom, 4564, 0x20 + number);
    EXPECT_THAT(Exported(), HasSubstr("\r\nChannel\t" + name + "\r\n"));
  }
  bus.files.Remove(kName);
  for (const int number : {0, 3, 6, 15}) {
    PutWord(kEeprom, 4564, number);
    EXPECT_NE(FailureOfExport(), "") << number;
    EXPECT_FALSE(bus.files.Exists(kName));
  }
}

TEST_P(LoggerFileTest, AnEmptyLoggerIsATableWithoutRows) {
  const auto text = Exported();
  EXPECT_TRUE(text.ends_with("Time\tValue\r\n"));
  EXPECT_THAT(Values(), IsEmpty());
}

TEST_P(LoggerFileTest, AFullRingBeginsWithItsOldestSample) {
  PutFull(5, 3);
  EXPECT_THAT(Values(), ElementsAre("10.03", "10.04", "10", "10.01", "10.02"));
  PutFull(5, 0);
  EXPECT_THAT(Values(), ElementsAre("10", "10.01", "10.02", "10.03", "10.04"));
}

TEST_P(LoggerFileTest, TheLargestMemoryIsReadWhole) {
  PutFull(1536, 1535);
  const auto values = Values();
  ASSERT_EQ(values.size(), 1536U);
  EXPECT_EQ(values.front(), "25.35");
  EXPECT_EQ(values[1], "10");
  EXPECT_EQ(values.back(), "25.34");
  EXPECT_THAT(Exported(), HasSubstr("2026-11-21 11:30:00\t25.35\r\n"));
}

TEST_P(LoggerFileTest, TimesGoAcrossMidnightAndTheEndOfAYear) {
  // 2025-01-01 00:00:30
  now = 20089LL * 86400 + 30;
  PutSample(0, 0, 100);
  PutSample(0, 1, 200);
  PutCounts(0, 2, 2);
  PutAge(0);
  const auto text = Exported();
  EXPECT_THAT(text, HasSubstr("2024-12-31 23:59:30\t1\r\n2025-01-01 00:00:30\t2\r\n"));
}

TEST_P(LoggerFileTest, ANewestSampleTooOldToBeToldIsNoted) {
  PutFull(2, 0);
  PutAge(65534);
  EXPECT_THAT(Exported(), testing::Not(HasSubstr("Note")));
  PutAge(65535);
  EXPECT_THAT(Exported(), HasSubstr("Note\tThe samples are at least as old as told, and may be older.\r\n"));
}

TEST_P(LoggerFileTest, WhatIsOverwrittenMeanwhileIsLeftOut) {
  PutFull(1000, 3);
  PutAge(10);
  InTheLongRead([&] {
    PutSample(0, 3, 9);
    PutSample(0, 4, 9);
    PutCounts(0, 1000, 5);
    PutAge(0);
  });
  const auto text = Exported();
  EXPECT_THAT(text, testing::Not(HasSubstr("\t0.09")));
  // Sample 5 is now the oldest, 997 periods before the newest of the beginning.
  EXPECT_THAT(text, HasSubstr("Time\tValue\r\n2026-11-21 20:27:50\t10.05\r\n"));
  EXPECT_TRUE(text.ends_with("2026-11-22 13:04:50\t10.02\r\n"));
}

TEST_P(LoggerFileTest, WhatComesInAddsNothingAndOverwritesNothingWhileThereIsRoom) {
  PutWord(kEeprom, 4640, 400);
  for (int i = 0; i < 399; ++i) PutSample(0, i, 1000 + i);
  PutCounts(0, 398, 398);
  InTheLongRead([&] {
    PutSample(0, 399, 9);
    PutSample(0, 0, 9);
    PutCounts(0, 400, 1);
  });
  const auto values = Values();
  // Two had room, the third overwrote the first.
  ASSERT_EQ(values.size(), 397U);
  EXPECT_EQ(values.front(), "10.01");
  EXPECT_EQ(values.back(), "13.97");
}

TEST_P(LoggerFileTest, ALoggerThatIsStartedAnewMeanwhileIsAFailure) {
  const std::vector<std::function<void()>> kActs{[&] { PutCounts(0, 0, 0); }, [&] { PutCounts(0, 12, 12); },
                                                 [&] { PutWord(kEeprom, 4564, 5); },
                                                 [&] { PutWord(kEeprom, 4640, 1100); }};
  for (const auto& act : kActs) {
    PutFull(1000, 3);
    PutWord(kEeprom, 4564, 4);
    Forget();
    InTheLongRead(act);
    EXPECT_EQ(FailureOfExport(), "The logger was started anew while it was read.");
    EXPECT_FALSE(bus.files.Exists(kName));
  }
}

TEST_P(LoggerFileTest, BitsOfTheUnitBesideTheChannelAndTheCodeDoNotCount) {
  PutFull(1000, 3);
  InTheLongRead([&] {
    PutWord(kEeprom, 4564, 0x7774);
    PutWord(kEeprom, 4444, 0x1A00);
  });
  EXPECT_EQ(Values().size(), 1000U);
}

TEST_P(LoggerFileTest, ARingThatMayHaveGoneOnceAroundIsAFailure) {
  PutFull(300, 3);
  InTheLongRead([&] { now += 299 * 60; });
  EXPECT_EQ(FailureOfExport(), "");
  PutFull(300, 3);
  Forget();
  InTheLongRead([&] { now += 300 * 60; });
  EXPECT_NE(FailureOfExport(), "");
}

TEST_P(LoggerFileTest, TheAgeIsThatOfTheSampleBehindWhichTheNextOneGoes) {
  PutFull(10, 3);
  PutAge(59);
  // A sample comes between the reads of the place and of the age.
  const auto isAsked = [this] {
    if (kiBus) return !kiBus->frames.empty() && kiBus->frames.back() == test::Bytes{178, 1, 84};
    return !modbus.Requests().empty() && modbus.Requests().back().first == 4096 + 170;
  };
  Once(isAsked, [this] {
    PutSample(0, 3, 7777);
    PutCounts(0, 10, 4);
    PutAge(0);
  });
  const auto text = Exported();
  EXPECT_TRUE(text.ends_with("2026-11-22 13:05:00\t77.77\r\n")) << text;
}

TEST_P(LoggerFileTest, AMemoryThatCannotBeIsAFailure) {
  const std::vector<std::function<void()>> kActs{
      [&] { PutWord(kEeprom, 4640, 0); }, [&] { PutWord(kEeprom, 4640, 1537); }, [&] { PutCounts(0, 11, 0); },
      [&] { PutCounts(0, 5, 10); }, [&] { PutWord(kEeprom, 4640, 65535); }};
  for (const auto& act : kActs) {
    PutFull(10, 3);
    act();
    EXPECT_EQ(FailureOfExport(), "The memory of the logger cannot be understood.");
  }
}

TEST_P(LoggerFileTest, AsksForTheFileIfNoneIsNamed) {
  bus.ui.chosenFiles = {"C:\\other.txt", std::nullopt};
  EXPECT_TRUE(decoder.Export(""));
  EXPECT_TRUE(bus.files.Exists("C:\\other.txt"));
  Forget();
  EXPECT_TRUE(decoder.Export(""));
  EXPECT_EQ(Transfers(), 0U);
  ASSERT_EQ(bus.ui.dialogs.size(), 2U);
  EXPECT_EQ(bus.ui.dialogs[0].use, UserInterface::FileUse::save);
  EXPECT_EQ(bus.ui.dialogs[0].filter, "Text Files (*.txt)| *.txt");
}

TEST_P(LoggerFileTest, ACancelOrAFailureInAnyPassLeavesTheOldFile) {
  PutFull(6, 3);
  bool isDone = false;
  int cancelled = 0;
  for (int pass = 1; !isDone; pass += 2) {
    bus.files.Put(kName, {1, 2, 3});
    bus.session.CancelPressed = false;
    bus.pump.InPass(pass, [&] { bus.session.CancelPressed = true; });
    const auto failure = FailureOfExport();
    isDone = failure.empty();
    if (isDone) break;
    ++cancelled;
    ASSERT_EQ(failure, kCancel) << pass;
    ASSERT_EQ(bus.files.Get(kName), (test::Bytes{1, 2, 3})) << pass;
  }
  EXPECT_GT(cancelled, 10);
}

TEST_P(LoggerFileTest, ACancelInTheLongReadEndsItWithinATransfer) {
  PutFull(1500, 3);
  std::size_t before = 0;
  InTheLongRead([&] {
    before = Transfers();
    bus.session.CancelPressed = true;
  });
  EXPECT_EQ(FailureOfExport(), kCancel);
  EXPECT_GT(before, 0U);
  EXPECT_EQ(Transfers(), before);
}

TEST_P(LoggerFileTest, TheProgressIsThatOfTheSamples) {
  PutFull(1500, 3);
  std::vector<int> told;
  sens.onProgress = [&](int percent) { told.push_back(percent); };
  Exported();
  EXPECT_TRUE(std::is_sorted(told.begin(), told.end()));
  // 12 requests of at most 125 registers, or 750 frames.
  const std::vector<int> kParts = IsModbus() ? std::vector<int>{8, 16, 25, 33} : std::vector<int>{48, 49, 50};
  EXPECT_NE(std::search(told.begin(), told.end(), kParts.begin(), kParts.end()), told.end());
  EXPECT_EQ(told.front(), 0);
  EXPECT_EQ(told.back(), 100);
}

TEST_P(LoggerFileTest, WithoutSamplesTheProgressGoesToItsEndAsWell) {
  PutCounts(0, 0, 0);
  std::vector<int> told;
  sens.onProgress = [&](int percent) { told.push_back(percent); };
  Exported();
  EXPECT_TRUE(std::is_sorted(told.begin(), told.end()));
  EXPECT_EQ(told.front(), 0);
  EXPECT_EQ(told.back(), 100);
}

TEST_P(LoggerFileTest, AFileThatCannotBeWrittenIsAFailure) {
  bus.files.Break(kName);
  EXPECT_THAT(FailureOfExport(), HasSubstr("Permission denied"));
}

INSTANTIATE_TEST_SUITE_P(Roads, LoggerFileTest, testing::Bool(), test::RoadName);

}  // namespace
}  // namespace brelant
