// SPDX-License-Identifier: GPL-3.0-or-later
#include <set>
#include <sstream>

#include <gtest/gtest.h>

#include "support/bus.h"

namespace brelant {
namespace {

struct Row {
  int selector;
  std::size_t bytes;
  std::string addresses;
};

// As docs/memory-maps.md, Blocks, has them.
const std::vector<Row>& Rows() {
  static const std::vector<Row> rows{
      {1, 42, "31-32, 57, 162-196, 205-208"},
      {2, 7, "14, 20-23, 198-199"},
      {3, 5, "63, 130-131, 209-210"},
      {4, 107, "31-39, 57, 59-67, 128-145, 162-196, 202-210, 212-237"},
      {6, 63, "31-32, 57, 59-62, 162-196, 205-208, 212-213, 216-220, 223-232"},
      {7, 52, "14, 20-27, 39, 59-62, 68-75, 145-161, 197-200, 213-215, 220-222, 227, 234, 255"},
      {8, 256, "0-255"},
      {9, 15, "20-23, 39, 60, 70-71, 148-149, 156-159, 234"},
      {11, 97, "31-38, 57, 59-67, 128-144, 162-196, 202-210, 212, 216-219, 223-232, 235-237"},
      {12, 13, "32, 50-51, 76-81, 84-85, 222-223"},
      {13, 180, "0-31, 34, 38-40, 43-45, 50-51, 96-97, 106-149, 162-163, 173, 218-307"},
      {15, 176, "0-31, 34, 38-40, 43-45, 50-51, 96-97, 106-126, 131-149, 162-163, 173, 218-307"},
      {20, 228, "16-117, 128-253"},
      {21, 16, "46-61"},
      {30, 512, "0-511"},
      {31, 62, "12-43, 63-64, 72-75, 200-207, 211-213, 217-218, 230, 233, 236-243, 254"},
      {32, 34, "308-341"},
      {33, 34, "342-375"},
      {34, 34, "376-409"},
      {35, 34, "410-443"},
      {36, 34, "444-477"},
      {37, 34, "478-511"},
      {39, 28, "52-59, 98-99, 158-159, 170-171, 218-231"},
      {40, 19, "12-15, 30-34, 63, 72-75, 240-243, 254"},
      {41, 48, "12-41, 60-64, 67, 210-213, 230, 232-234, 240-243"},
  };
  return rows;
}

std::set<int> Parse(const std::string& addresses) {
  std::set<int> found;
  std::istringstream text(addresses);
  for (std::string range; std::getline(text, range, ',');) {
    const auto dash = range.find('-');
    const int first = std::stoi(range);
    const int last = dash == std::string::npos ? first : std::stoi(range.substr(dash + 1));
    for (int i = first; i <= last; ++i) found.insert(i);
  }
  return found;
}

/// Selectors 12 to 15 and 30 to 40 know 512 addresses, the others 256.
int HighestFlag(int selector) {
  return (selector >= 12 && selector <= 15) || (selector >= 30 && selector <= 40) ? 511 : 255;
}

constexpr std::uint8_t kBefore = 7;

TEST(SelectBlock, SetsItsAddressesClearsTheRestAndLeavesWhatLiesAbove) {
  for (const auto& row : Rows()) {
    const auto addresses = Parse(row.addresses);
    ASSERT_EQ(addresses.size(), row.bytes) << "selector " << row.selector;
    test::ScriptedBus bus;
    bus.image.ReadRequest.fill(kBefore);
    bus.com.SelectBlock(row.selector);
    for (int i = 0; i < kEepromSize; ++i) {
      const int expected = addresses.count(i) > 0 ? 255 : i <= HighestFlag(row.selector) ? 0 : int{kBefore};
      ASSERT_EQ(bus.image.ReadRequest[static_cast<std::size_t>(i)], expected)
          << "selector " << row.selector << ", address " << i;
    }
  }
}

TEST(SelectBlock, WithNoBlockLeavesEverythingAsItIs) {
  std::set<int> known;
  for (const auto& row : Rows()) known.insert(row.selector);
  for (int selector = -2; selector <= 300; ++selector) {
    if (known.count(selector) > 0) continue;
    test::ScriptedBus bus;
    bus.image.ReadRequest.fill(kBefore);
    bus.com.SelectBlock(selector);
    for (const auto flag : bus.image.ReadRequest) ASSERT_EQ(flag, kBefore) << "selector " << selector;
  }
}

}  // namespace
}  // namespace brelant
