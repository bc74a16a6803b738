// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <functional>
#include <numeric>
#include <string>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "connection/BRECOM.h"
#include "connection/connection_error.h"
#include "connection/kibus_unit.h"
#include "support/bus.h"
#include "support/dialogue.h"

namespace brelant::test {

inline constexpr const char* kCancel = "Cancel was selected";
inline constexpr const char* kSilent = "The unit does not answer.";

/// The text with which an operation fails; empty if it does not.
inline std::string FailureOf(const std::function<void()>& operation) {
  try {
    operation();
  } catch (const ConnectionError& error) {
    return error.what();
  }
  return {};
}

/// The bytes and their sum.
inline Bytes Summed(Bytes bytes) {
  bytes.push_back(static_cast<std::uint8_t>(std::accumulate(bytes.begin(), bytes.end(), 0)));
  return bytes;
}

/// A connection on a machine in memory.
class ConnectionTest : public testing::Test {
 protected:
  std::int32_t Get(const std::string& name) { return sens.Nodes().FindNode(name, "").GetValue(true); }
  void Set(const std::string& name, std::int32_t value) {
    sens.Nodes().FindNode(name, "").SetValue(true, value);
  }
  std::string FailureOfGet(const std::string& name) {
    return FailureOf([&] { Get(name); });
  }

  ScriptedBus bus;
  ScriptedPort& port = bus.port;
  VirtualModbus& modbus = bus.modbus;
  NameTable names = NameTable::Standard();
  ModbusSettings settings;
  BRECOM sens{{bus.session, bus.link, bus.files, modbus, names, settings}};
};

/// A line that is written down byte for byte.
class DialogueTest : public ConnectionTest {
 protected:
  /// As part 154.
  void Attach(int id = -1, std::uint8_t requestToSend = 254) {
    line.Exchange({129, 65, 194}, {6, 154, 160}, requestToSend);
    sens.ConnectSensor("3", id);
    ASSERT_EQ(line.Trouble(), "");
    port.Forget();
  }
  /// A read: command and address; then the data.
  void ExpectRead(const Bytes& request, const Bytes& data, std::uint8_t requestToSend = 254) {
    Bytes reply{6};
    reply.insert(reply.end(), data.begin(), data.end());
    line.Exchange(Summed(request), Summed(reply), requestToSend);
  }
  /// A write: command, address and data.
  void ExpectWrite(const Bytes& frame, std::uint8_t requestToSend = 254) {
    line.Exchange(Summed(frame), {6}, requestToSend);
  }
  std::size_t RequestsToSend(std::uint8_t byte = 254) const {
    std::size_t count = 0;
    for (const auto& word : port.Story()) count += word == std::to_string(byte) ? 1 : 0;
    return count;
  }

  Dialogue line{port};
};

/// A unit on KiBus.
class KiBusUnitTest : public ConnectionTest {
 protected:
  KiBusUnitTest() {
    sens.ConnectSensor("3", -1);
    unit.frames.clear();
    port.Forget();
  }

  KiBusUnit unit{port};
};

/// Unit 1 on Modbus, with every register of the channels and of the windows.
class ModbusUnitTest : public ConnectionTest {
 protected:
  ModbusUnitTest() {
    auto& unit = modbus.units[1];
    for (int number = 0; number < 32; ++number) unit.input[number] = unit.holding[number] = 0;
    for (int number = 4096; number < 12288; ++number) unit.holding[number] = 0;
    sens.SelectModbus(1);
    sens.ConnectSensor("3", -1);
    modbus.Forget();
  }

  VirtualModbus::Unit& Unit() { return modbus.units.at(1); }
};

}  // namespace brelant::test
