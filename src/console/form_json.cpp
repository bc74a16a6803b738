// SPDX-License-Identifier: GPL-3.0-or-later
#include "console/form_json.h"

#include <nlohmann/json.hpp>

namespace brelant {

namespace {

using script::Property;

void AddState(Json& json, const Control& control) {
  json["text"] = control.Text();
  json["value"] = control.Value();
  json["visible"] = control.Visible();
  json["enabled"] = control.Enabled();
  json["back"] = control.Back();
  json["fore"] = control.Fore();
  json["tip"] = control.Tip();
}

}  // namespace

Json PropertyJson(const Control& control, Property property) {
  switch (property) {
    case Property::text:
      return control.Text();
    case Property::value:
      return control.Value();
    case Property::visible:
      return control.Visible();
    case Property::enabled:
      return control.Enabled();
    case Property::back:
      return control.Back();
    case Property::fore:
      return control.Fore();
    case Property::tip:
      return control.Tip();
    case Property::items:
      return control.Items();
  }
  return nullptr;
}

Json ControlJson(const Control& control) {
  Json json{{"control", control.Name()}};
  AddState(json, control);
  return json;
}

Json FormJson(const Form& form) {
  Json controls = Json::object();
  for (const auto& control : form.Controls()) AddState(controls[control.Name()], control);
  return {{"form", form.Name()},
          {"caption", form.Caption()},
          {"visible", form.Visible()},
          {"controls", std::move(controls)}};
}

}  // namespace brelant
