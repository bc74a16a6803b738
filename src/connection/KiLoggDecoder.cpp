// SPDX-License-Identifier: GPL-3.0-or-later
#include "connection/KiLoggDecoder.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <chrono>
#include <cstdio>
#include <string_view>

#include "connection/connection_error.h"
#include "platform/machine_error.h"

namespace brelant {

namespace {

constexpr const char* kFilter = "Text Files (*.txt)| *.txt";
constexpr int kSamples = 1024;
constexpr int kBytesOfALogger = 3072;
constexpr int kMostSamples = kBytesOfALogger / 2;
constexpr int kOldestAge = 65535;
constexpr int kAttempts = 5;

struct Channel {
  int number;
  std::string_view name;
};
constexpr std::array<Channel, 5> kChannels{
    {{4, "TEMP 1"}, {5, "CO2"}, {8, "TWA CO2"}, {9, "TEMP 2"}, {11, "WEIGHT"}}};

std::string_view NameOf(std::int32_t number) {
  const auto channel = std::find_if(kChannels.begin(), kChannels.end(),
                                    [&](const auto& each) { return each.number == number; });
  if (channel == kChannels.end()) throw ConnectionError("The logger has no channel that is known.");
  return channel->name;
}

std::string DateAndTime(std::int64_t seconds) {
  using namespace std::chrono;
  const sys_seconds moment{std::chrono::seconds(seconds)};
  const auto day = floor<days>(moment);
  const year_month_day date(day);
  const hh_mm_ss time(moment - day);
  std::array<char, 64> text{};
  const int length =
      std::snprintf(text.data(), text.size(), "%04d-%02u-%02u %02d:%02d:%02d", static_cast<int>(date.year()),
                    static_cast<unsigned>(date.month()), static_cast<unsigned>(date.day()),
                    static_cast<int>(time.hours().count()), static_cast<int>(time.minutes().count()),
                    static_cast<int>(time.seconds().count()));
  return {text.data(), static_cast<std::size_t>(length)};
}

std::string Decimal(double value) {
  if (value == 0) return "0";
  std::array<char, 400> text{};
  const auto end = std::to_chars(text.data(), text.data() + text.size(), value, std::chars_format::fixed).ptr;
  return {text.data(), end};
}

std::string Row(std::string_view left, std::string_view right) {
  return std::string(left) + "\t" + std::string(right) + "\r\n";
}

/// A place in the ring, `steps` behind another one or, if negative, before it.
std::int32_t Around(std::int32_t place, std::int32_t steps, std::int32_t size) {
  return ((place + steps) % size + size) % size;
}

}  // namespace

void KiLoggDecoder::SetLogger(int logger) {
  if (logger != 0 && logger != 1) throw ConnectionError("There is no logger " + std::to_string(logger) + ".");
  logger_ = 1 - logger;
}

bool KiLoggDecoder::Export(const std::string& fileName) {
  const auto name = fileName.empty()
                        ? context_.userInterface.FileDialog(UserInterface::FileUse::save, kFilter)
                        : std::optional(fileName);
  if (!name) return true;
  const auto text = TextOf(ReadRecord());
  const std::vector<std::uint8_t> bytes(text.begin(), text.end());
  try {
    context_.files.Write(*name, bytes);
  } catch (const MachineError& failure) {
    throw ConnectionError(failure.what());
  }
  return true;
}

std::int32_t KiLoggDecoder::Get(const std::string& name) {
  return context_.connection.Nodes().FindNode(name, "").GetValue(true);
}

KiLoggDecoder::State KiLoggDecoder::ReadState() {
  const auto ofLogger = [this](const char* family) { return family + std::to_string(logger_); };
  State state{};
  state.channel = Get("eaState0Alg_2" + std::to_string(logger_ + 1)) & 15;
  state.period = context_.periodSeconds(Get("eaCountPar_14") >> 8 & 127);
  state.size = Get("eaLoggBufferSize_0");
  state.count = Get(ofLogger("raLoggCount_"));
  state.next = Get(ofLogger("raLoggNext_"));
  const bool isSize = state.size > 0 && state.size <= kMostSamples;
  if (!isSize || state.count > state.size || state.next >= state.size || state.period <= 0) {
    throw ConnectionError("The memory of the logger cannot be understood.");
  }
  return state;
}

/// The age belongs to the newest sample only if none came while it was asked for.
KiLoggDecoder::Moment KiLoggDecoder::ReadMoment() {
  auto state = ReadState();
  for (int attempt = 1; attempt <= kAttempts; ++attempt) {
    const auto age = Get("raLoggAge_0");
    const auto at = context_.localTime();
    const auto after = ReadState();
    if (after == state) return {state, age, at};
    state = after;
  }
  throw ConnectionError("The logger goes on too fast to be read.");
}

KiLoggDecoder::Record KiLoggDecoder::ReadRecord() {
  auto record = ReadHead();
  const auto& start = record.start;
  record.samples = ReadRing(start.state);
  const auto lost = std::min(Overwritten(start), start.state.count);
  record.samples.erase(record.samples.begin(), record.samples.begin() + lost);
  return record;
}

/// What stands above the samples, before the long read, as it may be what cannot be had.
KiLoggDecoder::Record KiLoggDecoder::ReadHead() {
  // The samples are all that takes time.
  const ProgressShare share(context_.connection, 0, 0);
  const auto start = ReadMoment();
  static_cast<void>(NameOf(start.state.channel));
  const auto caseWord = Get("eaCaseChannel_" + std::to_string(start.state.channel));
  const auto part = context_.connection.Memory().PartNumber();
  return {part, context_.connection.SerialNumberText(), start, caseWord, {}};
}

/// The samples of that moment, the oldest first.
std::vector<std::int32_t> KiLoggDecoder::ReadRing(const State& state) {
  std::vector<std::int32_t> samples;
  if (state.count == 0) return samples;
  const auto oldest = Around(state.next, -state.count, state.size);
  // One run, so that the progress is one too.
  const bool isAcrossTheEnd = oldest + state.count > state.size;
  const auto first = isAcrossTheEnd ? 0 : oldest;
  const auto length = isAcrossTheEnd ? state.size : state.count;
  const int address = kSamples + kBytesOfALogger * logger_ + 2 * first;
  const auto bytes = context_.connection.Memory().ReadBlock(address, 2 * length, SensorMemory::ram);
  for (std::int32_t i = 0; i < state.count; ++i) {
    const auto at = static_cast<std::size_t>(2 * (Around(oldest, i, state.size) - first));
    samples.push_back(bytes.at(at) << 8 | bytes.at(at + 1));
  }
  return samples;
}

std::int32_t KiLoggDecoder::Overwritten(const Moment& start) {
  const auto& before = start.state;
  const auto now = ReadMoment();
  const auto& after = now.state;
  const auto moved = Around(after.next, -before.next, before.size);
  const bool isSameRun = after.channel == before.channel && after.period == before.period &&
                         after.size == before.size &&
                         after.count == std::min(before.count + moved, before.size);
  if (!isSameRun) throw ConnectionError("The logger was started anew while it was read.");
  // Once around, the place of the next sample tells nothing.
  if ((now.at - start.at) / before.period >= before.size) {
    throw ConnectionError("The logger goes on too fast to be read.");
  }
  return std::max(0, before.count + moved - before.size);
}

std::string KiLoggDecoder::TextOf(const Record& record) const {
  const auto& [part, serial, start, caseWord, samples] = record;
  const auto period = start.state.period;
  std::string text;
  text += Row("Part number", std::to_string(part));
  text += Row("Serial number", serial);
  text += Row("Logger", std::to_string(logger_ + 1));
  text += Row("Channel", NameOf(start.state.channel));
  text += Row("Unit", context_.unitLetter(caseWord));
  text += Row("Period (s)", std::to_string(period));
  text += Row("Exported", DateAndTime(start.at));
  if (start.age >= kOldestAge)
    text += Row("Note", "The samples are at least as old as told, and may be older.");
  text += Row("Time", "Value");
  auto time = start.at - start.age - period * (static_cast<std::int64_t>(samples.size()) - 1);
  for (const auto raw : samples) {
    text += Row(DateAndTime(time), Decimal(context_.rawToDisplay(raw, caseWord)));
    time += period;
  }
  return text;
}

}  // namespace brelant
