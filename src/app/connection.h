// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "shell/frmComSet.h"
#include "shell/session.h"

namespace brelant {

/// Units with a tank or without, and the safety system.
inline constexpr int kPlatform8 = 8;
inline constexpr int kSafetySystem = 9;
/// They are reached by names, not through the image (docs/architecture.md, The symbolic road).
bool IsReachedByName(int platform);
inline constexpr const char* kUnknownSensor = "Unknown sensor type, can't connect to sensor.";

/// The protocol that the dialog chooses.
bool SpeaksKiBus(const frmComSet& dialog);
bool SpeaksModbus(const frmComSet& dialog);
/// The bus ID that the dialog chooses; with no start mode chosen the present one stays.
void TakeSensorId(const frmComSet& dialog, Session& session);

/// The same ID as a connection object takes it.
int IdForConnection(const frmComSet& dialog, const Session& session);

}  // namespace brelant
