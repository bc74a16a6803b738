// SPDX-License-Identifier: GPL-3.0-or-later
#include "panels/ImagePanel.h"

#include "shell/Common.h"

namespace brelant {

namespace {

constexpr std::size_t kPartAddress = 65;
constexpr std::int32_t kWholeEeprom = 30;

ControlArray AddEntries(Form& form, const std::vector<std::pair<std::string, std::string>>& entries) {
  std::vector<Control*> added;
  for (const auto& [name, caption] : entries) added.push_back(&form.AddMenu("mCalibrate", name, caption));
  return ControlArray(added);
}

PanelFrame::Frame FrameOf(const ImagePanel::Captions& captions) {
  return {captions.simulated, "KVX3.0", "KVX3.0 Simulated mode", {captions.optionsMenu}};
}

}  // namespace

ImagePanel::ImagePanel(const PanelContext& context, const std::string& name, const Captions& captions)
    : PanelFrame(context, name, FrameOf(captions)),
      mTWAreset(form.AddMenu("M0", "mTWAreset", "TWA reset")),
      CalTemp(form.AddMenu("mCalibrate", captions.names.temperature, captions.temperatureEntry)),
      mCalCO2(form.AddMenu("mCalibrate", "mCalCO2", captions.singlePointEntry)),
      mCalCO2Zero(form.AddMenu("mCalCO2", captions.names.zero, "Zero")),
      mCalCO2Background(form.AddMenu("mCalCO2", captions.names.background, "Fresh air")),
      mCalCO2Other(form.AddMenu("mCalCO2", captions.names.other, "Other")),
      mCalCO2span(form.AddMenu("mCalibrate", "mCalCO2span", "CO2 span")),
      furtherCalibrations_(AddEntries(form, captions.furtherCalibrations)),
      mCalCurve(form.AddMenu("mCalibrate", "mCalCurve", "Calibration curve")),
      calibratingTemperature_(captions.calibratingTemperature) {
  mTWAreset.onClick = Requesting(resetTWA);
  mCalCO2Zero.onClick = Requesting(calibrateCO2Zero);
  mCalCO2Background.onClick = Requesting(calibrateCO2Background);
  mCalCO2Other.onClick = Requesting(calibrateCO2Other);
  CalTemp.onClick = Question(calibrateTempZero);
  mCalCO2span.onClick = Question(calibrateCO2Span);
  mCalCurve.SetEnabled(false);
  mCalCurve.onClick = [this] { context_.curve.form.Show(); };
}

bool ImagePanel::RunAction(int command) {
  switch (command) {
    case resetTWA:
      return ActionTWAReset();
    case calibrateTempZero:
      return ActionCalTempZero();
    case calibrateCO2Zero:
      return ActionCalCO2Zero(snsCal::zeroGas);
    case calibrateCO2Background:
      return ActionCalCO2Zero(snsCal::freshAir);
    case calibrateCO2Other:
      return ActionCalCO2Zero(snsCal::otherGas);
    case calibrateCO2Span:
      return ActionCalCO2span();
    default:
      return PanelFrame::RunAction(command);
  }
}

bool ImagePanel::ReadAfresh(const std::function<bool()>& read) {
  imageBefore_ = context_.image;
  context_.com.ClearImage(static_cast<std::uint8_t>(kBroadcastId));
  const bool done = read();
  if (!done) GiveImageBack();
  imageBefore_.reset();
  return done;
}

void ImagePanel::GiveImageBack() {
  if (imageBefore_) context_.image = *imageBefore_;
}

bool ImagePanel::ReadWhole(std::int32_t selector, bool isEeprom) {
  return context_.com.ReadSensorMemory(selector, 0, 0, isEeprom, false);
}

std::optional<std::string> ImagePanel::AskForFile(UserInterface::FileUse use, const std::string& text) {
  auto name = context_.machine.userInterface.FileDialog(use, "(*.Set)|*.Set");
  if (!name || name->empty()) return {};
  ShowProgress(text, false);
  return name;
}

bool ImagePanel::LoadEeprom() {
  const auto name = AskForFile(UserInterface::FileUse::open, "Loading settings");
  if (!name) return true;
  if (!FormRead()) return false;
  // A file brings the part number of the sensor that it was saved from.
  auto& part = context_.image.RamImage.at(kPartAddress);
  const float attached = part;
  const bool loaded = context_.file.LoadSettings(*name, 0);
  part = attached;
  return loaded && FormUpdateInit() && FormUpdate();
}

bool ImagePanel::ReadEeprom() {
  return ReadWhole(kWholeEeprom, true);
}

bool ImagePanel::SendEeprom() {
  if (!FormRead()) return false;
  ShowProgress("Sending to sensor", false);
  return context_.com.WriteSensorMemory(kWholeEeprom, 0, 0, true, true, false, true, true, false);
}

bool ImagePanel::SaveSelected(const std::string& name, std::int32_t selection,
                              std::span<const snsFil::BlockWrite> blocks) {
  context_.com.SelectBlock(selection);
  return Saved(context_.file.SaveBlocks(name, 1, blocks));
}

bool ImagePanel::Saved(bool done) {
  if (!done) context_.session.Fail("Can't save settings.");
  return done;
}

bool ImagePanel::ActionCalTempZero() {
  const auto text = Ask("Please enter correct temperature");
  if (!text) return true;
  ShowProgress(calibratingTemperature_, false);
  return Calibrated(context_.cal.CalibrateTemperature(ParseNumber(*text), snsCal::kPlatformChannel, false));
}

bool ImagePanel::ActionCalCO2Zero(int kind) {
  std::optional<std::string> text;
  if (kind == snsCal::otherGas) {
    text = Ask("Please enter CO2 concentration");
    if (!text) return true;
  }
  ShowProgress("Calibrating CO2 zero point", false);
  return Calibrated(context_.cal.CalibrateCO2Zero(snsCal::kPlatformChannel, false, kind, text.value_or("")));
}

bool ImagePanel::ActionCalCO2span() {
  context_.spanNote.ShowModal(context_.machine.pump);
  if (!context_.session.LastError.empty() || context_.session.Over()) return true;
  const auto text = Ask("Please enter span gas concentration");
  if (!text) return true;
  ShowProgress("Calibrating CO2 span", false);
  return Calibrated(CalibrateSpan(*text));
}

bool ImagePanel::CalibrateSpanOf(float channel, const std::string& text) {
  const float raw = context_.info.TextToRaw(text, channel, false);
  return context_.cal.CalibrateCO2Span(channel, NumberText(raw), false);
}

bool ImagePanel::Calibrated(bool done) {
  const auto& change = context_.cal.LastChange();
  if (!done || !change) return done;
  context_.curve.Take(*change);
  mCalCurve.SetEnabled(true);
  return true;
}

void ImagePanel::MakeEditable(Control& field, std::function<void()> check) {
  PanelFrame::MakeEditable(field, std::move(check), [this] { Restore(); });
}

void ImagePanel::Restore() {
  if (!ImageIsWhole()) return;
  FormRead();
  FormUpdate();
}

void ImagePanel::ChooseAndStore(Control& label, const ControlArray& menu) {
  if (!ImageIsWhole()) return;
  PopUp(label, menu);
  Restore();
}

void ImagePanel::Choose(Control& label, const ControlArray& menu, const std::function<void()>& store) {
  if (!ImageIsWhole()) return;
  FormRead();
  PopUp(label, menu);
  store();
  FormUpdate();
}

}  // namespace brelant
