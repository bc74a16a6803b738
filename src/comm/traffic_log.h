// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <memory>
#include <span>
#include <string>

#include "platform/files.h"
#include "shell/session.h"

namespace brelant {

/// The record of one read in ComLogg.txt (docs/protocol.md, Traffic log): built while the read runs, printed
/// in one go at its end. Does nothing while the log is off.
class ReadRecord {
 public:
  /// Opens the log; throws MachineError if that fails.
  ReadRecord(const Session& session, Files& files);

  void Head(std::int32_t selector, float address, int count, bool isEeprom);
  void RequestToSend(std::uint8_t byte);
  void ClearToReceive(std::uint8_t byte);
  void NoClearToReceive();
  void Request(std::span<const std::uint8_t> frame);
  void NoReply();
  void WrongStatus(std::uint8_t status);
  void Reply(std::span<const std::uint8_t> frame);
  void WrongChecksum(std::uint8_t checksum);

  /// Prints the record and closes the log; throws MachineError.
  void Print();

 private:
  void Mark(const std::string& name, std::span<const std::uint8_t> bytes);

  std::unique_ptr<Files::Log> log_;
  std::string text_;
};

/// Appends one line to the log, if it is on; throws MachineError.
void LogLine(const Session& session, Files& files, const std::string& line);

}  // namespace brelant
