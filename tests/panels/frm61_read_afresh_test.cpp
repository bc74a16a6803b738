// SPDX-License-Identifier: GPL-3.0-or-later
// What a person does while "Read from sensor" is under way (docs/architecture.md, A read of all settings),
// what the panel does when another sensor answers, and a settings file that is refused.
#include "panels/frm61_fixture.h"
#include "panels/read_afresh.h"

namespace brelant {
namespace {

using test::Act;
using test::Bytes;
using test::Click;
using test::Clicked;
using test::Entered;
using test::ExpectSame;
using test::Product61;
using test::PutBytes;
using test::ReadAfreshOn;
using test::SampleOf;
using test::Texts;
using test::Type;
using test::Typed;
using testing::Each;
using testing::ElementsAre;

constexpr const char* kFile = "C:\\Files\\a.set";
const Bytes kUnlock{197, 55, 252};

// Platforms 61 and 7

class ReadAfreshOf61Test : public ReadAfreshOn<test::Frm61SensorTest> {
 protected:
  explicit ReadAfreshOf61Test(const Product61& attached = {61, 0}) : ReadAfreshOn(attached) {}

  void ShowOld() override { Show(product); }
  void Exchange() override {
    auto other = sample;
    PutBytes(other, 32, {12});
    PutBytes(other, 50, {0x45, 0x44});
    PutBytes(other, 76, {29, 76});  // 5000 + 2500
    Hold(other);
  }
  std::vector<Act> Acts() override {
    return {Typed(panel.alarms.txbAlarm061Level[0], "2"), Entered(panel.alarms.txbAlarm061Level[3], "17"),
            Typed(panel.txbID, "20"), Chosen(panel.lblDisp[0], 2)};
  }
  /// The person goes off line in the middle of the read and types a value.
  void ExpectNoOffLineValue(std::size_t frame) {
    Begin();
    Arm(frame, [this] {
      EXPECT_TRUE(Click(panel.cbxSimulated));
      ASSERT_EQ(panel.cbxSimulated.Value(), 1);
      ExpectIgnored(Typed(panel.txbCHact[0], "25"));
    });
    EXPECT_TRUE(panel.ActionSensorRead());
    ExpectActed();
    EXPECT_EQ(session.LastError, "");
    EXPECT_EQ(panel.txbID.Text(), "12");
  }
};

TEST_F(ReadAfreshOf61Test, NothingIsTakenWhileItRuns) {
  ExpectNothingTaken({1, 40, 86});
  EXPECT_EQ(panel.txbID.Text(), "12");
  EXPECT_THAT(Texts(panel.alarms.txbAlarm061Level), ElementsAre("2.5", "3", "19", "18"));
  EXPECT_THAT(Texts(panel.lblDisp), ElementsAre("CO2", "TEMP", "TEMP", "TEMP"));
}

TEST_F(ReadAfreshOf61Test, AFailedOneGivesTheImageBackAndFieldsAreTakenAgain) {
  ExpectGivenBack(40, panel.alarms.txbAlarm061Level[0], "2", [](SensorImage& image) {
    image.EepromImage[76] = 27;  // 7000
    image.EepromImage[77] = 88;
  });
}

TEST_F(ReadAfreshOf61Test, AnOffLineValueIsNotTakenWhileItRuns) {
  ExpectNoOffLineValue(40);
}

class ReadAfreshOf7Test : public ReadAfreshOf61Test {
 protected:
  ReadAfreshOf7Test() : ReadAfreshOf61Test({7, 2}) {}

  void Exchange() override {
    auto other = sample;
    PutBytes(other, 16, {12});
    PutBytes(other, 385, {5, 4, 4, 4});
    PutBytes(other, 834, {9, 196, 0x80});  // below 2500 hundredths
    PutBytes(other, 925, {0xA4});          // of the temperature
    Hold(other);
  }
  std::vector<Act> Acts() override {
    return {Typed(panel.rows.lblAlarm7Level[0], "2"),
            Entered(panel.rows.lblAlarm7Level[2], "17"),
            Typed(panel.txbID, "20"),
            Clicked(panel.rows.lblAlarm7Slope[0]),
            Clicked(panel.rows.lblAlarm7Slope[2]),
            Chosen(panel.rows.lblAlarm7Channel[0], 2),
            Chosen(panel.rows.lblAlarm7Channel[1], 0),
            Chosen(panel.lblDisp[0], 2)};
  }
};

TEST_F(ReadAfreshOf7Test, NothingIsTakenWhileItRuns) {
  // The first piece, among the rows, among their channels, and while their scaling is fetched.
  ExpectNothingTaken({1, 4, 10, 15});
  EXPECT_EQ(panel.txbID.Text(), "12");
  EXPECT_THAT(Texts(panel.rows.lblAlarm7Level), ElementsAre("25", "3", "19"));
  EXPECT_THAT(Texts(panel.rows.lblAlarm7Slope), ElementsAre("<", ">", "<"));
  EXPECT_THAT(Texts(panel.rows.lblAlarm7Channel), ElementsAre("Temp", "CO2", "O2"));
  EXPECT_THAT(Texts(panel.lblDisp), ElementsAre("CO2", "Temp", "Temp", "Temp"));
}

TEST_F(ReadAfreshOf7Test, AnOffLineValueIsNotTakenWhileItRuns) {
  ExpectNoOffLineValue(4);
}

TEST_F(ReadAfreshOf7Test, AFailedOneGivesTheImageBackAndFieldsAreTakenAgain) {
  ExpectGivenBack(4, panel.rows.lblAlarm7Level[0], "2", [](SensorImage& image) {
    image.EepromImage[834] = 7;  // 2000 thousandths
    image.EepromImage[835] = 208;
  });
}

// Another variant or platform answers

class OtherProductTest : public test::Frm61SensorTest, public testing::WithParamInterface<Product61> {
 protected:
  OtherProductTest() : Frm61SensorTest(GetParam()) {}

  /// That sensor with those live words is on the line from now on.
  void Attach(const Product61& other, const Bytes& eeprom) {
    port.sensor = bench::VirtualSensor(bench::SensorSetup{.part = other.Part(), .variant = other.variant});
    Hold(eeprom);
    const int offset = other.platform == 61 ? 5000 : 0;
    HoldWord(20, 2150 + offset);
    HoldWord(22, 1812 + offset);
    HoldWord(24, 2090 + offset);
    port.sensor.Ram()[67] = 0;
    size = eeprom.size();
  }
  /// Live values and alarms are known.
  void PollOld() {
    Attach(product, sample);
    ASSERT_TRUE(panel.ActionSensorReadM());
    ASSERT_EQ(panel.txbCHact[0].Text(), "21.5");
  }
  std::vector<std::string> Live() const {
    auto texts = Texts(panel.txbCHact);
    texts.push_back(panel.txbStatus.Text());
    return texts;
  }
  std::vector<const Control*> AllStates() const {
    std::vector<const Control*> states{&panel.rows.txbAlarm7StatusPre, &panel.rows.txbAlarm7StatusMain};
    for (const auto* state : panel.alarms.txbAlarm061Status) states.push_back(state);
    return states;
  }
  void ExpectFaceOf(const Product61& other) {
    const bool hasRows = other.platform == 7;
    const bool hasAlarms = other.platform == 61 && other.variant == 0;
    EXPECT_EQ(panel.alarms.pctAlarm061.Visible(), hasAlarms);
    EXPECT_EQ(panel.rows.pctAlarm07.Visible(), hasRows);
    EXPECT_EQ(panel.txbStatus.Visible(), hasRows);
    EXPECT_EQ(panel.mLoadsettings.Enabled(), !hasRows);
    EXPECT_EQ(panel.mSavesettings.Enabled(), !hasRows);
    EXPECT_EQ(Entry("mCalCO2SPBackground").Visible(), !hasRows);
    EXPECT_EQ(panel.lblDisp[0].Enabled(), hasRows || hasAlarms);
    EXPECT_THAT(test::Visibles(panel.txbCHact), ElementsAre(true, true, hasRows || hasAlarms, false));
    EXPECT_EQ(panel.lblCH_Name[0].Text(), hasRows ? "Temp" : "TEMP");
    EXPECT_EQ(panel.mCHannel[4].Text(), hasRows ? "Temp" : "TEMP");
    EXPECT_EQ(panel.lblCH_Type[0].Text(), "C");
    EXPECT_EQ(panel.lblCH_Type[1].Text(), hasRows || hasAlarms ? "%" : "ppm");
    EXPECT_EQ(panel.txbID.Text(), "12");
    EXPECT_EQ(panel.txbSN.Text(), hasRows ? "5001042" : "21501042");
    if (hasAlarms) {
      EXPECT_THAT(Texts(panel.alarms.lblAlarm061Unit), ElementsAre("%", "%", "%", "%"));
      EXPECT_THAT(Texts(panel.alarms.txbAlarm061Level), ElementsAre("1.5", "3", "19", "18"));
    }
    if (hasRows) {
      EXPECT_THAT(Texts(panel.rows.lblAlarm7Unit), ElementsAre("%", "%", "%"));
      EXPECT_THAT(Texts(panel.rows.lblAlarm7Level), ElementsAre("1.5", "3", "19"));
    }
  }
};
INSTANTIATE_TEST_SUITE_P(, OtherProductTest, test::Products61(), test::ProductName);

TEST_P(OtherProductTest, BringsItsFaceAndNoOldValues) {
  for (const auto& other : {Product61{61, 0}, Product61{61, 1}, Product61{7, 2}}) {
    if (other.platform == product.platform && (other.variant == product.variant || other.platform == 7))
      continue;
    SCOPED_TRACE(testing::PrintToString(other));
    const bool fixedAlarms = other.platform == 61 && other.variant == 0;
    const bool twoChannels = other.platform == 61 && other.variant == 1;
    Show(product);
    panel.SimMode(false);
    session.LastError.clear();
    PollOld();
    auto eeprom = SampleOf(other);
    eeprom[other.platform == 61 ? 32 : 16] = 12;
    Attach(other, eeprom);
    EXPECT_TRUE(panel.ActionSensorRead());
    ExpectFaceOf(other);
    EXPECT_THAT(Live(), Each(""));
    for (const auto* state : AllStates()) {
      EXPECT_EQ(state->Text(), "") << state->Name();
      EXPECT_EQ(state->Back(), kStyleColour) << state->Name();
    }
    for (const auto& alarm : panel.Alarms()) EXPECT_EQ(alarm.state, "") << alarm.name;

    EXPECT_TRUE(panel.ActionSensorReadM());
    EXPECT_EQ(panel.txbCHact[0].Text(), "21.5");
    EXPECT_EQ(panel.txbCHact[1].Text(), twoChannels ? "1812" : "1.812");
    EXPECT_EQ(panel.txbCHact[2].Text(), twoChannels ? "" : "20.9");
    EXPECT_EQ(panel.txbStatus.Text(), other.platform == 7 ? "OK" : "");
    const auto oldStates = Texts(panel.alarms.txbAlarm061Status);
    if (fixedAlarms) {
      EXPECT_THAT(oldStates, ElementsAre("ALARM", "OK", "OK", "OK"));
    } else {
      EXPECT_THAT(oldStates, Each(""));
    }
    if (other.platform == 7) {
      EXPECT_THAT(RowStates(), ElementsAre("ALARM", "OK"));
    } else {
      EXPECT_THAT(RowStates(), ElementsAre("", ""));
    }
  }
}

TEST_P(OtherProductTest, TheSameProductKeepsItsValuesUntilTheNextPoll) {
  PollOld();
  const auto live = Live();
  auto eeprom = sample;
  eeprom[product.platform == 61 ? 32 : 16] = 12;
  Attach(product, eeprom);
  EXPECT_TRUE(panel.ActionSensorRead());
  ExpectFaceOf(product);
  EXPECT_EQ(Live(), live);
}

class OtherUnitTest : public test::Frm61SensorTest {
 protected:
  OtherUnitTest() : Frm61SensorTest({7, 2}) {}
};

TEST_F(OtherUnitTest, IsShownByTheChannelAndTheRows) {
  auto other = sample;
  PutBytes(other, 797, {0x10});  // CO2 in ppm, no decimals
  Hold(other);
  EXPECT_TRUE(panel.ActionSensorRead());
  EXPECT_THAT(Texts(panel.lblCH_Type), ElementsAre("C", "ppm", "%", ""));
  EXPECT_THAT(Texts(panel.rows.lblAlarm7Unit), ElementsAre("ppm", "ppm", "%"));
  EXPECT_THAT(Texts(panel.rows.lblAlarm7Level), ElementsAre("1500", "3000", "19"));
  Hold(sample);
  EXPECT_TRUE(panel.ActionSensorRead());
  EXPECT_THAT(Texts(panel.lblCH_Type), ElementsAre("C", "%", "%", ""));
  EXPECT_THAT(Texts(panel.rows.lblAlarm7Unit), ElementsAre("%", "%", "%"));
}

// How the channels of platform 7 are scaled

class ScalingOf7Test : public test::Frm61SensorTest {
 protected:
  /// All rows watch the temperature, so that no row needs the scaling of the gases.
  ScalingOf7Test() : Frm61SensorTest({7, 2}) {
    auto other = sample;
    PutBytes(other, 925, {4, 1, 4, 2, 4});
    Hold(other);
    EXPECT_TRUE(panel.ActionSensorRead());
    HoldWord(20, 2150);
    HoldWord(22, 1812);
    HoldWord(24, 2090);
    Listen();
  }
};

TEST_F(ScalingOf7Test, IsKnownToEveryPollBehindARead) {
  for (int poll = 0; poll < 3; ++poll) {
    Listen();
    EXPECT_TRUE(panel.ActionSensorReadM());
    EXPECT_THAT(port.sensor.Frames(),
                ElementsAre(Bytes{134, 20, 154}, Bytes{129, 67, 196}, Bytes{193, 82, 19}));
    EXPECT_THAT(Texts(panel.txbCHact), ElementsAre("21.5", "1.812", "20.9", ""));
  }
}

TEST_F(ScalingOf7Test, IsKnownToEveryChoiceOfAChannel) {
  for (int row = 0; row < platform61::AlarmRows::kRows; ++row) {
    for (const std::size_t choice : {1U, 2U, 0U}) Choose(panel.rows.lblAlarm7Channel[row], choice);
  }
  EXPECT_EQ(ground.ui.popups.size(), 9U);
  EXPECT_THAT(ground.ui.popups, Each(ElementsAre("Temp", "CO2", "O2")));
  EXPECT_TRUE(port.Events().empty());
  EXPECT_EQ(session.LastError, "");
}

TEST_F(ScalingOf7Test, IsKnownToEveryValueThatIsTypedOffLine) {
  panel.SimMode(true);
  Type(panel.txbCHact[0], "20");
  Type(panel.txbCHact[1], "2");
  Type(panel.txbCHact[2], "18");
  EXPECT_THAT(Ram(20, 6), ElementsAre(7, 208, 7, 208, 7, 8));
  EXPECT_THAT(Texts(panel.txbCHact), ElementsAre("20", "2", "18", ""));
  EXPECT_TRUE(port.Events().empty());
}

/// Channels that no row watches are part of the read.
TEST_F(ScalingOf7Test, ThatCannotBeFetchedEndsARead) {
  EXPECT_TRUE(panel.ActionSensorRead());
  const auto frames = port.sensor.Frames().size();
  const auto before = ground.image;
  auto other = Held();
  other[16] = 12;
  Hold(other);
  for (const std::size_t missing : {1U, 2U}) {
    const auto answer = port.onOutput;
    Listen();
    FallSilentAt(frames - missing);
    EXPECT_FALSE(panel.ActionSensorRead());
    EXPECT_EQ(session.LastError, "Can't read from sensor");
    ExpectSame(ground.image, before);
    EXPECT_EQ(panel.txbID.Text(), "7");
    session.LastError.clear();
    port.onOutput = answer;
  }
}

TEST_F(ScalingOf7Test, ThatCannotBeFetchedLeavesValuesAndStates) {
  ASSERT_TRUE(panel.ActionSensorReadM());
  const auto values = Texts(panel.txbCHact);
  const auto states = RowStates();
  const auto status = panel.txbStatus.Text();
  HoldWord(20, 100);
  HoldWord(22, 100);
  HoldWord(24, 100);
  port.sensor.Ram()[67] = 1;
  // The last channel alone: the values before it stay too.
  ground.image.EepromValid[798] = ground.image.EepromValid[799] = false;
  Listen();
  FallSilentAt(3);
  EXPECT_FALSE(panel.ActionSensorReadM());
  EXPECT_EQ(port.sensor.Frames().size(), 3U);
  EXPECT_EQ(Texts(panel.txbCHact), values);
  EXPECT_EQ(RowStates(), states);
  EXPECT_EQ(panel.txbStatus.Text(), status);
}

// A settings file that is refused

class RefusedFileOf61Test : public test::EachFrm61SensorTest {};
INSTANTIATE_TEST_SUITE_P(, RefusedFileOf61Test, testing::Values(Product61{61, 0}, Product61{61, 1}),
                         test::ProductName);

TEST_P(RefusedFileOf61Test, OfAnotherPlatformLeavesTheAttachedSensor) {
  for (const std::uint8_t part : {std::uint8_t{88}, std::uint8_t{104}, test::kPart7}) {
    auto other = sample;
    other[164] = part;
    other[32] = 20;
    ground.files.Put(kFile, test::WholeFile(other));
    ground.ui.chosenFiles = {kFile};
    session.LastError.clear();
    EXPECT_FALSE(panel.ActionSettingsLoad());
    EXPECT_EQ(session.LastError, test::kRefusedFile);
    session.LastError.clear();
    EXPECT_EQ(ground.image.RamImage[65], test::kPart61);
    EXPECT_EQ(Eeprom(), sample);
    EXPECT_EQ(panel.alarms.pctAlarm061.Visible(), product.variant == 0);

    Listen();
    EXPECT_TRUE(panel.ActionSensorReadM());
    EXPECT_EQ(port.sensor.Frames().size(), product.variant == 0 ? 3U : 5U);
    EXPECT_EQ(panel.lblCH_Type[1].Text(), product.variant == 0 ? "%" : "ppm");

    Listen();
    panel.txbID.SetText(std::to_string(part % 16 + 1));
    EXPECT_TRUE(panel.ActionSensorWrite());
    sample[32] = static_cast<std::uint8_t>(part % 16 + 1);
    EXPECT_EQ(port.sensor.Frames().front(), kUnlock);
    EXPECT_EQ(Held(), sample);
    EXPECT_EQ(port.sensor.Count().refused, 0);
  }
}

}  // namespace
}  // namespace brelant
