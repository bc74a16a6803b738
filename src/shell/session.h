// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <string>

namespace brelant {

class Panel;

/// The bus ID that stands for the broadcast form, which any single attached sensor answers.
inline constexpr float kBroadcastId = 30;

/// The program's title, and its application name in the settings store.
inline constexpr const char* kApplication = "BRELANT";

/// LastError of an operation that the user cancelled; it is never shown.
inline constexpr const char* kCancelled = "Avbryt";
/// The same of an operation on a connection.
inline constexpr const char* kCancelSelected = "Cancel was selected";

/// The state through which the modules of one process talk to each other (docs/architecture.md, State).
struct Session {
  /// The application's directory followed by one backslash.
  std::string AppDir;
  /// Bus ID in use: 1 to 29, or kBroadcastId.
  float SensorId = kBroadcastId;
  /// Empty: no failure. Any other text stops every bus retry loop. The caller that has shown it clears it.
  std::string LastError;
  bool CancelPressed = false;
  /// The step that runs now, empty when no bus operation runs.
  std::string BusBusyText;
  std::string BusBusyText2;
  /// Percentage of the running transfer.
  std::uint8_t BusProgress = 0;
  /// Once on it stays on.
  bool TrafficLogOn = false;
  /// Some sensor answered 134 instead of 6; never cleared.
  bool NakSeen = false;
  /// The pending command of the panel, 0 when none (docs/architecture.md, Panel commands).
  int PanelCommand = 0;
  Panel* CurrentPanel = nullptr;

  /// EndSession has run: every loop unwinds, and no port is opened any more.
  bool sessionOver = false;
  /// The process is to end; implies sessionOver for every loop.
  bool processOver = false;
  /// Polls of the sensor that have ended, for whoever watches.
  unsigned polls = 0;

  bool Over() const { return sessionOver || processOver; }

  /// The first writer wins.
  void Fail(const std::string& text) {
    if (LastError.empty()) LastError = text;
  }
};

}  // namespace brelant
