// SPDX-License-Identifier: GPL-3.0-or-later
#include "panels/panel_fixture.h"

namespace brelant {
namespace {

using test::Click;
using test::Frm5Test;
using test::SampleRam;
using testing::ElementsAre;

class Frm5ChoicesTest : public Frm5Test {
 protected:
  /// Clicks the label and chooses the line of the menu; -1: leaves the menu.
  void Choose(Control& label, int line) {
    ground.ui.choices.push_back(line < 0 ? std::nullopt : std::optional(static_cast<std::size_t>(line)));
    EXPECT_TRUE(Click(label));
    EXPECT_TRUE(ground.ui.choices.empty());
  }
  /// Changes a field that is not left: it reaches the image only if the form is taken.
  void EditId() { panel.txbID.SetText("9"); }
};

TEST_F(Frm5ChoicesTest, TheInputOfAFunctionIsChosenAmongTheChannelsInUse) {
  Choose(panel.rows.lblFchannel[0], 2);
  EXPECT_THAT(ground.ui.popups, ElementsAre(ElementsAre("TEMP", "CO2", "RH")));
  EXPECT_EQ(panel.rows.lblFchannel[0].Text(), "RH");
  ExpectChanged(162, {2, 149, 24, 153, 0});
}

TEST_F(Frm5ChoicesTest, TheWordsOfAFunctionStayAndTakeTheUnitOfTheNewInput) {
  Choose(panel.rows.lblFchannel[0], 0);
  EXPECT_EQ(panel.rows.txbFa[0].Text(), "4");
  EXPECT_EQ(panel.rows.txbFb[0].Text(), "14");
  EXPECT_EQ(panel.rows.lblFaUnit[0].Text(), "C");
  EXPECT_EQ(panel.rows.lblFbUnit[0].Text(), "C");
  EXPECT_EQ(Ram(162, 5), (std::vector<int>{0, 149, 24, 153, 0}));
}

TEST_F(Frm5ChoicesTest, EachFunctionStoresItsOwnInput) {
  for (int i = 0; i < 5; ++i) {
    Choose(panel.rows.lblFchannel[i], 2);
    EXPECT_EQ(Ram(static_cast<std::size_t>(162 + 5 * i)), 2) << i;
  }
}

TEST_F(Frm5ChoicesTest, TheFormIsTakenBeforeAnInputIsChosen) {
  EditId();
  panel.rows.txbFa[0].SetText("401");
  Choose(panel.rows.lblFchannel[0], 2);
  EXPECT_EQ(Ram(208), 9);
  EXPECT_EQ(Ram(163, 2), (std::vector<int>{149, 25}));
}

TEST_F(Frm5ChoicesTest, AMenuThatIsLeftChangesNothing) {
  for (auto* label : {&panel.rows.lblFchannel[1], &panel.lblDisplayMode, &panel.trigger.lblDigTunit}) {
    const auto text = label->Text();
    Choose(*label, -1);
    EXPECT_EQ(label->Text(), text);
    EXPECT_EQ(WholeRam(), SampleRam()) << label->Name();
  }
}

TEST_F(Frm5ChoicesTest, TheShiftChannelIsStoredByWhatTheLabelReads) {
  // Leaving the menu leaves the label, and what it reads is stored all the same, with the other factor.
  Choose(panel.lblShiftb, -1);
  EXPECT_EQ(panel.lblShiftb.Text(), "CO2");
  ExpectChanged(207, {4 * 16 + 1});
}

TEST_F(Frm5ChoicesTest, AVisibleChannelComesBeforeAHiddenOneOfTheSameName) {
  // Channel 0 is not in use and is therefore called OFF, which is the name of channel 2 by its definition.
  ground.Define(
      105, {test::DefinedChannel{.name = "A", .active = 0}, test::DefinedChannel{.name = "CO2", .type = 4},
            test::DefinedChannel{.name = "OFF", .type = 4}, test::DefinedChannel{.name = "", .active = 0}});
  auto ram = SampleRam();
  ram[65] = 105;
  Show(ram);
  Choose(panel.rows.lblFchannel[0], 1);
  EXPECT_THAT(ground.ui.popups.back(), ElementsAre("CO2", "OFF"));
  EXPECT_EQ(Ram(162), 2);
  Choose(panel.lblShiftb, 1);
  EXPECT_EQ(Ram(207) & 15, 2);
  panel.FormRead();
  EXPECT_EQ(Ram(207) & 15, 2);
}

TEST_F(Frm5ChoicesTest, TheShiftChannelIsChosenWithAFactorOf16) {
  Choose(panel.lblShiftb, 2);
  EXPECT_THAT(ground.ui.popups, ElementsAre(ElementsAre("TEMP", "CO2", "RH")));
  EXPECT_EQ(Ram(207), 6 * 16 + 2);
  EXPECT_EQ(panel.lblShiftb.Text(), "RH");
  EXPECT_EQ(panel.lblShiftb_Type.Text(), "%");
  // The amount is what it was, in another unit.
  EXPECT_EQ(Ram(32), 49);
  EXPECT_EQ(panel.txbShiftBamount.Text(), "50");
  Choose(panel.lblShiftb, 1);
  EXPECT_EQ(Ram(207), 4 * 16 + 1);
}

TEST_F(Frm5ChoicesTest, TheNextReadingOfTheFormHasTheOtherFactor) {
  Choose(panel.lblShiftb, 2);
  panel.FormRead();
  EXPECT_EQ(Ram(207), 6 * 32 + 2);
  EXPECT_EQ(Ram(32), 2 * 32 + 17);
}

TEST_F(Frm5ChoicesTest, TheFormIsTakenBeforeAShiftChannelIsChosen) {
  EditId();
  panel.txbShiftBamount.SetText("750");
  Choose(panel.lblShiftb, 2);
  EXPECT_EQ(Ram(208), 9);
  EXPECT_EQ(Ram(32), 32 + 18);
}

TEST_F(Frm5ChoicesTest, ADisplayModeIsStoredByItsIndex) {
  Choose(panel.lblDisplayMode, 4);
  EXPECT_EQ(ground.ui.popups.back(), Texts(panel.mDisplayMode));
  ExpectChanged(31, {4});
}

TEST_F(Frm5ChoicesTest, TheTriggerTimeIsInMinutesOrSeconds) {
  Choose(panel.trigger.lblDigTunit, 0);
  EXPECT_THAT(ground.ui.popups, ElementsAre(ElementsAre("Min", "Sec")));
  ExpectChanged(187, {128 + 10});
  Choose(panel.trigger.lblDigTunit, 1);
  EXPECT_EQ(WholeRam(), SampleRam());
}

TEST_F(Frm5ChoicesTest, TheTemperatureUnitOfChannel0IsStoredAsAType) {
  Choose(panel.lblCH_Type[0], 1);
  EXPECT_THAT(ground.ui.popups, ElementsAre(ElementsAre("C", "F")));
  ExpectChanged(205, {32});
  EXPECT_EQ(panel.lblCH_Type[0].Text(), "F");
  EXPECT_EQ(panel.rows.lblFaUnit[1].Text(), "F");
  // 18 C is 64.4 F.
  EXPECT_EQ(panel.rows.txbFa[1].Text(), "64");
  Choose(panel.lblCH_Type[0], 0);
  EXPECT_EQ(Ram(205), 16);
  EXPECT_EQ(panel.lblCH_Type[0].Text(), "C");
}

TEST_F(Frm5ChoicesTest, TheTemperatureUnitIsStoredByWhatTheLabelReads) {
  // Leaving the menu leaves the label, and what it reads is stored all the same.
  Choose(panel.lblCH_Type[0], -1);
  EXPECT_EQ(panel.lblCH_Type[0].Text(), "C");
  EXPECT_EQ(Ram(205), 16);
}

TEST_F(Frm5ChoicesTest, OnlyChannel0StoresItsTemperatureUnit) {
  ground.Define(
      105, {test::DefinedChannel{.name = "A", .type = 0}, test::DefinedChannel{.name = "B", .type = 0},
            test::DefinedChannel{.name = "C", .type = 0}, test::DefinedChannel{.name = "", .active = 0}});
  auto ram = SampleRam();
  ram[65] = 105;
  ram[206] = 0;
  Show(ram);
  Choose(panel.lblCH_Type[1], 1);
  Choose(panel.lblCH_Type[2], 1);
  EXPECT_EQ(Ram(205), 0);
  EXPECT_THAT(Texts(panel.lblCH_Type), ElementsAre("C", "C", "C"));
}

TEST_F(Frm5ChoicesTest, AUnitThatIsNoTemperatureCannotBeChosen) {
  EXPECT_FALSE(Click(panel.lblCH_Type[1]));
  EXPECT_TRUE(ground.ui.popups.empty());
}

TEST_F(Frm5ChoicesTest, TheFormIsTakenBeforeAUnitIsChosen) {
  EditId();
  Choose(panel.lblCH_Type[0], 1);
  EXPECT_EQ(Ram(208), 9);
}

TEST_F(Frm5ChoicesTest, TheMenusOfTheLabelsAreNotInTheMenuBar) {
  for (const auto* menu :
       {&panel.mChannels, &panel.mDisplayModes, &panel.mTempUnit, &panel.trigger.mTimeUnits}) {
    EXPECT_FALSE(menu->Visible()) << menu->Name();
  }
  EXPECT_EQ(panel.mTempUnitCelsius.Text(), "C");
  EXPECT_EQ(panel.mTempUnitFarenheit.Text(), "F");
  EXPECT_EQ(panel.trigger.mTimeUnitMin.Text(), "Min");
  EXPECT_EQ(panel.trigger.mTimeUnitSec.Text(), "Sec");
}

TEST_F(Frm5ChoicesTest, APressOnThePositiveLevelMakesItNegative) {
  EXPECT_TRUE(Click(panel.trigger.pctDigTPsign));
  EXPECT_EQ(panel.trigger.txbDigTlevel.Text(), "-29");
  EXPECT_FALSE(panel.trigger.pctDigTPsign.Visible());
  EXPECT_TRUE(panel.trigger.pctDigTNsign.Visible());
  EXPECT_TRUE(panel.FormRead());
  ExpectChanged(188, {128 + 37});
}

TEST_F(Frm5ChoicesTest, APressOnTheNegativeLevelMakesItPositive) {
  SetRam(188, {128 + 37});
  panel.FormUpdate();
  EXPECT_TRUE(Click(panel.trigger.pctDigTNsign));
  EXPECT_EQ(panel.trigger.txbDigTlevel.Text(), "29");
  EXPECT_TRUE(panel.trigger.pctDigTPsign.Visible());
  EXPECT_FALSE(panel.trigger.pctDigTNsign.Visible());
  EXPECT_TRUE(panel.FormRead());
  EXPECT_EQ(WholeRam(), SampleRam());
}

}  // namespace
}  // namespace brelant
