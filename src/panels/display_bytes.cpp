// SPDX-License-Identifier: GPL-3.0-or-later
#include "panels/display_bytes.h"

#include "panels/PanelFrame.h"
#include "shell/Common.h"

namespace brelant {

namespace {

constexpr std::size_t kDisplay = 50;
constexpr int kNibble = 15;

std::size_t AddressOf(int label) {
  return kDisplay + static_cast<std::size_t>(label) / 2;
}
int ShiftOf(int label) {
  return label % 2 == 0 ? 0 : 4;
}

}  // namespace

void ShowDisplays(const SensorImage& image, const ControlArray& channels, const ControlArray& labels) {
  for (int i = 0; i < labels.Count(); ++i) {
    const int channel = Bits(image.EepromImage.at(AddressOf(i))) >> ShiftOf(i) & kNibble;
    labels[i].SetText(channels[channel].Text());
  }
}

void ReadDisplays(SensorImage& image, const ControlArray& channels, const ControlArray& labels) {
  for (int i = 0; i < labels.Count(); ++i) {
    auto& byte = image.EepromImage.at(AddressOf(i));
    if (ShiftOf(i) == 0) byte = 0;
    const auto channel = PanelFrame::FindCaption(channels, channels.Count(), labels[i].Text());
    if (channel) byte += static_cast<float>(*channel << ShiftOf(i));
  }
}

}  // namespace brelant
