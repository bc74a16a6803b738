// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <string>
#include <utility>
#include <vector>

#include "platform/machine.h"
#include "shell/form.h"
#include "shell/session.h"

namespace brelant {

/// The dialog before every session. It stays loaded all the time: its controls are the current settings of
/// the connection.
class frmComSet {
 public:
  enum StartMode { singleSensor = 0, networkSensor = 1, simulatedMode = 2 };
  enum Protocol { kiBus = 0, modBus = 1 };

  frmComSet(Session& session, const Machine& machine, Screen& screen);

  /// Shows the dialog, with the ports that are there now on offer.
  void Show();
  /// Ends the process as the dialog's close button does.
  void Exit();
  /// The name chosen in the file dialog last, empty before that.
  const std::string& ChosenFile() const { return chosenFile_; }
  /// The user wants the file sent: true once after each click.
  bool TakeSendRequest() { return std::exchange(sendRequested_, false); }

  Form form;
  Control& Label1;
  Control& Label2;
  Control& txbComPort;
  ControlArray optStartMode;
  Control& lblID;
  Control& txbID;
  ControlArray optComProt;
  Control& cbxLoggcom;
  Control& cbxDontShow;
  Control& txbFileName;
  Control& Command5;
  Control& cmdSendFile;
  Control& btnHelp;
  Control& btnStartKVX;
  Control& btnExit;

 private:
  void Load();
  void StartModeChanged();
  void PortChanged();
  void ChooseFile();
  void Start();
  void WriteSettings();
  std::string ReadSetting(const std::string& key, const std::string& fallback) const;
  void WriteSetting(const std::string& key, const std::string& value);

  Session& session_;
  Machine machine_;
  std::vector<SerialPort::Description> ports_;
  std::string chosenFile_;
  bool sendRequested_ = false;
};

}  // namespace brelant
