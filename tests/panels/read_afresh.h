// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <functional>
#include <initializer_list>
#include <map>
#include <string>
#include <utility>
#include <vector>

#include "app/settings_file.h"
#include "panels/sensor_line.h"

namespace brelant::test {

inline constexpr const char* kRefusedFile = "This setfile can't be used on this sensor";

/// Something that a person does on a panel.
struct Act {
  std::string name;
  std::function<void()> act;
};

inline Act Typed(Control& field, const std::string& text) {
  return {field.Name() + " typed", [&field, text] { Type(field, text); }};
}
inline Act Entered(Control& field, const std::string& text) {
  return {field.Name() + " entered", [&field, text] {
            auto& form = field.Owner();
            form.GainFocus(field);
            form.ChangeText(field, text);
            EXPECT_TRUE(form.PressKey(field, kEnter));
          }};
}
inline Act Clicked(Control& control) {
  return {control.Name() + " clicked", [&control] { EXPECT_TRUE(Click(control)); }};
}

/// What a person finds on a form: text and value of each control.
inline std::map<std::string, std::string> ShownOn(const Form& form) {
  std::map<std::string, std::string> shown;
  for (const auto& control : form.Controls()) {
    shown[control.Name()] = control.Text() + " / " + std::to_string(control.Value());
  }
  return shown;
}

/// Where two images differ, and what each has there.
template <typename Memory>
std::map<std::size_t, std::pair<float, float>> Differences(const Memory& actual, const Memory& expected) {
  std::map<std::size_t, std::pair<float, float>> differences;
  for (std::size_t i = 0; i < actual.size(); ++i) {
    if (actual[i] != expected[i]) differences[i] = {actual[i], expected[i]};
  }
  return differences;
}
inline void ExpectSame(const SensorImage& image, const SensorImage& expected) {
  using testing::IsEmpty;
  EXPECT_THAT(Differences(image.RamImage, expected.RamImage), IsEmpty());
  EXPECT_THAT(Differences(image.RamRead, expected.RamRead), IsEmpty());
  EXPECT_THAT(Differences(image.RamValid, expected.RamValid), IsEmpty());
  EXPECT_THAT(Differences(image.EepromImage, expected.EepromImage), IsEmpty());
  EXPECT_THAT(Differences(image.EepromRead, expected.EepromRead), IsEmpty());
  EXPECT_THAT(Differences(image.EepromValid, expected.EepromValid), IsEmpty());
}

/// A panel that has read one sensor and reads another one.
template <typename PanelTest>
class ReadAfreshOn : public PanelTest {
 protected:
  template <typename... Setup>
  explicit ReadAfreshOn(Setup&&... setup) : PanelTest(std::forward<Setup>(setup)...) {}

  /// The panel shows the old sensor, in live mode.
  virtual void ShowOld() = 0;
  /// The other sensor is on the line.
  virtual void Exchange() = 0;
  virtual std::vector<Act> Acts() = 0;

  void Begin() {
    Line().onOutput = answer_;
    ShowOld();
    this->panel.SimMode(false);
    this->ground.session.LastError.clear();
    this->ground.session.PanelCommand = 0;
    Exchange();
    Line().sensor.ForgetFrames();
  }
  Act Chosen(Control& label, std::size_t choice) {
    return {label.Name() + " chosen", [this, &label, choice] {
              this->ground.ui.choices = {choice};
              EXPECT_TRUE(Click(label));
              this->ground.ui.choices.clear();
            }};
  }

  /// Happens as a person's acts do, once that many frames have been answered; from `silent` frames on there
  /// is no answer.
  void Arm(std::size_t frame, const std::function<void()>& act, std::size_t silent = 10000) {
    done_ = 0;
    Line().onOutput = [this, frame, act, silent](const Bytes& bytes) {
      const auto frames = Line().sensor.Frames().size();
      if (frames >= frame && done_ == 0) {
        done_ = 1;
        this->ground.pump.InPass(1, [this, act] {
          done_ = 2;
          act();
        });
      }
      if (frames < silent) answer_(bytes);
    };
  }
  void ExpectActed() const { EXPECT_EQ(done_, 2); }

  /// Each act alone at each of these frames: it changes no byte and asks for nothing, and the read ends as if
  /// it had not been.
  void ExpectNothingTaken(std::initializer_list<std::size_t> frames) {
    Begin();
    const auto old = ShownOn(this->panel.form);
    ASSERT_TRUE(this->panel.ActionSensorRead());
    const auto image = this->ground.image;
    const auto asked = Line().sensor.Frames();
    ASSERT_TRUE(this->panel.ActionSensorReadM());
    const auto shown = ShownOn(this->panel.form);
    EXPECT_NE(shown, old);
    for (const auto& act : Acts()) {
      for (const auto frame : frames) {
        SCOPED_TRACE(act.name + " at frame " + std::to_string(frame));
        Begin();
        Arm(frame, [this, &act] { ExpectIgnored(act); });
        EXPECT_TRUE(this->panel.ActionSensorRead());
        ExpectActed();
        EXPECT_EQ(Line().sensor.Frames(), asked);
        ExpectSame(this->ground.image, image);
        EXPECT_EQ(this->ground.session.PanelCommand, 0);
        EXPECT_TRUE(this->panel.ActionSensorReadM());
        EXPECT_EQ(ShownOn(this->panel.form), shown);
      }
    }
  }
  void ExpectIgnored(const Act& act) {
    const auto half = this->ground.image;
    act.act();
    ExpectSame(this->ground.image, half);
    EXPECT_EQ(this->ground.session.PanelCommand, 0);
    EXPECT_EQ(this->ground.msg.Label1.Text(), "Reading from sensor");
  }

  /// A read that ends in the middle, behind an act: the old image is there again, and acts are taken.
  void ExpectGivenBack(std::size_t frame, Control& field, const std::string& text,
                       const std::function<void(SensorImage&)>& change) {
    Begin();
    const auto before = this->ground.image;
    const auto act = Typed(field, text);
    Arm(
        frame, [this, &act] { ExpectIgnored(act); }, frame + 2);
    EXPECT_FALSE(this->panel.ActionSensorRead());
    ExpectActed();
    EXPECT_EQ(this->ground.session.LastError, "Can't read from sensor");
    EXPECT_EQ(Line().sensor.Frames().size(), frame + 2);
    ExpectSame(this->ground.image, before);
    this->ground.session.LastError.clear();
    Line().onOutput = answer_;
    Type(field, text);
    auto expected = before;
    change(expected);
    ExpectSame(this->ground.image, expected);
  }

 private:
  SensorPort& Line() { return this->ground.port; }

  std::function<void(const Bytes&)> answer_ = this->ground.port.onOutput;
  int done_ = 0;
};

/// A settings file of which everything is to be taken.
inline Bytes WholeFile(const Bytes& eeprom) {
  return SettingsFile({{10, eeprom}, {15, Bytes(542, 255)}});
}

}  // namespace brelant::test
