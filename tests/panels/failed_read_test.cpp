// SPDX-License-Identifier: GPL-3.0-or-later
// "Read from sensor" that does not come to its end.
#include "app/settings_file.h"
#include "panels/each_panel5.h"
#include "panels/loop_act.h"

namespace brelant {
namespace {

using std::chrono::seconds;
using test::Bytes;
using test::Click;
using test::RamBytes;
using test::SettingsFile5;
using testing::ElementsAre;
using testing::IsEmpty;

constexpr const char* kFile = "C:\\Files\\a.set";

class FailedReadTest : public test::EachPanel5Test {
 protected:
  FailedReadTest() : ram(GetParam().ram()), answer(port.onOutput) {}

  /// Another sensor's bytes: none of them may get into the image by halves.
  RamBytes OtherRam() const {
    auto other = ram;
    for (auto& byte : other) byte = static_cast<std::uint8_t>(byte + 1);
    std::copy(ram.begin() + 65, ram.begin() + 68, other.begin() + 65);
    other[226] = ram[226];
    return other;
  }
  /// From that frame of the read on `act` decides whether the sensor hears.
  void FromFrame(std::size_t frame, std::function<bool()> act) {
    port.onOutput = [this, frame, act = std::move(act)](const Bytes& bytes) {
      if (port.sensor.Frames().size() < frame || act()) answer(bytes);
    };
  }
  void SilenceFrom(std::size_t frame) {
    FromFrame(frame, [] { return false; });
  }
  void CancelAt(std::size_t frame) {
    FromFrame(frame, [this] {
      if (session.LastError.empty()) {
        EXPECT_TRUE(Click(ground.msg.Command1));
      }
      return true;
    });
  }
  void AnswerAgain() {
    port.onOutput = answer;
    port.sensor.ForgetFrames();
  }
  /// In the loop, behind its first poll.
  void ClickInTheLoop(const std::string& entry, const std::function<void()>& arm = {}) {
    ground.pump.After(seconds(1), [this, entry, arm] {
      port.sensor.ForgetFrames();
      if (arm) arm();
      EXPECT_TRUE(Click(Entry(entry))) << entry;
    });
    test::RunLoop(ground, *panel, seconds(60));
  }
  /// The user's read of a sensor that has changed altogether; it ends in the middle.
  void ReadAndFail() {
    ClickInTheLoop("mReadfromsensor", [this] {
      Hold(port, OtherRam());
      SilenceFrom(20);
    });
    EXPECT_THAT(ground.ui.Texts(), ElementsAre("Can't read from sensor"));
    AnswerAgain();
  }
  void ExpectAsBefore() const {
    EXPECT_EQ(ground.image.RamImage, before.RamImage);
    EXPECT_EQ(ground.image.RamRead, before.RamRead);
    EXPECT_EQ(ground.image.RamValid, before.RamValid);
    EXPECT_EQ(ground.image.EepromImage, before.EepromImage);
    EXPECT_EQ(ground.image.EepromRead, before.EepromRead);
    EXPECT_EQ(ground.image.EepromValid, before.EepromValid);
  }

  RamBytes ram;
  SensorImage before;
  std::function<void(const Bytes&)> answer;
};
INSTANTIATE_TEST_SUITE_P(, FailedReadTest, test::BothPanels(), test::KindName);

TEST_P(FailedReadTest, LeavesTheImageAsItWas) {
  StraightTables();
  ground.image.RamValid[40] = false;
  ground.image.RamImage[41] = 12.5F;
  before = ground.image;
  Hold(port, OtherRam());
  // The first of the 44 frames, some in the middle, and the last.
  for (const std::size_t frame : {0, 1, 17, 30, 43}) {
    AnswerAgain();
    SilenceFrom(frame);
    EXPECT_FALSE(panel->ActionSensorRead()) << frame;
    EXPECT_EQ(session.LastError, "Can't read from sensor");
    ExpectAsBefore();
    session.LastError.clear();
  }
}

TEST_P(FailedReadTest, LeavesItSoWhenItIsCancelled) {
  StraightTables();
  for (const std::size_t frame : {0, 1, 17, 30, 42}) {
    Hold(port, ram);
    AnswerAgain();
    panel->cbxSimulated.SetValue(0);
    ClickInTheLoop("mReadfromsensor", [this, frame] {
      before = ground.image;
      Hold(port, OtherRam());
      CancelAt(frame);
    });
    // The exchange that runs is ended, none is begun.
    EXPECT_EQ(port.sensor.Frames().size(), frame + 1);
    EXPECT_EQ(panel->cbxSimulated.Value(), 1);
    ExpectAsBefore();
  }
  EXPECT_TRUE(ground.ui.messages.empty());
}

TEST_P(FailedReadTest, LeavesTheFieldsAsTheyWere) {
  Entry("txbID").SetText("12");
  SilenceFrom(20);
  EXPECT_FALSE(panel->ActionSensorRead());
  EXPECT_EQ(Entry("txbID").Text(), "12");
  EXPECT_EQ(panel->cbxSimulated.Value(), 1);
}

TEST_P(FailedReadTest, ASendBehindItSendsTheOldSettings) {
  ReadAndFail();
  ClickInTheLoop("mSendtosensor");
  EXPECT_EQ(ground.ui.Texts().size(), 1U);
  ASSERT_GE(port.sensor.Count().saves, 1);
  // What a send writes of the image on an undisturbed line.
  test::SensorGround undisturbed{bench::SensorSetup{.part = 104}};
  undisturbed.Define(104, test::ChartChannels());
  const auto other = GetParam().make(undisturbed.context);
  Hold(undisturbed.port, OtherRam());
  undisturbed.Load(ram);
  other->FormUpdateInit();
  other->FormUpdate();
  other->FormUpdateM();
  EXPECT_TRUE(other->ActionSensorWrite());
  EXPECT_EQ(Held(port), Held(undisturbed.port));
  EXPECT_NE(Held(port), OtherRam());
}

TEST_P(FailedReadTest, ASaveBehindItWritesTheOldBytes) {
  ReadAndFail();
  ground.ui.chosenFiles = {kFile};
  ClickInTheLoop("mSavesettings");
  EXPECT_EQ(ground.files.Get(kFile), SettingsFile5(ram));
  // The check box is set: the sensor is not asked.
  EXPECT_THAT(port.sensor.Frames(), IsEmpty());
}

TEST_P(FailedReadTest, AReadBehindItReadsAll) {
  const auto other = OtherRam();
  ReadAndFail();
  ClickInTheLoop("mReadfromsensor");
  EXPECT_EQ(ground.ui.Texts().size(), 1U);
  auto expected = other;
  // With TWA off, showing it copies the unit.
  if (GetParam().name == "frm5Chart" && other[162] != 3) expected[207] = other[205];
  EXPECT_EQ(Image(), expected);
  EXPECT_EQ(panel->cbxSimulated.Value(), 0);
}

}  // namespace
}  // namespace brelant
