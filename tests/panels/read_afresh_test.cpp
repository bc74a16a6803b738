// SPDX-License-Identifier: GPL-3.0-or-later
// What a person does while "Read from sensor" is under way (docs/architecture.md, A read of all settings),
// and a settings file that is refused.
#include "panels/read_afresh.h"

#include "panels/frm6_fixture.h"

namespace brelant {
namespace {

using test::Act;
using test::Click;
using test::Clicked;
using test::EepromBytes;
using test::Entered;
using test::ExpectSame;
using test::kPart88;
using test::Put;
using test::ReadAfreshOn;
using test::SampleEeprom;
using test::SampleRam;
using test::Type;
using test::Typed;
using testing::ElementsAre;

constexpr const char* kFile = "C:\\Files\\a.set";

// Platform 5

class ReadAfreshOf5Test : public ReadAfreshOn<test::Frm5TestOn<test::SensorPort>> {
 protected:
  ReadAfreshOf5Test() : ReadAfreshOn(bench::SensorSetup{.part = 104}) {}

  void ShowOld() override {
    ground.image.Clear();
    ASSERT_TRUE((Show(SampleRam()), ground.definitions.LoadDefinition()));
  }
  void Exchange() override {
    auto other = SampleRam();
    other[31] = 1;                  // display mode 1
    Put(other, 162, {1, 148, 80});  // CO2 from 5200 - 5000 = 200
    other[189] = 4 | 16;
    other[208] = 12;
    Hold(ground.port, other);
  }
  std::vector<Act> Acts() override {
    return {Typed(panel.rows.txbFa[0], "600"),    Entered(panel.rows.txbFa[0], "600"),
            Typed(panel.txbShiftBamount, "250"),  Typed(panel.txbOutBaseLine[0], "50"),
            Typed(panel.txbOutIntTime[1], "64"),  Typed(panel.trigger.txbDigTtime, "5"),
            Typed(panel.txbCHact[0], "25"),       Typed(panel.txbID, "20"),
            Clicked(panel.optOut5Digital[0]),     Clicked(panel.rows.FeedsOf(1)[4]),
            Clicked(panel.trigger.cbxDigTout[1]), Chosen(panel.rows.lblFchannel[0], 0),
            Chosen(panel.lblShiftb, 0),           Chosen(panel.lblDisplayMode, 3),
            Chosen(panel.trigger.lblDigTunit, 0), Chosen(panel.lblCH_Type[0], 1)};
  }
};

TEST_F(ReadAfreshOf5Test, NothingIsTakenWhileItRuns) {
  ExpectNothingTaken({1, 20, 43});
  EXPECT_EQ(panel.txbID.Text(), "12");
  EXPECT_EQ(panel.rows.txbFa[0].Text(), "200");
  EXPECT_EQ(panel.lblDisplayMode.Text(), "Mode 1");
}

TEST_F(ReadAfreshOf5Test, AFailedOneGivesTheImageBackAndFieldsAreTakenAgain) {
  ExpectGivenBack(20, panel.rows.txbFa[0], "600", [](SensorImage& image) {
    image.RamImage[163] = 128 | 21;  // 5600, + sign
    image.RamImage[164] = 224;
  });
}

// Platform 6

class ReadAfreshOf6Test : public ReadAfreshOn<test::Frm6SensorTest> {
 protected:
  explicit ReadAfreshOf6Test(std::uint8_t part = kPart88, int variant = 0) : ReadAfreshOn(part, variant) {}

  void ShowOld() override { Show(sample); }
  void Exchange() override { Hold(Other()); }
  virtual EepromBytes Other() const {
    auto other = sample;
    other[32] = 12;
    Put(other, 50, {0x3B, 0x26});
    other[96] = 38;
    Put(other, 107, {148, 80});  // CO2 from 5200 - 5000 = 200, + sign
    Put(other, 138, {2 | 16, 192});
    return other;
  }
  std::vector<Act> Acts() override {
    return {Typed(panel.rows.txbFa[0], "600"),
            Entered(panel.rows.txbFb[1], "30"),
            Typed(panel.txbDigLevel, "10"),
            Typed(panel.outputs.txbOutBaseLine[1], "50"),
            Typed(panel.outputs.txbOutIntTime[0], "64"),
            Typed(panel.trigger.txbDigTtime, "5"),
            Typed(panel.trigger.txbDigTlevel, "20"),
            Typed(panel.txbID, "20"),
            Clicked(panel.outputs.optOut6Digital[0]),
            Clicked(panel.outputs.optOut6TMO[1]),
            Clicked(panel.outputs.cbxOut6Invert[0]),
            Clicked(panel.outputs.cbxDigout[0]),
            Clicked(panel.rows.FeedsOf(1)[4]),
            Clicked(panel.trigger.cbxDigTout[1]),
            Chosen(panel.rows.lblFchannel[0], 0),
            Chosen(panel.lblDisp[0], 1),
            Chosen(panel.trigger.lblDigTunit, 1)};
  }
};

TEST_F(ReadAfreshOf6Test, NothingIsTakenWhileItRuns) {
  ExpectNothingTaken({1, 40, 86});
  EXPECT_EQ(panel.txbID.Text(), "12");
  EXPECT_EQ(panel.rows.txbFa[0].Text(), "200");
  EXPECT_EQ(panel.rows.FeedsOf(0)[1].Value(), 1);
}

TEST_F(ReadAfreshOf6Test, AFailedOneGivesTheImageBackAndFieldsAreTakenAgain) {
  ExpectGivenBack(40, panel.rows.txbFa[0], "600", [](SensorImage& image) {
    image.EepromImage[107] = 128 | 21;  // 5600, + sign
    image.EepromImage[108] = 224;
  });
}

/// A damper from 1 to 100 %, then one from 21 to 81 %.
class ReadAfreshOfVavTest : public ReadAfreshOf6Test {
 protected:
  ReadAfreshOfVavTest() : ReadAfreshOf6Test(222, 1) {}

  EepromBytes Other() const override {
    auto other = sample;
    other[32] = 12;
    Put(other, 18, {22, 68});  // CO2 5700 - 5000 = 700
    other[129] = 19;           // slope -
    other[139] = 116;
    other[148] = 154;
    return other;
  }
  std::vector<Act> Acts() override {
    auto& vav = panel.vav;
    return {Typed(vav.txbSetPV1Temp, "25"),
            Typed(vav.txbSetPV1CO2, "900"),
            Entered(vav.txbSetPV1CO2, "900"),
            Typed(vav.txbOutV1IntTimeVAV, "64"),
            Typed(vav.txbOutV1IntTime, "64"),
            Typed(vav.txbUseMax, "70"),
            Entered(vav.txbUseMin, "30"),
            Clicked(vav.optV1SlopeNeg),
            Clicked(vav.optV1SlopePos),
            Clicked(vav.Command6),
            Clicked(vav.Command5),
            Clicked(vav.Command1),
            Clicked(vav.Command2),
            Chosen(panel.lblDisp[0], 1)};
  }
};

TEST_F(ReadAfreshOfVavTest, NothingIsTakenAndNoCommandSetWhileItRuns) {
  ExpectNothingTaken({1, 40, 86});
  EXPECT_EQ(panel.txbID.Text(), "12");
  EXPECT_EQ(panel.vav.txbSetPV1CO2.Text(), "700");
  EXPECT_EQ(panel.vav.optV1SlopeNeg.Value(), 1);
  EXPECT_EQ(panel.vav.txbUseMax.Text(), "81");
  EXPECT_EQ(panel.vav.txbUseMin.Text(), "21");
  EXPECT_FALSE(panel.vav.lblV1Note.Visible());
}

TEST_F(ReadAfreshOfVavTest, AFailedOneGivesTheImageBackAndTheButtonsWorkAgain) {
  Begin();
  const auto before = ground.image;
  Arm(
      40, [this] { ExpectIgnored(Clicked(panel.vav.Command6)); }, 42);
  EXPECT_FALSE(panel.ActionSensorRead());
  ExpectActed();
  ExpectSame(ground.image, before);
  EXPECT_TRUE(Click(panel.vav.Command5));
  EXPECT_EQ(session.PanelCommand, 15);
}

class ReadAfreshOfJumperTest : public ReadAfreshOf6Test {
 protected:
  ReadAfreshOfJumperTest() : ReadAfreshOf6Test(kPart88, 3) {}
  std::vector<Act> Acts() override {
    return {Typed(panel.jumper.txb6v3A1, "100"), Entered(panel.jumper.txb6v3C, "2000"),
            Chosen(panel.lblDisp[0], 1)};
  }
};

TEST_F(ReadAfreshOfJumperTest, NothingIsTakenWhileItRuns) {
  ExpectNothingTaken({1, 40, 86});
  EXPECT_EQ(panel.txbID.Text(), "12");
}

class ReadAfreshOfSequentialTest : public ReadAfreshOf6Test {
 protected:
  ReadAfreshOfSequentialTest() : ReadAfreshOf6Test(kPart88, 4) {}
  std::vector<Act> Acts() override {
    std::vector<Act> acts;
    for (auto& control : panel.form.Controls()) {
      if (control.Kind() == ControlKind::text && control.Visible() && control.onLeave) {
        acts.push_back(Typed(control, "17"));
      }
    }
    return acts;
  }
};

TEST_F(ReadAfreshOfSequentialTest, NothingIsTakenWhileItRuns) {
  EXPECT_GT(Acts().size(), 5U);
  ExpectNothingTaken({40});
  EXPECT_EQ(panel.txbID.Text(), "12");
}

// A settings file that is refused

class RefusedFileOf222Test : public test::Frm6SensorTest {
 protected:
  RefusedFileOf222Test() : Frm6SensorTest(222, 1) {}
};

TEST_F(RefusedFileOf222Test, OfPart223LeavesTheAttachedSensor) {
  auto other = SampleEeprom(223, 1);
  other[32] = 20;
  ground.files.Put(kFile, test::WholeFile({other.begin(), other.end()}));
  ground.ui.chosenFiles = {kFile};
  EXPECT_FALSE(panel.ActionSettingsLoad());
  EXPECT_EQ(session.LastError, test::kRefusedFile);
  session.LastError.clear();
  EXPECT_EQ(ground.image.RamImage[65], 222);
  EXPECT_EQ(panel.outputs.lblOutName[0].Text(), "Out 1");
  EXPECT_EQ(panel.mCHannel[0].Text(), "Out 1");
  EXPECT_TRUE(panel.vav.txbUseMax.Visible());
  EXPECT_TRUE(panel.ActionSensorReadM());

  // The set-up of the attached part is sent, where the two differ, and nothing else of the file.
  port.sensor.ForgetFrames();
  EXPECT_TRUE(panel.ActionSensorWrite());
  EXPECT_THAT(Writes(), testing::Not(testing::IsEmpty()));
  const auto held = Held();
  EXPECT_EQ(held[32], sample[32]);
  EXPECT_THAT(std::vector(held.begin() + 5, held.begin() + 8), ElementsAre(6, 28, 32));
  EXPECT_EQ(held[126], 0);
  EXPECT_EQ(held[141], 16);
  EXPECT_EQ(port.sensor.Count().refused, 0);
}

}  // namespace
}  // namespace brelant
