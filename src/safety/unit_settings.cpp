// SPDX-License-Identifier: GPL-3.0-or-later
#include "safety/unit_settings.h"

#include <cstdint>
#include <vector>

#include "connection/connection_error.h"
#include "shell/Common.h"

namespace brelant {

namespace {

constexpr int kAttempts = 5;

/// The parameters are asked for one by one, in order; the connection may fetch together what lies together.
class Reader {
 public:
  Reader(BRECOM& connection, snsZ7731& unit, bool fromSensor)
      : connection_(connection), nodes_(connection.Nodes()), unit_(unit), fromSensor_(fromSensor) {}

  UnitIdentity Run() {
    UnitIdentity identity;
    identity.modelCode = Read("eaUserInfo_29");
    const auto sequence = DisplaySequenceNames(identity.modelCode);
    if (fromSensor_) nodes_.Announce(Names(sequence));
    unit_.Temp2.Present = Read(unit_.Temp2.IRValue(Protocol())) != kNoChannel;
    unit_.Weight.Present = Read(unit_.Weight.IRValue(Protocol())) != kNoChannel;
    identity.serialNumber = connection_.SerialNumberText();
    unit_.SensorID = Read("eaSensorID_0");
    unit_.TWACentralUnit = Read(std::string(snsZ7731::P0Algorithm)) == snsZ7731::TWAonP0Value;
    for (auto* channel : CaseOrder()) channel->SetCase(Read(channel->IRCase(Protocol())), Protocol());
    ReadLevels();
    for (int i = 0; i < snsZ7731::kPositions; ++i) {
      unit_.SetDisplayMode(i, Read(sequence.at(static_cast<std::size_t>(i))));
    }
    unit_.Relay1.Init(Read("eaCountPar_10"));
    unit_.Relay2.Init(Read("eaCountPar_11"));
    return identity;
  }

 private:
  std::int32_t Protocol() const { return unit_.ProtocolInUse; }
  std::int32_t Read(const std::string& name) { return nodes_.FindNode(name, "").GetValue(fromSensor_); }

  std::vector<snsZ7731::Channel*> CaseOrder() {
    return {&unit_.Temp1, &unit_.Temp2, &unit_.Weight, &unit_.TWA, &unit_.CO2};
  }

  void ReadLevels() {
    for (auto* channel : CaseOrder()) {
      channel->COMP_A = Read(channel->HRCOMP_A(Protocol()));
      channel->COMP_B = Read(channel->HRCOMP_B(Protocol()));
      if (channel == &unit_.Weight) unit_.WeightHysteresis = Read(unit_.WeightHRHysteresis(Protocol()));
    }
  }

  std::vector<std::string> Names(const std::array<std::string, snsZ7731::kPositions>& sequence) {
    std::vector<std::string> names{"eaSensorID_0", std::string(snsZ7731::P0Algorithm), "eaCountPar_10",
                                   "eaCountPar_11", unit_.WeightHRHysteresis(Protocol())};
    names.insert(names.end(), sequence.begin(), sequence.end());
    for (const auto* channel : CaseOrder()) {
      names.insert(names.end(), {channel->IRCase(Protocol()), channel->HRCOMP_A(Protocol()),
                                 channel->HRCOMP_B(Protocol())});
    }
    return names;
  }

  BRECOM& connection_;
  SensorNodes nodes_;
  snsZ7731& unit_;
  bool fromSensor_;
};

}  // namespace

std::array<std::string, snsZ7731::kPositions> DisplaySequenceNames(int modelCode) {
  std::array<std::string, snsZ7731::kPositions> names;
  for (std::size_t i = 0; i < names.size(); ++i) {
    names.at(i) = "eaMenuItemMPar" + std::to_string(i + 1) + (modelCode == kSecondListModel ? "_1" : "_0");
  }
  return names;
}

UnitIdentity ReadUnit(BRECOM& connection, snsZ7731& unit, bool fromSensor) {
  return Reader(connection, unit, fromSensor).Run();
}

bool WriteVerified(BRECOM& connection, const std::string& name, double value, bool toSensor,
                   const std::function<bool()>& onFailure) {
  const auto whole = static_cast<std::int32_t>(Round(value));
  for (int attempt = 1; attempt <= kAttempts; ++attempt) {
    try {
      connection.Nodes().FindNode(name, "").SetValue(toSensor, whole);
      if (connection.Nodes().FindNode(name, "").GetValue(toSensor) == whole) return true;
    } catch (const ConnectionError&) {
      if (onFailure()) return false;
    }
  }
  return false;
}

}  // namespace brelant
