// SPDX-License-Identifier: GPL-3.0-or-later
#include <cstdint>
#include <cstdlib>
#include <vector>

#include "knowledge/definitions.h"
#include "support/bus.h"

/// Any bytes as a definition file: loaded, or refused with a text and no definition.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  brelant::test::ScriptedBus bus;
  bus.KnowPart(231);
  bus.files.Put(bus.session.AppDir + "\\DEF00231.PDT", {data, data + size});
  brelant::Definitions definitions(bus.session, bus.image, bus.com, bus.machine);
  const bool loaded = definitions.LoadDefinition();
  if (loaded != (definitions.DefinitionPart() == 231) || loaded != bus.session.LastError.empty())
    std::abort();
  for (const float byte : bus.image.EepromImage) {
    if (!(byte >= 0 && byte <= 255)) std::abort();
  }
  return 0;
}
