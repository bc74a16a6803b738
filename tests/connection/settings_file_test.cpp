// SPDX-License-Identifier: GPL-3.0-or-later
#include <string_view>

#include "connection/BREFILE.h"
#include "connection/both_roads.h"
#include "knowledge/snsFil.h"

namespace brelant {
namespace {

using test::Bytes;
using test::FailureOf;
using test::kCancel;
using testing::ElementsAre;
using testing::HasSubstr;

constexpr int kEeprom = SensorMemory::eeprom;
constexpr const char* kName = "C:\\a.set";

/// The file of docs/files.md, byte for byte: eaSensorID_0 is 7, and EEPROM 7124 is 5.
const Bytes kExample{1,   247, 8,   49, 0,   3,   0,   0,   0,   0,   0,   0,   0,   0,   0,   0, 0,  //
                     30,  0,   9,   0,  154, 117, 0,   0,   0,   3,   0,   0,   0,                    //
                     31,  0,   21,  0,  12,  'e', 'a', 'S', 'e', 'n', 's', 'o', 'r', 'I', 'D',        //
                     '_', '0', 255, 0,  0,   0,   7,   0,   0,   0,                                   //
                     32,  0,   7,   0,  1,   212, 27,  1,   0,   255, 5};

void AppendNumber(Bytes& bytes, int width, std::int64_t value) {
  for (int i = 0; i < width; ++i) bytes.push_back(static_cast<std::uint8_t>(value >> (8 * i) & 255));
}

struct Item {
  std::string name;
  std::int64_t mask;
  std::int64_t value;
};
struct Range {
  int kind;
  int address;
  int mask;
  Bytes bytes;
};
struct Block {
  int type;
  Bytes payload;
};

Bytes FileOf(const std::vector<Block>& blocks) {
  Bytes body;
  for (const auto& block : blocks) {
    AppendNumber(body, 2, block.type);
    AppendNumber(body, 2, static_cast<std::int64_t>(block.payload.size()));
    body.insert(body.end(), block.payload.begin(), block.payload.end());
  }
  Bytes file{1};
  AppendNumber(file, 2, std::accumulate(body.begin(), body.end(), 0));
  AppendNumber(file, 2, static_cast<std::int64_t>(body.size()));
  AppendNumber(file, 2, static_cast<std::int64_t>(blocks.size()));
  file.resize(17);
  file.insert(file.end(), body.begin(), body.end());
  return file;
}

Block UnitBlock(int part = 154, int model = 3) {
  Block block{30, {static_cast<std::uint8_t>(part)}};
  AppendNumber(block.payload, 4, 117);
  AppendNumber(block.payload, 4, model);
  return block;
}
Block ItemBlock(const std::vector<Item>& items) {
  Block block{31, {}};
  for (const auto& item : items) {
    AppendNumber(block.payload, 1, static_cast<std::int64_t>(item.name.size()));
    block.payload.insert(block.payload.end(), item.name.begin(), item.name.end());
    AppendNumber(block.payload, 4, item.mask);
    AppendNumber(block.payload, 4, item.value);
  }
  return block;
}
Block RangeBlock(const std::vector<Range>& ranges) {
  Block block{32, {}};
  for (const auto& range : ranges) {
    AppendNumber(block.payload, 1, range.kind);
    AppendNumber(block.payload, 2, range.address);
    AppendNumber(block.payload, 2, static_cast<std::int64_t>(range.bytes.size()));
    AppendNumber(block.payload, 1, range.mask);
    block.payload.insert(block.payload.end(), range.bytes.begin(), range.bytes.end());
  }
  return block;
}
Bytes FileOf(const std::vector<Item>& items, const std::vector<Range>& ranges = {}) {
  return FileOf({UnitBlock(), ItemBlock(items), RangeBlock(ranges)});
}

class SettingsFileTest : public test::BothRoadsTest {
 protected:
  void Mark(const std::string& name, std::int32_t mask) { sens.Nodes().FindNode(name, "").MarkForSave(mask); }
  void MarkTheExample() {
    PutByte(kEeprom, 4160, 7);
    PutByte(kEeprom, 7124, 5);
    Mark("eaSensorID_0", 255);
    sens.Memory().MarkBlock(7124, 1, kEeprom, 255);
  }
  void Load(const Bytes& content) {
    bus.files.Put(kName, content);
    ASSERT_TRUE(file.Read(kName));
  }
  std::string FailureOfRead(const Bytes& content) {
    bus.files.Put(kName, content);
    return FailureOf([&] { file.Read(kName); });
  }
  std::string FailureOfSend(const Bytes& content) {
    Load(content);
    Forget();
    return FailureOf([&] { file.Send(); });
  }
  Bytes Saved(const std::string& name = kName) {
    EXPECT_TRUE(file.ChooseForSave(name));
    file.Write();
    return bus.files.Get(name);
  }

  BREFILE file{{sens, bus.files, bus.ui}};
};

TEST_P(SettingsFileTest, HoldsWhatIsMarkedByteForByte) {
  MarkTheExample();
  EXPECT_EQ(Saved(), kExample);
}

TEST_P(SettingsFileTest, HoldsTheValuesOfTheUnitInTheOrderOfMarking) {
  PutWord(kEeprom, 4242, 65531);
  PutWord(kEeprom, 4240, 2500);
  PutByte(kEeprom, 7964, 2 + 4);
  PutWord(kEeprom, 4602, 37302);
  Mark("eaState1Alg_30", -1);
  Mark("eaCaseChannelUnit_4", 255);
  Mark("eaRegPar1_4", -1);
  Mark("eaRegPar0_4", 15);
  EXPECT_EQ(Saved(), FileOf({{"eaState1Alg_30", -1, 37302},
                             {"eaCaseChannelUnit_4", 255, 1},
                             {"eaRegPar1_4", -1, -5},
                             {"eaRegPar0_4", 15, 2500}}));
}

TEST_P(SettingsFileTest, ReadsTogetherWhatLiesTogether) {
  for (const int i : {9, 10, 11}) Mark("eaCountPar_" + std::to_string(i), -1);
  Saved();
  // Part number and two bytes of identity; then 6 bytes, in one request or in frames of 4 and 2.
  EXPECT_EQ(Transfers(), IsModbus() ? 4U : 5U);
}

TEST_P(SettingsFileTest, WhatIsMarkedAgainKeepsItsPlaceAndTakesTheNewMask) {
  Mark("eaSensorID_0", 1);
  Mark("eaCountPar_9", -1);
  Mark("eaSensorID_0", 255);
  sens.Memory().MarkBlock(7124, 1, kEeprom, 1);
  sens.Memory().MarkBlock(7124, 1, kEeprom, 255);
  EXPECT_EQ(Saved(), FileOf({{"eaSensorID_0", 255, 0}, {"eaCountPar_9", -1, 0}}, {{1, 7124, 255, {0}}}));
}

TEST_P(SettingsFileTest, UsesTheMarksUp) {
  MarkTheExample();
  Saved();
  EXPECT_EQ(FailureOf([&] { file.Write(); }), "There is nothing to save.");
  Mark("eaCountPar_9", -1);
  EXPECT_EQ(Saved(), FileOf(std::vector<Item>{{"eaCountPar_9", -1, 0}}));
}

TEST_P(SettingsFileTest, TheConnectionForgetsTheMarksWhenItIsClosed) {
  MarkTheExample();
  sens.CloseConnection();
  sens.ConnectSensor("3", -1);
  file.ChooseForSave(kName);
  EXPECT_EQ(FailureOf([&] { file.Write(); }), "There is nothing to save.");
}

TEST_P(SettingsFileTest, AsksForAFileIfNoneIsNamed) {
  bus.ui.chosenFiles = {"C:\\asked", std::nullopt, "C:\\asked.Set", std::nullopt};
  MarkTheExample();
  EXPECT_TRUE(file.ChooseForSave(""));
  file.Write();
  EXPECT_EQ(bus.files.Get("C:\\asked.Set"), kExample);
  EXPECT_FALSE(file.ChooseForSave(""));
  EXPECT_TRUE(file.Read(""));
  EXPECT_FALSE(file.Read(""));
  ASSERT_EQ(bus.ui.dialogs.size(), 4U);
  for (std::size_t i = 0; i < 4; ++i) {
    EXPECT_EQ(bus.ui.dialogs[i].filter, "(*.Set)|*.Set");
    EXPECT_EQ(bus.ui.dialogs[i].use, i < 2 ? UserInterface::FileUse::save : UserInterface::FileUse::open);
  }
}

TEST_P(SettingsFileTest, ANameEndsInSetInWhateverCase) {
  for (const auto& [given, written] : std::vector<std::pair<std::string, std::string>>{
           {"C:\\b", "C:\\b.Set"}, {"C:\\b.SET", "C:\\b.SET"}, {"C:\\b.txt", "C:\\b.txt.Set"}}) {
    MarkTheExample();
    file.ChooseForSave(given);
    file.Write();
    EXPECT_EQ(bus.files.Get(written), kExample) << given;
  }
}

TEST_P(SettingsFileTest, IsNotWrittenWhereSomethingCannotBeRead) {
  bus.files.Put(kName, {1, 2, 3});
  MarkTheExample();
  sens.Memory().MarkBlock(8190, 4, kEeprom, 255);
  file.ChooseForSave(kName);
  EXPECT_NE(FailureOf([&] { file.Write(); }), "");
  EXPECT_EQ(bus.files.Get(kName), (Bytes{1, 2, 3}));
}

TEST_P(SettingsFileTest, HoldsNothingThatCouldNotBeSent) {
  file.ChooseForSave(kName);
  const std::vector<std::function<void()>> kMarks{
      [&] { Mark("raGenStat_9", -1); },
      [&] { Mark("eaSensorID_0", 0); },
      [&] { Mark("eaSensorID_0", 256); },
      [&] { Mark("eaCaseChannelUnit_4", 8); },
      [&] { sens.Memory().MarkBlock(306, 2, SensorMemory::ram, 255); },
      [&] { sens.Memory().MarkBlock(7124, 1, kEeprom, 0); },
      [&] { sens.Memory().MarkBlock(7124, 1, kEeprom, 256); },
      [&] { sens.Memory().MarkBlock(7124, 0, kEeprom, 255); }};
  for (const auto& mark : kMarks) {
    sens.ForgetMarks();
    mark();
    EXPECT_NE(FailureOf([&] { file.Write(); }), "");
    EXPECT_FALSE(bus.files.Exists(kName));
  }
}

TEST_P(SettingsFileTest, IsNotLongerThanAReaderTakes) {
  sens.Memory().MarkBlock(4096, 1446, kEeprom, 255);
  // 17 + 13 + 4 + 4 + 6 + 1456 is 1500.
  for (const int count : {1456, 1457}) {
    sens.ForgetMarks();
    sens.Memory().MarkBlock(4096, count, kEeprom, 255);
    file.ChooseForSave(kName);
    EXPECT_EQ(FailureOf([&] { file.Write(); }).empty(), count == 1456) << count;
    EXPECT_EQ(bus.files.Get(kName).size(), 1500U);
    ASSERT_TRUE(file.Read(kName));
    EXPECT_EQ(FailureOf([&] { file.Send(); }), "");
  }
}

TEST_P(SettingsFileTest, TellsAFileThatCannotBeWrittenAndKeepsTheMarks) {
  MarkTheExample();
  bus.files.Break(kName);
  file.ChooseForSave(kName);
  EXPECT_THAT(FailureOf([&] { file.Write(); }), HasSubstr("Permission denied"));
  bus.files.Mend(kName);
  EXPECT_EQ(Saved(), kExample);
}

TEST_P(SettingsFileTest, NeedsAFileToWriteAndToSend) {
  MarkTheExample();
  EXPECT_EQ(FailureOf([&] { file.Write(); }), "No file has been chosen.");
  EXPECT_EQ(FailureOf([&] { file.Send(); }), "No file has been read.");
  EXPECT_EQ(Transfers(), 0U);
}

TEST_P(SettingsFileTest, SendsWhatItHolds) {
  Load(kExample);
  EXPECT_EQ(Transfers(), 0U);
  file.Send();
  EXPECT_EQ(Byte(kEeprom, 4160), 7);
  EXPECT_EQ(Byte(kEeprom, 7124), 5);
}

TEST_P(SettingsFileTest, SendsInTheOrderOfTheFile) {
  std::vector<int> order;
  bus.pump.OnPass([&] {
    for (const int address : {4160, 4435, 7125}) {
      const bool isNew = std::find(order.begin(), order.end(), address) == order.end();
      if (isNew && Byte(kEeprom, address) != 0) order.push_back(address);
    }
    return false;
  });
  Load(FileOf({{"eaCountPar_9", -1, 2153}, {"eaSensorID_0", 255, 9}}, {{1, 7125, 255, {3}}}));
  file.Send();
  EXPECT_THAT(order, ElementsAre(4435, 4160, 7125));
}

TEST_P(SettingsFileTest, BitsOutsideAMaskStayThoseOfTheUnit) {
  PutWord(kEeprom, 4564, 0x1235);
  PutByte(kEeprom, 4160, 0xA5);
  PutByte(kEeprom, 7124, 0xA5);
  PutByte(kEeprom, 7125, 0x5A);
  Load(
      FileOf({{"eaState0Alg_21", 15, 0xFF8}, {"eaSensorID_0", 0x41, 0x1E}}, {{1, 7124, 0x0F, {0xCC, 0x33}}}));
  file.Send();
  EXPECT_EQ(Word(kEeprom, 4564), 0x1238);
  EXPECT_EQ(Byte(kEeprom, 4160), 0xA4);
  EXPECT_EQ(Byte(kEeprom, 7124), 0xAC);
  EXPECT_EQ(Byte(kEeprom, 7125), 0x53);
}

TEST_P(SettingsFileTest, ALevelBelow0IsSentAsOne) {
  Load(FileOf({{"eaRegPar0_4", -1, -5}, {"eaRegPar1_4", -256, -5}}));
  EXPECT_NE(FailureOf([&] { file.Send(); }), "");
  PutWord(kEeprom, 4242, 0x1234);
  Load(FileOf({{"eaRegPar0_4", -1, -5}, {"eaRegPar1_4", 65280, -5}}));
  file.Send();
  EXPECT_EQ(Word(kEeprom, 4240), 65531);
  EXPECT_EQ(Word(kEeprom, 4242), 0xFF34);
}

TEST_P(SettingsFileTest, TheUnitOfATemperatureLeavesTheRestOfItsByte) {
  PutByte(kEeprom, 7964, 6);
  Load(FileOf(std::vector<Item>{{"eaCaseChannelUnit_4", 255, 2}}));
  file.Send();
  EXPECT_EQ(Byte(kEeprom, 7964), 10);
}

TEST_P(SettingsFileTest, WhatIsSavedComesBackWhole) {
  for (int i = 0; i < 4; ++i) PutByte(kEeprom, 7124 + i, 17 * i + 3);
  PutWord(kEeprom, 4240, 65000);
  PutWord(kEeprom, 4354, 5000);
  const std::vector<std::string> kNames{"eaRegPar0_4", "eawPar_1"};
  for (const auto& name : kNames) Mark(name, -1);
  sens.Memory().MarkBlock(7125, 3, kEeprom, 255);
  Saved();
  for (int i = 0; i < 4; ++i) PutByte(kEeprom, 7124 + i, 200);
  PutWord(kEeprom, 4240, 1);
  PutWord(kEeprom, 4354, 2);
  file.Read(kName);
  file.Send();
  EXPECT_EQ(Word(kEeprom, 4240), 65000);
  EXPECT_EQ(Word(kEeprom, 4354), 5000);
  EXPECT_EQ(Byte(kEeprom, 7124), 200);
  for (int i = 1; i < 4; ++i) EXPECT_EQ(Byte(kEeprom, 7124 + i), 17 * i + 3) << i;
}

TEST_P(SettingsFileTest, AUnitThatDoesNotKeepAValueIsAFailure) {
  Stick(kEeprom, 4160);
  EXPECT_EQ(FailureOfSend(kExample), "The unit did not take 'eaSensorID_0'.");
  EXPECT_EQ(Byte(kEeprom, 7124), 0);
}

TEST_P(SettingsFileTest, AUnitThatDoesNotKeepAByteIsAFailure) {
  Stick(kEeprom, 7124);
  EXPECT_EQ(FailureOfSend(kExample), "The unit did not take memory 7124.");
}

TEST_P(SettingsFileTest, WhatTheUnitKeepsOutsideTheMaskIsNoFailure) {
  Stick(kEeprom, 7125);
  EXPECT_EQ(FailureOfSend(FileOf(std::vector<Item>{}, {{1, 7124, 15, {5}}})), "");
  PutByte(kEeprom, 4160, 0xF0);
  EXPECT_EQ(FailureOfSend(FileOf(std::vector<Item>{{"eaSensorID_0", 15, 0}})), "");
}

TEST_P(SettingsFileTest, IsForUnitsOfTheSamePlatformAndModel) {
  const auto refusal = "This setfile can't be used on this sensor";
  const auto of = [](int part, int model) {
    return FileOf({UnitBlock(part, model), ItemBlock({{"eaSensorID_0", 255, 7}}), RangeBlock({})});
  };
  // 154 is of platform 9, 40 of 8, 231 of 5; 1 has none.
  for (const int part : {40, 231, 1}) EXPECT_EQ(FailureOfSend(of(part, 3)), refusal) << part;
  for (const int model : {0, 1, 7, 3 + 256}) EXPECT_EQ(FailureOfSend(of(154, model)), refusal) << model;
  EXPECT_EQ(Writes(), 0U);
  PutByte(kEeprom, 4124, 118);
  EXPECT_EQ(FailureOfSend(of(154, 3)), "");
  PutByte(SensorMemory::ram, 65, 1);
  EXPECT_EQ(FailureOfSend(of(1, 3)), refusal);
}

TEST_P(SettingsFileTest, WhatCannotBeSentIsRefusedBeforeAnythingIs) {
  const Item good{"eaSensorID_0", 255, 7};
  const std::vector<Item> kBad{{"eaSensorID_1", 255, 7},
                               {"", 255, 7},
                               {"raGenStat_9", -1, 2},
                               {"raChan_4", -1, 2},
                               {"miIR_7", -1, 2},
                               {"mhHR_20", -1, 2},
                               {"eaSensorID_0", 255, 256},
                               {"eaSensorID_0", 255, -129},
                               {"eaSensorID_0", 0, 7},
                               {"eaSensorID_0", 256, 7},
                               {"eaSensorID_0", 511, 7},
                               {"eaSensorID_0", -2, 7},
                               {"eaRegPar0_4", -1, 65536},
                               {"eaRegPar0_4", -1, -32769},
                               {"eaRegPar0_4", 65536, 0},
                               {"eaCaseChannelUnit_4", 255, 8},
                               {"eaCaseChannelUnit_4", 8, 0}};
  for (const auto& bad : kBad) {
    const auto name = bad.name + ", " + std::to_string(bad.mask) + ", " + std::to_string(bad.value);
    EXPECT_NE(FailureOfSend(FileOf({good, bad})), "") << name;
    EXPECT_EQ(Transfers(), 0U) << name;
  }
  const std::vector<Range> kBadRanges{
      {0, 306, 255, {2}},           {2, 7124, 255, {2}}, {1, 7124, 0, {2}},
      {1, 7124, 255, {}},           {1, 8192, 255, {2}}, {1, 8191, 255, {2, 2}},
      {1, 65535, 255, {2, 2, 2, 2}}};
  for (const auto& bad : kBadRanges) {
    EXPECT_NE(FailureOfSend(FileOf({good}, {{1, 7125, 255, {1}}, bad})), "")
        << bad.kind << " " << bad.address;
    EXPECT_EQ(Transfers(), 0U) << bad.address;
  }
  EXPECT_EQ(FailureOfSend(FileOf({good, {"eaRegPar0_4", 65535, 65535}}, {{1, 8191, 255, {2}}})), "");
  EXPECT_EQ(Byte(kEeprom, 8191), 2);
}

// Its register on Modbus is one that nobody can write.
TEST_P(SettingsFileTest, ACaseWordIsWrittenWhereItLies) {
  if (IsModbus()) modbus.units.at(1).input[16] = 10 * 256;
  EXPECT_EQ(FailureOfSend(FileOf({{"eaCaseChannel_4", 255, 10}})), "");
  EXPECT_EQ(Byte(kEeprom, 7964), 10);
}

TEST_P(SettingsFileTest, IsDamagedAtEveryShorterAndLongerLength) {
  for (std::size_t length = 0; length < kExample.size(); ++length) {
    const Bytes part(kExample.begin(), kExample.begin() + static_cast<std::ptrdiff_t>(length));
    EXPECT_EQ(FailureOfRead(part), std::string("File is damaged ") + kName) << length;
  }
  auto longer = kExample;
  longer.push_back(0);
  EXPECT_EQ(FailureOfRead(longer), std::string("File is damaged ") + kName);
  EXPECT_EQ(FailureOf([&] { file.Send(); }), "No file has been read.");
  EXPECT_EQ(Transfers(), 0U);
}

TEST_P(SettingsFileTest, IsDamagedWithATailOfZerosCutOff) {
  // The sum does not see them.
  auto file0 = FileOf({{"eaSensorID_0", 255, 7}}, {{1, 7124, 255, {5, 0, 0}}});
  for (int i = 0; i < 2; ++i) {
    file0.pop_back();
    EXPECT_EQ(FailureOfRead(file0), std::string("File is damaged ") + kName) << i;
  }
}

TEST_P(SettingsFileTest, IsDamagedByALengthThatIsNotItsOwn) {
  // The sum of the bytes is the same.
  auto content = FileOf({{"eaSensorID_0", 255, 7}}, {{1, 7124, 255, {0, 0}}});
  for (const int change : {-2, -1, 1, 2}) {
    auto other = content;
    other[3] = static_cast<std::uint8_t>(other[3] + change);
    EXPECT_EQ(FailureOfRead(other), std::string("File is damaged ") + kName) << change;
  }
  EXPECT_EQ(FailureOfRead(content), "");
}

TEST_P(SettingsFileTest, IsDamagedByEveryOtherByteBehindTheHeader) {
  for (std::size_t at = 17; at < kExample.size(); ++at) {
    auto other = kExample;
    ++other[at];
    EXPECT_EQ(FailureOfRead(other), std::string("File is damaged ") + kName) << at;
  }
}

TEST_P(SettingsFileTest, IsDamagedByBlocksThatAreNotWholeOrNotThere) {
  const auto items = ItemBlock({{"eaSensorID_0", 255, 7}});
  const auto ranges = RangeBlock({{1, 7124, 255, {5}}});
  const auto cut = [](Block block) {
    block.payload.pop_back();
    return block;
  };
  const auto grown = [](Block block) {
    block.payload.push_back(0);
    return block;
  };
  const std::vector<std::vector<Block>> kBad{{UnitBlock(), items},
                                             {UnitBlock(), ranges},
                                             {items, ranges},
                                             {cut(UnitBlock()), items, ranges},
                                             {grown(UnitBlock()), items, ranges},
                                             {UnitBlock(), cut(items), ranges},
                                             {UnitBlock(), grown(items), ranges},
                                             {UnitBlock(), items, cut(ranges)},
                                             {UnitBlock(), items, grown(ranges)}};
  for (const auto& blocks : kBad)
    EXPECT_EQ(FailureOfRead(FileOf(blocks)), std::string("File is damaged ") + kName);
  EXPECT_EQ(FailureOfRead(FileOf({ranges, {99, {1, 2}}, items, UnitBlock()})), "");
  file.Send();
  EXPECT_EQ(Byte(kEeprom, 4160), 7);
}

TEST_P(SettingsFileTest, IsDamagedByACountOfBlocksThatIsNotTheirs) {
  for (const int count : {0, 2, 4, 255}) {
    auto other = kExample;
    other[5] = static_cast<std::uint8_t>(count);
    EXPECT_EQ(FailureOfRead(other), std::string("File is damaged ") + kName) << count;
  }
}

TEST_P(SettingsFileTest, AFileOfAnotherKindIsNoneOfTheirs) {
  EXPECT_EQ(FailureOfRead(FileOf({{1, Bytes(240)}})), "Setfile error");
  EXPECT_EQ(FailureOfRead(FileOf({{10, Bytes(512)}, {15, Bytes(542)}})), "Setfile error");
}

TEST_P(SettingsFileTest, IsNoneOfAPanelThatKnowsItsSensorByMemory) {
  bus.files.Put(kName, kExample);
  Definitions definitions(bus.session, bus.image, bus.com, bus.machine);
  SnsInfo info(bus.session, bus.image, bus.com, definitions, bus.machine);
  Table table(bus.session, bus.image, bus.com, definitions, info);
  snsFil old(bus.session, bus.image, bus.com, info, table, bus.machine);
  for (std::uint8_t block : {snsFil::first, snsFil::ram5, snsFil::eeprom, snsFil::selection}) {
    bus.session.LastError.clear();
    EXPECT_FALSE(old.ReadSetBlock(kName, block, true, true));
    EXPECT_EQ(bus.session.LastError, "Setfile error");
  }
}

TEST_P(SettingsFileTest, TellsAMissingFileAndOneThatCannotBeRead) {
  EXPECT_EQ(FailureOf([&] { file.Read("C:\\none.set"); }), "File not found C:\\none.set");
  bus.files.Break(kName);
  EXPECT_THAT(FailureOf([&] { file.Read(kName); }), HasSubstr("Permission denied"));
}

TEST_P(SettingsFileTest, AFileThatCannotBeTakenLeavesNothingToSend) {
  Load(kExample);
  EXPECT_FALSE(file.Read(""));
  EXPECT_EQ(FailureOf([&] { file.Send(); }), "No file has been read.");
  Load(kExample);
  EXPECT_NE(FailureOfRead({1, 2}), "");
  EXPECT_EQ(FailureOf([&] { file.Send(); }), "No file has been read.");
}

TEST_P(SettingsFileTest, TellsWhatItDoesAndHowFarItIs) {
  std::vector<std::string> actions;
  std::vector<int> told;
  file.onAction = [&](const std::string& text) { actions.push_back(text); };
  file.onProgress = [&](int percent) { told.push_back(percent); };
  MarkTheExample();
  Saved();
  EXPECT_THAT(actions, ElementsAre("Saving settings"));
  EXPECT_THAT(told, ElementsAre(50, 100));
  told.clear();
  file.Read(kName);
  file.Send();
  EXPECT_THAT(actions, ElementsAre("Saving settings", "Loading settings"));
  EXPECT_THAT(told, ElementsAre(50, 100));
}

TEST_P(SettingsFileTest, ACancelWhileItIsSentEndsItThere) {
  file.onProgress = [&](int) { bus.session.CancelPressed = true; };
  EXPECT_EQ(FailureOfSend(kExample), kCancel);
  EXPECT_EQ(Byte(kEeprom, 4160), 7);
  EXPECT_EQ(Byte(kEeprom, 7124), 0);
}

TEST_P(SettingsFileTest, ACancelInAnyPassOfASaveLeavesTheOldFile) {
  MarkTheExample();
  file.ChooseForSave(kName);
  bool isWritten = false;
  int cancelled = 0;
  for (int pass = 1; !isWritten; ++pass) {
    bus.files.Put(kName, {1, 2, 3});
    bus.session.CancelPressed = false;
    bool happened = false;
    bus.pump.InPass(pass, [&] { bus.session.CancelPressed = happened = true; });
    const auto failure = FailureOf([&] { file.Write(); });
    isWritten = failure.empty();
    if (isWritten) {
      EXPECT_FALSE(happened);
      break;
    }
    ++cancelled;
    EXPECT_EQ(failure, kCancel) << pass;
    EXPECT_EQ(bus.files.Get(kName), (Bytes{1, 2, 3})) << pass;
  }
  EXPECT_GT(cancelled, 4);
  EXPECT_EQ(bus.files.Get(kName), kExample);
}

TEST_P(SettingsFileTest, ASilentUnitIsToldAndNothingIsWrittenToDisk) {
  MarkTheExample();
  file.ChooseForSave(kName);
  if (kiBus) kiBus->isSilent = true;
  modbus.units.clear();
  EXPECT_NE(FailureOf([&] { file.Write(); }), "");
  EXPECT_FALSE(bus.files.Exists(kName));
}

INSTANTIATE_TEST_SUITE_P(Roads, SettingsFileTest, testing::Bool(), test::RoadName);

}  // namespace
}  // namespace brelant
