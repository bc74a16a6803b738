// SPDX-License-Identifier: GPL-3.0-or-later
#include "console/send_command.h"

#include <iostream>
#include <memory>
#include <nlohmann/json.hpp>
#include <string>

#include "console/json_lines.h"
#include "console/visit.h"
#include "qt/interrupt.h"

namespace brelant {

namespace {

struct SendOptions {
  Connection connection;
  std::string file;
  bool json = false;
};

int Send(const Options& options, const SendOptions& own) {
  Visit visit(options, own.connection);
  auto& session = visit.program().session;
  // As the Cancel button does: the transfer ends at its next step.
  const Interrupt interrupt([&session] {
    session.CancelPressed = true;
    session.LastError = kCancelled;
  });
  if (!visit.Send(own.file)) {
    std::cerr << (session.LastError == kCancelled ? "Cancelled" : session.LastError) << std::endl;
    return kFailed;
  }
  if (own.json) {
    JsonLines(std::cout).Print(Json{{"sent", own.file}});
  } else {
    std::cout << "Sent " << own.file << std::endl;
  }
  return kDone;
}

}  // namespace

void AddSendCommand(CommandLine& line) {
  const auto own = std::make_shared<SendOptions>();
  auto& command = AddConnectedCommand(line, "send", "Send a settings file to the sensor", own->connection,
                                      [&line, own] { return Send(line.options, *own); });
  AddFile(command, own->file, "The settings file", true);
  AddFlag(command, "--json", own->json, "Print one JSON object");
}

}  // namespace brelant
