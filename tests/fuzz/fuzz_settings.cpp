// SPDX-License-Identifier: GPL-3.0-or-later
#include <cstdint>
#include <cstdlib>
#include <vector>

#include "knowledge/snsFil.h"
#include "support/bus.h"

namespace {

/// A right checksum in the header, so that the fuzzer gets past it.
void Mend(std::vector<std::uint8_t>& file) {
  if (file.size() < 18) return;
  const auto length = file.size() - 17;
  unsigned sum = 0;
  for (std::size_t i = 17; i < file.size(); ++i) sum += file[i];
  file[1] = static_cast<std::uint8_t>(sum);
  file[2] = static_cast<std::uint8_t>(sum >> 8);
  file[3] = static_cast<std::uint8_t>(length);
  file[4] = static_cast<std::uint8_t>(length >> 8);
}

}  // namespace

/// Any bytes as a settings file: first byte the block asked for, second whether the checksum is mended. Read
/// it, then save into it.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  if (size < 2) return 0;
  std::vector<std::uint8_t> file(data + 2, data + size);
  if (data[1] % 2 == 1) Mend(file);
  brelant::test::ScriptedBus bus;
  bus.KnowPart(231);
  bus.files.Put("C:\\a.set", file);
  brelant::snsFil settings(bus.session, bus.image, bus.com, bus.machine);
  std::uint8_t block = data[0];
  const bool read = settings.ReadSetBlock("C:\\a.set", block, true, true);
  if (read != bus.session.LastError.empty()) std::abort();
  block = brelant::snsFil::first;
  if (settings.SaveSettings(block, "C:\\a.set", 1, false)) {
    bus.session.LastError.clear();
    if (bus.files.Get("C:\\a.set").size() <= 1501 &&
        !settings.ReadSetBlock("C:\\a.set", block, true, false)) {
      std::abort();
    }
  }
  return 0;
}
