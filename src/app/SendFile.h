// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <string>

#include "comm/SerialLink.h"
#include "panels/PanelFrame.h"

namespace brelant {

/// Sends a settings file to a sensor with no panel opened (docs/architecture.md, Send file to sensor). Port,
/// bus ID and protocol are those of the dialog.
class SendFile {
 public:
  SendFile(const PanelContext& context, SerialLink& link);

  /// What the dialog's button asks for. A failure is told in a message box.
  void Run();
  /// Sends that file. False: the reason is in LastError.
  bool Send(const std::string& fileName);

 private:
  bool SendChosen();
  void Connect();
  bool SendByNames(const std::string& fileName);
  const std::string& Port() const { return context_.comSet.txbComPort.Text(); }
  bool ReadSensor(int platform);
  bool ReadImage(std::int32_t selector, bool isEeprom, float highestVariant);
  bool WriteSensor(int platform);
  void ShowProgress(const std::string& text, bool hideBar);

  PanelContext context_;
  SerialLink& link_;
};

}  // namespace brelant
