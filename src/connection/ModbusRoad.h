// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <functional>
#include <utility>

#include "connection/Road.h"
#include "platform/modbus_master.h"

namespace brelant {

/// What an integrator may have to set of a Modbus line (docs/names.md).
struct ModbusSettings {
  ModbusMaster::Line line;
  /// The address of the unit where the only one is asked for.
  int onlyUnit = 1;
};

/// The registers of a unit over Modbus RTU.
class ModbusRoad : public Road {
 public:
  /// `stop` ends the retries of an operation.
  ModbusRoad(ModbusMaster& master, const ModbusSettings& settings, std::function<bool()> stop)
      : master_(master), settings_(settings), stop_(std::move(stop)) {}

  void Connect(const std::string& port, int id) override;
  void Disconnect() override { master_.Close(); }
  std::vector<std::uint16_t> Read(Space space, int first, int count) override;
  void Write(Space space, int first, std::span<const std::uint16_t> cells) override;
  int Most(Space space) const override;

 private:
  ModbusMaster& master_;
  ModbusSettings settings_;
  std::function<bool()> stop_;
  int unit_ = 0;
};

}  // namespace brelant
