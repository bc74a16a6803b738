// SPDX-License-Identifier: GPL-3.0-or-later
#include "bench/modbus_frame.h"

namespace brelant::bench {
namespace {

constexpr std::size_t kCrcSize = 2;
constexpr std::uint8_t kExceptionFlag = 128;

unsigned Crc(ConstBytes bytes) {
  unsigned crc = 0xFFFF;
  for (const std::uint8_t byte : bytes) {
    crc ^= byte;
    for (int bit = 0; bit < 8; ++bit) crc = (crc & 1) != 0 ? crc >> 1 ^ 0xA001 : crc >> 1;
  }
  return crc;
}

}  // namespace

bool ModbusCrcHolds(ConstBytes frame) {
  if (frame.size() <= kCrcSize) return false;
  const ConstBytes end = frame.last(kCrcSize);
  return Crc(frame.first(frame.size() - kCrcSize)) == end[0] + 256U * end[1];
}

bool ModbusRequestIsWhole(ConstBytes begun) {
  constexpr std::size_t kShortest = 4;
  constexpr std::size_t kFixed = 8;
  constexpr std::size_t kWriteHead = 7;
  if (begun.size() < kShortest) return false;
  const int function = begun[1];
  if (function >= 1 && function <= 6) return begun.size() >= kFixed;
  if (function != 15 && function != 16) return ModbusCrcHolds(begun);
  return begun.size() >= kWriteHead && begun.size() >= kWriteHead + begun[kWriteHead - 1] + kCrcSize;
}

std::vector<std::uint8_t> ModbusException(ConstBytes frame, std::uint8_t code) {
  std::vector<std::uint8_t> exception{frame[0], static_cast<std::uint8_t>(frame[1] | kExceptionFlag), code};
  const unsigned crc = Crc(exception);
  exception.push_back(static_cast<std::uint8_t>(crc & 255));
  exception.push_back(static_cast<std::uint8_t>(crc >> 8));
  return exception;
}

}  // namespace brelant::bench
