// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QSerialPort>
#include <QTimer>
#include <string>

#include "platform/serial_port.h"
#include "qt/serial_device.h"

namespace brelant {

/// The serial port on Qt. Bytes arrive inside pump passes. A device that vanishes makes the next operation
/// throw, and every one after it until the port is closed.
class QtSerialPort : public SerialPort {
 public:
  QtSerialPort();

  void SetCommPort(const std::string& port) override { commPort_ = port; }
  std::vector<Description> AvailablePorts() const override { return SerialPorts(); }
  bool PortOpen() const override { return open_; }
  void SetPortOpen(bool open) override;
  int InBufferCount() override;
  std::vector<std::uint8_t> Input() override;
  void Output(std::span<const std::uint8_t> bytes) override;
  void SetDTREnable(bool on) override;

 private:
  void Open();
  void Close();
  void NoteError(QSerialPort::SerialPortError error);
  void RequireWorking() const;

  QSerialPort port_;
  QTimer closeLost_;
  std::string commPort_;
  bool open_ = false;
  /// Why the open port does not work any more, empty while it does.
  std::string failure_;
};

}  // namespace brelant
