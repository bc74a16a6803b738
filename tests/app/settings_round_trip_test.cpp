// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/sending.h"

namespace brelant {
namespace {

using std::chrono::seconds;
using test::Bytes;
using test::FactoryBench;
using test::RamBytes;
using test::SampleRam;
using testing::IsEmpty;

constexpr const char* kFile = "C:\\Files\\a.set";

/// A sensor whose settings are saved, loaded again and sent: no byte of it changes but where a rule says so.
class SettingsRoundTripTest : public testing::Test {
 protected:
  static RamBytes Ram(int variant) {
    auto ram = SampleRam();
    // Both backgrounds are zero gas, which the grain of the tables leaves as it is.
    test::Put(ram, 138, {8, 0, 8, 0});
    test::Put(ram, 216, {240, 0});
    test::Put(ram, 222, {240, 0, 0});
    ram[226] = static_cast<std::uint8_t>(variant);
    return ram;
  }
  void SaveLoadAndSend(FactoryBench& bench, const std::string& panel) {
    bench.StartSingle();
    bench.ui.chosenFiles = {kFile, kFile};
    bench.When(panel, [&bench, panel] {
      const auto click = [&bench, panel](const char* entry) {
        EXPECT_TRUE(bench.Click(panel, entry)) << entry;
      };
      bench.After(seconds(5), [click] { click("mSavesettings"); });
      bench.After(seconds(15), [click] { click("mLoadsettings"); });
      bench.After(seconds(25), [click] { click("mSendtosensor"); });
      bench.After(seconds(60), [&bench] { bench.program->session.CurrentPanel->form.Close(); });
    });
    bench.Run();
    EXPECT_THAT(bench.ui.Texts(), IsEmpty());
    EXPECT_TRUE(bench.files.Exists(kFile));
    EXPECT_GE(bench.port.sensor.Count().saves, 1);
  }
};

TEST_F(SettingsRoundTripTest, OfTheGeneralPanelChangesNoByte) {
  auto ram = Ram(0);
  // The background of gas 1 is read from 223 and written to 222, so only one of equal bytes stays in place.
  test::Put(ram, 222, {0, 0, 0});
  FactoryBench bench(ram);
  SaveLoadAndSend(bench, "frm5");
  EXPECT_EQ(bench.SensorRam(), Bytes(ram.begin(), ram.end()));
}

TEST_F(SettingsRoundTripTest, MovesTheBackgroundOfTheSecondGas) {
  auto ram = Ram(0);
  test::Put(ram, 222, {1, 240, 0});
  FactoryBench bench(ram);
  SaveLoadAndSend(bench, "frm5");
  test::Put(ram, 222, {240, 0, 0});
  EXPECT_EQ(bench.SensorRam(), Bytes(ram.begin(), ram.end()));
}

TEST_F(SettingsRoundTripTest, KeepsABackgroundToTheGrainOfItsTable) {
  auto ram = Ram(0);
  test::Put(ram, 216, {176, 0});
  test::Put(ram, 222, {0, 0, 0});
  FactoryBench bench(ram);
  SaveLoadAndSend(bench, "frm5");
  const auto after = bench.SensorRam();
  // Less than 10 positions a ppm, and whole ppm.
  EXPECT_NEAR(after[216] * 256 + after[217], 45056, 6);
}

TEST_F(SettingsRoundTripTest, OfTheChartChangesTheVariantAlone) {
  auto ram = Ram(1);
  ram[162] = 3;
  test::Put(ram, 205, {243, 65, 16});
  FactoryBench bench(ram);
  SaveLoadAndSend(bench, "frm5Chart");
  // Whatever is sent from there makes it variant 3.
  ram[226] = 3;
  EXPECT_EQ(bench.SensorRam(), Bytes(ram.begin(), ram.end()));
}

TEST_F(SettingsRoundTripTest, AFileFromTheChartIsRefusedByTheSensorItCameFrom) {
  // The saved form has variant 3, the sensor still 1: another model.
  const auto ram = Ram(1);
  FactoryBench bench(ram);
  bench.StartSingle();
  bench.ui.chosenFiles = {kFile};
  bench.When("frm5Chart", [&] {
    bench.Click("frm5Chart", "mSavesettings");
    bench.After(seconds(10), [&] { bench.program->session.CurrentPanel->form.Close(); });
  });
  bench.Send(kFile);
  EXPECT_THAT(bench.ui.Texts(), testing::ElementsAre("This setfile can't be used on this sensor"));
  EXPECT_EQ(bench.SensorRam(), Bytes(ram.begin(), ram.end()));
}

/// The words of the gases, which are expressed anew.
bool IsGasWord(int platform, std::size_t address) {
  if (platform == 6) return (address >= 36 && address <= 39) || (address >= 41 && address <= 44);
  return (address >= 34 && address <= 37) || (address >= 58 && address <= 61);
}

TEST_F(SettingsRoundTripTest, AWholeFileSentToTheSensorItCameFromChangesNothingButTheGrain) {
  struct Case {
    int part;
    int platform;
    std::size_t background;
  };
  for (const auto& [part, platform, background] : {Case{217, 6, 38}, Case{215, 61, 58}}) {
    FactoryBench bench(part);
    const auto before = bench.SensorEeprom();
    Bytes marks(542, 255);
    std::fill_n(marks.begin(), 30, std::uint8_t{0});
    bench.files.Put(kFile, test::SettingsFile({{10, before}, {15, marks}}));
    bench.Send(kFile);
    EXPECT_THAT(bench.ui.Texts(), IsEmpty());
    const auto after = bench.SensorEeprom();
    for (std::size_t i = 0; i < before.size(); ++i) {
      if (IsGasWord(platform, i)) continue;
      EXPECT_EQ(after[i], before[i]) << part << " " << i;
    }
    const auto word = [at = background](const Bytes& bytes) { return bytes[at] * 256 + bytes[at + 1]; };
    // A whole unit of concentration is at most this many positions wide in either table.
    EXPECT_NEAR(word(after), word(before), 60) << part;
  }
}

}  // namespace
}  // namespace brelant
