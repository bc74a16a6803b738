// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/sending.h"
#include "bench/modbus_registers.h"

namespace brelant {
namespace {

using std::chrono::seconds;
using test::Bytes;
using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

constexpr const char* kFile = "C:\\Files\\a.set";
constexpr const char* kOtherSensor = "This setfile can't be used on this sensor";

enum class Unit { kiBus, modbus, platform8 };

constexpr int kPart8 = 40;
constexpr int kModel8 = 2;

/// The example of docs/files.md: part 154, model 3, eaSensorID_0 is 7 and EEPROM 7124 is 5.
Bytes Example() {
  return {1,   247, 8,   49, 0,   3,   0,   0,   0,   0,   0,   0,   0,   0,   0,   0, 0,  //
          30,  0,   9,   0,  154, 117, 0,   0,   0,   3,   0,   0,   0,                    //
          31,  0,   21,  0,  12,  'e', 'a', 'S', 'e', 'n', 's', 'o', 'r', 'I', 'D',        //
          '_', '0', 255, 0,  0,   0,   7,   0,   0,   0,                                   //
          32,  0,   7,   0,  1,   212, 27,  1,   0,   255, 5};
}
/// The file with another part number (at 21) or model (at 26), and its checksum.
Bytes Changed(Bytes file, std::size_t at, std::uint8_t byte) {
  const int sum = file[1] + file[2] * 256 + byte - file[at];
  file[at] = byte;
  file[1] = static_cast<std::uint8_t>(sum & 255);
  file[2] = static_cast<std::uint8_t>(sum >> 8);
  return file;
}

/// The same for that unit.
Bytes FileFor(Unit unit) {
  if (unit != Unit::platform8) return Example();
  return Changed(Changed(Example(), 21, kPart8), 26, kModel8);
}

/// The program before a central unit that hears one of the roads, or before a unit of platform 8. Its ID is 1
/// and E7124 is 0.
class UnitBench : public test::FactoryBench {
 public:
  explicit UnitBench(Unit kind)
      : FactoryBench(kind == Unit::platform8 ? kPart8 : 154,
                     kind == Unit::platform8 ? std::optional(kModel8) : std::nullopt),
        kind_(kind) {
    port.sensor.Eeprom()[4160] = 1;
    port.sensor.Eeprom()[7124] = 0;
    files.Put(kFile, FileFor(kind));
    if (kind != Unit::modbus) return;
    Store("Prot", "ModBus");
    port.onOutput = [this](const Bytes& bytes) { deaf.insert(deaf.end(), bytes.begin(), bytes.end()); };
    const auto ram = port.sensor.Ram();
    const auto eeprom = port.sensor.Eeprom();
    auto& unit = modbus.units[1];
    for (int number = 0; number < 32; ++number) {
      if (const auto word = bench::InputRegister(ram, eeprom, number)) unit.input[number] = *word;
    }
    for (int number = 0; number < 12288; ++number) {
      const auto place = bench::HoldingRegister(ram.size(), eeprom.size(), number);
      if (!place) continue;
      const auto& memory = place->in_eeprom ? eeprom : ram;
      unit.holding[number] =
          static_cast<std::uint16_t>(memory[place->address] << 8 | memory[place->address + 1]);
    }
  }

  int Byte(std::size_t address) {
    if (kind_ != Unit::modbus) return port.sensor.Eeprom()[address];
    const int word = modbus.units.at(1).holding.at(8192 + static_cast<int>(address) / 2);
    return address % 2 == 0 ? word >> 8 : word & 255;
  }
  /// Writes to the unit, as words.
  std::vector<std::string> Writes() const {
    std::vector<std::string> writes;
    for (const auto& frame : Written()) writes.push_back(testing::PrintToString(frame));
    for (const auto& text : modbus.Story()) {
      if (text.find('=') != std::string::npos) writes.push_back(text);
    }
    return writes;
  }

  /// What was said on KiBus to a unit that does not hear it.
  Bytes deaf;

 private:
  Unit kind_;
};

class SendByNamesTest : public testing::TestWithParam<Unit> {
 protected:
  void ExpectRefused(const std::string& text) {
    EXPECT_THAT(bench.ui.Texts(), ElementsAre(HasSubstr(text)));
    EXPECT_THAT(bench.Writes(), IsEmpty());
    EXPECT_EQ(bench.Byte(4160), 1);
    EXPECT_FALSE(bench.program->msg.Visible());
    EXPECT_EQ(bench.program->session.LastError, "");
    EXPECT_FALSE(bench.port.PortOpen());
    EXPECT_FALSE(bench.modbus.IsOpen());
  }

  UnitBench bench{GetParam()};
};
INSTANTIATE_TEST_SUITE_P(, SendByNamesTest, testing::Values(Unit::kiBus, Unit::modbus, Unit::platform8),
                         [](const auto& unit) {
                           return unit.param == Unit::platform8 ? "Platform8"
                                  : unit.param == Unit::modbus  ? "Modbus"
                                                                : "KiBus";
                         });

TEST_P(SendByNamesTest, TheFileGoesToTheUnit) {
  bench.Send(kFile);
  EXPECT_THAT(bench.ui.Texts(), IsEmpty());
  EXPECT_EQ(bench.Byte(4160), 7);
  EXPECT_EQ(bench.Byte(7124), 5);
  if (GetParam() != Unit::modbus) {
    // E4160 and E7124
    const std::vector<Bytes> written{test::Framed({9, 16, 64, 7}), test::Framed({9, 27, 212, 5})};
    EXPECT_EQ(bench.Written(), written);
  }
  for (const auto* panel : {"frmZ7731Chart", "frm8Chart", "frm8_2Chart"}) {
    EXPECT_EQ(bench.CountShown(panel), 0);
  }
  EXPECT_FALSE(bench.program->msg.Visible());
  EXPECT_FALSE(bench.port.PortOpen());
  EXPECT_FALSE(bench.modbus.IsOpen());
}

TEST_P(SendByNamesTest, TheImageAndItsSaveHaveNoPart) {
  bench.Send(kFile);
  EXPECT_EQ(bench.port.sensor.Count().saves, 0);
  const auto& image = bench.program->image;
  for (std::size_t i = 0; i < 256; ++i) {
    // The part number, with what lies beside it.
    if (i >= 65 && i <= 67) continue;
    EXPECT_FALSE(image.RamValid[i]) << i;
  }
}

TEST_P(SendByNamesTest, ShowsWhatItDoesInFrontOfTheDialog) {
  std::vector<std::string> texts;
  int most = 0;
  bench.pump.OnPass([&] {
    const auto& msg = bench.program->msg;
    if (!msg.Visible()) return false;
    if (texts.empty() || texts.back() != msg.Label1.Text()) texts.push_back(msg.Label1.Text());
    most = std::max(most, static_cast<int>(bench.program->session.BusProgress));
    EXPECT_TRUE(bench.program->comSet.form.Busy());
    return false;
  });
  bench.Send(kFile);
  EXPECT_THAT(texts, ElementsAre("Loading settings"));
  EXPECT_GE(most, 50);
  EXPECT_FALSE(bench.program->comSet.form.Busy());
}

TEST_P(SendByNamesTest, AFileOfAnotherModelOrPlatformIsRefused) {
  bench.files.Put(kFile, Changed(FileFor(GetParam()), 26, GetParam() == Unit::platform8 ? 1 : 5));
  bench.Send(kFile);
  ExpectRefused(kOtherSensor);
  UnitBench other(GetParam());
  other.files.Put(kFile, Changed(FileFor(GetParam()), 21, GetParam() == Unit::platform8 ? 154 : kPart8));
  other.Send(kFile);
  EXPECT_THAT(other.ui.Texts(), ElementsAre(kOtherSensor));
  EXPECT_THAT(other.Writes(), IsEmpty());
}

TEST_P(SendByNamesTest, AFileOfBlocksIsRefused) {
  bench.files.Put(kFile, test::SettingsFile({{1, Bytes(240, 3)}}));
  bench.Send(kFile);
  ExpectRefused("Setfile error");
}

TEST_P(SendByNamesTest, ADamagedFileIsRefused) {
  auto file = FileFor(GetParam());
  file.back() ^= 1;
  bench.files.Put(kFile, file);
  bench.Send(kFile);
  ExpectRefused(std::string("File is damaged ") + kFile);
}

TEST_P(SendByNamesTest, AFileThatIsGoneIsTold) {
  bench.Send("C:\\Files\\none.set");
  ExpectRefused("File not found C:\\Files\\none.set");
}

TEST_P(SendByNamesTest, ATypedNameSendsNothingAndTellsNothing) {
  bench.When("frmComSet", [this] {
    bench.Control("frmComSet", "txbFileName").SetText(kFile);
    bench.PressSend();
  });
  bench.Run();
  EXPECT_THAT(bench.ui.Texts(), IsEmpty());
  EXPECT_THAT(bench.Writes(), IsEmpty());
  EXPECT_EQ(bench.Byte(4160), 1);
  EXPECT_FALSE(bench.program->msg.Visible());
  if (GetParam() != Unit::modbus) {
    EXPECT_THAT(bench.port.Events(), IsEmpty());
  }
}

TEST_P(SendByNamesTest, ABlankNameIsAskedForBeforeTheLineIsUsed) {
  bench.When("frmComSet", [this] {
    bench.Control("frmComSet", "txbFileName").SetText("  ");
    bench.PressSend();
  });
  bench.Run();
  ExpectRefused("Please enter file name in the textbox.");
  EXPECT_THAT(bench.port.Events(), IsEmpty());
  EXPECT_THAT(bench.modbus.Requests(), IsEmpty());
}

TEST_P(SendByNamesTest, CancelInTheMiddleIsSilent) {
  bool isPressed = false;
  bench.pump.OnPass([&] {
    if (!isPressed && !bench.Writes().empty()) isPressed = bench.Click("frmMsg", "Command1");
    return false;
  });
  bench.Send(kFile);
  EXPECT_TRUE(isPressed);
  EXPECT_THAT(bench.ui.Texts(), IsEmpty());
  EXPECT_EQ(bench.Byte(7124), 0);
  EXPECT_FALSE(bench.program->msg.Visible());
  EXPECT_EQ(bench.program->session.LastError, "");
}

TEST_P(SendByNamesTest, ASilentUnitIsTold) {
  bench.port.onOutput = nullptr;
  bench.modbus.units.clear();
  bench.Send(kFile);
  EXPECT_THAT(bench.ui.Texts(), ElementsAre("Can't read from sensor"));
  EXPECT_FALSE(bench.program->msg.Visible());
}

TEST(SendByNames, TheNetworkIdOfTheDialogIsTaken) {
  for (const auto unit : {Unit::kiBus, Unit::platform8}) {
    UnitBench bench(unit);
    bench.port.sensor.SetId(9);
    bench.When("frmComSet", [&] {
      bench.Click("frmComSet", "optStartMode(1)");
      bench.Control("frmComSet", "txbID").SetText("9");
      bench.ui.chosenFiles = {kFile};
      bench.Click("frmComSet", "Command5");
      bench.PressSend();
    });
    bench.Run();
    EXPECT_THAT(bench.ui.Texts(), IsEmpty());
    EXPECT_EQ(bench.Byte(4160), 7);
    // 224 and the ID
    EXPECT_THAT(bench.port.Sent(), Contains(233));
    EXPECT_THAT(bench.port.Sent(), testing::Not(Contains(254)));
  }
}

}  // namespace
}  // namespace brelant
