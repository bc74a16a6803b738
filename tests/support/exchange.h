// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "support/bus.h"
#include "support/dialogue.h"
#include "support/pauses.h"

namespace brelant::test {

using std::chrono::microseconds;
using std::chrono::milliseconds;

/// A platform 5 sensor of generation 1 whose part number is known, and a line that a test speaks for.
class ExchangeTest : public testing::Test {
 protected:
  static constexpr std::uint8_t kPart = 109;

  ExchangeTest() { bus.KnowPart(kPart); }

  microseconds Elapsed() const { return bus.clock.Now() - start; }
  std::vector<ScriptedPort::Event> Outputs() const { return port.Of(ScriptedPort::Act::output); }
  /// Moments at which the request to send went out.
  std::vector<microseconds> RequestsToSend() const {
    std::vector<microseconds> moments;
    for (const auto& output : Outputs()) {
      if (output.bytes == Bytes{254}) moments.push_back(output.at);
    }
    return moments;
  }
  /// The far end says clear to receive to each request and nothing else.
  void ClearAndNoMore() {
    port.onOutput = [this](const Bytes& bytes) {
      if (bytes == Bytes{254}) port.Arrive({223}, milliseconds(1));
    };
  }
  /// How many events of the port come before the n-th request to send, the first being 1, and which.
  std::vector<std::string> StoryBeforeRequest(int n) const {
    std::vector<std::string> between;
    for (const auto& word : port.Story()) {
      if (word != "254") {
        between.push_back(word);
      } else if (--n == 0) {
        return between;
      } else {
        between.clear();
      }
    }
    return {"never"};
  }

  ScriptedBus bus;
  ScriptedPort& port = bus.port;
  Session& session = bus.session;
  SensorImage& image = bus.image;
  microseconds start = bus.clock.Now();
};

}  // namespace brelant::test
