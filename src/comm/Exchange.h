// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <span>

#include "comm/SerialLink.h"
#include "comm/kibus.h"
#include "comm/traffic_log.h"
#include "shell/session.h"

namespace brelant::kibus {

/// Exchanges with one sensor, each with its retries and pauses (docs/protocol.md, The exchange and Retries).
/// Operations throw MachineError.
class Exchange {
 public:
  /// `stop` ends the retries of a read.
  Exchange(Session& session, SerialLink& link, std::uint8_t requestToSend, std::function<bool()> stop);

  struct ReadOrder {
    Frame request;
    int count;
    int retries;
    /// The log does not know all address forms.
    bool isLogged;
  };
  /// `store` gets the data of every reply whose status is right, one with a wrong checksum too.
  bool Read(const ReadOrder& order, ReadRecord& record,
            const std::function<void(std::span<const std::uint8_t>)>& store);

  /// `frame` is asked for when the sensor is clear to receive; nothing ends the write.
  bool Write(const std::function<std::optional<Frame>()>& frame);

 private:
  bool TakeReply(int count, ReadRecord& record,
                 const std::function<void(std::span<const std::uint8_t>)>& store);

  Session& session_;
  SerialLink& link_;
  std::uint8_t requestToSend_;
  std::function<bool()> stop_;
};

/// True if the first byte of the answer to a request to send came within the limit and is the right one.
bool TakeClearToReceive(SerialLink& link, int limit);
/// Takes the status byte that has come; true if it is an ACK.
bool TakeStatus(Session& session, SerialLink& link);

inline constexpr int kPauseAfterClear = 8;

}  // namespace brelant::kibus
