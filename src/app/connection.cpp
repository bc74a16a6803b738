// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/connection.h"

#include "connection/Road.h"
#include "shell/Common.h"

namespace brelant {

bool SpeaksKiBus(const frmComSet& dialog) {
  return dialog.optComProt[frmComSet::kiBus].Value() == 1;
}

bool SpeaksModbus(const frmComSet& dialog) {
  return dialog.optComProt[frmComSet::modBus].Value() == 1;
}

bool IsReachedByName(int platform) {
  return platform == kPlatform8 || platform == kSafetySystem;
}

int IdForConnection(const frmComSet& dialog, const Session& session) {
  const bool isOnNetwork = dialog.optStartMode[frmComSet::networkSensor].Value() == 1;
  return isOnNetwork ? static_cast<int>(session.SensorId) : kOnlyUnit;
}

void TakeSensorId(const frmComSet& dialog, Session& session) {
  if (dialog.optStartMode[frmComSet::singleSensor].Value() == 1) session.SensorId = kBroadcastId;
  if (dialog.optStartMode[frmComSet::networkSensor].Value() == 1) {
    session.SensorId = ParseNumber(dialog.txbID.Text());
  }
}

}  // namespace brelant
