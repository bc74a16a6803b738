// SPDX-License-Identifier: GPL-3.0-or-later
#include "comm/traffic_log.h"

#include "shell/Common.h"

namespace brelant {

namespace {

/// Nothing while the log is off.
std::unique_ptr<Files::Log> OpenLog(const Session& session, Files& files) {
  return session.TrafficLogOn ? files.OpenLog(session.AppDir + "\\ComLogg.txt") : nullptr;
}

}  // namespace

void LogLine(const Session& session, Files& files, const std::string& line) {
  if (const auto log = OpenLog(session, files)) log->PrintLine(line);
}

ReadRecord::ReadRecord(const Session& session, Files& files) : log_(OpenLog(session, files)) {}

void ReadRecord::Head(std::int32_t selector, float address, int count, bool isEeprom) {
  text_ = "READ(" + std::to_string(selector) + " " + NumberText(address) + " " + std::to_string(count) + " " +
          (isEeprom ? "True" : "False") + ")";
}

void ReadRecord::RequestToSend(std::uint8_t byte) {
  text_ += "\r\n";
  Mark("RTS", {&byte, 1});
}

void ReadRecord::ClearToReceive(std::uint8_t byte) {
  Mark("CTR", {&byte, 1});
}
void ReadRecord::NoClearToReceive() {
  Mark("CTR", {});
}
void ReadRecord::Request(std::span<const std::uint8_t> frame) {
  Mark("MR", frame);
}
void ReadRecord::NoReply() {
  Mark("DC", {});
}
void ReadRecord::WrongStatus(std::uint8_t status) {
  Mark("DC", {&status, 1});
}
void ReadRecord::Reply(std::span<const std::uint8_t> frame) {
  Mark("DC", frame);
}
void ReadRecord::WrongChecksum(std::uint8_t checksum) {
  text_ += " " + std::to_string(checksum);
}

void ReadRecord::Print() {
  if (log_) log_->PrintLine(text_);
  log_.reset();
}

void ReadRecord::Mark(const std::string& name, std::span<const std::uint8_t> bytes) {
  text_ += " " + name + "(";
  for (std::size_t i = 0; i < bytes.size(); ++i) text_ += (i > 0 ? " " : "") + std::to_string(bytes[i]);
  text_ += ")";
}

}  // namespace brelant
