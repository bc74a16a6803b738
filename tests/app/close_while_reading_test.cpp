// SPDX-License-Identifier: GPL-3.0-or-later
// The window is closed in the middle of "Read from sensor" (docs/architecture.md, A read of all settings).
#include "app/program_bench.h"
#include "app/settings_file.h"
#include "panels/frm61_fixture.h"
#include "panels/sample_eeprom.h"

namespace brelant {
namespace {

using test::Bytes;
using test::SettingsFile;
using testing::IsEmpty;

constexpr const char* kLast = "C:\\KVX\\last.set";

/// A sensor, and where its bus ID lies.
struct Attached {
  std::string panel;
  bench::SensorSetup setup;
  Bytes memory;
  std::size_t id;

  bool InRam() const { return panel == "frm5"; }
};

Attached Of5() {
  const auto ram = test::SampleRam();
  return {"frm5", {.part = 104}, {ram.begin(), ram.end()}, 208};
}
Attached Of6(int variant) {
  auto eeprom = test::SampleEeprom(88);
  eeprom[173] = static_cast<std::uint8_t>(variant);
  return {"frm6", {.part = 88, .variant = variant}, {eeprom.begin(), eeprom.end()}, 32};
}
Attached Of61(int variant) {
  return {"frm61", {.part = test::kPart61, .variant = variant}, test::Sample61(variant), 32};
}
Attached Of7() {
  return {"frm61", {.part = test::kPart7, .variant = 2}, test::Sample7(2), 16};
}

/// The file of the last session.
Bytes LastOf(const Attached& sensor) {
  if (!sensor.InRam()) return SettingsFile(10, sensor.memory);
  test::RamBytes ram{};
  std::ranges::copy(sensor.memory, ram.begin());
  return test::SettingsFile5(ram);
}

/// The program on that sensor, and a person who closes the panel while it reads.
class ReadingBench : public test::ProgramBench<test::SensorPort> {
 public:
  explicit ReadingBench(const Attached& sensor) : ProgramBench(sensor.setup), panel_(sensor.panel) {
    Attach(sensor);
    files.Put(kLast, {1, 2, 3});
    StartSingle();
  }

  /// Types an ID, which waits in its field, asks for the read, and closes once that many frames of it are
  /// answered. `exchange` happens before the read.
  void CloseAtFrame(std::size_t frame, const std::function<void()>& exchange) {
    When(panel_, [this, frame, exchange] {
      Control(panel_, "txbID").SetText("12");
      exchange();
      port.sensor.ForgetFrames();
      port.onOutput = [this, frame, answer = port.onOutput](const Bytes& output) {
        answer(output);
        if (closed_ == 0 && IsReading() && port.sensor.Frames().size() >= frame) Close();
      };
      Click(panel_, "mReadfromsensor");
    });
    Run();
    EXPECT_EQ(closed_, 2);
    EXPECT_EQ(CountShown("frmComSet"), 2);
    EXPECT_THAT(ui.Texts(), IsEmpty());
    EXPECT_FALSE(port.PortOpen());
  }
  void Attach(const Attached& sensor) {
    port.sensor = bench::VirtualSensor(sensor.setup);
    std::ranges::copy(sensor.memory, (sensor.InRam() ? port.sensor.Ram() : port.sensor.Eeprom()).begin());
  }

 private:
  bool IsReading() const { return program->msg.Label1.Text() == "Reading from sensor"; }
  void Close() {
    closed_ = 1;
    pump.InPass(1, [this] {
      closed_ = 2;
      EXPECT_TRUE(IsReading());
      program->session.CurrentPanel->form.Close();
    });
  }

  std::string panel_;
  int closed_ = 0;
};

/// Bytes of the same model that all differ otherwise.
Attached Altered(Attached sensor, std::initializer_list<std::size_t> identity) {
  const auto old = sensor.memory;
  for (auto& byte : sensor.memory) byte = static_cast<std::uint8_t>(byte + 1);
  for (const auto address : identity) sensor.memory[address] = old[address];
  return sensor;
}

void ExpectKept(Attached sensor, const Attached& other, std::initializer_list<std::size_t> frames) {
  for (const auto frame : frames) {
    SCOPED_TRACE(sensor.panel + " closed at frame " + std::to_string(frame));
    ReadingBench bench(sensor);
    bench.CloseAtFrame(frame, [&] { bench.Attach(other); });
    auto expected = sensor;
    expected.memory[sensor.id] = 12;
    EXPECT_EQ(bench.files.Get(kLast), LastOf(expected));
  }
}

// The first frame asks for the part number; the last ones end the read.

TEST(CloseWhileReadingTest, OnPlatform5TheLastSettingsAreThoseBeforeTheRead) {
  ExpectKept(Of5(), Altered(Of5(), {65, 66, 67, 226}), {0, 1, 2, 20, 43});
}

TEST(CloseWhileReadingTest, OnPlatform6TheLastSettingsAreThoseBeforeTheRead) {
  // The faces that take a sample without changing a byte.
  for (const int variant : {0, 5}) {
    ExpectKept(Of6(variant), Altered(Of6(variant), {90, 98, 158, 164, 165, 173}), {0, 1, 2, 40, 85, 86});
  }
}

TEST(CloseWhileReadingTest, OnPlatform61TheLastSettingsAreThoseBeforeTheRead) {
  for (const int variant : {0, 1}) {
    ExpectKept(Of61(variant), Altered(Of61(variant), {90, 164, 165, 173}), {0, 1, 2, 40, 85, 86});
  }
}

TEST(CloseWhileReadingTest, ASensorOfAnotherPlatformChangesNothingInThem) {
  ExpectKept(Of61(0), Of7(), {0, 1, 2, 8, 15});
  ExpectKept(Of61(1), Of61(0), {1, 40});
  ExpectKept(Of61(0), Of61(1), {1, 40});
}

TEST(CloseWhileReadingTest, OnPlatform7TheOldFileGoesWhateverAnswers) {
  for (const auto& other : {Of7(), Of61(0)}) {
    for (const std::size_t frame : {0U, 1U, 2U, 10U}) {
      ReadingBench bench(Of7());
      bench.CloseAtFrame(frame, [&] { bench.Attach(other); });
      EXPECT_FALSE(bench.files.Exists(kLast)) << other.setup.part << " at frame " << frame;
    }
  }
}

}  // namespace
}  // namespace brelant
