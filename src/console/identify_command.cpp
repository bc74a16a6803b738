// SPDX-License-Identifier: GPL-3.0-or-later
#include "console/identify_command.h"

#include <iostream>
#include <memory>
#include <nlohmann/json.hpp>
#include <optional>
#include <utility>

#include "app/connection.h"
#include "connection/connection_error.h"
#include "console/json_lines.h"
#include "console/visit.h"

namespace brelant {

namespace {

struct IdentifyOptions {
  Connection connection;
  bool json = false;
};

/// A unit that is reached by name tells of itself by name.
std::optional<Json> AskByNames(Visit& visit, Json identity) {
  try {
    const auto sens = visit.Connect();
    const auto text = sens->SerialNumberText();
    const auto part = std::to_string(sens->Memory().PartNumber());
    identity["variant"] = sens->Nodes().FindNode("eaUserInfo_29", "").GetValue(true);
    identity["serial"] = std::stol(text.substr(part.size()));
    identity["identity"] = text;
    return identity;
  } catch (const ConnectionError& error) {
    visit.program().session.Fail(error.what());
    return {};
  }
}

/// Nothing, with the reason in LastError, if the sensor stops answering. What is merely unknown is 0.
std::optional<Json> Ask(Visit& visit) {
  auto& program = visit.program();
  auto& info = program.info;
  auto& session = program.session;
  const auto platform = info.GetPlatform();
  Json identity{
      {"part", info.GetPartNumber()}, {"platform", platform}, {"generation", info.GetProtocolGeneration()}};
  session.LastError.clear();
  if (IsReachedByName(platform)) return AskByNames(visit, std::move(identity));
  identity["variant"] = static_cast<int>(info.GetProductVariant());
  identity["serial"] = static_cast<long>(info.GetSerialNumber());
  identity["identity"] = info.GetSensorIdentity();
  if (platform != 0 && !session.LastError.empty()) return {};
  return identity;
}

void Print(const Json& identity, bool asJson) {
  if (asJson) return JsonLines(std::cout).Print(identity);
  for (const auto& [name, value] : identity.items()) {
    constexpr std::size_t kColumn = 12;
    std::cout << name << std::string(kColumn - name.size(), ' ')
              << (value.is_string() ? value.get<std::string>() : value.dump()) << "\n";
  }
}

int Identify(const Options& options, const IdentifyOptions& own) {
  Visit visit(options, own.connection);
  const auto identity = visit.FindSensor() ? Ask(visit) : std::nullopt;
  if (!identity) {
    std::cerr << visit.program().session.LastError << std::endl;
    return kFailed;
  }
  Print(*identity, own.json);
  return kDone;
}

}  // namespace

void AddIdentifyCommand(CommandLine& line) {
  const auto own = std::make_shared<IdentifyOptions>();
  auto& command = AddConnectedCommand(line, "identify", "Tell what is attached", own->connection,
                                      [&line, own] { return Identify(line.options, *own); });
  AddFlag(command, "--json", own->json, "Print one JSON object");
}

}  // namespace brelant
