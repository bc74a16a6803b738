// SPDX-License-Identifier: GPL-3.0-or-later
// Which panel each of the 256 part numbers gets with each variant, and which of them get none: on a sensor,
// and simulated from a file that holds what the sensor holds.
#include <array>

#include "app/program_bench.h"
#include "app/settings_file.h"

namespace brelant {
namespace {

using test::Bytes;
using test::kUnknownSensor;
using testing::ElementsAre;
using testing::IsEmpty;

constexpr std::array kPanels{"frm5",      "frm5Chart",   "frm6",         "frm61",
                             "frm8Chart", "frm8_2Chart", "frmZ7731Chart"};
constexpr std::array kVariants{0, 1, 2, 3, 4, 5, 6, 7, 8, 117, 255};

/// By bits 6 and 5 of the part number, and bits 4 and 3.
int PlatformOf(int part) {
  const int family = part % 128;
  if (part == 154) return 9;
  if (family >= 96) return 5;
  if (family >= 88) return 6;
  if (family >= 80) return 61;
  if (family >= 64) return 0;
  if (family >= 40 && family <= 47) return 8;
  return family >= 32 ? 7 : 0;
}

/// The panel of a sensor; empty: it is refused.
std::string PanelOf(int platform, int variant) {
  switch (platform) {
    case 5:
      return variant == 0 ? "frm5" : variant <= 3 ? "frm5Chart" : "";
    case 6:
      return variant <= 5 ? "frm6" : "";
    case 61:
      return variant <= 1 ? "frm61" : "";
    case 7:
      return variant == 1 || variant == 2 ? "frm61" : "";
    case 8:
      return variant == 1 ? "frm8Chart" : variant == 2 ? "frm8_2Chart" : "";
    case 9:
      return variant == 1 || variant == 3 || (variant >= 5 && variant <= 7) ? "frmZ7731Chart" : "";
    default:
      return "";
  }
}

/// What platforms 6 and 61 make of bytes 173, 165 and 90 of their EEPROM.
int VariantOf(int part, int a, int b, int c) {
  if (b % 2 == 0 && a == 0) return 4;
  if (part == 221) return 5;
  if (c % 2 == 1) return 2;
  return a == 6 ? 0 : a;
}

class PartBench : public test::ProgramBench<test::SensorPort> {
 public:
  /// Of the usual variant.
  explicit PartBench(int part) : ProgramBench(bench::SensorSetup{.part = part}), part_(part) {
    const auto digits = std::to_string(part);
    files.Put("C:\\KVX\\DEF" + std::string(5 - digits.size(), '0') + digits + ".PDT",
              test::DefinitionFile(test::SampleChannels()));
    for (const auto* panel : kPanels) {
      When(panel, [this] { program->session.CurrentPanel->form.Close(); });
    }
  }

  /// Gives the sensor a variant. On platforms 6 and 61 others than it may be come of it.
  void Become(int variant) {
    const auto byte = static_cast<std::uint8_t>(variant);
    auto eeprom = port.sensor.Eeprom();
    switch (port.sensor.Platform()) {
      case 5:
        port.sensor.Ram()[226] = byte;
        break;
      case 7:
        eeprom[1023] = byte;
        break;
      case 8:
      case 9:
        eeprom[4125] = byte;
        break;
      default:
        Become(variant, 1, 0);
    }
  }
  void Become(int a, int b, int c) {
    auto eeprom = port.sensor.Eeprom();
    eeprom[173] = static_cast<std::uint8_t>(a);
    eeprom[165] = static_cast<std::uint8_t>((eeprom[165] & 254) | b);
    eeprom[90] = static_cast<std::uint8_t>((eeprom[90] & 254) | c);
  }

  /// Everything that the sensor holds, as a file.
  Bytes File() {
    const auto ram = port.sensor.Ram();
    if (port.sensor.Platform() == 5) {
      test::RamBytes all{};
      std::copy_n(ram.begin(), all.size(), all.begin());
      return test::SettingsFile5(all);
    }
    const auto eeprom = port.sensor.Eeprom();
    Bytes low(eeprom.begin(), eeprom.begin() + 512);
    low[164] = static_cast<std::uint8_t>(part_);
    if (port.sensor.Platform() != 7) return test::SettingsFile(10, low);
    return test::SettingsFile({{10, low}, {11, {eeprom.begin() + 512, eeprom.end()}}});
  }
  void StartOnSensor() { StartSingle(); }
  void StartFromFile() {
    files.Put("C:\\KVX\\Any.sim", File());
    StartSimulated("Any");
  }

  /// An empty name: refused.
  void ExpectPanel(const std::string& name, const std::string& what) {
    Run();
    for (const auto* panel : kPanels) EXPECT_EQ(CountShown(panel), panel == name ? 1 : 0) << what << panel;
    if (name.empty()) {
      EXPECT_THAT(ui.Texts(), ElementsAre(kUnknownSensor)) << what;
    } else {
      EXPECT_THAT(ui.Texts(), IsEmpty()) << what;
    }
    EXPECT_EQ(CountShown("frmComSet"), 2) << what;
    EXPECT_FALSE(port.PortOpen()) << what;
  }

 private:
  int part_;
};

std::string Tell(int part, int variant) {
  return "part " + std::to_string(part) + ", variant " + std::to_string(variant) + ": ";
}

class EveryPartTest : public testing::TestWithParam<int> {
 protected:
  /// Calls `walk` with each part number of the platform and each variant.
  template <typename Walk>
  static void ForEach(const Walk& walk) {
    for (int part = 0; part < 256; ++part) {
      if (PlatformOf(part) != GetParam()) continue;
      for (const int variant : kVariants) walk(part, variant);
    }
  }
  /// A variant of platforms 6 and 61 as it reads itself.
  static int Meant(int part, int variant) {
    return GetParam() == 6 || GetParam() == 61 ? VariantOf(part, variant, 1, 0) : variant;
  }
};
INSTANTIATE_TEST_SUITE_P(Platforms, EveryPartTest, testing::Values(5, 6, 61, 7, 8, 9));

TEST_P(EveryPartTest, GetsItsPanelOnASensor) {
  ForEach([](int part, int variant) {
    PartBench bench(part);
    bench.Become(variant);
    bench.StartOnSensor();
    bench.ExpectPanel(PanelOf(GetParam(), Meant(part, variant)), Tell(part, variant));
  });
}

/// Without a unit there is nothing behind the names of platform 8, and platform 9 is not asked.
TEST_P(EveryPartTest, GetsItsPanelFromAFile) {
  ForEach([](int part, int variant) {
    PartBench bench(part);
    bench.Become(variant);
    bench.StartFromFile();
    const auto panel = PanelOf(GetParam(), Meant(part, variant));
    bench.ExpectPanel(GetParam() == 8 ? "" : GetParam() == 9 ? "frmZ7731Chart" : panel, Tell(part, variant));
  });
}

TEST(EveryPartTest6, TheVariantComesOfThreeBytes) {
  for (const int part : {88, 216, 221, 222, 223, 80, 208, 215}) {
    for (int a = 0; a < 8; ++a) {
      for (int bits = 0; bits < 4; ++bits) {
        for (const bool isFile : {false, true}) {
          PartBench bench(part);
          bench.Become(a, bits % 2, bits / 2);
          if (isFile) {
            bench.StartFromFile();
          } else {
            bench.StartOnSensor();
          }
          const auto name = PanelOf(PlatformOf(part), VariantOf(part, a, bits % 2, bits / 2));
          bench.ExpectPanel(name, Tell(part, a) + std::to_string(bits) + " ");
        }
      }
    }
  }
}

TEST(EveryPartTest0, WithoutAPlatformIsRefused) {
  int parts = 0;
  for (int part = 0; part < 256; ++part) {
    if (PlatformOf(part) != 0) continue;
    ++parts;
    test::PartBench bench(static_cast<std::uint8_t>(part));
    bench.StartSingle();
    bench.Run();
    EXPECT_THAT(bench.ui.Texts(), ElementsAre(kUnknownSensor)) << part;
    EXPECT_THAT(bench.port.Sent(), ElementsAre(254, 129, 65, 194)) << part;
    test::ProgramBench<test::ScriptedPort> simulated;
    simulated.files.Put("C:\\KVX\\Any.sim", test::SettingsFileEeprom(static_cast<std::uint8_t>(part)));
    simulated.StartSimulated("Any");
    simulated.Run();
    EXPECT_THAT(simulated.ui.Texts(), ElementsAre(kUnknownSensor)) << part;
  }
  EXPECT_EQ(parts, 256 - 2 * 80 - 1);
}

}  // namespace
}  // namespace brelant
