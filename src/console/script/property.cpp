// SPDX-License-Identifier: GPL-3.0-or-later
#include "console/script/property.h"

#include <map>

namespace brelant::script {

std::optional<Property> FindProperty(std::string_view name) {
  static const std::map<std::string_view, Property> properties{
      {"text", Property::text},       {"value", Property::value}, {"visible", Property::visible},
      {"enabled", Property::enabled}, {"back", Property::back},   {"fore", Property::fore},
      {"tip", Property::tip},         {"items", Property::items}};
  const auto found = properties.find(name);
  if (found == properties.end()) return {};
  return found->second;
}

}  // namespace brelant::script
