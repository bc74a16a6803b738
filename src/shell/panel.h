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

  /// `optionsName` is the name of the menu "KVX options", which is not the same on all panels.
  explicit Panel(Screen& screen, const std::string& name, const std::string& optionsName = "mOptions");
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
  /// Undoes a read of all settings that is under way: what was read so far is not to be saved.
  virtual void GiveImageBack() {}
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
  Control& mTWAreset;
  Control& mHelp;
};

}  // namespace brelant
