// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "bench/memory.h"

namespace brelant::bench {

/// The longest frame of Modbus RTU.
inline constexpr std::size_t kModbusFrameLimit = 256;

/// True if the last two bytes are the CRC of those before them, low byte first.
bool ModbusCrcHolds(ConstBytes frame);

/// True if a request has its last byte. Functions of another kind than reading and writing bits and registers
/// do not tell their length; such a request ends where its CRC holds.
bool ModbusRequestIsWhole(ConstBytes begun);

/// The exception to a request, or in place of its reply, with its CRC.
std::vector<std::uint8_t> ModbusException(ConstBytes frame, std::uint8_t code);

}  // namespace brelant::bench
