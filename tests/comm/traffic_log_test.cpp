// SPDX-License-Identifier: GPL-3.0-or-later
#include <algorithm>

#include "support/exchange.h"

namespace brelant {
namespace {

using std::chrono::milliseconds;
using test::Bytes;
using test::Dialogue;
using testing::ElementsAre;
using testing::IsEmpty;

constexpr const char* kPath = "C:\\KVX\\ComLogg.txt";

class TrafficLogTest : public test::ExchangeTest {
 protected:
  TrafficLogTest() { session.TrafficLogOn = true; }

  std::string Log() const { return bus.files.Text(kPath); }
  std::vector<std::string> LogActs() const {
    std::vector<std::string> acts;
    for (const auto& act : bus.files.acts) acts.push_back(act.substr(0, act.find(" C:")));
    return acts;
  }
};

TEST_F(TrafficLogTest, ARecordOfAGoodRead) {
  session.SensorId = 3;
  Dialogue line(port);
  line.Exchange({129, 65, 194}, {6, 77, 83}, 227);
  EXPECT_TRUE(bus.com.ReadSensorMemory(0, 65, 1, false, false));
  EXPECT_EQ(Log(), "READ(0 65 1 False)\r\n RTS(227) CTR(223) MR(129 65 194) DC(6 77 83)\n");
}

TEST_F(TrafficLogTest, ARecordOfEachKindOfFailure) {
  Dialogue line(port);
  line.Expect({254});
  line.Expect({254}).Reply({7});
  line.Expect({254}).Reply({223}).Expect({129, 65, 194}).Reply({6, 77});
  line.Exchange({129, 65, 194}, {9, 77, 86});
  line.Exchange({129, 65, 194}, {6, 77, 84});
  line.Exchange({129, 65, 194}, {134, 77, 211});
  EXPECT_TRUE(bus.com.ReadSensorMemory(0, 65, 1, false, false));
  EXPECT_EQ(line.Trouble(), "");
  EXPECT_EQ(Log(),
            "READ(0 65 1 False)"
            "\r\n RTS(254) CTR()"
            "\r\n RTS(254) CTR(7)"
            "\r\n RTS(254) CTR(223) MR(129 65 194) DC()"
            "\r\n RTS(254) CTR(223) MR(129 65 194) DC(9)"
            "\r\n RTS(254) CTR(223) MR(129 65 194) DC(6 77 84) 84"
            "\r\n RTS(254) CTR(223) MR(129 65 194) DC(134 77 211)\n");
}

TEST_F(TrafficLogTest, TheHeadStandsOnceForAllChunks) {
  Dialogue line(port);
  line.Exchange({130, 126, 0}, {6, 1, 2, 9}).Exchange({194, 0, 194}, {6, 3, 4, 13});
  EXPECT_TRUE(bus.com.ReadSensorMemory(0, 126, 4, false, false));
  EXPECT_EQ(Log(),
            "READ(0 126 4 False)"
            "\r\n RTS(254) CTR(223) MR(130 126 0) DC(6 1 2 9)"
            "\r\n RTS(254) CTR(223) MR(194 0 194) DC(6 3 4 13)\n");
}

TEST_F(TrafficLogTest, WordEepromShowsItsWordAddress) {
  bus.KnowPart(88);
  Dialogue line(port);
  line.Exchange({138, 86, 224}, {6, 0, 6, 12});
  EXPECT_TRUE(bus.com.ReadSensorMemory(0, 172, 2, true, false));
  EXPECT_EQ(Log(), "READ(0 172 2 True)\r\n RTS(254) CTR(223) MR(138 86 224) DC(6 0 6 12)\n");
}

TEST_F(TrafficLogTest, LongEepromHasNoMarkForItsRequest) {
  bus.KnowPart(33);
  Dialogue line(port);
  line.Exchange({137, 0, 16, 153}, {6, 5, 11});
  EXPECT_TRUE(bus.com.ReadSensorMemory(0, 16, 1, true, false));
  EXPECT_EQ(Log(), "READ(0 16 1 True)\r\n RTS(254) CTR(223) DC(6 5 11)\n");
}

TEST_F(TrafficLogTest, TheHeadHasTheSelector) {
  Dialogue line(port);
  line.Exchange({129, 63, 192}, {6, 1, 7});
  line.Exchange({194, 2, 196}, {6, 2, 3, 11});
  line.Exchange({194, 81, 19}, {6, 4, 5, 15});
  EXPECT_TRUE(bus.com.ReadSensorMemory(3, 0, 0, false, false));
  EXPECT_TRUE(Log().starts_with("READ(3 0 0 False)\r\n"));
}

TEST_F(TrafficLogTest, ASurplusOfTheReplyIsNotShown) {
  Dialogue line(port);
  line.Exchange({129, 65, 194}, {6, 77, 83, 1, 2});
  EXPECT_TRUE(bus.com.ReadSensorMemory(0, 65, 1, false, false));
  EXPECT_EQ(Log(), "READ(0 65 1 False)\r\n RTS(254) CTR(223) MR(129 65 194) DC(6 77 83)\n");
}

TEST_F(TrafficLogTest, AReadThatFailsHasAHundredLinesBehindItsHead) {
  EXPECT_FALSE(bus.com.ReadSensorMemory(0, 65, 1, false, false));
  std::string expected = "READ(0 65 1 False)";
  for (int i = 0; i < 100; ++i) expected += "\r\n RTS(254) CTR()";
  EXPECT_EQ(Log(), expected + "\n");
}

TEST_F(TrafficLogTest, WithTheLogOffNoFileIsMade) {
  session.TrafficLogOn = false;
  EXPECT_FALSE(bus.com.ReadSensorMemory(0, 65, 1, false, false, 2));
  EXPECT_FALSE(bus.files.Exists(kPath));
  EXPECT_THAT(bus.files.acts, IsEmpty());
}

TEST_F(TrafficLogTest, TwoReadsGiveTwoRecordsInTheirOrder) {
  Dialogue line(port);
  line.Exchange({129, 65, 194}, {6, 77, 83}).Exchange({129, 66, 195}, {6, 1, 7});
  EXPECT_TRUE(bus.com.ReadSensorMemory(0, 65, 1, false, false));
  EXPECT_TRUE(bus.com.ReadSensorMemory(0, 66, 1, false, false));
  EXPECT_EQ(Log(),
            "READ(0 65 1 False)\r\n RTS(254) CTR(223) MR(129 65 194) DC(6 77 83)\n"
            "READ(0 66 1 False)\r\n RTS(254) CTR(223) MR(129 66 195) DC(6 1 7)\n");
}

TEST_F(TrafficLogTest, ARecordIsPrintedInOneGoAtTheEnd) {
  Dialogue line(port);
  line.Exchange({134, 20, 154}, {6, 0, 0, 0, 0, 0, 0, 6}).Exchange({130, 26, 156}, {6, 0, 0, 6});
  EXPECT_TRUE(bus.com.ReadSensorMemory(0, 20, 8, false, false));
  EXPECT_THAT(LogActs(), ElementsAre("open log", "print", "close log"));
}

TEST_F(TrafficLogTest, ANestedReadHasARecordOfItsOwnBeforeTheOther) {
  image.RamValid[65] = false;
  Dialogue line(port);
  line.Exchange({131, 65, 196}, {6, 88, 0, 1, 95}).Exchange({138, 86, 224}, {6, 0, 6, 12});
  EXPECT_TRUE(bus.com.ReadSensorMemory(0, 172, 2, true, false));
  EXPECT_THAT(LogActs(), ElementsAre("open log", "print", "close log", "open log", "print", "close log"));
  EXPECT_TRUE(Log().starts_with("READ(0 65 3 False)"));
  EXPECT_NE(Log().find("\nREAD(0 172 2 True)"), std::string::npos);
}

TEST_F(TrafficLogTest, WritesAndCommandsAreNotLogged) {
  Dialogue line(port);
  line.Exchange({1, 31, 0, 32}, {6}).Exchange({161, 0, 161}, {6});
  EXPECT_TRUE(bus.com.WriteSensorMemory(0, 31, 1, false, true, false, true, true, true));
  EXPECT_THAT(bus.files.acts, IsEmpty());
}

TEST_F(TrafficLogTest, ALogThatCannotBeOpenedEndsTheReadBeforeItSends) {
  bus.files.Break(kPath);
  EXPECT_FALSE(bus.com.ReadSensorMemory(0, 65, 1, false, false));
  EXPECT_EQ(session.LastError, "Can't read from sensor");
  EXPECT_THAT(port.Sent(), IsEmpty());
  EXPECT_FALSE(port.PortOpen());
}

TEST_F(TrafficLogTest, ALogThatCannotBeWrittenEndsTheReadToo) {
  bus.files.failPrint = true;
  Dialogue line(port);
  line.Exchange({129, 65, 194}, {6, 77, 83});
  EXPECT_FALSE(bus.com.ReadSensorMemory(0, 65, 1, false, true));
  EXPECT_EQ(session.LastError, "Can't read from sensor");
  EXPECT_FALSE(port.PortOpen());
  EXPECT_EQ(bus.files.openLogs, 0);
}

TEST_F(TrafficLogTest, AReadWhosePortFailsLeavesItsRecord) {
  port.onOutput = [&](const Bytes&) {
    port.failAt = port.Operations() + 1;
    port.staysBroken = true;
  };
  EXPECT_FALSE(bus.com.ReadSensorMemory(0, 65, 1, false, false));
  EXPECT_EQ(Log(), "READ(0 65 1 False)\r\n RTS(254)\n");
  EXPECT_EQ(bus.files.openLogs, 0);
}

}  // namespace
}  // namespace brelant
