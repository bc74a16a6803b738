// SPDX-License-Identifier: GPL-3.0-or-later
#include "support/scripted_port.h"

#include <utility>

#include "platform/machine_error.h"

namespace brelant::test {

namespace {

std::string Words(const ScriptedPort::Event& event) {
  using Act = ScriptedPort::Act;
  switch (event.act) {
    case Act::open:
      return "open";
    case Act::close:
      return "close";
    case Act::dtrOn:
      return "dtr on";
    case Act::dtrOff:
      return "dtr off";
    default:
      break;
  }
  std::string text;
  for (const auto byte : event.bytes) text += (text.empty() ? "" : " ") + std::to_string(byte);
  return text;
}

}  // namespace

void ScriptedPort::SetPortOpen(bool open) {
  if (open) {
    Operate();
    if (failOpen) throw MachineError("The port cannot be had");
  }
  open_ = open;
  input_ = open ? waitingAtOpen : Bytes();
  Remember(open ? Act::open : Act::close);
}

int ScriptedPort::InBufferCount() {
  Operate();
  RequireOpen();
  return static_cast<int>(input_.size());
}

std::vector<std::uint8_t> ScriptedPort::Input() {
  Operate();
  RequireOpen();
  return std::exchange(input_, {});
}

void ScriptedPort::Output(std::span<const std::uint8_t> bytes) {
  Operate();
  RequireOpen();
  Remember(Act::output, {bytes.begin(), bytes.end()});
  if (onOutput) onOutput({bytes.begin(), bytes.end()});
}

void ScriptedPort::SetDTREnable(bool on) {
  Operate();
  RequireOpen();
  if (failDtr) throw MachineError("No such line");
  Remember(on ? Act::dtrOn : Act::dtrOff);
}

void ScriptedPort::Receive(const Bytes& bytes) {
  if (open_) input_.insert(input_.end(), bytes.begin(), bytes.end());
}

void ScriptedPort::Arrive(const Bytes& bytes, std::chrono::microseconds after) {
  pump_.After(after, [this, bytes] { Receive(bytes); });
}

std::vector<ScriptedPort::Event> ScriptedPort::Of(Act act) const {
  std::vector<Event> found;
  for (const auto& event : events_) {
    if (event.act == act) found.push_back(event);
  }
  return found;
}

Bytes ScriptedPort::Sent() const {
  Bytes sent;
  for (const auto& event : events_) sent.insert(sent.end(), event.bytes.begin(), event.bytes.end());
  return sent;
}

std::vector<std::string> ScriptedPort::Story() const {
  std::vector<std::string> story;
  story.reserve(events_.size());
  for (const auto& event : events_) story.push_back(Words(event));
  return story;
}

void ScriptedPort::Operate() {
  ++operations_;
  const bool broken = failAt > 0 && (staysBroken ? operations_ >= failAt : operations_ == failAt);
  if (broken) throw MachineError("The port failed");
}

void ScriptedPort::RequireOpen() const {
  if (!open_) throw MachineError("The port is closed");
}

}  // namespace brelant::test
