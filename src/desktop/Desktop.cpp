// SPDX-License-Identifier: GPL-3.0-or-later
#include "desktop/Desktop.h"

#include "desktop/panels/platform5/Panel5Window.h"
#include "desktop/windows/ComSetWindow.h"
#include "desktop/windows/MsgWindow.h"
#include "desktop/windows/SimWindow.h"
#include "desktop/windows/SpanCalNoteWindow.h"

namespace brelant {

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
  if (&form == &program_.comSet.form) return std::make_unique<ComSetWindow>(program_.comSet, acts_);
  if (&form == &program_.msg.form) return std::make_unique<MsgWindow>(program_.msg, acts_);
  if (&form == &program_.sim.form) return std::make_unique<SimWindow>(program_.sim, acts_);
  if (&form == &program_.spanNote.form) {
    return std::make_unique<SpanCalNoteWindow>(program_.spanNote, acts_);
  }
  auto* panel = program_.session.CurrentPanel;
  if (panel == nullptr || &form != &panel->form) return nullptr;
  if (form.Name() == "frm5") return std::make_unique<Panel5Window>(*panel, acts_);
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
