// SPDX-License-Identifier: GPL-3.0-or-later
#include "knowledge/Table.h"

#include <functional>
#include <numeric>

#include "support/knowledge.h"

namespace brelant {
namespace {

using namespace test;
using testing::IsEmpty;

/// Of platform 61, and with a scale factor.
constexpr std::uint8_t kScaled61 = 215;
/// Zero gas, where the positions of a gas are counted from.
constexpr float kZeroGas = 61440;
constexpr float kStep = 4096;

Bytes Word(int value) {
  return {static_cast<std::uint8_t>(value / 256), static_cast<std::uint8_t>(value % 256)};
}

class TableTest : public KnowledgeTest {
 protected:
  /// A table of platforms 6 and 61 begins here.
  static constexpr int At(int number) { return 308 + 34 * number; }

  void Fill(int address, const std::vector<int>& entries) {
    for (const int entry : entries) {
      image.SetEepromWord(address, static_cast<float>(entry));
      address += 2;
    }
  }
  /// Falls by `step` an entry to 5000 at zero gas, and one step further.
  void FillGas(int address, int step) {
    std::vector<int> entries;
    for (int e = 0; e <= 16; ++e) entries.push_back(5000 + step * (15 - e));
    Fill(address, entries);
  }
  /// 5000 at zero gas and behind it, `level` everywhere else.
  void FillFlatBut14(int address, int level) {
    std::vector<int> entries(15, level);
    entries.insert(entries.end(), {5000, 5000});
    Fill(address, entries);
  }
  /// Entries that an even slope makes from that start.
  void FillEven(int first, int step) {
    std::vector<int> entries;
    for (int e = 0; e <= 16; ++e) entries.push_back(first + step * e);
    Fill(At(0), entries);
  }

  void Attach61(int variant) {
    Attach(kScaled61);
    SetEeprom(165, 1);  // otherwise variant 0 counts as 4
    SetEeprom(173, static_cast<float>(variant));
  }
  void Attach7(bool doubled) {
    Attach(kPart7);
    image.SetEepromWord(762, doubled ? 1024 : 2048);
  }

  /// One read on the wire: the head of its frame, without the checksum, and what comes back.
  static void Hear(Dialogue& line, Bytes head, const Bytes& data) {
    Bytes reply{6};
    reply.insert(reply.end(), data.begin(), data.end());
    for (auto* bytes : {&head, &reply}) {
      bytes->push_back(static_cast<std::uint8_t>(std::accumulate(bytes->begin(), bytes->end(), 0)));
    }
    line.Exchange(head, reply);
  }
  /// Bytes that tell their own address.
  static Bytes Telling(int address, int count) {
    Bytes bytes(static_cast<std::size_t>(count));
    std::iota(bytes.begin(), bytes.end(), static_cast<std::uint8_t>(address));
    return bytes;
  }
  std::string Logged() const { return bus.files.Text("C:\\KVX\\ComLogg.txt"); }

  /// What the images would be if only these bytes changed.
  void ExpectOnly(const SensorImage& before, bool isEeprom, int address, const Bytes& bytes) {
    auto expected = before;
    for (const auto byte : bytes) {
      const auto at = static_cast<std::size_t>(address++);
      (isEeprom ? expected.EepromImage.at(at) : expected.RamImage.at(at)) = byte;
    }
    EXPECT_EQ(image.EepromImage, expected.EepromImage);
    EXPECT_EQ(image.RamImage, expected.RamImage);
    EXPECT_EQ(image.EepromRead, before.EepromRead);
    EXPECT_EQ(image.EepromValid, before.EepromValid);
    EXPECT_THAT(port.Events(), IsEmpty());
  }
  void ExpectNothing(const SensorImage& before) { ExpectOnly(before, true, 0, {}); }
};

// Entries

TEST_F(TableTest, WhereTheEntriesLie) {
  struct Case {
    std::uint8_t part;
    int table;
    int entry;
    int address;
  };
  for (const auto& [part, number, entry, address] :
       {Case{kPart5, 0, 0, 0}, Case{kPart5, 3, 16, 134}, Case{kPart6, 0, 0, 308}, Case{kPart6, 5, 16, 510},
        Case{kPart61, 0, 1, 310}, Case{kPart61, 4, 15, 474}, Case{kPart7, 0, 0, 512}, Case{kPart7, 2, 0, 580},
        Case{kPart7, 5, 16, 714}}) {
    if (part == kPart5) AttachTyped(0);
    Attach(part);
    image.EepromImage.fill(0);
    image.SetEepromWord(address, 0x1234);
    EXPECT_EQ(table.ReadTableEntry(number, entry), 0x1234) << int{part} << ", " << address;
    float value = 0x5678;
    table.WriteTableEntry(number, entry, value);
    EXPECT_EQ(image.EepromWord(address), 0x5678) << int{part} << ", " << address;
  }
  EXPECT_THAT(port.Events(), IsEmpty());
}

TEST_F(TableTest, OtherPlatformsHaveNoTables) {
  for (const auto part : {kPart8, kPart9, kPartUnknown}) {
    Attach(part);
    image.EepromImage.fill(9);
    const auto before = image;
    float value = 1;
    table.WriteTableEntry(1, 1, value);
    EXPECT_EQ(table.ReadTableEntry(1, 1), 0);
    EXPECT_EQ(table.TableToValue(1, 4096), 0);
    EXPECT_EQ(table.ValueToTable(1, 2313), 0);
    ExpectNothing(before);
  }
}

TEST_F(TableTest, AnEntryIsWrittenIntoTheImageOnly) {
  Attach(kPart6);
  const auto before = image;
  float value = 0x1234;
  table.WriteTableEntry(4, 3, value);
  ExpectOnly(before, true, 450, {0x12, 0x34});
}

TEST_F(TableTest, AnEntryKeepsWhatAWordCanHold) {
  Attach(kPart6);
  float value = 70000;
  table.WriteTableEntry(0, 0, value);
  EXPECT_EQ(image.EepromWord(308), 65535);
  EXPECT_EQ(value, 65535);
  value = -2;
  table.WriteTableEntry(0, 0, value);
  EXPECT_EQ(image.EepromWord(308), 65534);
  value = 300.5F;
  table.WriteTableEntry(0, 0, value);
  EXPECT_EQ(image.EepromWord(308), 300);
}

TEST_F(TableTest, AMissingByteOfAnEntryFetchesTheBlockOfItsTable) {
  for (const auto part : {kPart6, kPart61}) {
    for (const int missing : {444, 445}) {
      port.Forget();
      Attach(part);
      image.EepromValid.fill(true);
      image.EepromValid.at(static_cast<std::size_t>(missing)) = false;
      session.TrafficLogOn = true;
      Dialogue line(port);
      for (int address = 444; address < 474; address += 6) {
        Hear(line, {142, static_cast<std::uint8_t>(address / 2)}, Telling(address, 6));
      }
      Hear(line, {140, 237}, Telling(474, 4));
      EXPECT_EQ(table.ReadTableEntry(4, 0), 188 * 256 + 189);
      EXPECT_EQ(line.Trouble(), "");
      EXPECT_EQ(image.EepromImage[477], 477 % 256);
      EXPECT_THAT(Logged(), testing::StartsWith("READ(36 0 0 True)"));
      EXPECT_EQ(port.Story().back(), "close");
    }
  }
}

TEST_F(TableTest, EveryTableHasItsOwnBlock) {
  for (int number = 0; number < 6; ++number) {
    Attach(kPart6);
    image.EepromValid[static_cast<std::size_t>(At(number) + 32)] = false;
    Dialogue line(port);
    for (int address = At(number); address < At(number) + 30; address += 6) {
      Hear(line, {142, static_cast<std::uint8_t>(address / 2)}, Telling(address, 6));
    }
    Hear(line, {140, static_cast<std::uint8_t>(At(number) / 2 + 15)}, Bytes(4, 7));
    EXPECT_EQ(table.ReadTableEntry(number, 16), 7 * 256 + 7);
    EXPECT_EQ(line.Trouble(), "");
  }
}

TEST_F(TableTest, OnPlatform7AMissingByteFetchesTheTableByItsAddress) {
  for (const int missing : {682, 683}) {
    port.Forget();
    Attach(kPart7);
    image.EepromValid.at(static_cast<std::size_t>(missing)) = false;
    session.TrafficLogOn = true;
    Dialogue line(port);
    for (int address = 682; address < 714; address += 4) {
      Hear(line, {140, 2, static_cast<std::uint8_t>(address - 512)}, Telling(address, 4));
    }
    Hear(line, {138, 2, 202}, Telling(714, 2));
    EXPECT_EQ(table.ReadTableEntry(5, 0), 170 * 256 + 171);
    EXPECT_EQ(line.Trouble(), "");
    EXPECT_THAT(Logged(), testing::StartsWith("READ(0 682 34 True)"));
  }
}

TEST_F(TableTest, TheFlagsOfOtherEntriesDoNotCount) {
  for (const auto part : {kPart6, kPart61, kPart7}) {
    Attach(part);
    image.EepromValid.fill(false);
    const int address = part == kPart7 ? 580 : At(2);
    SetEeprom(address + 2, 3);
    SetEeprom(address + 3, 4);
    EXPECT_EQ(table.ReadTableEntry(2, 1), 3 * 256 + 4);
  }
  EXPECT_THAT(port.Events(), IsEmpty());
}

TEST_F(TableTest, AnEntryThatCannotBeFetchedIs0) {
  for (const auto part : {kPart6, kPart61, kPart7}) {
    session.LastError.clear();
    Attach(part);
    image.EepromImage.fill(9);
    image.EepromValid.fill(false);
    EXPECT_EQ(table.ReadTableEntry(1, 1), 0);
    EXPECT_EQ(session.LastError, "Can't read from sensor");
  }
}

TEST_F(TableTest, TheTablesOfPlatform5AreNeverFetched) {
  AttachTyped(0);
  image.EepromValid.fill(false);
  image.SetEepromWord(34 + 4, 5123);
  EXPECT_EQ(table.ReadTableEntry(1, 2), 5123);
  EXPECT_THAT(port.Events(), IsEmpty());
}

TEST_F(TableTest, OnPlatform5AnotherPartNumberReloadsTheDefinition) {
  const std::vector<std::function<void()>> acts{[&] { EXPECT_EQ(table.ReadTableEntry(1, 15), 5000); },
                                                [&] {
                                                  float value = 4321;
                                                  table.WriteTableEntry(1, 15, value);
                                                  EXPECT_EQ(image.EepromWord(34 + 30), 4321);
                                                }};
  for (const auto& act : acts) {
    AttachTyped(0);
    DefinitionFile other;
    other.SetCurve(1, 3000);
    Install(104, other);
    bus.KnowPart(104);
    image.EepromImage.fill(9);
    act();
    EXPECT_EQ(definitions.DefinitionPart(), 104);
    EXPECT_EQ(image.EepromWord(30), 9 * 257);
  }
}

TEST_F(TableTest, WithoutItsDefinitionFileAPlatform5HasNoEntries) {
  Attach(kPart5);
  image.EepromImage.fill(9);
  EXPECT_EQ(table.ReadTableEntry(1, 15), 0);
  EXPECT_THAT(session.LastError, testing::StartsWith("Can't find file: "));
}

// From position to value

TEST_F(TableTest, APositionBetweenTwoEntriesIsInterpolated) {
  Attach(kPart6);
  FillEven(1000, 100);
  EXPECT_EQ(table.TableToValue(0, 0), 1000);
  EXPECT_EQ(table.TableToValue(0, 1024), 1025);
  EXPECT_EQ(table.TableToValue(0, 4096), 1100);
  EXPECT_EQ(table.TableToValue(0, 5120), 1125);
  EXPECT_EQ(table.TableToValue(0, kZeroGas), 2500);
  EXPECT_EQ(table.TableToValue(0, 65536), 2600);
}

TEST_F(TableTest, ZeroGasGivesEntry15) {
  Attach(kPart6);
  FillGas(At(0), 137);
  EXPECT_EQ(table.TableToValue(0, kZeroGas), 5000);
}

TEST_F(TableTest, AFallingTableWorksFromPositionToValue) {
  Attach(kPart6);
  FillEven(9000, -100);
  EXPECT_EQ(table.TableToValue(0, 0), 9000);
  EXPECT_EQ(table.TableToValue(0, 1024), 8975);
  EXPECT_EQ(table.TableToValue(0, 64512), 7425);
}

TEST_F(TableTest, BehindTheLastEntryIsNothing) {
  Attach(kPart6);
  FillEven(1000, 100);
  EXPECT_EQ(table.TableToValue(0, 65537), 0);
  EXPECT_EQ(table.TableToValue(0, 1e6F), 0);
}

TEST_F(TableTest, InFrontOfTheFirstEntryTheFirstSegmentGoesOn) {
  Attach(kPart6);
  FillEven(1000, 100);
  EXPECT_EQ(table.TableToValue(0, -kStep), 900);
}

TEST_F(TableTest, AValueIsLimitedToAWord) {
  Attach(kPart6);
  FillEven(100, 100);
  EXPECT_EQ(table.TableToValue(0, -2 * kStep), 0);
  Fill(At(0), {65500, 65400});
  EXPECT_EQ(table.TableToValue(0, -kStep), 65535);
  Fill(At(0), {65535, 65535});
  EXPECT_EQ(table.TableToValue(0, 5), 65535);
}

TEST_F(TableTest, AValueIsRoundedToTheEvenNeighbour) {
  Attach(kPart6);
  FillEven(0, 1);
  EXPECT_EQ(table.TableToValue(0, 2048), 0);
  EXPECT_EQ(table.TableToValue(0, 4096 + 2048), 2);
  EXPECT_EQ(table.TableToValue(0, 2 * 4096 + 2048), 2);
  EXPECT_EQ(table.TableToValue(0, 2049), 1);
}

TEST_F(TableTest, TheEntriesInFrontOfAPositionAreReadOnTheWay) {
  Attach(kPart6);
  image.EepromValid[static_cast<std::size_t>(At(0))] = false;
  Dialogue line(port);
  for (int address = At(0); address < At(0) + 30; address += 6) {
    Hear(line, {142, static_cast<std::uint8_t>(address / 2)}, Bytes(6, 1));
  }
  Hear(line, {140, static_cast<std::uint8_t>(At(0) / 2 + 15)}, Bytes(4, 1));
  EXPECT_EQ(table.TableToValue(0, kZeroGas), 257);
  EXPECT_EQ(line.Trouble(), "");
}

// From value to position

TEST_F(TableTest, AValueBetweenTwoEntriesHasItsPosition) {
  Attach(kPart6);
  FillEven(1000, 100);
  EXPECT_EQ(table.ValueToTable(0, 1000), 0);
  EXPECT_EQ(table.ValueToTable(0, 1025), 1024);
  EXPECT_EQ(table.ValueToTable(0, 1100), 4096);
  EXPECT_EQ(table.ValueToTable(0, 2500), 61440);
  EXPECT_EQ(table.ValueToTable(0, 2550), 63488);
}

TEST_F(TableTest, AFallingTableWorksFromValueToPosition) {
  Attach(kPart6);
  FillEven(9000, -100);
  EXPECT_EQ(table.ValueToTable(0, 9000), 0);
  EXPECT_EQ(table.ValueToTable(0, 8975), 1024);
  EXPECT_EQ(table.ValueToTable(0, 7500), 61440);
}

TEST_F(TableTest, TheLastEntryIsAtPosition65536) {
  Attach(kPart6);
  FillEven(1000, 100);
  EXPECT_EQ(table.ValueToTable(0, 2600), 65536);
}

TEST_F(TableTest, AValueInNoSegmentIsAtPosition65535) {
  Attach(kPart6);
  for (const int step : {100, -50}) {
    FillEven(1000, step);
    EXPECT_EQ(table.ValueToTable(0, 2601), 65535);
    EXPECT_EQ(table.ValueToTable(0, 199), 65535);
    EXPECT_EQ(table.ValueToTable(0, -1), 65535);
    EXPECT_EQ(table.ValueToTable(0, 70000), 65535);
  }
}

TEST_F(TableTest, ATableOfEqualEntriesGivesPosition0) {
  Attach(kPart6);
  FillEven(5000, 0);
  for (const float value : {4999, 5000, 5001}) EXPECT_EQ(table.ValueToTable(0, value), 0);
}

TEST_F(TableTest, AFlatSegmentIsSkipped) {
  Attach(kPart6);
  // Its value is found where the next segment begins, or where the one before it ended.
  FillEven(1000, 100);
  Fill(At(0), {1100, 1100, 1200});
  EXPECT_EQ(table.ValueToTable(0, 1100), 4096);
  Fill(At(0), {1000, 1100, 1100, 1200});
  EXPECT_EQ(table.ValueToTable(0, 1100), 4096);
}

TEST_F(TableTest, AFlatSegmentAtTheEndDoesNotHideThatNothingWasFound) {
  Attach(kPart6);
  Fill(At(0), std::vector<int>(17, 1100));
  Fill(At(0), {1000});
  EXPECT_EQ(table.ValueToTable(0, 1200), 65535);
}

TEST_F(TableTest, TheFirstSegmentThatHoldsTheValueCounts) {
  Attach(kPart6);
  // Up, down and up again through 1050.
  FillEven(2000, 0);
  Fill(At(0), {1000, 1100, 1000, 1100});
  EXPECT_EQ(table.ValueToTable(0, 1050), 2048);
  EXPECT_EQ(table.ValueToTable(0, 1000), 0);
}

TEST_F(TableTest, APositionIsRoundedToTheEvenNeighbour) {
  Attach(kPart6);
  Fill(At(0), {0, 8192});
  EXPECT_EQ(table.ValueToTable(0, 1), 0);
  EXPECT_EQ(table.ValueToTable(0, 3), 2);
  EXPECT_EQ(table.ValueToTable(0, 5), 2);
}

// Background, reading

TEST_F(TableTest, TheBackgroundOfPlatform5) {
  AttachTyped(0);
  FillGas(34, 100);
  FillGas(68, 200);
  image.SetRamWord(216, kZeroGas - 2 * kStep);
  image.SetRamWord(223, kZeroGas - 4 * kStep);
  image.SetRamWord(138, 2048);
  image.SetRamWord(140, 2048);
  EXPECT_EQ(table.GetBackgroundWord(0), 5200);
  EXPECT_EQ(table.GetBackgroundWord(1), 5800);
  // The span words spread it.
  image.SetRamWord(138, 1024);
  image.SetRamWord(140, 4096);
  EXPECT_EQ(table.GetBackgroundWord(0), 5100);
  EXPECT_EQ(table.GetBackgroundWord(1), 6600);
  EXPECT_THAT(port.Events(), IsEmpty());
}

TEST_F(TableTest, TheBackgroundOfPlatform6) {
  Attach(kPart6);
  FillGas(At(4), 100);
  FillGas(At(5), 200);
  image.SetEepromWord(38, kZeroGas - 2 * kStep);
  image.SetEepromWord(43, kZeroGas - 4 * kStep);
  EXPECT_EQ(table.GetBackgroundWord(0), 5200);
  EXPECT_EQ(table.GetBackgroundWord(1), 5800);
  SetEeprom(165, 2);
  EXPECT_EQ(table.GetBackgroundWord(0), 5400);
  EXPECT_EQ(table.GetBackgroundWord(1), 6600);
  EXPECT_THAT(port.Events(), IsEmpty());
}

TEST_F(TableTest, TheBackgroundOfPlatform61) {
  Attach61(0);
  FillGas(At(4), 100);
  FillGas(At(0), 200);  // its second gas has no channel, and so table 0
  image.SetEepromWord(58, kZeroGas - 2 * kStep);
  image.SetEepromWord(60, kZeroGas - 4 * kStep);
  EXPECT_EQ(table.GetBackgroundWord(0), 5200);
  EXPECT_EQ(table.GetBackgroundWord(1), 5800);
  SetEeprom(173, 1);
  EXPECT_EQ(table.GetBackgroundWord(0), 5400);
  EXPECT_EQ(table.GetBackgroundWord(1), 6600);
  EXPECT_THAT(port.Events(), IsEmpty());
}

TEST_F(TableTest, TheBackgroundOfPlatform7) {
  Attach7(false);
  FillGas(512 + 34 * 5, 100);
  image.SetEepromWord(976, kZeroGas - 2 * kStep);
  image.SetEepromWord(978, kZeroGas - 4 * kStep);
  EXPECT_EQ(table.GetBackgroundWord(0), 5200);
  EXPECT_EQ(table.GetBackgroundWord(1), 5400);
  Attach7(true);
  EXPECT_EQ(table.GetBackgroundWord(0), 5400);
  EXPECT_EQ(table.GetBackgroundWord(1), 5800);
  EXPECT_THAT(port.Events(), IsEmpty());
}

TEST_F(TableTest, WithScaleFactor0TheBackgroundIsTheValueOfZeroGas) {
  Attach(kPart61);
  FillGas(At(4), 100);
  image.SetEepromWord(58, 1000);
  EXPECT_EQ(table.GetBackgroundWord(0), 5000);
}

TEST_F(TableTest, ABackgroundInFrontOfTheTableIsExtrapolated) {
  Attach(kPart6);
  SetEeprom(165, 2);
  FillGas(At(4), 100);
  image.SetEepromWord(38, 0);  // position -61440
  EXPECT_EQ(table.GetBackgroundWord(0), 5000 + 30 * 100);
}

TEST_F(TableTest, OnPlatform5AMissingBackgroundIsReadWhereItLies) {
  for (const int missing : {216, 217, 223, 224}) {
    AttachTyped(0);
    FillGas(34, 100);
    FillGas(68, 100);
    image.SetRamWord(138, 2048);
    image.SetRamWord(140, 2048);
    image.RamValid.at(static_cast<std::size_t>(missing)) = false;
    const bool second = missing > 217;
    Dialogue line(port);
    Hear(line, {194, static_cast<std::uint8_t>(second ? 95 : 88)}, Word(53248));
    EXPECT_EQ(table.GetBackgroundWord(second ? 1 : 0), 5200) << missing;
    EXPECT_EQ(line.Trouble(), "") << missing;
  }
}

TEST_F(TableTest, OnPlatform6TheFetchOfTheSecondBackgroundMissesItsLowByte) {
  Attach(kPart6);
  FillGas(At(4), 100);
  FillGas(At(5), 100);
  for (const int missing : {38, 39}) {
    image.EepromValid.at(static_cast<std::size_t>(missing)) = false;
    Dialogue line(port);
    Hear(line, {138, 19}, Word(53248));
    EXPECT_EQ(table.GetBackgroundWord(0), 5200);
    EXPECT_EQ(line.Trouble(), "");
  }
  image.EepromValid[44] = false;
  image.SetEepromWord(43, 0x0100);
  // Bytes 42 and 43 come, so the flag of 44 stays clear and the next call reads again.
  for (int call = 0; call < 2; ++call) {
    Dialogue line(port);
    Hear(line, {138, 21}, {7, 208});
    EXPECT_EQ(table.GetBackgroundWord(1), 5200);
    EXPECT_EQ(line.Trouble(), "");
    EXPECT_FALSE(image.EepromValid[44]);
  }
}

TEST_F(TableTest, OnPlatform61AMissingBackgroundIsReadWhereItLies) {
  Attach61(0);
  FillGas(At(4), 100);
  FillGas(At(0), 100);
  for (const int missing : {58, 59, 60, 61}) {
    image.EepromValid.at(static_cast<std::size_t>(missing)) = false;
    Dialogue line(port);
    Hear(line, {138, static_cast<std::uint8_t>(missing / 2)}, Word(53248));
    EXPECT_EQ(table.GetBackgroundWord(missing < 60 ? 0 : 1), 5200);
    EXPECT_EQ(line.Trouble(), "");
  }
}

TEST_F(TableTest, OnPlatform7TheFetchOfABackgroundReadsElsewhere) {
  Attach7(false);
  FillGas(512 + 34 * 5, 100);
  image.SetEepromWord(976, 53248);
  image.SetEepromWord(978, 49152);
  for (const int missing : {976, 977, 978, 979}) {
    image.EepromValid.fill(true);
    image.EepromValid.at(static_cast<std::size_t>(missing)) = false;
    const bool second = missing > 977;
    Dialogue line(port);
    Hear(line, {138, 0, static_cast<std::uint8_t>(second ? 60 : 58)}, {1, 2});
    EXPECT_EQ(table.GetBackgroundWord(second ? 1 : 0), second ? 5300 : 5200);
    EXPECT_EQ(line.Trouble(), "");
    EXPECT_FALSE(image.EepromValid.at(static_cast<std::size_t>(missing)));
  }
}

TEST_F(TableTest, ABackgroundThatCannotBeFetchedIs0AndLeavesNoText) {
  // The word, the scale factor, the table.
  for (const int missing : {38, 165, At(4) + 28}) {
    Attach(kPart6);
    image.EepromValid.fill(true);
    FillGas(At(4), 100);
    image.SetEepromWord(38, kZeroGas - 1);
    image.EepromValid.at(static_cast<std::size_t>(missing)) = false;
    EXPECT_EQ(table.GetBackgroundWord(0), 0) << missing;
    EXPECT_EQ(session.LastError, "") << missing;
    EXPECT_EQ(table.Background(0), std::nullopt) << missing;
    EXPECT_EQ(session.LastError, "Can't read from sensor") << missing;
    session.LastError.clear();
  }
}

TEST_F(TableTest, AnEarlierTextGoesWithABackgroundThatCannotBeFetched) {
  Attach(kPart6);
  image.EepromValid[38] = false;
  session.LastError = "an earlier text";
  EXPECT_EQ(table.GetBackgroundWord(0), 0);
  EXPECT_EQ(session.LastError, "");
}

TEST_F(TableTest, ABackgroundThatIsKnownIsToldInEitherForm) {
  Attach(kPart6);
  FillGas(At(4), 100);
  image.SetEepromWord(38, kZeroGas - 2 * kStep);
  session.LastError = "an earlier text";
  EXPECT_EQ(table.Background(0), 5200);
  EXPECT_EQ(table.GetBackgroundWord(0), 5200);
  EXPECT_EQ(session.LastError, "an earlier text");
}

// Background, setting

TEST_F(TableTest, SettingTheBackgroundOfPlatform5KeepsItsOwnStride) {
  AttachTyped(0);
  FillGas(34, 100);
  FillGas(68, 200);
  image.SetRamWord(138, 1024);
  image.SetRamWord(140, 4096);
  auto before = image;
  table.SetBackgroundWord(0, 5200);
  ExpectOnly(before, false, 216, Word(61440 - 2 * 8192));
  before = image;
  table.SetBackgroundWord(1, 5800);
  ExpectOnly(before, false, 222, Word(61440 - 4 * 2048));
}

TEST_F(TableTest, WithoutASpanWordThereIsNoBackgroundToSet) {
  AttachTyped(0);
  FillGas(34, 100);
  const auto before = image;
  table.SetBackgroundWord(0, 5200);
  ExpectNothing(before);
}

TEST_F(TableTest, AfterAFailureOnlyPlatform5LeavesTheBackground) {
  AttachTyped(0);
  FillGas(34, 100);
  image.SetRamWord(138, 2048);
  session.LastError = "an earlier text";
  auto before = image;
  table.SetBackgroundWord(0, 5200);
  ExpectNothing(before);
  Attach(kPart6);
  FillGas(At(4), 100);
  before = image;
  table.SetBackgroundWord(0, 5200);
  ExpectOnly(before, true, 38, Word(53248));
}

TEST_F(TableTest, SettingTheBackgroundOfPlatform6) {
  Attach(kPart6);
  FillGas(At(4), 100);
  FillGas(At(5), 200);
  auto before = image;
  table.SetBackgroundWord(0, 5200);
  ExpectOnly(before, true, 38, Word(61440 - 2 * 4096));
  SetEeprom(165, 2);
  before = image;
  table.SetBackgroundWord(1, 5800);
  ExpectOnly(before, true, 43, Word(61440 - 4 * 2048));
}

TEST_F(TableTest, SettingTheBackgroundOfPlatform61) {
  Attach61(1);
  FillGas(At(4), 100);
  FillGas(At(0), 200);
  auto before = image;
  table.SetBackgroundWord(0, 5200);
  ExpectOnly(before, true, 58, Word(61440 - 2 * 2048));
  before = image;
  table.SetBackgroundWord(1, 5800);
  ExpectOnly(before, true, 60, Word(61440 - 4 * 2048));
}

TEST_F(TableTest, SettingTheBackgroundOfPlatform7) {
  Attach7(true);
  FillGas(512 + 34 * 5, 100);
  auto before = image;
  table.SetBackgroundWord(0, 5200);
  ExpectOnly(before, true, 976, Word(61440 - 2 * 2048));
  before = image;
  table.SetBackgroundWord(1, 5800);
  ExpectOnly(before, true, 978, Word(61440 - 8 * 2048));
}

TEST_F(TableTest, AStoredPositionIsRoundedToTheEvenNeighbour) {
  Attach(kPart6);
  SetEeprom(165, 2);
  FillFlatBut14(At(4), 9096);
  table.SetBackgroundWord(0, 5001);  // 61439.5
  EXPECT_EQ(image.EepromWord(38), 61440);
  table.SetBackgroundWord(0, 5003);  // 61438.5
  EXPECT_EQ(image.EepromWord(38), 61438);
}

TEST_F(TableTest, APositionThatNoWordHoldsIsStoredAsWordsAre) {
  AttachTyped(0);
  FillGas(34, 100);
  image.SetRamWord(138, 1024);
  table.SetBackgroundWord(0, 60000);  // in no segment: position 65535, word 69630
  EXPECT_EQ(image.RamWord(216), 65535);
  table.SetBackgroundWord(0, 6500);  // position 0, word -61440
  EXPECT_EQ(image.RamWord(216), 4096);
}

TEST_F(TableTest, WithScaleFactor0NothingCanBeSet) {
  Attach(kPart61);
  FillGas(At(4), 100);
  image.SetEepromWord(46, 2048);
  const auto before = image;
  EXPECT_THROW(table.SetBackgroundWord(0, 5200), NoResult);
  EXPECT_THROW(table.SetBackgroundWord(0, 5000), NoResult);  // 0 / 0
  EXPECT_THROW(table.SetCalibrationBase(0, true, 5200), NoResult);
  EXPECT_THROW(table.SetCalibrationBase(0, false, 5200), NoResult);
  ExpectNothing(before);
}

TEST_F(TableTest, ABackgroundThatIsSetIsReadBack) {
  Attach61(0);
  FillGas(At(4), 137);
  for (const float value : {5000, 5001, 5400, 6000, 7000}) {
    table.SetBackgroundWord(0, value);
    EXPECT_EQ(table.GetBackgroundWord(0), value);
  }
}

// Calibration base, reading

TEST_F(TableTest, TheCalibrationBaseOfPlatform5) {
  AttachTyped(0);
  FillGas(34, 100);
  FillGas(68, 200);
  image.SetRamWord(130, 4096);  // zero words of channels 1 and 2
  image.SetRamWord(132, 8192);
  image.SetRamWord(138, 2048);
  image.SetRamWord(140, 1024);
  image.SetRamWord(214, 53248 / 2);
  image.SetRamWord(221, 53248 / 4);
  for (const bool eepromForm : {true, false}) {
    EXPECT_EQ(table.GetCalibrationBase(0, eepromForm, false), 5200);
    EXPECT_EQ(table.GetCalibrationBase(1, eepromForm, false), 5200);
  }
  EXPECT_THAT(port.Events(), IsEmpty());
}

TEST_F(TableTest, TheCalibrationBaseOfPlatform6InBothForms) {
  Attach(kPart6);
  FillGas(At(4), 100);
  FillGas(At(5), 200);
  SetEeprom(165, 2);
  image.SetEepromWord(46, 4096);
  image.SetEepromWord(48, 8192);
  image.SetEepromWord(36, 53248 / 2);
  image.SetEepromWord(41, 53248 / 4);
  image.SetRamWord(212, 57344 / 2);
  image.SetRamWord(217, 57344 / 4);
  EXPECT_EQ(table.GetCalibrationBase(0, true, false), 5400);
  EXPECT_EQ(table.GetCalibrationBase(1, true, false), 5800);
  EXPECT_EQ(table.GetCalibrationBase(0, false, false), 5200);
  EXPECT_EQ(table.GetCalibrationBase(1, false, false), 5400);
  EXPECT_THAT(port.Events(), IsEmpty());
}

TEST_F(TableTest, TheCalibrationBaseOfPlatform61InBothForms) {
  Attach61(0);
  FillGas(At(4), 100);
  FillGas(At(0), 200);
  image.SetEepromWord(46, 4096);
  image.SetEepromWord(34, 53248 / 2);
  image.SetRamWord(210, 57344 / 2);
  EXPECT_EQ(table.GetCalibrationBase(0, true, false), 5200);
  EXPECT_EQ(table.GetCalibrationBase(0, false, false), 5100);
  // The second gas has no channel and so no zero word: position 0 of table 0.
  image.SetEepromWord(36, 53248);
  EXPECT_EQ(table.GetCalibrationBase(1, true, false), 8000);
  EXPECT_THAT(port.Events(), IsEmpty());
}

TEST_F(TableTest, ACalibrationBaseIsReadFromTheSensorIfAskedFor) {
  struct Case {
    std::uint8_t part;
    std::uint8_t gas;
    bool eepromForm;
    Bytes head;
  };
  for (const auto& [part, gas, eepromForm, head] :
       {Case{kPart5, 0, true, {194, 86}}, Case{kPart5, 1, false, {194, 93}}, Case{kPart6, 0, true, {138, 18}},
        Case{kPart6, 0, false, {194, 84}}, Case{kPart6, 1, false, {194, 89}},
        Case{kScaled61, 0, true, {138, 17}}, Case{kScaled61, 0, false, {194, 82}}}) {
    AttachTyped(0);
    Attach(part);
    image.EepromImage.fill(0);
    SetEeprom(165, part == kScaled61 ? 1 : 0);
    for (int number = 0; number < 6; ++number) FillGas(At(number), 100);
    if (part == kPart5) {
      FillGas(34, 100);
      FillGas(68, 100);
    }
    for (const int zero : {130, 132}) image.SetRamWord(zero, 4096);
    for (const int span : {138, 140}) image.SetRamWord(span, 2048);
    for (const int zero : {46, 48}) image.SetEepromWord(zero, 4096);
    Dialogue line(port);
    Hear(line, head, Word(53248 / 2));
    EXPECT_EQ(table.GetCalibrationBase(gas, eepromForm, true), 5200) << int{part} << ", " << int{gas};
    EXPECT_EQ(line.Trouble(), "") << int{part} << ", " << int{gas};
  }
}

TEST_F(TableTest, TheSecondBaseOfPlatform6LiesAcrossTwoWords) {
  Attach(kPart6);
  FillGas(At(5), 100);
  image.SetEepromWord(48, 4096);
  Dialogue line(port);
  Hear(line, {140, 20}, {1, 104, 0, 2});
  EXPECT_EQ(table.GetCalibrationBase(1, true, true), 5200);
  EXPECT_EQ(line.Trouble(), "");
}

TEST_F(TableTest, ACalibrationBaseThatCannotBeFetchedIs0) {
  for (const bool eepromForm : {true, false}) {
    Attach(kPart6);
    FillGas(At(4), 100);
    image.SetEepromWord(46, 4096);
    session.LastError.clear();
    EXPECT_EQ(table.GetCalibrationBase(0, eepromForm, true), 0);
  }
}

TEST_F(TableTest, WithoutItsZeroWordScaleFactorOrTableACalibrationBaseIs0) {
  for (const int missing : {46, 165, At(4) + 28}) {
    Attach(kPart6);
    image.EepromValid.fill(true);
    FillGas(At(4), 100);
    image.SetEepromWord(46, 2048);
    image.SetEepromWord(36, kZeroGas - 1);
    image.EepromValid.at(static_cast<std::size_t>(missing)) = false;
    session.LastError.clear();
    EXPECT_EQ(table.GetCalibrationBase(0, true, false), 0) << missing;
  }
}

// Calibration base, setting

TEST_F(TableTest, SettingTheBaseOfPlatform5KeepsItsOwnStride) {
  AttachTyped(0);
  FillGas(34, 100);
  FillGas(68, 200);
  image.SetRamWord(130, 4096);
  image.SetRamWord(132, 8192);
  image.SetRamWord(138, 2048);
  image.SetRamWord(140, 2048);
  for (const bool eepromForm : {true, false}) {
    image.SetRamWord(214, 0);
    image.SetRamWord(220, 0);
    auto before = image;
    table.SetCalibrationBase(0, eepromForm, 5200);
    ExpectOnly(before, false, 214, Word(53248 / 2));
    before = image;
    table.SetCalibrationBase(1, eepromForm, 5400);
    ExpectOnly(before, false, 220, Word(53248 / 4));
  }
}

TEST_F(TableTest, SettingTheBaseOfPlatform6GoesToEepromInBothForms) {
  Attach(kPart6);
  FillGas(At(4), 100);
  FillGas(At(5), 200);
  image.SetEepromWord(46, 4096);
  image.SetEepromWord(48, 8192);
  struct Case {
    std::uint8_t gas;
    bool eepromForm;
    int address;
    int word;
  };
  for (const auto& [gas, eepromForm, address, word] :
       {Case{0, true, 36, 53248 / 2}, Case{0, false, 212, 53248 / 2}, Case{1, true, 41, 57344 / 4},
        Case{1, false, 217, 57344 / 4}}) {
    const auto before = image;
    table.SetCalibrationBase(gas, eepromForm, 5200);
    ExpectOnly(before, true, address, Word(word));
  }
}

TEST_F(TableTest, SettingTheBaseOfPlatform61) {
  Attach61(0);
  FillGas(At(4), 100);
  image.SetEepromWord(46, 4096);
  auto before = image;
  table.SetCalibrationBase(0, true, 5200);
  ExpectOnly(before, true, 34, Word(53248 / 2));
  before = image;
  table.SetCalibrationBase(0, false, 5200);
  ExpectOnly(before, false, 210, Word(53248 / 2));
  before = image;
  table.SetCalibrationBase(1, true, 5200);  // no channel, no zero word
  table.SetCalibrationBase(1, false, 5200);
  ExpectNothing(before);
}

TEST_F(TableTest, TheBaseIsRoundedBeforeAndAfterItsZeroWord) {
  Attach(kPart6);
  SetEeprom(165, 2);
  std::vector<int> entries(17, 5000);
  entries.front() = 9096;
  Fill(At(4), entries);
  image.SetEepromWord(46, 1024);
  table.SetCalibrationBase(0, true, 9093);  // position 3: 30721.5, rounded and doubled
  EXPECT_EQ(image.EepromWord(36), 2 * 30722);
  image.SetEepromWord(46, 4096);
  table.SetCalibrationBase(0, true, 9094);  // position 2: 30721, halved to 15360.5
  EXPECT_EQ(image.EepromWord(36), 15360);
  image.SetEepromWord(46, 3000);
  table.SetCalibrationBase(0, true, 5000);  // position 4096: 32768, at 22369.6
  EXPECT_EQ(image.EepromWord(36), 22370);
  image.SetEepromWord(46, 512);
  table.SetCalibrationBase(0, true, 5000);  // 131072
  EXPECT_EQ(image.EepromWord(36), 65535);
}

TEST_F(TableTest, WithoutAZeroWordOrAfterAFailureTheBaseStays) {
  AttachTyped(0);
  FillGas(34, 100);
  image.SetRamWord(138, 2048);
  auto before = image;
  table.SetCalibrationBase(0, true, 5200);
  ExpectNothing(before);
  for (const auto part : {kPart5, kPart6, kScaled61}) {
    Attach(part);
    session.LastError = "an earlier text";
    for (int number = 0; number < 6; ++number) FillGas(At(number), 100);
    image.SetRamWord(130, 2048);
    image.SetEepromWord(46, 2048);
    before = image;
    table.SetCalibrationBase(0, true, 5200);
    table.SetCalibrationBase(0, false, 5200);
    ExpectNothing(before);
  }
}

TEST_F(TableTest, Platform7HasNoCalibrationBase) {
  Attach7(false);
  FillGas(512 + 34 * 5, 100);
  image.SetEepromWord(14, 2048);
  const auto before = image;
  for (const std::uint8_t gas : {0, 1}) {
    for (const bool eepromForm : {true, false}) table.SetCalibrationBase(gas, eepromForm, 5200);
  }
  ExpectNothing(before);
}

TEST_F(TableTest, PlatformsWithoutTablesHaveNoGasWords) {
  for (const auto part : {kPart8, kPart9, kPartUnknown}) {
    Attach(part);
    image.EepromImage.fill(9);
    image.RamImage.fill(9);
    bus.KnowPart(part);
    const auto before = image;
    EXPECT_EQ(table.GetBackgroundWord(0), 0);
    EXPECT_EQ(table.GetCalibrationBase(0, true, true), 0);
    table.SetBackgroundWord(0, 5200);
    table.SetCalibrationBase(0, true, 5200);
    ExpectNothing(before);
  }
}

}  // namespace
}  // namespace brelant
