// SPDX-License-Identifier: GPL-3.0-or-later
#include "line/line_model.h"

namespace brelant::benchmark {

namespace {

/// Start bit, eight data bits, stop bit.
constexpr LineTime kByte{1000.0 * 10 / 9600};
constexpr LineTime kPauses{5 + 8};
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

}  // namespace brelant::benchmark
