// SPDX-License-Identifier: GPL-3.0-or-later
#include "qt/QtSerialPort.h"

#include <QFileInfo>
#include <QSerialPortInfo>
#include <algorithm>
#include <tuple>

#include "platform/machine_error.h"

namespace brelant {

namespace {

/// USB adapters are what technicians have; a board's own ports come behind them. Within a kind by number.
auto Rank(const QSerialPortInfo& port) {
  const auto name = port.portName();
  const bool isUsb = port.hasVendorIdentifier() || name.startsWith("ttyUSB") || name.startsWith("ttyACM");
  return std::tuple(!isUsb, name.size(), name);
}

std::string About(const QSerialPortInfo& port) {
  QStringList parts{port.description(), port.manufacturer(), port.serialNumber()};
  parts.removeAll(QString());
  return parts.join(", ").toStdString();
}

}  // namespace

QtSerialPort::QtSerialPort() {
  QObject::connect(&port_, &QSerialPort::errorOccurred, [this](auto error) { NoteError(error); });
  closeLost_.setSingleShot(true);
  closeLost_.callOnTimeout([this] { port_.close(); });
}

void QtSerialPort::SetCommPort(const std::string& port) {
  commPort_ = QString::fromStdString(port).trimmed().toStdString();
}

std::vector<SerialPort::Description> QtSerialPort::AvailablePorts() const {
  auto ports = QSerialPortInfo::availablePorts();
  std::sort(ports.begin(), ports.end(), [](const auto& a, const auto& b) { return Rank(a) < Rank(b); });
  std::vector<Description> found;
  for (const auto& port : ports) found.push_back({port.systemLocation().toStdString(), About(port)});
  return found;
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

std::string QtSerialPort::Device() const {
  const bool isNumber = !commPort_.empty() && commPort_.find_first_not_of("0123456789") == std::string::npos;
  if (!isNumber) return commPort_;
  const auto ports = AvailablePorts();
  const auto number = QString::fromStdString(commPort_).toULongLong();
  if (number < 1 || number > ports.size()) throw MachineError("There is no serial port number " + commPort_);
  return ports[number - 1].device;
}

void QtSerialPort::Open() {
  if (open_) return;
  auto device = QString::fromStdString(Device());
  // One name for one device, so that a second opening by way of a link is seen as one.
  const auto resolved = QFileInfo(device).canonicalFilePath();
  port_.setPortName(resolved.isEmpty() ? device : resolved);
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
