// SPDX-License-Identifier: GPL-3.0-or-later
#include "support/knowledge.h"

namespace brelant {
namespace {

using namespace test;

class DefinitionsTest : public KnowledgeTest {
 protected:
  static constexpr const char* kPath = "C:\\KVX\\\\DEF00109.PDT";
};

TEST_F(DefinitionsTest, TheFileIsNamedAfterThePart) {
  struct Case {
    std::uint8_t part;
    const char* name;
  };
  for (const auto& [part, name] :
       {Case{5, "\\DEF00005.PDT"}, Case{85, "\\DEF00085.PDT"}, Case{231, "\\DEF00231.PDT"}}) {
    session.LastError.clear();
    bus.KnowPart(part);
    EXPECT_FALSE(definitions.LoadDefinition());
    EXPECT_EQ(session.LastError, "Can't find file: C:\\KVX\\" + std::string(name) + ", ");
  }
}

TEST_F(DefinitionsTest, AMissingFileReplacesAnEarlierText) {
  bus.KnowPart(kPart5);
  session.LastError = "an earlier text";
  EXPECT_FALSE(definitions.LoadDefinition());
  EXPECT_EQ(session.LastError, "Can't find file: " + std::string(kPath) + ", ");
  EXPECT_EQ(definitions.DefinitionPart(), 0);
}

TEST_F(DefinitionsTest, TheProductionFolderComesFirst) {
  DefinitionFile here;
  here.SetName(0, "here");
  here.SetActive(0, 1);
  Install(kPart5, here);
  DefinitionFile there;
  there.SetName(0, "there");
  there.SetActive(0, 1);
  bus.files.Put("g:\\produktion\\produktionsprogram\\def\\\\DEF00109.PDT", there.bytes);
  Attach(kPart5);
  EXPECT_TRUE(definitions.LoadDefinition());
  EXPECT_EQ(definitions.Channel(0).ChannelName, "there");
}

TEST_F(DefinitionsTest, AFileIsReadByItsPositions) {
  DefinitionFile content;
  for (std::size_t i = 0; i < 4; ++i) {
    const auto block = DefinitionFile::Block(i);
    const auto n = static_cast<std::int32_t>(i);
    content.Put(block + 32, 125 + n);
    content.Put(block + 36, -3);
    content.Put(block + 40, -25 - n);
    content.Put(block + 44, -5);
    content.Put(block + 48, 5 + n);
    content.Put(block + 52, -1);
    content.Put(block + 56, 75);
    content.Put(block + 60, -2);
    content.Put(block + 64, 1 + n);
    content.Put(block + 68, -2);
    content.Put(block + 72, 2000 + n);
    content.Put(block + 80, n - 1);
    content.SetType(i, 4 + n);
  }
  content.Put(DefinitionFile::Block(0), 3);
  content.Put(DefinitionFile::Block(2), 1);
  content.Put(DefinitionFile::Block(3), 2);
  content.Put(DefinitionFile::Block(1) + 4, 1);
  content.Put(DefinitionFile::Block(3) + 4, 5);
  content.PutText(404, "first");
  content.PutText(584, "second");
  content.PutText(604, "third");
  Install(kPart5, content);
  Attach(kPart5);
  ASSERT_TRUE(definitions.LoadDefinition()) << session.LastError;
  for (int i = 0; i < 4; ++i) {
    const auto& channel = definitions.Channel(i);
    const auto n = static_cast<float>(i);
    EXPECT_FLOAT_EQ(channel.A1, 0.125F + n / 1000);
    EXPECT_FLOAT_EQ(channel.K, -0.00025F - n / 100000);
    EXPECT_FLOAT_EQ(channel.A2, 0.5F + n / 10);
    EXPECT_FLOAT_EQ(channel.B, 0.75F);
    EXPECT_FLOAT_EQ(channel.A3, 0.01F + n / 100);
    EXPECT_EQ(channel.FullScale, 2000 + n);
    EXPECT_EQ(channel.Active, n - 1);
    EXPECT_EQ(channel.ChannelType, 4 + n);
  }
  EXPECT_EQ(definitions.Loaded().DefinitionFlagsA, 1 + 16 + 4 + 128);
  EXPECT_EQ(definitions.Loaded().DefinitionFlagsB, 2 + 8);
  EXPECT_THAT(definitions.Loaded().texts, testing::ElementsAre("first", "second", "third"));
  EXPECT_EQ(definitions.DefinitionPart(), kPart5);
}

TEST_F(DefinitionsTest, NamesMayFillTheirFieldLoseZerosAndAreTrimmed) {
  DefinitionFile content;
  content.SetName(0, "FifteenLettersX");
  content.SetName(1, std::string("C\0O\0002", 5));
  content.SetName(2, "  CO 2   ");
  content.SetName(3, "   ");
  Install(kPart5, content);
  Attach(kPart5);
  ASSERT_TRUE(definitions.LoadDefinition());
  EXPECT_EQ(definitions.Channel(0).ChannelName, "FifteenLettersX");
  EXPECT_EQ(definitions.Channel(1).ChannelName, "CO2");
  EXPECT_EQ(definitions.Channel(2).ChannelName, "CO 2");
  EXPECT_EQ(definitions.Channel(3).ChannelName, "");
}

TEST_F(DefinitionsTest, TheTablesAreBuiltOfInactiveChannelsToo) {
  DefinitionFile content;
  for (std::size_t i = 0; i < 4; ++i) content.SetCurve(i, 1000 * (static_cast<std::int32_t>(i) + 1));
  Install(kPart5, content);
  Attach(kPart5);
  ASSERT_TRUE(definitions.LoadDefinition()) << session.LastError;
  for (int i = 0; i < 4; ++i) {
    EXPECT_NEAR(image.EepromWord(34 * i), 5000 + 1000 * (i + 1), 1) << i;
    EXPECT_EQ(image.EepromWord(34 * i + 30), 5000) << i;
  }
  EXPECT_EQ(info.GetChannelName(0, false), "OFF");
}

TEST_F(DefinitionsTest, AChannelWithoutACurveKeepsItsTable) {
  DefinitionFile content;
  for (std::size_t i = 0; i < 3; ++i) content.SetCurve(i, 10000);
  content.Put(DefinitionFile::Block(3) + 56, 7);  // b alone makes no curve
  Install(kPart5, content);
  Attach(kPart5);
  for (std::size_t i = 102; i < 136; ++i) image.EepromImage[i] = 77;
  ASSERT_TRUE(definitions.LoadDefinition());
  EXPECT_EQ(session.LastError, "");
  for (std::size_t i = 102; i < 136; ++i) EXPECT_EQ(image.EepromImage[i], 77);
  EXPECT_EQ(image.EepromWord(68), 15000);
}

TEST_F(DefinitionsTest, ADefinitionIsLoadedOnceAndAgainForAnotherPart) {
  DefinitionFile first;
  first.SetActive(0, 1);
  first.SetName(0, "first");
  Install(kPart5, first);
  DefinitionFile second = first;
  second.SetName(0, std::string("second"));
  Install(110, second);
  Attach(kPart5);
  EXPECT_EQ(info.GetChannelName(0, false), "first");
  bus.files.Put("C:\\KVX\\DEF00109.PDT", {});
  EXPECT_EQ(info.GetChannelName(0, false), "first");
  bus.KnowPart(110);
  EXPECT_EQ(info.GetChannelName(0, false), "second");
  EXPECT_EQ(definitions.DefinitionPart(), 110);
}

TEST_F(DefinitionsTest, AnEmptiedImageKeepsTheDefinitionAndLosesTheTables) {
  DefinitionFile content;
  content.SetCurve(1, 10000);
  Install(kPart5, content);
  Attach(kPart5);
  ASSERT_TRUE(definitions.RequireDefinition());
  bus.com.ClearImage(30);
  bus.KnowPart(kPart5);
  EXPECT_TRUE(definitions.RequireDefinition());
  EXPECT_EQ(image.EepromWord(34), 0);
  EXPECT_TRUE(definitions.LoadDefinition());
  EXPECT_EQ(image.EepromWord(34), 15000);
}

TEST_F(DefinitionsTest, AFailureForgetsTheDefinitionThatWasLoaded) {
  Install(kPart5, {});
  Attach(kPart5);
  ASSERT_TRUE(definitions.LoadDefinition());
  bus.KnowPart(110);
  EXPECT_FALSE(definitions.LoadDefinition());
  EXPECT_EQ(definitions.DefinitionPart(), 0);
}

TEST_F(DefinitionsTest, AFileThatIsTooShortIsAFileError) {
  Attach(kPart5);
  for (std::size_t size = 0; size < 640; ++size) {
    DefinitionFile content;
    content.bytes.resize(size);
    Install(kPart5, content);
    session.LastError.clear();
    EXPECT_FALSE(definitions.LoadDefinition()) << size;
    EXPECT_EQ(session.LastError, "File error '" + std::string(kPath) + ", ") << size;
    EXPECT_EQ(definitions.DefinitionPart(), 0) << size;
  }
}

TEST_F(DefinitionsTest, AFileThatCannotBeReadIsAFileError) {
  Attach(kPart5);
  bus.files.Break("C:\\KVX\\DEF00109.PDT");
  EXPECT_FALSE(definitions.LoadDefinition());
  EXPECT_EQ(session.LastError, "File error '" + std::string(kPath) + ", ");
  session.LastError.clear();
  bus.files.Mend("C:\\KVX\\DEF00109.PDT");
  bus.files.PutFolder("C:\\KVX\\DEF00109.PDT");
  EXPECT_FALSE(definitions.LoadDefinition());
  EXPECT_EQ(session.LastError, "File error '" + std::string(kPath) + ", ");
}

TEST_F(DefinitionsTest, AFileErrorLeavesAnEarlierText) {
  Attach(kPart5);
  bus.files.PutFolder("C:\\KVX\\DEF00109.PDT");
  session.LastError = "an earlier text";
  EXPECT_FALSE(definitions.LoadDefinition());
  EXPECT_EQ(session.LastError, "an earlier text");
}

TEST_F(DefinitionsTest, AFullScaleThatLeavesNoRangeIsAFileError) {
  DefinitionFile content;
  content.SetCurve(0, 0);
  Install(kPart5, content);
  Attach(kPart5);
  EXPECT_FALSE(definitions.LoadDefinition());
  EXPECT_EQ(session.LastError, "File error '" + std::string(kPath) + ", ");
  EXPECT_EQ(definitions.DefinitionPart(), 0);
}

TEST_F(DefinitionsTest, ACoefficientThatIsNoNumberIsAFileError) {
  DefinitionFile content;
  content.Put(DefinitionFile::Block(0) + 32, 1);
  content.Put(DefinitionFile::Block(0) + 36, 2147483647);
  Install(kPart5, content);
  Attach(kPart5);
  EXPECT_FALSE(definitions.LoadDefinition());
  EXPECT_EQ(session.LastError, "File error '" + std::string(kPath) + ", ");
}

TEST_F(DefinitionsTest, NonsenseGivesTheTextOrADefinitionAndNoCrash) {
  std::uint32_t state = 1;
  Attach(kPart5);
  for (int round = 0; round < 200; ++round) {
    DefinitionFile content;
    for (auto& byte : content.bytes) {
      state = state * 1664525 + 1013904223;
      byte = static_cast<std::uint8_t>(state >> 24);
    }
    Install(kPart5, content);
    session.LastError.clear();
    if (!definitions.LoadDefinition()) {
      EXPECT_EQ(session.LastError, "File error '" + std::string(kPath) + ", ");
    }
  }
}

}  // namespace
}  // namespace brelant
