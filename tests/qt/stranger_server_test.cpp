// SPDX-License-Identifier: GPL-3.0-or-later
// A connection by names against a Modbus server that is built on libmodbus alone and shares nothing with this
// project but the plan of registers (docs/names.md).
#include <array>
#include <atomic>
#include <functional>
#include <memory>
#include <thread>

#include <gtest/gtest.h>
#include <modbus/modbus.h>
#include <pty.h>
#include <termios.h>
#include <unistd.h>

#include "comm/SerialLink.h"
#include "connection/BRECOM.h"
#include "connection/connection_error.h"
#include "connection/unit_names.h"
#include "qt/QtClock.h"
#include "qt/QtFiles.h"
#include "qt/QtModbusMaster.h"
#include "qt/QtPump.h"
#include "qt/QtSerialPort.h"
#include "qt/QtSettingsStore.h"
#include "support/queued_user_interface.h"

namespace brelant {
namespace {

constexpr int kRamWindow = 4096;
constexpr int kEepromWindow = 8192;

/// The stranger: a mapping of registers served by libmodbus on the far end of a pseudo-terminal.
class Stranger {
 public:
  explicit Stranger(int address)
      : context_(modbus_new_rtu("/dev/null", 9600, 'N', 8, 1), modbus_free),
        mapping_(modbus_mapping_new(0, 0, 16384, 64), modbus_mapping_free) {
    std::array<char, 256> name{};
    termios raw{};
    cfmakeraw(&raw);
    EXPECT_EQ(openpty(&controller_, &device_, name.data(), &raw, nullptr), 0);
    name_ = name.data();
    EXPECT_EQ(modbus_set_slave(context_.get(), address), 0);
    EXPECT_EQ(modbus_set_socket(context_.get(), controller_), 0);
    EXPECT_EQ(modbus_set_indication_timeout(context_.get(), 0, 50000), 0);
  }
  ~Stranger() {
    isOver_ = true;
    if (server_.joinable()) server_.join();
    close(device_);
    close(controller_);
  }
  Stranger(const Stranger&) = delete;
  Stranger& operator=(const Stranger&) = delete;

  const std::string& Name() const { return name_; }
  std::uint16_t& Input(int number) { return mapping_->tab_input_registers[number]; }
  std::uint16_t& Holding(int number) { return mapping_->tab_registers[number]; }
  void Serve() {
    server_ = std::thread([this] {
      std::array<std::uint8_t, MODBUS_RTU_MAX_ADU_LENGTH> request{};
      while (!isOver_) {
        const int length = modbus_receive(context_.get(), request.data());
        if (length > 0) modbus_reply(context_.get(), request.data(), length, mapping_.get());
      }
    });
  }

 private:
  std::unique_ptr<modbus_t, decltype(&modbus_free)> context_;
  std::unique_ptr<modbus_mapping_t, decltype(&modbus_mapping_free)> mapping_;
  int controller_ = -1;
  int device_ = -1;
  std::string name_;
  std::atomic<bool> isOver_ = false;
  std::thread server_;
};

class StrangerServerTest : public testing::Test {
 protected:
  std::int32_t Get(const std::string& name) { return sens.Nodes().FindNode(name, "").GetValue(true); }
  void Set(const std::string& name, std::int32_t value) {
    sens.Nodes().FindNode(name, "").SetValue(true, value);
  }

  QtClock clock;
  QtPump pump{clock};
  QtSerialPort port;
  QtModbusMaster modbus{clock, pump};
  QtFiles files;
  QtSettingsStore store{"/dev/null"};
  test::QueuedUserInterface user;
  Session session;
  SerialLink link{session, {clock, pump, port, modbus, files, store, user}};
  UnitNames names;
  Stranger stranger{1};
  BRECOM sens{{session, link, files, modbus, names.names, names.modbus}};
};

TEST_F(StrangerServerTest, ReadsWhatTheServerHolds) {
  stranger.Holding(kRamWindow + 65 / 2) = 154;  // RAM 64 high, 65 low
  stranger.Holding(kEepromWindow + 4124 / 2) = 117 * 256 + 3;
  stranger.Input(7) = 0xFF38;  // -200
  stranger.Input(6) = 812;
  stranger.Input(16) = 6 * 256 + 16;
  stranger.Holding(20) = 2300;
  stranger.Holding(kRamWindow + 383 / 2) = 128;
  stranger.Serve();
  sens.SelectModbus(1);
  sens.ConnectSensor(stranger.Name(), kOnlyUnit);
  EXPECT_EQ(sens.Memory().PartNumber(), 154);
  EXPECT_EQ(Get("eaUserInfo_28"), 117);
  EXPECT_EQ(Get("eaUserInfo_29"), 3);
  EXPECT_EQ(Get("miIR_7"), -200);
  EXPECT_EQ(Get("miIR_6"), 812);
  EXPECT_EQ(Get("eaCaseChannel_4"), 6);
  EXPECT_EQ(Get("eaCaseChannel_5"), 16);
  EXPECT_EQ(Get("mhHR_20"), 2300);
  EXPECT_EQ(sens.Memory().ReadBytes(383, 1, SensorMemory::ram, 128), 1);
}

TEST_F(StrangerServerTest, WritesWhatTheServerThenHolds) {
  stranger.Holding(kEepromWindow + 4160 / 2) = 7 * 256 + 99;  // the ID high, another byte low
  stranger.Serve();
  sens.SelectModbus(1);
  sens.ConnectSensor(stranger.Name(), kOnlyUnit);
  Set("mhHR_21", -150);
  Set("eaSensorID_0", 12);
  Set("eaState1Alg_30", 37302);
  EXPECT_EQ(Get("mhHR_21"), -150);
  sens.Disconnect();
  EXPECT_EQ(stranger.Holding(21), 65536 - 150);
  EXPECT_EQ(stranger.Holding(kEepromWindow + 4160 / 2), 12 * 256 + 99);
  EXPECT_EQ(stranger.Holding(kEepromWindow + 4602 / 2), 37302);
}

TEST_F(StrangerServerTest, FindsItAlsoWhenModbusIsChosenAfterTheConnection) {
  stranger.Holding(kRamWindow + 65 / 2) = 154;
  stranger.Serve();
  sens.ConnectSensor(stranger.Name(), kOnlyUnit);
  sens.SelectModbus(1);
  EXPECT_EQ(sens.Memory().PartNumber(), 154);
}

TEST_F(StrangerServerTest, AnotherAddressIsSilent) {
  stranger.Serve();
  sens.SelectModbus(1);
  try {
    sens.ConnectSensor(stranger.Name(), 9);
    FAIL() << "there is no unit 9";
  } catch (const ConnectionError& error) {
    EXPECT_STREQ(error.what(), "The unit does not answer.");
  }
}

TEST_F(StrangerServerTest, WhatItRefusesIsTold) {
  stranger.Serve();
  sens.SelectModbus(1);
  sens.ConnectSensor(stranger.Name(), kOnlyUnit);
  try {
    Get("miIR_64");
    FAIL() << "there is no such register";
  } catch (const ConnectionError& error) {
    EXPECT_STREQ(error.what(), "The unit refuses: Modbus exception 2, illegal data address.");
  }
  EXPECT_EQ(Get("miIR_7"), 0);
}

}  // namespace
}  // namespace brelant
