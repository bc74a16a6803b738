// SPDX-License-Identifier: GPL-3.0-or-later
#include <numeric>

#include "safety/dialog_fixture.h"

namespace brelant {
namespace {

using std::chrono::milliseconds;
using std::chrono::seconds;
using test::Bytes;
using test::Click;
using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;

constexpr const char* kName = "C:\\Files\\a.set";
constexpr const char* kOtherSensor = "This setfile can't be used on this sensor";

std::int64_t NumberAt(const Bytes& bytes, std::size_t at, std::size_t width) {
  std::int64_t number = 0;
  for (std::size_t i = width; i-- > 0;) number = number * 256 + bytes.at(at + i);
  return width == 4 && number >= 0x80000000 ? number - 0x100000000 : number;
}

/// "eaSensorID_0/255 = 7", "1:7124/255 = 5" for each thing in the file, in order (docs/files.md).
std::vector<std::string> ContentOf(const Bytes& file) {
  std::vector<std::string> content;
  std::size_t at = 17;
  while (at < file.size()) {
    const auto type = NumberAt(file, at, 2);
    const auto end = at + 4 + static_cast<std::size_t>(NumberAt(file, at + 2, 2));
    at += 4;
    if (type == 30) {
      content.push_back("unit " + std::to_string(file.at(at)) + " " +
                        std::to_string(NumberAt(file, at + 1, 4)) + " " +
                        std::to_string(NumberAt(file, at + 5, 4)));
      at += 9;
    }
    while (at < end && type == 31) {
      const std::size_t length = file.at(at);
      const std::string name(file.begin() + static_cast<std::ptrdiff_t>(at + 1),
                             file.begin() + static_cast<std::ptrdiff_t>(at + 1 + length));
      at += 1 + length;
      content.push_back(name + "/" + std::to_string(NumberAt(file, at, 4)) + " = " +
                        std::to_string(NumberAt(file, at + 4, 4)));
      at += 8;
    }
    while (at < end && type == 32) {
      const auto count = static_cast<std::size_t>(NumberAt(file, at + 3, 2));
      std::string text = std::to_string(file.at(at)) + ":" + std::to_string(NumberAt(file, at + 1, 2)) + "/" +
                         std::to_string(file.at(at + 5)) + " =";
      for (std::size_t i = 0; i < count; ++i) text += " " + std::to_string(file.at(at + 6 + i));
      content.push_back(text);
      at += 6 + count;
    }
    EXPECT_EQ(at, end);
    at = end;
  }
  return content;
}

/// Where what a file keeps lies in the unit: the first byte and how many.
struct Cell {
  std::size_t address;
  std::size_t width;
};
const std::vector<Cell> kKept{{4602, 2}, {4401, 4}, {4409, 4}, {4160, 1}, {4240, 16}, {4354, 4},
                              {4434, 6}, {7124, 2}, {4564, 2}, {4568, 2}, {4444, 2}};

class FilesTest : public test::DialogTest {
 protected:
  FilesTest() {
    Put(4401, {5, 4, 8, 11});
    Put(4409, {9, 9, 4, 5});
    unit.eeprom[4160] = 7;
    PutSetting(4602, 37302);
    const std::array levels{2311, 2122, 333, 144, 155, 166, 677, 888};
    for (std::size_t i = 0; i < levels.size(); ++i) PutSetting(4240 + 2 * i, levels[i]);
    PutSetting(4354, 1999);
    PutSetting(4356, 1010);
    PutSetting(4358, 99);
    PutSetting(4434, 0x1111);
    PutSetting(4436, 0x5E00);
    PutSetting(4438, 0x8600);
    unit.eeprom[7124] = 5;
    unit.eeprom[7125] = 250;
    PutSetting(4564, 0xAB04);
    PutSetting(4568, 0x7F09);
    PutSetting(4444, 0xC15C);
  }

  void Put(std::size_t address, const std::vector<std::uint8_t>& bytes) {
    std::copy(bytes.begin(), bytes.end(), unit.eeprom.begin() + static_cast<std::ptrdiff_t>(address));
  }
  std::vector<int> Kept() {
    mirror.Mind();
    std::vector<int> kept;
    for (const auto& [address, width] : kKept) {
      for (std::size_t i = 0; i < width; ++i) kept.push_back(unit.eeprom[address + i]);
    }
    return kept;
  }
  void ChooseFile(const std::optional<std::string>& name) { ground.ui.chosenFiles.push_back(name); }
  bool Save() {
    ChooseFile(kName);
    return panel.ActionSettingsSave();
  }
  bool Load() {
    ChooseFile(kName);
    return panel.ActionSettingsLoad();
  }
  std::vector<std::string> Content() const { return ContentOf(ground.files.Get(kName)); }
  /// A sound file of these blocks.
  static Bytes FileOf(const std::vector<std::pair<int, Bytes>>& blocks) {
    Bytes body;
    const auto number = [](Bytes& bytes, std::size_t value) {
      bytes.push_back(static_cast<std::uint8_t>(value & 255));
      bytes.push_back(static_cast<std::uint8_t>(value >> 8 & 255));
    };
    for (const auto& [type, payload] : blocks) {
      number(body, static_cast<std::size_t>(type));
      number(body, payload.size());
      body.insert(body.end(), payload.begin(), payload.end());
    }
    Bytes file{1};
    number(file, static_cast<std::size_t>(std::accumulate(body.begin(), body.end(), 0)));
    number(file, body.size());
    number(file, blocks.size());
    file.resize(17);
    file.insert(file.end(), body.begin(), body.end());
    return file;
  }
  static Bytes UnitBlock(std::uint8_t part, std::uint8_t model) {
    return {part, 117, 0, 0, 0, model, 0, 0, 0};
  }
  static Bytes ItemBlock(const std::string& name, std::uint8_t mask, std::uint8_t value) {
    Bytes item{static_cast<std::uint8_t>(name.size())};
    item.insert(item.end(), name.begin(), name.end());
    for (const auto byte : {mask, value}) item.insert(item.end(), {byte, 0, 0, 0});
    return item;
  }
};

/// All that is kept, in order, with the values of the fixture.
const std::vector<std::string> kContent{"unit 154 117 3",
                                        "eaCaseChannelUnit_4/255 = 1",
                                        "eaCaseChannelUnit_9/255 = 1",
                                        "eaState1Alg_30/-1 = 37302",
                                        "eaMenuItemMPar1_0/255 = 5",
                                        "eaMenuItemMPar2_0/255 = 4",
                                        "eaMenuItemMPar3_0/255 = 8",
                                        "eaMenuItemMPar4_0/255 = 11",
                                        "eaMenuItemMPar1_1/255 = 9",
                                        "eaMenuItemMPar2_1/255 = 9",
                                        "eaMenuItemMPar3_1/255 = 4",
                                        "eaMenuItemMPar4_1/255 = 5",
                                        "eaSensorID_0/255 = 7",
                                        "eaRegPar0_4/-1 = 2311",
                                        "eaRegPar1_4/-1 = 2122",
                                        "eaRegPar0_5/-1 = 333",
                                        "eaRegPar1_5/-1 = 144",
                                        "eaRegPar0_6/-1 = 155",
                                        "eaRegPar1_6/-1 = 155",
                                        "eaRegPar0_7/-1 = 677",
                                        "eaRegPar1_7/-1 = 888",
                                        "eawPar_1/-1 = 1999",
                                        "eawPar_2/-1 = 1010",
                                        "eaCountPar_9/-1 = 24064",
                                        "eaCountPar_10/-1 = 24064",
                                        "eaCountPar_11/-1 = 34304",
                                        "eaState0Alg_21/-1 = 43780",
                                        "eaState0Alg_22/-1 = 32521",
                                        "eaCountPar_14/-1 = 49500",
                                        "1:7124/255 = 5",
                                        "1:7125/255 = 250"};

// The TWA has one level for two places, and the first relay list goes to two.
TEST_F(FilesTest, AFileHoldsAllThatIsMarkedInOrder) {
  for (const auto road : test::kRoads) {
    if (ground.files.Exists(kName)) ground.files.Remove(kName);
    PutSetting(4250, 166);
    PutSetting(4434, 0x1111);
    StartOn(road);
    EXPECT_TRUE(Save()) << session.LastError;
    EXPECT_EQ(Content(), kContent);
    EXPECT_THAT(Told(), IsEmpty());
    ASSERT_EQ(ground.ui.dialogs.size(), 1U);
    EXPECT_EQ(ground.ui.dialogs[0].use, UserInterface::FileUse::save);
    EXPECT_EQ(ground.ui.dialogs[0].filter, "(*.Set)|*.Set");
    ground.ui.dialogs.clear();
    panel.LeaveSession();
  }
}

TEST_F(FilesTest, ModelSevenKeepsBothSequences) {
  unit.eeprom[4125] = 7;
  StartOnKiBus();
  ASSERT_TRUE(Save());
  auto expected = kContent;
  expected[0] = "unit 154 117 7";
  EXPECT_EQ(Content(), expected);
}

TEST_F(FilesTest, TheFieldsGoToTheUnitBeforeItIsSaved) {
  StartOnKiBus();
  panel.cbxTWAonP0.SetValue(0);
  // The first regulator of 0x5E00 goes.
  ASSERT_TRUE(Click(panel.cbxKelrelay.boxes[1]));
  ASSERT_TRUE(Save()) << session.LastError;
  EXPECT_THAT(Content(), Contains("eaState1Alg_30/-1 = 37301"));
  EXPECT_THAT(Content(), Contains("eaCountPar_10/-1 = 3584"));
  // The last write is that of the second temperature's unit; whatever is read for the file comes behind it.
  const auto frames = Frames();
  const auto lastWrite = std::find_if(frames.rbegin(), frames.rend(), [](const auto& frame) {
                           return frame.find('=') != std::string::npos;
                         }).base();
  EXPECT_TRUE((lastWrite - 1)->starts_with("E7969 = "));
  EXPECT_THAT(std::vector(lastWrite, frames.end()), Contains(HasSubstr("E7124+")));
  EXPECT_THAT(std::vector(lastWrite, frames.end()), Contains(HasSubstr("E4160+1")));
}

TEST_F(FilesTest, ASaveIsTheCommandOfItsMenuEntry) {
  StartOnKiBus();
  NoteBox();
  ChooseFile("C:\\Files\\b");
  Command(panel.mSavesettings, seconds(12));
  EXPECT_TRUE(ground.files.Exists("C:\\Files\\b.Set"));
  EXPECT_THAT(Told(), IsEmpty());
  ASSERT_GE(boxes.size(), 3U);
  EXPECT_THAT(std::vector(boxes.begin(), boxes.begin() + 3),
              ElementsAre("", "Please wait", "Saving settings"));
  EXPECT_EQ(boxes.back(), "");
}

TEST_F(FilesTest, ASaveThatIsNotWantedWritesNoFile) {
  StartOnKiBus();
  ChooseFile({});
  EXPECT_TRUE(panel.ActionSettingsSave());
  EXPECT_THAT(ground.files.acts, Not(Contains(HasSubstr("write"))));
  EXPECT_EQ(session.LastError, "");
  // What was marked for it is not there twice in the next one.
  ASSERT_TRUE(Save());
  EXPECT_EQ(Content(), kContent);
}

TEST_F(FilesTest, FieldsThatAreNotTakenEndASaveBeforeTheQuestion) {
  StartOnKiBus();
  panel.cbxTWAonP0.SetValue(0);
  Refuse(4602, 2);
  // The failure has been told, and the result is good all the same.
  EXPECT_TRUE(Save());
  EXPECT_THAT(Told(), ElementsAre(HasSubstr("Writing one or more values to Sensor FAILED.")));
  EXPECT_THAT(ground.ui.dialogs, IsEmpty());
  EXPECT_FALSE(ground.files.Exists(kName));
}

TEST_F(FilesTest, AFileThatCannotBeWrittenIsAFailure) {
  StartOnKiBus();
  ground.files.Break(kName);
  EXPECT_FALSE(Save());
  EXPECT_NE(session.LastError, "");
}

TEST_F(FilesTest, ALoadBringsEveryMarkedItemBack) {
  for (const auto saved : test::kRoads) {
    for (const auto loaded : test::kRoads) {
      StartOn(saved);
      ASSERT_TRUE(Save()) << session.LastError;
      const auto before = Kept();
      panel.LeaveSession();
      for (const auto& [address, width] : kKept) {
        for (std::size_t i = 0; i < width; ++i) unit.eeprom[address + i] ^= 0x05;
      }
      // Display positions stay such as there are.
      Put(4401, {11, 8, 4, 5});
      Put(4409, {5, 5, 5, 5});
      unit.eeprom[7964] = 0x6B;  // F, and other bits, which are not the file's
      unit.eeprom[7969] = 0x0A;
      ASSERT_NE(Kept(), before);
      StartOn(loaded);
      ASSERT_NE(panel.txbKelLevel[1].Text(), "3.33");
      EXPECT_TRUE(Load()) << session.LastError;
      EXPECT_EQ(Kept(), before);
      EXPECT_EQ(unit.eeprom[7964], 0x67);
      EXPECT_EQ(unit.eeprom[7969], 0x06);
      EXPECT_THAT(Told(), IsEmpty());
      // The fields show it.
      EXPECT_EQ(panel.txbKelLevel[1].Text(), "3.33");
      EXPECT_EQ(panel.lblCH_Type[0].Text(), "C");
      EXPECT_THAT(Texts(panel.lblDisplayMode), ElementsAre("CO2", "TEMP 1", "TWA CO2", "WEIGHT"));
      EXPECT_EQ(panel.txbID.Text(), "7");
      panel.LeaveSession();
      unit.eeprom[7964] = unit.eeprom[7969] = 6;
    }
  }
  EXPECT_EQ(ground.ui.dialogs.back().use, UserInterface::FileUse::open);
}

TEST_F(FilesTest, ALoadIsTheCommandOfItsMenuEntry) {
  StartOnKiBus();
  ASSERT_TRUE(Save());
  unit.eeprom[4160] = 22;
  Forget();
  NoteBox();
  ChooseFile(kName);
  Command(panel.mLoadsettings, seconds(15));
  EXPECT_EQ(unit.eeprom[4160], 7);
  EXPECT_THAT(Told(), IsEmpty());
  ASSERT_GE(boxes.size(), 3U);
  EXPECT_THAT(std::vector(boxes.begin(), boxes.begin() + 3),
              ElementsAre("", "Please wait", "Loading settings"));
}

TEST_F(FilesTest, ALoadPollsTheLiveValuesToo) {
  StartOnKiBus();
  ASSERT_TRUE(Save());
  PutLive(4, 1830);
  ASSERT_TRUE(Load());
  EXPECT_EQ(panel.txbCHact[0].Text(), "18.3");
}

TEST_F(FilesTest, ALoadThatIsNotWantedDoesNothing) {
  StartOnKiBus();
  ChooseFile({});
  EXPECT_TRUE(panel.ActionSettingsLoad());
  EXPECT_EQ(Transfers(), 0U);
  EXPECT_EQ(session.LastError, "");
}

TEST_F(FilesTest, ARefusedFileSendsNothing) {
  const auto good = ItemBlock("eaSensorID_0", 255, 9);
  const auto both = [&](const Bytes& bad) {
    auto items = good;
    items.insert(items.end(), bad.begin(), bad.end());
    return FileOf({{30, UnitBlock(154, 3)}, {31, items}, {32, {}}});
  };
  auto damaged = FileOf({{30, UnitBlock(154, 3)}, {31, good}, {32, {}}});
  damaged.back() ^= 1;
  struct Case {
    const char* what;
    Bytes file;
    std::string text;
  };
  for (const auto& [what, file, text] :
       {Case{"model", FileOf({{30, UnitBlock(154, 5)}, {31, good}, {32, {}}}), kOtherSensor},
        Case{"platform", FileOf({{30, UnitBlock(104, 3)}, {31, good}, {32, {}}}), kOtherSensor},
        Case{"command", both(ItemBlock("raGenStat_8", 255, 1)),
             "The file holds 'raGenStat_8', which cannot be sent."},
        Case{"memory", FileOf({{30, UnitBlock(154, 3)}, {31, good}, {32, {2, 48, 1, 1, 0, 255, 1}}}),
             "cannot be sent."},
        Case{"name", both(ItemBlock("eaNobody_0", 255, 1)), "eaNobody_0"},
        Case{"damage", damaged, std::string("File is damaged ") + kName},
        Case{"kind", FileOf({{1, Bytes(240)}}), "Setfile error"}}) {
    for (const auto road : test::kRoads) {
      StartOn(road);
      ground.files.Put(kName, file);
      EXPECT_FALSE(Load()) << what;
      EXPECT_THAT(std::exchange(session.LastError, {}), HasSubstr(text)) << what;
      EXPECT_THAT(Writes(), IsEmpty()) << what;
      EXPECT_EQ(unit.eeprom[4160], 7) << what;
      panel.LeaveSession();
    }
  }
}

TEST_F(FilesTest, AFileThatIsGoneIsTold) {
  StartOnKiBus();
  ChooseFile("C:\\Files\\none.set");
  Command(panel.mLoadsettings, seconds(6));
  EXPECT_THAT(Told(), ElementsAre("File not found C:\\Files\\none.set"));
  EXPECT_EQ(panel.cbxSimulated.Value(), 0);
}

TEST_F(FilesTest, ALoadThatFailsHalfWayIsToldAndReadsAnew) {
  StartOnKiBus();
  ASSERT_TRUE(Save());
  PutSetting(4244, 500);    // after the ID in the file
  PutSetting(4602, 37301);  // before it
  unit.eeprom[4160] = 12;
  PutLive(4, 1830);
  Refuse(4160, 1);
  EXPECT_FALSE(Load());
  EXPECT_EQ(session.LastError, "The unit did not take 'eaSensorID_0'.");
  EXPECT_EQ(Setting(4602), 37302);
  EXPECT_EQ(Setting(4244), 500);
  // What the unit has now is in the fields, or the next edit would undo it.
  EXPECT_EQ(panel.txbID.Text(), "12");
  EXPECT_EQ(panel.txbKelLevel[1].Text(), "5");
  EXPECT_EQ(panel.cbxTWAonP0.Value(), 1);
  EXPECT_EQ(panel.txbCHact[0].Text(), "18.3");
}

/// The fields would undo what was sent of the file.
TEST_F(FilesTest, NothingIsSentUntilAUnitThatFellSilentInALoadIsReadAgain) {
  StartOnKiBus();
  ASSERT_TRUE(Save());
  PutSetting(4602, 37301);
  ground.pump.OnPass([this] {
    const auto frames = Frames();
    if (std::find(frames.begin(), frames.end(), "E4602 = 37302") != frames.end()) unit.isSilent = true;
    return false;
  });
  EXPECT_FALSE(Load());
  Forget();
  unit.isSilent = false;
  session.LastError.clear();
  EXPECT_FALSE(panel.FormRead(true));
  EXPECT_EQ(session.LastError, "The settings of the unit have not been read.");
  EXPECT_THAT(Writes(), IsEmpty());
}

TEST_F(FilesTest, CancelEndsALoadInTheMiddleWithoutAWord) {
  StartOnKiBus();
  ASSERT_TRUE(Save());
  PutSetting(4602, 37301);  // before the level in the file
  PutSetting(4354, 1500);   // behind it
  Forget();
  ChooseFile(kName);
  ground.pump.OnPass([this, isDone = std::make_shared<bool>(false)] {
    const auto frames = Frames();
    if (*isDone || std::find(frames.begin(), frames.end(), "E4240 = 2311") == frames.end()) return false;
    *isDone = true;
    EXPECT_TRUE(Click(ground.msg.Command1));
    return false;
  });
  Command(panel.mLoadsettings, seconds(15));
  EXPECT_THAT(Told(), IsEmpty());
  EXPECT_THAT(Writes(), Not(Contains(HasSubstr("E7124 ="))));
  EXPECT_EQ(Setting(4602), 37302);
  EXPECT_EQ(Setting(4354), 1500);
  // What the unit has now is in the fields, or the next edit would undo it: 1500 less 99.
  EXPECT_EQ(panel.cbxTWAonP0.Value(), 1);
  EXPECT_EQ(panel.txbKelLevel[5].Text(), "14.01");
  EXPECT_EQ(panel.cbxSimulated.Value(), 0);
  EXPECT_FALSE(session.CancelPressed);
}

TEST_F(FilesTest, NothingIsPolledWhileAFileIsLoaded) {
  StartOnKiBus();
  ASSERT_TRUE(Save());
  Forget();
  ChooseFile(kName);
  unit.eeprom[4160] = 22;
  Command(panel.mLoadsettings, seconds(15));
  const auto frames = Frames();
  const auto first = std::find_if(frames.begin(), frames.end(),
                                  [](const auto& frame) { return frame.find('=') != std::string::npos; });
  const auto last = std::find_if(frames.rbegin(), frames.rend(), [](const auto& frame) {
                      return frame.find('=') != std::string::npos;
                    }).base();
  ASSERT_LT(first, last);
  EXPECT_THAT(std::vector(first, last), Not(Contains(kPollBegins)));
}

}  // namespace
}  // namespace brelant
