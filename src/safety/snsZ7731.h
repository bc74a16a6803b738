// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <string_view>

namespace brelant {

/// The state of one safety unit, and the names under which its parameters are asked for on each protocol. It
/// holds no connection: the panel reads nodes, feeds this and reads it again (docs/memory-maps.md, Platforms
/// 8 and 9). A property such as Temp1Value is `Temp1.Value`.
class snsZ7731 {
 public:
  enum Protocol : std::int32_t { kiBus = 0, modbus = 1 };

  /// How the Case word of a channel is kept.
  enum class CaseRule {
    /// On Modbus the high byte of what is written.
    highByteOnModbus,
    /// What is written; read is the low byte.
    lowByteOnRead
  };

  /// A parameter by its name on KiBus and its register on Modbus.
  struct Parameter {
    std::string_view name;
    int registerNumber;
  };

  /// What does not change of a channel.
  struct ChannelPlan {
    int number;
    std::string_view display;
    CaseRule caseRule;
    Parameter value;
    Parameter caseWord;
    Parameter compA;
    Parameter compB;
  };

  /// One of the five channels. `protocol` is ProtocolInUse; the names are empty for any but the two.
  class Channel {
   public:
    explicit Channel(const ChannelPlan& plan) : plan_(plan) {}

    std::int32_t Case() const;
    /// With a protocol that is none of the two the stored word stays.
    void SetCase(std::int32_t word, std::int32_t protocol);
    std::string IRValue(std::int32_t protocol) const;
    std::string IRCase(std::int32_t protocol) const;
    std::string HRCOMP_A(std::int32_t protocol) const;
    std::string HRCOMP_B(std::int32_t protocol) const;
    /// Temperatures: the names of the Case value with its unit, and of the Case word.
    std::string CaseValueFormat() const { return "eaCaseChannelUnit_" + std::to_string(plan_.number); }
    std::string CaseNode() const { return "eaCaseChannel_" + std::to_string(plan_.number); }

    /// Raw.
    std::int32_t Value = 0;
    std::int32_t COMP_A = 0;
    std::int32_t COMP_B = 0;
    /// 0 to 15; anything but 0: the value cannot be relied on.
    int Status = 0;
    bool Present = true;

   private:
    ChannelPlan plan_;
    std::int32_t case_ = 0;
  };

  static constexpr int kPositions = 4;
  static constexpr int kRelayEntries = 4;

  snsZ7731();

  Channel Temp1;
  Channel Temp2;
  Channel Weight;
  Channel TWA;
  Channel CO2;

  std::int32_t WeightHysteresis = 0;
  std::string WeightHRHysteresis(std::int32_t protocol) const;
  bool TWACentralUnit = true;
  int SensorID = 0;
  std::int32_t ProtocolInUse = kiBus;

  bool Temp1HighAlarm = false;
  bool Temp1LowAlarm = false;
  bool Temp2HighAlarm = false;
  bool Temp2LowAlarm = false;
  bool WeightMainAlarm = false;
  bool WeightPreAlarm = false;
  bool TWAAlarm = false;
  bool CO2MainAlarm = false;
  bool CO2PreAlarm = false;

  /// The channel at a position, 0 to 3, of the display sequence. Throws std::out_of_range.
  void SetDisplayMode(int position, int channel);
  /// The name of that channel, empty for one without a name. Throws std::out_of_range for channels from 16.
  std::string GetDisplayMode(int position) const;

  /// The channels of all positions.
  using DisplaySequence = std::array<int, kPositions>;
  const DisplaySequence& Sequence() const { return sequence_; }
  void SetSequence(const DisplaySequence& sequence) { sequence_ = sequence; }

  /// Takes the status nibbles of a word of kind 10 or 15, and the alarms of one of kind 1 or 2; any other
  /// kind changes nothing.
  void AddStatus(std::int32_t word, int kind);
  void AddAlarm(std::int32_t word, int kind);

  /// The regulators that drive a relay: four nibbles of a word, the most significant first.
  class RelayList {
   public:
    void Init(std::int32_t word);
    std::int32_t Get() const;
    /// Throws std::out_of_range.
    int Entry(int index) const;
    /// Takes the first free entry; false if there is none.
    bool Add(int regulator);
    void Remove(int regulator);
    bool operator==(const RelayList&) const = default;

   private:
    std::array<int, kRelayEntries> entries_{};
  };
  RelayList Relay1;
  RelayList Relay2;

  /// The input registers of status nibbles and alarm bits, which are the kinds of their words too.
  static constexpr std::array StatusArray{10, 15};
  static constexpr std::array AlarmArray{1, 2};
  /// What "eaState1Alg_30" holds.
  static constexpr std::int32_t TWAonP0Value = 37302;
  static constexpr std::int32_t CO2onP0Value = 37301;
  static constexpr std::string_view P0Algorithm = "eaState1Alg_30";

  static constexpr int RegCO2Pre = 8;
  static constexpr int RegCO2Main = 5;
  static constexpr int RegTWA = 6;
  static constexpr int RegTemp1Low = 14;
  static constexpr int RegTemp1High = 14;
  static constexpr int RegTemp2Low = 15;
  static constexpr int RegTemp2High = 15;
  static constexpr int RegWeightPre = 13;
  static constexpr int RegWeightMain = 13;

  /// The channels that the display can show, in the order in which they are offered.
  static constexpr std::array AvailableChannels{5, 4, 9, 11, 8};
  static constexpr std::array<std::string_view, 16> DisplayModes{
      "", "", "", "", "TEMP 1", "CO2", "", "", "TWA CO2", "TEMP 2", "", "WEIGHT", "", "", "", ""};

  static constexpr std::string_view Log1Node = "eaState0Alg_21";
  static constexpr std::string_view Log2Node = "eaState0Alg_22";
  static constexpr std::string_view LogTimerNode = "eaCountPar_14";

 private:
  DisplaySequence sequence_{};
};

}  // namespace brelant
