// SPDX-License-Identifier: GPL-3.0-or-later
#include <optional>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "comm/kibus.h"

namespace brelant::kibus {
namespace {

using testing::ElementsAre;
using Data = std::vector<std::uint8_t>;

TEST(RequestToSend, IsTheLowByteOf224AndTheId) {
  EXPECT_EQ(RequestToSend(30), 254);
  EXPECT_EQ(RequestToSend(1), 225);
  EXPECT_EQ(RequestToSend(3), 227);
  EXPECT_EQ(RequestToSend(29), 253);
  EXPECT_EQ(RequestToSend(0), 224);
  EXPECT_EQ(RequestToSend(31), 255);
  EXPECT_EQ(RequestToSend(32), 0);
  EXPECT_EQ(RequestToSend(300), 12);  // 524 - 512
}

TEST(Checksum, IsTheLowByteOfTheSum) {
  EXPECT_EQ(Checksum(Data{129, 65}), 194);
  EXPECT_EQ(Checksum(Data{255, 255, 3}), 1);
  EXPECT_EQ(Checksum(Data{}), 0);
}

TEST(Ack, Is6Or134) {
  for (int status = 0; status < 256; ++status) {
    EXPECT_EQ(IsAck(static_cast<std::uint8_t>(status)), status == 6 || status == 134) << status;
  }
}

TEST(FormOf, FollowsFromMemoryAndPlatform) {
  for (const std::uint8_t platform : {0, 5, 6, 61, 7, 8, 9}) {
    EXPECT_EQ(FormOf(false, platform), AddressForm::R) << +platform;
  }
  for (const std::uint8_t platform : {5, 6, 61}) {
    EXPECT_EQ(FormOf(true, platform), AddressForm::W) << +platform;
  }
  EXPECT_EQ(FormOf(true, 7), AddressForm::L);
  EXPECT_EQ(FormOf(true, 8), AddressForm::L);
}

TEST(ReadRequest, OfRamNamesTheBank) {
  EXPECT_THAT(ReadRequest(AddressForm::R, {65, 1}), ElementsAre(129, 65, 194));
  EXPECT_THAT(ReadRequest(AddressForm::R, {65, 3}), ElementsAre(131, 65, 196));
  EXPECT_THAT(ReadRequest(AddressForm::R, {127, 1}), ElementsAre(129, 127, 0));
  EXPECT_THAT(ReadRequest(AddressForm::R, {128, 1}), ElementsAre(193, 0, 193));
  EXPECT_THAT(ReadRequest(AddressForm::R, {197, 4}), ElementsAre(196, 69, 9));
  EXPECT_THAT(ReadRequest(AddressForm::R, {250, 6}), ElementsAre(198, 122, 64));
}

TEST(ReadRequest, OfWordEepromHalvesTheAddress) {
  EXPECT_THAT(ReadRequest(AddressForm::W, {172, 2}), ElementsAre(138, 86, 224));
  EXPECT_THAT(ReadRequest(AddressForm::W, {0, 6}), ElementsAre(142, 0, 142));
  EXPECT_THAT(ReadRequest(AddressForm::W, {510, 2}), ElementsAre(138, 255, 137));
}

TEST(ReadRequest, OfLongEepromHasTwoAddressBytes) {
  EXPECT_THAT(ReadRequest(AddressForm::L, {998, 4}), ElementsAre(140, 3, 230, 117));
  EXPECT_THAT(ReadRequest(AddressForm::L, {16, 1}), ElementsAre(137, 0, 16, 153));
  EXPECT_THAT(ReadRequest(AddressForm::L, {1022, 2}), ElementsAre(138, 3, 254, 139));
}

TEST(ReadRequest, OfWideRamHasBothBitsThatNoOtherRequestHas) {
  // 128 + 48 + count; 260 = 1 x 256 + 4.
  EXPECT_THAT(ReadRequest(AddressForm::RL, {260, 1}), ElementsAre(177, 1, 4, 182));
  EXPECT_THAT(ReadRequest(AddressForm::RL, {304, 2}), ElementsAre(178, 1, 48, 227));
  EXPECT_THAT(ReadRequest(AddressForm::RL, {383, 1}), ElementsAre(177, 1, 127, 49));   // 305 less 256
  EXPECT_THAT(ReadRequest(AddressForm::RL, {508, 4}), ElementsAre(180, 1, 252, 177));  // 433 less 256
}

TEST(WriteFrame, OfRamNamesTheBank) {
  EXPECT_THAT(WriteFrame(AddressForm::R, 31, Data{2, 15}), ElementsAre(2, 31, 2, 15, 50));
  EXPECT_THAT(WriteFrame(AddressForm::R, 208, Data{7}), ElementsAre(65, 80, 7, 152));
  EXPECT_THAT(WriteFrame(AddressForm::R, 162, Data{255, 255, 255, 255}),
              ElementsAre(68, 34, 255, 255, 255, 255, 98));
}

TEST(WriteFrame, OfRamThatBeginsBelow128GoesOutWithBank0) {
  EXPECT_THAT(WriteFrame(AddressForm::R, 126, Data{1, 2, 3, 4}), ElementsAre(4, 126, 1, 2, 3, 4, 140));
}

TEST(WriteFrame, OfWordEepromHalvesTheAddress) {
  EXPECT_THAT(WriteFrame(AddressForm::W, 36, Data{240, 0}), ElementsAre(10, 18, 240, 0, 12));
  EXPECT_THAT(WriteFrame(AddressForm::W, 508, Data{1, 2, 3, 4}), ElementsAre(12, 254, 1, 2, 3, 4, 20));
}

TEST(WriteFrame, OfLongEepromHasTwoAddressBytes) {
  EXPECT_THAT(WriteFrame(AddressForm::L, 16, Data{5}), ElementsAre(9, 0, 16, 5, 30));
  EXPECT_THAT(WriteFrame(AddressForm::L, 844, Data{63, 255, 19, 136}),
              ElementsAre(12, 3, 76, 63, 255, 19, 136, 52));
}

TEST(WriteFrame, OfWideRamHasBothBitsThatNoOtherFrameHas) {
  EXPECT_THAT(WriteFrame(AddressForm::RL, 304, Data{0, 2}), ElementsAre(50, 1, 48, 0, 2, 101));
  EXPECT_THAT(WriteFrame(AddressForm::RL, 256, Data{9}), ElementsAre(49, 1, 0, 9, 59));
}

TEST(WideRam, LooksLikeNoCommand) {
  for (const std::uint8_t generation : {1, 2}) {
    for (int operation = 0; operation < 6; ++operation) {
      const auto command = CommandFrame(operation, generation);
      if (!command) continue;
      for (int count = 1; count <= 4; ++count) {
        EXPECT_NE(ReadRequest(AddressForm::RL, {256, count}).front(), command->front());
        EXPECT_NE(WriteFrame(AddressForm::RL, 256, Data(static_cast<std::size_t>(count))).front(),
                  command->front());
      }
    }
  }
}

TEST(CommandFrame, OfTheFirstGeneration) {
  EXPECT_THAT(*CommandFrame(0, 1), ElementsAre(32, 0, 32));
  EXPECT_THAT(*CommandFrame(1, 1), ElementsAre(161, 0, 161));
  EXPECT_THAT(*CommandFrame(2, 1), ElementsAre(16, 0, 16));
  EXPECT_THAT(*CommandFrame(3, 1), ElementsAre(147, 0, 147));
  EXPECT_EQ(CommandFrame(4, 1), std::nullopt);
  EXPECT_EQ(CommandFrame(5, 1), std::nullopt);
}

TEST(CommandFrame, OfTheSecondGeneration) {
  EXPECT_THAT(*CommandFrame(0, 2), ElementsAre(145, 0, 145));
  EXPECT_THAT(*CommandFrame(1, 2), ElementsAre(153, 173, 70));
  EXPECT_THAT(*CommandFrame(2, 2), ElementsAre(169, 171, 84));
  EXPECT_THAT(*CommandFrame(3, 2), ElementsAre(197, 55, 252));
  EXPECT_THAT(*CommandFrame(4, 2), ElementsAre(161, 0, 161));
  EXPECT_THAT(*CommandFrame(5, 2), ElementsAre(185, 1, 186));
}

TEST(CommandFrame, OfAnUnknownGenerationIsNone) {
  for (int operation = 0; operation < 6; ++operation) {
    EXPECT_EQ(CommandFrame(operation, 0), std::nullopt) << operation;
  }
}

}  // namespace
}  // namespace brelant::kibus
