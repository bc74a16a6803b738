// SPDX-License-Identifier: GPL-3.0-or-later
#include <algorithm>

#include <gtest/gtest.h>

#include "support/bus.h"

namespace brelant {
namespace {

template <typename Array, typename Value>
bool AllAre(const Array& array, std::size_t first, std::size_t last, Value value) {
  return std::all_of(array.begin() + static_cast<std::ptrdiff_t>(first),
                     array.begin() + static_cast<std::ptrdiff_t>(last) + 1,
                     [&](const auto& element) { return element == value; });
}

TEST(ClearImage, EmptiesEverythingButTheRamAbove255) {
  test::ScriptedBus bus;
  auto& image = bus.image;
  image.EepromImage.fill(9);
  image.EepromRead.fill(9);
  image.EepromValid.fill(true);
  image.RamImage.fill(9);
  image.RamRead.fill(9);
  image.RamValid.fill(true);
  image.ReadRequest.fill(255);
  image.SetBuffer.fill(255);
  bus.session.LastError = "kept";

  bus.com.ClearImage(30);

  EXPECT_TRUE(AllAre(image.EepromImage, 0, 8194, 0.0F));
  EXPECT_TRUE(AllAre(image.EepromRead, 0, 8194, 0.0F));
  EXPECT_TRUE(AllAre(image.EepromValid, 0, 8194, false));
  EXPECT_TRUE(AllAre(image.ReadRequest, 0, 8194, 0));
  EXPECT_TRUE(AllAre(image.RamImage, 0, 255, 0.0F));
  EXPECT_TRUE(AllAre(image.RamRead, 0, 255, 0.0F));
  EXPECT_TRUE(AllAre(image.RamValid, 0, 255, false));
  EXPECT_TRUE(AllAre(image.SetBuffer, 0, 550, 0));
  EXPECT_TRUE(AllAre(image.RamImage, 256, 257, 9.0F));
  EXPECT_TRUE(AllAre(image.RamRead, 256, 257, 9.0F));
  EXPECT_TRUE(AllAre(image.RamValid, 256, 257, true));
  EXPECT_EQ(bus.session.LastError, "kept");
}

TEST(ClearImage, SetsTheId) {
  test::ScriptedBus bus;
  bus.com.ClearImage(17);
  EXPECT_EQ(bus.session.SensorId, 17);
  bus.com.ClearImage(30);
  EXPECT_EQ(bus.session.SensorId, 30);
}

TEST(SensorImage, HasItsSizes) {
  EXPECT_EQ(SensorImage().EepromImage.size(), 8195U);
  EXPECT_EQ(SensorImage().RamImage.size(), 258U);
  EXPECT_EQ(SensorImage().ReadRequest.size(), 8195U);
  EXPECT_EQ(SensorImage().SetBuffer.size(), 551U);
}

TEST(SensorImage, HoldsWordsMostSignificantByteFirst) {
  SensorImage image;
  image.SetRamWord(20, 5123);  // 20 x 256 + 3
  EXPECT_EQ(image.RamImage[20], 20);
  EXPECT_EQ(image.RamImage[21], 3);
  EXPECT_EQ(image.RamWord(20), 5123);
  image.SetEepromWord(36, 61440);
  EXPECT_EQ(image.EepromImage[36], 240);
  EXPECT_EQ(image.EepromImage[37], 0);
  EXPECT_EQ(image.EepromWord(36), 61440);
}

TEST(SensorImage, SplitsWordsThatDoNotFit) {
  SensorImage image;
  image.SetRamWord(20, 70000);
  EXPECT_EQ(image.RamWord(20), 65535);
  image.SetRamWord(20, -1);
  EXPECT_EQ(image.RamWord(20), 65535);
  image.SetRamWord(20, 255.5F);
  EXPECT_EQ(image.RamWord(20), 256);
}

}  // namespace
}  // namespace brelant
