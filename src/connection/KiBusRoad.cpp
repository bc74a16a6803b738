// SPDX-License-Identifier: GPL-3.0-or-later
#include "connection/KiBusRoad.h"

#include <algorithm>
#include <optional>
#include <utility>

#include "comm/Exchange.h"
#include "connection/connection_error.h"
#include "platform/machine_error.h"

namespace brelant {

namespace {

constexpr int kPartAddress = 65;
constexpr int kRamOfOneByte = 256;
constexpr int kRamBank = 128;
constexpr int kPage = 16;
constexpr int kAttempts = 10;
constexpr int kMost = 4;

constexpr const char* kNoAnswer = "The unit does not answer.";

kibus::AddressForm FormOf(Space space, int address) {
  if (space == Space::eeprom) return kibus::AddressForm::L;
  return address < kRamOfOneByte ? kibus::AddressForm::R : kibus::AddressForm::RL;
}

/// How many bytes from there on go in one frame. A frame has no room for the address in a second bank, a
/// second form or, when it writes, a second page.
int LengthAt(Space space, int address, int left, bool isWrite) {
  int length = std::min(left, kMost);
  if (space == Space::ram && address < kRamBank) length = std::min(length, kRamBank - address);
  if (space == Space::ram && address < kRamOfOneByte) length = std::min(length, kRamOfOneByte - address);
  if (space == Space::eeprom && isWrite) length = std::min(length, kPage - address % kPage);
  // Form L reads 1, 2 or 4 bytes.
  return length == 3 && !isWrite ? 2 : length;
}

void RequireMemory(Space space) {
  if (space == Space::ram || space == Space::eeprom) return;
  throw ConnectionError("There are no registers on KiBus.");
}

}  // namespace

KiBusRoad::KiBusRoad(Session& session, SerialLink& link, Files& files, std::function<bool()> stop)
    : session_(session), link_(link), files_(files), stop_(std::move(stop)) {}

void KiBusRoad::Connect(const std::string& port, int id) {
  id_ = id == kOnlyUnit ? kBroadcastId : static_cast<float>(id);
  link_.SetCommPort(port);
  Read(Space::ram, kPartAddress, 1);
}

void KiBusRoad::Disconnect() {
  link_.Close();
}

std::vector<std::uint16_t> KiBusRoad::Read(Space space, int first, int count) {
  RequireMemory(space);
  std::vector<std::uint16_t> cells;
  try {
    link_.Open();
    while (static_cast<int>(cells.size()) < count) {
      const int address = first + static_cast<int>(cells.size());
      const int length = LengthAt(space, address, count - static_cast<int>(cells.size()), false);
      const auto part = ReadFrame(space, {address, length});
      cells.insert(cells.end(), part.begin(), part.end());
    }
  } catch (const MachineError& failure) {
    throw ConnectionError(failure.what());
  }
  return cells;
}

std::vector<std::uint8_t> KiBusRoad::ReadFrame(Space space, const kibus::Chunk& chunk) {
  const auto form = FormOf(space, chunk.address);
  const kibus::Exchange::ReadOrder order{kibus::ReadRequest(form, chunk), chunk.count, kAttempts,
                                         form == kibus::AddressForm::R};
  ReadRecord record(session_, files_);
  record.Head(0, static_cast<float>(chunk.address), chunk.count, space == Space::eeprom);
  std::vector<std::uint8_t> bytes;
  bool done = false;
  try {
    kibus::Exchange exchange(session_, link_, kibus::RequestToSend(id_), stop_);
    done = exchange.Read(order, record, [&](auto data) { bytes.assign(data.begin(), data.end()); });
  } catch (const MachineError&) {
    record.Print();
    throw;
  }
  record.Print();
  if (!done) throw ConnectionError(kNoAnswer);
  return bytes;
}

void KiBusRoad::Write(Space space, int first, std::span<const std::uint16_t> cells) {
  RequireMemory(space);
  try {
    link_.Open();
    kibus::Exchange exchange(session_, link_, kibus::RequestToSend(id_), stop_);
    std::size_t written = 0;
    while (written < cells.size()) {
      const int address = first + static_cast<int>(written);
      const int length = LengthAt(space, address, static_cast<int>(cells.size() - written), true);
      const auto part = cells.subspan(written, static_cast<std::size_t>(length));
      const std::vector<std::uint8_t> data(part.begin(), part.end());
      const auto frame = [&]() -> std::optional<kibus::Frame> {
        if (stop_()) return {};
        return kibus::WriteFrame(FormOf(space, address), address, data);
      };
      if (stop_() || !exchange.Write(frame)) throw ConnectionError(kNoAnswer);
      written += part.size();
    }
  } catch (const MachineError& failure) {
    throw ConnectionError(failure.what());
  }
}

int KiBusRoad::Most(Space) const {
  return kMost;
}

}  // namespace brelant
