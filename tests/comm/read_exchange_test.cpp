// SPDX-License-Identifier: GPL-3.0-or-later
#include "support/exchange.h"

namespace brelant {
namespace {

using std::chrono::milliseconds;
using test::Bytes;
using test::Dialogue;
using test::Lasts;
using testing::ElementsAre;
using testing::IsEmpty;

constexpr const char* kFailed = "Can't read from sensor";

class ReadExchangeTest : public test::ExchangeTest {
 protected:
  /// One byte of RAM at 80: request 129 80 209.
  bool ReadByte(std::uint8_t retries = 100) {
    return bus.com.ReadSensorMemory(0, 80, 1, false, false, retries);
  }
  static Bytes Request() { return {129, 80, 209}; }
};

TEST_F(ReadExchangeTest, AtItsBestIsFourSteps) {
  Dialogue line(port);
  line.Expect({254}).Reply({223}, milliseconds(2));
  line.Expect(Request()).Reply({6, 44, 50}, milliseconds(7));
  EXPECT_TRUE(ReadByte());
  EXPECT_EQ(line.Trouble(), "");
  EXPECT_THAT(port.Story(), ElementsAre("open", "254", "129", "80", "209", "close"));
  EXPECT_EQ(image.RamImage[80], 44);
  EXPECT_EQ(image.RamRead[80], 44);
  EXPECT_TRUE(image.RamValid[80]);
  EXPECT_FALSE(session.NakSeen);
  EXPECT_EQ(session.LastError, "");
}

TEST_F(ReadExchangeTest, KeepsItsPauses) {
  Dialogue line(port);
  line.Expect({254}).Reply({223}, milliseconds(2));
  line.Expect(Request()).Reply({6, 44, 50}, milliseconds(7));
  EXPECT_TRUE(ReadByte());
  const auto sent = Outputs();
  ASSERT_EQ(sent.size(), 4U);
  EXPECT_THAT(sent.at(0).at - start, Lasts(milliseconds(5)));
  EXPECT_THAT(sent.at(1).at - sent.at(0).at, Lasts(milliseconds(2 + 8)));
  EXPECT_EQ(sent.at(2).at, sent.at(1).at);
  EXPECT_EQ(sent.at(3).at, sent.at(1).at);
  EXPECT_THAT(Elapsed(), Lasts(milliseconds(5 + 2 + 8 + 7)));
}

TEST_F(ReadExchangeTest, PausesBeforeEachChunk) {
  Dialogue line(port);
  line.Exchange({134, 80, 214}, {6, 1, 2, 3, 4, 5, 6, 27}).Exchange({129, 86, 215}, {6, 7, 13});
  EXPECT_TRUE(bus.com.ReadSensorMemory(0, 80, 7, false, false));
  EXPECT_EQ(line.Trouble(), "");
  const auto requests = RequestsToSend();
  ASSERT_EQ(requests.size(), 2U);
  // Request to send, 2 ms to the clear, 8 ms, 2 ms to the reply, 5 ms.
  EXPECT_THAT(requests.at(1) - requests.at(0), Lasts(milliseconds(2 + 8 + 2 + 5)));
}

TEST_F(ReadExchangeTest, WaitsAHundredMillisecondsForTheClear) {
  EXPECT_FALSE(ReadByte(3));
  const auto requests = RequestsToSend();
  ASSERT_EQ(requests.size(), 3U);
  EXPECT_THAT(requests.at(1) - requests.at(0), Lasts(milliseconds(100 + 5)));
  EXPECT_THAT(requests.at(2) - requests.at(1), Lasts(milliseconds(100 + 5)));
}

TEST_F(ReadExchangeTest, TakesAClearThatComesInTime) {
  Dialogue line(port);
  line.Expect({254}).Reply({223}, milliseconds(99)).Expect(Request()).Reply({6, 44, 50});
  EXPECT_TRUE(ReadByte(1));
  EXPECT_EQ(line.Trouble(), "");
}

TEST_F(ReadExchangeTest, AClearThatComesTooLateIsThrownAway) {
  Dialogue line(port);
  line.Expect({254}).Reply({223}, milliseconds(102));
  line.Expect({254}).Reply({223}, milliseconds(2)).Expect(Request()).Reply({6, 44, 50});
  EXPECT_TRUE(ReadByte(2));
  EXPECT_EQ(line.Trouble(), "");
  EXPECT_THAT(RequestsToSend().at(1) - RequestsToSend().at(0), Lasts(milliseconds(105)));
  EXPECT_THAT(Outputs().at(2).at - Outputs().at(1).at, Lasts(milliseconds(2 + 8)));
}

TEST_F(ReadExchangeTest, TriesAgainAtOnceWhenTheFirstByteIsNoClear) {
  Dialogue line(port);
  line.Expect({254}).Reply({222}, milliseconds(2));
  line.Expect({254}).Reply({0, 223}, milliseconds(2));
  line.Exchange(Request(), {6, 44, 50});
  EXPECT_TRUE(ReadByte());
  EXPECT_EQ(line.Trouble(), "");
  const auto requests = RequestsToSend();
  EXPECT_THAT(requests.at(1) - requests.at(0), Lasts(milliseconds(2 + 5)));
  EXPECT_THAT(requests.at(2) - requests.at(1), Lasts(milliseconds(2 + 5)));
}

TEST_F(ReadExchangeTest, LooksAtTheFirstByteOfTheClearOnly) {
  Dialogue line(port);
  line.Expect({254}).Reply({223, 9, 9}).Expect(Request()).Reply({6, 44, 50});
  EXPECT_TRUE(ReadByte(1));
  EXPECT_EQ(line.Trouble(), "");
}

TEST_F(ReadExchangeTest, ThrowsAwayWhatComesInThePauseAfterTheClear) {
  Dialogue line(port);
  line.Expect({254}).Reply({223}, milliseconds(2)).Reply({6, 99, 105}, milliseconds(6));
  line.Expect(Request()).Reply({6, 44, 50});
  EXPECT_TRUE(ReadByte(1));
  EXPECT_EQ(image.RamImage[80], 44);
}

TEST_F(ReadExchangeTest, ThrowsAwayWhatIsThereBeforeTheRequestToSend) {
  Dialogue line(port);
  line.Exchange(Request(), {6, 44, 50});
  port.Arrive({1, 2, 3}, milliseconds(3));
  EXPECT_TRUE(ReadByte(1));
}

TEST_F(ReadExchangeTest, WaitsTwoHundredMillisecondsForTheReply) {
  ClearAndNoMore();
  EXPECT_FALSE(ReadByte(2));
  const auto requests = RequestsToSend();
  ASSERT_EQ(requests.size(), 2U);
  EXPECT_THAT(requests.at(1) - requests.at(0), Lasts(milliseconds(1 + 8 + 200 + 5)));
}

TEST_F(ReadExchangeTest, TakesAReplyWhoseLastByteComesInTime) {
  Dialogue line(port);
  line.Expect({254}).Reply({223});
  line.Expect(Request()).Reply({6, 44}, milliseconds(3)).Reply({50}, milliseconds(199));
  EXPECT_TRUE(ReadByte(1));
}

TEST_F(ReadExchangeTest, AShortReplyIsThrownAway) {
  Dialogue line(port);
  line.Expect({254}).Reply({223}).Expect(Request()).Reply({6, 44}, milliseconds(3));
  line.Exchange(Request(), {6, 45, 51});
  EXPECT_TRUE(ReadByte());
  EXPECT_EQ(line.Trouble(), "");
  EXPECT_EQ(image.RamImage[80], 45);
  EXPECT_THAT(RequestsToSend().at(1) - RequestsToSend().at(0), Lasts(milliseconds(2 + 8 + 200 + 5)));
}

TEST_F(ReadExchangeTest, AShortReplyLeavesNothingInTheImage) {
  Dialogue line(port);
  line.Expect({254}).Reply({223}).Expect(Request()).Reply({6, 44}, milliseconds(3));
  EXPECT_FALSE(ReadByte(1));
  EXPECT_EQ(image.RamImage[80], 0);
  EXPECT_FALSE(image.RamValid[80]);
}

TEST_F(ReadExchangeTest, ALongReplyIsTakenAndItsSurplusIgnored) {
  Dialogue line(port);
  line.Exchange(Request(), {6, 44, 50, 77, 88});
  EXPECT_TRUE(ReadByte(1));
  EXPECT_EQ(image.RamImage[80], 44);
  EXPECT_EQ(image.RamImage[81], 0);
  EXPECT_FALSE(image.RamValid[81]);
}

TEST_F(ReadExchangeTest, AnAckWithItsFlagIsSuccessAndIsRemembered) {
  Dialogue line(port);
  line.Exchange(Request(), {134, 44, 178});
  EXPECT_TRUE(ReadByte(1));
  EXPECT_EQ(image.RamImage[80], 44);
  EXPECT_TRUE(session.NakSeen);
}

TEST_F(ReadExchangeTest, AnyOtherStatusIsAFailedAttempt) {
  Dialogue line(port);
  line.Exchange(Request(), {7, 44, 51}).Exchange(Request(), {6, 45, 51});
  EXPECT_TRUE(ReadByte());
  EXPECT_EQ(line.Trouble(), "");
  EXPECT_EQ(image.RamImage[80], 45);
  EXPECT_FALSE(session.NakSeen);
  EXPECT_THAT(RequestsToSend().at(1) - RequestsToSend().at(0), Lasts(milliseconds(2 + 8 + 2 + 5)));
}

TEST_F(ReadExchangeTest, AWrongStatusLeavesTheImageAlone) {
  Dialogue line(port);
  line.Exchange(Request(), {7, 44, 51});
  EXPECT_FALSE(ReadByte(1));
  EXPECT_FALSE(image.RamValid[80]);
}

TEST_F(ReadExchangeTest, AWrongChecksumIsAFailedAttempt) {
  Dialogue line(port);
  line.Exchange(Request(), {134, 44, 0}).Exchange(Request(), {6, 45, 51});
  EXPECT_TRUE(ReadByte());
  EXPECT_EQ(line.Trouble(), "");
  EXPECT_EQ(image.RamImage[80], 45);
  EXPECT_TRUE(session.NakSeen);
  EXPECT_THAT(RequestsToSend().at(1) - RequestsToSend().at(0), Lasts(milliseconds(2 + 8 + 2 + 5)));
}

TEST_F(ReadExchangeTest, AHundredWrongChecksumsLeaveTheBadBytesFlaggedValid) {
  Dialogue line(port);
  for (std::uint8_t i = 1; i <= 9; ++i) line.Exchange(Request(), {6, i, 0});
  line.Exchange(Request(), {6, 10, 0}).Expect({65, 84, 79});
  for (std::uint8_t i = 11; i <= 100; ++i) line.Exchange(Request(), {6, i, 0});
  EXPECT_FALSE(ReadByte());
  EXPECT_EQ(line.Trouble(), "");
  EXPECT_EQ(image.RamImage[80], 100);
  EXPECT_EQ(image.RamRead[80], 100);
  EXPECT_TRUE(image.RamValid[80]);
  EXPECT_EQ(session.LastError, kFailed);
}

TEST_F(ReadExchangeTest, GivesUpASilentLineAfterAHundredAttempts) {
  EXPECT_FALSE(ReadByte());
  EXPECT_EQ(RequestsToSend().size(), 100U);
  EXPECT_EQ(session.LastError, kFailed);
  EXPECT_FALSE(port.PortOpen());
  EXPECT_THAT(Elapsed(), Lasts(milliseconds(100 * 105 + 5)));
}

TEST_F(ReadExchangeTest, TheAttemptsAreTheCallers) {
  EXPECT_FALSE(ReadByte(7));
  EXPECT_EQ(RequestsToSend().size(), 7U);
  test::ScriptedBus none;
  EXPECT_FALSE(none.com.ReadSensorMemory(0, 80, 1, false, false, 0));
  EXPECT_THAT(none.port.Sent(), IsEmpty());
}

TEST_F(ReadExchangeTest, WakesTheModemOnceBeforeTheEleventhAttempt) {
  EXPECT_FALSE(ReadByte());
  EXPECT_THAT(StoryBeforeRequest(10), IsEmpty());
  EXPECT_THAT(StoryBeforeRequest(11), ElementsAre("dtr on", "dtr off", "65", "84", "79"));
  EXPECT_THAT(StoryBeforeRequest(12), IsEmpty());
  EXPECT_EQ(port.Of(test::ScriptedPort::Act::dtrOn).size(), 1U);
}

TEST_F(ReadExchangeTest, WakesTheModemBehindThePauseAndWithoutOneOfItsOwn) {
  EXPECT_FALSE(ReadByte());
  const auto requests = RequestsToSend();
  const auto pulse = port.Of(test::ScriptedPort::Act::dtrOn).at(0).at;
  EXPECT_EQ(port.Of(test::ScriptedPort::Act::dtrOff).at(0).at, pulse);
  EXPECT_THAT(pulse - requests.at(9), Lasts(milliseconds(100 + 5)));
  EXPECT_EQ(requests.at(10), pulse);
  for (const auto& output : Outputs()) {
    if (output.bytes != Bytes{254}) {
      EXPECT_EQ(output.at, pulse);
    }
  }
}

TEST_F(ReadExchangeTest, WakesTheModemBeforeItLooksWhetherToGiveUp) {
  EXPECT_FALSE(ReadByte(10));
  EXPECT_EQ(RequestsToSend().size(), 10U);
  EXPECT_EQ(port.Of(test::ScriptedPort::Act::dtrOn).size(), 1U);
}

TEST_F(ReadExchangeTest, ThrowsTheModemsAnswerAwayAndGoesOn) {
  int requests = 0;
  port.onOutput = [&](const Bytes& bytes) {
    if (bytes == Bytes{79}) port.Receive({'O', 'K'});
    if (bytes == Bytes{254} && ++requests == 11) port.Arrive({223}, milliseconds(1));
    if (bytes == Bytes{209}) port.Arrive({6, 44, 50}, milliseconds(1));
  };
  EXPECT_TRUE(ReadByte());
  EXPECT_EQ(requests, 11);
  EXPECT_EQ(image.RamImage[80], 44);
}

TEST_F(ReadExchangeTest, ClosesAndReopensBeforeTheSixteenthAttempt) {
  EXPECT_FALSE(ReadByte());
  EXPECT_THAT(StoryBeforeRequest(15), IsEmpty());
  EXPECT_THAT(StoryBeforeRequest(16), ElementsAre("close", "open"));
  EXPECT_THAT(StoryBeforeRequest(17), IsEmpty());
  EXPECT_EQ(port.Of(test::ScriptedPort::Act::open).size(), 2U);
}

TEST_F(ReadExchangeTest, CountsTheAttemptsOfEachChunkAnew) {
  int requests = 0;
  port.onOutput = [&](const Bytes& bytes) {
    if (bytes == Bytes{254} && ++requests % 10 == 0) port.Arrive({223}, milliseconds(1));
    if (bytes == Bytes{214}) port.Arrive({6, 1, 2, 3, 4, 5, 6, 27}, milliseconds(1));
    if (bytes == Bytes{215}) port.Arrive({6, 7, 13}, milliseconds(1));
  };
  EXPECT_TRUE(bus.com.ReadSensorMemory(0, 80, 7, false, false));
  EXPECT_EQ(requests, 20);
  EXPECT_THAT(port.Of(test::ScriptedPort::Act::dtrOn), IsEmpty());
}

TEST_F(ReadExchangeTest, AddressesTheSensorThatIsChosen) {
  session.SensorId = 3;
  Dialogue line(port);
  line.Exchange(Request(), {6, 44, 50}, 227);
  EXPECT_TRUE(ReadByte(1));
  EXPECT_EQ(line.Trouble(), "");
}

TEST_F(ReadExchangeTest, KeepsTheLowByteOfAnIdThatDoesNotFit) {
  session.SensorId = 300;
  Dialogue line(port);
  line.Exchange(Request(), {6, 44, 50}, 12);
  EXPECT_TRUE(ReadByte(1));
  EXPECT_EQ(line.Trouble(), "");
}

TEST_F(ReadExchangeTest, SendsNothingWhileAnErrorStands) {
  session.LastError = "Ej klart";
  EXPECT_FALSE(ReadByte());
  EXPECT_THAT(port.Sent(), IsEmpty());
  EXPECT_EQ(session.LastError, "Ej klart");
  EXPECT_FALSE(port.PortOpen());
}

TEST_F(ReadExchangeTest, ThePausesHoldWhenThePassesTakeTime) {
  bus.pump.passCost = std::chrono::microseconds(300);
  Dialogue line(port);
  line.Expect({254}).Reply({223}, milliseconds(2)).Expect(Request()).Reply({6, 44, 50}, milliseconds(7));
  EXPECT_TRUE(ReadByte());
  EXPECT_GE(Outputs().at(0).at - start, milliseconds(5));
  EXPECT_GE(Outputs().at(1).at - Outputs().at(0).at, milliseconds(10));
}

}  // namespace
}  // namespace brelant
