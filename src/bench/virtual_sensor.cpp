// SPDX-License-Identifier: GPL-3.0-or-later
#include "bench/virtual_sensor.h"

#include <algorithm>
#include <stdexcept>
#include <utility>

#include "bench/platforms.h"

namespace brelant::bench {
namespace {

constexpr std::uint8_t kClearToReceive = 223;
constexpr std::uint8_t kAccepted = 6;
constexpr std::uint8_t kRequestBase = 224;
constexpr std::uint8_t kBroadcast = 254;
constexpr std::size_t kPart = 65;
constexpr std::size_t kHalfOfRam = 128;
constexpr std::size_t kPage = 16;
constexpr std::size_t kFramesKept = 10000;
constexpr std::size_t kMostWide = 4;

// No message frame begins with such a byte, so a host that starts over is understood at once.
bool IsAnyRequest(std::uint8_t byte) {
  return byte >= kRequestBase && byte <= kBroadcast;
}

bool FitsRam(const Frame& frame, const Product& product) {
  if (frame.wide) return frame.count <= kMostWide && frame.address + frame.count <= product.ram_size;
  return frame.bytes[1] < kHalfOfRam && frame.address + frame.count <= 2 * kHalfOfRam;
}

// A read by halves does not get across the middle of RAM; a write does.
bool MayReadRam(const Frame& frame, const Product& product) {
  if (!FitsRam(frame, product)) return false;
  return frame.wide || frame.address % kHalfOfRam + frame.count <= kHalfOfRam;
}

bool FitsEeprom(const Frame& frame, const Product& product) {
  if (product.address_form == AddressForm::kWords && frame.count % 2 != 0) return false;
  return frame.address + frame.count <= product.eeprom_size;
}

// The larger EEPROM takes a write by pages, and what leaves a page comes in again at its beginning.
std::size_t PlaceOf(const Frame& frame, const Product& product, std::size_t i) {
  if (product.address_form == AddressForm::kWords) return frame.address + i;
  return frame.address / kPage * kPage + (frame.address + i) % kPage;
}

const BadCells& Checked(const BadCells& cells, std::size_t eeprom_size) {
  for (const auto* addresses : {&cells.stuck, &cells.refused}) {
    if (!addresses->empty() && *addresses->rbegin() >= eeprom_size) {
      throw std::invalid_argument("A bad cell lies within the EEPROM.");
    }
  }
  return cells;
}

int CheckedId(int id) {
  if (id < 1 || id > 29) throw std::invalid_argument("A bus ID lies between 1 and 29.");
  return id;
}

}  // namespace

VirtualSensor::VirtualSensor(const SensorSetup& setup)
    : product_(MakeProduct(setup.part, setup.variant)),
      faults_(setup.faults, setup.seed),
      bad_cells_(Checked(setup.bad_cells, product_.eeprom_size)),
      line_(setup.pace),
      locked_(product_.HasCommands()) {
  memory_.ram.resize(product_.ram_size);
  memory_.eeprom.resize(product_.eeprom_size);
  FillMemory(product_, CheckedId(setup.id), memory_);
  MoveLiveValues(product_, memory_, moment_);
  StartTasks();
}

void VirtualSensor::Receive(std::uint8_t byte, std::chrono::microseconds now) {
  if (HungUp()) return;
  MindTasks(now);
  const LineClock::Arrival arrival = line_.Hear(now);
  if (arrival.after_silence) {
    clear_to_receive_ = false;
    incoming_.clear();
  }
  if (!arrival.listening) return;
  if (incoming_.empty() && IsAnyRequest(byte)) {
    TakeRequest(byte);
  } else if (clear_to_receive_) {
    incoming_.push_back(byte);
    if (incoming_.size() < FrameLength(incoming_.front(), product_.address_form)) return;
    clear_to_receive_ = false;
    TakeFrame(std::exchange(incoming_, {}));
    MindTasks(now);
  }
}

void VirtualSensor::Advance(std::chrono::microseconds now) {
  moment_.seconds = std::chrono::duration<double>(now).count();
  MindTasks(now);
  MoveLiveValues(product_, memory_, moment_);
}

void VirtualSensor::MindTasks(std::chrono::microseconds now) {
  minded_ = now;
  if (HasTasks()) tasks_.Mind(product_, memory_, now);
}

void VirtualSensor::StartTasks() {
  tasks_ = {};
  if (HasTasks()) tasks_.Start(memory_, minded_);
}

bool VirtualSensor::TakesWrite(std::size_t address, std::size_t count) const {
  const auto first = bad_cells_.refused.lower_bound(address);
  return first == bad_cells_.refused.end() || *first >= address + count;
}

void VirtualSensor::WriteEeprom(std::size_t address, std::uint8_t byte) {
  if (!bad_cells_.stuck.contains(address)) memory_.eeprom[address] = byte;
}

std::vector<std::uint8_t> VirtualSensor::Image() const {
  std::vector<std::uint8_t> image(memory_.ram.begin(), memory_.ram.end());
  image.insert(image.end(), memory_.eeprom.begin(), memory_.eeprom.end());
  return image;
}

bool VirtualSensor::Restore(std::span<const std::uint8_t> image) {
  if (image.size() != memory_.ram.size() + memory_.eeprom.size() || image[kPart] != product_.part)
    return false;
  std::ranges::copy(image.first(memory_.ram.size()), memory_.ram.begin());
  std::ranges::copy(image.subspan(memory_.ram.size()), memory_.eeprom.begin());
  locked_ = product_.HasCommands();
  if (!product_.HasCommands()) SettingsToRam(product_, memory_);
  clear_to_receive_ = false;
  incoming_.clear();
  StartTasks();
  return true;
}

int VirtualSensor::Id() const {
  return memory_.ram[product_.id_in_ram];
}

void VirtualSensor::SetId(int id) {
  memory_.ram[product_.id_in_ram] = static_cast<std::uint8_t>(CheckedId(id));
  memory_.eeprom[product_.id_in_eeprom] = memory_.ram[product_.id_in_ram];
}

void VirtualSensor::TakeRequest(std::uint8_t byte) {
  clear_to_receive_ = false;
  if (byte != kBroadcast && byte != kRequestBase + Id()) return;
  ++counters_.requests;
  clear_to_receive_ = Send({kClearToReceive}, ReplyKind::kClearToReceive);
}

void VirtualSensor::TakeFrame(const std::vector<std::uint8_t>& bytes) {
  ++counters_.frames;
  frames_.push_back(bytes);
  if (frames_.size() > kFramesKept) frames_.pop_front();
  if (!ChecksumHolds(bytes)) {
    ++counters_.wrong_checksums;
  } else if (!CarryOut(ParseFrame(bytes, product_.address_form))) {
    ++counters_.refused;
  }
}

// What cannot be carried out gets no reply.
bool VirtualSensor::CarryOut(const Frame& frame) {
  if (const auto operation = CommandOf(frame.bytes, product_.generation)) {
    Run(*operation);
    Send({kAccepted}, ReplyKind::kCommandDone);
    return true;
  }
  switch (frame.kind) {
    case FrameKind::kReadRam:
    case FrameKind::kReadEeprom:
      return ReadMemory(frame);
    case FrameKind::kWriteRam:
    case FrameKind::kWriteEeprom:
      return WriteMemory(frame);
    case FrameKind::kCommand:
      break;
  }
  return false;
}

bool VirtualSensor::ReadMemory(const Frame& frame) {
  const bool of_ram = frame.kind == FrameKind::kReadRam;
  if (of_ram && !MayReadRam(frame, product_)) return false;
  if (!of_ram && !FitsEeprom(frame, product_)) return false;
  const Bytes memory = of_ram ? Ram() : Eeprom();
  const Bytes data = memory.subspan(frame.address, frame.count);
  std::vector<std::uint8_t> reply{kAccepted};
  reply.insert(reply.end(), data.begin(), data.end());
  reply.push_back(Checksum(reply));
  Send(std::move(reply), ReplyKind::kData);
  return true;
}

bool VirtualSensor::WriteMemory(const Frame& frame) {
  if (frame.kind == FrameKind::kWriteRam) {
    if (!FitsRam(frame, product_)) return false;
    std::ranges::copy(frame.data, Ram().subspan(frame.address).begin());
  } else {
    if (locked_ || !FitsEeprom(frame, product_)) return false;
    for (std::size_t i = 0; i < frame.count; ++i) {
      if (!TakesWrite(PlaceOf(frame, product_, i), 1)) return false;
    }
    for (std::size_t i = 0; i < frame.count; ++i) {
      WriteEeprom(PlaceOf(frame, product_, i), frame.data[i]);
    }
  }
  Send({kAccepted}, ReplyKind::kWritten);
  return true;
}

void VirtualSensor::Run(Operation operation) {
  switch (operation) {
    case Operation::kSettingsToRam:
      SettingsToRam(product_, memory_);
      ++counters_.saves;
      break;
    case Operation::kSettingsToEeprom:
      SettingsToEeprom(product_, memory_);
      ++counters_.saves;
      break;
    case Operation::kSaveId:
      memory_.eeprom[product_.id_in_eeprom] = memory_.ram[product_.id_in_ram];
      ++counters_.saves;
      break;
    case Operation::kLock:
      locked_ = true;
      break;
    case Operation::kUnlock:
      locked_ = false;
      break;
    case Operation::kResetAverage:
      moment_.average_since = moment_.seconds;
      MoveLiveValues(product_, memory_, moment_);
      ++counters_.twa_resets;
      break;
  }
}

// True if the reply itself, spoilt or not, is on its way.
bool VirtualSensor::Send(std::vector<std::uint8_t> bytes, ReplyKind kind) {
  const SpoiltReply reply = faults_.Spoil(std::move(bytes), kind);
  if (reply.touched) ++counters_.faults;
  line_.Send(reply);
  return !reply.lost;
}

}  // namespace brelant::bench
