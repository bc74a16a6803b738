// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/settings_file.h"
#include "panels/each_panel5.h"
#include "panels/loop_act.h"

namespace brelant {
namespace {

using std::chrono::seconds;
using test::Bytes;
using test::Click;
using test::RamBytes;
using test::SettingsFile5;
using testing::ElementsAre;
using testing::IsEmpty;

constexpr const char* kFile = "C:\\Files\\a.set";
constexpr const char* kFilter = "(*.Set)|*.Set";

class SettingsActionsTest : public test::EachPanel5Test {
 protected:
  SettingsActionsTest() : ram(GetParam().ram()) {
    // Zero gas as background of both gases, which every table has at the same place.
    test::Put(ram, 216, {240, 0});
    test::Put(ram, 223, {240, 0});
    Attach(ram);
    StraightTables();
  }

  /// A file in which every byte differs from the sensor's, but for identity and what is told.
  RamBytes OtherRam() const {
    auto other = ram;
    for (auto& byte : other) byte = static_cast<std::uint8_t>(byte + 1);
    std::copy(ram.begin() + 65, ram.begin() + 68, other.begin() + 65);
    test::Put(other, 216, {240, 0});
    test::Put(other, 223, {240, 0});
    other[226] = ram[226];
    return other;
  }
  void Choose(const std::optional<std::string>& name) { ground.ui.chosenFiles.push_back(name); }
  void ClickInTheLoop(const std::string& entry) {
    ground.pump.After(seconds(1), [this, entry] { EXPECT_TRUE(Click(Entry(entry))) << entry; });
    test::RunLoop(ground, *panel, seconds(30));
  }

  RamBytes ram;
};
INSTANTIATE_TEST_SUITE_P(, SettingsActionsTest, test::BothPanels(), test::KindName);

/// The bytes that a settings file restores (docs/memory-maps.md, Blocks).
bool IsSetting(std::size_t address) {
  const auto in = [address](std::size_t from, std::size_t to) { return address >= from && address <= to; };
  return in(31, 32) || in(57, 57) || in(59, 62) || in(162, 196) || in(205, 208) || in(212, 213) ||
         in(216, 220) || in(223, 232);
}

// Load

TEST_P(SettingsActionsTest, LoadTakesTheSettingsOfTheFileAndLeavesTheRest) {
  const auto other = OtherRam();
  ground.files.Put(kFile, SettingsFile5(other));
  Choose(kFile);
  EXPECT_TRUE(panel->ActionSettingsLoad());
  ASSERT_EQ(ground.ui.dialogs.size(), 1U);
  EXPECT_EQ(ground.ui.dialogs[0].use, UserInterface::FileUse::open);
  EXPECT_EQ(ground.ui.dialogs[0].filter, kFilter);
  auto expected = ram;
  for (std::size_t i = 0; i < ram.size(); ++i) {
    if (IsSetting(i)) expected[i] = other[i];
  }
  // The background of gas 1 is read from 223 and written to 222.
  test::Put(expected, 222, {240, 0});
  auto image = Image();
  // With TWA off, showing it copies the unit.
  if (GetParam().name == "frm5Chart") expected[207] = image[205];
  EXPECT_EQ(image, expected);
  EXPECT_EQ(session.LastError, "");
  EXPECT_TRUE(port.Events().empty());
}

TEST_P(SettingsActionsTest, LoadShowsTheNewSettings) {
  auto other = ram;
  other[208] = 12;
  other[31] = 1;
  ground.files.Put(kFile, SettingsFile5(other));
  Choose(kFile);
  EXPECT_TRUE(panel->ActionSettingsLoad());
  EXPECT_EQ(Entry("txbID").Text(), "12");
  EXPECT_EQ(Entry("lblDisplayMode").Text(), Entry("mDisplayMode(1)").Text());
}

TEST_P(SettingsActionsTest, LoadDropsWhatWasTyped) {
  ground.files.Put(kFile, SettingsFile5(ram));
  Choose(kFile);
  Entry("txbID").SetText("12");
  EXPECT_TRUE(panel->ActionSettingsLoad());
  EXPECT_EQ(Entry("txbID").Text(), "7");
}

TEST_P(SettingsActionsTest, LoadWorksInSimulatedModeToo) {
  auto other = ram;
  other[208] = 12;
  ground.files.Put(kFile, SettingsFile5(other));
  panel->SimMode(true);
  Choose(kFile);
  ClickInTheLoop("mLoadsettings");
  EXPECT_EQ(Entry("txbID").Text(), "12");
  EXPECT_TRUE(port.Events().empty());
}

TEST_P(SettingsActionsTest, ADialogThatIsCancelledOrEmptyChangesNothing) {
  for (const std::optional<std::string>& name :
       {std::optional<std::string>(), std::optional<std::string>("")}) {
    Choose(name);
    EXPECT_TRUE(panel->ActionSettingsLoad());
    Choose(name);
    EXPECT_TRUE(panel->ActionSettingsSave());
    EXPECT_EQ(session.LastError, "");
    EXPECT_EQ(Image(), ram);
  }
  EXPECT_EQ(ground.ui.dialogs.size(), 4U);
  EXPECT_THAT(ground.files.acts, IsEmpty());
  EXPECT_TRUE(port.Events().empty());
}

TEST_P(SettingsActionsTest, ARefusedFileIsToldAndLeavesTheImage) {
  auto other = OtherRam();
  other[226] = 2;
  auto otherPlatform = OtherRam();
  otherPlatform[65] = 88;
  auto damaged = SettingsFile5(OtherRam());
  damaged[40] ^= 1;
  ground.files.Put("C:\\Files\\variant.set", SettingsFile5(other));
  ground.files.Put("C:\\Files\\platform.set", SettingsFile5(otherPlatform));
  ground.files.Put("C:\\Files\\damaged.set", damaged);
  ground.files.Put("C:\\Files\\block.set", test::SettingsFileEeprom(104));
  struct Case {
    std::string name;
    std::string text;
  };
  for (const auto& [name, text] :
       {Case{"C:\\Files\\variant.set", "This setfile can't be used on this sensor"},
        Case{"C:\\Files\\platform.set", "This setfile can't be used on this sensor"},
        Case{"C:\\Files\\damaged.set", "File is damaged C:\\Files\\damaged.set"},
        Case{"C:\\Files\\block.set", "Setfile error"},
        Case{"C:\\Files\\none.set", "File not found C:\\Files\\none.set"}}) {
    ground.ui.messages.clear();
    Choose(name);
    panel->SimMode(true);
    ClickInTheLoop("mLoadsettings");
    EXPECT_THAT(ground.ui.Texts(), ElementsAre(text));
    EXPECT_EQ(Image(), ram) << name;
    EXPECT_EQ(Entry("txbID").Text(), "7") << name;
    EXPECT_FALSE(ground.msg.Visible());
  }
}

TEST_P(SettingsActionsTest, AFailingDiskIsToldWhenItIsReadFrom) {
  ground.files.Put(kFile, SettingsFile5(OtherRam()));
  ground.files.Break(kFile);
  Choose(kFile);
  EXPECT_FALSE(panel->ActionSettingsLoad());
  EXPECT_NE(session.LastError, "");
  EXPECT_NE(session.LastError, "Avbryt");
  EXPECT_EQ(Image(), ram);
}

// Save

TEST_P(SettingsActionsTest, SaveWritesWhatTheSensorHolds) {
  Choose(kFile);
  EXPECT_TRUE(panel->ActionSettingsSave());
  ASSERT_EQ(ground.ui.dialogs.size(), 1U);
  EXPECT_EQ(ground.ui.dialogs[0].use, UserInterface::FileUse::save);
  EXPECT_EQ(ground.ui.dialogs[0].filter, kFilter);
  EXPECT_EQ(ground.files.Get(kFile), SettingsFile5(ram));
  // The whole of RAM, read and nothing written.
  EXPECT_EQ(port.sensor.Frames().size(), 44U);
  EXPECT_EQ(Held(port), ram);
  EXPECT_FALSE(port.PortOpen());
  EXPECT_EQ(session.LastError, "");
}

TEST_P(SettingsActionsTest, SaveReadsTheSensorFirstAndTakesTheFormAfterwards) {
  auto changed = ram;
  changed[131] = static_cast<std::uint8_t>(ram[131] + 1);
  changed[208] = 9;
  Hold(port, changed);
  Entry("txbID").SetText("12");
  Choose(kFile);
  EXPECT_TRUE(panel->ActionSettingsSave());
  // A calibration word as the sensor has it now, the ID as the field has it.
  changed[208] = 12;
  EXPECT_EQ(ground.files.Get(kFile), SettingsFile5(changed));
}

TEST_P(SettingsActionsTest, SaveAddsTheEnding) {
  for (const char* name : {"C:\\Files\\b", "C:\\Files\\c.SET", "C:\\Files\\d.txt"}) {
    Choose(name);
    EXPECT_TRUE(panel->ActionSettingsSave()) << name;
  }
  EXPECT_EQ(ground.files.Get("C:\\Files\\b.Set"), SettingsFile5(ram));
  EXPECT_EQ(ground.files.Get("C:\\Files\\c.SET"), SettingsFile5(ram));
  EXPECT_EQ(ground.files.Get("C:\\Files\\d.txt.Set"), SettingsFile5(ram));
}

TEST_P(SettingsActionsTest, ASimulatedSensorIsNotRead) {
  panel->SimMode(true);
  Entry("txbID").SetText("12");
  Choose(kFile);
  EXPECT_TRUE(panel->ActionSettingsSave());
  EXPECT_TRUE(port.Events().empty());
  auto expected = ram;
  expected[208] = 12;
  EXPECT_EQ(ground.files.Get(kFile), SettingsFile5(expected));
}

TEST_P(SettingsActionsTest, TheTwoShowTheirProgress) {
  std::vector<std::string> progress;
  NoteProgress(ground, progress);
  Choose(kFile);
  EXPECT_TRUE(panel->ActionSettingsSave());
  EXPECT_THAT(progress, ElementsAre("Saving settings"));
  ground.msg.ShowProgress("", true, &panel->form);
  Choose(kFile);
  EXPECT_TRUE(panel->ActionSettingsLoad());
  EXPECT_EQ(ground.msg.Label1.Text(), "Loading settings");
  EXPECT_TRUE(ground.msg.Visible());
}

TEST_P(SettingsActionsTest, ASensorThatCannotBeReadIsNotSaved) {
  PullOff(port);
  Choose(kFile);
  EXPECT_FALSE(panel->ActionSettingsSave());
  EXPECT_EQ(session.LastError, "Can't read from sensor");
  EXPECT_FALSE(ground.files.Exists(kFile));
}

TEST_P(SettingsActionsTest, CancelWhileTheSensorIsReadIsSilentAndSavesNothing) {
  BeforeEachOutput(port, [this](const Bytes& bytes) {
    if (ground.msg.Label1.Text() == "Saving settings" && bytes == Bytes{60}) Click(ground.msg.Command1);
    return true;
  });
  Choose(kFile);
  ClickInTheLoop("mSavesettings");
  EXPECT_THAT(ground.ui.Texts(), IsEmpty());
  EXPECT_FALSE(ground.files.Exists(kFile));
  EXPECT_FALSE(ground.msg.Visible());
}

TEST_P(SettingsActionsTest, AFailingDiskIsToldWhenItIsWrittenTo) {
  const Bytes old{1, 2, 3};
  ground.files.Put(kFile, old);
  ground.files.Break(kFile);
  Choose(kFile);
  ClickInTheLoop("mSavesettings");
  EXPECT_THAT(ground.ui.Texts(), ElementsAre("Can't save settings."));
  ground.files.Mend(kFile);
  EXPECT_EQ(ground.files.Get(kFile), old);
}

TEST_P(SettingsActionsTest, WhatIsSavedLoadsAgain) {
  Choose(kFile);
  Choose(kFile);
  EXPECT_TRUE(panel->ActionSettingsSave());
  const auto image = Image();
  EXPECT_TRUE(panel->ActionSettingsLoad());
  auto expected = image;
  // The background of gas 1 is read from 223 and written to 222.
  test::Put(expected, 222, {240, 0});
  EXPECT_EQ(Image(), expected);
}

class Frm5SaveTest : public test::Frm5TestOn<test::SensorPort> {
 protected:
  Frm5SaveTest() : Frm5TestOn(bench::SensorSetup{.part = 104}) { Hold(ground.port, test::SampleRam()); }
};

TEST_F(Frm5SaveTest, AFormThatCannotBeTakenIsNotSaved) {
  panel.txbOutIntTime[0].SetText("0");
  ground.ui.chosenFiles = {kFile};
  EXPECT_FALSE(panel.ActionSettingsSave());
  EXPECT_NE(ground.session.LastError, "");
  EXPECT_FALSE(ground.files.Exists(kFile));
}

}  // namespace
}  // namespace brelant
