// SPDX-License-Identifier: GPL-3.0-or-later
#include "console/reading.h"

#include <nlohmann/json.hpp>
#include <regex>

#include <gtest/gtest.h>

#include "fake_panel.h"

namespace brelant {
namespace {

const Reading kReading{"2026-11-20T18:55:20.326+01:00",
                       {{"TEMP", "-3.5", "C"}, {"State", "Warm, \"ready\"", ""}},
                       {{"A1", "OK"}}};

TEST(ReadingTest, TakesWhatThePanelShows) {
  Screen screen;
  test::FakePanel panel(screen);
  panel.values = {{"CO2", "412", "ppm"}};
  panel.alarms = {{"A1", "ALARM"}};
  const auto reading = TakeReading(panel);
  ASSERT_EQ(reading.values.size(), 1U);
  EXPECT_EQ(reading.values[0].text, "412");
  ASSERT_EQ(reading.alarms.size(), 1U);
  EXPECT_EQ(reading.alarms[0].state, "ALARM");
  const std::regex time(R"(\d{4}-\d\d-\d\dT\d\d:\d\d:\d\d\.\d{3}(Z|[+-]\d\d:\d\d))");
  EXPECT_TRUE(std::regex_match(reading.time, time)) << reading.time;
}

TEST(ReadingTest, AsJson) {
  EXPECT_EQ(ReadingJson(kReading).dump(),
            "{\"time\":\"2026-11-20T18:55:20.326+01:00\",\"values\":[{\"name\":\"TEMP\",\"value\":\"-3.5\","
            "\"unit\":\"C\"},{\"name\":\"State\",\"value\":\"Warm, \\\"ready\\\"\",\"unit\":\"\"}],"
            "\"alarms\":[{\"name\":\"A1\",\"state\":\"OK\"}]}");
}

TEST(ReadingTest, AsJsonWithoutAlarms) {
  EXPECT_EQ(ReadingJson({"t", {}, {}}).dump(), "{\"time\":\"t\",\"values\":[],\"alarms\":[]}");
}

TEST(ReadingTest, AsText) {
  EXPECT_EQ(ReadingText(kReading),
            "2026-11-20T18:55:20.326+01:00  TEMP -3.5 C  State Warm, \"ready\"  A1 OK");
}

TEST(ReadingTest, AsCommaSeparatedValues) {
  EXPECT_EQ(CsvHeader(kReading), "time,TEMP [C],State,A1");
  EXPECT_EQ(CsvRow(kReading), "2026-11-20T18:55:20.326+01:00,-3.5,\"Warm, \"\"ready\"\"\",OK");
}

}  // namespace
}  // namespace brelant
