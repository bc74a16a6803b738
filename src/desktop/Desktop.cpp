// SPDX-License-Identifier: GPL-3.0-or-later
#include "desktop/Desktop.h"

#include <array>
#include <string_view>

#include "desktop/panels/platform5/Panel5ChartWindow.h"
#include "desktop/panels/platform5/Panel5Window.h"
#include "desktop/panels/platform6/Panel6Window.h"
#include "desktop/panels/platform61/Panel61Window.h"
#include "desktop/panels/platform8/Panel8Window.h"
#include "desktop/panels/safety/SafetyWindow.h"
#include "desktop/panels/safety/unit_dialogs.h"
#include "desktop/windows/CalCurveWindow.h"
#include "desktop/windows/ComSetWindow.h"
#include "desktop/windows/MsgWindow.h"
#include "desktop/windows/SimWindow.h"
#include "desktop/windows/SpanCalNoteWindow.h"

namespace brelant {

namespace {

struct DialogEntry {
  const Form* form;
  std::function<std::unique_ptr<FormWindow>(Acts&)> make;
};

template <typename Window, typename Model>
DialogEntry EntryOf(Model& model) {
  return {&model.form, [&model](Acts& acts) { return std::make_unique<Window>(model, acts); }};
}

struct UnitDialogEntry {
  std::string_view name;
  std::unique_ptr<FormWindow> (*make)(Form&, Acts&);
};

template <typename Window>
std::unique_ptr<FormWindow> MakeUnitDialog(Form& form, Acts& acts) {
  return std::make_unique<Window>(form, acts);
}

/// They belong to the safety panel, and are gone with it.
constexpr std::array<UnitDialogEntry, 5> kUnitDialogs{
    {{"frmZ7731SensorConfig", MakeUnitDialog<SensorConfigWindow>},
     {"frmZ7731ABC", MakeUnitDialog<AbcWindow>},
     {"frmZ7731Logger", MakeUnitDialog<LoggerWindow>},
     {"frmZ7731Options", MakeUnitDialog<OptionsWindow>},
     {"frmZ7731About", MakeUnitDialog<AboutWindow>}}};

struct PanelEntry {
  std::string_view name;
  std::unique_ptr<FormWindow> (*make)(Panel&, Acts&);
};

template <typename Window>
std::unique_ptr<FormWindow> MakePanel(Panel& panel, Acts& acts) {
  return std::make_unique<Window>(panel, acts);
}

constexpr std::array<PanelEntry, 7> kPanels{{{"frm5", MakePanel<Panel5Window>},
                                             {"frm5Chart", MakePanel<Panel5ChartWindow>},
                                             {"frm6", MakePanel<Panel6Window>},
                                             {"frm61", MakePanel<Panel61Window>},
                                             {"frm8Chart", MakePanel<Panel8Window>},
                                             {"frm8_2Chart", MakePanel<Panel8Window>},
                                             {"frmZ7731Chart", MakePanel<SafetyWindow>}}};

}  // namespace

Desktop::Desktop(Program& program, Pump& pump, DesktopUserInterface& userInterface) : program_(program) {
  program.screen.onShow = [this](Form& form, bool visible) { Show(form, visible); };
  userInterface.Enter({&pump, [this] { return acts_.Source(); }, [this] { return Front(); },
                       [this] { return program_.session.Over(); }});
}

Desktop::~Desktop() {
  program_.screen.onShow = nullptr;
}

bool Desktop::Pass() {
  const bool acted = acts_.CarryOut();
  for (const auto& [form, window] : windows_) window->Refresh(acted);
  return acted;
}

void Desktop::Show(Form& form, bool visible) {
  // A window lives no longer than its form is visible: a panel may be gone soon after.
  windows_.erase(&form);
  if (!visible) return;
  auto* owner = Front();
  auto window = MakeWindow(form);
  if (!window) return;
  window->Open(owner);
  windows_.emplace(&form, std::move(window));
}

std::unique_ptr<FormWindow> Desktop::MakeWindow(Form& form) {
  const std::array<DialogEntry, 5> dialogs{EntryOf<ComSetWindow>(program_.comSet),
                                           EntryOf<MsgWindow>(program_.msg), EntryOf<SimWindow>(program_.sim),
                                           EntryOf<SpanCalNoteWindow>(program_.spanNote),
                                           EntryOf<CalCurveWindow>(program_.calCurve)};
  for (const auto& dialog : dialogs) {
    if (dialog.form == &form) return dialog.make(acts_);
  }
  for (const auto& [name, make] : kUnitDialogs) {
    if (name == form.Name()) return make(form, acts_);
  }
  auto* panel = program_.session.CurrentPanel;
  if (panel == nullptr || &form != &panel->form) return nullptr;
  for (const auto& [name, make] : kPanels) {
    if (name == form.Name()) return make(*panel, acts_);
  }
  return nullptr;
}

QWidget* Desktop::Front() const {
  const auto& shown = program_.screen.Shown();
  for (auto form = shown.rbegin(); form != shown.rend(); ++form) {
    const auto window = windows_.find(*form);
    if (window != windows_.end()) return &window->second->Window();
  }
  return nullptr;
}

}  // namespace brelant
