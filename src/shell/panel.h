// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <string>
#include <vector>

#include "shell/form.h"
#include "shell/session.h"

namespace brelant {

/// What every panel offers to the start and the end of a session, and to whoever watches its values.
class Panel {
 public:
  /// One value of the sensor as the panel shows it now.
  struct LiveValue {
    std::string name;
    std::string text;
    std::string unit;
  };
  struct Alarm {
    std::string name;
    std::string state;
  };

  /// Names of menu entries that are not the same on all panels.
  struct MenuNames {
    std::string options = "mOptions";
    std::string loadSettings = "mLoadsettings";
    std::string saveSettings = "mSavesettings";
  };

  Panel(Screen& screen, const std::string& name, const MenuNames& menus);
  virtual ~Panel() = default;
  Panel(const Panel&) = delete;
  Panel& operator=(const Panel&) = delete;

  /// Makes the panel fit the attached product. False: failure, with LastError normally set.
  virtual bool FormUpdateInit() = 0;
  /// Fills every settings field from the images.
  virtual bool FormUpdate() = 0;
  /// Takes every settings field into the images.
  virtual bool FormRead() = 0;
  virtual void SimMode(bool on) = 0;
  /// The session ends: undoes what is under way and must not be saved, and lets go of the line.
  virtual void LeaveSession() {}
  /// Runs the panel until its session is over. A second call while it runs only hides the progress box.
  virtual void PanelLoop() = 0;

  virtual std::vector<LiveValue> LiveValues() const = 0;
  virtual std::vector<Alarm> Alarms() const = 0;

  Form form;
  Control& cbxSimulated;
  Control& btnReadFromSensor;
  Control& btnSendToSensor;
  Control& mFile;
  Control& mLoadsettings;
  Control& mSavesettings;
  Control& mOptions;
  Control& mComSet;
  Control& mExit;
  Control& M0;
  Control& mReadfromsensor;
  Control& mSendtosensor;
  Control& mCalibrate;
  Control& mHelp;
};

}  // namespace brelant
