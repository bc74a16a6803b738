// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QModbusReply>
#include <QModbusRtuSerialClient>
#include <chrono>
#include <map>
#include <memory>
#include <optional>
#include <string>

#include "platform/clock.h"
#include "platform/modbus_master.h"
#include "platform/pump.h"

namespace brelant {

/// A Modbus RTU master on Qt SerialBus. Qt takes the first reply that has the unit and the function of a
/// request for its own. So that one that is late is never taken for another's, a request that was not
/// answered is followed by others of its kind but of another size, until one is answered by its own size: a
/// unit answers in order, so by then the late one is gone (docs/architecture.md, The symbolic road).
class QtModbusMaster : public ModbusMaster {
 public:
  QtModbusMaster(const Clock& clock, Pump& pump);

  void Open(const std::string& port, const Line& line) override;
  bool IsOpen() const override;
  void Close() override;
  std::vector<std::uint16_t> Read(int unit, Bank bank, int first, int count) override;
  void Write(int unit, int first, std::span<const std::uint16_t> values) override;

 private:
  using Client = std::shared_ptr<QModbusRtuSerialClient>;
  using Reply = std::unique_ptr<QModbusReply>;

  QModbusDataUnit Exchange(int unit, const QModbusDataUnit& request, bool isWrite);
  std::optional<QModbusDataUnit> Try(int unit, const QModbusDataUnit& request, bool isWrite);
  void Resynchronize(int unit);
  void Pass(const Client& client, std::chrono::microseconds until);
  void LeaveSilent(std::chrono::microseconds until);

  const Clock& clock_;
  Pump& pump_;
  /// Shared with the exchange that runs: a new one may be opened inside it.
  Client client_;
  QString device_;
  /// The request that each unit has not answered in time.
  std::map<int, QModbusDataUnit> lost_;
  /// So long the last request may still be answered; zero if it was.
  std::chrono::microseconds owedUntil_{0};
  /// Until then this connection may hear what its predecessor has asked for.
  std::chrono::microseconds silentUntil_{0};
  int baud_ = 0;
  int probe_ = 0;
};

}  // namespace brelant
