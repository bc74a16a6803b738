// SPDX-License-Identifier: GPL-3.0-or-later
#include "panels/panel_fixture.h"

namespace brelant {
namespace {

using test::Frm5Test;
using test::kBlack;
using test::kEnter;
using test::kFieldBack;
using test::kGreen;
using test::kWhite;
using test::kYellow;
using test::SampleRam;
using testing::ElementsAre;

class EditRulesTest : public Frm5Test {
 protected:
  std::vector<Control*> SettingFields() {
    std::vector<Control*> fields{&panel.txbID, &panel.txbShiftBamount, &panel.trigger.txbDigTtime,
                                 &panel.trigger.txbDigTlevel};
    for (const auto* array :
         {&panel.rows.txbFa, &panel.rows.txbFb, &panel.txbOutBaseLine, &panel.txbOutIntTime}) {
      fields.insert(fields.end(), array->begin(), array->end());
    }
    return fields;
  }
  static void ExpectColours(const Control& field, Colour back, Colour fore) {
    EXPECT_EQ(field.Back(), back) << field.Name();
    EXPECT_EQ(field.Fore(), fore) << field.Name();
  }

  Form& form = panel.form;
};

TEST_F(EditRulesTest, FieldsChangeTheirColoursWhileTheyAreEdited) {
  for (auto* field : SettingFields()) {
    ExpectColours(*field, kFieldBack, kYellow);
    form.GainFocus(*field);
    ExpectColours(*field, kWhite, kBlack);
    form.LoseFocus(*field);
    ExpectColours(*field, kFieldBack, kYellow);
  }
}

TEST_F(EditRulesTest, LeavingTakesAndShowsTheForm) {
  form.GainFocus(panel.txbOutBaseLine[0]);
  form.ChangeText(panel.txbOutBaseLine[0], "33.4 %");
  EXPECT_EQ(WholeRam(), SampleRam());
  form.LoseFocus(panel.txbOutBaseLine[0]);
  ExpectChanged(190, {149, 96});
  EXPECT_EQ(panel.txbOutBaseLine[0].Text(), "33");
}

TEST_F(EditRulesTest, LeavingTakesTheWholeForm) {
  panel.trigger.txbDigTtime.SetText("5");
  test::Type(panel.rows.txbFa[0], "401");
  EXPECT_EQ(Ram(163, 2), (std::vector<int>{149, 25}));
  EXPECT_EQ(Ram(187), 20);
}

TEST_F(EditRulesTest, EverySettingFieldStoresWhenItIsLeft) {
  for (auto* field : SettingFields()) {
    if (field == &panel.txbID) continue;
    Show(SampleRam());
    panel.lblDisplayMode.SetText(panel.mDisplayMode[0].Text());
    form.GainFocus(*field);
    form.LoseFocus(*field);
    EXPECT_EQ(Ram(31), 0) << field->Name();
  }
}

TEST_F(EditRulesTest, EnterDoesWhatLeavingDoesAndKeepsTheFocus) {
  for (auto* field : SettingFields()) {
    if (field == &panel.txbID) continue;
    Show(SampleRam());
    panel.lblDisplayMode.SetText(panel.mDisplayMode[0].Text());
    form.GainFocus(*field);
    EXPECT_TRUE(form.PressKey(*field, kEnter)) << field->Name();
    EXPECT_EQ(Ram(31), 0) << field->Name();
    ExpectColours(*field, kFieldBack, kYellow);
    EXPECT_EQ(form.Focused(), field);
  }
}

TEST_F(EditRulesTest, EnterShowsWhatTheMemoryHolds) {
  form.GainFocus(panel.txbOutIntTime[0]);
  form.ChangeText(panel.txbOutIntTime[0], "1000");
  form.PressKey(panel.txbOutIntTime[0], kEnter);
  EXPECT_EQ(panel.txbOutIntTime[0].Text(), "512");
  EXPECT_EQ(Ram(192), 8);
}

TEST_F(EditRulesTest, OtherKeysPass) {
  form.GainFocus(panel.rows.txbFa[0]);
  form.ChangeText(panel.rows.txbFa[0], "401");
  EXPECT_FALSE(form.PressKey(panel.rows.txbFa[0], 9));
  EXPECT_FALSE(form.PressKey(panel.rows.txbFa[0], 'A'));
  EXPECT_EQ(WholeRam(), SampleRam());
  ExpectColours(panel.rows.txbFa[0], kWhite, kBlack);
}

TEST_F(EditRulesTest, TheHighestIdIs29) {
  struct Case {
    const char* text;
    const char* shown;
  };
  for (const auto& [text, shown] : {Case{"35", "29"}, Case{"30", "29"}, Case{"29", "29"}, Case{"29.5", "29"},
                                    Case{"1", "1"}, Case{" 12 ", "12"}, Case{"abc", "0"}, Case{"7,0", "7"}}) {
    test::Type(panel.txbID, text);
    EXPECT_EQ(panel.txbID.Text(), shown) << text;
  }
}

TEST_F(EditRulesTest, TheIdIsStoredOnlyWhenTheFormIsTakenForAnotherReason) {
  panel.lblDisplayMode.SetText(panel.mDisplayMode[0].Text());
  test::Type(panel.txbID, "35");
  EXPECT_EQ(WholeRam(), SampleRam());
  form.GainFocus(panel.txbID);
  form.PressKey(panel.txbID, kEnter);
  EXPECT_EQ(WholeRam(), SampleRam());
  ExpectColours(panel.txbID, kFieldBack, kYellow);
  test::Type(panel.trigger.txbDigTtime, "2.5");
  EXPECT_EQ(Ram(208), 29);
  EXPECT_EQ(Ram(31), 0);
}

TEST_F(EditRulesTest, LiveValuesTakeNoEditWhileASensorIsPolled) {
  panel.SimMode(false);
  panel.FormUpdateM();
  panel.lblDisplayMode.SetText(panel.mDisplayMode[0].Text());
  for (auto* field : panel.txbCHact) {
    const auto text = field->Text();
    const auto back = field->Back();
    form.GainFocus(*field);
    ExpectColours(*field, back, kGreen);
    form.ChangeText(*field, "99");
    EXPECT_EQ(field->Text(), text);
    form.PressKey(*field, kEnter);
    form.LoseFocus(*field);
    ExpectColours(*field, back, kGreen);
  }
  EXPECT_EQ(WholeRam(), SampleRam());
}

TEST_F(EditRulesTest, LiveValuesAreTypedInSimulatedMode) {
  panel.SimMode(true);
  for (auto* field : panel.txbCHact) {
    Show(SampleRam());
    panel.lblDisplayMode.SetText(panel.mDisplayMode[0].Text());
    form.GainFocus(*field);
    ExpectColours(*field, kWhite, kBlack);
    form.ChangeText(*field, "99");
    form.LoseFocus(*field);
    ExpectColours(*field, kFieldBack, kYellow);
    EXPECT_EQ(field->Text(), "99");
    EXPECT_EQ(Ram(31), 0) << field->Name();
  }
}

TEST_F(EditRulesTest, ATypedLiveValueMovesTheOutputsAtOnce) {
  panel.SimMode(true);
  SetRam(189, {1});
  panel.FormUpdate();
  // With the shift of 500 it is 650, a quarter of the way from 400 to 1400.
  test::Type(panel.txbCHact[1], "150");
  EXPECT_EQ(panel.txbOutOut[0].Text(), "25");
}

TEST_F(EditRulesTest, SerialNumberAndOutputsTakeNoEdit) {
  panel.SimMode(true);
  panel.FormUpdateM();
  const auto texts = Texts(panel.txbOutOut);
  test::Type(panel.txbSN, "1");
  test::Type(panel.txbOutOut[0], "1");
  EXPECT_EQ(panel.txbSN.Text(), "10401042");
  EXPECT_EQ(Texts(panel.txbOutOut), texts);
}

TEST_F(EditRulesTest, AnEditNeverReachesTheSensor) {
  for (auto* field : SettingFields()) test::Type(*field, "3");
  EXPECT_THAT(ground.port.Events(), ElementsAre());
  EXPECT_EQ(ground.session.PanelCommand, 0);
}

}  // namespace
}  // namespace brelant
