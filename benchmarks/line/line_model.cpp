// SPDX-License-Identifier: GPL-3.0-or-later
#include "line/line_model.h"

namespace brelant::benchmark {

namespace {

/// Start bit, eight data bits, stop bit.
constexpr LineTime kByte{1000.0 * 10 / 9600};
constexpr LineTime kPauses{5 + 8};
constexpr LineTime kLampPause{5};
constexpr int kRequestAndClearToSend = 2;
constexpr int kCommandAddressChecksum = 3;
constexpr int kStatus = 1;
constexpr int kReplyChecksum = 1;

}  // namespace

LineTime LeastReadTime(int bytes, int chunks) {
  const int overhead = kRequestAndClearToSend + kCommandAddressChecksum + kStatus + kReplyChecksum;
  return chunks * kPauses + (bytes + chunks * overhead) * kByte;
}

LineTime LeastWriteTime(int bytes, int chunks) {
  const int overhead = kRequestAndClearToSend + kCommandAddressChecksum + kStatus;
  return chunks * kPauses + (bytes + chunks * overhead) * kByte;
}

LineTime LeastKiBusTime(int shortFrames, int wideFrames, int bytes) {
  return LeastReadTime(bytes + wideFrames, shortFrames + wideFrames);
}

LineTime LeastModbusTime(int requests, int registers) {
  constexpr int kRequest = 8;
  constexpr int kReply = 5;
  constexpr double kSilentBytes = 3.5;
  // One silence before the request and one before the reply.
  return (requests * (kRequest + kReply + 2 * kSilentBytes) + 2 * registers) * kByte;
}

LineTime LampTime(int flashes) {
  return flashes * kLampPause;
}

}  // namespace brelant::benchmark
