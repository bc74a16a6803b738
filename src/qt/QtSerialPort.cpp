// SPDX-License-Identifier: GPL-3.0-or-later
#include "qt/QtSerialPort.h"

#include "platform/machine_error.h"
#include "qt/serial_device.h"

namespace brelant {

QtSerialPort::QtSerialPort() {
  QObject::connect(&port_, &QSerialPort::errorOccurred, [this](auto error) { NoteError(error); });
  closeLost_.setSingleShot(true);
  closeLost_.callOnTimeout([this] { port_.close(); });
}

void QtSerialPort::SetPortOpen(bool open) {
  if (open) {
    Open();
  } else {
    Close();
  }
}

int QtSerialPort::InBufferCount() {
  RequireWorking();
  return static_cast<int>(port_.bytesAvailable());
}

std::vector<std::uint8_t> QtSerialPort::Input() {
  RequireWorking();
  const auto bytes = port_.readAll();
  return {bytes.begin(), bytes.end()};
}

void QtSerialPort::Output(std::span<const std::uint8_t> bytes) {
  RequireWorking();
  port_.write(reinterpret_cast<const char*>(bytes.data()), static_cast<qint64>(bytes.size()));
  port_.flush();
  RequireWorking();
}

void QtSerialPort::SetDTREnable(bool on) {
  RequireWorking();
  port_.setDataTerminalReady(on);
}

void QtSerialPort::Open() {
  if (open_) return;
  port_.setPortName(SerialDevice(commPort_));
  port_.setBaudRate(QSerialPort::Baud9600);
  port_.setDataBits(QSerialPort::Data8);
  port_.setParity(QSerialPort::NoParity);
  port_.setStopBits(QSerialPort::OneStop);
  port_.setFlowControl(QSerialPort::NoFlowControl);
  if (!port_.open(QIODevice::ReadWrite)) throw MachineError(port_.errorString().toStdString());
  // A pseudo-terminal keeps what arrived before the opening, which a serial port does not.
  port_.clear(QSerialPort::Input);
  failure_.clear();
  open_ = true;
}

void QtSerialPort::Close() {
  open_ = false;
  closeLost_.stop();
  port_.close();
}

/// Errors of modem lines and of waiting are none of ours, and those of opening are told by Open.
void QtSerialPort::NoteError(QSerialPort::SerialPortError error) {
  const bool isLoss = error == QSerialPort::ResourceError || error == QSerialPort::ReadError ||
                      error == QSerialPort::WriteError;
  if (!open_ || !isLoss || !failure_.empty()) return;
  failure_ = port_.errorString().toStdString();
  // The lost device is readable for ever, and left open it would keep the event loop spinning. It cannot be
  // closed here, inside its own notification.
  closeLost_.start();
}

void QtSerialPort::RequireWorking() const {
  if (!open_) throw MachineError("The port is not open");
  if (!failure_.empty()) throw MachineError(failure_);
}

}  // namespace brelant
