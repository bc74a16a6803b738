// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <memory>
#include <string>

#include "panels/frm5_chart_fixture.h"
#include "panels/sensor_line.h"

namespace brelant::test {

/// One of the two panels of platform 5, with a sensor's RAM that suits it.
struct Panel5Kind {
  std::string name;
  std::unique_ptr<ImagePanel> (*make)(const PanelContext&);
  RamBytes (*ram)();

  /// For the names of tests.
  friend std::ostream& operator<<(std::ostream& out, const Panel5Kind& kind) { return out << kind.name; }
};

template <typename PanelOf5>
std::unique_ptr<ImagePanel> MakePanel5(const PanelContext& context) {
  return std::make_unique<PanelOf5>(context);
}

inline auto BothPanels() {
  return testing::Values(Panel5Kind{"frm5", MakePanel5<frm5>, SampleRam},
                         Panel5Kind{"frm5Chart", MakePanel5<frm5Chart>, SampleChartRam});
}
inline std::string KindName(const testing::TestParamInfo<Panel5Kind>& info) {
  return info.param.name;
}

/// Each of the two panels, shown in live mode, with a virtual sensor on the line.
class EachPanel5Test : public testing::TestWithParam<Panel5Kind> {
 protected:
  EachPanel5Test() {
    ground.Define(104, ChartChannels());
    Attach(GetParam().ram());
    panel->form.Show();
    panel->SimMode(false);
    session.LastError.clear();
  }

  /// The sensor holds these bytes, and the panel has read them.
  void Attach(const RamBytes& ram) {
    Hold(port, ram);
    ground.Load(ram);
    panel->FormUpdateInit();
    panel->FormUpdate();
    panel->FormUpdateM();
    port.sensor.ForgetFrames();
  }
  Control& Entry(const std::string& name) { return *panel->form.Find(name); }
  RamBytes Image() const { return RamOf(ground.image); }
  /// Straight tables on channels 1 and 2: entry e is 6500 - 100 e, so a value v lies at 40.96 (6500 - v).
  /// Entry 15, zero gas, is 5000.
  void StraightTables() {
    ASSERT_TRUE(ground.definitions.LoadDefinition());
    for (const int table : {1, 2}) {
      for (int entry = 0; entry <= 16; ++entry) {
        const int value = 6500 - 100 * entry;
        const auto at = static_cast<std::size_t>(34 * table + 2 * entry);
        ground.image.EepromImage.at(at) = static_cast<float>(value / 256);
        ground.image.EepromImage.at(at + 1) = static_cast<float>(value % 256);
      }
    }
  }

  SensorGround ground{bench::SensorSetup{.part = 104}};
  SensorPort& port = ground.port;
  Session& session = ground.session;
  std::unique_ptr<ImagePanel> panel = GetParam().make(ground.context);
};

}  // namespace brelant::test
