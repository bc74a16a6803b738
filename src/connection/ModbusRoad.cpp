// SPDX-License-Identifier: GPL-3.0-or-later
#include "connection/ModbusRoad.h"

#include "connection/connection_error.h"
#include "connection/name_table.h"

namespace brelant {

namespace {

constexpr int kPartAddress = 65;
constexpr int kMost = 125;

ModbusMaster::Bank BankOf(Space space) {
  switch (space) {
    case Space::input:
      return ModbusMaster::Bank::input;
    case Space::holding:
      return ModbusMaster::Bank::holding;
    default:
      throw ConnectionError("There are no bytes on Modbus.");
  }
}

/// Only what the line may have done is worth another attempt.
bool IsWorthAnother(const ModbusMaster::Failure& failure) {
  using Kind = ModbusMaster::Failure::Kind;
  return failure.kind == Kind::silence || failure.kind == Kind::broken;
}

/// The master's failures in the connection's words.
template <typename Operation>
auto Told(const std::function<bool()>& stop, Operation operation) {
  constexpr int kAttempts = 4;
  for (int attempt = 1;; ++attempt) {
    try {
      return operation();
    } catch (const ModbusMaster::Failure& failure) {
      if (attempt == kAttempts || stop() || !IsWorthAnother(failure)) throw ConnectionError(failure.what());
    }
  }
}

}  // namespace

void ModbusRoad::Connect(const std::string& port, int id) {
  unit_ = id == kOnlyUnit ? settings_.onlyUnit : id;
  Told(stop_, [&] { master_.Open(port, settings_.line); });
  const auto part = NameTable::OnModbus(Place{Space::ram, kPartAddress, 1});
  Read(part.space, part.first, part.count);
}

std::vector<std::uint16_t> ModbusRoad::Read(Space space, int first, int count) {
  return Told(stop_, [&] { return master_.Read(unit_, BankOf(space), first, count); });
}

void ModbusRoad::Write(Space space, int first, std::span<const std::uint16_t> cells) {
  if (BankOf(space) == ModbusMaster::Bank::input) throw ConnectionError("An input register is read only.");
  Told(stop_, [&] { master_.Write(unit_, first, cells); });
}

int ModbusRoad::Most(Space) const {
  return kMost;
}

}  // namespace brelant
