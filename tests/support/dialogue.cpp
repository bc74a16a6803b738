// SPDX-License-Identifier: GPL-3.0-or-later
#include "support/dialogue.h"

namespace brelant::test {

Dialogue::Dialogue(ScriptedPort& port) : port_(port) {
  port_.onOutput = [this](const Bytes& bytes) {
    for (const auto byte : bytes) Hear(byte);
  };
}

Dialogue& Dialogue::Expect(Bytes bytes) {
  steps_.push_back({std::move(bytes), {}});
  return *this;
}

Dialogue& Dialogue::Reply(Bytes bytes, std::chrono::microseconds after) {
  steps_.back().replies.push_back({std::move(bytes), after});
  return *this;
}

Dialogue& Dialogue::Exchange(Bytes frame, Bytes reply, std::uint8_t requestToSend) {
  Expect({requestToSend}).Reply({223});
  return Expect(std::move(frame)).Reply(std::move(reply));
}

std::string Dialogue::Trouble() const {
  if (!trouble_.empty() || steps_.empty()) return trouble_;
  return "step " + std::to_string(done_ + 1) + " did not come: " + std::to_string(steps_.size()) +
         " are left";
}

void Dialogue::Hear(std::uint8_t byte) {
  if (!trouble_.empty()) return;
  const auto where = "in step " + std::to_string(done_ + 1) + " at byte " + std::to_string(heard_ + 1) +
                     " came " + std::to_string(byte);
  if (steps_.empty()) {
    trouble_ = where + ", nothing was expected";
    return;
  }
  const auto& step = steps_.front();
  if (step.expected[heard_] != byte) {
    trouble_ = where + ", expected " + std::to_string(step.expected[heard_]);
    return;
  }
  if (++heard_ < step.expected.size()) return;
  for (const auto& reply : step.replies) port_.Arrive(reply.bytes, reply.after);
  steps_.pop_front();
  heard_ = 0;
  ++done_;
}

}  // namespace brelant::test
