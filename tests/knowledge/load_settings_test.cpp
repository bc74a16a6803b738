// SPDX-License-Identifier: GPL-3.0-or-later
#include <array>
#include <cmath>
#include <utility>

#include "knowledge/set_file_bytes.h"
#include "support/knowledge.h"

namespace brelant {
namespace {

using namespace test;
using testing::IsEmpty;

using Range = std::pair<std::size_t, std::size_t>;

constexpr const char* kName = "C:\\KVX\\a.set";
constexpr const char* kOtherModel = "This setfile can't be used on this sensor";
/// Of platform 61, and with a scale factor.
constexpr std::uint8_t kScaled61 = 215;

/// Big-endian, as a sensor keeps its words.
void PutBigEndian(Bytes& memory, std::size_t address, int word) {
  memory.at(address) = static_cast<std::uint8_t>(word / 256);
  memory.at(address + 1) = static_cast<std::uint8_t>(word % 256);
}

/// A table that falls by `step` an entry to 5000 at zero gas.
void PutGasTable(Bytes& memory, std::size_t address, int step) {
  for (int e = 0; e <= 16; ++e) {
    PutBigEndian(memory, address + 2 * static_cast<std::size_t>(e), 5000 + step * (15 - e));
  }
}

Bytes Merge(const Bytes& sensor, const Bytes& content, const Bytes& marks) {
  Bytes merged = sensor;
  for (std::size_t i = 0; i < merged.size(); ++i) {
    for (unsigned bit = 1; bit < 256; bit *= 2) {
      if ((marks[i] & bit) == 0) continue;
      merged[i] = static_cast<std::uint8_t>((merged[i] & ~bit) | (content[i] & bit));
    }
  }
  return merged;
}

Bytes MarksOf(std::size_t size, const std::vector<Range>& ranges) {
  Bytes marks(size);
  for (const auto& [first, last] : ranges) {
    for (auto i = first; i <= last; ++i) marks.at(i) = 255;
  }
  return marks;
}

/// RAM as its block holds it: without 112 to 127.
Bytes Ram5Payload(const Bytes& ram) {
  Bytes payload(ram.begin(), ram.begin() + 112);
  payload.insert(payload.end(), ram.begin() + 128, ram.end());
  return payload;
}

Bytes SelectionPayload(const Bytes& marks) {
  Bytes payload(30);
  payload.insert(payload.end(), marks.begin(), marks.end());
  return payload;
}

/// A sensor and a file that differ in every bit of every byte, but for what makes them the same model.
class LoadTest : public KnowledgeTest {
 protected:
  void Begin5() {
    AttachTyped(0);
    Differ(256, {{65, kPart5}, {226, 2}});
    // No span words: what is taken of the background stays as it is.
    for (std::size_t i = 138; i <= 141; ++i) sensor[i] = 0;
  }
  void Begin6() {
    Attach(kPart6);
    Differ(512, {{164, kPart6}, {165, 1}, {173, 0}, {90, 0}, {98, 0x7F}, {158, 0}, {58, 7}});
  }
  void Begin61(std::uint8_t part = kScaled61) {
    Attach(part);
    Differ(512, {{164, part}, {165, 1}, {173, 0}, {90, 0}});
  }

  /// The sensor's memory in the image, the file on the disk, and the load.
  bool Load(std::int32_t selector) {
    Show();
    Store();
    return file.LoadSettings(kName, selector);
  }
  void Show() {
    const bool isRam = sensor.size() == 256;
    for (std::size_t i = 0; i < sensor.size(); ++i) {
      (isRam ? image.RamImage[i] : image.EepromImage[i]) = sensor[i];
    }
  }
  void Store() {
    if (content.size() == 256) {
      Store(SetFile({{1, Ram5Payload(content)}}));
    } else {
      Store(SetFile({{10, content}, {15, SelectionPayload(marks)}}));
    }
  }
  void Store(const Bytes& bytes) { bus.files.Put(kName, bytes); }

  void ExpectMemory(const Bytes& expected) const {
    for (std::size_t i = 0; i < expected.size(); ++i) {
      EXPECT_EQ(expected.size() == 256 ? image.RamImage[i] : image.EepromImage[i], expected[i]) << i;
    }
  }
  void ExpectRefusal(const std::string& text) {
    EXPECT_EQ(session.LastError, text);
    ExpectMemory(sensor);
    session.LastError.clear();
  }

  Bytes sensor;
  Bytes content;
  Bytes marks = Bytes(512);

 private:
  void Differ(std::size_t size, const std::vector<std::pair<std::size_t, std::uint8_t>>& same) {
    sensor.resize(size);
    content.resize(size);
    for (std::size_t i = 0; i < size; ++i) {
      sensor[i] = static_cast<std::uint8_t>(5 * i + 1);
      content[i] = static_cast<std::uint8_t>(255 - sensor[i]);
    }
    for (const auto& [address, value] : same) sensor[address] = content[address] = value;
    marks.assign(512, 0);
  }
};

// Platform 5

TEST_F(LoadTest, Platform5TakesOnlyTheBytesOfItsSelection) {
  Begin5();
  EXPECT_TRUE(Load(6));
  EXPECT_EQ(session.LastError, "");
  const auto settings = MarksOf(
      256, {{31, 32}, {57, 57}, {59, 62}, {162, 196}, {205, 208}, {212, 213}, {216, 220}, {223, 232}});
  ExpectMemory(Merge(sensor, content, settings));
  EXPECT_THAT(port.Events(), IsEmpty());
}

TEST_F(LoadTest, OnPlatform5Selector0TakesTheSelectionAsItStands) {
  Begin5();
  const auto marks5 = Rising(256);  // every mask there is
  std::copy(marks5.begin(), marks5.end(), image.ReadRequest.begin());
  EXPECT_TRUE(Load(0));
  // What the file does not keep counts as 0.
  for (std::size_t i = 112; i < 128; ++i) content[i] = 0;
  ExpectMemory(Merge(sensor, content, marks5));
}

TEST_F(LoadTest, AMarkIsAMaskOfBits) {
  Begin5();
  struct Case {
    std::uint8_t mark;
    int result;
  };
  for (const auto& [mark, result] : {Case{0, 0xAB}, Case{255, 0x5C}, Case{15, 0xAC}, Case{240, 0x5B},
                                     Case{1, 0xAA}, Case{128, 0x2B}, Case{4, 0xAF}}) {
    sensor[31] = 0xAB;
    content[31] = 0x5C;
    image.ReadRequest[31] = mark;
    EXPECT_TRUE(Load(0));
    EXPECT_EQ(image.RamImage[31], result) << int{mark};
  }
}

TEST_F(LoadTest, AByteThatIsNotMarkedKeepsEvenItsFraction) {
  Begin5();
  Show();
  Store();
  image.RamImage[40] = 12.5F;
  EXPECT_TRUE(file.LoadSettings(kName, 6));
  EXPECT_EQ(image.RamImage[40], 12.5F);
}

TEST_F(LoadTest, TheWholeRamIsTakenButWhatTheFileDoesNotKeep) {
  Begin5();
  content[138] = content[139] = content[140] = content[141] = 0;
  EXPECT_TRUE(Load(8));
  for (std::size_t i = 112; i < 128; ++i) content[i] = 0;
  ExpectMemory(content);
}

TEST_F(LoadTest, Platform5ExpressesTheBackgroundBySensorsSpan) {
  Begin5();
  for (std::size_t i = 0; i < 17; ++i) {
    image.SetEepromWord(static_cast<int>(34 + 2 * i), static_cast<float>(5000 + 100 * (15 - int(i))));
    image.SetEepromWord(static_cast<int>(68 + 2 * i), static_cast<float>(5000 + 200 * (15 - int(i))));
  }
  PutBigEndian(content, 138, 4096);
  PutBigEndian(content, 216, 61440 - 2 * 4096);  // spread by two: 5400
  PutBigEndian(sensor, 138, 2048);
  PutBigEndian(content, 140, 2048);
  PutBigEndian(content, 223, 61440 - 4096 + 32);  // 198.4 above zero gas: 5198
  PutBigEndian(sensor, 140, 1024);
  EXPECT_TRUE(Load(6));
  EXPECT_EQ(image.RamWord(216), 61440 - 4 * 4096);
  // 5198 lies at 57385, 4055 below zero gas. It is written one place in front of where it is read.
  EXPECT_EQ(image.RamWord(222), 61440 - 2 * 4055);
  EXPECT_EQ(image.RamImage[224], 32);
  EXPECT_EQ(image.RamImage[221], sensor[221]);
}

TEST_F(LoadTest, ABackgroundOfPlatform5ThatIsTakenInPartIsNotExpressed) {
  Begin5();
  PutBigEndian(sensor, 138, 2048);
  PutBigEndian(sensor, 140, 2048);
  Bytes marks5(256);
  marks5[216] = marks5[223] = 254;
  marks5[217] = marks5[224] = 255;
  std::copy(marks5.begin(), marks5.end(), image.ReadRequest.begin());
  EXPECT_TRUE(Load(0));
  ExpectMemory(Merge(sensor, content, marks5));
}

TEST_F(LoadTest, AFileOfAnotherVariantOrPlatformIsRefusedOnPlatform5) {
  struct Case {
    std::size_t address;
    std::uint8_t value;
  };
  // Another variant; platforms 6, 7, 9 and none.
  for (const auto& [address, value] : {Case{226, 3}, Case{65, kPart6}, Case{65, kPart7}, Case{65, kPart9},
                                       Case{65, kPartUnknown}, Case{65, 0}}) {
    Begin5();
    image.RamValid[40] = false;
    content[address] = value;
    EXPECT_FALSE(Load(6));
    ExpectRefusal(kOtherModel);
    EXPECT_EQ(image.RamImage[65], kPart5);
    EXPECT_TRUE(image.RamValid[40]);
  }
}

TEST_F(LoadTest, AnotherPartOfPlatform5IsNoReasonToRefuse) {
  Begin5();
  Install(104, DefinitionFile{});
  content[65] = 104;
  EXPECT_TRUE(Load(6));
  EXPECT_EQ(image.RamImage[31], content[31]);
  EXPECT_EQ(image.RamImage[65], kPart5);
}

// Platforms 6 and 61

TEST_F(LoadTest, TheFilesOwnSelectionIsMasksOfBits) {
  for (const bool is6 : {true, false}) {
    if (is6) {
      Begin6();
    } else {
      Begin61();
    }
    marks = Rising(512);  // every mask there is, twice; no word of a gas is marked whole
    EXPECT_TRUE(Load(0));
    EXPECT_EQ(session.LastError, "");
    ExpectMemory(Merge(sensor, content, marks));
  }
  EXPECT_THAT(port.Events(), IsEmpty());
}

TEST_F(LoadTest, ASelectorNeedsNoSelectionInTheFile) {
  Begin61();
  Store(SetFile({{10, content}}));
  Show();
  EXPECT_TRUE(file.LoadSettings(kName, 12));
  ExpectMemory(Merge(sensor, content, MarksOf(512, {{32, 32}, {50, 51}, {76, 81}, {84, 85}, {222, 223}})));
}

TEST_F(LoadTest, ASelectorOutweighsTheSelectionOfTheFile) {
  Begin6();
  // A flat table: the background is at position 0.
  for (std::size_t i = 308; i < 512; ++i) sensor[i] = 7;
  marks.assign(512, 255);
  EXPECT_TRUE(Load(15));
  auto expected = Merge(sensor, content,
                        MarksOf(512, {{0, 31},
                                      {34, 34},
                                      {38, 40},
                                      {43, 45},
                                      {50, 51},
                                      {96, 97},
                                      {106, 126},
                                      {131, 149},
                                      {162, 163},
                                      {173, 173},
                                      {218, 307}}));
  PutBigEndian(expected, 38, 0);
  PutBigEndian(expected, 43, 0);
  ExpectMemory(expected);
}

TEST_F(LoadTest, ThePartIsTheFilesAfterALoad) {
  Begin61();
  content[164] = 214;
  EXPECT_TRUE(Load(12));
  EXPECT_EQ(image.RamImage[65], 214);
  EXPECT_EQ(image.EepromImage[164], kScaled61);
}

/// What a load writes back into the words of the gases.
struct WrittenBack {
  std::size_t mark;
  int word;
};

class WordsOf6Test : public LoadTest {
 protected:
  WordsOf6Test() {
    Begin6();
    PutGasTable(sensor, 308 + 34 * 4, 100);
    PutGasTable(sensor, 308 + 34 * 5, 200);
    PutGasTable(content, 308 + 34 * 4, 200);
    PutGasTable(content, 308 + 34 * 5, 400);
    content[165] = 3;  // scale factor 2
    PutBigEndian(sensor, 46, 4096);
    PutBigEndian(sensor, 48, 8192);
    PutBigEndian(content, 46, 2048);
    PutBigEndian(content, 48, 4096);
    // All two segments below zero gas in the file's curve, and four in the sensor's.
    PutBigEndian(content, 36, 57344);
    PutBigEndian(content, 38, 57344);
    PutBigEndian(content, 41, 57344 / 2);
    PutBigEndian(content, 43, 57344);
  }

  static constexpr std::array kWords{WrittenBack{36, 45056 / 2}, WrittenBack{38, 45056},
                                     WrittenBack{41, 45056 / 4}, WrittenBack{43, 45056}};
};

TEST_F(WordsOf6Test, EachWordThatIsTakenWholeIsExpressedByTheSensorsCurveAndZero) {
  for (const auto& [mark, word] : kWords) {
    marks.assign(512, 0);
    marks[mark] = 255;
    EXPECT_TRUE(Load(0));
    auto expected = sensor;
    PutBigEndian(expected, mark, word);
    ExpectMemory(expected);
    bus.KnowPart(kPart6);
  }
}

TEST_F(WordsOf6Test, AllOfThemTogether) {
  auto expected = sensor;
  for (const auto& [mark, word] : kWords) {
    marks[mark] = marks[mark + 1] = 255;
    PutBigEndian(expected, mark, word);
  }
  EXPECT_TRUE(Load(0));
  ExpectMemory(expected);
}

TEST_F(WordsOf6Test, AWordThatIsTakenInPartIsNotExpressed) {
  for (const auto& [mark, word] : kWords) {
    marks[mark] = 254;
    marks[mark + 1] = 255;
  }
  EXPECT_TRUE(Load(0));
  ExpectMemory(Merge(sensor, content, marks));
}

TEST_F(WordsOf6Test, ACalibrationBaseWithoutAZeroWordStaysTheFiles) {
  PutBigEndian(sensor, 46, 0);
  marks[36] = marks[37] = 255;
  EXPECT_TRUE(Load(0));
  ExpectMemory(Merge(sensor, content, marks));
}

TEST_F(WordsOf6Test, TheCurveIsTheSensorsUnlessTheSelectionTakesIt) {
  marks = MarksOf(512, {{38, 38}, {46, 49}, {165, 165}, {308, 511}});
  EXPECT_TRUE(Load(0));
  auto expected = Merge(sensor, content, marks);
  PutBigEndian(expected, 38, 57344);
  ExpectMemory(expected);
}

class WordsOf61Test : public LoadTest {
 protected:
  WordsOf61Test() {
    Begin61();
    PutGasTable(sensor, 308 + 34 * 4, 100);
    PutGasTable(content, 308 + 34 * 4, 200);
    // The second gas has no channel, and so table 0 and no zero word.
    PutGasTable(sensor, 308, 200);
    PutGasTable(content, 308, 400);
    PutBigEndian(sensor, 46, 4096);
    PutBigEndian(content, 46, 2048);
    for (const std::size_t address : {34U, 36U, 58U, 60U}) PutBigEndian(content, address, 57344);
  }
};

TEST_F(WordsOf61Test, EachWordThatIsTakenWholeIsExpressedByTheSensorsCurveAndZero) {
  for (const auto& [mark, word] :
       {WrittenBack{34, 53248 / 2}, WrittenBack{58, 53248}, WrittenBack{60, 53248}}) {
    marks.assign(512, 0);
    marks[mark] = 255;
    EXPECT_TRUE(Load(0));
    auto expected = sensor;
    PutBigEndian(expected, mark, word);
    ExpectMemory(expected);
  }
}

TEST_F(WordsOf61Test, TheSecondCalibrationBaseStaysTheFiles) {
  marks[36] = 255;
  EXPECT_TRUE(Load(0));
  ExpectMemory(Merge(sensor, content, marks));
}

TEST_F(WordsOf61Test, AWordThatIsTakenInPartIsNotExpressed) {
  for (const std::size_t address : {34U, 36U, 58U, 60U}) {
    marks[address] = 127;
    marks[address + 1] = 255;
  }
  EXPECT_TRUE(Load(0));
  ExpectMemory(Merge(sensor, content, marks));
}

TEST_F(WordsOf61Test, WithScaleFactor0ABackgroundFailsTheLoad) {
  for (const std::size_t mark : {34U, 58U, 60U}) {
    // The part of the file stands in R65 when the words are written back.
    content[164] = 214;
    marks.assign(512, 0);
    marks[mark] = marks[100] = 255;
    EXPECT_FALSE(Load(0));
    EXPECT_NE(session.LastError, "");
    ExpectMemory(sensor);
    session.LastError.clear();
    bus.KnowPart(kScaled61);
  }
}

// Refusals on platforms 6 and 61

struct Difference {
  std::size_t address;
  std::uint8_t value;
};

TEST_F(LoadTest, WhatAFileOfPlatform6MustHaveInCommon) {
  std::vector<Difference> differences{
      {164, 89},            // another part of platform 6
      {164, kScaled61},     // other platforms
      {164, kPart5},        //
      {164, kPartUnknown},  //
      {158, 2},
      {158, 4},  // no channel 11, no channel 12
      {90, 1},   // variant 2: no channel 12, no channel 2
      {173, 1},  // variant 1: no channels 9 and 10
      {165, 0},  // bit 0
      {58, 8},   // the gas curve
  };
  for (unsigned bit = 1; bit < 128; bit *= 2) {  // channels 2 to 8
    differences.push_back({98, static_cast<std::uint8_t>(0x7F - bit)});
  }
  for (const auto& [address, value] : differences) {
    Begin6();
    content[address] = value;
    marks.assign(512, 255);
    EXPECT_FALSE(Load(0)) << address << ", " << int{value};
    ExpectRefusal(kOtherModel);
  }
}

TEST_F(LoadTest, WhatAFileOfPlatform6MayDifferIn) {
  for (const auto& [address, value] : std::vector<Difference>{
           {165, 3}, {165, 0xFD}, {173, 3}, {98, 0xFF}, {158, 0xF9}, {90, 0xFE}, {170, 1}}) {
    Begin6();
    content[address] = value;
    marks[100] = 255;
    EXPECT_TRUE(Load(0)) << address << ", " << int{value};
    EXPECT_EQ(image.EepromImage[100], content[100]);
  }
}

TEST_F(LoadTest, WhatAFileOfPlatform61MustHaveInCommon) {
  for (const auto& [address, value] : std::vector<Difference>{
           {164, kPart6}, {164, kPart5}, {164, kPart7}, {164, kPartUnknown}, {173, 1}, {165, 0}, {90, 1}}) {
    Begin61();
    content[address] = value;
    marks.assign(512, 255);
    EXPECT_FALSE(Load(0)) << address << ", " << int{value};
    ExpectRefusal(kOtherModel);
  }
}

TEST_F(LoadTest, WhatAFileOfPlatform61MayDifferIn) {
  for (const auto& [address, value] :
       std::vector<Difference>{{164, 85}, {165, 0xFF}, {173, 6}, {98, 1}, {158, 6}, {58, 1}, {170, 1}}) {
    Begin61();
    content[address] = value;
    marks[100] = 255;
    EXPECT_TRUE(Load(0)) << address << ", " << int{value};
    EXPECT_EQ(image.EepromImage[100], content[100]);
  }
}

TEST_F(LoadTest, ARefusedFileLeavesItsPartAndItsFlags) {
  for (const bool is6 : {true, false}) {
    if (is6) {
      Begin6();
    } else {
      Begin61();
    }
    content[164] = kPartUnknown;
    marks[7] = 255;
    image.EepromValid[300] = false;
    image.RamImage[64] = 33;
    EXPECT_FALSE(Load(0));
    ExpectRefusal(kOtherModel);
    EXPECT_EQ(image.RamImage[65], kPartUnknown);
    EXPECT_EQ(image.RamImage[64], 33);
    EXPECT_TRUE(image.EepromValid[300]);
    EXPECT_EQ(image.ReadRequest[7], 255);
  }
}

TEST_F(LoadTest, ACancelIsNotOverwritten) {
  Begin5();
  content[226] = 3;
  bus.pump.InPass(1, [this] { session.LastError = kCancelled; });
  EXPECT_FALSE(Load(6));
  ExpectRefusal(kCancelled);
}

// Files that cannot be loaded

TEST_F(LoadTest, TheSelectionIsReadBeforeTheSettings) {
  Begin6();
  Show();
  marks[3] = 255;
  image.EepromValid[300] = false;
  Store(SetFile({{15, SelectionPayload(marks)}}));
  EXPECT_FALSE(file.LoadSettings(kName, 0));
  ExpectRefusal("Setfile error");
  EXPECT_EQ(image.ReadRequest[3], 255);
  EXPECT_FALSE(image.EepromValid[300]);

  Store(SetFile({{10, content}}));
  content[164] = 89;
  EXPECT_FALSE(file.LoadSettings(kName, 0));
  ExpectRefusal("Setfile error");
  EXPECT_FALSE(image.EepromValid[300]);
  EXPECT_EQ(image.RamImage[65], kPart6);
}

TEST_F(LoadTest, TheBlockOfThePlatformMustBeThere) {
  Begin5();
  Show();
  Store(SetFile({{20, Rising(256)}, {10, Rising(512)}}));
  EXPECT_FALSE(file.LoadSettings(kName, 6));
  ExpectRefusal("Setfile error");
  Begin61();
  Show();
  Store(SetFile({{1, Rising(240)}}));
  EXPECT_FALSE(file.LoadSettings(kName, 12));
  ExpectRefusal("Setfile error");
}

TEST_F(LoadTest, AFileWithoutBlocksIsNotLoaded) {
  Bytes empty(18);
  PutWord(empty, 3, 1);
  Store(empty);
  Begin5();
  Show();
  EXPECT_FALSE(file.LoadSettings(kName, 6));
  ExpectRefusal("Setfile error");
  for (const std::int32_t selector : {0, 13}) {
    Begin6();
    Show();
    EXPECT_FALSE(file.LoadSettings(kName, selector));
    ExpectRefusal("Setfile error");
  }
  Begin61();
  Show();
  EXPECT_FALSE(file.LoadSettings(kName, 12));
  ExpectRefusal("Setfile error");
}

TEST_F(LoadTest, WhatIsWrongWithAFileIsTold) {
  const auto file5 = [this] {
    Begin5();
    return SetFile({{1, Ram5Payload(content)}});
  };
  const auto file6 = [this] {
    Begin6();
    return SetFile({{15, SelectionPayload(MarksOf(512, {{0, 511}}))}, {10, content}});
  };
  for (const bool is5 : {true, false}) {
    auto bytes = is5 ? file5() : file6();
    Show();
    EXPECT_FALSE(file.LoadSettings("C:\\KVX\\none.set", 6));
    ExpectRefusal("File not found C:\\KVX\\none.set");
    EXPECT_FALSE(file.LoadSettings("", is5 ? 6 : 0));
    ExpectRefusal("File not found ");
    bytes.back() ^= 1;
    Store(bytes);
    EXPECT_FALSE(file.LoadSettings(kName, is5 ? 6 : 0));
    ExpectRefusal("File is damaged C:\\KVX\\a.set");
    Store(Bytes(17));
    EXPECT_FALSE(file.LoadSettings(kName, is5 ? 6 : 13));
    ExpectRefusal("File is damaged C:\\KVX\\a.set");
    bytes.back() ^= 1;
    PutWord(bytes, 3, 1484);
    Store(bytes);
    EXPECT_FALSE(file.LoadSettings(kName, is5 ? 6 : 0));
    EXPECT_NE(session.LastError, "");
    ExpectRefusal(session.LastError);
    bus.files.Break(kName);
    EXPECT_FALSE(file.LoadSettings(kName, is5 ? 6 : 13));
    ExpectRefusal("Permission denied: C:/KVX/a.set");
    bus.files.Mend(kName);
  }
}

TEST_F(LoadTest, ABlockThatEndsTooSoonTakesBackWhatItGave) {
  Begin6();
  // The selection is sound, the settings reach beyond the buffer of a block.
  auto bytes = SetFile({{15, SelectionPayload(MarksOf(512, {{0, 511}}))}, {10, content}});
  PutWord(bytes, 17 + 546 + 2, 552);
  Mend(bytes);
  Show();
  Store(bytes);
  EXPECT_FALSE(file.LoadSettings(kName, 0));
  EXPECT_NE(session.LastError, "");
  ExpectMemory(sensor);
}

TEST_F(LoadTest, ABlockOfRamOfAnotherSizeIsDamage) {
  for (const std::size_t size : {0U, 111U, 112U, 239U, 241U, 512U}) {
    Begin5();
    Show();
    image.RamValid[40] = false;
    content[65] = kPart6;
    auto payload = Ram5Payload(content);
    payload.resize(size, 9);
    // What comes behind would fill the gap.
    Store(SetFile({{1, payload}, {99, Rising(240)}}));
    for (const std::int32_t selector : {0, 6, 8}) {
      EXPECT_FALSE(file.LoadSettings(kName, selector)) << size;
      ExpectRefusal("File is damaged C:\\KVX\\a.set");
    }
    EXPECT_FALSE(image.RamValid[40]);
  }
  EXPECT_THAT(port.Events(), IsEmpty());
}

TEST_F(LoadTest, ABlockOfEepromOfAnotherSizeIsDamage) {
  for (const bool is6 : {true, false}) {
    for (const std::size_t size : {0U, 165U, 511U, 513U, 542U}) {
      if (is6) {
        Begin6();
      } else {
        Begin61();
      }
      Show();
      image.EepromValid[300] = false;
      auto payload = content;
      payload.resize(size, 9);
      Store(SetFile({{15, SelectionPayload(MarksOf(512, {{0, 511}}))}, {10, payload}}));
      for (const std::int32_t selector : {0, is6 ? 13 : 12}) {
        EXPECT_FALSE(file.LoadSettings(kName, selector)) << size;
        ExpectRefusal("File is damaged C:\\KVX\\a.set");
      }
      EXPECT_FALSE(image.EepromValid[300]);
      EXPECT_EQ(image.RamImage[65], is6 ? kPart6 : kScaled61);
    }
  }
  EXPECT_THAT(port.Events(), IsEmpty());
}

TEST_F(LoadTest, ASelectionOfAnotherSizeIsDamage) {
  for (const bool is6 : {true, false}) {
    for (const std::size_t size : {0U, 30U, 512U, 541U, 543U}) {
      if (is6) {
        Begin6();
      } else {
        Begin61();
      }
      Show();
      auto payload = SelectionPayload(MarksOf(512, {{0, 511}}));
      payload.resize(size, 255);
      Store(SetFile({{10, content}, {15, payload}}));
      EXPECT_FALSE(file.LoadSettings(kName, 0)) << size;
      ExpectRefusal("File is damaged C:\\KVX\\a.set");
      // It plays no part where the selection is another.
      EXPECT_TRUE(file.LoadSettings(kName, is6 ? 13 : 12)) << session.LastError;
      bus.KnowPart(is6 ? kPart6 : kScaled61);
    }
  }
}

TEST_F(LoadTest, AFileOfAnotherPlatformIsRefusedWithoutAWordToTheSensor) {
  for (const auto part : {kPart6, kScaled61, kPart61, kPart7, kPart8}) {
    for (const std::int32_t selector : {0, 6}) {
      Begin5();
      Show();
      // Nothing is known of an EEPROM that such a sensor does not show.
      image.EepromValid.fill(false);
      for (std::size_t i = 0; i < 1024; ++i) image.EepromImage[i] = static_cast<float>(i % 251);
      const auto before = image;
      content[65] = part;
      Store();
      EXPECT_FALSE(file.LoadSettings(kName, selector)) << int{part};
      ExpectRefusal(kOtherModel);
      EXPECT_EQ(image.EepromImage, before.EepromImage);
      EXPECT_EQ(image.EepromValid, before.EepromValid);
      EXPECT_EQ(image.EepromRead, before.EepromRead);
    }
  }
  EXPECT_THAT(port.Events(), IsEmpty());
}

/// The sensor's part is 109, the file's 104; both have curves, to other full scales.
class OtherPartTest : public LoadTest {
 protected:
  static constexpr std::uint8_t kOther = 104;

  OtherPartTest() {
    Begin5();
    Define(kPart5, 5000);
    Define(kOther, 10000);
    EXPECT_TRUE(definitions.LoadDefinition());
    content[65] = kOther;
    for (auto* memory : {&sensor, &content}) {
      PutBigEndian(*memory, 138, 2048);
      PutBigEndian(*memory, 140, 2048);
    }
    PutBigEndian(content, 216, 40960);
    PutBigEndian(content, 223, 61440);
  }
  void Remove(std::uint8_t part) { bus.files.Remove("C:\\KVX\\DEF00" + std::to_string(int{part}) + ".PDT"); }

 private:
  void Define(std::uint8_t part, std::int32_t fullScale) {
    DefinitionFile definition;
    definition.SetCurve(1, fullScale);
    definition.SetCurve(2, fullScale);
    Install(part, definition);
  }
};

TEST_F(OtherPartTest, TheBackgroundOfTheFileIsExpressedByTheSensorsDefinition) {
  EXPECT_TRUE(Load(6));
  EXPECT_EQ(session.LastError, "");
  // e^(-c / 10000) from 1 at 61440 to its value at full scale at 0.
  const double lowOfFile = std::exp(-1.0);
  const double seen = lowOfFile + 40960 / 61440.0 * (1 - lowOfFile);
  const double lowOfSensor = std::exp(-0.5);
  const double expected = (seen - lowOfSensor) / (1 - lowOfSensor) * 61440;
  // Straight lines between the entries, and a concentration in whole units.
  EXPECT_NEAR(image.RamWord(216), expected, 60);
  EXPECT_GT(40960 - expected, 10000);
  // Zero gas is zero gas, and is written one place in front of where it is read.
  EXPECT_EQ(image.RamWord(222), 61440);
  EXPECT_EQ(image.RamImage[65], kPart5);
  EXPECT_EQ(image.RamImage[31], content[31]);
  EXPECT_THAT(port.Events(), IsEmpty());
}

TEST_F(OtherPartTest, WithoutItsDefinitionTheFileIsRefused) {
  Remove(kOther);
  for (const std::int32_t selector : {6, 8}) {
    EXPECT_FALSE(Load(selector));
    EXPECT_THAT(session.LastError, testing::StartsWith("Can't find file: "));
    ExpectRefusal(session.LastError);
  }
}

TEST_F(OtherPartTest, WithoutTheSensorsDefinitionTheFileIsRefused) {
  // It was there when the sensor was read, and is wanted again behind that of the file.
  Remove(kPart5);
  EXPECT_FALSE(Load(6));
  EXPECT_THAT(session.LastError, testing::StartsWith("Can't find file: "));
  ExpectRefusal(session.LastError);
}

TEST_F(LoadTest, OnOtherPlatformsNothingHappens) {
  for (const auto part : {kPart7, kPart8, kPart9, kPartUnknown}) {
    Attach(part);
    session.LastError.clear();
    const auto before = image;
    EXPECT_TRUE(file.LoadSettings("C:\\KVX\\none.set", 6));
    EXPECT_EQ(image.EepromImage, before.EepromImage);
    EXPECT_EQ(image.RamImage, before.RamImage);
    EXPECT_EQ(image.ReadRequest, before.ReadRequest);
    EXPECT_EQ(session.LastError, part == kPartUnknown ? "Unknown product" : "");
  }
}

// From one program to another

/// A second program with its own machine and an image that has been read.
struct Instance {
  explicit Instance(std::uint8_t part) {
    bus.image.RamValid.fill(true);
    bus.image.EepromValid.fill(true);
    bus.KnowPart(part);
  }

  ScriptedBus bus;
  Definitions definitions{bus.session, bus.image, bus.com, bus.machine};
  SnsInfo info{bus.session, bus.image, bus.com, definitions, bus.machine};
  Table table{bus.session, bus.image, bus.com, definitions, info};
  snsFil file{bus.session, bus.image, bus.com, info, table, bus.machine};
};

TEST_F(LoadTest, AFileSavedByOneIsLoadedByAnother) {
  Begin61();
  Show();
  Instance saver(kScaled61);
  for (std::size_t i = 0; i < 512; ++i) saver.bus.image.EepromImage[i] = content[i];
  saver.bus.com.SelectBlock(12);
  const std::array<snsFil::BlockWrite, 2> blocks{{{10, false}, {15, true}}};
  ASSERT_TRUE(saver.file.SaveBlocks("C:\\KVX\\a", 1, blocks));

  // 17 + 4 + 512 + 4 + 542 bytes; two blocks.
  const auto settings = MarksOf(512, {{32, 32}, {50, 51}, {76, 81}, {84, 85}, {222, 223}});
  Bytes expected{1, 0, 0, 1062 % 256, 1062 / 256, 2, 0};
  expected.resize(17);
  for (const std::uint8_t byte : {10, 0, 0, 2}) expected.push_back(byte);
  expected.insert(expected.end(), content.begin(), content.end());
  for (const std::uint8_t byte : {15, 0, 30, 2}) expected.push_back(byte);
  expected.resize(expected.size() + 30);
  expected.insert(expected.end(), settings.begin(), settings.end());
  // The bytes of both block headers, of the settings, and 13 marks of 255.
  unsigned sum = 10 + 2 + 15 + 30 + 2 + 13 * 255;
  for (const auto byte : content) sum += byte;
  expected[1] = static_cast<std::uint8_t>(sum % 256);
  expected[2] = static_cast<std::uint8_t>(sum / 256 % 256);
  const auto saved = saver.bus.files.Get("C:\\KVX\\a.Set");
  EXPECT_EQ(saved, expected);

  Store(saved);
  EXPECT_TRUE(file.LoadSettings(kName, 0));
  ExpectMemory(Merge(sensor, content, settings));
}

TEST_F(LoadTest, SoItIsOnPlatform5) {
  Begin5();
  Show();
  Instance saver(kPart5);
  for (std::size_t i = 0; i < 256; ++i) saver.bus.image.RamImage[i] = content[i];
  std::uint8_t block = 0;
  ASSERT_TRUE(saver.file.SaveSettings(block, kName, 1, false));

  Bytes expected{1, 0, 0, 244, 0, 1, 0};
  expected.resize(17);
  for (const std::uint8_t byte : {1, 0, 240, 0}) expected.push_back(byte);
  expected.insert(expected.end(), content.begin(), content.begin() + 112);
  expected.insert(expected.end(), content.begin() + 128, content.end());
  unsigned sum = 0;
  for (std::size_t i = 17; i < expected.size(); ++i) sum += expected[i];
  expected[1] = static_cast<std::uint8_t>(sum % 256);
  expected[2] = static_cast<std::uint8_t>(sum / 256 % 256);
  const auto saved = saver.bus.files.Get(kName);
  EXPECT_EQ(saved, expected);

  Store(saved);
  EXPECT_TRUE(file.LoadSettings(kName, 6));
  EXPECT_EQ(image.RamImage[31], content[31]);
  EXPECT_EQ(image.RamImage[30], sensor[30]);
}

TEST_F(LoadTest, WhatIsLoadedTwiceIsTheSame) {
  Begin61();
  marks = Rising(512);
  EXPECT_TRUE(Load(0));
  const auto once = image.EepromImage;
  EXPECT_TRUE(file.LoadSettings(kName, 0));
  EXPECT_EQ(image.EepromImage, once);
}

}  // namespace
}  // namespace brelant
