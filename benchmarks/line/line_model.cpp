// SPDX-License-Identifier: GPL-3.0-or-later
#include "line/line_model.h"

namespace brelant::benchmark {

namespace {

/// Start bit, eight data bits, stop bit.
constexpr LineTime kByte{1000.0 * 10 / 9600};
constexpr LineTime kPauses{5 + 8};
/// The panel's, at each transfer of a unit that is reached by name.
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

LineTime LeastKiBusPollTime(int shortFrames, int wideFrames, int bytes) {
  const int frames = shortFrames + wideFrames;
  return LeastReadTime(bytes + wideFrames, frames) + frames * kLampPause;
}

LineTime LeastModbusPollTime(int requests, int registers) {
  constexpr int kRequest = 8;
  constexpr int kReply = 5;
  constexpr double kSilentBytes = 3.5;
  // One silence before the request and one before the reply.
  return (requests * (kRequest + kReply + 2 * kSilentBytes) + 2 * registers) * kByte + requests * kLampPause;
}

}  // namespace brelant::benchmark
