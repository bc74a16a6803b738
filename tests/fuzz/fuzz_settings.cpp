// SPDX-License-Identifier: GPL-3.0-or-later
#include <algorithm>
#include <array>
#include <cstdint>
#include <cstdlib>
#include <vector>

#include "knowledge/snsFil.h"
#include "support/bus.h"

namespace {

using Bytes = std::vector<std::uint8_t>;

constexpr const char* kName = "C:\\a.set";

/// A right checksum in the header, so that the fuzzer gets past it.
void Mend(Bytes& file) {
  if (file.size() < 18) return;
  const auto length = file.size() - 17;
  unsigned sum = 0;
  for (std::size_t i = 17; i < file.size(); ++i) sum += file[i];
  file[1] = static_cast<std::uint8_t>(sum);
  file[2] = static_cast<std::uint8_t>(sum >> 8);
  file[3] = static_cast<std::uint8_t>(length);
  file[4] = static_cast<std::uint8_t>(length >> 8);
}

void Require(bool rule) {
  if (!rule) std::abort();
}

/// What a load is done into.
struct Target {
  std::uint8_t part;
  bool isRam;
  /// The block of docs/memory-maps.md that is its selection, unless that is the file's.
  std::int32_t selector;
};
constexpr std::array<Target, 4> kTargets{
    {{231, true, 6}, {88, false, 13}, {215, false, 12}, {85, false, 12}}};

/// A sensor whose memory has been read, and a disk with the file and the definition of part 231.
struct Bench {
  Bench(const Target& target, const Bytes& file) : isRam(target.isRam) {
    for (std::size_t i = 0; i < 512; ++i) bus.image.EepromImage[i] = static_cast<std::uint8_t>(7 * i);
    for (std::size_t i = 0; i < 256; ++i) bus.image.RamImage[i] = static_cast<std::uint8_t>(11 * i);
    bus.image.EepromValid.fill(true);
    bus.image.RamValid.fill(true);
    bus.KnowPart(target.part);
    bus.image.RamImage[226] = 0;
    // What makes a file one of the same model.
    const std::array<std::pair<std::size_t, std::uint8_t>, 7> model{
        {{164, target.part}, {165, 1}, {173, 0}, {90, 0}, {98, 127}, {158, 0}, {58, 7}}};
    for (const auto& [address, value] : model) bus.image.EepromImage[address] = value;
    bus.files.Put(kName, file);
    bus.files.Put(bus.session.AppDir + "\\DEF00231.PDT", Bytes(640));
  }

  std::vector<float> Memory() const {
    if (isRam) return {bus.image.RamImage.begin(), bus.image.RamImage.begin() + 256};
    return {bus.image.EepromImage.begin(), bus.image.EepromImage.begin() + 512};
  }

  bool isRam;
  brelant::test::ScriptedBus bus;
  brelant::Definitions definitions{bus.session, bus.image, bus.com, bus.machine};
  brelant::SnsInfo info{bus.session, bus.image, bus.com, definitions, bus.machine};
  brelant::Table table{bus.session, bus.image, bus.com, definitions, info};
  brelant::snsFil settings{bus.session, bus.image, bus.com, info, table, bus.machine};
};

/// Any block, into the images or only into the buffer.
void Read(const Target& target, const Bytes& file, std::uint8_t block) {
  Bench bench(target, file);
  const bool read = bench.settings.ReadSetBlock(kName, block, true, true);
  Require(read == bench.bus.session.LastError.empty());
}

void Save(const Target& target, const Bytes& file) {
  Bench bench(target, file);
  auto& files = bench.bus.files;
  std::uint8_t block = brelant::snsFil::first;
  if (!bench.settings.SaveSettings(block, kName, 1, false)) {
    Require(files.Get(kName) == file);
  } else if (files.Get(kName).size() <= 1500) {
    bench.bus.session.LastError.clear();
    Require(bench.settings.ReadSetBlock(kName, block, true, false));
  }
}

/// The addresses of the words of the gases, which a load writes back in the terms of the sensor.
bool IsGasWord(bool isRam, std::size_t address) {
  if (isRam) return (address >= 216 && address <= 217) || (address >= 222 && address <= 224);
  return (address >= 34 && address <= 39) || (address >= 41 && address <= 44) ||
         (address >= 58 && address <= 61);
}

void Load(const Target& target, const Bytes& file, bool ownSelection) {
  Bench bench(target, file);
  const auto before = bench.Memory();
  const bool loaded = bench.settings.LoadSettings(kName, ownSelection ? 0 : target.selector);
  const auto after = bench.Memory();
  if (!loaded) {
    Require(after == before && !bench.bus.session.LastError.empty());
    return;
  }
  const auto& image = bench.bus.image;
  for (std::size_t i = 0; i < after.size(); ++i) {
    const unsigned mark = image.ReadRequest[i];
    const unsigned merged = (static_cast<unsigned>(before[i]) & (255 - mark)) | (image.SetBuffer[i] & mark);
    const bool isByte = after[i] >= 0 && after[i] <= 255 && after[i] == static_cast<std::uint8_t>(after[i]);
    Require(IsGasWord(target.isRam, i) ? isByte : after[i] == static_cast<float>(merged));
  }
}

}  // namespace

/// Any bytes as a settings file. First byte: the block asked for. Second: bit 0 the checksum is mended, bits
/// 1 and 2 the sensor, bit 3 a load takes the selection of the file. Read it, save into it, load it.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  if (size < 2) return 0;
  Bytes file(data + 2, data + size);
  if ((data[1] & 1U) != 0) Mend(file);
  const auto& target = kTargets.at(data[1] >> 1 & 3U);
  Read(target, file, data[0]);
  Save(target, file);
  Load(target, file, (data[1] & 8U) != 0);
  return 0;
}
