// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "app/SendFile.h"
#include "comm/SerialLink.h"
#include "panels/PanelFrame.h"
#include "shell/frmSim.h"
#include "shell/panel.h"
#include "shell/session.h"

namespace brelant {

/// The start and the end of a session (docs/architecture.md, Sessions). A session is one connection to one
/// sensor, one simulated sensor or one settings file.
class KVXMain {
 public:
  struct PanelEntry {
    std::string name;
    std::function<std::unique_ptr<Panel>()> make;
  };

  KVXMain(const PanelContext& context, SerialLink& link, frmSim& sim, std::string applicationPath);

  /// Takes the program from nothing to a panel on the screen; returns with the panel shown, or with the
  /// process over.
  void Main();
  /// Ends the session at once; the loops see that and unwind.
  void EndSession();

  const std::vector<PanelEntry>& PanelList() const { return panelList_; }
  /// Sends a settings file as the dialog does, by what the dialog shows. False: the reason is in LastError.
  bool Send(const std::string& fileName);

 private:
  /// What became of an attempt to start a session.
  enum class Outcome { started, failed, failedAndTold };

  void EnterAppDir() { context_.session.AppDir = applicationPath_ + "\\"; }
  void FillPanelList();
  void AskForSettings();
  Outcome Start();
  Outcome ConnectSensor();
  bool ReadPartNumber();
  Outcome LoadSimulation();
  bool LoadImage(const std::string& name);
  void FillSimulationList();
  void PresetVega3();
  bool PreparePanel(bool simulated);
  std::unique_ptr<Panel> MakePanel(const std::string& name);
  bool ReadSensor(bool simulated, float& variant);
  bool ReadModel(float& model);
  bool ReadImage(bool simulated);
  bool ReadWhole(std::int32_t selector, bool isEeprom);
  bool ReadSettingsOf7();
  void ShowPanel(bool simulated);
  void SaveLastSettings();
  void ShowMessage(const std::string& text);

  PanelContext context_;
  SerialLink& link_;
  frmSim& sim_;
  SendFile sendFile_;
  std::string applicationPath_;
  std::vector<PanelEntry> panelList_;
  std::unique_ptr<Panel> panel_;
};

}  // namespace brelant
