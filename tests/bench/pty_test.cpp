// SPDX-License-Identifier: GPL-3.0-or-later
// brelant-sensor as a process, from the far end of its pseudo-terminal.
#include <chrono>
#include <csignal>
#include <filesystem>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include "bench/whole_file.h"
#include "sensor_process.h"

namespace brelant::bench {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;

TEST(Pty, ServesAndEndsOnASignal) {
  for (const int signal : {SIGINT, SIGTERM}) {
    SensorProcess process({"--part", "231"});
    {
      const Line line(process.Line());
      EXPECT_THAT(line.Send({254}, 1), ElementsAre(223));
      EXPECT_THAT(line.Send({129, 65, 194}, 3), ElementsAre(6, 231, 237));
    }
    EXPECT_EQ(process.End(signal), 0);
  }
}

TEST(Pty, PassesEveryByteAsItIs) {
  SensorProcess process({"--part", "50"});
  const Line line(process.Line());
  // 3, 4, 10, 13, 17, 19 and 26 mean something to a terminal that is not raw.
  line.Send({254}, 1);
  EXPECT_THAT(line.Send({4, 3, 10, 13, 17, 19, 66}, 1), ElementsAre(6));
  line.Send({254}, 1);
  EXPECT_THAT(line.Send({132, 3, 135}, 6), ElementsAre(6, 10, 13, 17, 19, 65));
}

TEST(Pty, MayBeClosedAndOpenedAgain) {
  SensorProcess process({"--part", "231", "--id", "3"});
  const std::string device = process.Line();
  for (int i = 0; i < 5; ++i) {
    const Line line(device);
    EXPECT_THAT(line.Send({227}, 1), ElementsAre(223));
  }
}

TEST(Pty, LinkStandsForTheDeviceAndGoesAtTheEnd) {
  const auto link = Fresh("brelant-link");
  std::filesystem::create_symlink("/nowhere", link);
  SensorProcess process({"--part", "231", "--link", link.string()});
  const std::string device = process.Line();
  EXPECT_EQ(std::filesystem::read_symlink(link), device);
  EXPECT_THAT(Line(link.string()).Send({254}, 1), ElementsAre(223));
  EXPECT_EQ(process.End(SIGTERM), 0);
  EXPECT_FALSE(std::filesystem::is_symlink(link));
}

TEST(Pty, ImageKeepsTheMemory) {
  const auto image = Fresh("brelant-image");
  {
    SensorProcess process({"--part", "231", "--image", image.string()});
    const Line line(process.Line());
    line.Send({254}, 1);
    EXPECT_THAT(line.Send({65, 80, 5, 150}, 1), ElementsAre(6));
    EXPECT_EQ(process.End(SIGTERM), 0);
  }
  const auto bytes = ReadWhole(image);
  ASSERT_TRUE(bytes);
  ASSERT_EQ(bytes->size(), 768U);
  EXPECT_EQ((*bytes)[208], 5);
  SensorProcess process({"--part", "231", "--image", image.string()});
  EXPECT_THAT(Line(process.Line()).Send({229}, 1), ElementsAre(223));
  SensorProcess other({"--part", "104", "--image", image.string()});
  EXPECT_THAT(other.Line(), HasSubstr("is no image of this sensor"));
  EXPECT_EQ(other.ExitStatus(), 2);
  EXPECT_EQ(process.End(SIGTERM), 0);
  std::filesystem::remove(image);
}

// A unit that has no command to save has nothing but its end to write the image at.
TEST(Pty, ImageOfACentralUnitIsWrittenOnEachSignal) {
  for (const int signal : {SIGINT, SIGTERM}) {
    const auto image = Fresh("brelant-central");
    SensorProcess process({"--part", "154", "--image", image.string()});
    const Line line(process.Line());
    line.Send({254}, 1);
    EXPECT_THAT(line.Send({9, 16, 144, 77, 246}, 1), ElementsAre(6));
    EXPECT_EQ(process.End(signal), 0);
    const auto bytes = ReadWhole(image);
    ASSERT_TRUE(bytes);
    ASSERT_EQ(bytes->size(), 7168U + 8192);
    EXPECT_EQ((*bytes)[7168 + 4240], 77);
    std::filesystem::remove(image);
  }
}

// RAM 336 counts the samples; the period is 2 s.
TEST(Pty, LoggersKeepRealTime) {
  SensorProcess process({"--part", "154"});
  const Line line(process.Line());
  line.Send({254}, 1);
  const auto start = std::chrono::steady_clock::now();
  ASSERT_THAT(line.Send({9, 17, 92, 128, 246}, 1), ElementsAre(6));
  ByteList reply;
  do {
    line.Send({254}, 1);
    reply = line.Send({178, 1, 80, 3}, 4);
  } while (reply == ByteList{6, 0, 0, 6} &&
           std::chrono::steady_clock::now() - start < std::chrono::milliseconds(kPatience));
  EXPECT_THAT(reply, ElementsAre(6, 0, 1, 7));
  EXPECT_GE(std::chrono::steady_clock::now() - start, std::chrono::seconds(2));
}

TEST(Pty, ServesAUnitOfPlatform8) {
  SensorProcess process({"--part", "40", "--variant", "1"});
  const Line line(process.Line());
  line.Send({254}, 1);
  EXPECT_THAT(line.Send({137, 16, 29, 182}, 3), ElementsAre(6, 1, 7));
}

TEST(Pty, BadCellsAreToldByAddress) {
  SensorProcess process({"--part", "154", "--fault", "stuck=4240,refused=4244", "--fault", "stuck=4242"});
  const Line line(process.Line());
  const auto write_and_read = [&](std::uint8_t low) {
    line.Send({254}, 1);
    EXPECT_THAT(line.Send({9, 16, low, 1, static_cast<std::uint8_t>(26 + low)}, 1), ElementsAre(6));
    line.Send({254}, 1);
    return line.Send({137, 16, low, static_cast<std::uint8_t>(153 + low)}, 3);
  };
  EXPECT_THAT(write_and_read(144), ElementsAre(6, 8, 14));
  EXPECT_THAT(write_and_read(145), ElementsAre(6, 1, 7));
  EXPECT_THAT(write_and_read(146), ElementsAre(6, 8, 14));
  line.Send({254}, 1);
  // No reply; the next byte that comes is that to the next request.
  EXPECT_THAT(line.Send({9, 16, 148, 1, 174, 254}, 1), ElementsAre(223));
  EXPECT_THAT(line.Send({137, 16, 148, 45}, 3), ElementsAre(6, 0, 6));
}

TEST(Pty, ImageIsWrittenWhenTheHostSaves) {
  const auto image = Fresh("brelant-saved");
  SensorProcess process({"--part", "231", "--image", image.string()});
  const Line line(process.Line());
  line.Send({254}, 1);
  line.Send({65, 80, 5, 150}, 1);
  line.Send({225 + 4}, 1);
  EXPECT_THAT(line.Send({161, 0, 161}, 1), ElementsAre(6));
  // The next answer comes only after the file is there.
  EXPECT_THAT(line.Send({254}, 1), ElementsAre(223));
  const auto bytes = ReadWhole(image);
  ASSERT_TRUE(bytes);
  EXPECT_EQ((*bytes)[256 + 208], 5);
  EXPECT_EQ(process.End(SIGTERM), 0);
  std::filesystem::remove(image);
}

TEST(Pty, HangUpEndsIt) {
  SensorProcess process({"--part", "231", "--fault", "hangup=1"});
  const Line line(process.Line());
  EXPECT_THAT(line.Send({254}, 1), testing::IsEmpty());
  EXPECT_EQ(process.ExitStatus(), 0);
}

TEST(Pty, FaultsAreTakenTogetherOrOneByOne) {
  SensorProcess process({"--part", "231", "--fault", "nak=1,silence=0", "--fault", "hangup=0"});
  const Line line(process.Line());
  line.Send({254}, 1);
  EXPECT_THAT(line.Send({129, 65, 194}, 3), ElementsAre(134, 231, 109));
}

TEST(Options, ThatMakeNoSenseExitWith2) {
  const std::vector<std::vector<std::string>> all{
      {},
      {"--part"},
      {"--part", "many"},
      {"--part", "300"},
      {"--part", "20"},
      {"--part", "231", "--id", "30"},
      {"--part", "231", "--fault", "laziness=1"},
      {"--part", "231", "--fault", "late"},
      {"--part", "231", "--fault", "late=often"},
      {"--part", "231", "--fault", "late=1.5"},
      {"--part", "231", "--fault", "stuck"},
      {"--part", "231", "--fault", "=1"},
      {"--part", "231", "--fault", "stuck=512"},
      {"--part", "231", "--fault", "refused=-1"},
      {"--part", "231", "--fault", "stuck=1.5"},
      {"--part", "231", "--fault", "stuck="},
      {"--part", "40", "--variant", "3"},
      {"--part", "231", "--nonsense"},
      {"--part", "154", "--variant", "2"},
  };
  for (const auto& options : all) {
    SensorProcess process(options);
    EXPECT_EQ(process.ExitStatus(), 2) << testing::PrintToString(options);
  }
}

TEST(Options, WhatItDoesNotSpeakYetItSays) {
  const std::vector<std::vector<std::string>> all{{"--part", "231", "--modbus"},
                                                  {"--part", "217", "--modbus"},
                                                  {"--part", "215", "--modbus"},
                                                  {"--part", "50", "--modbus"},
                                                  {"--part", "40", "--modbus"}};
  for (const auto& options : all) {
    SensorProcess process(options);
    EXPECT_THAT(process.Line(), HasSubstr("does not speak"));
    EXPECT_EQ(process.ExitStatus(), 2);
  }
}

}  // namespace
}  // namespace brelant::bench
