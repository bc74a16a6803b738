// SPDX-License-Identifier: GPL-3.0-or-later
#include "shell/panel.h"

namespace brelant {

Panel::Panel(Screen& screen, const std::string& name, const std::string& optionsName)
    : form(screen, name, kApplication),
      cbxSimulated(form.Add(ControlKind::check, "cbxSimulated")),
      btnReadFromSensor(form.Add(ControlKind::button, "btnReadFromSensor", "Read from sensor")),
      btnSendToSensor(form.Add(ControlKind::button, "btnSendToSensor", "Send to sensor")),
      mFile(form.AddMenu("", "mFile", "File")),
      mLoadsettings(form.AddMenu("mFile", "mLoadsettings", "Load settings")),
      mSavesettings(form.AddMenu("mFile", "mSavesettings", "Save settings")),
      mOptions(form.AddMenu("mFile", optionsName, "KVX options")),
      mComSet(form.AddMenu(optionsName, "mComSet", "Show communication setup dialog when KVX starts.")),
      mExit(form.AddMenu("mFile", "mExit", "Exit")),
      M0(form.AddMenu("", "M0", "Sensor")),
      mReadfromsensor(form.AddMenu("M0", "mReadfromsensor", "Read from sensor")),
      mSendtosensor(form.AddMenu("M0", "mSendtosensor", "Send to sensor")),
      mCalibrate(form.AddMenu("M0", "mCalibrate", "Calibrate")),
      mTWAreset(form.AddMenu("M0", "mTWAreset", "TWA reset")),
      mHelp(form.AddMenu("", "mHelp", "Help")) {}

}  // namespace brelant
