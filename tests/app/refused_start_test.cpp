// SPDX-License-Identifier: GPL-3.0-or-later
#include <stdexcept>

#include "app/program_bench.h"
#include "app/settings_file.h"

namespace brelant {
namespace {

using std::chrono::milliseconds;
using std::chrono::seconds;
using test::Bytes;
using test::kUnknownSensor;
using test::PartBench;
using test::SampleRam;
using test::SensorBench;
using test::SettingsFileEeprom;
using testing::ElementsAre;

/// One start, which leads to these messages and back to the dialog.
template <typename Bench>
void ExpectRefused(Bench& bench, const std::vector<std::string>& messages) {
  bench.Run();
  EXPECT_EQ(bench.ui.Texts(), messages);
  for (const auto& message : bench.ui.messages) {
    EXPECT_EQ(message.buttons, UserInterface::Buttons::ok);
    EXPECT_EQ(message.title, "");
    EXPECT_EQ(message.icon, UserInterface::Icon::none);
  }
  EXPECT_EQ(bench.CountShown("frmComSet"), 2);
  EXPECT_EQ(bench.CountShown("frm5"), 0);
  EXPECT_FALSE(bench.port.PortOpen());
  EXPECT_FALSE(bench.program->msg.Visible());
}

TEST(RefusedStartTest, APortThatDoesNotOpen) {
  PartBench bench;
  bench.port.failOpen = true;
  bench.StartSingle();
  ExpectRefused(bench, {"This port is locked by other devise"});
}

TEST(RefusedStartTest, TrafficOnTheLine) {
  PartBench bench;
  bench.StartSingle();
  bench.After(milliseconds(700), [&] { bench.port.Receive({85}); });
  ExpectRefused(bench, {"Central unit must be set to slave mode or be disconnected."});
  EXPECT_TRUE(bench.port.Sent().empty());
}

TEST(RefusedStartTest, NoAnswerToThePartNumber) {
  PartBench bench;
  bench.StartSingle();
  ExpectRefused(bench, {"Can't read from sensor"});
  const auto sent = bench.port.Sent();
  EXPECT_EQ(std::count(sent.begin(), sent.end(), 254), 100);
}

TEST(RefusedStartTest, AModbusSensor) {
  PartBench bench(104);
  bench.Store("Prot", "ModBus");
  bench.StartSingle();
  ExpectRefused(bench, {"Can't read from sensor"});
  EXPECT_TRUE(bench.port.Sent().empty());
}

TEST(RefusedStartTest, APartNumberWithoutAPlatform) {
  // The text about the product is there first, and overwritten.
  for (const int part : {0, 1, 26, 64, 79, 153, 155, 192, 207}) {
    PartBench bench(static_cast<std::uint8_t>(part));
    bench.StartSingle();
    ExpectRefused(bench, {kUnknownSensor});
    EXPECT_THAT(bench.port.Sent(), ElementsAre(254, 129, 65, 194)) << part;
  }
}

TEST(RefusedStartTest, AUnitOfPlatform8ThatDoesNotTellItsModel) {
  for (const int part : {40, 47, 168, 175}) {
    PartBench bench(static_cast<std::uint8_t>(part));
    bench.StartSingle();
    ExpectRefused(bench, {"The unit does not answer."});
  }
}

TEST(RefusedStartTest, AVariantWithoutAPanel) {
  for (const int variant : {4, 5, 255}) {
    SensorBench bench;
    auto ram = SampleRam();
    ram[226] = static_cast<std::uint8_t>(variant);
    bench.Hold(ram);
    bench.StartSingle();
    ExpectRefused(bench, {kUnknownSensor});
    // The variant stands in the RAM, which is read whole.
    EXPECT_EQ(bench.port.Sent().size(), 4U + 44 * 4) << variant;
  }
}

TEST(RefusedStartTest, AMissingDefinition) {
  SensorBench bench;
  bench.files.Remove("C:\\KVX\\DEF00104.PDT");
  bench.StartSingle();
  ExpectRefused(bench, {"Can't find file: C:\\KVX\\\\DEF00104.PDT, "});
  EXPECT_THAT(bench.port.Sent(), ElementsAre(254, 129, 65, 194));
}

TEST(RefusedStartTest, ABadDefinition) {
  const std::string name = "C:\\KVX\\DEF00104.PDT";
  const auto refuse = [](SensorBench& bench) {
    bench.StartSingle();
    ExpectRefused(bench, {"File error 'C:\\KVX\\\\DEF00104.PDT, "});
  };
  for (const std::size_t size : {0U, 1U, 100U, 639U}) {
    SensorBench bench;
    auto file = bench.files.Get(name);
    file.resize(size);
    bench.files.Put(name, file);
    refuse(bench);
  }
  SensorBench unreadable;
  unreadable.files.Break(name);
  refuse(unreadable);
  SensorBench folder;
  folder.files.Remove(name);
  folder.files.PutFolder(name);
  refuse(folder);
  SensorBench nonsense;
  nonsense.files.Put(name, std::vector<std::uint8_t>(640, 0x7F));
  refuse(nonsense);
}

TEST(RefusedStartTest, ASensorThatDoesNotFitItsDefinition) {
  // Another sensor answers when the whole RAM is read, and the disk fails when its definition is looked for.
  SensorBench bench;
  bench.files.onExists = [&bench](const std::string& path) {
    if (path.find("DEF00105") != std::string::npos) throw std::runtime_error("Disk error");
    auto ram = SampleRam();
    ram[65] = 105;
    bench.Hold(ram);
  };
  bench.StartSingle();
  ExpectRefused(bench, {"Sensor is corrupt"});
}

TEST(RefusedStartTest, AnEmptyIdAddressesNobody) {
  SensorBench bench;
  bench.StartNetwork("");
  ExpectRefused(bench, {"Can't read from sensor"});
  EXPECT_EQ(bench.port.Sent().at(0), 224);
}

TEST(RefusedStartTest, AnIdIsNotLimitedButForTheByte) {
  SensorBench bench;
  bench.StartNetwork("35");
  ExpectRefused(bench, {"Can't read from sensor"});
  EXPECT_EQ(bench.port.Sent().at(0), 224 + 35 - 256);
}

TEST(RefusedStartTest, ASensorOfAnotherIdDoesNotAnswer) {
  SensorBench bench;
  bench.port.sensor.SetId(5);
  bench.StartNetwork("6");
  ExpectRefused(bench, {"Can't read from sensor"});
}

TEST(RefusedStartTest, TheDialogComesBackAlsoWhenItIsSwitchedOff) {
  PartBench bench;
  bench.Store("Dont", "1");
  bench.port.failOpen = true;
  bench.Run();
  EXPECT_THAT(bench.ui.Texts(), ElementsAre("This port is locked by other devise"));
  EXPECT_THAT(bench.shown, ElementsAre("frmMsg", "-frmMsg", "frmComSet", "-frmComSet"));
}

TEST(RefusedStartTest, ASecondAttemptMeetsTheSecondSensor) {
  SensorBench bench;
  auto ram = SampleRam();
  ram[65] = 105;
  bench.Hold(ram);
  // The first fails for want of a definition, with its part number already read.
  bench.StartSingle();
  bench.ui.onMessage = [&] { bench.Hold(SampleRam()); };
  bench.StartSingle();
  std::string serial;
  bench.When("frm5", [&] {
    serial = bench.Panel5().txbSN.Text();
    bench.Panel5().form.Close();
  });
  bench.Run();
  EXPECT_THAT(bench.ui.Texts(), ElementsAre("Can't find file: C:\\KVX\\\\DEF00105.PDT, "));
  EXPECT_EQ(serial, "10401042");
}

TEST(RefusedStartTest, ASecondAttemptBeginsWithAnEmptyImage) {
  SensorBench bench;
  auto ram = SampleRam();
  ram[226] = 4;
  bench.Hold(ram);
  bench.StartSingle();
  constexpr std::uint8_t kPartOfPlatform8 = 40;
  bench.files.Put("C:\\KVX\\Room.sim", test::SettingsFileEeprom(kPartOfPlatform8));
  bench.StartSimulated("Room");
  std::vector<bool> known;
  bench.ui.onMessage = [&] { known.push_back(bench.program->image.RamValid[66]); };
  bench.Run();
  EXPECT_THAT(bench.ui.Texts(), ElementsAre(kUnknownSensor, kUnknownSensor));
  EXPECT_THAT(known, ElementsAre(true, false));
}

TEST(RefusedStartTest, AFailedNetworkStartLeavesNoIdBehind) {
  PartBench bench;
  bench.StartNetwork("5");
  bench.When("frmComSet", [&] {
    // No start mode at all, as on a first start.
    for (auto* option : bench.program->comSet.optStartMode) option->SetValue(0);
    bench.port.Forget();
    bench.Click("frmComSet", "btnStartKVX");
  });
  bench.Run();
  EXPECT_EQ(bench.port.Sent().at(0), 254);
}

TEST(RefusedStartTest, CancelInTheProbeIsSilent) {
  SensorBench bench;
  bench.StartSingle();
  bench.When("frmMsg", [&] { EXPECT_TRUE(bench.Click("frmMsg", "Command1")); });
  ExpectRefused(bench, {});
  EXPECT_TRUE(bench.port.Sent().empty());
}

TEST(RefusedStartTest, CancelInTheReadOfThePartNumberIsSilent) {
  PartBench bench;
  bench.StartSingle();
  bench.After(milliseconds(3500), [&] { EXPECT_TRUE(bench.Click("frmMsg", "Command1")); });
  ExpectRefused(bench, {});
  const auto sent = bench.port.Sent();
  EXPECT_GT(std::count(sent.begin(), sent.end(), 254), 5);
  EXPECT_LT(std::count(sent.begin(), sent.end(), 254), 20);
}

TEST(RefusedStartTest, CancelInTheReadOfTheSensorIsSilent) {
  SensorBench bench;
  bench.StartSingle();
  const auto answer = bench.port.onOutput;
  bench.port.onOutput = [&](const Bytes& bytes) {
    answer(bytes);
    if (bench.Sent({134, 36, 170})) bench.Click("frmMsg", "Command1");
  };
  ExpectRefused(bench, {});
  EXPECT_FALSE(bench.Sent({134, 48, 182}));
}

TEST(RefusedStartTest, ACancelIsForgottenWhenTheDialogComesBack) {
  SensorBench bench;
  bench.StartSingle();
  bench.When("frmMsg", [&] { bench.Click("frmMsg", "Command1"); });
  bench.StartSingle();
  bench.Run();
  EXPECT_EQ(bench.CountShown("frm5"), 1);
}

TEST(RefusedStartTest, AFailureInTheReadOfTheSensor) {
  SensorBench bench;
  bench.StartSingle();
  const auto answer = bench.port.onOutput;
  bench.port.onOutput = [&](const Bytes& bytes) {
    if (!bench.Sent({134, 36, 170})) answer(bytes);
  };
  ExpectRefused(bench, {"Can't read from sensor"});
}

}  // namespace
}  // namespace brelant
