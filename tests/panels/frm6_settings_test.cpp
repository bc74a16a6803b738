// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/settings_file.h"
#include "panels/frm6_fixture.h"

namespace brelant {
namespace {

using std::chrono::seconds;
using test::Bytes;
using test::Click;
using test::EepromBytes;
using test::kPart88;
using test::Put;
using test::SampleEeprom;
using test::SettingsFile;
using testing::ElementsAre;
using testing::IsEmpty;

constexpr const char* kFile = "C:\\Files\\a.set";

/// The bytes that a settings file restores (docs/memory-maps.md, Blocks).
bool IsSetting(std::size_t address, int variant) {
  const auto in = [address](std::size_t from, std::size_t to) { return address >= from && address <= to; };
  if (variant == 2 && in(127, 130)) return false;
  return in(0, 31) || in(34, 34) || in(38, 40) || in(43, 45) || in(50, 51) || in(96, 97) || in(106, 149) ||
         in(162, 163) || in(173, 173) || in(218, 307);
}

/// What a save puts into its two blocks: the selection and then EEPROM.
Bytes Saved(const EepromBytes& eeprom, int variant) {
  std::vector<std::uint8_t> selection(30);
  for (std::size_t i = 0; i < 512; ++i) selection.push_back(IsSetting(i, variant) ? 255 : 0);
  return SettingsFile({{15, selection}, {10, {eeprom.begin(), eeprom.end()}}});
}

/// Zero gas as background of both gases and even tables, so that a load has nothing to convert.
EepromBytes WithTables(EepromBytes eeprom) {
  for (const std::size_t table : {444U, 478U}) {
    for (std::size_t entry = 0; entry < 17; ++entry) {
      const std::size_t value = 6500 - 100 * entry;
      Put(eeprom, table + 2 * entry,
          {static_cast<std::uint8_t>(value / 256), static_cast<std::uint8_t>(value % 256)});
    }
  }
  Put(eeprom, 38, {240, 0});
  Put(eeprom, 43, {240, 0});
  return eeprom;
}

class Frm6SettingsTest : public test::Frm6Test {
 protected:
  void Choose(const std::optional<std::string>& name) { ground.ui.chosenFiles.push_back(name); }
  void ClickInTheLoop(const std::string& entry) {
    panel.SimMode(true);
    After(seconds(1), [this, entry] { EXPECT_TRUE(Click(Entry(entry))); });
    Run(seconds(5));
  }
};

TEST_F(Frm6SettingsTest, SavesTheSelectionAndThenTheEeprom) {
  for (const int variant : {0, 2}) {
    Show(SampleEeprom(kPart88, variant));
    Choose(kFile);
    EXPECT_TRUE(panel.ActionSettingsSave());
    EXPECT_EQ(ground.files.Get(kFile), Saved(Eeprom(), variant)) << variant;
    EXPECT_EQ(ground.files.Get(kFile)[5], 2);
    // Nothing is read for it.
    EXPECT_TRUE(ground.port.Events().empty());
    ground.files.Remove(kFile);
  }
}

TEST_F(Frm6SettingsTest, EveryVariantUpTo4IsSaved) {
  for (const auto& [part, variant] : {std::pair{222, 1}, {223, 1}, {88, 3}, {88, 4}}) {
    Show(SampleEeprom(static_cast<std::uint8_t>(part), variant));
    Choose(kFile);
    EXPECT_TRUE(panel.ActionSettingsSave()) << variant;
    EXPECT_EQ(ground.files.Get(kFile), Saved(Eeprom(), variant)) << variant;
    ground.files.Remove(kFile);
  }
}

TEST_F(Frm6SettingsTest, ASaveTakesTheFormFirst) {
  Show(SampleEeprom(kPart88));
  panel.txbID.SetText("12");
  Choose(kFile);
  EXPECT_TRUE(panel.ActionSettingsSave());
  auto expected = SampleEeprom(kPart88);
  expected[32] = 12;
  EXPECT_EQ(ground.files.Get(kFile), Saved(expected, 0));
}

TEST_F(Frm6SettingsTest, OtherVariantsAreNotSaved) {
  struct Case {
    int part;
    int variant;
  };
  for (const auto& [part, variant] : {Case{221, 0}, Case{221, 5}, Case{88, 5}, Case{88, 7}, Case{88, 255}}) {
    Show(SampleEeprom(static_cast<std::uint8_t>(part), variant));
    ground.ui.messages.clear();
    Choose(kFile);
    ClickInTheLoop("mSavesettings");
    EXPECT_THAT(ground.ui.Texts(), ElementsAre("Cant save settings from this sensor"));
    EXPECT_FALSE(ground.files.Exists(kFile));
  }
}

TEST_F(Frm6SettingsTest, ASaveThatIsRefusedFails) {
  Show(SampleEeprom(kPart88, 5));
  Choose(kFile);
  EXPECT_FALSE(panel.ActionSettingsSave());
  EXPECT_EQ(ground.session.LastError, "Cant save settings from this sensor");
}

TEST_F(Frm6SettingsTest, ASaveThatTheMachineRefusesIsTold) {
  Show(SampleEeprom(kPart88));
  ground.files.Break(kFile);
  Choose(kFile);
  ClickInTheLoop("mSavesettings");
  EXPECT_THAT(ground.ui.Texts(), ElementsAre("Can't save settings."));
}

TEST_F(Frm6SettingsTest, ACancelledDialogIsSilentAndTakesNothing) {
  Show(SampleEeprom(kPart88));
  panel.txbID.SetText("12");
  for (const char* entry : {"mSavesettings", "mLoadsettings"}) {
    Choose({});
    ClickInTheLoop(entry);
  }
  EXPECT_THAT(ground.ui.Texts(), IsEmpty());
  EXPECT_EQ(Eeprom(), SampleEeprom(kPart88));
}

TEST_F(Frm6SettingsTest, AFormThatCannotBeTakenIsNeitherSavedNorLoadedOver) {
  const auto sample = WithTables(SampleEeprom(kPart88));
  Show(sample);
  auto other = sample;
  other[96] = 5;
  ground.files.Put("C:\\Files\\b.set", Saved(other, 0));
  panel.outputs.txbOutIntTime[0].SetText("0");
  Choose(kFile);
  EXPECT_FALSE(panel.ActionSettingsSave());
  EXPECT_FALSE(ground.files.Exists(kFile));
  Choose("C:\\Files\\b.set");
  EXPECT_FALSE(panel.ActionSettingsLoad());
  EXPECT_EQ(Eeprom(), sample);
}

TEST_F(Frm6SettingsTest, LoadTakesTheSettingsOfTheFileAndLeavesTheRest) {
  const auto sample = WithTables(SampleEeprom(kPart88));
  Show(sample);
  auto other = sample;
  for (std::size_t i = 0; i < 308; ++i) other[i] = static_cast<std::uint8_t>(other[i] + 1);
  // What tells the model, and what is converted.
  Put(other, 58, {sample[58]});
  Put(other, 90, {sample[90]});
  Put(other, 98, {sample[98]});
  Put(other, 158, {sample[158]});
  Put(other, 164, {sample[164], sample[165]});
  Put(other, 38, {240, 0});
  Put(other, 43, {240, 0});
  other[173] = 0;
  ground.files.Put(kFile, Saved(other, 0));
  Choose(kFile);
  EXPECT_TRUE(panel.ActionSettingsLoad());
  auto expected = sample;
  for (std::size_t i = 0; i < 512; ++i) {
    if (IsSetting(i, 0)) expected[i] = other[i];
  }
  EXPECT_EQ(Eeprom(), expected);
  EXPECT_EQ(ground.session.LastError, "");
}

TEST_F(Frm6SettingsTest, LoadTakesTheFormFirst) {
  const auto sample = WithTables(SampleEeprom(kPart88));
  Show(sample);
  ground.files.Put(kFile, Saved(sample, 0));
  panel.txbID.SetText("12");
  panel.rows.txbFa[0].SetText("401");
  Choose(kFile);
  EXPECT_TRUE(panel.ActionSettingsLoad());
  // The ID is no setting of the file, the function is.
  auto expected = sample;
  expected[32] = 12;
  EXPECT_EQ(Eeprom(), expected);
  EXPECT_EQ(panel.txbID.Text(), "12");
  EXPECT_EQ(panel.rows.txbFa[0].Text(), "400");
}

TEST_F(Frm6SettingsTest, LoadChangesTheFaceWithTheVariant) {
  const auto sample = WithTables(SampleEeprom(kPart88));
  Show(sample);
  panel.SimMode(true);
  auto other = sample;
  test::MakeVariant(other, 3);
  ground.files.Put(kFile, Saved(other, 3));
  Choose(kFile);
  EXPECT_TRUE(panel.ActionSettingsLoad());
  EXPECT_TRUE(panel.jumper.pct6v3Settings.Visible());
  EXPECT_FALSE(panel.pctFunction[0].Visible());
  EXPECT_FALSE(panel.cbxDigActive.Visible());
  EXPECT_EQ(panel.jumper.txb6v3C.Text(), "1400");
}

TEST_F(Frm6SettingsTest, AFileOfAnotherModelIsRefused) {
  const auto sample = WithTables(SampleEeprom(kPart88));
  struct Case {
    std::size_t address;
    int value;
  };
  for (const auto& [address, value] : {Case{164, 89}, Case{98, 1 | 2}, Case{165, 2}, Case{58, 200}}) {
    Show(sample);
    ground.ui.messages.clear();
    auto other = sample;
    other[32] = 20;
    other[96] = 5;
    other[address] = static_cast<std::uint8_t>(value);
    ground.files.Put(kFile, Saved(other, 0));
    Choose(kFile);
    ClickInTheLoop("mLoadsettings");
    EXPECT_THAT(ground.ui.Texts(), ElementsAre("This setfile can't be used on this sensor")) << address;
    EXPECT_EQ(Eeprom(), sample) << address;
    EXPECT_EQ(panel.txbDigLevel.Text(), "-30");
  }
}

TEST_F(Frm6SettingsTest, AFileWithoutASelectionIsRefused) {
  const auto sample = WithTables(SampleEeprom(kPart88));
  Show(sample);
  ground.files.Put(kFile, SettingsFile(10, {sample.begin(), sample.end()}));
  Choose(kFile);
  EXPECT_FALSE(panel.ActionSettingsLoad());
  EXPECT_EQ(ground.session.LastError, "Setfile error");
}

TEST_F(Frm6SettingsTest, BothShowTheirProgress) {
  Show(WithTables(SampleEeprom(kPart88)));
  Choose(kFile);
  EXPECT_TRUE(panel.ActionSettingsSave());
  EXPECT_EQ(ground.msg.Label1.Text(), "Saving settings");
  Choose(kFile);
  EXPECT_TRUE(panel.ActionSettingsLoad());
  EXPECT_EQ(ground.msg.Label1.Text(), "Loading settings");
}

}  // namespace
}  // namespace brelant
