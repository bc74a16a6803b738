// SPDX-License-Identifier: GPL-3.0-or-later
#include "console/watch_command.h"

#include <CLI/CLI.hpp>
#include <iostream>
#include <memory>
#include <nlohmann/json.hpp>
#include <optional>

#include "console/reading.h"
#include "console/visit.h"
#include "qt/interrupt.h"

namespace brelant {

namespace {

struct WatchOptions {
  Connection connection;
  bool json = false;
  bool csv = false;
  std::optional<int> count;
};

void Print(const Reading& reading, const WatchOptions& own, bool isFirst) {
  if (own.json) return JsonLines(std::cout).Print(ReadingJson(reading));
  if (!own.csv) {
    std::cout << ReadingText(reading) << std::endl;
    return;
  }
  if (isFirst) std::cout << CsvHeader(reading) << "\n";
  std::cout << CsvRow(reading) << std::endl;
}

int Watch(const Options& options, const WatchOptions& own) {
  Visit visit(options, own.connection);
  const Interrupt interrupt([&visit] { visit.End(); });
  int printed = 0;
  return visit.OpenPanel([&](const Panel& panel) {
    Print(TakeReading(panel), own, printed == 0);
    ++printed;
    return !own.count || printed < *own.count;
  });
}

}  // namespace

void AddWatchCommand(CommandLine& line) {
  const auto own = std::make_shared<WatchOptions>();
  auto& command = AddConnectedCommand(line, "watch", "Print a line a poll, until ended", own->connection,
                                      [&line, own] { return Watch(line.options, *own); });
  command.add_option("--count", own->count, "End after that many polls")->check(CLI::PositiveNumber);
  auto* json = command.add_flag("--json", own->json, "Print JSON objects");
  command.add_flag("--csv", own->csv, "Print comma-separated values below their names")->excludes(json);
}

}  // namespace brelant
