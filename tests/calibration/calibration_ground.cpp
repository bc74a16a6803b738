// SPDX-License-Identifier: GPL-3.0-or-later
#include "calibration/calibration_ground.h"

#include <algorithm>

#include "bench/wire_frame.h"
#include "calibration/sensor_definition.h"
#include "shell/Common.h"

namespace brelant::test {

namespace {

using testing::IsEmpty;

bench::AddressForm FormOf(const bench::VirtualSensor& sensor) {
  return sensor.Platform() == 7 ? bench::AddressForm::kLong : bench::AddressForm::kWords;
}

std::string CommandName(bench::Operation operation) {
  switch (operation) {
    case bench::Operation::kSettingsToRam:
      return "save to RAM";
    case bench::Operation::kSettingsToEeprom:
      return "save to EEPROM";
    case bench::Operation::kLock:
      return "lock";
    case bench::Operation::kUnlock:
      return "unlock";
    default:
      return "other command";
  }
}

std::string KindName(bench::FrameKind kind) {
  switch (kind) {
    case bench::FrameKind::kReadRam:
      return "read R";
    case bench::FrameKind::kWriteRam:
      return "write R";
    case bench::FrameKind::kReadEeprom:
      return "read E";
    case bench::FrameKind::kWriteEeprom:
      return "write E";
    case bench::FrameKind::kCommand:
      break;
  }
  return "unknown ";
}

std::string ByteChange(char memory, std::size_t address, float before, float after) {
  return memory + NumberText(static_cast<float>(address)) + ": " + NumberText(after) + ", was " +
         NumberText(before);
}

/// The same procedure on a sound line.
std::unique_ptr<CalibrationGround> RunWhole(const Trial& trial) {
  auto ground = trial.make();
  EXPECT_TRUE(trial.run(*ground));
  EXPECT_EQ(ground->session.LastError, "");
  EXPECT_FALSE(ground->port.PortOpen());
  EXPECT_GT(ground->Frames(), ground->ReadFrames());
  return ground;
}

}  // namespace

CalibrationGround::CalibrationGround(const bench::SensorSetup& setup)
    : SensorBus(setup), hear_(std::exchange(port.onOutput, {})) {
  port.onOutput = [this](const Bytes& bytes) { Hear(bytes); };
  KnowPart(static_cast<std::uint8_t>(setup.part));
  if (sensor.Platform() == 5) {
    const auto number = std::to_string(setup.part);
    files.Put(session.AppDir + "DEF" + std::string(5 - number.size(), '0') + number + ".PDT",
              DefinitionOf(setup.part));
  }
}

void CalibrationGround::ReadWhole() {
  const auto take = [](auto& copy, auto& read, auto& valid, std::span<const std::uint8_t> memory) {
    std::copy(memory.begin(), memory.end(), copy.begin());
    std::copy(memory.begin(), memory.end(), read.begin());
    std::fill_n(valid.begin(), memory.size(), true);
  };
  take(image.RamImage, image.RamRead, image.RamValid, sensor.Ram());
  if (sensor.Platform() == 5) {
    EXPECT_TRUE(definitions.LoadDefinition()) << session.LastError;
  } else {
    take(image.EepromImage, image.EepromRead, image.EepromValid, sensor.Eeprom());
  }
}

void CalibrationGround::SetRam(std::size_t address, int byte) {
  sensor.Ram()[address] = static_cast<std::uint8_t>(byte);
  if (image.RamValid.at(address))
    image.RamImage.at(address) = image.RamRead.at(address) = static_cast<float>(byte);
}

void CalibrationGround::SetRamWord(std::size_t address, int word) {
  SetRam(address, word / 256);
  SetRam(address + 1, word % 256);
}

void CalibrationGround::SetEeprom(std::size_t address, int byte) {
  sensor.Eeprom()[address] = static_cast<std::uint8_t>(byte);
  if (!image.EepromValid.at(address)) return;
  image.EepromImage.at(address) = image.EepromRead.at(address) = static_cast<float>(byte);
}

void CalibrationGround::SetEepromWord(std::size_t address, int word) {
  SetEeprom(address, word / 256);
  SetEeprom(address + 1, word % 256);
}

void CalibrationGround::SetEvenTable(std::size_t address, int last, int step) {
  for (int i = 0; i < 17; ++i) {
    const int value = last + (15 - i) * step;
    if (sensor.Platform() == 5) {
      image.SetEepromWord(static_cast<int>(address) + 2 * i, static_cast<float>(value));
    } else {
      SetEepromWord(address + 2 * static_cast<std::size_t>(i), value);
    }
  }
}

void CalibrationGround::Cancel() {
  session.CancelPressed = true;
  session.LastError = kCancelled;
}

void CalibrationGround::Hear(const Bytes& bytes) {
  if (deafAfter_ >= 0 && Frames() >= deafAfter_) return;
  const int before = Frames();
  hear_(bytes);
  if (Frames() == before) return;
  const auto acts = acts_;
  for (const auto& [n, act] : acts) {
    if (n == Frames()) act();
  }
}

std::vector<std::string> CalibrationGround::Story() const {
  std::vector<std::string> story;
  std::string kind;
  std::size_t first = 0;
  std::size_t end = 0;
  for (const auto& bytes : port.sensor.Frames()) {
    const auto frame = bench::ParseFrame(bytes, FormOf(port.sensor));
    if (const auto operation = bench::CommandOf(bytes, port.sensor.Generation())) {
      story.push_back(CommandName(*operation));
      kind.clear();
      continue;
    }
    const auto name = KindName(frame.kind);
    if (name == kind && frame.address == end) {
      story.pop_back();
    } else {
      kind = name;
      first = frame.address;
    }
    end = frame.address + frame.count;
    story.push_back(kind + std::to_string(first) + "+" + std::to_string(end - first));
  }
  return story;
}

int CalibrationGround::ReadFrames() const {
  int frames = 0;
  for (const auto& bytes : port.sensor.Frames()) {
    const auto kind = bench::ParseFrame(bytes, FormOf(port.sensor)).kind;
    const bool isRead = kind == bench::FrameKind::kReadRam || kind == bench::FrameKind::kReadEeprom;
    if (!isRead || bench::CommandOf(bytes, port.sensor.Generation())) break;
    ++frames;
  }
  return frames;
}

std::vector<std::string> CalibrationGround::Changes(const Bytes& before) const {
  const auto after = port.sensor.Image();
  constexpr std::size_t kRam = 256;
  std::vector<std::string> changes;
  for (std::size_t i = 0; i < after.size(); ++i) {
    if (after[i] == before.at(i)) continue;
    const bool isRam = i < kRam;
    changes.push_back(ByteChange(isRam ? 'R' : 'E', isRam ? i : i - kRam, before[i], after[i]));
  }
  return changes;
}

std::vector<std::string> CalibrationGround::ImageChanges() const {
  std::vector<std::string> changes;
  const auto compare = [&](char name, const auto& copy, const auto& valid,
                           std::span<const std::uint8_t> memory) {
    for (std::size_t i = 0; i < memory.size(); ++i) {
      const float expected = valid[i] ? memory[i] : 0.0F;
      if (copy[i] != expected) changes.push_back(ByteChange(name, i, expected, copy[i]));
    }
  };
  const auto whole = port.sensor.Image();
  const std::span<const std::uint8_t> memory(whole);
  compare('R', image.RamImage, image.RamValid, memory.first(256));
  // On platform 5 the image's EEPROM is where the tables of the definition are.
  if (port.sensor.Platform() != 5) compare('E', image.EepromImage, image.EepromValid, memory.subspan(256));
  return changes;
}

std::vector<std::string> WordChange(char memory, std::size_t address, int before, int after) {
  std::vector<std::string> changes;
  const auto add = [&](std::size_t at, int old, int now) {
    if (old != now)
      changes.push_back(ByteChange(memory, at, static_cast<float>(old), static_cast<float>(now)));
  };
  add(address, before / 256, after / 256);
  add(address + 1, before % 256, after % 256);
  return changes;
}

Bytes TableBytes(const GasTable& table) {
  Bytes bytes;
  for (const float entry : table) {
    // A negative word is two's complement.
    const int word = static_cast<int>(entry) + (entry < 0 ? 65536 : 0);
    bytes.push_back(static_cast<std::uint8_t>(word / 256));
    bytes.push_back(static_cast<std::uint8_t>(word % 256));
  }
  return bytes;
}

Bytes Slice(std::span<const std::uint8_t> memory, std::size_t address, std::size_t count) {
  const auto part = memory.subspan(address, count);
  return {part.begin(), part.end()};
}

void ExpectEndsWhereTheSensorFallsSilent(const Trial& trial) {
  const auto whole = RunWhole(trial);
  const auto good = whole->sensor.Frames();
  const int reads = whole->ReadFrames();
  for (int heard = 0; heard < whole->Frames(); ++heard) {
    SCOPED_TRACE("silent after " + std::to_string(heard) + " of " + std::to_string(whole->Frames()));
    auto ground = trial.make();
    const auto before = ground->sensor.Image();
    ground->SilenceAfter(heard);
    const bool done = trial.run(*ground);
    const bool counts = heard < whole->Frames() - trial.idleFrames;
    EXPECT_EQ(done, !counts || (trial.trueAfterFailedWrite && heard >= reads));
    EXPECT_NE(ground->session.LastError, "");
    EXPECT_NE(ground->session.LastError, kCancelled);
    EXPECT_FALSE(ground->port.PortOpen());
    const auto frames = ground->sensor.Frames();
    ASSERT_EQ(ground->Frames(), heard);
    EXPECT_TRUE(std::equal(frames.begin(), frames.end(), good.begin()));
    if (heard < reads) {
      EXPECT_EQ(ground->session.LastError, "Can't read from sensor");
      EXPECT_THAT(ground->ImageChanges(), IsEmpty());
      EXPECT_THAT(ground->Changes(before), IsEmpty());
    }
  }
}

void ExpectEndsWhereTheUserCancels(const Trial& trial) {
  const auto whole = RunWhole(trial);
  const int total = whole->Frames();
  const int reads = whole->ReadFrames();
  // Every pass of a short procedure; a search or a long write has hundreds that are alike.
  constexpr int kEveryOne = 150;
  constexpr int kStride = 7;
  bool finished = false;
  for (int pass = 1; !finished; pass += pass < kEveryOne ? 1 : kStride) {
    SCOPED_TRACE("cancelled in pass " + std::to_string(pass));
    auto ground = trial.make();
    const auto before = ground->sensor.Image();
    int framesThen = 0;
    finished = true;
    ground->pump.InPass(pass, [&] {
      finished = false;
      framesThen = ground->Frames();
      ground->Cancel();
    });
    const bool done = trial.run(*ground);
    EXPECT_FALSE(ground->port.PortOpen());
    if (finished) {
      EXPECT_TRUE(done);
      break;
    }
    EXPECT_EQ(ground->session.LastError, kCancelled);
    // The exchange that runs is ended, none is begun.
    EXPECT_LE(ground->Frames(), framesThen + 1);
    EXPECT_TRUE(!done || trial.trueAfterFailedWrite || framesThen >= total - trial.idleFrames - 1);
    if (framesThen < reads) {
      EXPECT_FALSE(done);
      EXPECT_THAT(ground->ImageChanges(), IsEmpty());
      EXPECT_THAT(ground->Changes(before), IsEmpty());
    }
  }
}

void ExpectCancelInASearchLeavesAllAsItWas(const Trial& trial) {
  const int reads = RunWhole(trial)->ReadFrames();
  int cancelled = 0;
  for (int step = 1; step < 100'000; step += 29) {
    SCOPED_TRACE("cancelled at step " + std::to_string(step));
    auto ground = trial.make();
    const auto before = ground->sensor.Image();
    int steps = 0;
    ground->pump.OnPass([&] {
      const bool searches = ground->Frames() == reads && ground->session.BusBusyText.empty();
      if (searches && ++steps == step) ground->Cancel();
      return false;
    });
    const bool done = trial.run(*ground);
    if (steps < step) break;
    ++cancelled;
    EXPECT_FALSE(done);
    EXPECT_EQ(ground->session.LastError, kCancelled);
    EXPECT_EQ(ground->Frames(), reads);
    EXPECT_FALSE(ground->port.PortOpen());
    EXPECT_THAT(ground->ImageChanges(), IsEmpty());
    EXPECT_THAT(ground->Changes(before), IsEmpty());
  }
  EXPECT_GT(cancelled, 3);
}

}  // namespace brelant::test
