// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/SendFile.h"

#include "app/connection.h"
#include "connection/BREFILE.h"
#include "connection/ReadPartModbus.h"
#include "connection/connection_error.h"

namespace brelant {

namespace {

constexpr std::size_t kPart = 65;
constexpr std::int32_t kSettingsOf5 = 6;
constexpr std::int32_t kWholeRam = 8;
constexpr std::int32_t kWholeEeprom = 30;

bool IsBlank(const std::string& text) {
  return text.find_first_not_of(' ') == std::string::npos;
}

}  // namespace

SendFile::SendFile(const PanelContext& context, SerialLink& link) : context_(context), link_(link) {}

void SendFile::Run() {
  auto& session = context_.session;
  SendChosen();
  if (session.Over()) return;
  if (!session.LastError.empty() && session.LastError != kCancelled) {
    context_.machine.userInterface.Tell(session.LastError);
  }
  session.LastError.clear();
  ShowProgress("", true);
}

/// The name counts that was chosen in the file dialog, not one typed by hand.
bool SendFile::SendChosen() {
  if (IsBlank(context_.comSet.txbFileName.Text())) {
    context_.session.Fail("Please enter file name in the textbox.");
    return false;
  }
  ShowProgress("Loading settings", true);
  return Send(context_.comSet.ChosenFile());
}

bool SendFile::Send(const std::string& fileName) {
  const bool isModbus = SpeaksModbus(context_.comSet);
  if (isModbus) {
    Connect();
    if (!ReadPartModbus(context_.connection, context_.image, Port(), true)) return false;
  }
  if (fileName.empty()) return true;
  if (!isModbus) Connect();
  // The platform comes from a byte that is fetched here.
  if (context_.info.GetPartNumber() == 0 && !context_.session.LastError.empty()) return false;
  const int platform = context_.info.GetPlatform();
  if (IsReachedByName(platform)) return SendByNames(fileName);
  if (!ReadSensor(platform)) return false;
  const float part = context_.image.RamImage[kPart];
  if (!context_.file.LoadSettings(fileName, 0)) return false;
  // The file's part number may speak another generation than the sensor, which would not understand the save.
  context_.image.RamImage[kPart] = part;
  return WriteSensor(platform);
}

/// A unit that is reached by name takes the file by itself; the image plays no part.
bool SendFile::SendByNames(const std::string& fileName) {
  try {
    BRECOM sens(context_.connection);
    sens.ConnectSensor(Port(), IdForConnection(context_.comSet, context_.session));
    if (SpeaksModbus(context_.comSet)) sens.SelectModbus(1);
    BREFILE file({sens, context_.machine.files, context_.machine.userInterface});
    file.onAction = [this](const std::string& text) { ShowProgress(text, false); };
    file.onProgress = [this](int percent) {
      context_.session.BusProgress = static_cast<std::uint8_t>(percent);
    };
    if (file.Read(fileName)) file.Send();
    return true;
  } catch (const ConnectionError& error) {
    context_.session.Fail(error.what());
    return false;
  }
}

void SendFile::Connect() {
  context_.session.CancelPressed = false;
  link_.SetCommPort(Port());
  context_.com.ClearImage(static_cast<std::uint8_t>(kBroadcastId));
  TakeSensorId(context_.comSet, context_.session);
}

/// The sensor's own bytes, without which a file cannot be fitted to it.
bool SendFile::ReadSensor(int platform) {
  switch (platform) {
    case 5:
      return context_.definitions.LoadDefinition() && ReadImage(kWholeRam, false, 2);
    case 6:
      return ReadImage(kWholeEeprom, true, 5);
    case 61:
      return ReadImage(kWholeEeprom, true, 1);
    default:
      context_.session.LastError = kUnknownSensor;
      return false;
  }
}

bool SendFile::ReadImage(std::int32_t selector, bool isEeprom, float highestVariant) {
  ShowProgress("Reading sensor", false);
  if (!context_.com.ReadSensorMemory(selector, 0, 0, isEeprom, false)) return false;
  const float variant = context_.info.GetProductVariant();
  if (!context_.session.LastError.empty()) return false;
  if (variant >= 0 && variant <= highestVariant) return true;
  context_.session.LastError = kUnknownSensor;
  return false;
}

bool SendFile::WriteSensor(int platform) {
  ShowProgress("Saving to sensor", false);
  if (platform == 5) {
    return context_.com.WriteSensorMemory(kSettingsOf5, 0, 0, false, true, false, true, true, true);
  }
  return context_.com.WriteSensorMemory(kWholeEeprom, 0, 0, true, true, false, true, true, false);
}

void SendFile::ShowProgress(const std::string& text, bool hideBar) {
  context_.msg.ShowProgress(text, hideBar, &context_.comSet.form);
}

}  // namespace brelant
