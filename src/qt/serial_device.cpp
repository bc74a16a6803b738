// SPDX-License-Identifier: GPL-3.0-or-later
#include "qt/serial_device.h"

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

std::string NamedDevice(const std::string& port) {
  const bool isNumber = !port.empty() && port.find_first_not_of("0123456789") == std::string::npos;
  if (!isNumber) return port;
  const auto ports = SerialPorts();
  const auto number = QString::fromStdString(port).toULongLong();
  if (number < 1 || number > ports.size()) throw MachineError("There is no serial port number " + port);
  return ports[number - 1].device;
}

}  // namespace

std::vector<SerialPort::Description> SerialPorts() {
  auto ports = QSerialPortInfo::availablePorts();
  std::sort(ports.begin(), ports.end(), [](const auto& a, const auto& b) { return Rank(a) < Rank(b); });
  std::vector<SerialPort::Description> found;
  for (const auto& port : ports) found.push_back({port.systemLocation().toStdString(), About(port)});
  return found;
}

QString SerialDevice(const std::string& port) {
  const auto trimmed = QString::fromStdString(port).trimmed().toStdString();
  const auto device = QString::fromStdString(NamedDevice(trimmed));
  const auto resolved = QFileInfo(device).canonicalFilePath();
  return resolved.isEmpty() ? device : resolved;
}

}  // namespace brelant
