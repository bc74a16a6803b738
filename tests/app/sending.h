// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <string>
#include <vector>

#include "app/program_bench.h"
#include "app/settings_file.h"
#include "panels/framed.h"

namespace brelant::test {

/// Channels 1 and 2 with the curve y = e^(-c / 10000) up to 10000, so that they have tables; 5000 is zero
/// gas.
inline DefinedChannels CurvedChannels() {
  auto channels = SampleChannels();
  for (const std::size_t gas : {1U, 2U}) {
    channels[gas].a1 = {1, 0};
    channels[gas].k = {-1, -4};
    channels[gas].fullScale = 10000;
  }
  return channels;
}

/// The program with a virtual sensor as it leaves the factory.
class FactoryBench : public ProgramBench<SensorPort> {
 public:
  explicit FactoryBench(int part, std::optional<int> variant = {})
      : ProgramBench(bench::SensorSetup{.part = part, .variant = variant}) {
    files.Put("C:\\KVX\\DEF00104.PDT", DefinitionFile(CurvedChannels()));
  }
  explicit FactoryBench(const RamBytes& ram) : FactoryBench(104) {
    std::copy(ram.begin(), ram.end(), port.sensor.Ram().begin());
  }

  Bytes SensorRam() { return {port.sensor.Ram().begin(), port.sensor.Ram().end()}; }
  Bytes SensorEeprom() { return {port.sensor.Eeprom().begin(), port.sensor.Eeprom().end()}; }

  /// In the dialog: the file is chosen and the button pressed; two minutes later the dialog is left.
  void Send(const std::string& file) {
    When("frmComSet", [this, file] {
      ui.chosenFiles = {file};
      EXPECT_TRUE(Click("frmComSet", "Command5"));
      PressSend();
    });
    Run();
  }
  void PressSend() {
    EXPECT_TRUE(Click("frmComSet", "cmdSendFile"));
    After(std::chrono::seconds(120), [this] { Click("frmComSet", "btnExit"); });
  }
  /// Frames that wrote, and commands.
  std::vector<Bytes> Written() const {
    std::vector<Bytes> written;
    for (const auto& frame : port.sensor.Frames()) {
      // Reads have bit 7 and are no command: commands of the two generations stand in docs/protocol.md.
      const bool command = frame == Bytes{161, 0, 161} || frame == Bytes{147, 0, 147} ||
                           frame == Bytes{153, 173, 70} || frame == Bytes{169, 171, 84} ||
                           frame == Bytes{197, 55, 252} || frame == Bytes{145, 0, 145};
      if (frame.at(0) < 128 || command) written.push_back(frame);
    }
    return written;
  }
};

}  // namespace brelant::test
