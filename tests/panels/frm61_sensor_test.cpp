// SPDX-License-Identifier: GPL-3.0-or-later
#include <numeric>

#include "app/settings_file.h"
#include "panels/frm61_fixture.h"

namespace brelant {
namespace {

using std::chrono::milliseconds;
using std::chrono::seconds;
using test::Bytes;
using test::Click;
using test::EachFrm61SensorTest;
using test::Framed;
using test::Frm61SensorTest;
using test::Frm61Test;
using test::kGreen;
using test::kPart7;
using test::kYellow;
using test::Product61;
using test::Products61;
using test::PutBytes;
using test::Sample61;
using test::Sample7;
using test::SampleOf;
using test::SensorPort;
using test::SettingsFile;
using test::Texts;
using testing::AllOf;
using testing::Each;
using testing::ElementsAre;
using testing::Ge;
using testing::IsEmpty;
using testing::Lt;

constexpr const char* kNoSensor = "No sensor detected, entering simulated mode.";
constexpr const char* kFile = "C:\\Files\\a.set";

const Bytes kUnlock{197, 55, 252};
const Bytes kLock{169, 171, 84};
const Bytes kSaveToRam{145, 0, 145};
const Bytes kAskPart{131, 65, 196};

std::uint8_t Low(std::size_t address) {
  return static_cast<std::uint8_t>(address % 256);
}
std::uint8_t High(std::size_t address) {
  return static_cast<std::uint8_t>(address / 256);
}
/// A read or write of the large EEPROM: whole addresses, high byte first.
Bytes ReadLong(int count, std::size_t address) {
  return Framed({static_cast<std::uint8_t>(136 + count), High(address), Low(address)});
}
/// Up to four bytes a frame, and none beyond a page of 16.
std::vector<Bytes> WriteLong(const Bytes& memory, std::size_t from, std::size_t count) {
  std::vector<Bytes> frames;
  for (std::size_t at = from; at < from + count;) {
    Bytes data;
    do data.push_back(memory[at]);
    while (++at < from + count && at % 16 != 0 && data.size() < 4);
    Bytes frame{static_cast<std::uint8_t>(8 + data.size()), High(at - data.size()), Low(at - data.size())};
    frame.insert(frame.end(), data.begin(), data.end());
    frames.push_back(Framed(frame));
  }
  return frames;
}
void Append(std::vector<Bytes>& frames, const std::vector<Bytes>& more) {
  frames.insert(frames.end(), more.begin(), more.end());
}

// The poll

class PollOf61Test : public EachFrm61SensorTest {
 protected:
  std::vector<Bytes> Polled() const {
    if (!IsOn61()) return {{134, 20, 154}, {129, 67, 196}, {193, 82, 19}};
    std::vector<Bytes> frames{{134, 20, 154}, {132, 40, 172}, {129, 67, 196}};
    // The variant without alarms asks for its two channels anew.
    if (product.variant == 1) Append(frames, {{130, 20, 150}, {130, 22, 152}});
    return frames;
  }
};
INSTANTIATE_TEST_SUITE_P(, PollOf61Test, Products61(), test::ProductName);

TEST_P(PollOf61Test, ReadsTheLiveBytesInOrder) {
  EXPECT_TRUE(panel.ActionSensorReadM());
  EXPECT_EQ(port.sensor.Frames(), Polled());
  EXPECT_EQ(Eeprom(), [this] {
    auto expected = sample;
    if (product.platform == 7) expected[1023] = 2;
    return expected;
  }());
}

TEST_P(PollOf61Test, KeepsThePortOpenUpToItsLastRead) {
  EXPECT_TRUE(panel.ActionSensorReadM());
  std::vector<std::string> acts{"open", "frame", "frame", "frame", "close"};
  if (IsOn61() && product.variant == 1) {
    for (int i = 0; i < 2; ++i) acts.insert(acts.end(), {"open", "frame", "close"});
  }
  EXPECT_EQ(PortActs(), acts);
}

TEST_P(PollOf61Test, ShowsWhatItRead) {
  const int offset = IsOn61() ? 5000 : 0;
  HoldWord(20, offset + 2250);
  HoldWord(22, offset + 812);
  HoldWord(24, offset + 2090);
  port.sensor.Ram()[67] = 129;
  port.sensor.Ram()[40] = 17;
  port.sensor.Ram()[43] = 18;
  port.sensor.Ram()[210] = 19;
  EXPECT_TRUE(panel.ActionSensorReadM());
  EXPECT_EQ(panel.txbCHact[0].Text(), "22.5");
  EXPECT_EQ(panel.txbCHact[1].Text(), IsOn61() && product.variant == 1 ? "812" : "0.812");
  EXPECT_EQ(panel.txbCHact[2].Text(), IsOn61() && product.variant == 1 ? "" : "20.9");
  EXPECT_EQ(panel.txbStatus.Text(), IsOn61() ? "" : "FatalError Warming up ");
  EXPECT_THAT(Ram(67, 1), ElementsAre(129));
  if (IsOn61()) {
    EXPECT_THAT(Ram(40, 1), ElementsAre(17));
    EXPECT_THAT(Ram(43, 1), ElementsAre(18));
  } else {
    EXPECT_THAT(Ram(210, 1), ElementsAre(19));
  }
}

TEST_P(PollOf61Test, StopsAtItsFirstFailure) {
  for (std::size_t failing = 0; failing < Polled().size(); ++failing) {
    session.LastError.clear();
    Listen();
    HoldWord(20, 9000);
    for (auto* field : panel.txbCHact) field->SetText("x");
    panel.txbStatus.SetText("x");
    const auto answer = port.onOutput;
    FallSilentAt(failing);
    EXPECT_FALSE(panel.ActionSensorReadM()) << failing;
    EXPECT_EQ(session.LastError, "Can't read from sensor") << failing;
    EXPECT_EQ(port.sensor.Frames().size(), failing);
    // A read that was to keep the port open does so when it fails, too.
    EXPECT_EQ(port.PortOpen(), failing < 2) << failing;
    // What came in is shown only if all of it did, but for the last channel asked by itself.
    if (failing < 4) {
      EXPECT_EQ(panel.txbCHact[0].Text(), "x") << failing;
    }
    EXPECT_EQ(panel.txbCHact[1].Text(), "x") << failing;
    EXPECT_EQ(panel.txbStatus.Text(), "x") << failing;
    port.onOutput = answer;
  }
}

TEST_P(PollOf61Test, ASensorThatIsPulledOffEndsInSimulatedModeWithItsLastValues) {
  HoldWord(22, IsOn61() ? 5812 : 812);
  After(seconds(3), [this] { test::PullOff(port); });
  Run(seconds(60));
  EXPECT_THAT(ground.ui.Texts(), ElementsAre(kNoSensor));
  EXPECT_EQ(panel.cbxSimulated.Value(), 1);
  EXPECT_EQ(panel.txbCHact[1].Text(), IsOn61() && product.variant == 1 ? "812" : "0.812");
  for (const auto* field : panel.txbCHact) EXPECT_EQ(field->Fore(), kYellow);
}

TEST_P(PollOf61Test, TheFirstPollAfterMidnightComesAtOnce) {
  std::vector<double> begins;
  test::BeforeEachOutput(port, [&](const Bytes&) {
    const auto sent = port.Sent();
    if (sent.size() >= 4 && Bytes(sent.end() - 3, sent.end()) == Bytes{134, 20, 154}) {
      begins.push_back(ground.clock.Timer());
    }
    return true;
  });
  ground.clock.SetTimer(86398.5);
  Run(seconds(7));
  const auto near = [](double moment) { return AllOf(Ge(moment), Lt(moment + 0.15)); };
  EXPECT_THAT(begins, ElementsAre(near(86398.5), near(0), near(2), near(4)));
}

TEST_P(PollOf61Test, OnAnotherPlatformReadsNothing) {
  ground.KnowPart(88);
  panel.FormUpdateInit();
  session.LastError.clear();
  Listen();
  EXPECT_FALSE(panel.ActionSensorReadM());
  EXPECT_THAT(port.sensor.Frames(), IsEmpty());
  EXPECT_EQ(session.LastError, "");
}

class PollOfStrangerTest : public Frm61SensorTest {
 protected:
  PollOfStrangerTest() : Frm61SensorTest({61, 0}) {}
  /// The sensor becomes another one, and the panel reads it.
  void Exchange(int variant) {
    auto other = Sample61(variant);
    other[32] = 12;
    Hold(other);
    panel.ActionSensorRead();
    Listen();
  }
};

TEST_F(PollOfStrangerTest, AVariantWithoutAFaceIsPolledAsItsPlatformIs) {
  Exchange(3);
  EXPECT_EQ(panel.txbID.Text(), "12");
  EXPECT_TRUE(panel.ActionSensorReadM());
  EXPECT_THAT(port.sensor.Frames(),
              ElementsAre(Bytes{134, 20, 154}, Bytes{132, 40, 172}, Bytes{129, 67, 196}));
  panel.txbID.SetText("13");
  panel.lblDisp[0].SetText("O2");
  panel.alarms.txbAlarm061Level[0].SetText("2");
  EXPECT_TRUE(panel.FormRead());
  auto expected = Sample61(3);
  expected[32] = 13;
  EXPECT_EQ(Eeprom(), expected);
}

TEST_F(PollOfStrangerTest, AVariantOfTwoChannelsIsAskedForTwo) {
  Exchange(1);
  HoldWord(22, 5812);
  panel.txbCHact[2].SetText("x");
  EXPECT_TRUE(panel.ActionSensorReadM());
  EXPECT_THAT(port.sensor.Frames(), ElementsAre(Bytes{134, 20, 154}, Bytes{132, 40, 172}, Bytes{129, 67, 196},
                                                Bytes{130, 20, 150}, Bytes{130, 22, 152}));
  EXPECT_EQ(panel.txbCHact[1].Text(), "812");
  EXPECT_EQ(panel.txbCHact[2].Text(), "x");
}

TEST_F(PollOfStrangerTest, TheFaceFollowsTheSensorThatIsRead) {
  EXPECT_TRUE(panel.ActionSensorReadM());
  Exchange(1);
  // What the other one measured says nothing of this one.
  EXPECT_EQ(panel.txbCHact[0].Text(), "");
  EXPECT_THAT(Texts(panel.alarms.txbAlarm061Status), Each(""));
  EXPECT_FALSE(panel.pctChannel[2].Visible());
  EXPECT_FALSE(panel.alarms.pctAlarm061.Visible());
  EXPECT_EQ(panel.lblCH_Type[1].Text(), "ppm");
  EXPECT_THAT(Texts(panel.lblDisp), ElementsAre("TEMP", "CO2", "Dtemp", "Ch 6"));
  EXPECT_THAT(panel.Alarms(), IsEmpty());
  Exchange(0);
  EXPECT_TRUE(panel.pctChannel[2].Visible());
  EXPECT_TRUE(panel.alarms.pctAlarm061.Visible());
  EXPECT_EQ(panel.lblCH_Type[1].Text(), "%");
  EXPECT_THAT(Texts(panel.alarms.txbAlarm061Level), ElementsAre("1.5", "3", "19", "18"));
}

// Read from sensor

class ReadOf61Test : public EachFrm61SensorTest {
 protected:
  static std::vector<Bytes> WholeEeprom() {
    std::vector<Bytes> frames{kAskPart};
    for (std::uint8_t address = 0; address < 255; address = static_cast<std::uint8_t>(address + 3)) {
      frames.push_back(Framed({142, address}));
    }
    frames.push_back({138, 255, 137});
    return frames;
  }
  /// An odd address is read with the even one before it, three bytes as four. At last comes how the channels
  /// are scaled, with that of the first row all three on the panel.
  static std::vector<Bytes> SettingsOf7() {
    std::vector<Bytes> frames{kAskPart, {137, 0, 16, 153}};
    for (std::size_t i = 0; i < 6; ++i) frames.push_back(ReadLong(4, 834 + 4 * i));
    Append(frames, {{140, 3, 230, 117},
                    ReadLong(4, 924),
                    ReadLong(4, 928),
                    ReadLong(1, 932),
                    ReadLong(4, 384),
                    ReadLong(1, 388),
                    ReadLong(4, 796)});
    return frames;
  }
  std::vector<Bytes> Expected() const { return IsOn61() ? WholeEeprom() : SettingsOf7(); }
};
INSTANTIATE_TEST_SUITE_P(, ReadOf61Test, Products61(), test::ProductName);

TEST_P(ReadOf61Test, AsksForThePartAndThenForTheSettings) {
  EXPECT_TRUE(panel.ActionSensorRead());
  EXPECT_EQ(port.sensor.Frames(), Expected());
  EXPECT_FALSE(port.PortOpen());
}

TEST_P(ReadOf61Test, ClosesThePortBehindEachRead) {
  EXPECT_TRUE(panel.ActionSensorRead());
  const auto acts = PortActs();
  const auto count = [&acts](const char* act) { return std::count(acts.begin(), acts.end(), act); };
  // The part, and the whole EEPROM, or five pieces and one of channels.
  EXPECT_EQ(count("open"), IsOn61() ? 2 : 7);
  EXPECT_EQ(count("close"), IsOn61() ? 2 : 7);
}

TEST_P(ReadOf61Test, ShowsWhatItRead) {
  auto other = sample;
  PutBytes(other, IsOn61() ? 32 : 16, {12});
  if (IsOn61()) {
    PutBytes(other, 50, {0x45, 0x44});
    PutBytes(other, 76, {29, 76});
    PutBytes(other, 170, {4, 19});
  } else {
    PutBytes(other, 385, {5, 4, 4, 4});
    PutBytes(other, 834, {9, 196, 0x80});
    PutBytes(other, 925, {0xA4});
    PutBytes(other, 998, {19});
  }
  Hold(other);
  session.SensorId = 5;
  port.sensor.SetId(12);
  EXPECT_TRUE(panel.ActionSensorRead());
  EXPECT_EQ(session.SensorId, 30);
  EXPECT_EQ(session.LastError, "");
  EXPECT_EQ(panel.txbID.Text(), "12");
  EXPECT_EQ(panel.txbSN.Text(), IsOn61() ? "21501043" : "5001043");
  EXPECT_EQ(panel.lblDisp[0].Text(), "CO2");
  EXPECT_EQ(panel.lblDisp[1].Text(), IsOn61() ? "TEMP" : "Temp");
  if (IsOn61() && product.variant == 0) {
    EXPECT_EQ(panel.alarms.txbAlarm061Level[0].Text(), "2.5");
  }
  if (!IsOn61()) {
    EXPECT_EQ(panel.rows.lblAlarm7Channel[0].Text(), "Temp");
    EXPECT_EQ(panel.rows.lblAlarm7Slope[0].Text(), "<");
    EXPECT_EQ(panel.rows.lblAlarm7Level[0].Text(), "25");
  }
  if (IsOn61()) {
    EXPECT_EQ(Eeprom(), other);
  }
}

TEST_P(ReadOf61Test, LeavesNothingOfTheOldImage) {
  ground.image.EepromImage[40] = 99;
  ground.image.RamImage[100] = 99;
  ground.image.RamValid[100] = true;
  EXPECT_TRUE(panel.ActionSensorRead());
  EXPECT_EQ(ground.image.EepromImage[40], IsOn61() ? sample[40] : 0);
  EXPECT_EQ(ground.image.EepromValid[40], IsOn61());
  EXPECT_EQ(ground.image.RamImage[100], 0);
  EXPECT_FALSE(ground.image.RamValid[100]);
}

TEST_P(ReadOf61Test, ThatSucceedsClearsTheCheckBoxAndNoMore) {
  panel.SimMode(true);
  std::vector<int> values;
  test::BeforeEachOutput(port, [&](const Bytes&) {
    values.push_back(panel.cbxSimulated.Value());
    return true;
  });
  EXPECT_TRUE(panel.ActionSensorRead());
  EXPECT_THAT(values, Each(1));
  EXPECT_EQ(panel.cbxSimulated.Value(), 0);
  for (const auto* field : panel.txbCHact) EXPECT_EQ(field->Fore(), kYellow);
  EXPECT_EQ(panel.form.Caption(), "KVX3.0 Simulated mode");
  EXPECT_FALSE(panel.btnSendToSensor.Enabled());
  EXPECT_EQ(session.LastError, "");
}

TEST_P(ReadOf61Test, ThatFailsGivesImageAndFieldsBack) {
  auto other = sample;
  for (auto& byte : other) byte = static_cast<std::uint8_t>(byte + 1);
  Hold(other);
  panel.txbID.SetText("11");
  const auto before = ground.image;
  const auto frames = Expected().size();
  for (std::size_t failing = 0; failing < frames; failing += IsOn61() && failing > 1 ? 17 : 1) {
    for (const int value : {0, 1}) {
      panel.cbxSimulated.SetValue(value);
      session.LastError.clear();
      Listen();
      const auto answer = port.onOutput;
      FallSilentAt(failing);
      EXPECT_FALSE(panel.ActionSensorRead()) << failing;
      EXPECT_EQ(session.LastError, "Can't read from sensor") << failing;
      EXPECT_EQ(port.sensor.Frames().size(), failing);
      EXPECT_EQ(ground.image.EepromImage, before.EepromImage) << failing;
      EXPECT_EQ(ground.image.EepromRead, before.EepromRead) << failing;
      EXPECT_EQ(ground.image.EepromValid, before.EepromValid) << failing;
      EXPECT_EQ(ground.image.RamImage, before.RamImage) << failing;
      EXPECT_EQ(ground.image.RamValid, before.RamValid) << failing;
      EXPECT_EQ(panel.txbID.Text(), "11") << failing;
      EXPECT_EQ(panel.cbxSimulated.Value(), value) << failing;
      port.onOutput = answer;
    }
  }
}

TEST_P(ReadOf61Test, OnTheMenusWordShowsItsProgress) {
  std::vector<std::string> progress;
  test::NoteProgress(ground, progress);
  After(milliseconds(100), [this, &progress] {
    progress.clear();
    EXPECT_TRUE(Click(panel.mReadfromsensor));
    EXPECT_EQ(ground.msg.Label1.Text(), "Please wait");
    EXPECT_TRUE(ground.msg.Visible());
  });
  Run(milliseconds(1500));
  EXPECT_THAT(progress, ElementsAre("Reading from sensor"));
  EXPECT_FALSE(ground.msg.Visible());
  EXPECT_THAT(ground.ui.Texts(), IsEmpty());
}

TEST_P(ReadOf61Test, ThatFailsIsToldByTheLoop) {
  After(milliseconds(100), [this] {
    test::PullOff(port);
    EXPECT_TRUE(Click(panel.btnReadFromSensor));
    EXPECT_TRUE(ground.msg.Visible());
  });
  Run(seconds(60));
  // Then the poll fails too.
  EXPECT_THAT(ground.ui.Texts(), ElementsAre("Can't read from sensor", kNoSensor));
}

TEST_P(ReadOf61Test, AnotherPlatformIsNotReadAnyFurther) {
  constexpr std::uint8_t kPartOf6 = 88;
  port.sensor.Ram()[65] = kPartOf6;
  const auto before = ground.image;
  EXPECT_FALSE(panel.ActionSensorRead());
  EXPECT_THAT(port.sensor.Frames(), ElementsAre(kAskPart));
  EXPECT_EQ(session.LastError, "");
  EXPECT_EQ(ground.image.RamImage, before.RamImage);
  EXPECT_EQ(ground.image.EepromImage, before.EepromImage);
}

class ReadOf7Test : public Frm61SensorTest {
 protected:
  ReadOf7Test() : Frm61SensorTest({7, 2}) {}
};

TEST_F(ReadOf7Test, AsksHowEachChannelOfARowIsScaledOnce) {
  auto other = sample;
  PutBytes(other, 925, {0x09, 1, 0xF9, 2, 0x3D});  // channels 9, 9 and 13
  PutBytes(other, 801, {5 << 2 | 3});
  PutBytes(other, 805, {5 << 2 | 2});
  Hold(other);
  EXPECT_TRUE(panel.ActionSensorRead());
  const auto frames = port.sensor.Frames();
  ASSERT_EQ(frames.size(), 18U);
  // 801 and 802 with the even address before them, 805 and 806 likewise.
  EXPECT_THAT(std::vector(frames.end() - 4, frames.end()),
              ElementsAre(ReadLong(4, 800), ReadLong(4, 804), ReadLong(2, 796), ReadLong(2, 798)));
  EXPECT_THAT(Texts(panel.rows.lblAlarm7Level), ElementsAre("150", "300", "19"));
}

TEST_F(ReadOf7Test, WithoutTheScaleOfARowItFails) {
  auto other = sample;
  PutBytes(other, 16, {12});
  PutBytes(other, 925, {9, 1, 9, 2, 13});
  Hold(other);
  const auto before = ground.image;
  // Of 18 frames the last four ask for channels.
  for (const std::size_t failing : {14U, 15U, 16U, 17U}) {
    session.LastError.clear();
    Listen();
    const auto answer = port.onOutput;
    FallSilentAt(failing);
    EXPECT_FALSE(panel.ActionSensorRead()) << failing;
    EXPECT_EQ(session.LastError, "Can't read from sensor") << failing;
    EXPECT_EQ(ground.image.EepromImage, before.EepromImage) << failing;
    EXPECT_EQ(panel.txbID.Text(), "7") << failing;
    port.onOutput = answer;
  }
  session.LastError.clear();
  EXPECT_TRUE(panel.ActionSensorRead());
}

TEST_F(ReadOf7Test, HowAChannelIsScaledIsNotAskedAgain) {
  auto other = sample;
  PutBytes(other, 925, {4, 1, 4, 2, 4});
  Hold(other);
  EXPECT_TRUE(panel.ActionSensorRead());
  HoldWord(24, 2090);
  Listen();
  EXPECT_TRUE(panel.ActionSensorReadM());
  EXPECT_EQ(panel.txbCHact[2].Text(), "20.9");
  EXPECT_EQ(port.sensor.Frames().size(), 3U);
  // Nor by a row that gets another channel.
  Listen();
  Choose(panel.rows.lblAlarm7Channel[0], 2);
  EXPECT_EQ(panel.rows.lblAlarm7Level[0].Text(), "15");
  EXPECT_TRUE(port.Events().empty());
}

TEST_F(ReadOf7Test, TheMarkOfTheLayoutIsNotRead) {
  sample[1023] = 1;
  Hold(sample);
  EXPECT_TRUE(panel.ActionSensorRead());
  EXPECT_EQ(ground.image.EepromImage[1023], 2);
  EXPECT_THAT(port.sensor.Frames(), testing::Not(testing::Contains(ReadLong(2, 1022))));
  // Nor by whoever asks for the variant.
  Listen();
  EXPECT_TRUE(Click(panel.mHelp));
  EXPECT_THAT(ground.ui.opened, ElementsAre("C:\\KVX\\help7v2.html"));
  EXPECT_TRUE(port.Events().empty());
}

TEST_F(ReadOf7Test, APollWithoutTheScaleOfItsValuesFailsAndShowsNone) {
  for (const std::size_t at : {796U, 797U, 798U, 799U}) ground.image.EepromValid[at] = false;
  for (auto* field : panel.txbCHact) field->SetText("x");
  FallSilentAt(3);
  EXPECT_FALSE(panel.ActionSensorReadM());
  EXPECT_EQ(session.LastError, "Can't read from sensor");
  EXPECT_THAT(Texts(panel.txbCHact), Each("x"));
}

// Send to sensor

class SendOf61Test : public EachFrm61SensorTest {};
INSTANTIATE_TEST_SUITE_P(, SendOf61Test, testing::Values(Product61{61, 0}, Product61{61, 1}),
                         test::ProductName);

TEST_P(SendOf61Test, SendsTheWordsThatHaveChangedAndHasThemSaved) {
  panel.txbID.SetText("12");
  panel.alarms.txbAlarm061Level[3].SetText("17.05");
  EXPECT_TRUE(panel.ActionSensorWrite());
  std::vector<Bytes> expected{kUnlock, Framed({10, 16, 12, sample[33]})};
  // 5000 + 1705 = 26 x 256 + 49, on the variant that has levels.
  if (product.variant == 0) expected.push_back(Framed({10, 42, 26, 49}));
  Append(expected, {kLock, kSaveToRam});
  EXPECT_EQ(port.sensor.Frames(), expected);
  auto held = sample;
  held[32] = 12;
  if (product.variant == 0) PutBytes(held, 84, {26, 49});
  EXPECT_EQ(Held(), held);
  EXPECT_TRUE(port.sensor.Locked());
  EXPECT_FALSE(port.PortOpen());
  EXPECT_EQ(session.LastError, "");
}

TEST_P(SendOf61Test, WithNothingChangedNoByteIsSent) {
  EXPECT_TRUE(panel.ActionSensorWrite());
  EXPECT_THAT(port.sensor.Frames(), ElementsAre(kUnlock, kLock, kSaveToRam));
  EXPECT_EQ(Held(), sample);
}

TEST_P(SendOf61Test, AnyChangedByteOfEepromIsSent) {
  for (const std::size_t address : {0U, 255U, 511U}) ground.image.EepromImage[address] = 200;
  EXPECT_TRUE(panel.ActionSensorWrite());
  EXPECT_THAT(port.sensor.Frames(),
              ElementsAre(kUnlock, Framed({10, 0, 200, sample[1]}), Framed({10, 127, sample[254], 200}),
                          Framed({10, 255, sample[510], 200}), kLock, kSaveToRam));
}

TEST_P(SendOf61Test, StopsAtItsFirstFailure) {
  const std::vector<std::string> errors{"Can't unlock EEPROM", "Can't save to sensor", "Can't lock EEPROM",
                                        "Can't save to RAM"};
  for (std::size_t failing = 0; failing < errors.size(); ++failing) {
    session.LastError.clear();
    Listen();
    panel.txbID.SetText(std::to_string(20 + failing));
    const auto answer = port.onOutput;
    FallSilentAt(failing);
    panel.ActionSensorWrite();
    EXPECT_EQ(session.LastError, errors[failing]);
    EXPECT_EQ(port.sensor.Frames().size(), failing);
    EXPECT_FALSE(port.PortOpen()) << failing;
    port.onOutput = answer;
  }
}

TEST_P(SendOf61Test, AnIdThatIsNoByteIsNotSent) {
  panel.txbID.SetText("1.5");
  EXPECT_FALSE(panel.ActionSensorWrite());
  EXPECT_EQ(session.LastError, "Can't save to sensor");
  EXPECT_EQ(Held(), sample);
}

class SendOf7Test : public EachFrm61SensorTest {
 protected:
  /// Five pieces, each unlocked before, locked after and saved.
  static std::vector<Bytes> WholeSettings(const Bytes& memory) {
    struct Piece {
      std::size_t address;
      std::size_t count;
    };
    std::vector<Bytes> frames;
    for (const auto& [address, count] :
         {Piece{16, 1}, Piece{834, 24}, Piece{925, 8}, Piece{1023, 1}, Piece{385, 4}}) {
      frames.push_back(kUnlock);
      Append(frames, WriteLong(memory, address, count));
      Append(frames, {kLock, kSaveToRam});
    }
    return frames;
  }
  /// Takes every byte for changed.
  void ForgetWhatTheSensorHolds() { ground.image.EepromRead.fill(-1); }
};
INSTANTIATE_TEST_SUITE_P(, SendOf7Test, testing::Values(Product61{7, 1}, Product61{7, 2}), test::ProductName);

TEST_P(SendOf7Test, SendsFivePiecesEachSavedOnItsOwn) {
  ForgetWhatTheSensorHolds();
  EXPECT_TRUE(panel.ActionSensorWrite());
  auto memory = sample;
  memory[1023] = 2;
  const auto expected = WholeSettings(memory);
  EXPECT_EQ(port.sensor.Frames(), expected);
  // By hand: the first piece, a full page's last two bytes, a piece of eight from an odd address.
  ASSERT_EQ(expected.size(), 28U);
  EXPECT_EQ(expected[1], (Bytes{9, 0, 16, 7, 32}));
  EXPECT_EQ(expected[5], Framed({12, 3, 66, 5, 220, 0x45, 17}));
  EXPECT_EQ(expected[8], Framed({10, 3, 78, 7, 108}));
  EXPECT_EQ(expected[15], Framed({11, 3, 157, 0xA5, 1, 0x35}));
  EXPECT_EQ(expected[17], Framed({9, 3, 164, 4}));
  EXPECT_EQ(expected[21], (Bytes{9, 3, 255, 2, 13}));
  EXPECT_EQ(expected[25], Framed({12, 1, 129, 4, 5, 6, 8}));
  EXPECT_EQ(Held(), memory);
  EXPECT_TRUE(port.sensor.Locked());
  EXPECT_FALSE(port.PortOpen());
  EXPECT_EQ(port.sensor.Count().saves, 5);
}

TEST_P(SendOf7Test, SendsOnlyWhatHasChanged) {
  panel.txbID.SetText("12");
  panel.rows.lblAlarm7Level[1].SetText("2.5");
  panel.rows.lblAlarm7Slope[2].SetText(">");
  Choose(panel.rows.lblAlarm7Channel[2], 1);
  panel.lblDisp[3].SetText("Temp");
  EXPECT_TRUE(panel.ActionSensorWrite());
  std::vector<Bytes> expected{kUnlock, Framed({9, 0, 16, 12}), kLock, kSaveToRam, kUnlock};
  // 2.5 is 2500 = 9 x 256 + 196, in O2 after row 2 has changed 1900 to the same 1900 of CO2.
  Append(expected, {Framed({10, 3, 72, 9, 196}), Framed({9, 3, 80, 0x12}), kLock, kSaveToRam, kUnlock,
                    Framed({9, 3, 161, 0x95}), kLock, kSaveToRam, kUnlock});
  if (product.variant == 1) expected.push_back({9, 3, 255, 2, 13});
  Append(expected, {kLock, kSaveToRam, kUnlock, Framed({9, 1, 132, 4}), kLock, kSaveToRam});
  EXPECT_EQ(port.sensor.Frames(), expected);
}

TEST_P(SendOf7Test, ALayoutThatWasNeverReadIsMarkedAnyway) {
  EXPECT_TRUE(panel.ActionSensorRead());
  Listen();
  EXPECT_TRUE(panel.ActionSensorWrite());
  EXPECT_THAT(port.sensor.Frames(), testing::Contains(Bytes{9, 3, 255, 2, 13}));
  EXPECT_EQ(port.sensor.Frames().size(), 16U);
}

TEST_P(SendOf7Test, SendsNothingElseOfTheMemory) {
  for (const std::size_t address : {15U, 17U, 384U, 389U, 833U, 858U, 924U, 933U, 976U, 1022U}) {
    ground.image.EepromImage[address] = static_cast<float>((sample[address] + 1) % 256);
  }
  EXPECT_TRUE(panel.ActionSensorWrite());
  auto memory = sample;
  memory[1023] = 2;
  EXPECT_EQ(Held(), memory);
}

TEST_P(SendOf7Test, StopsAtItsFirstFailure) {
  auto memory = sample;
  memory[1023] = 2;
  const auto frames = WholeSettings(memory);
  for (std::size_t failing = 0; failing < frames.size(); ++failing) {
    session.LastError.clear();
    Listen();
    ForgetWhatTheSensorHolds();
    const auto answer = port.onOutput;
    FallSilentAt(failing);
    panel.ActionSensorWrite();
    EXPECT_EQ(port.sensor.Frames(),
              std::vector<Bytes>(frames.begin(), frames.begin() + static_cast<std::ptrdiff_t>(failing)));
    EXPECT_EQ(session.LastError, frames[failing] == kUnlock      ? "Can't unlock EEPROM"
                                 : frames[failing] == kLock      ? "Can't lock EEPROM"
                                 : frames[failing] == kSaveToRam ? "Can't save to RAM"
                                                                 : "Can't save to sensor")
        << failing;
    EXPECT_FALSE(port.PortOpen()) << failing;
    port.onOutput = answer;
  }
}

class SendOfAllTest : public EachFrm61SensorTest {};
INSTANTIATE_TEST_SUITE_P(, SendOfAllTest, Products61(), test::ProductName);

TEST_P(SendOfAllTest, OnTheMenusWordShowsItsProgress) {
  for (auto* control : {&panel.mSendtosensor, &panel.btnSendToSensor}) {
    std::vector<std::string> progress;
    const auto answer = port.onOutput;
    test::NoteProgress(ground, progress);
    After(milliseconds(100), [&] {
      progress.clear();
      EXPECT_TRUE(Click(*control));
      EXPECT_EQ(ground.msg.Label1.Text(), "Please wait");
      EXPECT_TRUE(ground.msg.Visible());
    });
    Run(milliseconds(1500));
    EXPECT_THAT(progress, ElementsAre("Sending to sensor"));
    EXPECT_FALSE(ground.msg.Visible());
    EXPECT_THAT(ground.ui.Texts(), IsEmpty());
    port.onOutput = answer;
  }
}

TEST_P(SendOfAllTest, AFailureIsToldByTheLoop) {
  After(milliseconds(100), [this] {
    Listen();
    FallSilentAt(1);
    panel.txbID.SetText("12");
    EXPECT_TRUE(Click(panel.mSendtosensor));
  });
  Run(milliseconds(5000));
  EXPECT_EQ(ground.ui.Texts().front(), "Can't save to sensor");
}

TEST_P(SendOfAllTest, WhatIsSentIsReadAgain) {
  panel.txbID.SetText("12");
  if (IsOn61() && product.variant == 0) panel.alarms.txbAlarm061Level[1].SetText("4.5");
  if (!IsOn61()) panel.rows.lblAlarm7Level[1].SetText("4.5");
  EXPECT_TRUE(panel.ActionSensorWrite());
  panel.txbID.SetText("1");
  EXPECT_TRUE(panel.ActionSensorRead());
  EXPECT_EQ(panel.txbID.Text(), "12");
  if (IsOn61() && product.variant == 0) {
    EXPECT_EQ(panel.alarms.txbAlarm061Level[1].Text(), "4.5");
  }
  if (!IsOn61()) {
    EXPECT_EQ(panel.rows.lblAlarm7Level[1].Text(), "4.5");
  }
}

TEST_P(SendOfAllTest, TheResetDoesNothing) {
  EXPECT_TRUE(panel.ActionTWAReset());
  EXPECT_THAT(port.sensor.Frames(), IsEmpty());
  After(milliseconds(100), [this] {
    Listen();
    EXPECT_TRUE(Click(panel.mTWAreset));
    EXPECT_EQ(session.PanelCommand, 13);
    EXPECT_EQ(ground.msg.Label1.Text(), "Please wait");
  });
  Run(milliseconds(1500));
  EXPECT_THAT(port.sensor.Frames(), IsEmpty());
  EXPECT_EQ(session.PanelCommand, 0);
  EXPECT_FALSE(ground.msg.Visible());
  EXPECT_THAT(ground.ui.Texts(), IsEmpty());
}

TEST_P(SendOfAllTest, ExitIsACommandOfTheLoop) {
  EXPECT_TRUE(Click(panel.mExit));
  EXPECT_EQ(session.PanelCommand, 14);
  EXPECT_EQ(ground.msg.Label1.Text(), "Please wait");
  EXPECT_EQ(ground.sessionsEnded, 0);
  Run(seconds(1));
  EXPECT_EQ(ground.sessionsEnded, 1);
}

TEST_P(SendOfAllTest, HelpIsThatOfPlatformAndVariant) {
  EXPECT_TRUE(Click(panel.mHelp));
  // The panel has marked the layout by then.
  const int variant = product.platform == 7 ? 2 : product.variant;
  EXPECT_THAT(ground.ui.opened, ElementsAre("C:\\KVX\\help" + std::to_string(product.platform) + "v" +
                                            std::to_string(variant) + ".html"));
}

// Settings files

/// The bytes that a settings file of platform 61 restores.
bool IsSetting(std::size_t address) {
  const auto in = [address](std::size_t from, std::size_t to) { return address >= from && address <= to; };
  return in(32, 32) || in(50, 51) || in(76, 81) || in(84, 85) || in(222, 223);
}
Bytes Saved(const Bytes& eeprom, const std::function<bool(std::size_t)>& isSelected = IsSetting) {
  Bytes selection(30);
  for (std::size_t i = 0; i < 512; ++i) selection.push_back(isSelected(i) ? 255 : 0);
  return SettingsFile({{10, eeprom}, {15, selection}});
}

class SettingsOf61Test : public Frm61Test, public testing::WithParamInterface<Product61> {
 protected:
  SettingsOf61Test() : sample(SampleOf(GetParam())) { Show(GetParam()); }

  void Choose(const std::optional<std::string>& name) { ground.ui.chosenFiles.push_back(name); }
  void ClickInTheLoop(const std::string& entry) {
    panel.SimMode(true);
    After(seconds(1), [this, entry] {
      EXPECT_TRUE(Click(Entry(entry)));
      EXPECT_EQ(ground.msg.Label1.Text(), "Please wait");
    });
    Run(seconds(5));
  }

  Bytes sample;
};
INSTANTIATE_TEST_SUITE_P(, SettingsOf61Test, testing::Values(Product61{61, 0}, Product61{61, 1}),
                         test::ProductName);

TEST_P(SettingsOf61Test, SavesTheEepromAndThenTheSelection) {
  Choose(kFile);
  EXPECT_TRUE(panel.ActionSettingsSave());
  const auto file = ground.files.Get(kFile);
  EXPECT_EQ(file, Saved(sample));
  EXPECT_EQ(file[5], 2);
  EXPECT_EQ(file[17], 10);
  EXPECT_EQ(file[17 + 4 + 512], 15);
  EXPECT_TRUE(ground.port.Events().empty());
  EXPECT_EQ(ground.ui.dialogs.at(0).filter, "(*.Set)|*.Set");
  EXPECT_EQ(ground.ui.dialogs.at(0).use, UserInterface::FileUse::save);
}

TEST_P(SettingsOf61Test, SavesTheWholeEepromWhateverWasSelected) {
  ground.image.ReadRequest.fill(255);
  ground.image.SetBuffer.fill(1);
  Choose(kFile);
  EXPECT_TRUE(panel.ActionSettingsSave());
  EXPECT_EQ(ground.files.Get(kFile), Saved(sample));
}

TEST_P(SettingsOf61Test, ASaveTakesTheFormFirst) {
  panel.txbID.SetText("12");
  Choose(kFile);
  EXPECT_TRUE(panel.ActionSettingsSave());
  auto expected = sample;
  expected[32] = 12;
  EXPECT_EQ(ground.files.Get(kFile), Saved(expected));
}

TEST_P(SettingsOf61Test, ASaveThatFailsIsTold) {
  ground.files.Break(kFile);
  Choose(kFile);
  ClickInTheLoop("mSavesettings");
  EXPECT_EQ(ground.ui.Texts().size(), 1U);
}

TEST_P(SettingsOf61Test, ACancelledDialogIsSilentAndTakesNothing) {
  panel.txbID.SetText("12");
  for (const char* entry : {"mSavesettings", "mLoadsettings"}) {
    for (const std::optional<std::string>& name :
         {std::optional<std::string>(), std::optional<std::string>("")}) {
      Choose(name);
      ClickInTheLoop(entry);
    }
  }
  EXPECT_THAT(ground.ui.Texts(), IsEmpty());
  EXPECT_EQ(Eeprom(), sample);
  EXPECT_EQ(panel.txbID.Text(), "12");
}

TEST_P(SettingsOf61Test, LoadTakesTheSettingsOfTheFileAndLeavesTheRest) {
  auto other = sample;
  for (std::size_t i = 0; i < 308; ++i) other[i] = static_cast<std::uint8_t>(other[i] + 1);
  // What tells the model.
  for (const std::size_t address : {90U, 164U, 165U, 170U, 171U, 172U, 173U})
    other[address] = sample[address];
  ground.files.Put(kFile, Saved(other));
  Choose(kFile);
  EXPECT_TRUE(panel.ActionSettingsLoad());
  auto expected = sample;
  for (std::size_t i = 0; i < 512; ++i) {
    if (IsSetting(i)) expected[i] = other[i];
  }
  EXPECT_EQ(Eeprom(), expected);
  EXPECT_EQ(ground.session.LastError, "");
  EXPECT_EQ(panel.txbID.Text(), "8");
  EXPECT_EQ(ground.ui.dialogs.at(0).filter, "(*.Set)|*.Set");
  EXPECT_EQ(ground.ui.dialogs.at(0).use, UserInterface::FileUse::open);
}

TEST_P(SettingsOf61Test, LoadTakesTheFormFirstAndLaysThePanelOutBeforeItFillsIt) {
  auto other = sample;
  other[32] = 20;
  PutBytes(other, 50, {0x45, 0x44});
  // The file has the displays alone, so that a typed ID is kept.
  ground.files.Put(kFile, Saved(other, [](std::size_t at) { return at == 50 || at == 51; }));
  panel.txbID.SetText("012");
  panel.mCHannel[4].SetText("old");
  panel.lblCH_Name[0].SetText("old");
  Choose(kFile);
  EXPECT_TRUE(panel.ActionSettingsLoad());
  EXPECT_THAT(Eeprom(32, 1), ElementsAre(12));
  EXPECT_EQ(panel.txbID.Text(), "12");
  EXPECT_EQ(panel.lblCH_Name[0].Text(), "TEMP");
  EXPECT_THAT(Texts(panel.lblDisp), ElementsAre("CO2", "TEMP", "TEMP", "TEMP"));
}

TEST_P(SettingsOf61Test, ALoadAfterASaveChangesNothing) {
  Choose(kFile);
  EXPECT_TRUE(panel.ActionSettingsSave());
  Choose(kFile);
  EXPECT_TRUE(panel.ActionSettingsLoad());
  EXPECT_EQ(Eeprom(), sample);
}

TEST_P(SettingsOf61Test, AFileOfAnotherModelIsRefusedAndTheFieldsStay) {
  for (const int variant : {0, 1, 3}) {
    if (variant == GetParam().variant) continue;
    ground.ui.messages.clear();
    auto other = sample;
    other[32] = 20;
    other[173] = static_cast<std::uint8_t>(variant);
    ground.files.Put(kFile, Saved(other));
    Choose(kFile);
    ClickInTheLoop("mLoadsettings");
    EXPECT_THAT(ground.ui.Texts(), ElementsAre("This setfile can't be used on this sensor")) << variant;
    EXPECT_EQ(Eeprom(), sample) << variant;
    EXPECT_EQ(panel.txbID.Text(), "7");
  }
}

TEST_P(SettingsOf61Test, AFileWithoutASelectionIsRefused) {
  ground.files.Put(kFile, SettingsFile(10, sample));
  Choose(kFile);
  ClickInTheLoop("mLoadsettings");
  EXPECT_THAT(ground.ui.Texts(), ElementsAre("Setfile error"));
}

TEST_P(SettingsOf61Test, BothShowTheirProgress) {
  Choose(kFile);
  EXPECT_TRUE(panel.ActionSettingsSave());
  EXPECT_EQ(ground.msg.Label1.Text(), "Saving settings");
  Choose(kFile);
  EXPECT_TRUE(panel.ActionSettingsLoad());
  EXPECT_EQ(ground.msg.Label1.Text(), "Loading settings");
}

}  // namespace
}  // namespace brelant
