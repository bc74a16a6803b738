// SPDX-License-Identifier: GPL-3.0-or-later
#include "bench/line_clock.h"

#include <algorithm>
#include <utility>

namespace brelant::bench {
namespace {

// Longer than any pause that a host makes within an exchange.
constexpr LineTime kSilence = std::chrono::milliseconds(50);

}  // namespace

LineClock::Arrival LineClock::Hear(std::chrono::microseconds now) {
  const LineTime begin = std::max<LineTime>(now, heard_);
  const bool after_silence = begin - std::max(heard_, sent_) > kSilence;
  heard_ = begin + byte_time_;
  return {after_silence, heard_ >= busy_until_};
}

void LineClock::Send(const SpoiltReply& reply, LineTime pause) {
  hung_up_ = reply.hung_up;
  if (hung_up_) outgoing_.clear();
  sent_ = std::max(sent_, heard_ + pause + reply.delay);
  for (const std::uint8_t byte : reply.bytes) {
    sent_ += byte_time_;
    outgoing_.push_back({std::chrono::ceil<std::chrono::microseconds>(sent_), byte});
  }
  if (reply.delay > LineTime::zero()) busy_until_ = sent_;
}

std::vector<TimedByte> LineClock::TakeReply() {
  return std::exchange(outgoing_, {});
}

}  // namespace brelant::bench
