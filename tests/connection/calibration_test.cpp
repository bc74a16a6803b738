// SPDX-License-Identifier: GPL-3.0-or-later
#include <cmath>

#include "connection/CalibrationLibrary.h"
#include "connection/both_roads.h"

namespace brelant {
namespace {

using std::chrono::milliseconds;
using test::FailureOf;
using test::kCancel;
using testing::ElementsAre;
using testing::Pair;

constexpr const char* kFailed = "Calibration error";
constexpr const char* kTemperature = "cpSpaceTempOffsetAdjust";
constexpr const char* kCorrect = "cvSpaceTempOffsetAdjustCorrectTemp";

/// A unit that begins to work when it sees a command.
class CalibrationTest : public test::BothRoadsTest {
 protected:
  CalibrationTest() {
    PutCase(4, 6);
    PutCase(5, 22);
    bus.pump.OnPass([this] {
      const int command = Word(SensorMemory::ram, 306);
      if (command == 0 || command == result) return false;
      if (started == milliseconds::zero()) {
        commands.push_back(command);
        seen = {Word(SensorMemory::ram, 320), Word(SensorMemory::ram, 322)};
        started = bus.clock.Now();
      } else if (bus.clock.Now() - started >= duration) {
        PutWord(SensorMemory::ram, 306, result);
        started = milliseconds::zero();
      }
      return false;
    });
  }

  void Put(const std::string& procedure, const std::string& value, const std::string& text) {
    library.Procedure(procedure).Values().Item(value).Text = text;
  }
  std::string FailureOfRun(const std::string& procedure) {
    return FailureOf([&] { library.Procedure(procedure).Run(); });
  }

  std::chrono::microseconds duration = milliseconds(1000);
  int result = 0;
  std::chrono::microseconds started{};
  std::vector<int> commands;
  /// Both parameters as the unit found them with the command.
  std::pair<int, int> seen;
  std::vector<std::pair<double, std::int32_t>> conversions;

  CalibrationLibrary library{{sens, bus.clock, bus.pump, [this](double value, std::int32_t caseWord) {
                                conversions.emplace_back(value, caseWord);
                                return static_cast<std::int32_t>(
                                    std::clamp(std::round(value * 100), -2e9, 2e9));
                              }}};
};

TEST_P(CalibrationTest, ATemperatureIsHandedOverInTheRawUnitOfItsChannel) {
  PutWord(SensorMemory::ram, 322, 77);
  Put(kTemperature, kCorrect, "21,5");
  EXPECT_EQ(FailureOfRun(kTemperature), "");
  EXPECT_THAT(conversions, ElementsAre(Pair(21.5, 6)));
  EXPECT_THAT(commands, ElementsAre(1));
  EXPECT_EQ(seen, (std::pair{2150, 0}));
}

TEST_P(CalibrationTest, ATemperatureBelow0IsASignedWord) {
  Put(kTemperature, kCorrect, "-2.5 C");
  EXPECT_EQ(FailureOfRun(kTemperature), "");
  EXPECT_EQ(seen, (std::pair{65286, 0}));
}

TEST_P(CalibrationTest, AGasIsHandedOverWithThePressureIfThatIsTold) {
  Put("cpCO2OffsetCal", "cvCO2OffsetCalGas", "0.08");
  EXPECT_EQ(FailureOfRun("cpCO2OffsetCal"), "");
  EXPECT_EQ(seen, (std::pair{8, 0}));
  Put("cpCO2SpanCal", "cvCO2SpanCalGas", "5 %");
  Put("cpCO2SpanCal", "cvCO2SpanCalPressure", "1013.6");
  EXPECT_EQ(FailureOfRun("cpCO2SpanCal"), "");
  EXPECT_EQ(seen, (std::pair{500, 1014}));
  Put("cpCO2OffsetCal", "cvCO2OffsetCalGas", "2");
  Put("cpCO2OffsetCal", "cvCO2OffsetCalPressure", "65535");
  EXPECT_EQ(FailureOfRun("cpCO2OffsetCal"), "");
  EXPECT_EQ(seen, (std::pair{200, 65535}));
  EXPECT_THAT(commands, ElementsAre(4, 5, 4));
  ASSERT_EQ(conversions.size(), 3U);
  for (const auto& [value, caseWord] : conversions) EXPECT_EQ(caseWord, 22);
}

TEST_P(CalibrationTest, AProcedureWithoutValuesIsOnlyStarted) {
  PutWord(SensorMemory::ram, 320, 11);
  PutWord(SensorMemory::ram, 322, 12);
  EXPECT_EQ(FailureOfRun("cpCO2ZeroCal"), "");
  EXPECT_EQ(FailureOfRun("cpCO2BackGround"), "");
  EXPECT_THAT(commands, ElementsAre(2, 3));
  EXPECT_EQ(seen, (std::pair{11, 12}));
  EXPECT_TRUE(conversions.empty());
}

TEST_P(CalibrationTest, TakesAsLongAsTheUnit) {
  duration = milliseconds(7200);
  const auto start = bus.clock.Now();
  EXPECT_EQ(FailureOfRun("cpCO2ZeroCal"), "");
  EXPECT_GE(bus.clock.Now() - start, milliseconds(7200));
  // A look every half second, and what the transfers take.
  EXPECT_LE(bus.clock.Now() - start, milliseconds(8500));
}

TEST_P(CalibrationTest, AUnitThatDoesNotEndIsAFailureAfter30Seconds) {
  duration = std::chrono::hours(1);
  const auto start = bus.clock.Now();
  EXPECT_EQ(FailureOfRun("cpCO2ZeroCal"), kFailed);
  EXPECT_GE(bus.clock.Now() - start, milliseconds(30000));
  EXPECT_LE(bus.clock.Now() - start, milliseconds(31000));
}

TEST_P(CalibrationTest, AnyOtherNumberIsAFailure) {
  for (const int other : {100, 1, 3, 65535}) {
    result = other;
    const auto start = bus.clock.Now();
    EXPECT_EQ(FailureOfRun("cpCO2ZeroCal"), kFailed) << other;
    EXPECT_LE(bus.clock.Now() - start, milliseconds(2500)) << other;
  }
  result = 0;
  EXPECT_EQ(FailureOfRun("cpCO2ZeroCal"), "");
}

TEST_P(CalibrationTest, ATextThatIsNoNumberIsRefusedBeforeAnythingIsSent) {
  for (const auto* const text : {"", " ", "warm", "-", ".", "--5", "0-5", ",,5"}) {
    Put(kTemperature, kCorrect, text);
    EXPECT_NE(FailureOfRun(kTemperature), "") << text;
    Put("cpCO2SpanCal", "cvCO2SpanCalGas", text);
    Put("cpCO2SpanCal", "cvCO2SpanCalPressure", "1013");
    EXPECT_NE(FailureOfRun("cpCO2SpanCal"), "") << text;
  }
  for (const auto* const text : {"high", "-1", "65536", "1e99"}) {
    Put("cpCO2OffsetCal", "cvCO2OffsetCalGas", "2");
    Put("cpCO2OffsetCal", "cvCO2OffsetCalPressure", text);
    const bool isNumber = std::string(text) == "1e99";
    EXPECT_EQ(FailureOfRun("cpCO2OffsetCal").empty(), isNumber) << text;
    if (!isNumber) {
      EXPECT_EQ(Transfers(), 0U) << text;
    }
  }
}

TEST_P(CalibrationTest, AValueWithoutRoomIsRefusedBeforeAnythingIsWritten) {
  for (const auto* const text : {"327.68", "-327.69", "99999999999999999999"}) {
    Put(kTemperature, kCorrect, text);
    EXPECT_NE(FailureOfRun(kTemperature), "") << text;
    EXPECT_EQ(Writes(), 0U) << text;
  }
  for (const auto* const text : {"327.67", "-327.68", "0", "0,0"}) {
    Put(kTemperature, kCorrect, text);
    EXPECT_EQ(FailureOfRun(kTemperature), "") << text;
  }
}

TEST_P(CalibrationTest, AValueCountsForOneRun) {
  Put("cpCO2SpanCal", "cvCO2SpanCalGas", "5");
  Put("cpCO2SpanCal", "cvCO2SpanCalPressure", "980");
  EXPECT_EQ(FailureOfRun("cpCO2SpanCal"), "");
  EXPECT_NE(FailureOfRun("cpCO2SpanCal"), "");
  Put("cpCO2SpanCal", "cvCO2SpanCalGas", "6");
  EXPECT_EQ(FailureOfRun("cpCO2SpanCal"), "");
  EXPECT_EQ(seen, (std::pair{600, 0}));
}

TEST_P(CalibrationTest, UnknownNamesAreFailures) {
  EXPECT_NE(FailureOf([&] { library.Procedure("cpCO2Zero"); }), "");
  EXPECT_NE(FailureOf([&] { library.Procedure(""); }), "");
  EXPECT_NE(FailureOf([&] { library.Procedure("cpCO2ZeroCal").Values().Item("cvCO2SpanCalGas"); }), "");
  EXPECT_NE(FailureOf([&] { library.Procedure("cpCO2ZeroCal").Values().Item(""); }), "");
  EXPECT_NE(FailureOf([&] { library.Procedure(kTemperature).Values().Item("cvCO2SpanCalGas"); }), "");
  EXPECT_EQ(Transfers(), 0U);
}

TEST_P(CalibrationTest, TellsItsProgress) {
  std::vector<int> told;
  library.onProgress = [&](int percent) { told.push_back(percent); };
  EXPECT_EQ(FailureOfRun("cpCO2ZeroCal"), "");
  ASSERT_GE(told.size(), 2U);
  EXPECT_LT(told.front(), 5);
  EXPECT_TRUE(std::is_sorted(told.begin(), told.end()));
  EXPECT_EQ(told.back(), 100);
}

TEST_P(CalibrationTest, ACancelEndsTheWait) {
  duration = std::chrono::hours(1);
  const auto start = bus.clock.Now();
  bus.pump.After(milliseconds(3300), [&] { bus.session.CancelPressed = true; });
  EXPECT_EQ(FailureOfRun("cpCO2ZeroCal"), kCancel);
  EXPECT_LE(bus.clock.Now() - start, milliseconds(4000));
}

TEST_P(CalibrationTest, TheEndOfTheSessionEndsTheWait) {
  duration = std::chrono::hours(1);
  bus.pump.After(milliseconds(3300), [&] { bus.session.sessionOver = true; });
  EXPECT_NE(FailureOfRun("cpCO2ZeroCal"), "");
  EXPECT_LE(bus.clock.Now(), milliseconds(4000));
}

TEST_P(CalibrationTest, AFailureOfTheLineIsTold) {
  if (kiBus) kiBus->isSilent = true;
  using Kind = ModbusMaster::Failure::Kind;
  modbus.Fail({Kind::silence, Kind::silence, Kind::silence, Kind::silence});
  EXPECT_EQ(FailureOfRun("cpCO2ZeroCal"), IsModbus() ? "virtual silence" : test::kSilent);
}

INSTANTIATE_TEST_SUITE_P(Roads, CalibrationTest, testing::Bool(), test::RoadName);

}  // namespace
}  // namespace brelant
