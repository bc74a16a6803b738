// SPDX-License-Identifier: GPL-3.0-or-later
#include "bench/modbus_unit.h"

#include <array>
#include <optional>
#include <stdexcept>
#include <utility>
#include <vector>

#include <fcntl.h>
#include <modbus/modbus.h>
#include <unistd.h>

#include "bench/descriptor.h"
#include "bench/modbus_frame.h"
#include "bench/modbus_registers.h"

namespace brelant::bench {
namespace {

constexpr int kReadHolding = MODBUS_FC_READ_HOLDING_REGISTERS;
constexpr int kReadInput = MODBUS_FC_READ_INPUT_REGISTERS;
constexpr int kWriteOne = MODBUS_FC_WRITE_SINGLE_REGISTER;
constexpr int kWriteMany = MODBUS_FC_WRITE_MULTIPLE_REGISTERS;

using Request = std::vector<std::uint8_t>;
using Words = std::vector<std::uint16_t>;

struct ContextEnd {
  // No modbus_close: the pipe has an owner.
  void operator()(modbus_t* context) const { modbus_free(context); }
};

/// libmodbus, which makes the replies; they come out of a pipe, as something else sends them.
class ReplyMaker {
 public:
  ReplyMaker() : context_(modbus_new_rtu("none", 9600, 'N', 8, 1)) {
    if (!context_) throw std::runtime_error(modbus_strerror(errno));
    std::array<int, 2> ends{};
    Checked(pipe2(ends.data(), O_CLOEXEC), "pipe2");
    reading_ = Descriptor(ends[0]);
    writing_ = Descriptor(ends[1]);
    modbus_set_socket(context_.get(), writing_.Get());
  }

  /// `words` are the registers from the request's first one on; a write request changes them.
  Request Reply(const Request& request, Words& words) {
    modbus_mapping_t mapping{};
    const auto count = static_cast<int>(words.size());
    const int first = Word(request, 2);
    if (request[1] == kReadInput) {
      mapping.nb_input_registers = count;
      mapping.start_input_registers = first;
      mapping.tab_input_registers = words.data();
    } else {
      mapping.nb_registers = count;
      mapping.start_registers = first;
      mapping.tab_registers = words.data();
    }
    return Sent(modbus_reply(context_.get(), request.data(), static_cast<int>(request.size()), &mapping));
  }

  Request Exception(const Request& request, unsigned code) {
    return Sent(modbus_reply_exception(context_.get(), request.data(), code));
  }

 private:
  Request Sent(int size) {
    if (size <= 0) throw std::runtime_error(modbus_strerror(errno));
    Request reply(static_cast<std::size_t>(size));
    if (Checked(static_cast<int>(read(reading_.Get(), reply.data(), reply.size())), "read") != size) {
      throw std::runtime_error("A part of a reply is missing.");
    }
    return reply;
  }

  std::unique_ptr<modbus_t, ContextEnd> context_;
  Descriptor reading_;
  Descriptor writing_;
};

std::size_t CountOf(const Request& request) {
  return request[1] == kWriteOne ? 1 : static_cast<std::size_t>(Word(request, 4));
}

bool IsWrite(const Request& request) {
  return request[1] == kWriteOne || request[1] == kWriteMany;
}

bool IsSpoken(const Request& request) {
  return request[1] == kReadHolding || request[1] == kReadInput || IsWrite(request);
}

bool CountHolds(const Request& request) {
  const std::size_t count = CountOf(request);
  if (request[1] != kWriteMany) return count >= 1 && count <= MODBUS_MAX_READ_REGISTERS;
  return count >= 1 && count <= MODBUS_MAX_WRITE_REGISTERS && request[6] == 2 * count;
}

class ModbusUnit final : public LineEnd {
 public:
  ModbusUnit(VirtualSensor& sensor, const SensorSetup& setup)
      : sensor_(sensor), line_(setup.pace), faults_(setup.faults, setup.seed) {}

  void Receive(std::uint8_t byte, std::chrono::microseconds now) override {
    if (HungUp()) return;
    const LineClock::Arrival arrival = line_.Hear(now);
    if (arrival.after_silence) request_.clear();
    if (!arrival.listening) return;
    request_.push_back(byte);
    if (ModbusRequestIsWhole(request_)) {
      Take(std::exchange(request_, {}), now);
    } else if (request_.size() == kModbusFrameLimit) {
      request_.clear();
    }
  }

  std::vector<TimedByte> TakeReply() override { return line_.TakeReply(); }
  bool HungUp() const override { return line_.HungUp(); }
  void Advance(std::chrono::microseconds now) override { sensor_.Advance(now); }
  int Saves() const override { return sensor_.Saves(); }

 private:
  void Take(const Request& request, std::chrono::microseconds now) {
    if (request[0] != sensor_.Id() || !ModbusCrcHolds(request)) return;
    sensor_.MindTasks(now);
    Answer(request);
    sensor_.MindTasks(now);
  }

  void Answer(const Request& request) {
    if (!IsSpoken(request)) return Refuse(request, MODBUS_EXCEPTION_ILLEGAL_FUNCTION);
    if (!CountHolds(request)) return Refuse(request, MODBUS_EXCEPTION_ILLEGAL_DATA_VALUE);
    std::optional<Words> words = WordsOf(request);
    if (!words) return Refuse(request, MODBUS_EXCEPTION_ILLEGAL_DATA_ADDRESS);
    if (IsWrite(request) && !TakesWrite(request, words->size())) {
      return Refuse(request, MODBUS_EXCEPTION_SLAVE_OR_SERVER_FAILURE);
    }
    const bool carried_out = Send(maker_.Reply(request, *words));
    if (carried_out && IsWrite(request)) Store(request, *words);
  }

  void Refuse(const Request& request, unsigned code) { Send(maker_.Exception(request, code)); }

  /// What the registers of a request hold; none if one of them does not exist.
  std::optional<Words> WordsOf(const Request& request) {
    Words words;
    for (std::size_t i = 0; i < CountOf(request); ++i) {
      const auto word = WordAt(request[1], Word(request, 2) + static_cast<int>(i));
      if (!word) return std::nullopt;
      words.push_back(*word);
    }
    return words;
  }

  std::optional<std::uint16_t> WordAt(int function, int number) {
    if (function == kReadInput) return InputRegister(sensor_.Ram(), sensor_.Eeprom(), number);
    const auto place = PlaceOf(number);
    if (!place) return std::nullopt;
    const Bytes memory = place->in_eeprom ? sensor_.Eeprom() : sensor_.Ram();
    return static_cast<std::uint16_t>(Word(memory, place->address));
  }

  std::optional<RegisterPlace> PlaceOf(int number) {
    return HoldingRegister(sensor_.Ram().size(), sensor_.Eeprom().size(), number);
  }

  bool TakesWrite(const Request& request, std::size_t count) {
    for (std::size_t i = 0; i < count; ++i) {
      const auto place = PlaceOf(Word(request, 2) + static_cast<int>(i));
      if (place->in_eeprom && !sensor_.TakesWrite(place->address, 2)) return false;
    }
    return true;
  }

  void Store(const Request& request, const Words& words) {
    for (std::size_t i = 0; i < words.size(); ++i) {
      const int number = Word(request, 2) + static_cast<int>(i);
      const auto place = PlaceOf(number);
      if (place->in_eeprom) {
        sensor_.WriteEeprom(place->address, static_cast<std::uint8_t>(words[i] >> 8));
        sensor_.WriteEeprom(place->address + 1, static_cast<std::uint8_t>(words[i] & 255));
      } else {
        PutWord(sensor_.Ram(), place->address, words[i]);
      }
    }
  }

  /// False if the unit is to refuse the request after all.
  bool Send(Request bytes) {
    const SpoiltReply reply = faults_.Spoil(std::move(bytes), ReplyKind::kModbus);
    // A frame begins after a pause of three and a half bytes.
    line_.Send(reply, line_.ByteTime() * 7 / 2);
    return !reply.refused;
  }

  VirtualSensor& sensor_;
  LineClock line_;
  FaultMaker faults_;
  ReplyMaker maker_;
  Request request_;
};

}  // namespace

std::unique_ptr<LineEnd> MakeModbusUnit(VirtualSensor& sensor, const SensorSetup& setup) {
  if (sensor.Platform() != 9) throw std::invalid_argument("This virtual sensor does not speak Modbus.");
  return std::make_unique<ModbusUnit>(sensor, setup);
}

}  // namespace brelant::bench
