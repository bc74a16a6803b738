// SPDX-License-Identifier: GPL-3.0-or-later
#include "shell/panel.h"

namespace brelant {

Panel::Panel(Screen& screen, const std::string& name, const MenuNames& menus)
    : form(screen, name, kApplication),
      cbxSimulated(form.Add(ControlKind::check, "cbxSimulated")),
      btnReadFromSensor(form.Add(ControlKind::button, "btnReadFromSensor", "Read from sensor")),
      btnSendToSensor(form.Add(ControlKind::button, "btnSendToSensor", "Send to sensor")),
      mFile(form.AddMenu("", "mFile", "File")),
      mLoadsettings(form.AddMenu("mFile", menus.loadSettings, "Load settings")),
      mSavesettings(form.AddMenu("mFile", menus.saveSettings, "Save settings")),
      mOptions(form.AddMenu("mFile", menus.options, "KVX options")),
      mComSet(form.AddMenu(menus.options, "mComSet", "Show communication setup dialog when KVX starts.")),
      mExit(form.AddMenu("mFile", "mExit", "Exit")),
      M0(form.AddMenu("", "M0", "Sensor")),
      mReadfromsensor(form.AddMenu("M0", "mReadfromsensor", "Read from sensor")),
      mSendtosensor(form.AddMenu("M0", "mSendtosensor", "Send to sensor")),
      mCalibrate(form.AddMenu("M0", "mCalibrate", "Calibrate")),
      mHelp(form.AddMenu("", "mHelp", "Help")) {}

}  // namespace brelant
