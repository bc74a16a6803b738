// SPDX-License-Identifier: GPL-3.0-or-later
#include <cstdint>
#include <cstdlib>
#include <deque>

#include "support/bus.h"

/// Any bytes as the other end of the line: each output of the master is answered with the next few of them. A
/// transfer ends with success or with its told text, and leaves nothing open and nothing outside a byte.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  if (size < 2) return 0;
  brelant::test::ScriptedBus bus;
  bus.KnowPart(data[0]);
  std::deque<std::uint8_t> answers(data + 2, data + size);
  bus.port.onOutput = [&](const brelant::test::Bytes&) {
    if (answers.empty()) return;
    const std::size_t count = answers.front() % 10;
    answers.pop_front();
    brelant::test::Bytes reply;
    while (reply.size() < count && !answers.empty()) {
      reply.push_back(answers.front());
      answers.pop_front();
    }
    bus.port.Arrive(reply, std::chrono::milliseconds(1));
  };
  const bool isEeprom = data[1] % 2 == 1;
  const bool write = data[1] % 4 >= 2;
  const bool done = write ? bus.com.WriteSensorMemory(0, 10, 8, isEeprom, true, false, true, true, true)
                          : bus.com.ReadSensorMemory(0, 10, 8, isEeprom, false);
  if (done != bus.session.LastError.empty() || bus.port.PortOpen() || !bus.session.BusBusyText.empty())
    std::abort();
  return 0;
}
