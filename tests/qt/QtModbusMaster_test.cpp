// SPDX-License-Identifier: GPL-3.0-or-later
// The master's frames, and what it makes of good, bad and late answers of a unit that the test plays on the
// other end of a pseudo-terminal (docs/protocol.md, Modbus; docs/architecture.md, The symbolic road).
#include "qt/QtModbusMaster.h"

#include <QSocketNotifier>
#include <QTimer>
#include <algorithm>
#include <array>
#include <deque>
#include <functional>
#include <set>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <pty.h>
#include <termios.h>
#include <unistd.h>

#include "qt/QtClock.h"
#include "qt/QtPump.h"

namespace brelant {
namespace {

using std::chrono::microseconds;
using std::chrono::milliseconds;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::SizeIs;

using Bytes = std::vector<std::uint8_t>;
using Words = std::vector<std::uint16_t>;
using Bank = ModbusMaster::Bank;
using Failure = ModbusMaster::Failure;
using Kind = Failure::Kind;

// A fast line keeps the time-outs short; a pseudo-terminal has no speed.
constexpr ModbusMaster::Line kFastLine{.baud = 115200};

/// The CRC of the standard, by its shift register.
Bytes WithCrc(Bytes frame) {
  unsigned remainder = 0xFFFF;
  for (const std::uint8_t byte : frame) {
    remainder ^= byte;
    for (int i = 0; i < 8; ++i) remainder = remainder % 2 == 1 ? (remainder / 2) ^ 0xA001 : remainder / 2;
  }
  frame.push_back(static_cast<std::uint8_t>(remainder % 256));
  frame.push_back(static_cast<std::uint8_t>(remainder / 256));
  return frame;
}

void Append(Bytes& frame, int word) {
  frame.push_back(static_cast<std::uint8_t>(word / 256));
  frame.push_back(static_cast<std::uint8_t>(word % 256));
}

int WordAt(const Bytes& frame, std::size_t place) {
  return frame.at(place) * 256 + frame.at(place + 1);
}

/// Units of every address at the far end of a line. An input register holds `base` and its number, a holding
/// register 5000 more. They answer in order, one request after the other, and in pump passes only.
class Unit {
 public:
  struct Plan {
    /// What is answered instead of what is proper; nothing at all is silence.
    std::optional<Bytes> bytes = {};
    /// Not before it is released; what is asked behind it waits as well.
    bool held = false;
  };

  Unit(const Clock& clock, int base) : clock_(clock), base_(base) {
    std::array<char, 256> name{};
    termios raw{};
    cfmakeraw(&raw);
    EXPECT_EQ(openpty(&controller_, &device_, name.data(), &raw, nullptr), 0);
    name_ = name.data();
    ears_ = std::make_unique<QSocketNotifier>(controller_, QSocketNotifier::Read);
    QObject::connect(ears_.get(), &QSocketNotifier::activated, [this] { Listen(); });
    timer_.setSingleShot(true);
    timer_.setTimerType(Qt::PreciseTimer);
    timer_.callOnTimeout([this] { Speak(); });
  }
  ~Unit() { HangUp(); }
  Unit(const Unit&) = delete;
  Unit& operator=(const Unit&) = delete;

  const std::string& Name() const { return name_; }
  const std::vector<Bytes>& Requests() const { return requests_; }
  int Device() const { return device_; }

  /// For the next request that has no plan yet.
  void Next(Plan plan) { plans_.push_back(std::move(plan)); }
  void Mute(int address) { muted_.insert(address); }
  void Lack(int number) { missing_.insert(number); }
  void RefuseToWrite() { refusesWrites_ = true; }
  /// From now on it does not hear what is asked while it owes an answer.
  void BeDeafWhileBusy() { deaf_ = true; }
  /// All that is owed, one by one.
  void Release(microseconds after, microseconds apart = microseconds(0)) {
    auto at = clock_.Now() + after;
    for (auto& answer : answers_) {
      answer.at = at;
      at += apart;
    }
    Speak();
  }
  bool OwesNothing() const { return answers_.empty(); }
  void Say(const Bytes& bytes) const {
    EXPECT_EQ(write(controller_, bytes.data(), bytes.size()), static_cast<ssize_t>(bytes.size()));
  }

  void HangUp() {
    ears_.reset();
    timer_.stop();
    for (int* end : {&device_, &controller_}) {
      if (*end >= 0) close(*end);
      *end = -1;
    }
  }

 private:
  struct Answer {
    Bytes bytes;
    microseconds at;
  };
  static constexpr auto kHeld = microseconds::max();

  void Listen() {
    std::array<std::uint8_t, 512> part{};
    const auto count = read(controller_, part.data(), part.size());
    if (count > 0) begun_.insert(begun_.end(), part.begin(), part.begin() + count);
    for (auto size = Size(); begun_.size() >= size; size = Size()) {
      const auto end = begun_.begin() + static_cast<std::ptrdiff_t>(size);
      const Bytes request(begun_.begin(), end);
      begun_.erase(begun_.begin(), end);
      Hear(request);
    }
  }
  /// Of the request that has begun.
  std::size_t Size() const { return begun_.size() > 6 && begun_[1] == 16 ? 9U + begun_[6] : 8U; }

  void Hear(const Bytes& request) {
    requests_.push_back(request);
    EXPECT_EQ(request, WithCrc({request.begin(), request.end() - 2}));
    if (muted_.contains(request[0]) || (deaf_ && !OwesNothing())) return;
    Plan plan;
    if (!plans_.empty()) {
      plan = plans_.front();
      plans_.pop_front();
    }
    const auto begin = OwesNothing() ? clock_.Now() : answers_.back().at;
    answers_.push_back({plan.bytes ? *plan.bytes : Proper(request), plan.held ? kHeld : begin});
    Speak();
  }

  void Speak() {
    while (!OwesNothing() && answers_.front().at <= clock_.Now()) {
      Say(answers_.front().bytes);
      answers_.pop_front();
    }
    if (OwesNothing() || answers_.front().at == kHeld) return timer_.stop();
    timer_.start(std::chrono::ceil<milliseconds>(answers_.front().at - clock_.Now()));
  }

  Bytes Proper(const Bytes& request) const {
    const auto function = request[1];
    const auto refusal = static_cast<std::uint8_t>(function + 128);
    const bool isRead = function == 3 || function == 4;
    if (!isRead && refusesWrites_) return WithCrc({request[0], refusal, 4});
    if (function == 6) return request;
    if (function == 16) return WithCrc({request.begin(), request.begin() + 6});
    const int first = WordAt(request, 2);
    const int count = WordAt(request, 4);
    Bytes reply{request[0], function, static_cast<std::uint8_t>(2 * count)};
    if (count > 125) return WithCrc({request[0], refusal, 3});
    for (int number = first; number < first + count; ++number) {
      if (missing_.contains(number)) return WithCrc({request[0], refusal, 2});
      Append(reply, base_ + number + (function == 3 ? 5000 : 0));
    }
    return WithCrc(reply);
  }

  const Clock& clock_;
  int base_;
  int controller_ = -1;
  int device_ = -1;
  std::string name_;
  std::unique_ptr<QSocketNotifier> ears_;
  QTimer timer_;
  Bytes begun_;
  std::vector<Bytes> requests_;
  std::deque<Plan> plans_;
  std::deque<Answer> answers_;
  std::set<int> muted_;
  std::set<int> missing_;
  bool refusesWrites_ = false;
  bool deaf_ = false;
};

std::optional<Failure> FailureOf(const std::function<void()>& act) {
  try {
    act();
  } catch (const Failure& failure) {
    return failure;
  }
  return {};
}

/// Nothing: it has not failed.
std::optional<Kind> KindOf(const std::function<void()>& act) {
  const auto failure = FailureOf(act);
  if (!failure) return {};
  return failure->kind;
}

class QtModbusMasterTest : public ::testing::Test {
 protected:
  void SetUp() override { master_.Open(unit_.Name(), kFastLine); }

  int Input(int number, int unit = 1) { return master_.Read(unit, Bank::input, number, 1).at(0); }
  Words Inputs(int first, int count) { return master_.Read(1, Bank::input, first, count); }
  Words Holdings(int first, int count) { return master_.Read(1, Bank::holding, first, count); }
  void Write(int first, const Words& values) { master_.Write(1, first, values); }

  std::function<void()> ReadingInput(int number) {
    return [this, number] { Input(number); };
  }
  std::function<void()> Writing(int first, const Words& values) {
    return [this, first, values] { Write(first, values); };
  }

  /// Asks for what is answered too late. Gives the time in which the master gave it up.
  microseconds Lose(const std::function<void()>& act, const Unit::Plan& plan = {.held = true}) {
    unit_.Next(plan);
    const auto start = clock_.Now();
    EXPECT_EQ(KindOf(act), Kind::silence);
    return clock_.Now() - start;
  }
  void ReleaseAt(double part, microseconds timeout) {
    unit_.Release(std::chrono::duration_cast<microseconds>((part - 1) * timeout));
  }
  void PumpFor(microseconds pause) {
    const auto deadline = clock_.Now() + pause;
    while (clock_.Now() < deadline) pump_.Wait(deadline);
  }
  /// Whatever is still under way would be taken by one of these, as each has another size.
  void ExpectRightValues() {
    EXPECT_EQ(Input(9), 1009);
    EXPECT_THAT(Inputs(11, 2), ElementsAre(1011, 1012));
    EXPECT_THAT(Inputs(13, 3), ElementsAre(1013, 1014, 1015));
    EXPECT_THAT(Holdings(20, 2), ElementsAre(6020, 6021));
    EXPECT_EQ(Input(10), 1010);
  }
  std::ptrdiff_t WritesHeard() const {
    return std::count_if(unit_.Requests().begin(), unit_.Requests().end(),
                         [](const Bytes& request) { return request[1] == 6 || request[1] == 16; });
  }

  QtClock clock_;
  QtPump pump_{clock_};
  Unit unit_{clock_, 1000};
  QtModbusMaster master_{clock_, pump_};
};

TEST_F(QtModbusMasterTest, ReadsHoldingRegisters) {
  unit_.Next({.bytes = Bytes{1, 3, 4, 8, 252, 8, 52, 62, 116}});
  EXPECT_THAT(Holdings(20, 2), ElementsAre(2300, 2100));
  unit_.Next({.bytes = WithCrc({29, 3, 2, 255, 254})});
  EXPECT_THAT(master_.Read(29, Bank::holding, 12287, 1), ElementsAre(65534));
  EXPECT_THAT(unit_.Requests(),
              ElementsAre(Bytes{1, 3, 0, 20, 0, 2, 132, 15}, WithCrc({29, 3, 47, 255, 0, 1})));
}

TEST_F(QtModbusMasterTest, ReadsInputRegisters) {
  unit_.Next({.bytes = WithCrc({1, 4, 8, 6, 22, 6, 0, 0, 26, 0, 22})});
  EXPECT_THAT(Inputs(16, 4), ElementsAre(1558, 1536, 26, 22));
  unit_.Next({.bytes = WithCrc({1, 4, 2, 1, 2})});
  EXPECT_THAT(Inputs(8, 1), ElementsAre(258));
  EXPECT_THAT(unit_.Requests(), ElementsAre(WithCrc({1, 4, 0, 16, 0, 4}), Bytes{1, 4, 0, 8, 0, 1, 176, 8}));
}

TEST_F(QtModbusMasterTest, WritesOneByFunction6AndManyByFunction16) {
  Write(20, {2500});
  Write(23, {300, 200});
  EXPECT_THAT(unit_.Requests(),
              ElementsAre(WithCrc({1, 6, 0, 20, 9, 196}), WithCrc({1, 16, 0, 23, 0, 2, 4, 1, 44, 0, 200})));
}

TEST_F(QtModbusMasterTest, ReadsAndWritesAsManyAsARequestTakes) {
  Words expected;
  for (int number = 8192; number < 8192 + 125; ++number) {
    expected.push_back(static_cast<std::uint16_t>(6000 + number));
  }
  EXPECT_EQ(Holdings(8192, 125), expected);
  Bytes request{1, 16, 45, 172, 0, 123, 246};
  for (int i = 0; i < 123; ++i) Append(request, 0x5566);
  Write(8192 + 3500, Words(123, 0x5566));
  EXPECT_THAT(unit_.Requests(), ElementsAre(WithCrc({1, 3, 32, 0, 0, 125}), WithCrc(request)));
}

TEST_F(QtModbusMasterTest, AnAnswerMayComeInPieces) {
  const auto answer = WithCrc({1, 4, 2, 1, 2});
  std::size_t said = 0;
  unit_.Next({.held = true});
  const auto timer = pump_.Every(milliseconds(10), [&] {
    if (!unit_.OwesNothing() && said < answer.size()) unit_.Say({answer[said++]});
  });
  EXPECT_EQ(Input(7), 258);
}

TEST_F(QtModbusMasterTest, OpensTheLineThatIsAsked) {
  termios settings{};
  tcgetattr(unit_.Device(), &settings);
  EXPECT_EQ(cfgetospeed(&settings), static_cast<speed_t>(B115200));
  EXPECT_EQ(settings.c_cflag & CSTOPB, 0U);
  master_.Open(unit_.Name(), {.baud = 19200, .parity = ModbusMaster::Parity::even, .stopBits = 2});
  tcgetattr(unit_.Device(), &settings);
  EXPECT_EQ(cfgetospeed(&settings), static_cast<speed_t>(B19200));
  EXPECT_EQ(settings.c_cflag & (CSTOPB | CSIZE), static_cast<tcflag_t>(CSTOPB | CS8));
  EXPECT_EQ(Input(9), 1009);
}

TEST_F(QtModbusMasterTest, AnExceptionIsToldByItsCodeAndMeaning) {
  const std::vector<std::pair<std::uint8_t, std::string>> codes{{1, "1, illegal function"},
                                                                {2, "2, illegal data address"},
                                                                {3, "3, illegal data value"},
                                                                {4, "4, device failure"},
                                                                {11, "11"}};
  const std::vector<std::pair<std::uint8_t, std::function<void()>>> requests{
      {132, ReadingInput(8)}, {134, Writing(8, {1})}, {144, Writing(8, {1, 2})}};
  for (const auto& [code, text] : codes) {
    for (const auto& [function, act] : requests) {
      unit_.Next({.bytes = WithCrc({1, function, code})});
      const auto failure = FailureOf(act);
      ASSERT_TRUE(failure) << text;
      EXPECT_EQ(failure->kind, Kind::exception);
      EXPECT_THAT(failure->what(), HasSubstr("exception " + text));
    }
  }
  EXPECT_THAT(unit_.Requests(), SizeIs(15));
  ExpectRightValues();
}

TEST_F(QtModbusMasterTest, SilenceIsToldAndNothingIsAskedTwice) {
  unit_.Next({.bytes = Bytes{}});
  EXPECT_EQ(KindOf(ReadingInput(7)), Kind::silence);
  EXPECT_THAT(unit_.Requests(), ElementsAre(WithCrc({1, 4, 0, 7, 0, 1})));
  EXPECT_TRUE(master_.IsOpen());
  ExpectRightValues();
}

TEST_F(QtModbusMasterTest, AnAnswerThatIsNotWholeOrNotFromTheUnitIsSilence) {
  const auto good = WithCrc({1, 4, 2, 3, 239});
  auto wrong = good;
  wrong.back() = static_cast<std::uint8_t>(wrong.back() ^ 1);
  for (const auto& bytes : {wrong, Bytes(good.begin(), good.end() - 1), WithCrc({2, 4, 2, 3, 239})}) {
    unit_.Next({.bytes = bytes});
    EXPECT_EQ(KindOf(ReadingInput(7)), Kind::silence);
    ExpectRightValues();
  }
}

TEST_F(QtModbusMasterTest, AnotherNumberOfRegistersIsBroken) {
  for (const auto& bytes : {WithCrc({1, 4, 4, 3, 239, 3, 240}), WithCrc({1, 4, 0})}) {
    unit_.Next({.bytes = bytes});
    EXPECT_EQ(KindOf(ReadingInput(7)), Kind::broken);
    ExpectRightValues();
  }
}

TEST_F(QtModbusMasterTest, AWriteThatIsAnsweredAsAnotherIsBroken) {
  unit_.Next({.bytes = WithCrc({1, 6, 0, 21, 9, 196})});
  EXPECT_EQ(KindOf(Writing(20, {2500})), Kind::broken);
  unit_.Next({});
  unit_.Next({.bytes = WithCrc({1, 6, 0, 20, 9, 197})});
  EXPECT_EQ(KindOf(Writing(20, {2500})), Kind::broken);
  unit_.Next({});
  unit_.Next({.bytes = WithCrc({1, 16, 0, 23, 0, 1})});
  EXPECT_EQ(KindOf(Writing(23, {300, 200})), Kind::broken);
  EXPECT_EQ(WritesHeard(), 3);
  ExpectRightValues();
}

TEST_F(QtModbusMasterTest, ALateAnswerIsNotAnothersValue) {
  // The second comes just behind what is asked next.
  const std::vector<std::pair<double, int>> cases{{1.0, 1}, {1.02, 1}, {1.2, 1}, {1.5, 2}};
  for (const auto& [part, count] : cases) {
    ReleaseAt(part, Lose(ReadingInput(7)));
    EXPECT_EQ(Inputs(9, count).at(0), 1009) << part;
    ExpectRightValues();
  }
}

TEST_F(QtModbusMasterTest, ALateAnswerOfAUnitThatHearsNothingMeanwhileIsNotAnothersValue) {
  unit_.BeDeafWhileBusy();
  ReleaseAt(1.2, Lose(ReadingInput(7)));
  ExpectRightValues();
}

TEST_F(QtModbusMasterTest, LateAnswersOfSeveralRequestsAreNotAnothersValues) {
  Lose(ReadingInput(7));
  EXPECT_EQ(KindOf(ReadingInput(8)), Kind::silence);
  // So that each meets another request.
  unit_.Release(milliseconds(20), milliseconds(150));
  std::optional<int> value;
  // As many attempts as the connection makes.
  for (int attempt = 0; attempt < 4 && !value; ++attempt) {
    EXPECT_EQ(KindOf([&] { value = Input(9); }).value_or(Kind::silence), Kind::silence);
  }
  EXPECT_EQ(value, 1009);
  ExpectRightValues();
}

TEST_F(QtModbusMasterTest, ALateAnswerToAWriteIsNotAnothers) {
  ReleaseAt(1.2, Lose(Writing(23, {300, 200})));
  EXPECT_THAT(Holdings(20, 2), ElementsAre(6020, 6021));
  EXPECT_NO_THROW(Write(26, {180, 190}));
  // Only the late one says that it was done.
  ReleaseAt(1.2, Lose(Writing(20, {2500})));
  unit_.RefuseToWrite();
  EXPECT_EQ(KindOf(Writing(20, {2500})), Kind::exception);
  EXPECT_EQ(WritesHeard(), 4);
  ExpectRightValues();
}

TEST_F(QtModbusMasterTest, AWriteBehindALateReadIsItsOwn) {
  ReleaseAt(1.2, Lose([this] { Holdings(7, 1); }));
  EXPECT_NO_THROW(Write(20, {2500}));
  EXPECT_EQ(unit_.Requests().back(), WithCrc({1, 6, 0, 20, 9, 196}));
  EXPECT_EQ(WritesHeard(), 1);
  ExpectRightValues();
}

TEST_F(QtModbusMasterTest, ALateExceptionIsNotAnothers) {
  ReleaseAt(1.5, Lose(ReadingInput(7), {.bytes = WithCrc({1, 132, 2}), .held = true}));
  ExpectRightValues();
}

TEST_F(QtModbusMasterTest, ALateAnswerWhoseNeighboursAreNoRegistersIsNotAnothersValue) {
  unit_.Lack(8);
  ReleaseAt(1.2, Lose(ReadingInput(7)));
  ExpectRightValues();
}

TEST_F(QtModbusMasterTest, ALateAnswerThatIsNoneLeavesNothingBehind) {
  // Half a register.
  ReleaseAt(1.2, Lose(ReadingInput(7), {.bytes = WithCrc({1, 4, 3, 1, 2, 3}), .held = true}));
  for (const int number : {9, 12, 15}) {
    std::optional<Words> values;
    FailureOf([&] { values = Inputs(number, 2); });
    if (values) {
      EXPECT_THAT(*values, ElementsAre(1000 + number, 1001 + number));
    }
  }
  ExpectRightValues();
}

TEST_F(QtModbusMasterTest, ASilentUnitDoesNotSilenceTheOthers) {
  unit_.Mute(1);
  EXPECT_EQ(KindOf(ReadingInput(7)), Kind::silence);
  EXPECT_EQ(Input(9, 2), 1009);
}

TEST_F(QtModbusMasterTest, AnAnswerIsNotTakenByTheNextConnection) {
  unit_.Next({.held = true});
  auto timer = pump_.Every(milliseconds(20), [&] { master_.Close(); });
  EXPECT_EQ(KindOf(ReadingInput(7)), Kind::cancelled);
  timer.reset();
  master_.Open(unit_.Name(), kFastLine);
  unit_.Release(milliseconds(50));
  EXPECT_EQ(Input(9), 1009);
}

TEST_F(QtModbusMasterTest, APortThatDoesNotExistIsToldAsThePort) {
  for (const std::string name : {"/dev/no-such-device", "", "0", "9999", "/dev/null"}) {
    EXPECT_EQ(KindOf([&] { master_.Open(name, kFastLine); }), Kind::port) << name;
    EXPECT_FALSE(master_.IsOpen()) << name;
    EXPECT_EQ(KindOf(ReadingInput(7)), Kind::port) << name;
    EXPECT_EQ(KindOf(Writing(20, {1})), Kind::port) << name;
  }
  EXPECT_THAT(unit_.Requests(), IsEmpty());
  master_.Open(unit_.Name(), kFastLine);
  EXPECT_EQ(Input(9), 1009);
}

TEST_F(QtModbusMasterTest, APortThatIsOpenElsewhereIsToldAsThePort) {
  QtModbusMaster other(clock_, pump_);
  EXPECT_EQ(KindOf([&] { other.Open(unit_.Name(), kFastLine); }), Kind::port);
  EXPECT_EQ(Input(9), 1009);
}

TEST_F(QtModbusMasterTest, APortThatVanishesEndsARequestAtOnce) {
  for (const auto& act : {ReadingInput(7), Writing(20, {1})}) {
    Unit lost(clock_, 2000);
    lost.Next({.held = true});
    master_.Open(lost.Name(), kFastLine);
    const auto timer = pump_.Every(milliseconds(20), [&] { lost.HangUp(); });
    const auto start = clock_.Now();
    EXPECT_EQ(KindOf(act), Kind::port);
    EXPECT_LT(clock_.Now() - start, milliseconds(300));
    EXPECT_EQ(KindOf(act), Kind::port);
  }
  master_.Open(unit_.Name(), kFastLine);
  EXPECT_EQ(Input(9), 1009);
}

TEST_F(QtModbusMasterTest, APortThatVanishesBetweenRequestsIsToldByTheNext) {
  EXPECT_EQ(Input(9), 1009);
  unit_.HangUp();
  EXPECT_EQ(KindOf(ReadingInput(7)), Kind::port);
  EXPECT_NO_THROW(master_.Close());
  EXPECT_FALSE(master_.IsOpen());
}

TEST_F(QtModbusMasterTest, APortThatVanishesDoesNotSpin) {
  unit_.HangUp();
  PumpFor(milliseconds(20));
  int passes = 0;
  pump_.OnPass([&] {
    ++passes;
    return false;
  });
  PumpFor(milliseconds(20));
  EXPECT_LE(passes, 10);
  EXPECT_EQ(KindOf(ReadingInput(7)), Kind::port);
}

TEST_F(QtModbusMasterTest, ClosingEndsARunningRequestAsCancelled) {
  for (const auto& act : {ReadingInput(7), Writing(20, {1})}) {
    Unit busy(clock_, 2000);
    busy.Next({.held = true});
    master_.Open(busy.Name(), kFastLine);
    const auto start = clock_.Now();
    auto timer = pump_.Every(milliseconds(20), [&] { master_.Close(); });
    EXPECT_EQ(KindOf(act), Kind::cancelled);
    EXPECT_LT(clock_.Now() - start, milliseconds(300));
    EXPECT_FALSE(master_.IsOpen());
    timer.reset();
    busy.Release(milliseconds(0));
    PumpFor(milliseconds(20));
    EXPECT_EQ(KindOf(act), Kind::port);
    EXPECT_THAT(busy.Requests(), SizeIs(1));
    master_.Open(unit_.Name(), kFastLine);
    EXPECT_EQ(Input(9), 1009);
  }
}

TEST_F(QtModbusMasterTest, OpeningAnotherPortEndsARunningRequestAsCancelled) {
  Unit other(clock_, 2000);
  unit_.Next({.held = true});
  auto timer = pump_.Every(milliseconds(20), [&] {
    if (other.Requests().empty()) master_.Open(other.Name(), kFastLine);
  });
  EXPECT_EQ(KindOf(ReadingInput(7)), Kind::cancelled);
  timer.reset();
  EXPECT_THAT(other.Requests(), IsEmpty());
  unit_.Release(milliseconds(0));
  EXPECT_EQ(Input(9), 2009);
  EXPECT_THAT(other.Requests(), ElementsAre(WithCrc({1, 4, 0, 9, 0, 1})));
  EXPECT_THAT(unit_.Requests(), SizeIs(1));
}

TEST_F(QtModbusMasterTest, ARequestInsideAnotherThatIsCancelledIsItsOwn) {
  Unit other(clock_, 2000);
  unit_.Next({.held = true});
  std::optional<int> inner;
  std::unique_ptr<Pump::Timer> timer = pump_.Every(milliseconds(20), [&] {
    if (inner) return;
    inner = 0;
    master_.Open(other.Name(), kFastLine);
    inner = Input(9);
  });
  EXPECT_EQ(KindOf(ReadingInput(7)), Kind::cancelled);
  EXPECT_EQ(inner, 2009);
  EXPECT_EQ(Input(10), 2010);
}

/// A late exception makes the master leave the line silent; these come into that silence.
class QtModbusMasterSilenceTest : public QtModbusMasterTest {
 protected:
  std::unique_ptr<Pump::Timer> InTheSilence(const std::function<void()>& act) {
    Lose(ReadingInput(7), {.bytes = WithCrc({1, 132, 2}), .held = true});
    unit_.Release(milliseconds(20));
    return pump_.Every(milliseconds(60), [act, done = false]() mutable {
      if (!done) act();
      done = true;
    });
  }
};

TEST_F(QtModbusMasterSilenceTest, ClosingEndsItAsCancelled) {
  const auto timer = InTheSilence([&] { master_.Close(); });
  const auto start = clock_.Now();
  EXPECT_EQ(KindOf(ReadingInput(9)), Kind::cancelled);
  EXPECT_LT(clock_.Now() - start, milliseconds(400));
}

TEST_F(QtModbusMasterSilenceTest, OpeningAnotherPortAsksNothingThere) {
  Unit other(clock_, 2000);
  const auto timer = InTheSilence([&] { master_.Open(other.Name(), kFastLine); });
  EXPECT_EQ(KindOf(ReadingInput(9)), Kind::cancelled);
  EXPECT_THAT(other.Requests(), IsEmpty());
  EXPECT_EQ(Input(9), 2009);
}

}  // namespace
}  // namespace brelant
