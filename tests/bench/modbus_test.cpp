// SPDX-License-Identifier: GPL-3.0-or-later
// brelant-sensor --modbus as a process, asked by libmodbus and by mbpoll (docs/protocol.md, Modbus).
#include <algorithm>
#include <array>
#include <cerrno>
#include <chrono>
#include <cstdio>
#include <filesystem>
#include <map>
#include <memory>
#include <optional>
#include <stdexcept>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <modbus/modbus.h>

#include "bench/faults.h"
#include "bench/modbus_unit.h"
#include "bench/whole_file.h"
#include "sensor_process.h"
#include "unit_host.h"

namespace brelant::bench {
namespace {

using std::chrono::milliseconds;
using testing::ElementsAre;
using testing::HasSubstr;
using Words = std::vector<std::uint16_t>;

const std::vector<int> kInputs{1, 2, 6, 7, 9, 10, 13, 15, 16, 17, 18, 19, 11};
const std::map<int, std::size_t> kLevels{{11, 4354}, {12, 4356}, {13, 4358}, {20, 4240},
                                         {21, 4242}, {23, 4244}, {24, 4246}, {26, 4248},
                                         {27, 4250}, {29, 4252}, {30, 4254}};

/// The CRC of the standard, by its shift register.
ByteList WithCrc(ByteList frame) {
  unsigned remainder = 65535;
  for (const std::uint8_t byte : frame) {
    remainder ^= byte;
    for (int i = 0; i < 8; ++i) remainder = remainder % 2 == 1 ? (remainder / 2) ^ 40961 : remainder / 2;
  }
  frame.push_back(static_cast<std::uint8_t>(remainder % 256));
  frame.push_back(static_cast<std::uint8_t>(remainder / 256));
  return frame;
}

/// libmodbus at the host's end.
class Master {
 public:
  Master(const std::string& device, int unit) : context_(modbus_new_rtu(device.c_str(), 9600, 'N', 8, 1)) {
    modbus_set_slave(context_.get(), unit);
    modbus_set_response_timeout(context_.get(), kPatience / 1000, 0);
    EXPECT_EQ(modbus_connect(context_.get()), 0) << modbus_strerror(errno);
  }
  Master(const Master&) = delete;
  Master& operator=(const Master&) = delete;
  ~Master() { modbus_close(context_.get()); }

  /// None: an exception or no good reply, see errno.
  std::optional<Words> Inputs(int first, int count = 1) const {
    Words words(static_cast<std::size_t>(count));
    if (modbus_read_input_registers(context_.get(), first, count, words.data()) != count) return std::nullopt;
    return words;
  }
  std::optional<Words> Holdings(int first, int count = 1) const {
    Words words(static_cast<std::size_t>(count));
    if (modbus_read_registers(context_.get(), first, count, words.data()) != count) return std::nullopt;
    return words;
  }
  bool Write(int number, int value) const {
    return modbus_write_register(context_.get(), number, static_cast<std::uint16_t>(value)) == 1;
  }
  bool Write(int first, const Words& words) const {
    const auto count = static_cast<int>(words.size());
    return modbus_write_registers(context_.get(), first, count, words.data()) == count;
  }
  modbus_t* Context() const { return context_.get(); }

 private:
  struct End {
    void operator()(modbus_t* context) const { modbus_free(context); }
  };
  std::unique_ptr<modbus_t, End> context_;
};

std::vector<std::string> UnitOptions(std::initializer_list<std::string> more = {}) {
  std::vector<std::string> options{"--part", "154", "--modbus"};
  options.insert(options.end(), more);
  return options;
}

/// What an input register holds by the bytes that a host reads by KiBus.
class KiBusView {
 public:
  explicit KiBusView(const ByteList& image) : host_({.part = 154}) {
    EXPECT_TRUE(host_.sensor.Restore(image));
  }

  int Ram(std::size_t address) { return Byte(177, address); }
  int Eeprom(std::size_t address) { return Byte(137, address); }
  int RamWord(std::size_t address) { return Ram(address) * 256 + Ram(address + 1); }
  int EepromWord(std::size_t address) { return Eeprom(address) * 256 + Eeprom(address + 1); }

  int Input(int number) {
    switch (number) {
      case 1:
        return Bit(285, 1, 0) + Bit(285, 3, 1);
      case 2:
        return Bit(277, 2, 0) + Bit(277, 0, 1) + Bit(278, 0, 2) + Bit(276, 0, 5) + Bit(276, 3, 6) +
               Bit(279, 0, 7) + Bit(279, 3, 8);
      case 6:
        return RamWord(22);
      case 7:
        return RamWord(20);
      case 9:
        return RamWord(30);
      case 10:
        return Ram(261) + 16 * Ram(260) + 4096 * Ram(265);
      case 11:
        return RamWord(34);
      case 13:
        return RamWord(28);
      case 15:
        return Ram(267) + 256 * Ram(264);
      case 16:
        return 256 * Eeprom(7964) + Eeprom(7965);
      case 17:
        return 256 * Eeprom(7969);
      case 18:
        return Eeprom(7971);
      case 19:
        return Eeprom(7968);
      default:
        throw std::logic_error("no such register");
    }
  }

 private:
  int Byte(int command, std::size_t address) {
    const auto high = static_cast<int>(address / 256);
    const auto low = static_cast<int>(address % 256);
    const auto sum = (command + high + low) % 256;
    const ByteList reply =
        host_.Exchange({static_cast<std::uint8_t>(command), static_cast<std::uint8_t>(high),
                        static_cast<std::uint8_t>(low), static_cast<std::uint8_t>(sum)});
    return reply.size() == 3 ? reply[1] : -1;
  }
  int Bit(std::size_t address, int from, int to) { return (Ram(address) >> from) % 2 << to; }

  Host host_;
};

Words AllInputs(const Master& master) {
  Words words;
  for (const int number : kInputs) words.push_back(master.Inputs(number).value_or(Words{0}).front());
  return words;
}

/// The input registers at one moment. The weight comes last, and it moves whenever anything does.
Words StillInputs(const Master& master) {
  Words before = AllInputs(master);
  for (;;) {
    Words now = AllInputs(master);
    if (now == before) return now;
    before = now;
  }
}

/// The memory that a unit leaves behind.
KiBusView ViewOf(SensorProcess& process, const std::filesystem::path& image) {
  EXPECT_EQ(process.End(SIGTERM), 0);
  const auto bytes = ReadWhole(image);
  std::filesystem::remove(image);
  return KiBusView(bytes.value_or(ByteList{}));
}

TEST(Modbus, InputRegistersAreTheBytesThatKiBusShows) {
  for (const char* variant : {"3", "5"}) {
    const auto image = Fresh("brelant-modbus");
    SensorProcess process(UnitOptions({"--variant", variant, "--image", image.string()}));
    const Master master(process.Line(), 1);
    const Words words = StillInputs(master);
    KiBusView view = ViewOf(process, image);
    for (std::size_t i = 0; i < kInputs.size(); ++i)
      EXPECT_EQ(words[i], view.Input(kInputs[i])) << kInputs[i];
  }
}

TEST(Modbus, LevelsAreTheWordsOfTheEeprom) {
  const auto image = Fresh("brelant-modbus");
  SensorProcess process(UnitOptions({"--image", image.string()}));
  const Master master(process.Line(), 1);
  EXPECT_THAT(master.Holdings(11, 3), testing::Optional(ElementsAre(1550, 850, 50)));
  EXPECT_THAT(master.Holdings(20, 2), testing::Optional(ElementsAre(2300, 2100)));
  EXPECT_THAT(master.Holdings(23, 2), testing::Optional(ElementsAre(250, 150)));
  EXPECT_THAT(master.Holdings(26, 2), testing::Optional(ElementsAre(180, 180)));
  EXPECT_THAT(master.Holdings(29, 2), testing::Optional(ElementsAre(600, 800)));
  for (const auto& [number, address] : kLevels) EXPECT_TRUE(master.Write(number, 1000 * number % 65536));
  for (const auto& [number, address] : kLevels) {
    EXPECT_THAT(master.Holdings(number), testing::Optional(ElementsAre(1000 * number % 65536)));
    EXPECT_THAT(master.Holdings(8192 + static_cast<int>(address) / 2),
                testing::Optional(ElementsAre(1000 * number % 65536)));
  }
  KiBusView view = ViewOf(process, image);
  for (const auto& [number, address] : kLevels) EXPECT_EQ(view.EepromWord(address), 1000 * number % 65536);
}

TEST(Modbus, WindowsShowBothMemories) {
  const auto image = Fresh("brelant-modbus");
  SensorProcess process(UnitOptions({"--image", image.string()}));
  const Master master(process.Line(), 1);
  EXPECT_EQ(master.Holdings(4096 + 32).value().front() % 256, 154);  // RAM 65
  EXPECT_THAT(master.Holdings(8192 + 2062), testing::Optional(ElementsAre(117 * 256 + 3)));
  EXPECT_TRUE(master.Write(4096 + 3583, 0x1234));                 // RAM 7166, the last word
  EXPECT_TRUE(master.Write(8192 + 4094, Words{0x0102, 0xF3F4}));  // EEPROM 8188
  EXPECT_THAT(master.Holdings(8192 + 4093, 3).value(), testing::Contains(0xF3F4));
  EXPECT_TRUE(master.Holdings(8192, 125));
  EXPECT_TRUE(master.Write(8192 + 3500, Words(123, 0x5566)));  // EEPROM 7000, over many pages
  KiBusView view = ViewOf(process, image);
  EXPECT_EQ(view.RamWord(7166), 0x1234);
  EXPECT_EQ(view.EepromWord(8188), 0x0102);
  EXPECT_EQ(view.EepromWord(8190), 0xF3F4);
  for (std::size_t i = 0; i < 123; ++i) ASSERT_EQ(view.EepromWord(7000 + 2 * i), 0x5566);
}

TEST(Modbus, ARegisterThatIsNoneIsAnException) {
  SensorProcess process(UnitOptions());
  const Master master(process.Line(), 1);
  for (const int number : {0, 3, 4, 5, 8, 12, 14, 20, 4096, 65535}) {
    EXPECT_FALSE(master.Inputs(number)) << number;
    EXPECT_EQ(errno, EMBXILADD) << number;
  }
  for (const int number : {0, 1, 7, 10, 14, 19, 22, 25, 28, 31, 4095, 7680, 8191, 12288, 65535}) {
    EXPECT_FALSE(master.Holdings(number)) << number;
    EXPECT_EQ(errno, EMBXILADD) << number;
    EXPECT_FALSE(master.Write(number, 1)) << number;
    EXPECT_EQ(errno, EMBXILADD) << number;
  }
  EXPECT_FALSE(master.Inputs(6, 4));  // 8 is none
  EXPECT_EQ(errno, EMBXILADD);
  EXPECT_FALSE(master.Write(12, Words{1, 2, 3}));  // 14 is none
  EXPECT_EQ(errno, EMBXILADD);
  EXPECT_THAT(master.Holdings(12, 2), testing::Optional(ElementsAre(850, 50)));  // nothing was written
}

TEST(Modbus, AnotherFunctionIsAnException) {
  SensorProcess process(UnitOptions());
  const Master master(process.Line(), 1);
  std::array<std::uint8_t, 300> bytes{};
  EXPECT_EQ(modbus_read_bits(master.Context(), 1, 1, bytes.data()), -1);
  EXPECT_EQ(errno, EMBXILFUN);
  EXPECT_EQ(modbus_write_bit(master.Context(), 1, 1), -1);
  EXPECT_EQ(errno, EMBXILFUN);
  EXPECT_EQ(modbus_write_bits(master.Context(), 1, 1, bytes.data()), -1);
  EXPECT_EQ(errno, EMBXILFUN);
  EXPECT_EQ(modbus_mask_write_register(master.Context(), 20, 1, 1), -1);
  EXPECT_EQ(errno, EMBXILFUN);
  EXPECT_EQ(modbus_report_slave_id(master.Context(), 300, bytes.data()), -1);
  EXPECT_EQ(errno, EMBXILFUN);
  EXPECT_TRUE(master.Inputs(7));
}

TEST(Modbus, ACountThatCannotBeIsAnException) {
  SensorProcess process(UnitOptions());
  const Line line(process.Line());
  EXPECT_EQ(line.Send(WithCrc({1, 3, 16, 0, 0, 0}), 5), WithCrc({1, 131, 3}));
  EXPECT_EQ(line.Send(WithCrc({1, 3, 32, 0, 0, 126}), 5), WithCrc({1, 131, 3}));
  EXPECT_EQ(line.Send(WithCrc({1, 4, 0, 1, 255, 255}), 5), WithCrc({1, 132, 3}));
  EXPECT_EQ(line.Send(WithCrc({1, 16, 0, 20, 0, 0, 0}), 5), WithCrc({1, 144, 3}));
  // Two registers, but the bytes of one.
  EXPECT_EQ(line.Send(WithCrc({1, 16, 0, 20, 0, 2, 2, 9, 9}), 5), WithCrc({1, 144, 3}));
}

TEST(Modbus, AnswersByteForByte) {
  SensorProcess process(UnitOptions());
  const Line line(process.Line());
  EXPECT_EQ(line.Send(WithCrc({1, 3, 0, 20, 0, 2}), 9), WithCrc({1, 3, 4, 8, 252, 8, 52}));
  EXPECT_EQ(line.Send(WithCrc({1, 4, 0, 16, 0, 4}), 13), WithCrc({1, 4, 8, 6, 22, 6, 0, 0, 26, 0, 22}));
  EXPECT_EQ(line.Send(WithCrc({1, 6, 0, 20, 9, 196}), 8), WithCrc({1, 6, 0, 20, 9, 196}));
  EXPECT_EQ(line.Send(WithCrc({1, 16, 0, 23, 0, 2, 4, 1, 44, 0, 200}), 8), WithCrc({1, 16, 0, 23, 0, 2}));
  EXPECT_EQ(line.Send(WithCrc({1, 3, 0, 23, 0, 2}), 9), WithCrc({1, 3, 4, 1, 44, 0, 200}));
}

// A reply to a request that is not for this unit, or not whole, would come before the one that is awaited.
TEST(Modbus, AnswersOnlyToItsOwnAddress) {
  SensorProcess process(UnitOptions({"--id", "29"}));
  const Line line(process.Line());
  for (const int other : {0, 1, 28, 30, 255}) {
    ByteList requests = WithCrc({static_cast<std::uint8_t>(other), 6, 0, 20, 0, 1});
    const ByteList own = WithCrc({29, 3, 0, 20, 0, 1});
    requests.insert(requests.end(), own.begin(), own.end());
    EXPECT_EQ(line.Send(requests, 7), WithCrc({29, 3, 2, 8, 252})) << other;
  }
}

TEST(Modbus, AWrongCrcGetsNoReplyAndChangesNothing) {
  SensorProcess process(UnitOptions());
  const Line line(process.Line());
  ByteList bad = WithCrc({1, 6, 0, 20, 0, 1});
  bad.back() = static_cast<std::uint8_t>(bad.back() ^ 1);
  const ByteList own = WithCrc({1, 3, 0, 20, 0, 1});
  bad.insert(bad.end(), own.begin(), own.end());
  EXPECT_EQ(line.Send(bad, 7), WithCrc({1, 3, 2, 8, 252}));
}

TEST(Modbus, TankCommandIsCarriedOut) {
  SensorProcess process(UnitOptions());
  const Master master(process.Line(), 1);
  const auto start = std::chrono::steady_clock::now();
  ASSERT_TRUE(master.Write(4096 + 152, 1));
  int result = 1;
  while (result == 1 && std::chrono::steady_clock::now() - start < milliseconds(kPatience)) {
    result = master.Holdings(4096 + 152).value_or(Words{0xFFFF}).front();
  }
  EXPECT_EQ(result, 0);
  EXPECT_GE(std::chrono::steady_clock::now() - start, milliseconds(1000));
}

TEST(Modbus, IdOfTheImageCountsAtTheNextStart) {
  const auto image = Fresh("brelant-modbus");
  {
    SensorProcess process(UnitOptions({"--image", image.string()}));
    const Master master(process.Line(), 1);
    ASSERT_TRUE(master.Write(8192 + 2080, 12 * 256));  // EEPROM 4160
    EXPECT_TRUE(master.Inputs(7));
    EXPECT_EQ(process.End(SIGTERM), 0);
  }
  SensorProcess process(UnitOptions({"--image", image.string()}));
  EXPECT_TRUE(Master(process.Line(), 12).Inputs(7));
  EXPECT_EQ(process.End(SIGTERM), 0);
  std::filesystem::remove(image);
}

/// The host's end of a Modbus line without a process, on a clock of its own.
class ModbusHost {
 public:
  explicit ModbusHost(const SensorSetup& setup) : sensor(setup), unit(MakeModbusUnit(sensor, setup)) {}

  std::vector<TimedByte> SendTimed(const ByteList& bytes) {
    for (const std::uint8_t byte : bytes) unit->Receive(byte, now);
    return unit->TakeReply();
  }
  ByteList Send(const ByteList& bytes) {
    ByteList reply;
    for (const TimedByte& byte : SendTimed(bytes)) reply.push_back(byte.value);
    return reply;
  }

  VirtualSensor sensor;
  std::unique_ptr<LineEnd> unit;
  std::chrono::microseconds now{0};
};

const ByteList kReadLevel = WithCrc({1, 3, 0, 20, 0, 1});
const ByteList kLevel = WithCrc({1, 3, 2, 8, 252});

TEST(ModbusUnit, IsOnlyOfPlatform9) {
  for (const int part : {231, 217, 215, 50, 40}) {
    const SensorSetup setup{.part = part};
    VirtualSensor sensor(setup);
    EXPECT_THROW(MakeModbusUnit(sensor, setup), std::invalid_argument) << part;
  }
}

TEST(ModbusUnit, HasCalibratedItsTankASecondAfterTheCommandWheneverTheHostLooks) {
  const std::vector<std::pair<int, std::uint8_t>> results{{0, 1}, {999, 1}, {1000, 0}, {5000, 0}};
  for (const auto& [when, result] : results) {
    ModbusHost host({.part = 154});
    EXPECT_EQ(host.Send(WithCrc({1, 6, 16, 152, 0, 1})), WithCrc({1, 6, 16, 152, 0, 1}));
    host.now = milliseconds(when);
    EXPECT_EQ(host.Send(WithCrc({1, 3, 16, 152, 0, 1})), WithCrc({1, 3, 2, 0, result})) << when;
  }
}

// 2 s a sample, from second 5 on; channel 5 is CO2.
TEST(ModbusUnit, LogsWhatItsChannelsDo) {
  ModbusHost host({.part = 154});
  host.now = std::chrono::seconds(5);
  ASSERT_EQ(host.Send(WithCrc({1, 6, 40, 174, 128, 0})).size(), 8U);  // EEPROM 4444
  host.now = std::chrono::seconds(66);
  EXPECT_EQ(host.Send(WithCrc({1, 3, 16, 168, 0, 5})), WithCrc({1, 3, 10, 0, 30, 0, 30, 0, 30, 0, 30, 0, 1}));
  VirtualSensor twin({.part = 154});
  for (int i = 0; i < 30; ++i) {
    twin.Advance(std::chrono::seconds(7 + 2 * i));
    const ByteList word = Peek(twin.Ram(), 22, 2);
    EXPECT_EQ(host.Send(WithCrc({1, 3, 18, static_cast<std::uint8_t>(i), 0, 1})),
              WithCrc({1, 3, 2, word[0], word[1]}));
  }
}

TEST(ModbusUnit, AcknowledgesWritesThatDoNotStick) {
  ModbusHost host({.part = 154, .bad_cells = {.stuck = {4241}}});
  EXPECT_EQ(host.Send(WithCrc({1, 6, 0, 20, 1, 2})), WithCrc({1, 6, 0, 20, 1, 2}));
  EXPECT_EQ(host.Send(kReadLevel), WithCrc({1, 3, 2, 1, 252}));  // the low byte stays that of 2300
}

TEST(ModbusUnit, RefusesAWriteThatReachesABadCell) {
  for (const std::size_t bad : {4242U, 4243U}) {
    ModbusHost host({.part = 154, .bad_cells = {.refused = {bad}}});
    EXPECT_EQ(host.Send(WithCrc({1, 6, 0, 21, 1, 2})), WithCrc({1, 134, 4}));
    EXPECT_EQ(host.Send(WithCrc({1, 16, 0, 20, 0, 2, 4, 0, 1, 0, 2})), WithCrc({1, 144, 4}));
    EXPECT_EQ(host.Send(kReadLevel), kLevel);
    EXPECT_EQ(host.Send(WithCrc({1, 6, 0, 20, 1, 2})), WithCrc({1, 6, 0, 20, 1, 2}));
    EXPECT_EQ(host.Send(WithCrc({1, 3, 0, 21, 0, 1})), WithCrc({1, 3, 2, 8, 52}));
  }
}

TEST(ModbusUnit, CellsAreBadOnlyInTheEeprom) {
  ModbusHost host({.part = 154, .bad_cells = {.stuck = {400}, .refused = {402}}});
  EXPECT_EQ(host.Send(WithCrc({1, 16, 16, 200, 0, 2, 4, 1, 2, 3, 4})).size(), 8U);
  EXPECT_EQ(Peek(host.sensor.Ram(), 400, 4), (ByteList{1, 2, 3, 4}));
}

TEST(ModbusUnit, ForgetsABrokenRequestAfterASilence) {
  ModbusHost host({.part = 154});
  const ByteList begun(kReadLevel.begin(), kReadLevel.begin() + 5);
  const ByteList rest(kReadLevel.begin() + 5, kReadLevel.end());
  host.Send(begun);
  host.now += milliseconds(50);
  EXPECT_EQ(host.Send(rest), kLevel);
  host.Send(begun);
  host.now += milliseconds(51);
  EXPECT_EQ(host.Send(kReadLevel), kLevel);
  host.Send(ByteList(1000, 99));  // of a function that is none, and without an end
  host.now += milliseconds(51);
  EXPECT_EQ(host.Send(kReadLevel), kLevel);
}

// 8 bytes are there at 8333 us; the reply begins 3646 us later, and each byte takes 1042 us.
TEST(ModbusUnit, RepliesAfterThreeAndAHalfBytes) {
  ModbusHost host({.part = 154, .pace = true});
  const std::vector<TimedByte> reply = host.SendTimed(kReadLevel);
  ASSERT_EQ(reply.size(), 7U);
  EXPECT_EQ(reply.front().at.count(), 13021);
  EXPECT_EQ(reply.back().at.count(), 19271);
  ModbusHost unpaced({.part = 154});
  EXPECT_EQ(unpaced.SendTimed(kReadLevel).back().at.count(), 0);
}

TEST(ModbusUnit, LateDoesNotListenUntilItHasSpoken) {
  ModbusHost host({.part = 154, .faults = {.late = 1}});
  const std::vector<TimedByte> reply = host.SendTimed(kReadLevel);
  ASSERT_EQ(reply.size(), 7U);
  EXPECT_GT(reply.front().at, milliseconds(1000));
  host.now = milliseconds(1000);
  EXPECT_THAT(host.Send(kReadLevel), testing::IsEmpty());
  host.now = reply.back().at + milliseconds(60);
  EXPECT_EQ(host.Send(kReadLevel), kLevel);
}

// 8 bytes of request, three and a half of silence and 7 of reply at 10/9600 s: 19270 us.
TEST(Modbus, KeepsThePaceOfTheLine) {
  SensorProcess process(UnitOptions({"--pace"}));
  const Line line(process.Line());
  auto least = std::chrono::steady_clock::duration::max();
  for (int i = 0; i < 5; ++i) {
    const auto start = std::chrono::steady_clock::now();
    EXPECT_EQ(line.Send(WithCrc({1, 3, 0, 20, 0, 1}), 7), WithCrc({1, 3, 2, 8, 252}));
    const auto span = std::chrono::steady_clock::now() - start;
    EXPECT_GE(span, std::chrono::microseconds(19270));
    least = std::min(least, span);
  }
  EXPECT_LT(least, milliseconds(200));
}

TEST(ModbusFaults, NakIsADeviceFailureAndNothingIsWritten) {
  const auto image = Fresh("brelant-modbus");
  SensorProcess process(UnitOptions({"--fault", "nak=1", "--image", image.string()}));
  const Master master(process.Line(), 1);
  EXPECT_FALSE(master.Inputs(7));
  EXPECT_EQ(errno, EMBXSFAIL);
  EXPECT_FALSE(master.Write(20, 1));
  EXPECT_EQ(errno, EMBXSFAIL);
  EXPECT_EQ(ViewOf(process, image).EepromWord(4240), 2300);
}

TEST(ModbusFaults, AWrongByteIsExactlyOne) {
  SensorProcess process(UnitOptions({"--fault", "wrong=1"}));
  const Line line(process.Line());
  const ByteList good = WithCrc({1, 3, 2, 8, 252});
  for (int i = 0; i < 20; ++i) {
    const ByteList reply = line.Send(WithCrc({1, 3, 0, 20, 0, 1}), 7);
    ASSERT_EQ(reply.size(), good.size());
    int different = 0;
    for (std::size_t k = 0; k < good.size(); ++k) different += reply[k] != good[k] ? 1 : 0;
    EXPECT_EQ(different, 1);
  }
}

TEST(ModbusFaults, SilenceAndShortRepliesComeAsOftenAsAsked) {
  for (const char* fault : {"silence=0.5", "short=0.5", "noise=0.5"}) {
    SensorProcess process(UnitOptions({"--fault", fault, "--seed", "3"}));
    const Master master(process.Line(), 1);
    modbus_set_response_timeout(master.Context(), 0, 60000);
    modbus_set_byte_timeout(master.Context(), 0, 20000);
    int good = 0;
    for (int i = 0; i < 20; ++i) {
      good += master.Holdings(20) ? 1 : 0;
      modbus_flush(master.Context());
    }
    EXPECT_GE(good, 4) << fault;
    EXPECT_LE(good, 16) << fault;
  }
}

TEST(ModbusFaults, HangUpEndsIt) {
  SensorProcess process(UnitOptions({"--fault", "hangup=1"}));
  const Line line(process.Line());
  EXPECT_THAT(line.Send(WithCrc({1, 3, 0, 20, 0, 1}), 1), testing::IsEmpty());
  EXPECT_EQ(process.ExitStatus(), 0);
}

TEST(ModbusFaults, LateIsLaterThanTheHostWaits) {
  FaultMaker faults({.late = 1}, 1);
  for (int i = 0; i < 200; ++i) {
    const SpoiltReply reply = faults.Spoil(WithCrc({1, 3, 2, 8, 252}), ReplyKind::kModbus);
    ASSERT_GT(reply.delay, milliseconds(1000));
    ASSERT_LT(reply.delay, milliseconds(1500));
    ASSERT_FALSE(reply.refused);
  }
}

TEST(ModbusFaults, RefusalHasTheFunctionAndACrcThatFits) {
  FaultMaker faults({.nak = 1}, 1);
  const SpoiltReply reply = faults.Spoil(WithCrc({7, 16, 0, 23, 0, 2}), ReplyKind::kModbus);
  EXPECT_EQ(reply.bytes, WithCrc({7, 144, 4}));
  EXPECT_TRUE(reply.refused);
}

/// What mbpoll prints when it reads registers, or writes values into them.
std::string Polled(const std::string& device, const std::string& options, const std::string& values = "") {
  const std::string command =
      BRELANT_MBPOLL " -m rtu -b 9600 -P none -0 -1 -q " + options + " " + device + " " + values + " 2>&1";
  const std::unique_ptr<FILE, int (*)(FILE*)> output(popen(command.c_str(), "r"), pclose);
  std::string text;
  std::array<char, 256> part{};
  while (output && fgets(part.data(), part.size(), output.get()) != nullptr) text += part.data();
  return text;
}

TEST(Mbpoll, ReadsAndWritesRegisters) {
  SensorProcess process(UnitOptions({"--id", "5"}));
  const std::string device = process.Line();
  const std::string kinds = Polled(device, "-a 5 -t 3:hex -r 16 -c 4");
  EXPECT_THAT(kinds, HasSubstr("[16]: \t0x0616\n[17]: \t0x0600\n[18]: \t0x001A\n[19]: \t0x0016\n"));
  EXPECT_THAT(Polled(device, "-a 5 -t 4 -r 20 -c 2"), HasSubstr("[20]: \t2300\n[21]: \t2100\n"));
  EXPECT_THAT(Polled(device, "-a 5 -t 3 -r 8"), HasSubstr("Illegal data address"));
  EXPECT_THAT(Polled(device, "-a 5 -t 4 -r 20", "2400 2000"), HasSubstr("Written 2 references"));
  EXPECT_THAT(Polled(device, "-a 5 -t 4 -r 20 -c 2"), HasSubstr("[20]: \t2400\n[21]: \t2000\n"));
  EXPECT_THAT(Polled(device, "-a 5 -t 4 -r 10272"), HasSubstr("[10272]: \t1280\n"));  // EEPROM 4160: ID 5
}

TEST(Mbpoll, GetsNoAnswerFromAnotherAddress) {
  SensorProcess process(UnitOptions({"--id", "5"}));
  EXPECT_THAT(Polled(process.Line(), "-a 4 -o 0.1 -t 4 -r 20"), HasSubstr("timed out"));
}

}  // namespace
}  // namespace brelant::bench
