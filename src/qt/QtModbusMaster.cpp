// SPDX-License-Identifier: GPL-3.0-or-later
#include "qt/QtModbusMaster.h"

#include <QSerialPort>
#include <QVariant>
#include <array>
#include <chrono>

#include "platform/machine_error.h"
#include "qt/serial_device.h"

namespace brelant {

using std::chrono::milliseconds;

namespace {

constexpr milliseconds kTurnaround{400};
constexpr milliseconds kQuiet{500};
constexpr int kBitsOfByte = 11;
/// Unit, function, first, count and checksum of a request, and what a reply has besides its registers.
constexpr int kFrameBytes = 16;
constexpr int kProbes = 3;
/// So many differ in size before one comes again.
constexpr int kProbeSizes = 16;

QModbusDataUnit::RegisterType TypeOf(ModbusMaster::Bank bank) {
  return bank == ModbusMaster::Bank::input ? QModbusDataUnit::InputRegisters
                                           : QModbusDataUnit::HoldingRegisters;
}

QSerialPort::Parity ParityOf(ModbusMaster::Parity parity) {
  switch (parity) {
    case ModbusMaster::Parity::even:
      return QSerialPort::EvenParity;
    case ModbusMaster::Parity::odd:
      return QSerialPort::OddParity;
    default:
      return QSerialPort::NoParity;
  }
}

std::string Refusal(int code) {
  static constexpr std::array<const char*, 5> kMeanings{"", "illegal function", "illegal data address",
                                                        "illegal data value", "device failure"};
  const auto index = static_cast<std::size_t>(code);
  const std::string meaning = index < kMeanings.size() ? kMeanings.at(index) : "";
  return "The unit refuses: Modbus exception " + std::to_string(code) +
         (meaning.empty() ? "." : ", " + meaning + ".");
}

bool IsAnswerTo(const QModbusDataUnit& request, const QModbusDataUnit& answer) {
  return answer.startAddress() == request.startAddress() && answer.valueCount() == request.valueCount();
}

bool IsLoss(QModbusDevice::Error error) {
  return error == QModbusDevice::ConnectionError || error == QModbusDevice::ReadError ||
         error == QModbusDevice::WriteError;
}

/// The lost device is readable for ever, and left open it would keep the event loop spinning. It cannot be
/// closed here, inside its own notification.
void CloseWhenLost(QModbusRtuSerialClient& client) {
  QObject::connect(
      &client, &QModbusDevice::errorOccurred, &client,
      [&client](auto error) {
        if (IsLoss(error)) client.disconnectDevice();
      },
      Qt::QueuedConnection);
}

}  // namespace

QtModbusMaster::QtModbusMaster(const Clock& clock, Pump& pump) : clock_(clock), pump_(pump) {}

void QtModbusMaster::Open(const std::string& port, const Line& line) {
  Close();
  client_ = std::make_shared<QModbusRtuSerialClient>();
  CloseWhenLost(*client_);
  QString device;
  try {
    device = SerialDevice(port);
  } catch (const MachineError& error) {
    throw Failure(Failure::Kind::port, error.what());
  }
  if (device != device_) owedUntil_ = {};
  silentUntil_ = owedUntil_;
  device_ = device;
  client_->setConnectionParameter(QModbusDevice::SerialPortNameParameter, device);
  client_->setConnectionParameter(QModbusDevice::SerialBaudRateParameter, line.baud);
  client_->setConnectionParameter(QModbusDevice::SerialParityParameter, ParityOf(line.parity));
  client_->setConnectionParameter(QModbusDevice::SerialDataBitsParameter, QSerialPort::Data8);
  client_->setConnectionParameter(QModbusDevice::SerialStopBitsParameter, line.stopBits);
  client_->setNumberOfRetries(0);
  baud_ = line.baud;
  lost_.clear();
  if (!client_->connectDevice()) throw Failure(Failure::Kind::port, client_->errorString().toStdString());
}

bool QtModbusMaster::IsOpen() const {
  return client_ && client_->state() == QModbusDevice::ConnectedState;
}

/// The client stays: this may happen inside one of its exchanges, which then ends.
void QtModbusMaster::Close() {
  if (client_) client_->disconnectDevice();
}

std::vector<std::uint16_t> QtModbusMaster::Read(int unit, Bank bank, int first, int count) {
  const QModbusDataUnit request(TypeOf(bank), first, static_cast<quint16>(count));
  const auto values = Exchange(unit, request, false).values();
  return {values.begin(), values.end()};
}

void QtModbusMaster::Write(int unit, int first, std::span<const std::uint16_t> values) {
  const QModbusDataUnit request(QModbusDataUnit::HoldingRegisters, first,
                                QList<quint16>(values.begin(), values.end()));
  Exchange(unit, request, true);
}

QModbusDataUnit QtModbusMaster::Exchange(int unit, const QModbusDataUnit& request, bool isWrite) {
  if (!IsOpen()) throw Failure(Failure::Kind::port, "The port is not open");
  LeaveSilent(silentUntil_);
  if (lost_.contains(unit)) Resynchronize(unit);
  const auto answer = Try(unit, request, isWrite);
  if (!answer) {
    lost_.insert_or_assign(unit, request);
    throw Failure(Failure::Kind::silence, "The unit does not answer.");
  }
  if (!IsAnswerTo(request, *answer) || (isWrite && answer->values() != request.values())) {
    lost_.insert_or_assign(unit, request);
    throw Failure(Failure::Kind::broken, "The unit answers something else.");
  }
  return *answer;
}

/// Nothing: no whole answer came in time.
std::optional<QModbusDataUnit> QtModbusMaster::Try(int unit, const QModbusDataUnit& request, bool isWrite) {
  const int bytes = kFrameBytes + 2 * static_cast<int>(request.valueCount());
  const milliseconds timeout = kTurnaround + milliseconds(bytes * kBitsOfByte * 1000 / baud_);
  const auto client = client_;
  client->setTimeout(static_cast<int>(timeout.count()));
  const Reply reply(isWrite ? client->sendWriteRequest(request, unit)
                            : client->sendReadRequest(request, unit));
  if (!reply) throw Failure(Failure::Kind::port, client->errorString().toStdString());
  owedUntil_ = clock_.Now() + timeout + kQuiet;
  while (!reply->isFinished()) Pass(client, clock_.Now() + kQuiet);
  if (reply->error() == QModbusDevice::TimeoutError) return {};
  owedUntil_ = {};
  switch (reply->error()) {
    case QModbusDevice::NoError:
      return reply->result();
    case QModbusDevice::ProtocolError:
      // Not by exceptionCode(): it loads what is no value of its enumeration.
      throw Failure(Failure::Kind::exception, Refusal(static_cast<quint8>(reply->rawResult().data().at(0))));
    case QModbusDevice::InvalidResponseError:
    case QModbusDevice::UnknownError:
      throw Failure(Failure::Kind::broken, "The unit answers something that is no answer.");
    default:
      throw Failure(Failure::Kind::port, reply->errorString().toStdString());
  }
}

/// One pass of the pump. Throws if the connection has ended in it.
void QtModbusMaster::Pass(const Client& client, std::chrono::microseconds until) {
  pump_.Wait(until);
  if (client_ == client && IsOpen()) return;
  if (client_ == client && IsLoss(client->error())) {
    throw Failure(Failure::Kind::port, client->errorString().toStdString());
  }
  throw Failure(Failure::Kind::cancelled, "The connection was closed.");
}

/// What comes while nothing is asked is thrown away.
void QtModbusMaster::LeaveSilent(std::chrono::microseconds until) {
  const auto client = client_;
  while (clock_.Now() < until) Pass(client, until);
}

void QtModbusMaster::Resynchronize(int unit) {
  const auto lost = lost_.at(unit);
  for (int i = 0; i < kProbes; ++i) {
    probe_ = probe_ % kProbeSizes + 1;
    const QModbusDataUnit probe(lost.registerType(), lost.startAddress(),
                                static_cast<quint16>(lost.valueCount() + probe_));
    try {
      const auto answer = Try(unit, probe, false);
      if (!answer || !IsAnswerTo(probe, *answer)) continue;
    } catch (const Failure& failure) {
      if (failure.kind == Failure::Kind::broken) continue;
      if (failure.kind != Failure::Kind::exception) throw;
      // Whose exception it is cannot be told.
      LeaveSilent(clock_.Now() + kQuiet);
    }
    lost_.erase(unit);
    return;
  }
  throw Failure(Failure::Kind::silence, "The unit does not answer.");
}

}  // namespace brelant
