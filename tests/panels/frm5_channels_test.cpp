// SPDX-License-Identifier: GPL-3.0-or-later
#include <stdexcept>

#include "panels/panel_fixture.h"

namespace brelant {
namespace {

using test::Frm5Test;
using test::SampleRam;
using testing::ElementsAre;

class Frm5ChannelsTest : public Frm5Test {
 protected:
  void ShowChannels(const test::DefinedChannels& channels) {
    ground.Define(105, channels);
    auto ram = SampleRam();
    ram[65] = 105;
    ram[206] = 0;
    Show(ram);
  }
  static std::vector<bool> Visible(const ControlArray& controls) {
    std::vector<bool> visible;
    for (const auto* control : controls) visible.push_back(control->Visible());
    return visible;
  }
};

TEST_F(Frm5ChannelsTest, ShowsTheChannelsThatAreInUse) {
  EXPECT_THAT(Texts(panel.mCHannel), ElementsAre("TEMP", "CO2", "RH", "OFF", "OFF"));
  EXPECT_THAT(Visible(panel.mCHannel), ElementsAre(true, true, true, false, false));
  EXPECT_THAT(Visible(panel.pctChannel), ElementsAre(true, true, true, false, false));
  EXPECT_THAT(Texts(panel.lblCH_Name), ElementsAre("TEMP", "CO2", "RH", ""));
  EXPECT_THAT(Texts(panel.lblCH_Type), ElementsAre("C", "ppm", "%"));
}

TEST_F(Frm5ChannelsTest, AChannelComesBackWithAnotherProduct) {
  ShowChannels({test::DefinedChannel{.name = "A", .type = 4}, test::DefinedChannel{.name = "B", .active = 0},
                test::DefinedChannel{.name = "C", .active = -1},
                test::DefinedChannel{.name = "D", .type = 9}});
  EXPECT_THAT(Texts(panel.mCHannel), ElementsAre("A", "OFF", "OFF", "D", "OFF"));
  EXPECT_THAT(Visible(panel.mCHannel), ElementsAre(true, false, false, true, false));
  EXPECT_THAT(Visible(panel.pctChannel), ElementsAre(true, false, false, true, false));
  EXPECT_EQ(panel.lblCH_Name[3].Text(), "D");
}

TEST_F(Frm5ChannelsTest, AProductWithoutChannelsIsNoFailure) {
  const test::DefinedChannel off{.name = "X", .active = 0};
  ground.Define(105, {off, off, off, off});
  SetRam(65, {105});
  EXPECT_TRUE(panel.FormUpdateInit());
  EXPECT_THAT(Visible(panel.mCHannel), ElementsAre(false, false, false, false, false));
  EXPECT_EQ(ground.session.LastError, "");
}

TEST_F(Frm5ChannelsTest, PlacesTheCheckBox) {
  panel.cbxSimulated.SetVisible(false);
  EXPECT_TRUE(panel.FormUpdateInit());
  EXPECT_TRUE(panel.cbxSimulated.Visible());
  EXPECT_EQ(panel.cbxSimulated.Text(), "Simulated");
}

TEST_F(Frm5ChannelsTest, ShowsTheUnitsOfTheTypes) {
  ShowChannels({test::DefinedChannel{.name = "A", .type = 0}, test::DefinedChannel{.name = "B", .type = 15},
                test::DefinedChannel{.name = "C", .type = 8},
                test::DefinedChannel{.name = "D", .active = 0}});
  EXPECT_THAT(Texts(panel.lblCH_Type), ElementsAre("C", "%", "g/kg"));
}

TEST_F(Frm5ChannelsTest, ATypeWithoutAMeaningShowsNothing) {
  ShowChannels({test::DefinedChannel{.name = "A", .type = 0}, test::DefinedChannel{.name = "B", .type = 12},
                test::DefinedChannel{.name = "C", .type = 99},
                test::DefinedChannel{.name = "D", .active = 0}});
  panel.FormUpdateM();
  EXPECT_THAT(Texts(panel.lblCH_Type), ElementsAre("C", "", ""));
  EXPECT_THAT(Texts(panel.txbCHact), ElementsAre("21.5", "", "", "-50"));
}

TEST_F(Frm5ChannelsTest, TellsItsLiveValues) {
  panel.FormUpdateM();
  std::vector<std::string> told;
  for (const auto& value : panel.LiveValues()) told.push_back(value.name + "=" + value.text + value.unit);
  EXPECT_THAT(told, ElementsAre("TEMP=21.5C", "CO2=812ppm", "RH=45.3%", "Out 1=50%", "Out 2=100%"));
}

/// Files on which even the question whether one exists can go wrong.
class FaultyFiles : public test::MemoryFiles {
 public:
  bool Exists(const std::string&) const override { throw std::runtime_error("Disk error"); }
};

TEST_F(Frm5ChannelsTest, AFaultWhileTheFormIsFittedIsACorruptSensor) {
  FaultyFiles files;
  const Machine machine{ground.clock, ground.pump,  ground.port, ground.modbus,
                        files,        ground.store, ground.ui};
  Definitions definitions(ground.session, ground.image, ground.com, machine);
  SnsInfo info(ground.session, ground.image, ground.com, definitions, machine);
  Screen screen;
  frm5 corrupt({machine, ground.session, screen, ground.image, ground.com, info, definitions, ground.file,
                ground.cal, ground.msg, ground.comSet, ground.spanNote, ground.curve,
                ground.context.connection, [] {}});
  EXPECT_FALSE(corrupt.FormUpdateInit());
  EXPECT_EQ(ground.session.LastError, "Sensor is corrupt");
  ground.session.LastError = "first";
  EXPECT_FALSE(corrupt.FormUpdateInit());
  EXPECT_EQ(ground.session.LastError, "first");
}

}  // namespace
}  // namespace brelant
