// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "comm/SensorImage.h"
#include "comm/SerialLink.h"
#include "comm/snscom.h"
#include "shell/session.h"
#include "support/sensor_port.h"
#include "support/virtual_machine.h"

namespace brelant::test {

/// The program's way to a sensor, from the session down to the wire, on a virtual machine.
template <typename Port>
struct Bus : VirtualMachine<Port> {
  template <typename... PortSetup>
  explicit Bus(PortSetup&&... setup) : VirtualMachine<Port>(std::forward<PortSetup>(setup)...) {
    session.AppDir = "C:\\KVX\\";
  }

  /// Takes the part number for read, so that no transfer asks the sensor for it.
  void KnowPart(std::uint8_t part) {
    image.RamImage[65] = part;
    image.RamValid[65] = true;
  }

  Session session;
  SensorImage image;
  SerialLink link{session, this->machine};
  snscom com{session, image, link, this->machine};
};

using ScriptedBus = Bus<ScriptedPort>;
using SensorBus = Bus<SensorPort>;

}  // namespace brelant::test
