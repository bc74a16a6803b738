// SPDX-License-Identifier: GPL-3.0-or-later
#include "comm/snscom.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <exception>
#include <optional>

#include "comm/Exchange.h"
#include "comm/memory_blocks.h"
#include "comm/platform_rule.h"
#include "platform/machine_error.h"
#include "shell/Common.h"

namespace brelant {

using kibus::AddressForm;
using kibus::Chunk;

namespace {

constexpr int kPartAddress = 65;
constexpr int kTmoAddress = 230;
constexpr int kRamLimit = 255;
constexpr int kWordEepromLimit = 511;
constexpr int kPlatform7Limit = 1023;
constexpr int kPlatform8WriteLimit = 8192;
constexpr std::size_t kWriteFlags = 1025;

constexpr int kCommandClearLimit = 20;
constexpr int kCommandReplyLimit = 3000;
constexpr int kCommandAttempts = 100;
constexpr int kCommandReopenAttempt = 50;

struct CommandTexts {
  const char* busy;
  const char* failure;
};

constexpr std::array<CommandTexts, 6> kCommandTexts{{
    {"Saving to RAM", "Can't save to RAM"},
    {"Saving to EEPROM", "Can't save to EEPROM"},
    {"Locking EEPROM", "Can't lock EEPROM"},
    {"Unlocking EEPROM", "Can't unlock EEPROM"},
    {"Saving ID to EEPROM", "Can't save ID to sensor"},
    {"TWA reset", "Can't reset TWA"},
}};

const CommandTexts& TextsOf(std::int32_t operation) {
  return kCommandTexts.at(static_cast<std::size_t>(operation));
}

int ReadLimit(bool isEeprom, std::uint8_t platform) {
  if (!isEeprom) return kRamLimit;
  return platform == 7 ? kPlatform7Limit : platform == 8 ? 0 : kWordEepromLimit;
}

int WriteLimit(bool isEeprom, std::uint8_t platform) {
  return isEeprom && platform == 8 ? kPlatform8WriteLimit : ReadLimit(isEeprom, platform);
}

bool InRange(int address, int first, int count) {
  return address >= first && address < first + count;
}

int CountFlags(const std::vector<bool>& flags) {
  return static_cast<int>(std::count(flags.begin(), flags.end(), true));
}

}  // namespace

snscom::snscom(Session& session, SensorImage& image, SerialLink& link, const Machine& machine)
    : session_(session), image_(image), link_(link), machine_(machine) {}

void snscom::ClearImage(std::uint8_t id) {
  session_.SensorId = id;
  image_.Clear();
}

void snscom::SelectBlock(std::int32_t selector) {
  const auto* block = FindMemoryBlock(selector);
  if (block == nullptr) return;
  std::fill_n(image_.ReadRequest.begin(), block->flagLimit + 1, std::uint8_t{0});
  for (const auto& range : block->ranges) {
    std::fill(image_.ReadRequest.begin() + range.first, image_.ReadRequest.begin() + range.last + 1,
              std::uint8_t{255});
  }
}

bool snscom::ReadSensorMemory(std::int32_t selector, float address, std::uint8_t count, bool isEeprom,
                              bool keepPortOpen, std::uint8_t retries, bool reportError) {
  // The platform may have to be read itself: that read must be over before this one touches log and
  // selection.
  if (isEeprom) GetPlatform();
  return RunTransfer(keepPortOpen, reportError ? "Can't read from sensor" : "", [&] {
    ReadRecord record(session_, machine_.files);
    record.Head(selector, address, count, isEeprom);
    session_.BusBusyText = "Reading from sensor";
    machine_.pump.DoEvents();
    bool done = false;
    try {
      done = Read({selector, static_cast<int>(address), count}, isEeprom, retries, record);
    } catch (const MachineError&) {
      record.Print();
      throw;
    }
    record.Print();
    return done;
  });
}

bool snscom::WriteSensorMemory(std::int32_t selector, float address, std::uint8_t count, bool isEeprom,
                               bool saveAfter, bool keepPortOpen, bool unlockFirst, bool lockAfter,
                               bool forceAll) {
  if (isEeprom) GetPlatform();
  return RunTransfer(keepPortOpen, "Can't save to sensor", [&] {
    return Write({selector, static_cast<int>(address), count}, isEeprom, saveAfter, unlockFirst, lockAfter,
                 forceAll);
  });
}

bool snscom::SensorCommand(std::int32_t operation, bool keepPortOpen) {
  // The generation decides about the frame in the middle of the exchange, where there is no room for a read.
  GetPartNumber();
  const bool done = RunTransfer(keepPortOpen, TextsOf(operation).failure, [&] {
    if (operation == unlockEeprom && GetPlatform() == 6 && !ResetTmoCounter()) return false;
    return Command(operation);
  });
  if (done) link_.Close();
  return done;
}

std::uint8_t snscom::GetPartNumber() {
  if (!image_.RamValid[kPartAddress]) {
    // Asked for in the middle of things: the selection of whoever asks must outlast this read.
    const auto selection = image_.ReadRequest;
    const bool done = ReadSensorMemory(0, kPartAddress, 3, false, false);
    image_.ReadRequest = selection;
    if (!done) return 0;
  }
  return static_cast<std::uint8_t>(AsByte(image_.RamImage[kPartAddress]));
}

std::uint8_t snscom::GetPlatform() {
  const auto platform = PlatformOfPart(GetPartNumber());
  if (platform == 0) session_.Fail("Unknown product");
  return platform;
}

std::uint8_t snscom::GetProtocolGeneration() {
  const auto generation = ProtocolGenerationOfPart(GetPartNumber());
  if (generation == 0) session_.Fail("Unkown protokol");
  return generation;
}

/// The end that all operations have in common. A failure of the machine leaves nothing open.
bool snscom::RunTransfer(bool keepPortOpen, const std::string& failure,
                         const std::function<bool()>& transfer) {
  bool done = false;
  bool keepOpen = keepPortOpen;
  try {
    done = transfer();
  } catch (const std::exception&) {
    keepOpen = false;
  }
  session_.BusBusyText.clear();
  if (!keepOpen) link_.Close();
  if (!done && !failure.empty()) session_.Fail(failure);
  return done;
}

bool snscom::Read(const Selection& selection, bool isEeprom, std::uint8_t retries, ReadRecord& record) {
  const auto platform = isEeprom ? GetPlatform() : std::uint8_t{0};
  const int limit = ReadLimit(isEeprom, platform);
  if (selection.count != 0) {
    for (int i = 0; i <= limit; ++i) {
      image_.ReadRequest[static_cast<std::size_t>(i)] =
          InRange(i, selection.address, selection.count) ? 255 : 0;
    }
  } else if (selection.selector != 0) {
    SelectBlock(selection.selector);
  }
  std::vector<bool> flags(static_cast<std::size_t>(limit) + 1);
  for (std::size_t i = 0; i < flags.size(); ++i) {
    flags[i] = image_.ReadRequest[i] == 255;
    if (flags[i] && isEeprom && i % 2 == 1) flags[i - 1] = true;
  }
  link_.Open();
  const int total = CountFlags(flags);
  int done = 0;
  for (const auto& chunk : kibus::PlanRead(flags, isEeprom)) {
    ShowProgress(done, total);
    done += chunk.count;
    machine_.pump.DoEvents();
    if (!ReadChunk(chunk, isEeprom, kibus::FormOf(isEeprom, platform), retries, record)) return false;
  }
  return true;
}

bool snscom::ReadChunk(const Chunk& chunk, bool isEeprom, AddressForm form, std::uint8_t retries,
                       ReadRecord& record) {
  // Bytes of a reply with a wrong checksum stay in the image until a later attempt overwrites them.
  const auto store = [&](std::span<const std::uint8_t> data) {
    for (int k = 0; k < chunk.count; ++k) {
      StoreRead(chunk.address + k, isEeprom, data[static_cast<std::size_t>(k)]);
    }
  };
  return Exchanges().Read({kibus::ReadRequest(form, chunk), chunk.count, retries, form != AddressForm::L},
                          record, store);
}

kibus::Exchange snscom::Exchanges() {
  return {session_, link_, kibus::RequestToSend(session_.SensorId),
          [this] { return !session_.LastError.empty(); }};
}

void snscom::StoreRead(int address, bool isEeprom, std::uint8_t value) {
  const auto at = static_cast<std::size_t>(address);
  if (isEeprom) {
    image_.EepromRead.at(at) = image_.EepromImage.at(at) = value;
    image_.EepromValid.at(at) = true;
  } else {
    image_.RamRead.at(at) = image_.RamImage.at(at) = value;
    image_.RamValid.at(at) = true;
  }
}

bool snscom::Write(const Selection& selection, bool isEeprom, bool saveAfter, bool unlockFirst,
                   bool lockAfter, bool forceAll) {
  const auto platform = isEeprom ? GetPlatform() : std::uint8_t{0};
  const auto size = static_cast<std::size_t>(WriteLimit(isEeprom, platform)) + 1;
  if (size > kWriteFlags) throw MachineError("Subscript out of range");
  // The flags are this write's own: unlocking a platform 6 sensor writes in the middle of it.
  std::vector<bool> flags(size);
  const auto copySelection = [&] {
    for (std::size_t i = 0; i < size; ++i) flags[i] = image_.ReadRequest[i] == 255;
  };
  copySelection();
  if (isEeprom && unlockFirst) {
    session_.BusBusyText = "Unlocking EEPROM";
    if (!SensorCommand(unlockEeprom, true)) return false;
  }
  session_.BusBusyText = "Sending to sensor";
  if (selection.selector != 0) {
    SelectBlock(selection.selector);
    copySelection();
  }
  if (selection.count != 0) {
    for (std::size_t i = 0; i < size; ++i) {
      flags[i] = InRange(static_cast<int>(i), selection.address, selection.count);
    }
  }
  if (isEeprom && platform == 5) {
    machine_.userInterface.MessageBox("Kan inte skriva till infPlatform 5 EEPROM", UserInterface::Buttons::ok,
                                      "", UserInterface::Icon::none);
    return false;
  }
  if (isEeprom && !forceAll) {
    for (std::size_t i = 0; i < size; ++i) {
      if (image_.EepromValid[i] && image_.EepromImage[i] == image_.EepromRead[i]) flags[i] = false;
    }
  }
  const auto form = kibus::FormOf(isEeprom, platform);
  if (form == AddressForm::W && !CompleteWords(flags)) return false;
  const int total = CountFlags(flags);
  link_.Open();
  int done = 0;
  for (const auto& chunk : kibus::PlanWrite(flags, isEeprom)) {
    machine_.pump.DoEvents();
    ShowProgress(done, total);
    done += chunk.count;
    if (!session_.LastError.empty()) return false;
    const auto written = WriteChunk(chunk, isEeprom, form);
    if (written.empty()) return false;
    NoteWritten(chunk, isEeprom, written);
  }
  return FinishWrite(isEeprom, saveAfter, lockAfter);
}

/// Word-addressed EEPROM is written in whole words, so the other half of each must be known.
bool snscom::CompleteWords(std::vector<bool>& flags) {
  for (std::size_t i = 0; i < flags.size(); ++i) {
    if (!flags[i]) continue;
    const std::size_t partner = i % 2 == 0 ? i + 1 : i - 1;
    if (!flags[partner] && !image_.EepromValid[partner]) {
      machine_.userInterface.MessageBox("Word varning ", UserInterface::Buttons::ok, "",
                                        UserInterface::Icon::stop);
      return false;
    }
    flags[partner] = true;
  }
  return true;
}

std::vector<std::uint8_t> snscom::WriteChunk(const Chunk& chunk, bool isEeprom, AddressForm form) {
  if (form == AddressForm::W && chunk.address % 2 == 1) {
    machine_.userInterface.MessageBox("Får inte vara ojämn adress till EEPROM", UserInterface::Buttons::ok,
                                      "", UserInterface::Icon::none);
    return {};
  }
  std::vector<std::uint8_t> data;
  const bool done = Exchanges().Write([&]() -> std::optional<kibus::Frame> {
    data.clear();
    for (int k = 0; k < chunk.count; ++k) {
      const auto at = static_cast<std::size_t>(chunk.address + k);
      const float value = isEeprom ? image_.EepromImage.at(at) : image_.RamImage.at(at);
      if (!(value >= 0 && value <= 255 && value == std::trunc(value))) return {};
      data.push_back(static_cast<std::uint8_t>(value));
    }
    return kibus::WriteFrame(form, chunk.address, data);
  });
  return done ? data : std::vector<std::uint8_t>();
}

/// A chunk of RAM moves EepromRead too, at the address on the wire; later comparisons count on it.
void snscom::NoteWritten(const Chunk& chunk, bool isEeprom, std::span<const std::uint8_t> written) {
  constexpr int kBankSize = 128;
  const int first = !isEeprom && chunk.address >= kBankSize ? chunk.address - kBankSize : chunk.address;
  for (int k = 0; k < chunk.count; ++k) {
    const auto at = static_cast<std::size_t>(first + k);
    // An edit may have changed the image while the sensor's answer was awaited: what went out counts.
    image_.EepromRead.at(at) = isEeprom ? written[static_cast<std::size_t>(k)] : image_.EepromImage.at(at);
  }
}

/// What was written is pulled into, or pushed out of, the running RAM.
bool snscom::FinishWrite(bool isEeprom, bool saveAfter, bool lockAfter) {
  if (isEeprom && lockAfter) {
    session_.BusBusyText = "Locking EEPROM";
    if (!SensorCommand(lockEeprom, true)) return false;
  }
  if (!saveAfter) return true;
  session_.BusBusyText = isEeprom ? "Saving to RAM" : "Saving to EEPROM";
  return SensorCommand(isEeprom ? saveToRam : saveToEeprom, true);
}

bool snscom::ResetTmoCounter() {
  image_.RamRead[kTmoAddress] = 1;
  session_.BusBusyText = "Resetting TMO counter";
  return WriteSensorMemory(0, kTmoAddress, 1, false, false, true, true, true, true);
}

bool snscom::Command(std::int32_t operation) {
  link_.Open();
  const auto rts = kibus::RequestToSend(session_.SensorId);
  for (int attempt = 0;;) {
    if (!session_.LastError.empty() || attempt == kCommandAttempts) return false;
    if (attempt == kCommandReopenAttempt) link_.Reopen();
    ++attempt;
    link_.Discard();
    link_.Send({&rts, 1});
    if (!kibus::TakeClearToReceive(link_, kCommandClearLimit)) continue;
    link_.Pause(kibus::kPauseAfterClear);
    link_.Discard();
    const auto generation = GetProtocolGeneration();
    if (generation == 0) return false;
    // Generation 1 has no frame for some operations, and waits all the same for a reply that does not come.
    const auto frame = kibus::CommandFrame(operation, generation);
    if (frame) link_.SendSingly(*frame);
    session_.BusBusyText = TextsOf(operation).busy;
    if (link_.WaitForBytes(1, kCommandReplyLimit) && kibus::TakeStatus(session_, link_)) return true;
  }
}

void snscom::ShowProgress(int done, int total) {
  session_.BusProgress = static_cast<std::uint8_t>(std::min(100.0, Round(100.0 * done / total)));
}

}  // namespace brelant
