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

// A platform 5 part number of generation 2; ExchangeTest::kPart is one of generation 1.
constexpr std::uint8_t kSecondGeneration = 96;

struct Operation {
  int number;
  const char* busy;
  const char* failure;
};

constexpr Operation kOperations[] = {
    {0, "Saving to RAM", "Can't save to RAM"},
    {1, "Saving to EEPROM", "Can't save to EEPROM"},
    {2, "Locking EEPROM", "Can't lock EEPROM"},
    {3, "Unlocking EEPROM", "Can't unlock EEPROM"},
    {4, "Saving ID to EEPROM", "Can't save ID to sensor"},
    {5, "TWA reset", "Can't reset TWA"},
};

class CommandExchangeTest : public test::ExchangeTest {};

TEST_F(CommandExchangeTest, AtItsBestIsFourStepsWithSingleBytes) {
  Dialogue line(port);
  line.Exchange({161, 0, 161}, {6});
  EXPECT_TRUE(bus.com.SensorCommand(1, false));
  EXPECT_EQ(line.Trouble(), "");
  EXPECT_THAT(port.Story(), ElementsAre("open", "254", "161", "0", "161", "close"));
  EXPECT_EQ(session.LastError, "");
}

TEST_F(CommandExchangeTest, HasNoPauseBeforeTheAttemptAndEightMillisecondsAfterTheClear) {
  Dialogue line(port);
  line.Expect({254}).Reply({223}, milliseconds(2)).Expect({161, 0, 161}).Reply({6}, milliseconds(900));
  EXPECT_TRUE(bus.com.SensorCommand(1, false));
  const auto sent = Outputs();
  EXPECT_EQ(sent.at(0).at, start);
  EXPECT_THAT(sent.at(1).at - sent.at(0).at, Lasts(milliseconds(2 + 8)));
  EXPECT_EQ(sent.at(3).at, sent.at(1).at);
  EXPECT_THAT(Elapsed(), Lasts(milliseconds(2 + 8 + 900)));
}

TEST_F(CommandExchangeTest, WaitsTwentyMillisecondsForTheClear) {
  EXPECT_FALSE(bus.com.SensorCommand(1, false));
  const auto requests = RequestsToSend();
  EXPECT_THAT(requests.at(1) - requests.at(0), Lasts(milliseconds(20)));
}

TEST_F(CommandExchangeTest, TakesAClearAndAStatusThatComeInTime) {
  Dialogue line(port);
  line.Expect({254}).Reply({223}, milliseconds(19)).Expect({161, 0, 161}).Reply({6}, milliseconds(2999));
  EXPECT_TRUE(bus.com.SensorCommand(1, false));
  EXPECT_EQ(line.Trouble(), "");
}

TEST_F(CommandExchangeTest, WaitsThreeSecondsForTheStatus) {
  ClearAndNoMore();
  EXPECT_FALSE(bus.com.SensorCommand(1, false));
  const auto requests = RequestsToSend();
  ASSERT_EQ(requests.size(), 100U);
  EXPECT_THAT(requests.at(1) - requests.at(0), Lasts(milliseconds(1 + 8 + 3000)));
}

TEST_F(CommandExchangeTest, TriesAgainWithoutAPause) {
  Dialogue line(port);
  line.Expect({254}).Reply({222}, milliseconds(2));
  line.Exchange({161, 0, 161}, {0}).Exchange({161, 0, 161}, {6});
  EXPECT_TRUE(bus.com.SensorCommand(1, false));
  EXPECT_EQ(line.Trouble(), "");
  const auto requests = RequestsToSend();
  EXPECT_THAT(requests.at(1) - requests.at(0), Lasts(milliseconds(2)));
  EXPECT_THAT(requests.at(2) - requests.at(1), Lasts(milliseconds(2 + 8 + 2)));
}

TEST_F(CommandExchangeTest, ThrowsAwayWhatComesInThePauseAfterTheClear) {
  Dialogue line(port);
  line.Expect({254}).Reply({223}, milliseconds(2)).Reply({0}, milliseconds(6));
  line.Expect({161, 0, 161}).Reply({6});
  EXPECT_TRUE(bus.com.SensorCommand(1, false));
  EXPECT_EQ(line.Trouble(), "");
}

TEST_F(CommandExchangeTest, AnAckWithItsFlagIsSuccessAndIsRemembered) {
  Dialogue line(port);
  line.Exchange({161, 0, 161}, {134});
  EXPECT_TRUE(bus.com.SensorCommand(1, false));
  EXPECT_TRUE(session.NakSeen);
}

TEST_F(CommandExchangeTest, GivesUpASilentLineAfterAHundredAttempts) {
  EXPECT_FALSE(bus.com.SensorCommand(1, false));
  EXPECT_EQ(RequestsToSend().size(), 100U);
  EXPECT_THAT(Elapsed(), Lasts(milliseconds(100 * 20)));
}

TEST_F(CommandExchangeTest, ClosesAndReopensBeforeTheFiftyFirstAttemptAndWakesNoModem) {
  EXPECT_FALSE(bus.com.SensorCommand(1, false));
  EXPECT_THAT(StoryBeforeRequest(50), IsEmpty());
  EXPECT_THAT(StoryBeforeRequest(51), ElementsAre("close", "open"));
  EXPECT_THAT(StoryBeforeRequest(52), IsEmpty());
  EXPECT_THAT(port.Of(test::ScriptedPort::Act::dtrOn), IsEmpty());
}

TEST_F(CommandExchangeTest, EachOperationHasItsFailureText) {
  for (const auto& operation : kOperations) {
    test::ScriptedBus fresh;
    fresh.KnowPart(kSecondGeneration);
    EXPECT_FALSE(fresh.com.SensorCommand(operation.number, false));
    EXPECT_EQ(fresh.session.LastError, operation.failure);
    EXPECT_FALSE(fresh.port.PortOpen());
  }
}

TEST_F(CommandExchangeTest, EachOperationHasItsBusyText) {
  for (const auto& operation : kOperations) {
    test::ScriptedBus fresh;
    fresh.KnowPart(kSecondGeneration);
    std::string busy;
    fresh.port.onOutput = [&](const Bytes& bytes) {
      if (bytes == Bytes{254}) {
        fresh.port.Arrive({223}, milliseconds(1));
        fresh.pump.After(milliseconds(100), [&] { busy = fresh.session.BusBusyText; });
        fresh.port.Arrive({6}, milliseconds(200));
      }
    };
    EXPECT_TRUE(fresh.com.SensorCommand(operation.number, false));
    EXPECT_EQ(busy, operation.busy);
    EXPECT_EQ(fresh.session.BusBusyText, "");
  }
}

TEST_F(CommandExchangeTest, TheFramesAreThoseOfTheGeneration) {
  const std::vector<Bytes> first{{32, 0, 32}, {161, 0, 161}, {16, 0, 16}, {147, 0, 147}};
  const std::vector<Bytes> second{{145, 0, 145},  {153, 173, 70}, {169, 171, 84},
                                  {197, 55, 252}, {161, 0, 161},  {185, 1, 186}};
  const auto expect = [](std::uint8_t part, const std::vector<Bytes>& frames) {
    for (std::size_t operation = 0; operation < frames.size(); ++operation) {
      test::ScriptedBus fresh;
      fresh.KnowPart(part);
      Dialogue line(fresh.port);
      line.Exchange(frames[operation], {6});
      EXPECT_TRUE(fresh.com.SensorCommand(static_cast<int>(operation), false));
      EXPECT_EQ(line.Trouble(), "") << +part << ", operation " << operation;
    }
  };
  expect(kPart, first);
  expect(kSecondGeneration, second);
  expect(85, second);  // platform 61
  expect(33, second);  // platform 7
}

TEST_F(CommandExchangeTest, TheFirstGenerationWaitsOutWhatItCannotSend) {
  for (const int operation : {4, 5}) {
    test::ScriptedBus fresh;
    fresh.KnowPart(kPart);
    fresh.port.onOutput = [&](const Bytes&) { fresh.port.Arrive({223}, milliseconds(1)); };
    const auto begin = fresh.clock.Now();
    EXPECT_FALSE(fresh.com.SensorCommand(operation, false));
    EXPECT_EQ(fresh.port.Sent(), Bytes(100, 254)) << operation;
    EXPECT_THAT(fresh.clock.Now() - begin, Lasts(milliseconds(100 * (1 + 8 + 3000))));
    EXPECT_EQ(fresh.session.LastError, operation == 4 ? "Can't save ID to sensor" : "Can't reset TWA");
  }
}

TEST_F(CommandExchangeTest, AnUnknownGenerationEndsAtOnceBehindTheClear) {
  bus.KnowPart(40);
  Dialogue line(port);
  line.Expect({254}).Reply({223});
  EXPECT_FALSE(bus.com.SensorCommand(1, false));
  EXPECT_EQ(line.Trouble(), "");
  EXPECT_EQ(session.LastError, "Unkown protokol");
  EXPECT_FALSE(port.PortOpen());
}

TEST_F(CommandExchangeTest, SuccessClosesThePortWhateverItWasTold) {
  Dialogue line(port);
  line.Exchange({161, 0, 161}, {6});
  EXPECT_TRUE(bus.com.SensorCommand(1, true));
  EXPECT_FALSE(port.PortOpen());
}

TEST_F(CommandExchangeTest, FailureKeepsThePortOpenIfItWasTold) {
  EXPECT_FALSE(bus.com.SensorCommand(1, true));
  EXPECT_TRUE(port.PortOpen());
}

TEST_F(CommandExchangeTest, UsesAPortThatIsOpenAsItIs) {
  bus.link.Open();
  Dialogue line(port);
  line.Exchange({161, 0, 161}, {6});
  EXPECT_TRUE(bus.com.SensorCommand(1, false));
  EXPECT_THAT(port.Story(), ElementsAre("open", "254", "161", "0", "161", "close"));
}

TEST_F(CommandExchangeTest, SendsNothingWhileAnErrorStands) {
  session.LastError = "Ej klart";
  EXPECT_FALSE(bus.com.SensorCommand(1, false));
  EXPECT_THAT(port.Sent(), IsEmpty());
  EXPECT_EQ(session.LastError, "Ej klart");
}

TEST_F(CommandExchangeTest, CancelEndsItAtTheNextAttempt) {
  ClearAndNoMore();
  bus.pump.After(milliseconds(500), [&] { session.LastError = "Avbryt"; });
  EXPECT_FALSE(bus.com.SensorCommand(1, false));
  EXPECT_EQ(RequestsToSend().size(), 1U);
  EXPECT_EQ(session.LastError, "Avbryt");
  EXPECT_FALSE(port.PortOpen());
}

TEST_F(CommandExchangeTest, UnlockingPlatform6WritesItsTmoCounterFirst) {
  bus.KnowPart(88);
  image.RamImage[230] = 7;
  image.EepromImage[102] = 33;
  Dialogue line(port);
  line.Exchange({65, 102, 7, 174}, {6}).Exchange({147, 0, 147}, {6});
  EXPECT_TRUE(bus.com.SensorCommand(3, false));
  EXPECT_EQ(line.Trouble(), "");
  EXPECT_THAT(port.Story(), ElementsAre("open", "254", "65 102 7 174", "254", "147", "0", "147", "close"));
  EXPECT_EQ(image.RamRead[230], 1);
  EXPECT_EQ(image.RamImage[230], 7);
  EXPECT_EQ(image.EepromRead[102], 33);
}

TEST_F(CommandExchangeTest, OnlyUnlockingPlatform6DoesThat) {
  bus.KnowPart(88);
  Dialogue line(port);
  line.Exchange({16, 0, 16}, {6});
  EXPECT_TRUE(bus.com.SensorCommand(2, false));
  EXPECT_EQ(line.Trouble(), "");
  test::ScriptedBus other;
  other.KnowPart(85);
  Dialogue otherLine(other.port);
  otherLine.Exchange({197, 55, 252}, {6});
  EXPECT_TRUE(other.com.SensorCommand(3, false));
  EXPECT_EQ(otherLine.Trouble(), "");
}

TEST_F(CommandExchangeTest, ATmoCounterThatCannotBeWrittenEndsTheUnlock) {
  bus.KnowPart(88);
  EXPECT_FALSE(bus.com.SensorCommand(3, false));
  EXPECT_EQ(RequestsToSend().size(), 10U);
  EXPECT_EQ(session.LastError, "Can't save to sensor");
  EXPECT_FALSE(port.PortOpen());
}

}  // namespace
}  // namespace brelant
