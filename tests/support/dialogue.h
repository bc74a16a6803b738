// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <deque>
#include <string>

#include "support/scripted_port.h"

namespace brelant::test {

/// The far end of the line as a script: what the program must send, byte for byte, and what comes back.
class Dialogue {
 public:
  explicit Dialogue(ScriptedPort& port);
  Dialogue(const Dialogue&) = delete;
  Dialogue& operator=(const Dialogue&) = delete;

  /// The bytes that must be sent next, in however many outputs.
  Dialogue& Expect(Bytes bytes);
  /// What arrives when they have been sent, and how long after.
  Dialogue& Reply(Bytes bytes, std::chrono::microseconds after = std::chrono::milliseconds(2));
  /// A whole exchange at its best, with the broadcast form unless told otherwise.
  Dialogue& Exchange(Bytes frame, Bytes reply, std::uint8_t requestToSend = 254);

  /// What was sent against the script, or is still missing; empty if it was followed to its end.
  std::string Trouble() const;

 private:
  struct Arrival {
    Bytes bytes;
    std::chrono::microseconds after;
  };
  struct Step {
    Bytes expected;
    std::vector<Arrival> replies;
  };

  void Hear(std::uint8_t byte);

  ScriptedPort& port_;
  std::deque<Step> steps_;
  std::size_t heard_ = 0;
  int done_ = 0;
  std::string trouble_;
};

}  // namespace brelant::test
