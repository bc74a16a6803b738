// SPDX-License-Identifier: GPL-3.0-or-later
#include "comm/SensorImage.h"

#include <algorithm>

#include "shell/Common.h"

namespace brelant {

void SensorImage::Clear() {
  constexpr std::size_t kRamCleared = 256;
  EepromImage.fill(0);
  EepromRead.fill(0);
  EepromValid.fill(false);
  ReadRequest.fill(0);
  std::fill_n(RamImage.begin(), kRamCleared, 0.0F);
  std::fill_n(RamRead.begin(), kRamCleared, 0.0F);
  std::fill_n(RamValid.begin(), kRamCleared, false);
  SetBuffer.fill(0);
}

template <std::size_t size>
void SensorImage::SetWord(std::array<float, size>& image, int address, float value) {
  const auto at = static_cast<std::size_t>(address);
  image.at(at) = HighByte(value);
  image.at(at + 1) = LowByte(value);
}

template void SensorImage::SetWord(std::array<float, kRamSize>&, int, float);
template void SensorImage::SetWord(std::array<float, kEepromSize>&, int, float);

}  // namespace brelant
