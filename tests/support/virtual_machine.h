// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <utility>

#include "platform/machine.h"
#include "support/memory_files.h"
#include "support/memory_store.h"
#include "support/queued_user_interface.h"
#include "support/scripted_port.h"
#include "support/virtual_clock.h"
#include "support/virtual_modbus.h"
#include "support/virtual_pump.h"

namespace brelant::test {

/// A whole machine, all in memory. `Port` is ScriptedPort, or SensorPort with the setup of its sensor.
template <typename Port>
struct VirtualMachine {
  template <typename... PortSetup>
  explicit VirtualMachine(PortSetup&&... setup)
      : port(clock, pump, std::forward<PortSetup>(setup)...), machine{clock, pump,  port, modbus,
                                                                      files, store, ui} {}
  VirtualMachine(const VirtualMachine&) = delete;
  VirtualMachine& operator=(const VirtualMachine&) = delete;

  VirtualClock clock;
  VirtualPump pump{clock};
  Port port;
  VirtualModbus modbus{clock, pump};
  MemoryFiles files;
  MemoryStore store;
  QueuedUserInterface ui;
  Machine machine;
};

}  // namespace brelant::test
