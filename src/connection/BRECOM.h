// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "comm/SerialLink.h"
#include "connection/ModbusRoad.h"
#include "connection/Road.h"
#include "connection/name_table.h"
#include "platform/files.h"
#include "platform/modbus_master.h"
#include "shell/session.h"

namespace brelant {

class BRECOM;
class ProgressShare;

/// A parameter of the attached unit. Operations throw ConnectionError.
class Node {
 public:
  Node(BRECOM& connection, std::string name) : connection_(&connection), name_(std::move(name)) {}

  /// `fromSensor` false: as it was last read or written, if it was.
  std::int32_t GetValue(bool fromSensor) const;
  /// `toSensor` false: for GetValue(false) only. Fails, with nothing sent, for a value that the parameter has
  /// no room for.
  void SetValue(bool toSensor, std::int32_t value);
  /// The bits of the parameter that the next settings file holds; -1: all of a word.
  void MarkForSave(std::int32_t mask);
  /// How many bits the parameter has; no value has more.
  int Width() const;
  /// The value can be written: it has room, as a number with a sign or without, and its place is not one that
  /// is read only.
  bool Takes(std::int32_t value) const;

 private:
  BRECOM* connection_;
  std::string name_;
};

/// The name table of a connection.
class SensorNodes {
 public:
  explicit SensorNodes(BRECOM& connection) : connection_(&connection) {}

  /// The path is always empty. Throws ConnectionError for a name that nobody knows.
  Node FindNode(std::string_view name, std::string_view path) const;
  /// Names that will be asked for from the sensor next, once each: what lies together of them is then read
  /// together. Forgotten with the first write and the first failure.
  void Announce(const std::vector<std::string>& names);

 private:
  BRECOM* connection_;
};

/// The memory of a unit by address. Operations throw ConnectionError.
class SensorMemory {
 public:
  enum Kind { ram = 0, eeprom = 1 };

  explicit SensorMemory(BRECOM& connection) : connection_(&connection) {}

  std::uint8_t PartNumber() const;
  /// `width` 1 or 2 bytes, high byte first; `mask` other than 0 narrows to its bits.
  std::int32_t ReadBytes(int address, int width, int kind, int mask) const;
  void WriteWord(int address, int width, int kind, int mask, std::int32_t value);
  /// A run of bytes, in as few transfers as the road allows. The progress is that of the whole run, told when
  /// its percentage has moved.
  std::vector<std::uint8_t> ReadBlock(int address, int count, int kind) const;
  /// The bits of each byte of a run that the next settings file holds.
  void MarkBlock(int address, int count, int kind, int mask);

 private:
  BRECOM* connection_;
};

/// What the next settings file holds, in the order of marking. What is marked again keeps its place.
struct Marks {
  struct Name {
    std::string name;
    std::int32_t mask;
  };
  struct Block {
    int address;
    int count;
    int kind;
    int mask;
  };
  std::vector<Name> names;
  std::vector<Block> blocks;
};

/// The connection object of the symbolic road: parameters by name, over KiBus or Modbus
/// (docs/architecture.md, The symbolic road). It holds the port from ConnectSensor to Disconnect. Operations
/// throw ConnectionError.
class BRECOM {
 public:
  struct Context {
    Session& session;
    SerialLink& link;
    Files& files;
    ModbusMaster& modbus;
    const NameTable& names;
    ModbusSettings modbusSettings;
  };

  explicit BRECOM(const Context& context);
  ~BRECOM();
  BRECOM(const BRECOM&) = delete;
  BRECOM& operator=(const BRECOM&) = delete;

  /// 1: Modbus. Before or after ConnectSensor; after it the unit is connected anew.
  void SelectModbus(int on);
  /// `id` -1: the only unit on the line.
  void ConnectSensor(const std::string& port, int id);
  void Disconnect();
  void CloseConnection();
  bool Connected() const { return road_ != nullptr; }

  SensorNodes Nodes() { return SensorNodes(*this); }
  SensorMemory Memory() { return SensorMemory(*this); }
  std::string SerialNumberText();
  const Marks& Marked() const { return marks_; }
  void ForgetMarks() { marks_ = {}; }
  /// Ends the running operation, which then throws. Session::CancelPressed does the same, and lets no other
  /// one begin until it is cleared.
  void Abort() { aborted_ = true; }

  /// Told with each transfer, in percent: of the cells that are announced, if there are any. ProgressShare
  /// makes that a part of something longer.
  std::function<void(int)> onProgress;

 private:
  friend class Node;
  friend class SensorNodes;
  friend class SensorMemory;
  friend class ProgressShare;

  struct Share {
    int from = 0;
    int to = 100;
  };

  Target TargetOf(std::string_view name) const;
  Target TargetOf(const Place& place) const;
  Target TargetForWriting(std::string_view name) const;
  std::int32_t ReadTarget(const Target& target);
  void WriteTarget(const Target& target, std::int32_t value);
  std::vector<std::uint8_t> ReadBlock(const Place& place);
  /// `percent`: what is done when they are there; none is told of no change.
  std::vector<std::uint16_t> ReadCells(Space space, int first, int count, std::optional<int> percent);
  void WriteCells(Space space, int first, const std::vector<std::uint16_t>& cells);
  bool TakeAnnounced(const Target& target, std::vector<std::uint16_t>& cells);
  void Attach();
  void Release();
  bool AnswersOnModbus();
  void Run(const std::function<void(Road&)>& transfer, std::optional<int> percent,
           const char* step = "Reading from sensor");
  /// Something has ended the running operation from outside.
  bool Interrupted() const { return aborted_ || context_.session.CancelPressed; }
  void ForgetAnnounced();
  int AnnouncedPercent(std::size_t more = 0) const;
  int InShare(int percent) const;
  int Most(Space space, int otherwise) const { return road_ ? road_->Most(space) : otherwise; }

  using CellKey = std::pair<Space, int>;

  Context context_;
  /// Shared with the operation that runs: a panel may close its connection inside one.
  std::shared_ptr<Road> road_;
  bool isModbus_ = false;
  bool aborted_ = false;
  /// The unit was found on the other protocol, which is not chosen yet.
  bool awaitsModbus_ = false;
  /// Number of the latest connection.
  int attachment_ = 0;
  std::string port_;
  int id_ = kOnlyUnit;
  std::map<std::string, std::int32_t, std::less<>> known_;
  Marks marks_;
  /// Cells that will be asked for, and those of them that came along with another one.
  std::map<CellKey, std::optional<std::uint16_t>> announced_;
  std::size_t announcedCells_ = 0;
  std::size_t arrivedCells_ = 0;
  Share share_;
};

/// While it lives, what the connection tells of its progress, 0 to 100, is told as `from` to `to` percent of
/// something longer.
class ProgressShare {
 public:
  ProgressShare(BRECOM& connection, int from, int to);
  ~ProgressShare();
  ProgressShare(const ProgressShare&) = delete;
  ProgressShare& operator=(const ProgressShare&) = delete;

 private:
  BRECOM& connection_;
  BRECOM::Share before_;
};

}  // namespace brelant
