// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/connection.h"

#include "shell/Common.h"

namespace brelant {

bool SpeaksKiBus(const frmComSet& dialog) {
  return dialog.optComProt[frmComSet::kiBus].Value() == 1;
}

void TakeSensorId(const frmComSet& dialog, Session& session) {
  if (dialog.optStartMode[frmComSet::singleSensor].Value() == 1) session.SensorId = kBroadcastId;
  if (dialog.optStartMode[frmComSet::networkSensor].Value() == 1) {
    session.SensorId = ParseNumber(dialog.txbID.Text());
  }
}

}  // namespace brelant
