// SPDX-License-Identifier: GPL-3.0-or-later
#include "connection/BRECOM.h"

#include <algorithm>
#include <stdexcept>
#include <utility>

#include "connection/KiBusRoad.h"
#include "connection/connection_error.h"

namespace brelant {

namespace {

constexpr int kPartAddress = 65;
constexpr int kSerialAddress = 8166;
constexpr std::size_t kSerialDigits = 5;
constexpr int kDone = 100;
constexpr int kSilenceBeforeModbus = 600;

int CellBits(Space space) {
  return space == Space::input || space == Space::holding ? 16 : 8;
}

std::uint64_t Joined(Space space, const std::vector<std::uint16_t>& cells) {
  std::uint64_t bits = 0;
  for (const auto cell : cells) bits = bits << CellBits(space) | cell;
  return bits;
}

std::vector<std::uint16_t> Split(const Target& target, std::uint64_t bits) {
  std::vector<std::uint16_t> cells(static_cast<std::size_t>(target.count));
  const std::uint64_t mask = (std::uint64_t{1} << CellBits(target.space)) - 1;
  for (auto cell = cells.rbegin(); cell != cells.rend(); ++cell) {
    *cell = static_cast<std::uint16_t>(bits & mask);
    bits >>= CellBits(target.space);
  }
  return cells;
}

std::uint64_t MaskOf(const Target& target) {
  return (std::uint64_t{1} << target.width) - 1;
}

/// As a number with a sign or without.
bool HasRoom(const Target& target, std::int32_t value) {
  const auto end = std::int64_t{1} << target.width;
  return value >= -end / 2 && value < end;
}

Space SpaceOf(int kind) {
  return kind == SensorMemory::ram ? Space::ram : Space::eeprom;
}

/// The mark of the same thing, or a new one behind the others.
template <typename Mark, typename IsSame>
Mark& MarkIn(std::vector<Mark>& marks, IsSame isSame) {
  const auto found = std::find_if(marks.begin(), marks.end(), isSame);
  return found == marks.end() ? marks.emplace_back() : *found;
}

bool FillsItsCells(const Target& target) {
  return target.shift == 0 && target.width == target.count * CellBits(target.space);
}

/// Tells what the line is in use for.
class BusyWith {
 public:
  BusyWith(Session& session, const char* step) : session_(session) { session_.BusBusyText = step; }
  ~BusyWith() { session_.BusBusyText.clear(); }
  BusyWith(const BusyWith&) = delete;
  BusyWith& operator=(const BusyWith&) = delete;

 private:
  Session& session_;
};

std::int32_t ValueIn(const Target& target, const std::vector<std::uint16_t>& cells) {
  const auto bits = Joined(target.space, cells) >> target.shift & MaskOf(target);
  const auto value = static_cast<std::int64_t>(bits);
  const bool isNegative = target.isSigned && (bits >> (target.width - 1) & 1) != 0;
  return static_cast<std::int32_t>(isNegative ? value - (std::int64_t{1} << target.width) : value);
}

}  // namespace

BRECOM::BRECOM(const Context& context) : context_(context) {}

BRECOM::~BRECOM() {
  Disconnect();
}

void BRECOM::SelectModbus(int on) {
  const bool wanted = on == 1;
  if (wanted == isModbus_) return;
  isModbus_ = wanted;
  if (Connected() || awaitsModbus_) Attach();
}

void BRECOM::ConnectSensor(const std::string& port, int id) {
  port_ = port;
  id_ = id;
  try {
    Attach();
  } catch (const ConnectionError&) {
    // The protocol may be chosen only after the connection, which a unit without KiBus must not end.
    const bool isCancelled = Interrupted() || Connected() || context_.session.Over();
    if (isModbus_ || isCancelled || !AnswersOnModbus()) throw;
    awaitsModbus_ = true;
  }
}

bool BRECOM::AnswersOnModbus() {
  const auto mine = attachment_;
  const auto onlyOnce = [] { return true; };
  ModbusRoad road(context_.modbus, context_.modbusSettings, onlyOnce);
  bool answers = true;
  try {
    // A unit on Modbus takes what KiBus has just said for the beginning of a request, until the line is
    // silent.
    context_.link.Open();
    context_.link.Pause(kSilenceBeforeModbus);
    context_.link.Close();
    if (mine == attachment_) road.Connect(port_, id_);
  } catch (const std::runtime_error&) {
    answers = false;
  }
  if (mine != attachment_) return false;
  road.Disconnect();
  return answers && !context_.session.Over();
}

void BRECOM::Attach() {
  Disconnect();
  // Another connection may be made while this one still waits for its unit.
  const auto stop = [this, mine = ++attachment_] {
    return Interrupted() || mine != attachment_ || context_.session.Over();
  };
  if (isModbus_) {
    road_ = std::make_shared<ModbusRoad>(context_.modbus, context_.modbusSettings, stop);
  } else {
    road_ = std::make_shared<KiBusRoad>(context_.session, context_.link, context_.files, stop);
  }
  const auto road = road_;
  try {
    Run([this](Road& each) { each.Connect(port_, id_); }, kDone);
  } catch (const ConnectionError&) {
    if (road_ == road) Release();
    throw;
  }
}

void BRECOM::Disconnect() {
  aborted_ = true;
  Release();
}

void BRECOM::Release() {
  awaitsModbus_ = false;
  if (const auto road = std::exchange(road_, nullptr)) road->Disconnect();
  known_.clear();
  ForgetAnnounced();
}

void BRECOM::ForgetAnnounced() {
  announced_.clear();
  announcedCells_ = arrivedCells_ = 0;
}

/// Of the announced cells, as soon as so many more have arrived.
int BRECOM::AnnouncedPercent(std::size_t more) const {
  if (announcedCells_ == 0) return kDone;
  return static_cast<int>((arrivedCells_ + more) * kDone / announcedCells_);
}

int BRECOM::InShare(int percent) const {
  return share_.from + percent * (share_.to - share_.from) / kDone;
}

void BRECOM::CloseConnection() {
  Disconnect();
  ForgetMarks();
}

std::string BRECOM::SerialNumberText() {
  const auto byte = [this](int address) { return Memory().ReadBytes(address, 1, SensorMemory::eeprom, 0); };
  const auto serial = std::to_string(byte(kSerialAddress) + byte(kSerialAddress + 1) * 256 +
                                     byte(kSerialAddress + 2) * 65536);
  const auto zeros = kSerialDigits - std::min(serial.size(), kSerialDigits);
  return std::to_string(Memory().PartNumber()) + std::string(zeros, '0') + serial;
}

Target BRECOM::TargetOf(std::string_view name) const {
  return isModbus_ ? context_.names.OnModbus(name) : context_.names.OnKiBus(name);
}

Target BRECOM::TargetForWriting(std::string_view name) const {
  return isModbus_ ? context_.names.ForWritingOnModbus(name) : context_.names.OnKiBus(name);
}

Target BRECOM::TargetOf(const Place& place) const {
  return isModbus_ ? NameTable::OnModbus(place) : NameTable::OnKiBus(place);
}

/// One transfer. What ends it from outside makes it a cancelled one, whatever the road makes of that.
void BRECOM::Run(const std::function<void(Road&)>& transfer, std::optional<int> percent, const char* step) {
  if (awaitsModbus_) throw ConnectionError("The unit does not answer on KiBus.");
  if (!road_) throw ConnectionError("There is no connection.");
  if (context_.session.Over()) throw ConnectionError("The session is over");
  const auto road = road_;
  const auto isCancelled = [&] { return Interrupted() || road_ != road; };
  aborted_ = false;
  const BusyWith busy(context_.session, step);
  try {
    if (!isCancelled()) transfer(*road);
    if (!isCancelled() && onProgress && percent) onProgress(InShare(*percent));
    if (!isCancelled()) return;
  } catch (const ConnectionError&) {
    ForgetAnnounced();
    if (!isCancelled()) throw;
  }
  ForgetAnnounced();
  throw ConnectionError(kCancelSelected);
}

std::int32_t BRECOM::ReadTarget(const Target& target) {
  std::vector<std::uint16_t> cells;
  if (!TakeAnnounced(target, cells)) {
    cells = ReadCells(target.space, target.first, target.count, AnnouncedPercent());
  }
  return ValueIn(target, cells);
}

void BRECOM::WriteTarget(const Target& target, std::int32_t value) {
  // A value that is cut to its place would be another one, and may be an alarm level.
  if (!HasRoom(target, value)) {
    throw ConnectionError("The value " + std::to_string(value) + " does not fit into its place.");
  }
  std::uint64_t bits = 0;
  if (!FillsItsCells(target)) {
    bits = Joined(target.space, ReadCells(target.space, target.first, target.count, AnnouncedPercent()));
    bits &= ~(MaskOf(target) << target.shift);
  }
  bits |= (static_cast<std::uint64_t>(value) & MaskOf(target)) << target.shift;
  WriteCells(target.space, target.first, Split(target, bits));
}

/// The cells of an announced value, with what was announced beside it. False: it was not announced.
bool BRECOM::TakeAnnounced(const Target& target, std::vector<std::uint16_t>& cells) {
  const auto isAnnounced = [&](int cell) { return announced_.contains({target.space, cell}); };
  const auto isWanted = [&](int cell) {
    const auto found = announced_.find({target.space, cell});
    return found != announced_.end() && !found->second;
  };
  int first = target.first;
  int end = target.first + target.count;
  bool isThere = true;
  for (int cell = first; cell < end; ++cell) {
    if (!isAnnounced(cell)) return false;
    isThere = isThere && !isWanted(cell);
  }
  if (!isThere) {
    const int most = Most(target.space, target.count);
    while (end - first < most && isWanted(end)) ++end;
    while (end - first < most && isWanted(first - 1)) --first;
    const auto more = static_cast<std::size_t>(end - first);
    const auto read = ReadCells(target.space, first, end - first, AnnouncedPercent(more));
    arrivedCells_ += more;
    for (int cell = first; cell < end; ++cell) {
      announced_[{target.space, cell}] = read.at(static_cast<std::size_t>(cell - first));
    }
  }
  for (int cell = target.first; cell < target.first + target.count; ++cell) {
    cells.push_back(announced_.at({target.space, cell}).value());
    announced_.erase({target.space, cell});
  }
  return true;
}

std::vector<std::uint16_t> BRECOM::ReadCells(Space space, int first, int count, std::optional<int> percent) {
  std::vector<std::uint16_t> cells;
  Run([&](Road& road) { cells = road.Read(space, first, count); }, percent);
  return cells;
}

std::vector<std::uint8_t> BRECOM::ReadBlock(const Place& place) {
  if (!IsInMemory(place)) throw ConnectionError("There is no such memory in the unit.");
  const auto target = TargetOf(place);
  std::vector<std::uint8_t> bytes;
  std::optional<int> told;
  for (int done = 0; done < target.count;) {
    const int count = std::min(target.count - done, Most(target.space, target.count));
    const int percent = (done + count) * kDone / target.count;
    // Whoever hears of it may keep the line waiting, which a run of some hundred frames would feel.
    const auto news = percent == told ? std::nullopt : std::optional(percent);
    told = percent;
    const auto cells = ReadCells(target.space, target.first + done, count, news);
    for (const auto cell : cells) {
      if (target.space == Space::holding) bytes.push_back(static_cast<std::uint8_t>(cell >> 8));
      bytes.push_back(static_cast<std::uint8_t>(cell & 255));
    }
    done += count;
  }
  // On Modbus the run may begin or end inside a register.
  const auto surplus = target.space == Space::holding ? place.address % 2 : 0;
  bytes.erase(bytes.begin(), bytes.begin() + surplus);
  bytes.resize(static_cast<std::size_t>(place.width));
  return bytes;
}

void BRECOM::WriteCells(Space space, int first, const std::vector<std::uint16_t>& cells) {
  ForgetAnnounced();
  Run([&](Road& road) { road.Write(space, first, cells); }, kDone, "Sending to sensor");
}

ProgressShare::ProgressShare(BRECOM& connection, int from, int to)
    : connection_(connection), before_(std::exchange(connection.share_, {from, to})) {}

ProgressShare::~ProgressShare() {
  connection_.share_ = before_;
}

// What a connection hands out

Node SensorNodes::FindNode(std::string_view name, std::string_view) const {
  static_cast<void>(connection_->TargetOf(name));
  return {*connection_, std::string(name)};
}

void SensorNodes::Announce(const std::vector<std::string>& names) {
  connection_->ForgetAnnounced();
  for (const auto& name : names) {
    const auto target = connection_->TargetOf(name);
    for (int i = 0; i < target.count; ++i) {
      connection_->announced_.insert({{target.space, target.first + i}, std::nullopt});
    }
  }
  connection_->announcedCells_ = connection_->announced_.size();
}

std::int32_t Node::GetValue(bool fromSensor) const {
  const auto known = connection_->known_.find(name_);
  if (!fromSensor && known != connection_->known_.end()) return known->second;
  return connection_->known_[name_] = connection_->ReadTarget(connection_->TargetOf(name_));
}

void Node::SetValue(bool toSensor, std::int32_t value) {
  if (toSensor) connection_->WriteTarget(connection_->TargetForWriting(name_), value);
  connection_->known_[name_] = value;
}

void Node::MarkForSave(std::int32_t mask) {
  auto& mark = MarkIn(connection_->marks_.names, [&](const auto& each) { return each.name == name_; });
  mark = {name_, mask};
}

int Node::Width() const {
  return connection_->TargetOf(name_).width;
}

bool Node::Takes(std::int32_t value) const {
  const auto target = connection_->TargetForWriting(name_);
  return target.space != Space::input && HasRoom(target, value);
}

std::uint8_t SensorMemory::PartNumber() const {
  return static_cast<std::uint8_t>(ReadBytes(kPartAddress, 1, ram, 0));
}

std::int32_t SensorMemory::ReadBytes(int address, int width, int kind, int mask) const {
  const Place place{SpaceOf(kind), address, width, false, mask};
  return connection_->ReadTarget(connection_->TargetOf(place));
}

void SensorMemory::WriteWord(int address, int width, int kind, int mask, std::int32_t value) {
  const Place place{SpaceOf(kind), address, width, false, mask};
  connection_->WriteTarget(connection_->TargetOf(place), value);
}

std::vector<std::uint8_t> SensorMemory::ReadBlock(int address, int count, int kind) const {
  return connection_->ReadBlock({SpaceOf(kind), address, count});
}

void SensorMemory::MarkBlock(int address, int count, int kind, int mask) {
  const auto isSame = [&](const auto& each) {
    return each.address == address && each.count == count && each.kind == kind;
  };
  MarkIn(connection_->marks_.blocks, isSame) = {address, count, kind, mask};
}

}  // namespace brelant
