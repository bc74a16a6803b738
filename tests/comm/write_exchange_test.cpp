// SPDX-License-Identifier: GPL-3.0-or-later
#include <limits>

#include "support/exchange.h"

namespace brelant {
namespace {

using std::chrono::milliseconds;
using test::Bytes;
using test::Dialogue;
using test::Lasts;
using testing::ElementsAre;
using testing::IsEmpty;

constexpr const char* kFailed = "Can't save to sensor";

class WriteExchangeTest : public test::ExchangeTest {
 protected:
  WriteExchangeTest() {
    image.RamImage[31] = 2;
    image.RamImage[32] = 15;
  }
  /// Two bytes of RAM at 31, with no command behind: frame 2 31 2 15 50.
  bool WriteWord() { return bus.com.WriteSensorMemory(0, 31, 2, false, false, false, true, true, true); }
  static Bytes Frame() { return {2, 31, 2, 15, 50}; }
};

TEST_F(WriteExchangeTest, AtItsBestIsFourStepsWithTheFrameInOneOutput) {
  Dialogue line(port);
  line.Exchange(Frame(), {6});
  EXPECT_TRUE(WriteWord());
  EXPECT_EQ(line.Trouble(), "");
  EXPECT_THAT(port.Story(), ElementsAre("open", "254", "2 31 2 15 50", "close"));
  EXPECT_EQ(session.LastError, "");
}

TEST_F(WriteExchangeTest, KeepsItsPauses) {
  Dialogue line(port);
  line.Expect({254}).Reply({223}, milliseconds(2)).Expect(Frame()).Reply({6}, milliseconds(30));
  EXPECT_TRUE(WriteWord());
  const auto sent = Outputs();
  EXPECT_THAT(sent.at(0).at - start, Lasts(milliseconds(5)));
  EXPECT_THAT(sent.at(1).at - sent.at(0).at, Lasts(milliseconds(2 + 8)));
  EXPECT_THAT(Elapsed(), Lasts(milliseconds(5 + 2 + 8 + 30)));
}

TEST_F(WriteExchangeTest, WaitsAHundredMillisecondsForTheClear) {
  EXPECT_FALSE(WriteWord());
  const auto requests = RequestsToSend();
  EXPECT_THAT(requests.at(1) - requests.at(0), Lasts(milliseconds(100 + 5)));
}

TEST_F(WriteExchangeTest, WaitsASecondForTheStatus) {
  ClearAndNoMore();
  EXPECT_FALSE(WriteWord());
  const auto requests = RequestsToSend();
  ASSERT_EQ(requests.size(), 10U);
  EXPECT_THAT(requests.at(1) - requests.at(0), Lasts(milliseconds(1 + 8 + 1000 + 5)));
}

TEST_F(WriteExchangeTest, TakesAStatusThatComesInTime) {
  Dialogue line(port);
  line.Expect({254}).Reply({223}, milliseconds(99)).Expect(Frame()).Reply({6}, milliseconds(999));
  EXPECT_TRUE(WriteWord());
  EXPECT_EQ(line.Trouble(), "");
}

TEST_F(WriteExchangeTest, TriesAgainAtOnceWhenTheFirstByteIsNoClear) {
  Dialogue line(port);
  line.Expect({254}).Reply({6}, milliseconds(2)).Exchange(Frame(), {6});
  EXPECT_TRUE(WriteWord());
  EXPECT_EQ(line.Trouble(), "");
  EXPECT_THAT(RequestsToSend().at(1) - RequestsToSend().at(0), Lasts(milliseconds(2 + 5)));
}

TEST_F(WriteExchangeTest, TriesAgainAfterAWrongStatus) {
  Dialogue line(port);
  line.Exchange(Frame(), {7}).Exchange(Frame(), {0, 6}).Exchange(Frame(), {6});
  EXPECT_TRUE(WriteWord());
  EXPECT_EQ(line.Trouble(), "");
  EXPECT_THAT(RequestsToSend().at(1) - RequestsToSend().at(0), Lasts(milliseconds(2 + 8 + 2 + 5)));
  EXPECT_FALSE(session.NakSeen);
}

TEST_F(WriteExchangeTest, AnAckWithItsFlagIsSuccessAndIsRemembered) {
  Dialogue line(port);
  line.Exchange(Frame(), {134});
  EXPECT_TRUE(WriteWord());
  EXPECT_TRUE(session.NakSeen);
}

TEST_F(WriteExchangeTest, ThrowsAwayWhatIsThereBeforeTheRequestToSend) {
  Dialogue line(port);
  line.Exchange(Frame(), {6});
  port.Arrive({1, 2}, milliseconds(3));
  EXPECT_TRUE(WriteWord());
  EXPECT_EQ(line.Trouble(), "");
}

TEST_F(WriteExchangeTest, ThrowsTheInputAwayAtTheStartOfThePauseAfterTheClear) {
  // What comes in the pause itself is not thrown away, so it stands for the status.
  Dialogue line(port);
  line.Expect({254}).Reply({223}, milliseconds(2)).Reply({0}, milliseconds(6)).Expect(Frame());
  line.Exchange(Frame(), {6});
  EXPECT_TRUE(WriteWord());
  EXPECT_EQ(line.Trouble(), "");
  EXPECT_THAT(RequestsToSend().at(1) - RequestsToSend().at(0), Lasts(milliseconds(2 + 8 + 5)));
}

TEST_F(WriteExchangeTest, GivesUpASilentLineAfterTenAttempts) {
  EXPECT_FALSE(WriteWord());
  EXPECT_EQ(RequestsToSend().size(), 10U);
  EXPECT_EQ(session.LastError, kFailed);
  EXPECT_FALSE(port.PortOpen());
  EXPECT_THAT(Elapsed(), Lasts(milliseconds(10 * 105 + 5)));
}

TEST_F(WriteExchangeTest, ClosesAndReopensBeforeTheSixthAttemptAndWakesNoModem) {
  EXPECT_FALSE(WriteWord());
  EXPECT_THAT(StoryBeforeRequest(5), IsEmpty());
  EXPECT_THAT(StoryBeforeRequest(6), ElementsAre("close", "open"));
  EXPECT_THAT(StoryBeforeRequest(7), IsEmpty());
  EXPECT_THAT(port.Of(test::ScriptedPort::Act::dtrOn), IsEmpty());
}

TEST_F(WriteExchangeTest, CountsTheAttemptsOfEachChunkAnew) {
  int requests = 0;
  port.onOutput = [&](const Bytes& bytes) {
    if (bytes == Bytes{254}) {
      if (++requests % 10 == 0) port.Arrive({223}, milliseconds(1));
    } else {
      port.Arrive({6}, milliseconds(1));
    }
  };
  EXPECT_TRUE(bus.com.WriteSensorMemory(0, 20, 8, false, false, false, true, true, true));
  EXPECT_EQ(requests, 20);
}

TEST_F(WriteExchangeTest, GoesOnWithItsAttemptsWhileAnErrorStands) {
  bus.pump.After(milliseconds(50), [&] { session.LastError = "Avbryt"; });
  EXPECT_FALSE(WriteWord());
  EXPECT_EQ(RequestsToSend().size(), 10U);
  EXPECT_EQ(session.LastError, "Avbryt");
}

TEST_F(WriteExchangeTest, SendsNothingWhileAnErrorStandsBeforeTheChunk) {
  session.LastError = "Ej klart";
  EXPECT_FALSE(WriteWord());
  EXPECT_THAT(port.Sent(), IsEmpty());
  EXPECT_EQ(session.LastError, "Ej klart");
}

TEST_F(WriteExchangeTest, AValueThatIsNoByteEndsTheWriteAtOnce) {
  for (const float value : {12.5F, 256.0F, -1.0F, 65535.0F, -0.5F, std::numeric_limits<float>::quiet_NaN(),
                            std::numeric_limits<float>::infinity()}) {
    test::ScriptedBus fresh;
    fresh.KnowPart(kPart);
    fresh.image.RamImage[32] = value;
    Dialogue line(fresh.port);
    line.Expect({254}).Reply({223});
    EXPECT_FALSE(fresh.com.WriteSensorMemory(0, 31, 2, false, true, false, true, true, true)) << value;
    EXPECT_EQ(line.Trouble(), "") << value;
    EXPECT_EQ(fresh.session.LastError, kFailed) << value;
    EXPECT_FALSE(fresh.port.PortOpen()) << value;
  }
}

TEST_F(WriteExchangeTest, TheLimitsOfAByteAreSent) {
  image.RamImage[31] = 0;
  image.RamImage[32] = 255;
  Dialogue line(port);
  line.Exchange({2, 31, 0, 255, 32}, {6});
  EXPECT_TRUE(WriteWord());
  EXPECT_EQ(line.Trouble(), "");
}

TEST_F(WriteExchangeTest, WhatWasSentBeforeABadValueStaysSent) {
  image.RamImage[24] = 12.5F;
  Dialogue line(port);
  line.Exchange({4, 20, 0, 0, 0, 0, 24}, {6}).Expect({254}).Reply({223});
  EXPECT_FALSE(bus.com.WriteSensorMemory(0, 20, 8, false, true, false, true, true, true));
  EXPECT_EQ(line.Trouble(), "");
}

TEST_F(WriteExchangeTest, AddressesTheSensorThatIsChosen) {
  session.SensorId = 29;
  Dialogue line(port);
  line.Exchange(Frame(), {6}, 253);
  EXPECT_TRUE(WriteWord());
  EXPECT_EQ(line.Trouble(), "");
}

}  // namespace
}  // namespace brelant
