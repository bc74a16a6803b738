// SPDX-License-Identifier: GPL-3.0-or-later
#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <map>
#include <vector>

#include "connection/BREFILE.h"
#include "connection/connection_error.h"
#include "support/bus.h"

namespace {

using Bytes = std::vector<std::uint8_t>;
using Registers = std::map<int, std::uint16_t>;

constexpr const char* kName = "C:\\a.set";
constexpr int kRamWindow = 4096;
constexpr int kEepromWindow = 8192;

/// A right header, so that the fuzzer gets past it.
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

/// What the unit holds that nobody sends a file to.
Registers Ram(const Registers& holding) {
  return {holding.lower_bound(kRamWindow), holding.lower_bound(kEepromWindow)};
}

/// True if all of the file has been sent.
bool Sent(brelant::BREFILE& settings) {
  try {
    settings.Send();
    return true;
  } catch (const brelant::ConnectionError&) {
    return false;
  }
}

void Check(const Bytes& file) {
  brelant::test::ScriptedBus bus;
  auto& unit = bus.modbus.units[1];
  for (int number = 0; number < 32; ++number) unit.input[number] = unit.holding[number] = 0;
  for (int number = kRamWindow; number < kEepromWindow + 4096; ++number) unit.holding[number] = 0;
  // Part 154, model 3.
  unit.holding[kRamWindow + 32] = 154;
  unit.holding[kEepromWindow + 2062] = 117 * 256 + 3;
  const auto names = brelant::NameTable::Standard();
  brelant::BRECOM sens({bus.session, bus.link, bus.files, bus.modbus, names, {}});
  sens.SelectModbus(1);
  sens.ConnectSensor("1", -1);
  bus.modbus.Forget();
  bus.files.Put(kName, file);
  brelant::BREFILE settings({sens, bus.files, bus.ui});
  const auto before = unit.holding;
  try {
    settings.Read(kName);
  } catch (const brelant::ConnectionError&) {
    Require(bus.modbus.Requests().empty() && !Sent(settings));
    return;
  }
  const bool isSent = Sent(settings);
  Require(Ram(unit.holding) == Ram(before));
  // This unit takes everything, so a file is sent whole or not at all, unless it has made it another model.
  const auto model = unit.holding[kEepromWindow + 2062] & 255;
  if (!isSent) Require(unit.holding == before);
  if (!isSent || model != 3) return;
  const auto after = unit.holding;
  Require(Sent(settings) && unit.holding == after);
}

}  // namespace

/// Any bytes as a settings file of a unit that is reached by name. Bit 0 of the first byte: the header is
/// mended. Read it, send it.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  if (size < 1) return 0;
  Bytes file(data + 1, data + size);
  if ((data[0] & 1U) != 0) Mend(file);
  Check(file);
  return 0;
}
