// SPDX-License-Identifier: GPL-3.0-or-later
// brelant-line-benchmark: how near the transfers come to what the line allows, and what they cost.
#include <CLI/CLI.hpp>
#include <QCoreApplication>
#include <algorithm>
#include <array>
#include <cstdio>
#include <exception>
#include <functional>
#include <iostream>
#include <stdexcept>
#include <string>
#include <vector>

#include <sys/resource.h>

#include "comm/SensorImage.h"
#include "comm/SerialLink.h"
#include "comm/snscom.h"
#include "connection/BRECOM.h"
#include "connection/KiLoggDecoder.h"
#include "connection/unit_names.h"
#include "line/full_logger.h"
#include "line/line_model.h"
#include "line/measured_pump.h"
#include "line/sensor_process.h"
#include "qt/QtClock.h"
#include "qt/QtFiles.h"
#include "qt/QtModbusMaster.h"
#include "qt/QtPump.h"
#include "qt/QtSerialPort.h"
#include "qt/QtSettingsStore.h"
#include "safety/Functions.h"
#include "safety/snsZ7731.h"
#include "safety/unit_poll.h"

namespace {

using namespace brelant;
using namespace brelant::benchmark;

constexpr int kPlatform6Part = 88;
constexpr std::int32_t kWholeRam = 8;
constexpr std::int32_t kWholeEeprom = 30;

constexpr int kSafetyPart = 154;
constexpr double kRatioLimit = 1.05;
constexpr double kRatioLimitByName = 1.10;
constexpr double kLoadLimit = 2;
constexpr double kGapLimit = 16;

/// Nobody: a transfer that asks has failed.
class NoUser : public UserInterface {
 public:
  Reply MessageBox(const std::string& text, Buttons, const std::string&, Icon) override {
    throw std::runtime_error(text);
  }
  std::optional<std::string> InputBox(const std::string&, const std::string&) override { return {}; }
  std::optional<std::string> FileDialog(FileUse, const std::string&) override { return {}; }
  std::optional<std::size_t> PopupMenu(const std::vector<std::string>&) override { return {}; }
  void ShellOpen(const std::string&) override {}
};

/// The program from the image down to the port, on a sensor.
struct Bench {
  explicit Bench(const std::string& device) { link.SetCommPort(device); }

  QtClock clock;
  QtPump qtPump{clock};
  MeasuredPump pump{qtPump, clock};
  QtSerialPort port;
  QtModbusMaster modbus{clock, pump};
  QtFiles files;
  QtSettingsStore store{"/dev/null"};
  NoUser user;
  Machine machine{clock, pump, port, modbus, files, store, user};

  Session session;
  SensorImage image;
  SerialLink link{session, machine};
  snscom com{session, image, link, machine};
};

struct Figures {
  /// In milliseconds.
  double time;
  double gap;
  /// Processor time in percent of one core.
  double load;
};

struct Transfer {
  const char* name;
  LineTime least;
  std::function<bool()> run;
  double limit = kRatioLimit;
};

std::chrono::microseconds ProcessorTime() {
  rusage usage{};
  getrusage(RUSAGE_SELF, &usage);
  return std::chrono::seconds(usage.ru_utime.tv_sec + usage.ru_stime.tv_sec) +
         std::chrono::microseconds(usage.ru_utime.tv_usec + usage.ru_stime.tv_usec);
}

double Milliseconds(std::chrono::microseconds time) {
  return static_cast<double>(time.count()) / 1000;
}

Figures Measure(Bench& bench, const Transfer& transfer) {
  const auto start = bench.clock.Now();
  const auto processorStart = ProcessorTime();
  bench.pump.Begin();
  if (!transfer.run()) throw std::runtime_error(transfer.name + (": " + bench.session.LastError));
  const double time = Milliseconds(bench.clock.Now() - start);
  const double processorTime = Milliseconds(ProcessorTime() - processorStart);
  return {time, Milliseconds(bench.pump.LongestGap()), 100 * processorTime / time};
}

/// What else the machine does can only add, so the least of several is the figure of the program.
Figures Best(Bench& bench, const Transfer& transfer, int runs) {
  auto best = Measure(bench, transfer);
  for (int i = 1; i < runs; ++i) {
    const auto figures = Measure(bench, transfer);
    best = {std::min(best.time, figures.time), std::min(best.gap, figures.gap),
            std::min(best.load, figures.load)};
  }
  return best;
}

/// Prints the row; false if a limit is broken.
bool Judge(const Transfer& transfer, const Figures& figures) {
  const double ratio = figures.time / transfer.least.count();
  const bool holds = ratio <= transfer.limit && figures.load <= kLoadLimit && figures.gap <= kGapLimit;
  std::printf("%-26s %9.0f %9.0f %7.3f %9.2f %9.2f   %s\n", transfer.name, transfer.least.count(),
              figures.time, ratio, figures.load, figures.gap, holds ? "holds" : "BROKEN");
  return holds;
}

/// A safety unit, polled and exported from as its panel does it.
struct SafetyUnit {
  SafetyUnit(Bench& bench, const std::string& device, bool modbus)
      : sens({bench.session, bench.link, bench.files, bench.modbus, names.names, names.modbus}),
        decoder({sens, bench.files, bench.user, [&bench] { return bench.clock.LocalTime(); },
                 Functions::RawToDisplay, Functions::UnitLetter, Functions::LoggerPeriodSeconds}) {
    unit.ProtocolInUse = modbus ? snsZ7731::modbus : snsZ7731::kiBus;
    if (modbus) sens.SelectModbus(1);
    sens.ConnectSensor(device, kOnlyUnit);
    sens.onProgress = [&bench](int) {
      const auto until = bench.clock.Now() + std::chrono::milliseconds(5);
      while (bench.clock.Now() < until) bench.pump.Wait(until);
    };
    decoder.SetLogger(1);
  }
  bool Poll() {
    constexpr int kState = 383;
    constexpr int kMask = 128;
    PollUnit(sens, unit);
    sens.Memory().ReadBytes(kState, 1, SensorMemory::ram, kMask);
    return true;
  }

  UnitNames names;
  snsZ7731 unit;
  BRECOM sens;
  KiLoggDecoder decoder;
};

bool MeasurePoll(const std::string& sensorProgram, int runs, bool modbus) {
  const SensorProcess sensor(sensorProgram, kSafetyPart, modbus);
  Bench bench(sensor.Device());
  SafetyUnit unit(bench, sensor.Device(), modbus);
  const auto line = modbus ? LeastModbusTime(6, 10) : LeastKiBusTime(3, 6, 21);
  const Transfer poll{modbus ? "poll on Modbus" : "poll on KiBus", line + LampTime(modbus ? 6 : 9),
                      [&unit] { return unit.Poll(); }, kRatioLimitByName};
  return Judge(poll, Best(bench, poll, runs));
}

/// What an export asks: five words of the logger's state before and after the age, and that before and after
/// the samples; a Case word, the part number twice and the serial number in three bytes; 1500 samples.
LineTime LeastExportTime(bool modbus) {
  constexpr int kSampleBytes = 2 * 1500;
  constexpr int kWords = 2 * (5 + 1 + 5);
  constexpr int kBytes = 1 + 3;
  constexpr int kParts = 2;
  if (modbus) {
    // Up to 125 registers in a request.
    constexpr int kRequests = kWords + kBytes + kParts;
    return LeastModbusTime(kRequests + 12, kRequests + kSampleBytes / 2);
  }
  // Four bytes in a frame. Only the part number lies within reach of an address of one byte.
  return LeastKiBusTime(kParts, kWords + kBytes + kSampleBytes / 4,
                        kParts + 2 * kWords + kBytes + kSampleBytes);
}

bool MeasureExport(const std::string& sensorProgram, int runs, bool modbus) {
  const FullLogger logger;
  const SensorProcess sensor(sensorProgram, kSafetyPart, modbus, logger.ImageFile());
  Bench bench(sensor.Device());
  SafetyUnit unit(bench, sensor.Device(), modbus);
  // Without the lamp: how often it flashes is for the export to say.
  const Transfer transfer{modbus ? "full logger on Modbus" : "full logger on KiBus", LeastExportTime(modbus),
                          [&] { return unit.decoder.Export(logger.ExportFile()); }, kRatioLimitByName};
  const auto figures = Best(bench, transfer, runs);
  logger.CheckExport();
  return Judge(transfer, figures);
}

bool Run(const std::string& sensorProgram, int runs, bool exports) {
  const SensorProcess sensor(sensorProgram, kPlatform6Part);
  Bench bench(sensor.Device());
  auto& com = bench.com;
  // The platform is known before the first measured transfer, as in the program; and the write, which needs
  // an unlocked memory and all its bytes, measures its chunks alone.
  const std::array<Transfer, 3> transfers{
      Transfer{"read 256 bytes of RAM", LeastReadTime(256, 44),
               [&com] { return com.ReadSensorMemory(kWholeRam, 0, 0, false, false); }},
      Transfer{"read 512 bytes of EEPROM", LeastReadTime(512, 86),
               [&com] { return com.ReadSensorMemory(kWholeEeprom, 0, 0, true, false); }},
      Transfer{"write 512 bytes of EEPROM", LeastWriteTime(512, 128), [&com] {
                 return com.WriteSensorMemory(kWholeEeprom, 0, 0, true, false, false, false, false, true);
               }}};
  if (!bench.com.SensorCommand(snscom::unlockEeprom, false)) throw std::runtime_error("no answer");
  std::printf("%-26s %9s %9s %7s %9s %9s\n", "", "least ms", "ms", "ratio", "core %", "gap ms");
  bool holds = true;
  for (const auto& transfer : transfers) holds = Judge(transfer, Best(bench, transfer, runs)) && holds;
  for (const bool modbus : {false, true}) holds = MeasurePoll(sensorProgram, runs, modbus) && holds;
  for (const bool modbus : {false, true}) {
    holds = (!exports || MeasureExport(sensorProgram, runs, modbus)) && holds;
  }
  std::printf("%-26s %9s %9s %7.3f %9.2f %9.2f\n", "limit", "", "", kRatioLimit, kLoadLimit, kGapLimit);
  return holds;
}

}  // namespace

int main(int argc, char** argv) {
  const QCoreApplication application(argc, argv);
  std::string sensor = QCoreApplication::applicationDirPath().toStdString() + "/brelant-sensor";
  int runs = 3;
  bool exports = false;
  CLI::App app("Measures transfers against a paced virtual sensor. Exit status 1: a limit is broken.");
  app.add_option("--sensor", sensor, "The virtual sensor")->capture_default_str();
  app.add_option("--runs", runs, "Runs of each transfer, the best of which counts")
      ->check(CLI::PositiveNumber)
      ->capture_default_str();
  app.add_flag("--export", exports, "Exports of a full logger too, some 25 s for each run");
  CLI11_PARSE(app, argc, argv);
  try {
    return Run(sensor, runs, exports) ? 0 : 1;
  } catch (const std::exception& error) {
    std::cerr << error.what() << std::endl;
    return 1;
  }
}
