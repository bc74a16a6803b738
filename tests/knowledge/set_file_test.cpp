// SPDX-License-Identifier: GPL-3.0-or-later
#include <array>
#include <utility>

#include "knowledge/set_file_bytes.h"
#include "support/knowledge.h"

namespace brelant {
namespace {

using namespace test;

class SetFileTest : public KnowledgeTest {
 protected:
  bool Read(std::uint8_t block, bool apply = true, bool reportError = true) {
    found = block;
    return file.ReadSetBlock(kName, found, reportError, apply);
  }
  void Store(const Bytes& bytes) { bus.files.Put(kName, bytes); }

  static constexpr const char* kName = "C:\\KVX\\a.set";
  std::uint8_t found = 0;
};

TEST_F(SetFileTest, TheBlockOfPlatform5GoesIntoRam) {
  Store(SetFile({{1, Rising(240)}}));
  EXPECT_TRUE(Read(0));
  EXPECT_EQ(found, 1);
  for (std::size_t i = 0; i < 112; ++i) {
    EXPECT_EQ(image.RamImage[i], i);
    EXPECT_EQ(image.SetBuffer[i], i);
    EXPECT_TRUE(image.RamValid[i]);
  }
  for (std::size_t i = 112; i < 128; ++i) EXPECT_FALSE(image.RamValid[i]) << i;
  for (std::size_t i = 128; i < 256; ++i) {
    EXPECT_EQ(image.RamImage[i], i - 16);
    EXPECT_EQ(image.SetBuffer[i], i - 16);
    EXPECT_TRUE(image.RamValid[i]);
  }
  EXPECT_EQ(image.EepromImage[5], 0);
}

TEST_F(SetFileTest, TheBlockOfPlatforms6And61GoesIntoEepromAndTellsThePart) {
  auto payload = Rising(512);
  payload[164] = 88;
  Store(SetFile({{10, payload}}));
  EXPECT_TRUE(Read(0));
  EXPECT_EQ(found, 10);
  for (std::size_t i = 0; i < 512; ++i) {
    EXPECT_EQ(image.EepromImage[i], payload[i]);
    EXPECT_TRUE(image.EepromValid[i]);
  }
  EXPECT_FALSE(image.EepromValid[512]);
  EXPECT_EQ(image.RamImage[65], 88);
  EXPECT_TRUE(image.RamValid[65]);
  EXPECT_EQ(info.GetPlatform(), 6);
}

TEST_F(SetFileTest, TheSecondBlockOfPlatform7GoesIntoTheUpperHalfOfEeprom) {
  auto lower = Rising(512);
  lower[164] = 50;
  const auto upper = Rising(512, 3);
  Store(SetFile({{11, upper}, {10, lower}}));
  // It is not what a reader of "the" block means.
  EXPECT_TRUE(Read(0));
  EXPECT_EQ(found, 10);
  EXPECT_FALSE(image.EepromValid[512]);
  EXPECT_TRUE(Read(11, false));
  EXPECT_EQ(image.SetBuffer[0], 3);
  EXPECT_FALSE(image.EepromValid[512]);
  EXPECT_TRUE(Read(11));
  for (std::size_t i = 0; i < 512; ++i) {
    EXPECT_EQ(image.EepromImage[i], lower[i]);
    EXPECT_EQ(image.EepromImage[512 + i], upper[i]);
    EXPECT_TRUE(image.EepromValid[512 + i]);
  }
  EXPECT_FALSE(image.EepromValid[1024]);
  EXPECT_EQ(image.RamImage[65], 50);
  EXPECT_EQ(info.GetPlatform(), 7);
}

TEST_F(SetFileTest, AFileWithoutTheSecondBlockIsASetfileErrorToItsReader) {
  Store(SetFile({{10, Rising(512)}, {15, Bytes(542)}}));
  EXPECT_FALSE(Read(11));
  EXPECT_EQ(session.LastError, "Setfile error");
  EXPECT_FALSE(image.EepromValid[512]);
}

TEST_F(SetFileTest, TheUpperHalfOfEepromIsWrittenAsABlockOfItsOwn) {
  for (std::size_t i = 0; i < 1024; ++i) image.EepromImage[i] = static_cast<float>(i / 512 + i % 200);
  Bytes upper;
  for (std::size_t i = 512; i < 1024; ++i) upper.push_back(static_cast<std::uint8_t>(1 + i % 200));
  std::uint8_t block = 11;
  EXPECT_TRUE(file.SaveSettings(block, kName, 1, false, false));
  EXPECT_EQ(bus.files.Get(kName), SetFile({{11, upper}}));
}

TEST_F(SetFileTest, ASelectionGoesIntoTheRequest) {
  Bytes payload(542);
  payload[29] = 9;
  payload[30] = 255;
  payload[31] = 15;
  payload[541] = 1;
  Store(SetFile({{15, payload}}));
  EXPECT_TRUE(Read(15, false));
  EXPECT_EQ(image.ReadRequest[0], 255);
  EXPECT_EQ(image.ReadRequest[1], 15);
  EXPECT_EQ(image.ReadRequest[511], 1);
  EXPECT_EQ(image.SetBuffer[29], 9);
  EXPECT_EQ(image.SetBuffer[541], 1);
}

TEST_F(SetFileTest, WithoutApplyingOnlyTheBufferIsFilled) {
  Store(SetFile({{1, Rising(240, 1)}, {10, Rising(512, 1)}}));
  EXPECT_TRUE(Read(1, false));
  EXPECT_EQ(image.SetBuffer[0], 1);
  EXPECT_EQ(image.RamImage[0], 0);
  EXPECT_FALSE(image.RamValid[0]);
  EXPECT_TRUE(Read(10, false));
  EXPECT_FALSE(image.EepromValid[0]);
  EXPECT_FALSE(image.RamValid[65]);
}

TEST_F(SetFileTest, TheFirstBlockOfASensorIsFoundBehindOthers) {
  Store(SetFile({{15, Bytes(542)}, {10, Rising(512)}}));
  EXPECT_TRUE(Read(0));
  EXPECT_EQ(found, 10);
  EXPECT_EQ(image.EepromImage[77], 77);
}

TEST_F(SetFileTest, ABlockIsFoundByItsType) {
  Store(SetFile({{10, Rising(512)}, {20, Rising(256, 3)}}));
  EXPECT_TRUE(Read(20));
  EXPECT_EQ(found, 20);
  EXPECT_EQ(image.SetBuffer[0], 3);
  EXPECT_FALSE(image.EepromValid[0]);
}

TEST_F(SetFileTest, AMissingBlockIsASetfileError) {
  Store(SetFile({{15, Bytes(542)}}));
  EXPECT_FALSE(Read(10));
  EXPECT_EQ(session.LastError, "Setfile error");
  session.LastError.clear();
  EXPECT_FALSE(Read(0));
  EXPECT_EQ(session.LastError, "Setfile error");
}

TEST_F(SetFileTest, ASoundFileWithoutBlocksIsAccepted) {
  auto bytes = SetFile({{10, Rising(512)}});
  PutWord(bytes, 5, 0);
  Store(bytes);
  EXPECT_TRUE(Read(0));
  EXPECT_EQ(found, 0);
  EXPECT_FALSE(image.EepromValid[0]);
}

TEST_F(SetFileTest, OnlyTheLowByteOfTheCountIsUsed) {
  auto bytes = SetFile({{10, Rising(512)}, {20, Rising(256)}});
  PutWord(bytes, 5, 257);
  Store(bytes);
  EXPECT_TRUE(Read(10));
  EXPECT_FALSE(Read(20));
  EXPECT_EQ(session.LastError, "Setfile error");
}

TEST_F(SetFileTest, TheBufferIsEmptiedFirst) {
  image.SetBuffer.fill(7);
  EXPECT_FALSE(Read(0));
  for (std::size_t i = 0; i < 512; ++i) ASSERT_EQ(image.SetBuffer[i], 0) << i;
  for (std::size_t i = 512; i < 551; ++i) ASSERT_EQ(image.SetBuffer[i], 7) << i;
}

TEST_F(SetFileTest, AFileThatIsNotThereIsNotFound) {
  EXPECT_FALSE(Read(0));
  EXPECT_EQ(session.LastError, "File not found C:\\KVX\\a.set");
  session.LastError.clear();
  std::uint8_t block = 0;
  EXPECT_FALSE(file.ReadSetBlock("", block, true, true));
  EXPECT_EQ(session.LastError, "File not found ");
}

TEST_F(SetFileTest, AFileOfLessThan18BytesIsDamaged) {
  for (const std::size_t size : {0U, 1U, 16U, 17U}) {
    session.LastError.clear();
    Bytes bytes(size, 1);
    Store(bytes);
    EXPECT_FALSE(Read(0)) << size;
    EXPECT_EQ(session.LastError, "File is damaged C:\\KVX\\a.set") << size;
  }
}

TEST_F(SetFileTest, AHeaderAloneIsDamagedHoweverSoundItIs) {
  Bytes bytes(17);
  PutWord(bytes, 3, 1);  // the sum of what is not there is 0, and so is the checksum
  Store(bytes);
  EXPECT_FALSE(Read(0));
  EXPECT_EQ(session.LastError, "File is damaged C:\\KVX\\a.set");
}

TEST_F(SetFileTest, AFileOfLengthZeroIsDamaged) {
  auto bytes = SetFile({{10, Rising(512)}});
  PutWord(bytes, 3, 0);
  Store(bytes);
  EXPECT_FALSE(Read(0));
  EXPECT_EQ(session.LastError, "File is damaged C:\\KVX\\a.set");
}

TEST_F(SetFileTest, AChangedByteAnywhereBehindTheHeaderIsDamage) {
  const auto sound = SetFile({{1, Rising(240)}});
  for (std::size_t i = 17; i < sound.size(); ++i) {
    session.LastError.clear();
    auto bytes = sound;
    bytes[i] ^= 16;
    Store(bytes);
    EXPECT_FALSE(Read(0)) << i;
    EXPECT_EQ(session.LastError, "File is damaged C:\\KVX\\a.set") << i;
    EXPECT_FALSE(image.RamValid[0]) << i;
  }
}

TEST_F(SetFileTest, TheChecksumTakesOneByteMoreThanTheLength) {
  auto bytes = SetFile({{1, Rising(240)}});
  // A byte behind the end counts, and so is damage unless the checksum knows it.
  bytes.push_back(5);
  Store(bytes);
  EXPECT_FALSE(Read(0));
  PutWord(bytes, 1, static_cast<std::size_t>(bytes[1] + 256 * bytes[2] + 5));
  Store(bytes);
  EXPECT_TRUE(Read(0));
  // The one behind that does not.
  bytes.push_back(9);
  Store(bytes);
  EXPECT_TRUE(Read(0));
}

TEST_F(SetFileTest, TheChecksumKeepsItsLow16Bits) {
  // 1306 bytes of 255 are more than 65535.
  Store(SetFile({{99, Bytes(700, 255)}, {10, Bytes(512, 255)}}));
  EXPECT_TRUE(Read(0));
  EXPECT_EQ(found, 10);
}

TEST_F(SetFileTest, AnEarlierTextIsKept) {
  session.LastError = "an earlier text";
  EXPECT_FALSE(Read(0));
  EXPECT_EQ(session.LastError, "an earlier text");
}

TEST_F(SetFileTest, AFaultInsideIsToldOnlyIfAskedFor) {
  bus.files.PutFolder(kName);
  EXPECT_FALSE(Read(0, true, false));
  EXPECT_EQ(session.LastError, "");
  EXPECT_FALSE(Read(0, true, true));
  EXPECT_NE(session.LastError, "");
}

TEST_F(SetFileTest, AFileThatCannotBeReadIsNoCrash) {
  bus.files.Break(kName);
  EXPECT_FALSE(Read(0));
  EXPECT_THAT(session.LastError, testing::HasSubstr("Permission denied"));
}

TEST_F(SetFileTest, ABlockThatReachesBeyondTheFileIsNoCrash) {
  for (const int type : {1, 10, 15, 20}) {
    for (const std::size_t size : {0U, 5U, 239U, 552U, 65535U}) {
      auto bytes = SetFile({{type, Bytes(4)}});
      PutWord(bytes, 19, size);
      Mend(bytes);
      Store(bytes);
      session.LastError.clear();
      const bool done = Read(static_cast<std::uint8_t>(type));
      // Type 1 has its own size; no other payload may outgrow the buffer.
      if (type != 1) {
        EXPECT_EQ(done, size <= 551) << type << ", " << size;
      }
    }
  }
}

TEST_F(SetFileTest, NonsenseIsDamagedOrNoCrash) {
  std::uint32_t state = 7;
  for (int round = 0; round < 300; ++round) {
    Bytes bytes(18 + static_cast<std::size_t>(round) * 6);
    for (auto& byte : bytes) {
      state = state * 1664525 + 1013904223;
      byte = static_cast<std::uint8_t>(state >> 24);
    }
    PutWord(bytes, 3, bytes.size() - 17);
    Mend(bytes);
    Store(bytes);
    session.LastError.clear();
    for (const std::uint8_t block : {0, 1, 10, 15, 20}) {
      if (!Read(block)) {
        EXPECT_NE(session.LastError, "");
      }
    }
  }
}

TEST_F(SetFileTest, AFileUpToTheReadersLimitIsRead) {
  // 17 + 4 + 1479 = 1500 bytes: the byte past the end is the reader's last.
  Store(SetFile({{10, Rising(512)}, {99, Bytes(963)}}));
  ASSERT_EQ(bus.files.Get(kName).size(), 1500U);
  EXPECT_TRUE(Read(10)) << session.LastError;
}

TEST_F(SetFileTest, ALongerFileIsNoCrash) {
  Store(SetFile({{10, Rising(512)}, {99, Bytes(60000)}}));
  EXPECT_FALSE(Read(10));
  EXPECT_NE(session.LastError, "");
}

// Headers and block lists that lie

TEST_F(SetFileTest, TheSmallestSoundFileHasNoBlocks) {
  Bytes bytes(18);
  bytes[17] = 9;
  PutWord(bytes, 3, 1);
  Mend(bytes);
  Store(bytes);
  EXPECT_TRUE(Read(0));
  EXPECT_EQ(found, 0);
}

TEST_F(SetFileTest, BehindTheEndOfAFileStandZeros) {
  image.RamImage.fill(7);
  Bytes bytes(18);
  bytes[17] = 1;  // the type of a block that is not there
  PutWord(bytes, 3, 1);
  PutWord(bytes, 5, 1);
  Mend(bytes);
  Store(bytes);
  EXPECT_TRUE(Read(1));
  EXPECT_EQ(image.RamImage[0], 0);
  EXPECT_EQ(image.RamImage[112], 7);
  EXPECT_EQ(image.RamImage[255], 0);
}

TEST_F(SetFileTest, ALengthBelowTheFileOnlyShortensTheChecksum) {
  auto bytes = SetFile({{10, Rising(512)}});
  PutWord(bytes, 3, 1);
  PutWord(bytes, 1, 10);  // the bytes at 17 and 18
  Store(bytes);
  EXPECT_TRUE(Read(10));
  EXPECT_EQ(image.EepromImage[511], 255);
}

TEST_F(SetFileTest, ALengthAboveTheFileCountsZeros) {
  auto bytes = SetFile({{10, Rising(512)}});
  PutWord(bytes, 3, 1483);
  Store(bytes);
  EXPECT_TRUE(Read(10)) << session.LastError;
  PutWord(bytes, 3, 1484);  // one place further than the reader has
  Store(bytes);
  EXPECT_FALSE(Read(10));
  EXPECT_NE(session.LastError, "");
  EXPECT_THAT(session.LastError, testing::Not(testing::StartsWith("File is damaged")));
}

TEST_F(SetFileTest, FilesAroundTheReadersLimit) {
  // 17 + 4 + 512 + 4 = 537 bytes beside the filler.
  for (const std::size_t size : {1499U, 1500U, 1501U, 1502U}) {
    session.LastError.clear();
    Store(SetFile({{10, Rising(512)}, {99, Bytes(size - 537, 1)}}));
    ASSERT_EQ(bus.files.Get(kName).size(), size);
    EXPECT_EQ(Read(10), size <= 1500) << size;
    EXPECT_EQ(session.LastError.empty(), size <= 1500) << size;
  }
}

TEST_F(SetFileTest, AFileOf70000BytesIsCutOff) {
  auto bytes = SetFile({{10, Rising(512)}});
  bytes.resize(70000, 3);
  PutWord(bytes, 3, 1400);
  Mend(bytes);
  Store(bytes);
  EXPECT_TRUE(Read(10)) << session.LastError;
  // Its own length is more than the field holds.
  PutWord(bytes, 3, 70000 - 17);
  Store(bytes);
  EXPECT_FALSE(Read(10));
  EXPECT_NE(session.LastError, "");
}

TEST_F(SetFileTest, MoreBlocksToldThanThereAreIsASetfileError) {
  for (const std::size_t count : {2U, 5U, 200U}) {
    session.LastError.clear();
    auto bytes = SetFile({{15, Bytes(542)}});
    PutWord(bytes, 5, count);
    Store(bytes);
    EXPECT_FALSE(Read(10));
    EXPECT_EQ(session.LastError, "Setfile error") << count;
  }
}

TEST_F(SetFileTest, FewerBlocksToldThanThereAreHideTheRest) {
  auto bytes = SetFile({{15, Bytes(542)}, {10, Rising(512)}});
  PutWord(bytes, 5, 1);
  Store(bytes);
  EXPECT_FALSE(Read(10));
  EXPECT_EQ(session.LastError, "Setfile error");
}

TEST_F(SetFileTest, ABlockThatLeadsOutOfTheFileIsAFaultInside) {
  for (const std::size_t size : {1480U, 40000U, 65535U}) {
    auto bytes = SetFile({{15, Bytes(542)}, {10, Rising(512)}});
    PutWord(bytes, 19, size);
    Mend(bytes);
    Store(bytes);
    session.LastError.clear();
    EXPECT_FALSE(Read(10, true, false)) << size;
    EXPECT_EQ(session.LastError, "") << size;
    EXPECT_FALSE(Read(10)) << size;
    EXPECT_NE(session.LastError, "") << size;
    EXPECT_NE(session.LastError, "Setfile error") << size;
    EXPECT_FALSE(image.EepromValid[0]) << size;
  }
}

TEST_F(SetFileTest, ASizeThatLiesMisplacesTheNextBlock) {
  // Two bytes less: the next block seems to begin with the last two of this one.
  auto bytes = SetFile({{99, {1, 2, 10, 0}}, {20, {7, 7, 7}}});
  PutWord(bytes, 19, 2);
  Mend(bytes);
  Store(bytes);
  EXPECT_TRUE(Read(10));  // 20 for a size, from there on
  EXPECT_EQ(image.SetBuffer[0], 3);
  EXPECT_EQ(image.SetBuffer[2], 7);
}

TEST_F(SetFileTest, AShortBlockSetsOnlyTheFlagsItHasBytesFor) {
  Store(SetFile({{10, Rising(100, 1)}}));
  EXPECT_TRUE(Read(10));
  EXPECT_TRUE(image.EepromValid[99]);
  EXPECT_FALSE(image.EepromValid[100]);
  EXPECT_EQ(image.RamImage[65], 0);
  EXPECT_TRUE(image.RamValid[65]);
}

TEST_F(SetFileTest, ASimulatedSensorNeedsNoBus) {
  auto payload = Bytes(240);
  payload[65] = 109;
  Store(SetFile({{1, payload}}));
  ASSERT_TRUE(Read(0));
  EXPECT_EQ(info.GetPlatform(), 5);
  EXPECT_EQ(info.GetProductVariant(), 0);
  EXPECT_EQ(info.GetSensorIdentity(), "10900000");
  EXPECT_THAT(port.Events(), testing::IsEmpty());
}

TEST_F(SetFileTest, ASavedFileOfPlatform5ByteByByte) {
  bus.KnowPart(101);
  std::uint8_t block = 0;
  EXPECT_TRUE(file.SaveSettings(block, kName, 1, false));
  EXPECT_EQ(block, 1);
  Bytes expected(261);
  expected[0] = 1;
  expected[1] = 86;
  expected[2] = 1;
  expected[3] = 244;
  expected[5] = 1;
  expected[17] = 1;
  expected[19] = 240;
  expected[86] = 101;
  EXPECT_EQ(bus.files.Get(kName), expected);
}

TEST_F(SetFileTest, WhatIsSavedCanBeRead) {
  for (std::size_t i = 0; i < 256; ++i) image.RamImage[i] = static_cast<float>(i);
  bus.KnowPart(101);
  std::uint8_t block = 0;
  ASSERT_TRUE(file.SaveSettings(block, kName, 1, false));
  bus.com.ClearImage(30);
  EXPECT_TRUE(Read(0));
  EXPECT_EQ(image.RamImage[111], 111);
  EXPECT_EQ(image.RamImage[112], 0);
  EXPECT_EQ(image.RamImage[255], 255);
}

TEST_F(SetFileTest, SavingTwiceReplacesTheBlockInItsPlaceAndKeepsTheOther) {
  bus.KnowPart(kPart6);
  image.EepromImage[164] = kPart6;
  std::uint8_t eeprom = 10;
  std::uint8_t selection = 15;
  bus.com.SelectBlock(13);
  ASSERT_TRUE(file.SaveSettings(eeprom, kName, 1, false));
  ASSERT_TRUE(file.SaveSettings(selection, kName, 1, true));
  image.EepromImage[7] = 99;
  ASSERT_TRUE(file.SaveSettings(eeprom, kName, 1, false));
  const auto bytes = bus.files.Get(kName);
  EXPECT_EQ(bytes.size(), 17U + 4 + 512 + 4 + 542);
  EXPECT_EQ(bytes[5], 2);
  EXPECT_EQ(bytes[17], 10);
  EXPECT_EQ(bytes[21 + 7], 99);
  EXPECT_EQ(bytes[17 + 516], 15);
  image.ReadRequest.fill(0);
  EXPECT_TRUE(Read(15, false));
  EXPECT_EQ(image.ReadRequest[31], 255);
  EXPECT_EQ(image.ReadRequest[32], 0);
  EXPECT_TRUE(Read(0));
  EXPECT_EQ(image.EepromImage[7], 99);
}

TEST_F(SetFileTest, ANameGetsItsEndingUnlessItHasOne) {
  bus.KnowPart(101);
  std::uint8_t block = 0;
  ASSERT_TRUE(file.SaveSettings(block, "C:\\KVX\\b", 1, false));
  ASSERT_TRUE(file.SaveSettings(block, "C:\\KVX\\c.SET", 1, false));
  EXPECT_TRUE(bus.files.Exists("C:\\KVX\\b.Set"));
  EXPECT_TRUE(bus.files.Exists("C:\\KVX\\c.SET"));
  EXPECT_FALSE(bus.files.Exists("C:\\KVX\\c.SET.Set"));
}

TEST_F(SetFileTest, ADamagedFileIsDiscardedBeforeSaving) {
  bus.KnowPart(101);
  auto damaged = SetFile({{15, Bytes(542)}, {1, Bytes(240)}});
  damaged[30] = 1;
  Store(damaged);
  std::uint8_t block = 0;
  ASSERT_TRUE(file.SaveSettings(block, kName, 1, false));
  EXPECT_EQ(bus.files.Get(kName).size(), 261U);
  EXPECT_EQ(bus.files.Get(kName)[5], 1);
}

TEST_F(SetFileTest, AFileThatCannotBeWrittenIsAFailureAndNoCrash) {
  bus.KnowPart(101);
  bus.files.Break(kName);
  std::uint8_t block = 0;
  EXPECT_FALSE(file.SaveSettings(block, kName, 1, false));
}

// More of saving

TEST_F(SetFileTest, SavingTheSelectionFirstAndTwiceKeepsItFirst) {
  bus.KnowPart(kPart6);
  image.EepromImage[164] = kPart6;
  image.ReadRequest[3] = 15;
  std::uint8_t eeprom = 10;
  std::uint8_t selection = 15;
  for (int save = 0; save < 2; ++save) {
    ASSERT_TRUE(file.SaveSettings(selection, kName, 1, true));
    ASSERT_TRUE(file.SaveSettings(eeprom, kName, 1, false));
    Bytes marks(542);
    marks[33] = 15;
    Bytes content(512);
    content[164] = kPart6;
    EXPECT_EQ(bus.files.Get(kName), SetFile({{15, marks}, {10, content}})) << save;
  }
}

TEST_F(SetFileTest, SeveralBlocksAreOneWrite) {
  bus.KnowPart(kPart6);
  image.EepromImage[9] = 8;
  image.ReadRequest[511] = 255;
  const std::array<snsFil::BlockWrite, 2> blocks{{{10, false}, {15, true}}};
  EXPECT_TRUE(file.SaveBlocks(kName, 1, blocks));
  EXPECT_THAT(bus.files.acts, testing::ElementsAre("write C:/KVX/a.set"));
  Bytes content(512);
  content[9] = 8;
  Bytes marks(542);
  marks[541] = 255;
  EXPECT_EQ(bus.files.Get(kName), SetFile({{10, content}, {15, marks}}));
}

TEST_F(SetFileTest, ASelectionThatIsNotWantedIsTheBufferUnchanged) {
  image.SetBuffer[0] = 1;
  image.SetBuffer[29] = 2;
  image.SetBuffer[541] = 3;
  image.SetBuffer[542] = 4;
  image.ReadRequest.fill(9);
  std::uint8_t block = 15;
  EXPECT_TRUE(file.SaveSettings(block, kName, 1, false));
  Bytes payload(542);
  payload[0] = 1;
  payload[29] = 2;
  payload[541] = 3;
  EXPECT_EQ(bus.files.Get(kName), SetFile({{15, payload}}));
}

TEST_F(SetFileTest, ABlockOfTheWholeRamAndAnotherVersion) {
  for (std::size_t i = 0; i < 258; ++i) image.RamImage[i] = static_cast<float>(i % 256);
  std::uint8_t block = 20;
  EXPECT_TRUE(file.SaveSettings(block, kName, 7, false));
  auto expected = SetFile({{20, Rising(256)}});
  expected[0] = 7;
  EXPECT_EQ(bus.files.Get(kName), expected);
}

TEST_F(SetFileTest, APlatformWithoutABlockSavesNothing) {
  for (const auto part : {kPart7, kPart8, kPart9, kPartUnknown}) {
    bus.KnowPart(part);
    std::uint8_t block = 0;
    EXPECT_FALSE(file.SaveSettings(block, kName, 1, false)) << int{part};
    EXPECT_FALSE(bus.files.Exists(kName));
  }
  EXPECT_THAT(bus.files.acts, testing::IsEmpty());
}

TEST_F(SetFileTest, ASaveToLastSettingsKeepsTheBlocksThatItHas) {
  bus.KnowPart(101);
  for (const auto* name : {"C:\\KVX\\last.set", "last.set", "C:\\KVX\\mylast.set"}) {
    bus.files.Put(name, SetFile({{15, Rising(542)}}));
    std::uint8_t block = 0;
    EXPECT_TRUE(file.SaveSettings(block, name, 1, false));
    Bytes payload(240);
    payload[65] = 101;
    EXPECT_EQ(bus.files.Get(name), SetFile({{15, Rising(542)}, {1, payload}})) << name;
  }
}

TEST_F(SetFileTest, AFreshSaveKeepsNothing) {
  bus.KnowPart(101);
  Store(SetFile({{15, Rising(542)}}));
  std::uint8_t block = 0;
  EXPECT_TRUE(file.SaveSettings(block, kName, 1, false, true));
  EXPECT_EQ(bus.files.Get(kName).size(), 261U);
}

TEST_F(SetFileTest, WhatIsNoSettingsFileIsDiscardedBeforeSaving) {
  bus.KnowPart(101);
  auto noLength = SetFile({{15, Bytes(542)}});
  PutWord(noLength, 3, 0);
  Bytes header(17);
  PutWord(header, 3, 1);
  for (const auto& old : {Bytes{}, header, noLength, Bytes(18, 3), Bytes(1500, 3), Bytes(1501, 3),
                          Bytes(1502, 3), Bytes(70000, 3)}) {
    Store(old);
    std::uint8_t block = 0;
    EXPECT_TRUE(file.SaveSettings(block, kName, 1, false)) << old.size();
    Bytes payload(240);
    payload[65] = 101;
    EXPECT_EQ(bus.files.Get(kName), SetFile({{1, payload}})) << old.size();
  }
}

TEST_F(SetFileTest, ASoundFileWithoutBlocksTakesItsFirst) {
  bus.KnowPart(101);
  Bytes old(18);
  old[17] = 99;
  PutWord(old, 3, 1);
  Mend(old);
  Store(old);
  std::uint8_t block = 0;
  EXPECT_TRUE(file.SaveSettings(block, kName, 1, false));
  Bytes payload(240);
  payload[65] = 101;
  EXPECT_EQ(bus.files.Get(kName), SetFile({{1, payload}}));
}

TEST_F(SetFileTest, AFileWhoseBlocksLeadNowhereIsLeftAlone) {
  bus.KnowPart(101);
  auto old = SetFile({{15, Bytes(542)}, {20, Bytes(256)}});
  PutWord(old, 19, 65535);
  Mend(old);
  Store(old);
  std::uint8_t block = 0;
  EXPECT_FALSE(file.SaveSettings(block, kName, 1, false));
  EXPECT_EQ(bus.files.Get(kName), old);
}

TEST_F(SetFileTest, AFailedSaveLeavesTheOldFile) {
  bus.KnowPart(101);
  const auto old = SetFile({{15, Rising(542)}});
  Store(old);
  bus.files.Break(kName);
  std::uint8_t block = 0;
  EXPECT_FALSE(file.SaveSettings(block, kName, 1, false));
  bus.files.Mend(kName);
  EXPECT_EQ(bus.files.Get(kName), old);
}

TEST_F(SetFileTest, ABlockOfAnySizeIsRead) {
  for (const auto& [type, size] : {std::pair<int, std::size_t>{1, 239},
                                   {1, 241},
                                   {1, 0},
                                   {10, 511},
                                   {10, 513},
                                   {10, 0},
                                   {15, 541},
                                   {15, 543},
                                   {15, 0},
                                   {20, 255}}) {
    // The next block makes up for what the first one of type 1 lacks.
    Store(SetFile({{type, Rising(size, 1)}, {99, Bytes(240, 7)}}));
    EXPECT_TRUE(Read(static_cast<std::uint8_t>(type))) << type << " of " << size;
    EXPECT_EQ(session.LastError, "");
    if (size != 0) {
      EXPECT_EQ(image.SetBuffer[0], 1);
    }
  }
}

// Saves that would leave a file behind that cannot be loaded

class RefusedSaveTest : public SetFileTest {
 protected:
  RefusedSaveTest() {
    bus.KnowPart(101);
    image.RamValid.fill(true);
  }

  /// The same bytes, and not even written anew.
  void ExpectRefused(const Bytes& old, std::uint8_t block) {
    Store(old);
    bus.files.acts.clear();
    EXPECT_FALSE(file.SaveSettings(block, kName, 1, false));
    EXPECT_EQ(bus.files.Get(kName), old);
    EXPECT_THAT(bus.files.acts, testing::IsEmpty());
  }
  /// Bytes of the file after a save of block 1 behind another one of that size.
  std::size_t SizeBehind(std::size_t other) {
    Store(SetFile({{99, Bytes(other, 7)}}));
    std::uint8_t block = 1;
    EXPECT_TRUE(file.SaveSettings(block, kName, 1, false));
    return bus.files.Get(kName).size();
  }
};

TEST_F(RefusedSaveTest, ABlockOfAnotherSizeIsNotReplaced) {
  for (const auto& [type, size] : {std::pair<std::uint8_t, std::size_t>{1, 239},
                                   {1, 241},
                                   {1, 0},
                                   {10, 511},
                                   {10, 513},
                                   {15, 512},
                                   {15, 541},
                                   {15, 543},
                                   {20, 240},
                                   {20, 257}}) {
    SCOPED_TRACE(testing::Message() << int{type} << " of " << size);
    ExpectRefused(SetFile({{type, Rising(size, 1)}}), type);
    ExpectRefused(SetFile({{99, Rising(7)}, {type, Rising(size, 1)}, {98, Rising(9)}}), type);
  }
}

TEST_F(RefusedSaveTest, OfSeveralBlocksNoneIsWrittenIfOneCannotBe) {
  const auto old = SetFile({{15, Rising(541)}});
  Store(old);
  const std::array<snsFil::BlockWrite, 2> blocks{{{10, false}, {15, true}}};
  EXPECT_FALSE(file.SaveBlocks(kName, 1, blocks));
  EXPECT_EQ(bus.files.Get(kName), old);
  EXPECT_THAT(bus.files.acts, testing::IsEmpty());
}

TEST_F(RefusedSaveTest, AFileOf255BlocksTakesNoMore) {
  std::vector<Block> blocks(255, Block{99, {}});
  ExpectRefused(SetFile(blocks), 1);
  // In the place of one that is there it can.
  blocks.back() = {1, Bytes(240)};
  Store(SetFile(blocks));
  image.RamImage[0] = 77;
  std::uint8_t block = 1;
  EXPECT_TRUE(file.SaveSettings(block, kName, 1, false));
  blocks.back().payload[0] = 77;
  blocks.back().payload[65] = 101;
  EXPECT_EQ(bus.files.Get(kName), SetFile(blocks));
}

TEST_F(RefusedSaveTest, AFileOf254BlocksTakesOneMore) {
  std::vector<Block> blocks(254, Block{99, {}});
  Store(SetFile(blocks));
  std::uint8_t block = 1;
  EXPECT_TRUE(file.SaveSettings(block, kName, 1, false));
  blocks.push_back({1, Bytes(240)});
  blocks.back().payload[65] = 101;
  EXPECT_EQ(bus.files.Get(kName), SetFile(blocks));
  EXPECT_TRUE(Read(1));
}

TEST_F(RefusedSaveTest, AFileOfMoreThan1500BytesIsNotMade) {
  // 17 + 4 + other + 4 + 240.
  constexpr std::size_t kFits = 1500 - 265;
  EXPECT_EQ(SizeBehind(kFits), 1500U);
  EXPECT_TRUE(Read(1));
  ExpectRefused(SetFile({{99, Bytes(kFits + 1, 7)}}), 1);
  ExpectRefused(SetFile({{99, Bytes(kFits + 500, 7)}}), 1);
  // In the place of one that is there too.
  ExpectRefused(SetFile({{1, Rising(240)}, {99, Bytes(kFits + 1, 7)}}), 1);
}

TEST_F(RefusedSaveTest, AFreshSaveAsksNothingOfTheOldFile) {
  for (const auto& old : {SetFile({{1, Rising(239)}}), SetFile(std::vector<Block>(255, Block{99, {}})),
                          SetFile({{99, Bytes(1400, 7)}})}) {
    Store(old);
    std::uint8_t block = 1;
    EXPECT_TRUE(file.SaveSettings(block, kName, 1, false, true));
    EXPECT_EQ(bus.files.Get(kName).size(), 261U);
  }
}

}  // namespace
}  // namespace brelant
