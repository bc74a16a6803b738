// SPDX-License-Identifier: GPL-3.0-or-later
#include "desktop/panels/platform5/Panel5Window.h"

#include "desktop/kit/make.h"
#include "desktop/panels/platform5/FlowBoard.h"
#include "desktop/panels/platform5/header.h"

namespace brelant {

namespace {

constexpr int kLastChannel = 3;

/// The one unit that no control shows. Asked when the window opens: with the sensor's memory at hand the
/// answer costs nothing on the line.
QString UnitOfLastChannel(const Views& views, const Panel& panel) {
  const auto isThere = [&](int channel) { return views("pctChannel", channel).Visible(); };
  if (!isThere(kLastChannel)) return {};
  // Live values come in the order of the channels, without those that are not there.
  std::size_t before = 0;
  for (int channel = 0; channel < kLastChannel; ++channel) before += isThere(channel) ? 1 : 0;
  return QString::fromStdString(panel.LiveValues().at(before).unit);
}

}  // namespace

Panel5Window::Panel5Window(Panel& panel, Acts& acts) : PanelWindow(panel, acts) {
  auto& layout = platform5::LayOutPanel(views_, panel, *centralWidget());
  layout.addWidget(&Make<platform5::FlowBoard>(*centralWidget(), views_, UnitOfLastChannel(views_, panel)),
                   1);
}

}  // namespace brelant
