// SPDX-License-Identifier: GPL-3.0-or-later
#include "bench/faults.h"

#include <chrono>
#include <stdexcept>
#include <utility>

#include "bench/modbus_frame.h"
#include "bench/wire_frame.h"

namespace brelant::bench {
namespace {

using std::chrono::milliseconds;

// The longest that a host waits for each kind of reply.
milliseconds PatienceFor(ReplyKind kind) {
  switch (kind) {
    case ReplyKind::kClearToReceive:
      return milliseconds(100);
    case ReplyKind::kData:
      return milliseconds(200);
    case ReplyKind::kWritten:
    case ReplyKind::kModbus:
      return milliseconds(1000);
    case ReplyKind::kCommandDone:
      break;
  }
  return milliseconds(3000);
}

void RefuseModbus(SpoiltReply& reply) {
  constexpr std::uint8_t kDeviceFailure = 4;
  reply.bytes = ModbusException(reply.bytes, kDeviceFailure);
  reply.refused = true;
}

void FlagStatus(std::vector<std::uint8_t>& reply) {
  constexpr std::uint8_t kFlagged = 134;
  reply.front() = kFlagged;
  if (reply.size() > 1) reply.back() = Checksum(std::span(reply).first(reply.size() - 1));
}

}  // namespace

FaultMaker::FaultMaker(const FaultRates& rates, std::uint32_t seed) : rates_(rates), random_(seed) {
  for (const double rate : {rates.silence, rates.wrong_byte, rates.late, rates.short_reply, rates.noise,
                            rates.nak, rates.hang_up}) {
    if (!(rate >= 0 && rate <= 1)) throw std::invalid_argument("The rate of a fault lies between 0 and 1.");
  }
}

// A rate of 0 draws nothing, so that a fault that is off leaves the sequence of the others alone.
bool FaultMaker::Happens(double rate) {
  return rate > 0 && random_() / 4294967296.0 < rate;
}

std::uint32_t FaultMaker::Below(std::uint32_t limit) {
  return static_cast<std::uint32_t>(random_() / 4294967296.0 * limit);
}

void FaultMaker::AddNoise(SpoiltReply& reply) {
  std::vector<std::uint8_t> noise(1 + Below(4));
  for (std::uint8_t& byte : noise) byte = AnyByte();
  if (Below(2) == 0) {
    reply.bytes.insert(reply.bytes.begin(), noise.begin(), noise.end());
  } else {
    reply.bytes = std::move(noise);
    reply.lost = true;
  }
}

SpoiltReply FaultMaker::Spoil(std::vector<std::uint8_t> reply, ReplyKind kind) {
  SpoiltReply result{.bytes = std::move(reply)};
  if (Happens(rates_.hang_up)) return {.lost = true, .hung_up = true, .touched = true};
  if (Happens(rates_.silence)) return {.lost = true, .touched = true};
  if (kind != ReplyKind::kClearToReceive && Happens(rates_.nak)) {
    if (kind == ReplyKind::kModbus) {
      RefuseModbus(result);
    } else {
      FlagStatus(result.bytes);
    }
    result.touched = true;
  }
  if (Happens(rates_.wrong_byte)) {
    const auto place = Below(static_cast<std::uint32_t>(result.bytes.size()));
    result.bytes[place] = static_cast<std::uint8_t>(result.bytes[place] ^ (1 + Below(255)));
    result.touched = true;
  }
  if (Happens(rates_.short_reply)) {
    const auto kept = Below(static_cast<std::uint32_t>(result.bytes.size()));
    result.bytes.resize(kept);
    result.lost = kept == 0;
    result.touched = true;
  }
  if (Happens(rates_.noise)) {
    AddNoise(result);
    result.touched = true;
  }
  if (Happens(rates_.late)) {
    result.delay = PatienceFor(kind) + milliseconds(20 + Below(280));
    result.touched = true;
  }
  return result;
}

}  // namespace brelant::bench
