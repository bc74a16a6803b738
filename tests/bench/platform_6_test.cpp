// SPDX-License-Identifier: GPL-3.0-or-later
// The faces of platform 6 (docs/memory-maps.md, Platform 6).
#include <algorithm>
#include <cmath>
#include <map>
#include <set>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "arithmetic.h"
#include "bench/virtual_sensor.h"

namespace brelant::bench {
namespace {

using std::chrono::seconds;

// Words of the outputs in RAM.
constexpr std::size_t kOut1 = 236;
constexpr std::size_t kOut2 = 238;
constexpr std::size_t kOut3 = 26;
constexpr std::size_t kOut4 = 28;

double PercentAt(VirtualSensor& sensor, std::size_t output) {
  return WordAt(sensor.Ram(), output) / 16384.0 * 100;
}

/// The least and the most that a word of RAM reads in ten minutes, 0 to 100 %.
struct Course {
  double least = 1000;
  double most = -1000;
  std::set<int> words;
};

Course CourseOf(VirtualSensor& sensor, std::size_t output) {
  Course course;
  for (int t = 0; t < 600; t += 2) {
    sensor.Advance(seconds(t));
    course.least = std::min(course.least, PercentAt(sensor, output));
    course.most = std::max(course.most, PercentAt(sensor, output));
    course.words.insert(WordAt(sensor.Ram(), output));
  }
  return course;
}

/// A function block, as the page gives it.
struct Block {
  int input, a, b;
  bool sign, slope;
};

Block BlockAt(VirtualSensor& sensor, std::size_t function) {
  const std::size_t at = 106 + 5 * function;
  const int a = WordAt(sensor.Eeprom(), at + 1);
  const int b = WordAt(sensor.Eeprom(), at + 3);
  return {sensor.Eeprom()[at], a % 32768, b % 32768, a >= 32768, b >= 32768};
}

/// Base line text of a byte.
int BaseLine(int byte) {
  return static_cast<int>(std::floor(byte * 1.5625 - 200));
}

/// The rule back: the ceiling.
int BaseLineByte(int text) {
  return static_cast<int>(std::ceil((text + 200) / 1.5625));
}

bool IsPresent(VirtualSensor& sensor, int variant, int channel) {
  if (variant == 2 && channel == 2) return false;
  if (channel >= 2 && channel <= 8) return (sensor.Eeprom()[98] >> (channel - 2) & 1) != 0;
  if (channel == 11) return (sensor.Eeprom()[158] & 2) == 0;
  return channel == 10 && variant == 2;
}

TEST(Platform6, EachFunctionOfTheGenericFaceHasAnInputThatIsThere) {
  for (const int variant : {0, 2}) {
    VirtualSensor sensor({.part = 88, .variant = variant});
    for (std::size_t function = 0; function < 6; ++function) {
      const Block block = BlockAt(sensor, function);
      EXPECT_TRUE(IsPresent(sensor, variant, block.input + 2)) << variant << ' ' << function;
      EXPECT_LT(block.a, block.b) << variant << ' ' << function;
    }
  }
}

TEST(Platform6, OutputsOfTheGenericFaceMoveWithTheInputs) {
  VirtualSensor sensor({.part = 88, .variant = 0});
  for (const std::size_t output : {kOut1, kOut2, kOut3}) {
    EXPECT_GT(CourseOf(sensor, output).words.size(), 30U) << output;
  }
  EXPECT_THAT(CourseOf(sensor, kOut4).words, testing::ElementsAre(0, 16384));
}

TEST(Platform6, GenericFaceHasTriggerAndDigitalInputOnAnOutput) {
  for (const int variant : {0, 2}) {
    VirtualSensor sensor({.part = 88, .variant = variant});
    EXPECT_EQ(sensor.Eeprom()[138] & 32, 32);
    EXPECT_EQ(sensor.Eeprom()[146] & 32, 32);
    EXPECT_EQ(sensor.Eeprom()[96], 64);
    EXPECT_EQ(sensor.Eeprom()[136], 64);
    EXPECT_EQ(sensor.Eeprom()[137], 10);
  }
}

// 25 %, and a function without a sign that stands at 25 % of 800 to 1200 ppm: at 900 ppm -50 %.
TEST(Platform6, BaseLineAndAFunctionWithoutSignAddUp) {
  VirtualSensor sensor({.part = 88, .variant = 0});
  const int ppm = WordAt(sensor.Ram(), 30);
  SetWord(sensor.Eeprom(), 107, ppm - 30);
  SetWord(sensor.Eeprom(), 109, (ppm + 10) | 32768);
  sensor.Advance(seconds(0));
  EXPECT_EQ(BaseLine(sensor.Eeprom()[139]), 25);
  EXPECT_NEAR(PercentAt(sensor, kOut1), 75, 0.01);
  SetWord(sensor.Eeprom(), 109, ppm + 10);  // falling
  sensor.Advance(seconds(0));
  EXPECT_NEAR(PercentAt(sensor, kOut1), 0, 0.01);
}

TEST(Platform6, ThreeOutputsHaveCarbonMonoxideInPlaceOfTheFourth) {
  VirtualSensor sensor({.part = 88, .variant = 2});
  EXPECT_EQ(WordAt(sensor.Ram(), 28), 5012);
  EXPECT_EQ(sensor.Eeprom()[228], 0x90);  // ppm with offset
  std::set<int> words;
  for (int t = 0; t < 600; t += 2) {
    sensor.Advance(seconds(t));
    words.insert(WordAt(sensor.Ram(), 28));
  }
  EXPECT_GT(words.size(), 10U);
  EXPECT_GT(*words.begin(), 5000);
  EXPECT_GT(CourseOf(sensor, kOut3).words.size(), 10U);
}

using Bytes6 = std::map<std::size_t, int>;

/// What a panel writes into every VAV unit, apart from the fields of its face.
Bytes6 SetUp() {
  Bytes6 bytes{{3, 19},    {4, 0},     {8, 127},   {9, 255},   {10, 0},    {12, 19},   {13, 136},
               {14, 127},  {15, 255},  {16, 0},    {17, 6},    {20, 127},  {21, 255},  {22, 0},
               {23, 9},    {106, 8},   {107, 60},  {108, 125}, {109, 191}, {110, 172}, {111, 0},
               {112, 19},  {113, 136}, {114, 147}, {115, 136}, {116, 0},   {117, 19},  {118, 136},
               {119, 147}, {120, 136}, {121, 9},   {122, 19},  {123, 136}, {127, 19},  {128, 136},
               {129, 147}, {130, 236}, {131, 8},   {132, 0},   {133, 0},   {134, 191}, {135, 172},
               {136, 0},   {137, 0},   {144, 65},  {145, 192}, {146, 0},   {147, 8},   {149, 0}};
  for (std::size_t at = 24; at <= 31; ++at) bytes[at] = 0;
  return bytes;
}

void ExpectSetUp(VirtualSensor& sensor, const Bytes6& own) {
  auto expected = own;
  expected.merge(SetUp());
  for (const auto& [at, value] : expected) EXPECT_EQ(sensor.Eeprom()[at], value) << at;
}

TEST(VavUnit, Of222HoldsTheSetUp) {
  VirtualSensor sensor({.part = 222});
  EXPECT_EQ(sensor.Eeprom()[173], 1);
  ExpectSetUp(sensor, {{5, 6}, {11, 0}, {126, 0}, {138, 0}, {141, 16}, {142, 128}});
  EXPECT_EQ(sensor.Eeprom()[140] & 248, 128);
  EXPECT_EQ(sensor.Eeprom()[143] & 248, 0);
  EXPECT_EQ(WordAt(sensor.Eeprom(), 6), 5000 + 2200);
}

TEST(VavUnit, Of223HoldsTheSetUpWithTheOutputsExchanged) {
  VirtualSensor sensor({.part = 223});
  EXPECT_EQ(sensor.Eeprom()[173], 1);
  ExpectSetUp(sensor, {{5, 1}, {6, 19}, {7, 136}, {11, 6}, {126, 1}, {138, 16}, {139, 128}, {141, 0}});
  EXPECT_EQ(sensor.Eeprom()[140] & 248, 0);
  EXPECT_EQ(sensor.Eeprom()[143] & 248, 128);
  EXPECT_EQ(WordAt(sensor.Eeprom(), 0), 5000 + 2200);
}

/// What differs between the two part numbers.
struct Vav {
  int part;
  std::size_t base;
  std::size_t damper;
  std::size_t other;
  std::size_t temperature;
  std::size_t set_point;
};
const std::vector<Vav> kVavs{{222, 139, kOut1, kOut2, 12, 6}, {223, 142, kOut2, kOut1, 14, 0}};

// A host shows max = X + 100 and min = Y - |X| and stores 100 - max + min, max - 100 and
// 200 / ((max - min) / 100) + 5000.
TEST(VavUnit, HasLimitsThatAHostStoresAsTheyWere) {
  for (const Vav& vav : kVavs) {
    VirtualSensor sensor({.part = vav.part});
    const int x = BaseLine(sensor.Eeprom()[vav.base]);
    const int max = x + 100;
    const int min = BaseLine(sensor.Eeprom()[148]) - std::abs(x);
    EXPECT_EQ(max, 75);
    EXPECT_EQ(min, 25);
    EXPECT_EQ(sensor.Eeprom()[vav.base], BaseLineByte(max - 100));
    EXPECT_EQ(sensor.Eeprom()[148], BaseLineByte(100 - max + min));
    EXPECT_EQ(WordAt(sensor.Eeprom(), 124), (20000 / (max - min) + 5000) | 32768);
  }
}

TEST(VavUnit, DamperMovesBetweenItsLimits) {
  for (const Vav& vav : kVavs) {
    VirtualSensor sensor({.part = vav.part});
    const Course course = CourseOf(sensor, vav.damper);
    EXPECT_NEAR(course.least, 25, 1) << vav.part;
    EXPECT_NEAR(course.most, 75, 1) << vav.part;
    EXPECT_GT(course.words.size(), 30U) << vav.part;
    EXPECT_GT(CourseOf(sensor, vav.other).words.size(), 10U) << vav.part;
  }
}

// The band is 200 ppm wide, so 100 ppm above the set point is half way.
TEST(VavUnit, DamperFollowsCo2AboveItsSetPoint) {
  for (const Vav& vav : kVavs) {
    VirtualSensor sensor({.part = vav.part});
    for (const auto& [above, percent] : {std::pair{-100, 25}, {0, 25}, {100, 50}, {200, 75}, {400, 75}}) {
      SetWord(sensor.Eeprom(), 18, WordAt(sensor.Ram(), 30) - above);
      sensor.Advance(seconds(0));
      EXPECT_NEAR(PercentAt(sensor, vav.damper), percent, 0.6) << vav.part << ' ' << above;
    }
  }
}

TEST(VavUnit, OtherOutputFollowsTemperatureFromItsSetPoint) {
  for (const Vav& vav : kVavs) {
    VirtualSensor sensor({.part = vav.part});
    SetWord(sensor.Eeprom(), vav.set_point, WordAt(sensor.Ram(), vav.temperature) - 25);
    sensor.Advance(seconds(0));
    EXPECT_NEAR(PercentAt(sensor, vav.other), 25, 0.01) << vav.part;
    sensor.Eeprom()[129] = static_cast<std::uint8_t>(sensor.Eeprom()[129] & 127);  // negative slope
    sensor.Advance(seconds(0));
    EXPECT_NEAR(PercentAt(sensor, vav.other), 75, 0.01) << vav.part;
  }
}

// A host that adjusts a limit takes the functions off the damper and writes the limit as its base line.
TEST(VavUnit, DamperStandsAtTheBaseLineWhileALimitIsAdjusted) {
  for (const Vav& vav : kVavs) {
    VirtualSensor sensor({.part = vav.part});
    sensor.Eeprom()[vav.base - 1] = 0;
    sensor.Eeprom()[vav.base + 1] = 0;
    for (const auto& [byte, percent] : {std::pair{128, 0.0}, {160, 50.0}, {161, 51.5625}, {192, 100.0}}) {
      sensor.Eeprom()[vav.base] = static_cast<std::uint8_t>(byte);
      sensor.Advance(seconds(0));
      EXPECT_NEAR(PercentAt(sensor, vav.damper), percent, 0.01) << vav.part << ' ' << byte;
    }
  }
}

TEST(VavUnit, ThirdOutputSwitchesByTheFourth) {
  VirtualSensor sensor({.part = 222});
  for (const auto& [above, percent] : {std::pair{0, 0}, {400, 100}, {190, 100}, {0, 0}}) {
    SetWord(sensor.Eeprom(), 18, WordAt(sensor.Ram(), 30) - above);
    sensor.Advance(seconds(0));
    EXPECT_EQ(PercentAt(sensor, kOut3), percent) << above;
  }
}

/// The engineering values of a and b that a host shows, function 1 to 6 as 0 to 5: ppm, and percent in
/// tenths.
struct Ends {
  std::vector<double> a, b;
};

Ends EndsOf(VirtualSensor& sensor) {
  Ends ends;
  for (std::size_t i = 0; i < 6; ++i) {
    const Block block = BlockAt(sensor, i);
    const double unit = i < 3 ? 1 : 10;
    ends.a.push_back((block.a - 5000) / unit);
    ends.b.push_back((block.b - 5000) / unit);
  }
  return ends;
}

TEST(JumperTable, HasCornerPointsThatMakeSense) {
  VirtualSensor sensor({.part = 88, .variant = 3});
  const auto [a, b] = EndsOf(sensor);
  for (std::size_t i = 0; i < 6; ++i) {
    EXPECT_EQ(sensor.Eeprom()[106 + 5 * i], i < 3 ? 9 : 4);
    EXPECT_LT(a[i], b[i]) << i;
  }
  EXPECT_EQ(b[0], 3000);               // C
  EXPECT_EQ((a[0] + b[0]) / 2, 0);     // A
  EXPECT_EQ((a[1] + b[1]) / 2, 600);   // D
  EXPECT_EQ(b[1], 2050);               // F
  EXPECT_EQ(b[2], 900);                // G
  EXPECT_EQ(b[5] / 100 * b[0], 1200);  // I
}

// What a host makes of the corners A 0, C 3000, D 600, F 2050, G 900 and I 1200.
TEST(JumperTable, HoldsWhatAHostStoresForItsCornerPoints) {
  VirtualSensor sensor({.part = 88, .variant = 3});
  const auto [a, b] = EndsOf(sensor);
  EXPECT_EQ(a[0], -3000);
  EXPECT_EQ(a[1], 2 * 600 - 2050);
  EXPECT_EQ(a[2], 900 - 100);
  EXPECT_EQ(a[3], 0.0 / 3000 * 100);
  EXPECT_EQ(a[4], 600.0 / 3000 * 100);
  EXPECT_EQ(a[5], std::trunc((1200 - 100) / 3000.0 * 1000) / 10);
  EXPECT_EQ(b[5], 1200.0 / 3000 * 100);
  // B and E, at which functions 4 and 1, 5 and 2 are together 100: 1500 ppm, 50 % of C.
  const double at_b = 100 - 1500 / 30.0;
  EXPECT_DOUBLE_EQ((50 - a[3]) / (b[3] - a[3]) * 100, at_b);
  const double at_e = 100 - (1500 - 600) / (2050.0 - 600) * 100;
  EXPECT_EQ(b[4], std::trunc((a[4] + (50 - a[4]) / (at_e / 100)) * 10) / 10);
}

// Function 1 is x / 30 %, function 4 the same on top of it.
TEST(JumperTable, OutputsAreTheSumsOfTheirTwoFunctions) {
  VirtualSensor sensor({.part = 88, .variant = 3});
  for (int t = 0; t < 200; t += 10) {
    sensor.Advance(seconds(t));
    const double ppm = WordAt(sensor.Ram(), 30) - 5000;
    const double y = ppm / 30;
    const double second = (ppm - 600) / 1450 * 100 + std::clamp((y - 20) / 79 * 100, 0.0, 100.0);
    EXPECT_NEAR(PercentAt(sensor, kOut1), std::clamp(2 * y, 0.0, 100.0), 0.1) << ppm;
    EXPECT_NEAR(PercentAt(sensor, kOut2), std::clamp(second, 0.0, 100.0), 0.2) << ppm;
  }
  for (const std::size_t output : {kOut1, kOut2, kOut3}) {
    EXPECT_GT(CourseOf(sensor, output).words.size(), 10U) << output;
  }
}

// Cooling and CO2: the first word is the set point less the range, the second one the range.
TEST(SequentialControl, HasWordsThatFitItsSetPoints) {
  VirtualSensor sensor({.part = 88, .variant = 4});
  const auto word = [&](std::size_t at) { return WordAt(sensor.Eeprom(), at) & 32767; };
  EXPECT_EQ(word(0), 5000 + 2200);
  EXPECT_EQ(word(18), 5000 + 1200);
  EXPECT_EQ(word(114), 5000 + 200);
  EXPECT_EQ(word(112), word(0) - (word(114) - 5000));
  EXPECT_EQ(word(119), 5000 + 400);
  EXPECT_EQ(word(117), word(18) - (word(119) - 5000));
  EXPECT_EQ(word(124) - word(122), 200);
  EXPECT_EQ(BaseLine(sensor.Eeprom()[142]), 20);
  EXPECT_EQ(sensor.Eeprom()[142], BaseLineByte(20));
}

TEST(SequentialControl, VentilatesFirstAndCoolsThen) {
  VirtualSensor sensor({.part = 88, .variant = 4});
  SetWord(sensor.Eeprom(), 117, 20000);  // no part of CO2 in this
  int both = 0;
  for (int t = 0; t < 600; t += 2) {
    sensor.Advance(seconds(t));
    const double celsius = (WordAt(sensor.Ram(), 14) - 5000) / 100.0;
    const double ventilation = 20.3125 + std::clamp((celsius - 18) / 2, 0.0, 1.0) * 100;
    ASSERT_NEAR(PercentAt(sensor, kOut2), std::min(ventilation, 100.0), 0.01) << celsius;
    ASSERT_NEAR(PercentAt(sensor, kOut1), std::clamp((celsius - 20) / 2, 0.0, 1.0) * 100, 0.01) << celsius;
    if (celsius > 18.2 && celsius < 21.8) ++both;
  }
  EXPECT_GT(both, 50);
}

TEST(SequentialControl, VentilatesByCo2Too) {
  VirtualSensor sensor({.part = 88, .variant = 4});
  SetWord(sensor.Eeprom(), 122, 32768 + 20000);
  SetWord(sensor.Eeprom(), 124, 32768 + 20100);
  const int half = WordAt(sensor.Ram(), 30) - 100;  // a quarter into the band
  SetWord(sensor.Eeprom(), 117, 32768 + half);
  sensor.Advance(seconds(0));
  EXPECT_NEAR(PercentAt(sensor, kOut2), 45.3125, 0.01);
}

TEST(CompactUnit, ShowsItsChannelsAndMovesItsOutputs) {
  VirtualSensor sensor({.part = 221});
  EXPECT_TRUE(IsPresent(sensor, 5, 2));
  EXPECT_TRUE(IsPresent(sensor, 5, 11));
  EXPECT_GT(CourseOf(sensor, kOut1).words.size(), 30U);
}

// Hosts tell the variant from five bytes.
TEST(Platform6, EachFaceIsToldAsItsVariant) {
  for (const auto& [part, variant] :
       {std::pair{88, 0}, {222, 1}, {223, 1}, {88, 2}, {88, 3}, {88, 4}, {221, 5}}) {
    VirtualSensor sensor({.part = part, .variant = variant});
    const auto e = sensor.Eeprom();
    int told = e[173] == 6 ? 0 : e[173];
    if ((e[90] & 1) != 0) told = 2;
    if (sensor.Ram()[65] == 221) told = 5;
    if ((e[165] & 1) == 0 && e[173] == 0) told = 4;
    EXPECT_EQ(told, variant) << part;
    EXPECT_EQ(e[164], part);
  }
}

}  // namespace
}  // namespace brelant::bench
