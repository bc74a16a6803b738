// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <functional>

#include "comm/SerialLink.h"
#include "comm/kibus.h"
#include "connection/Road.h"
#include "platform/files.h"
#include "shell/session.h"

namespace brelant {

/// The memories of a unit over KiBus: RAM below 256 in form R, RAM above in the wide form, EEPROM in form L
/// (docs/protocol.md, Address forms).
class KiBusRoad : public Road {
 public:
  /// `stop` ends an operation.
  KiBusRoad(Session& session, SerialLink& link, Files& files, std::function<bool()> stop);

  void Connect(const std::string& port, int id) override;
  void Disconnect() override;
  std::vector<std::uint16_t> Read(Space space, int first, int count) override;
  void Write(Space space, int first, std::span<const std::uint16_t> cells) override;
  int Most(Space space) const override;

 private:
  std::vector<std::uint8_t> ReadFrame(Space space, const kibus::Chunk& chunk);

  Session& session_;
  SerialLink& link_;
  Files& files_;
  std::function<bool()> stop_;
  float id_ = kBroadcastId;
};

}  // namespace brelant
