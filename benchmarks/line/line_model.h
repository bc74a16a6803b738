// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <chrono>

namespace brelant::benchmark {

/// What a transfer must take at least: its bytes at 9600 bit/s and the pauses of its exchanges
/// (docs/protocol.md). Computed here anew, not with the code that is measured.
using LineTime = std::chrono::duration<double, std::milli>;

LineTime LeastReadTime(int bytes, int chunks);
LineTime LeastWriteTime(int bytes, int chunks);
/// Reads over KiBus from a unit that is reached by name: frames with an address of one byte and of two, and
/// the bytes that all of them bring.
LineTime LeastKiBusTime(int shortFrames, int wideFrames, int bytes);
/// The same over Modbus: requests, and the registers that all of them bring.
LineTime LeastModbusTime(int requests, int registers);
/// The pauses of the panel's lamp.
LineTime LampTime(int flashes);

}  // namespace brelant::benchmark
