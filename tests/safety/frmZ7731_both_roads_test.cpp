// SPDX-License-Identifier: GPL-3.0-or-later
#include "safety/z7731_fixture.h"

namespace brelant {
namespace {

using std::chrono::seconds;

/// The panel on a virtual unit whose time stands still while it is looked at, over one of the roads.
class LivePanel {
 public:
  LivePanel(int variant, frmComSet::Protocol protocol) : ground_({.part = 154, .variant = variant}) {
    ground_.port.onOutput = [this](const test::Bytes& bytes) {
      for (const auto byte : bytes) ground_.port.sensor.Receive(byte, now_);
      for (const auto& reply : ground_.port.sensor.TakeReply()) ground_.port.Arrive({reply.value});
    };
    ground_.Choose(frmComSet::singleSensor, protocol);
    EXPECT_TRUE(panel.FormUpdateInit() && panel.FormUpdate());
    panel.SimMode(false);
    ground_.session.LastError.clear();
  }

  /// A poll of the unit as it is at that moment.
  void PollAt(std::chrono::microseconds when) {
    now_ = when;
    ground_.port.sensor.Advance(when);
    mirror_.Mind();
    EXPECT_TRUE(panel.FormUpdate()) << ground_.session.LastError;
  }
  /// All that is to be seen of the fields, but for the state of the TWA's alarm.
  std::vector<std::string> Seen() {
    std::vector<std::string> seen;
    for (auto& control : panel.form.Controls()) {
      if (control.Name() == "txbStatus(2)" || control.Kind() == ControlKind::lamp) continue;
      seen.push_back(control.Name() + " '" + control.Text() + "' " + std::to_string(control.Value()) + " " +
                     std::to_string(control.Back()) + " " + std::to_string(control.Fore()) +
                     (control.Visible() ? "" : " hidden") + (control.Enabled() ? "" : " disabled"));
    }
    return seen;
  }
  std::string State(int alarm) const { return panel.txbStatus[alarm].Text(); }

 private:
  test::SafetyGround ground_;
  std::chrono::microseconds now_{};
  test::MirroredUnit mirror_{ground_.modbus, ground_.pump, ground_.port.sensor.Ram(),
                             ground_.port.sensor.Eeprom()};

 public:
  frmZ7731Chart panel{ground_.context};
};

class Z7731BothRoadsTest : public testing::TestWithParam<int> {
 protected:
  void PollBothAt(std::chrono::microseconds when) {
    for (auto* road : {&kiBus, &modbus}) road->PollAt(when);
    EXPECT_EQ(kiBus.Seen(), modbus.Seen()) << when.count();
    for (int i = 0; i < 9; ++i) states.push_back(std::to_string(i) + modbus.State(i));
  }

  LivePanel kiBus{GetParam(), frmComSet::kiBus};
  LivePanel modbus{GetParam(), frmComSet::modBus};
  /// What was seen at any time.
  std::vector<std::string> states;
};

TEST_P(Z7731BothRoadsTest, ShowTheSameForAMinute) {
  for (int second = 0; second < 60; ++second) {
    PollBothAt(seconds(second));
    EXPECT_THAT(kiBus.State(2), testing::AnyOf("OK", "ERR"));
  }
  // All of it comes and goes in that time, or it would show little.
  for (const char* state : {"0OK", "0ALARM", "1ALARM", "2OK", "2ALARM", "3ALARM", "4ALARM"}) {
    EXPECT_THAT(states, testing::Contains(state));
  }
  if (GetParam() == 5) {
    EXPECT_THAT(states, testing::Each(testing::Not(testing::AnyOf("5OK", "6OK", "7OK", "8OK"))));
    EXPECT_EQ(modbus.State(7), "N/A");
  } else {
    for (const char* state : {"5ALARM", "6ALARM", "7ALARM", "8ALARM"}) {
      EXPECT_THAT(states, testing::Contains(state));
    }
  }
}

TEST_P(Z7731BothRoadsTest, ShowTheSameWhileAChannelHasNoReading) {
  for (const int cycle : {0, 1, 2, 3, 4}) {
    for (const int second : {95, 96, 99}) PollBothAt(seconds(100 * cycle + second));
  }
  for (const char* state : {"0ERR", "1ERR", "2ERR", "3ERR", "4ERR"}) {
    EXPECT_THAT(states, testing::Contains(state));
  }
  EXPECT_EQ(std::count(states.begin(), states.end(), "7ERR"), GetParam() == 5 ? 0 : 2);
}

INSTANTIATE_TEST_SUITE_P(Models, Z7731BothRoadsTest, testing::Values(3, 5, 7),
                         [](const auto& model) { return "Model" + std::to_string(model.param); });

}  // namespace
}  // namespace brelant
