// SPDX-License-Identifier: GPL-3.0-or-later
#include "panels/Panel5.h"

#include "shell/Common.h"

namespace brelant {

namespace {

constexpr int kDisplayModes = 5;
constexpr int kDisplayMode = 31;
constexpr int kTypeOverride = 205;
constexpr int kId = 208;
constexpr float kSpanChannel = 1;

constexpr int kSettingsBlock = 6;
constexpr int kWholeRam = 8;

}  // namespace

Panel5::Panel5(const PanelContext& context, const std::string& name, const Captions& captions)
    : ImagePanel(context, name, captions),
      txbSN(form.Add(ControlKind::text, "txbSN")),
      txbID(form.Add(ControlKind::text, "txbID")),
      lblDisplayMode(form.Add(ControlKind::label, "lblDisplayMode")),
      mDisplayModes(form.AddMenu("", "mDisplayModes", "Display modes")),
      mDisplayMode(form.AddArray(ControlKind::menu, "mDisplayMode", kDisplayModes)),
      mTempUnit(form.AddMenu("", "mTempUnit", "Temperature unit")),
      mTempUnitCelsius(form.AddMenu("mTempUnit", "mTempUnitCelsius", "C")),
      mTempUnitFarenheit(form.AddMenu("mTempUnit", "mTempUnitFarenheit", "F")) {
  for (auto* menu : {&mDisplayModes, &mTempUnit}) menu->SetVisible(false);
  for (int i = 0; i < mDisplayMode.Count(); ++i) {
    mDisplayMode[i].parent = mDisplayModes.Name();
    mDisplayMode[i].SetText("Mode " + std::to_string(i));
  }
  lblDisplayMode.onClick = [this] { ChooseAndStore(lblDisplayMode, mDisplayMode); };
  txbSN.editable = [] { return false; };
  MakeIdEditable(txbID);
  mExit.onClick = [this] {
    context_.session.LastError = kCancelled;
    context_.EndSession();
  };
}

void Panel5::UpdateIdentity() {
  txbSN.SetText(context_.info.GetSensorIdentity());
  txbID.SetText(NumberText(Ram(kId)));
  lblDisplayMode.SetText(CaptionAt(mDisplayMode, Bits(Ram(kDisplayMode))));
}

void Panel5::ReadIdentity() {
  Ram(kId) = ParseNumber(txbID.Text());
  if (const auto mode = FindCaption(mDisplayMode, mDisplayMode.Count(), lblDisplayMode.Text())) {
    Ram(kDisplayMode) = static_cast<float>(*mode);
  }
}

void Panel5::ChooseTempUnit(Control& label, bool isChannel0) {
  Choose(label, ControlArray({&mTempUnitCelsius, &mTempUnitFarenheit}), [&] {
    if (isChannel0) Ram(kTypeOverride) = label.Text() == mTempUnitFarenheit.Text() ? 32 : 16;
  });
}

bool Panel5::ActionSensorRead() {
  ShowProgress("Reading from sensor", false);
  // Keeps the poll away while the image is empty; a failed read leaves it so.
  cbxSimulated.SetValue(1);
  if (!ReadAfresh([this] { return ReadWhole(kWholeRam, false); })) return false;
  cbxSimulated.SetValue(0);
  // The gas tables went with the image.
  return context_.definitions.LoadDefinition() && FormUpdate();
}

bool Panel5::ActionSettingsLoad() {
  const auto name = AskForFile(UserInterface::FileUse::open, "Loading settings");
  if (!name) return true;
  const bool loaded = context_.file.LoadSettings(*name, kSettingsBlock);
  // A file that was refused may have brought its own definition in.
  FormUpdate();
  return loaded;
}

bool Panel5::ActionSettingsSave() {
  const auto name = AskForFile(UserInterface::FileUse::save, "Saving settings");
  if (!name) return true;
  // The file is to hold what the sensor holds; a simulated one is all in the image.
  if (!Simulated() && !ReadWhole(kWholeRam, false)) return false;
  if (!FormRead()) return false;
  std::uint8_t block = snsFil::first;
  return Saved(context_.file.SaveSettings(block, *name, 1, false));
}

void Panel5::SimMode(bool on) {
  ImagePanel::SimMode(on);
  mTWAreset.SetEnabled(!on);
}

bool Panel5::CalibrateSpan(const std::string& text) {
  return CalibrateSpanOf(kSpanChannel, text);
}

}  // namespace brelant
