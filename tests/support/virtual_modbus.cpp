// SPDX-License-Identifier: GPL-3.0-or-later
#include "support/virtual_modbus.h"

namespace brelant::test {

namespace {

using Kind = ModbusMaster::Failure::Kind;

std::string Words(const VirtualModbus::Request& request) {
  const bool isInput = request.bank == ModbusMaster::Bank::input;
  auto text =
      std::to_string(request.unit) + (isInput ? " input " : " holding ") + std::to_string(request.first);
  if (!request.written.empty()) text += " =";
  for (const auto value : request.written) text += " " + std::to_string(value);
  if (request.written.empty() && request.count != 1) text += "+" + std::to_string(request.count);
  return text;
}

const char* TextOf(Kind kind) {
  switch (kind) {
    case Kind::silence:
      return "virtual silence";
    case Kind::exception:
      return "virtual exception";
    case Kind::broken:
      return "virtual garbage";
    case Kind::cancelled:
      return "virtual cancellation";
    default:
      return "virtual port failure";
  }
}

[[noreturn]] void Throw(Kind kind) {
  throw ModbusMaster::Failure(kind, TextOf(kind));
}

}  // namespace

void VirtualModbus::Open(const std::string& name, const Line& parameters) {
  if (failOpen) Throw(Kind::port);
  port = name;
  line = parameters;
  opening_ = ++lastOpening_;
}

std::vector<std::uint16_t> VirtualModbus::Read(int unit, Bank bank, int first, int count) {
  const auto& registers = Ask({unit, bank, first, count, {}, clock_.Now()});
  std::vector<std::uint16_t> values;
  for (int i = 0; i < count; ++i) values.push_back(registers.at(first + i));
  return values;
}

void VirtualModbus::Write(int unit, int first, std::span<const std::uint16_t> values) {
  auto& registers = Ask({unit,
                         Bank::holding,
                         first,
                         static_cast<int>(values.size()),
                         {values.begin(), values.end()},
                         clock_.Now()});
  for (std::size_t i = 0; i < values.size(); ++i) registers.at(first + static_cast<int>(i)) = values[i];
}

void VirtualModbus::Fail(std::initializer_list<std::optional<Kind>> failures) {
  failures_.insert(failures_.end(), failures.begin(), failures.end());
}

std::vector<std::string> VirtualModbus::Story() const {
  std::vector<std::string> story;
  for (const auto& request : requests_) story.push_back(Words(request));
  return story;
}

/// The registers that the request is about, when its reply has come.
std::map<int, std::uint16_t>& VirtualModbus::Ask(const Request& request) {
  if (!IsOpen()) Throw(Kind::port);
  requests_.push_back(request);
  std::optional<Kind> failure;
  if (!failures_.empty()) {
    failure = failures_.front();
    failures_.pop_front();
  }
  const auto unit = units.find(request.unit);
  if (!failure && unit == units.end()) failure = Kind::silence;
  Spend(failure == Kind::silence ? limit : replyTime);
  if (failure) Throw(*failure);
  auto& registers = request.bank == Bank::input ? unit->second.input : unit->second.holding;
  for (int i = 0; i < request.count; ++i) {
    if (!registers.contains(request.first + i)) Throw(Kind::exception);
  }
  return registers;
}

/// A request ends when the opening ends in which it began.
void VirtualModbus::Spend(std::chrono::microseconds time) {
  const int opening = opening_;
  const auto until = clock_.Now() + time;
  while (clock_.Now() < until && opening_ == opening) pump_.Wait(until);
  if (opening_ != opening) Throw(Kind::cancelled);
}

}  // namespace brelant::test
