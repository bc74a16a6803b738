// SPDX-License-Identifier: GPL-3.0-or-later
#include "safety/unit_poll.h"

#include <string>
#include <vector>

namespace brelant {

namespace {

constexpr int kValuesAndStates = 10;
constexpr int kWeightAndTWA = 15;
constexpr int kWeightAlarms = 1;
constexpr int kAlarms = 2;

/// The parameters of one poll. They are asked for one by one, in order; the connection may fetch together
/// what lies together.
class Poll {
 public:
  Poll(BRECOM& connection, snsZ7731& unit) : nodes_(connection.Nodes()), unit_(unit) {}

  void Run() {
    nodes_.Announce(Names());
    IsModbus() ? ReadStatesOnModbus() : ReadStatesOnKiBus();
    ReadValues();
    IsModbus() ? ReadAlarmsOnModbus() : ReadAlarmsOnKiBus();
    nodes_.Announce({});
  }

 private:
  bool IsModbus() const { return unit_.ProtocolInUse == snsZ7731::modbus; }

  std::int32_t Read(const std::string& name) { return nodes_.FindNode(name, "").GetValue(true); }
  std::int32_t State(int channel) { return Read("raChanStat_" + std::to_string(channel)); }
  std::int32_t Regulator(int number) { return Read("raRegStat_" + std::to_string(number)); }
  static std::string InputRegister(int number) { return "miIR_" + std::to_string(number); }

  std::vector<snsZ7731::Channel*> Channels() const {
    std::vector<snsZ7731::Channel*> channels{&unit_.Temp1, &unit_.TWA, &unit_.CO2};
    if (unit_.Temp2.Present) channels.push_back(&unit_.Temp2);
    if (unit_.Weight.Present) channels.push_back(&unit_.Weight);
    return channels;
  }

  std::vector<std::string> Names() const {
    std::vector<std::string> names;
    for (const auto* channel : Channels()) names.push_back(channel->IRValue(unit_.ProtocolInUse));
    if (IsModbus()) {
      for (const int number : snsZ7731::StatusArray) names.push_back(InputRegister(number));
      for (const int number : snsZ7731::AlarmArray) names.push_back(InputRegister(number));
    } else {
      for (const int channel : {9, 4, 5, 8, 11}) names.push_back("raChanStat_" + std::to_string(channel));
      for (const int number : {13, 7, 4, 6, 5}) names.push_back("raRegStat_" + std::to_string(number));
    }
    return names;
  }

  void ReadValues() {
    for (auto* channel : Channels()) channel->Value = Read(channel->IRValue(unit_.ProtocolInUse));
  }

  void ReadStatesOnModbus() {
    for (const int number : snsZ7731::StatusArray) unit_.AddStatus(Read(InputRegister(number)), number);
  }

  void ReadStatesOnKiBus() {
    const auto second = State(9);
    const auto first = State(4);
    unit_.AddStatus((second * 256 | first) * 16 | State(5), kValuesAndStates);
    const auto average = State(8);
    unit_.AddStatus(average * 256 | State(11), kWeightAndTWA);
  }

  void ReadAlarmsOnModbus() {
    for (const int number : snsZ7731::AlarmArray) unit_.AddAlarm(Read(InputRegister(number)), number);
  }

  /// The TWA alarm lands on a bit that nothing reads, as it is required.
  void ReadAlarmsOnKiBus() {
    const auto weight = Regulator(13);
    unit_.AddAlarm((weight & 8) >> 3 << 1 | (weight & 2) >> 1, kWeightAlarms);
    const auto second = Regulator(7);
    const auto first = Regulator(4);
    const auto average = Regulator(6);
    const auto gas = Regulator(5);
    unit_.AddAlarm((second & 8) >> 3 << 8 | (second & 1) << 7 | (first & 8) >> 3 << 6 | (first & 1) << 5 |
                       (average & 1) << 3 | (gas & 1) << 1 | (gas & 4) >> 2,
                   kAlarms);
  }

  SensorNodes nodes_;
  snsZ7731& unit_;
};

}  // namespace

void PollUnit(BRECOM& connection, snsZ7731& unit) {
  Poll(connection, unit).Run();
}

}  // namespace brelant
