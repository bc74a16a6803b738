// SPDX-License-Identifier: GPL-3.0-or-later
// brelant-sensor: a virtual sensor on a pseudo-terminal.
#include <CLI/CLI.hpp>
#include <algorithm>
#include <charconv>
#include <cstdint>
#include <exception>
#include <filesystem>
#include <functional>
#include <iostream>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <stdexcept>
#include <string>
#include <string_view>
#include <system_error>
#include <vector>

#include "bench/modbus_unit.h"
#include "bench/pty_server.h"
#include "bench/virtual_sensor.h"
#include "bench/whole_file.h"

namespace {

using brelant::bench::BadCells;
using brelant::bench::FaultRates;
using brelant::bench::LineEnd;
using brelant::bench::SensorSetup;
using brelant::bench::VirtualSensor;

constexpr int kFailed = 1;
constexpr int kBadOptions = 2;

struct Options {
  int part = 0;
  std::optional<int> variant;
  std::optional<int> id;
  bool modbus = false;
  std::optional<std::filesystem::path> link;
  std::optional<std::filesystem::path> image;
  bool pace = false;
  std::vector<std::string> faults;
  std::uint32_t seed = 1;
};

void Describe(CLI::App& app, Options& options) {
  app.add_option("--part", options.part, "the part number that the sensor reports")->required();
  app.add_option("--variant", options.variant, "the product variant, if not the usual one");
  app.add_option("--id", options.id, "the bus ID, 1 to 29; on Modbus the unit's address");
  app.add_flag("--modbus", options.modbus, "speak Modbus RTU (part number 154 only)");
  app.add_option("--link", options.link, "make PATH a link to the device")->type_name("PATH");
  app.add_option("--image", options.image, "keep the sensor's memory in FILE")->type_name("FILE");
  app.add_flag("--pace", options.pace, "keep the line's 9600 bit/s");
  app.add_option("--fault", options.faults,
                 "how often replies go wrong, 0 to 1: silence, wrong, short, late, noise, nak, hangup;\n"
                 "or an address of EEPROM that cannot be written: stuck, refused")
      ->delimiter(',')
      ->type_name("KIND=NUMBER");
  app.add_option("--seed", options.seed, "the same seed gives the same faults");
}

const std::map<std::string, double FaultRates::*, std::less<>>& FaultKinds() {
  static const std::map<std::string, double FaultRates::*, std::less<>> kinds{
      {"silence", &FaultRates::silence},   {"wrong", &FaultRates::wrong_byte},
      {"short", &FaultRates::short_reply}, {"late", &FaultRates::late},
      {"noise", &FaultRates::noise},       {"nak", &FaultRates::nak},
      {"hangup", &FaultRates::hang_up}};
  return kinds;
}

const std::map<std::string, std::set<std::size_t> BadCells::*, std::less<>>& BadCellKinds() {
  static const std::map<std::string, std::set<std::size_t> BadCells::*, std::less<>> kinds{
      {"stuck", &BadCells::stuck}, {"refused", &BadCells::refused}};
  return kinds;
}

double ParseRate(const std::string& text) {
  try {
    std::size_t used = 0;
    const double rate = std::stod(text, &used);
    if (used == text.size()) return rate;
  } catch (const std::logic_error&) {
    // told below
  }
  throw std::invalid_argument("\"" + text + "\" is no rate.");
}

std::size_t ParseAddress(const std::string& text) {
  std::size_t address = 0;
  const char* end = text.data() + text.size();
  const auto [stop, error] = std::from_chars(text.data(), end, address);
  if (error == std::errc() && stop == end) return address;
  throw std::invalid_argument("\"" + text + "\" is no address.");
}

void ParseFault(const std::string& text, SensorSetup& setup) {
  const std::size_t equals = std::min(text.find('='), text.size());
  const std::string_view kind = std::string_view(text).substr(0, equals);
  const std::string number = text.substr(std::min(equals + 1, text.size()));
  const auto rate = FaultKinds().find(kind);
  const auto cells = BadCellKinds().find(kind);
  if (equals < text.size() && rate != FaultKinds().end()) {
    setup.faults.*rate->second = ParseRate(number);
  } else if (equals < text.size() && cells != BadCellKinds().end()) {
    (setup.bad_cells.*cells->second).insert(ParseAddress(number));
  } else {
    throw std::invalid_argument("\"" + text + "\" is no fault; write KIND=NUMBER.");
  }
}

SensorSetup SetupOf(const Options& options) {
  SensorSetup setup{.part = options.part,
                    .variant = options.variant,
                    .id = options.id.value_or(1),
                    .pace = options.pace,
                    .seed = options.seed};
  for (const std::string& fault : options.faults) ParseFault(fault, setup);
  return setup;
}

VirtualSensor MakeSensor(const SensorSetup& setup, const Options& options) {
  VirtualSensor sensor(setup);
  if (!options.image) return sensor;
  const auto image = brelant::bench::ReadWhole(*options.image);
  if (image && !sensor.Restore(*image)) {
    throw std::invalid_argument(options.image->string() + " is no image of this sensor.");
  }
  if (options.id) sensor.SetId(*options.id);
  return sensor;
}

void Serve(VirtualSensor& sensor, LineEnd& unit, const Options& options) {
  brelant::bench::PtyServer server(unit, options.pace);
  std::optional<brelant::bench::DeviceLink> link;
  if (options.link) link.emplace(*options.link, server.DeviceName());
  std::cout << server.DeviceName() << std::endl;
  const auto store = [&] {
    if (options.image) brelant::bench::WriteWhole(*options.image, sensor.Image());
  };
  server.Serve(store);
  sensor.MindTasks(server.Now());
  store();
}

}  // namespace

int main(int argc, char** argv) {
  Options options;
  CLI::App app("A virtual CO2 sensor on a pseudo-terminal. The first line it prints is the device's name.",
               "brelant-sensor");
  Describe(app, options);
  try {
    app.parse(argc, argv);
  } catch (const CLI::ParseError& error) {
    return app.exit(error) == 0 ? 0 : kBadOptions;
  }
  try {
    const SensorSetup setup = SetupOf(options);
    VirtualSensor sensor = MakeSensor(setup, options);
    std::unique_ptr<LineEnd> modbus;
    if (options.modbus) modbus = brelant::bench::MakeModbusUnit(sensor, setup);
    Serve(sensor, modbus ? *modbus : sensor, options);
    return 0;
  } catch (const std::invalid_argument& error) {
    std::cerr << error.what() << '\n';
    return kBadOptions;
  } catch (const std::exception& error) {
    std::cerr << error.what() << '\n';
    return kFailed;
  }
}
