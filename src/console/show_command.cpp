// SPDX-License-Identifier: GPL-3.0-or-later
#include "console/show_command.h"

#include <iostream>
#include <memory>
#include <nlohmann/json.hpp>

#include "console/form_json.h"
#include "console/panel_text.h"
#include "console/visit.h"

namespace brelant {

namespace {

struct ShowOptions {
  Connection connection;
  bool json = false;
};

int Show(const Options& options, const ShowOptions& own) {
  Visit visit(options, own.connection);
  return visit.OpenPanel([&own](const Panel& panel) {
    if (own.json) {
      JsonLines(std::cout).Print(FormJson(panel.form));
    } else {
      std::cout << PanelText(panel) << std::flush;
    }
    return false;
  });
}

}  // namespace

void AddShowCommand(CommandLine& line) {
  const auto own = std::make_shared<ShowOptions>();
  auto& command = AddConnectedCommand(line, "show", "Show the panel of what is attached, after one poll",
                                      own->connection, [&line, own] { return Show(line.options, *own); });
  AddFlag(command, "--json", own->json, "Print one JSON object");
}

}  // namespace brelant
