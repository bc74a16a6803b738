// SPDX-License-Identifier: GPL-3.0-or-later
#include "panels/platform6/JumperFace.h"

#include <array>
#include <optional>

#include "shell/Common.h"

namespace brelant::platform6 {

namespace {

constexpr std::array kLiveChannels{0, 1, 9};

/// Whatever one of the two shows, the other one shows too.
void Mirror(Control& one, Control& other) {
  one.onChange = [&one, &other] { other.SetText(one.Text()); };
  other.onChange = [&one, &other] { one.SetText(other.Text()); };
}

void Show(Control& field, std::optional<float> value) {
  if (value) field.SetText(NumberText(static_cast<float>(Round(*value))));
}

}  // namespace

JumperFace::JumperFace(Form& form, const std::function<void(Control&)>& makeEditable)
    : pct6v3Settings(form.Add(ControlKind::picture, "pct6v3Settings")),
      txb6v3A1(form.Add(ControlKind::text, "txb6v3A1")),
      txb6v3A2(form.Add(ControlKind::text, "txb6v3A2")),
      txb6v3B(form.Add(ControlKind::text, "txb6v3B")),
      txb6v3C(form.Add(ControlKind::text, "txb6v3C")),
      txb6v3D1(form.Add(ControlKind::text, "txb6v3D1")),
      txb6v3D2(form.Add(ControlKind::text, "txb6v3D2")),
      txb6v3E(form.Add(ControlKind::text, "txb6v3E")),
      txb6v3F(form.Add(ControlKind::text, "txb6v3F")),
      txb6v3G1(form.Add(ControlKind::text, "txb6v3G1")),
      txb6v3G2(form.Add(ControlKind::text, "txb6v3G2")),
      txb6v3I(form.Add(ControlKind::text, "txb6v3I")),
      txb6v3K(form.Add(ControlKind::text, "txb6v3K")),
      txb6v3AN(form.AddArray(ControlKind::text, "txb6v3AN", static_cast<int>(kLiveChannels.size()))) {
  for (auto* field : Fields()) makeEditable(*field);
  Mirror(txb6v3A1, txb6v3A2);
  Mirror(txb6v3D1, txb6v3D2);
  Mirror(txb6v3G1, txb6v3G2);
  for (auto* field : txb6v3AN) field->editable = [] { return false; };
}

ControlArray JumperFace::Fields() const {
  return ControlArray({&txb6v3A1, &txb6v3A2, &txb6v3B, &txb6v3C, &txb6v3D1, &txb6v3D2, &txb6v3E, &txb6v3F,
                       &txb6v3G1, &txb6v3G2, &txb6v3I, &txb6v3K});
}

void JumperFace::SetVisible(bool visible) {
  pct6v3Settings.SetVisible(visible);
  for (auto* field : Fields()) field->SetVisible(visible);
  for (auto* field : txb6v3AN) field->SetVisible(visible);
}

void JumperFace::Update(const FunctionEnds& ends, const Pass& pass) {
  ends_ = ends;
  const auto corners = CornersOf(ends, jumperOffset_, pass);
  Show(txb6v3A1, corners.A);
  Show(txb6v3A2, corners.A);
  Show(txb6v3B, corners.B);
  Show(txb6v3C, corners.C);
  Show(txb6v3D1, corners.D);
  Show(txb6v3D2, corners.D);
  Show(txb6v3E, corners.E);
  Show(txb6v3F, corners.F);
  Show(txb6v3G1, corners.G);
  Show(txb6v3G2, corners.G);
  Show(txb6v3I, corners.I);
  Show(txb6v3K, corners.K);
}

FunctionEnds JumperFace::Read(const Pass& pass) {
  const auto number = [](const Control& field) { return ParseNumber(field.Text()); };
  JumperCorners corners;
  corners.A = number(txb6v3A1);
  corners.B = number(txb6v3B);
  corners.C = number(txb6v3C);
  corners.D = number(txb6v3D1);
  corners.E = number(txb6v3E);
  corners.F = number(txb6v3F);
  corners.G = number(txb6v3G1);
  corners.I = number(txb6v3I);
  corners.K = number(txb6v3K);
  const auto settings = SettingsOf(corners, pass);
  jumperOffset_ = settings.jumperOffset;
  return settings.ends;
}

void JumperFace::UpdateLive(const ShowLive& show) {
  for (std::size_t i = 0; i < kLiveChannels.size(); ++i) {
    show(txb6v3AN[static_cast<int>(i)], kLiveChannels.at(i));
  }
}

}  // namespace brelant::platform6
