// SPDX-License-Identifier: GPL-3.0-or-later
#include "bench/whole_file.h"

#include <stdexcept>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace brelant::bench {
namespace {

class WholeFile : public testing::Test {
 protected:
  WholeFile()
      : directory_(std::filesystem::path(testing::TempDir()) /
                   testing::UnitTest::GetInstance()->current_test_info()->name()) {
    std::filesystem::remove_all(directory_);
    std::filesystem::create_directories(directory_);
  }
  ~WholeFile() override { std::filesystem::remove_all(directory_); }

  std::filesystem::path directory_;
};

TEST_F(WholeFile, ThatIsNotThereIsNone) {
  EXPECT_EQ(ReadWhole(directory_ / "none"), std::nullopt);
}

TEST_F(WholeFile, KeepsEveryByte) {
  std::vector<std::uint8_t> bytes;
  for (int i = 0; i < 256; ++i) bytes.push_back(static_cast<std::uint8_t>(i));
  WriteWhole(directory_ / "all", bytes);
  EXPECT_EQ(ReadWhole(directory_ / "all"), bytes);
}

TEST_F(WholeFile, TakesThePlaceOfTheOldOneAndLeavesNothingBeside) {
  WriteWhole(directory_ / "one", std::vector<std::uint8_t>{1, 2, 3});
  WriteWhole(directory_ / "one", std::vector<std::uint8_t>{4});
  EXPECT_EQ(ReadWhole(directory_ / "one"), (std::vector<std::uint8_t>{4}));
  EXPECT_EQ(std::distance(std::filesystem::directory_iterator(directory_), {}), 1);
}

TEST_F(WholeFile, ThatCannotBeWrittenIsAnError) {
  EXPECT_THROW(WriteWhole(directory_ / "no" / "such" / "folder", std::vector<std::uint8_t>{1}),
               std::runtime_error);
}

}  // namespace
}  // namespace brelant::bench
