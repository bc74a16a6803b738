// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "connection/BRECOM.h"
#include "platform/files.h"
#include "platform/user_interface.h"

namespace brelant {

/// Exports what a unit has logged into its own memory to a text file (docs/files.md, Logger files).
class KiLoggDecoder {
 public:
  struct Context {
    BRECOM& connection;
    Files& files;
    UserInterface& userInterface;
    /// The date and time of the wall clock, as seconds since 1970-01-01 00:00:00 of the same wall clock.
    std::function<std::int64_t()> localTime;
    /// The rules of Case words and of timing codes, 0 to 127.
    std::function<double(std::int32_t raw, std::int32_t caseWord)> rawToDisplay;
    std::function<std::string(std::int32_t caseWord)> unitLetter;
    std::function<std::int32_t(std::int32_t code)> periodSeconds;
  };

  explicit KiLoggDecoder(const Context& context) : context_(context) {}

  /// The numbers run the other way round than the unit's: 1 is the logger of "eaState0Alg_21", 0 that of
  /// "eaState0Alg_22". Throws ConnectionError for any other.
  void SetLogger(int logger);

  /// Reads the logger and writes the file, whole or not at all. An empty name asks the user. True: done, or
  /// cancelled in that question. Throws ConnectionError. Progress is told by the connection.
  bool Export(const std::string& fileName);

 private:
  /// What decides which samples there are.
  struct State {
    std::int32_t channel;
    /// In seconds.
    std::int32_t period;
    std::int32_t size;
    std::int32_t count;
    std::int32_t next;
    bool operator==(const State&) const = default;
  };
  struct Moment {
    State state;
    std::int32_t age;
    std::int64_t at;
  };
  struct Record {
    int part;
    std::string serial;
    Moment start;
    std::int32_t caseWord;
    /// The oldest first; the newest is that of `start`.
    std::vector<std::int32_t> samples;
  };

  std::int32_t Get(const std::string& name);
  State ReadState();
  Moment ReadMoment();
  Record ReadRecord();
  Record ReadHead();
  std::vector<std::int32_t> ReadRing(const State& state);
  /// How many samples of that moment have been overwritten since, the oldest first.
  std::int32_t Overwritten(const Moment& start);
  std::string TextOf(const Record& record) const;

  Context context_;
  /// By the unit's numbers.
  int logger_ = 0;
};

}  // namespace brelant
