// SPDX-License-Identifier: GPL-3.0-or-later
#include "connection/ReadPartModbus.h"

#include "comm/traffic_log.h"
#include "connection/connection_error.h"
#include "platform/machine_error.h"

namespace brelant {

namespace {

constexpr std::size_t kPartAddress = 65;

int IdOf(float sensorId) {
  return sensorId < kBroadcastId ? static_cast<int>(sensorId) : kOnlyUnit;
}

void LogFailure(const BRECOM::Context& context) {
  try {
    LogLine(context.session, context.files, "Could not read Part MB");
  } catch (const MachineError&) {
    // The reason for the line matters more than the line.
    return;
  }
}

}  // namespace

bool ReadPartModbus(const BRECOM::Context& context, SensorImage& image, const std::string& port,
                    bool reportError) {
  try {
    BRECOM sens(context);
    sens.SelectModbus(1);
    sens.ConnectSensor(port, IdOf(context.session.SensorId));
    const auto part = sens.Memory().PartNumber();
    sens.Disconnect();
    sens.CloseConnection();
    image.RamImage.at(kPartAddress) = part;
    image.RamValid.at(kPartAddress) = true;
    return true;
  } catch (const ConnectionError&) {
    LogFailure(context);
    context.session.BusBusyText.clear();
    context.link.Close();
    if (reportError) context.session.Fail("Can't read from sensor");
    return false;
  }
}

}  // namespace brelant
