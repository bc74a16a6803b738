// SPDX-License-Identifier: GPL-3.0-or-later
#include "panels/DigitalTrigger.h"

#include <algorithm>
#include <cmath>

#include "shell/Common.h"

namespace brelant {

namespace {

constexpr int kFlag = 128;
constexpr int kSevenBits = 127;

ControlArray AddTicks(Form& form, int outputs) {
  std::vector<Control*> ticks;
  for (int j = 1; j <= outputs; ++j) {
    const auto number = std::to_string(j);
    ticks.push_back(&form.Add(ControlKind::check, "cbxDigTout" + number, "Out " + number));
  }
  return ControlArray(ticks);
}

}  // namespace

void SignedLevel::ShowText(float byte, double (*round)(double)) {
  const int bits = Bits(byte);
  const double percent = round((bits & kSevenBits) / double{kSevenBits} * 100);
  level.SetText(((bits & kFlag) != 0 ? "-" : "") + NumberText(static_cast<float>(percent)));
}

void SignedLevel::Show(float byte, double (*round)(double)) {
  ShowText(byte, round);
  ShowSign(HasBit(byte, kFlag));
}

void SignedLevel::ShowSign(bool isNegative) {
  positive.SetVisible(!isNegative);
  negative.SetVisible(isNegative);
}

float SignedLevel::Byte() const {
  const double percent = ParseNumber(level.Text());
  const int amount = Bits(static_cast<float>(std::abs(percent / 100 * kSevenBits))) & kSevenBits;
  return static_cast<float>(amount + (percent < 0 ? kFlag : 0));
}

void SignedLevel::SetRules() {
  // By value: the struct may move, what it refers to stays.
  positive.onClick = [copy = *this]() mutable {
    copy.level.SetText("-" + copy.level.Text());
    copy.ShowSign(true);
  };
  negative.onClick = [copy = *this]() mutable {
    copy.level.SetText(NumberText(-ParseNumber(copy.level.Text())));
    copy.ShowSign(false);
  };
}

DigitalTrigger::DigitalTrigger(Form& form, int outputs, const Clock& clock, const Rules& rules)
    : cbxDigTout(AddTicks(form, outputs)),
      txbDigTtime(form.Add(ControlKind::text, "txbDigTtime")),
      lblDigTunit(form.Add(ControlKind::label, "lblDigTunit")),
      txbDigTlevel(form.Add(ControlKind::text, "txbDigTlevel")),
      pctDigTPsign(form.Add(ControlKind::picture, "pctDigTPsign")),
      pctDigTNsign(form.Add(ControlKind::picture, "pctDigTNsign")),
      linDigTPsign(form.Add(ControlKind::bar, "linDigTPsign")),
      linDigTNsign(form.Add(ControlKind::bar, "linDigTNsign")),
      btnDigTrig(form.Add(ControlKind::button, "btnDigTrig", "Trigger")),
      mTimeUnits(form.AddMenu("", "mTimeUnits", "Time unit")),
      mTimeUnitMin(form.AddMenu("mTimeUnits", "mTimeUnitMin", "Min")),
      mTimeUnitSec(form.AddMenu("mTimeUnits", "mTimeUnitSec", "Sec")),
      triggerLevel{txbDigTlevel, pctDigTPsign, pctDigTNsign},
      clock_(clock) {
  for (auto* tick : cbxDigTout) tick->onClick = rules.changed;
  rules.makeEditable(txbDigTtime);
  rules.makeEditable(txbDigTlevel);
  triggerLevel.SetRules();
  lblDigTunit.onClick = [this, choose = rules.choose] {
    choose(lblDigTunit, ControlArray({&mTimeUnitMin, &mTimeUnitSec}));
  };
  for (auto* control : {&linDigTPsign, &linDigTNsign, &btnDigTrig, &mTimeUnits}) control->SetVisible(false);
  btnDigTrig.onClick = [this] { Start(); };
}

void DigitalTrigger::ShowUnit(float timeByte) {
  lblDigTunit.SetText(HasBit(timeByte, kFlag) ? mTimeUnitMin.Text() : mTimeUnitSec.Text());
}

int DigitalTrigger::UnitBit() const {
  return lblDigTunit.Text() == mTimeUnitMin.Text() ? kFlag : 0;
}

void DigitalTrigger::Start() {
  const double time = ParseNumber(txbDigTtime.Text());
  if (time == 0 || Runs()) return;
  const bool seconds = lblDigTunit.Text() == mTimeUnitSec.Text();
  // The byte in the sensor ends far below the limit, the text that a user has just typed need not.
  constexpr double kLongest = 86400;
  const auto length = std::chrono::duration<double>(std::clamp(seconds ? time : time * 60, 0.0, kLongest));
  const auto now = clock_.Now();
  run_ = Run{now, now + std::chrono::duration_cast<std::chrono::microseconds>(length)};
  auto& line = pctDigTPsign.Visible() ? linDigTPsign : linDigTNsign;
  line.SetValue(0);
  line.SetVisible(true);
}

void DigitalTrigger::Move() {
  if (!Runs() || ParseNumber(txbDigTtime.Text()) == 0) return;
  const auto now = clock_.Now();
  if (now >= run_->end) {
    HideBar();
    run_.reset();
    return;
  }
  const auto ratio = std::chrono::duration<double>(now - run_->start) / (run_->end - run_->start);
  linDigTPsign.SetValue(static_cast<int>(ratio * 100));
  linDigTNsign.SetValue(linDigTPsign.Value());
}

void DigitalTrigger::HideBar() {
  linDigTPsign.SetVisible(false);
  linDigTNsign.SetVisible(false);
}

}  // namespace brelant
