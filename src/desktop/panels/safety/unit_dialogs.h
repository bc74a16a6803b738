// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "desktop/panels/safety/UnitDialogWindow.h"

namespace brelant {

/// What the unit's own display shows, its temperature unit and its network ID.
class SensorConfigWindow : public UnitDialogWindow {
 public:
  SensorConfigWindow(Form& form, Acts& acts);

 private:
  void AddSequence();
  void AddFormat();
  void AddId();
};

/// The interval of the automatic background calibration.
class AbcWindow : public UnitDialogWindow {
 public:
  AbcWindow(Form& form, Acts& acts);
};

/// What the loggers record, and how often.
class LoggerWindow : public UnitDialogWindow {
 public:
  LoggerWindow(Form& form, Acts& acts);
};

/// How often the panel polls.
class OptionsWindow : public UnitDialogWindow {
 public:
  OptionsWindow(Form& form, Acts& acts);
};

/// What this program is.
class AboutWindow : public UnitDialogWindow {
 public:
  AboutWindow(Form& form, Acts& acts);
};

}  // namespace brelant
