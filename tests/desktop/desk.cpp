// SPDX-License-Identifier: GPL-3.0-or-later
#include "desk.h"

#include <QAction>
#include <QApplication>
#include <QLineEdit>
#include <QMainWindow>
#include <QMenu>
#include <QMenuBar>
#include <fstream>
#include <iterator>

namespace brelant::test {

namespace {

constexpr const char* kAppDir = "C:\\KVX";

const char* PanelOf(int platform, int variant) {
  if (platform == 5) return variant == 0 ? "frm5" : "frm5Chart";
  if (platform == 8) return variant == 1 ? "frm8Chart" : "frm8_2Chart";
  if (platform == 9) return "frmZ7731Chart";
  return platform == 6 ? "frm6" : "frm61";
}

}  // namespace

Desk::Desk(int part, int variant)
    : port(clock, pump, bench::SensorSetup{.part = part, .variant = variant}),
      program(TheMachine(), kAppDir),
      desktop(program, pump, ui),
      panel_(PanelOf(port.sensor.Platform(), variant)) {
  if (port.sensor.Platform() == 5) {
    const auto name = std::to_string(part);
    PutFile("DEF00" + name + ".PDT");
    PutFile("Platform 5 " + (variant == 0 ? "part " + name : "chart") + ".sim");
  }
  // It is simulated without what a file holds.
  if (port.sensor.Platform() == 9) files.Put(std::string(kAppDir) + "\\Vega 3.sim", {});
  pump.limit = std::chrono::hours(1);
  pump.OnPass([this] { return desktop.Pass(); });
  pump.OnPass([this] { return Pass(); });
}

void Desk::PutFile(const std::string& name) {
  std::ifstream file(std::string(BRELANT_DATA_DIR "/") + name, std::ios::binary);
  if (!file) throw std::runtime_error(name + " is missing");
  files.Put(std::string(kAppDir) + "\\" + name, {std::istreambuf_iterator<char>(file), {}});
}

void Desk::When(Condition condition, Step step) {
  steps_.push_back({std::move(condition), std::move(step)});
}

void Desk::In(const QString& window, Step step) {
  When([this, window] { return FindWindow(window) != nullptr && IsIdle(); }, std::move(step));
}

void Desk::StartSession() {
  In("frmComSet", [this] { Press(Find("frmComSet", "optStartMode(0)")); });
  In("frmComSet", [this] { Press(Find("frmComSet", "btnStartKVX")); });
}

void Desk::StartSimulation() {
  In("frmComSet", [this] { Press(Find("frmComSet", "optStartMode(2)")); });
  In("frmComSet", [this] { Press(Find("frmComSet", "btnStartKVX")); });
  In("frmSim", [this] { Press(Find("frmSim", "Command1")); });
}

void Desk::ClickMenu(const QStringList& names) const {
  auto& window = *static_cast<QMainWindow*>(FindWindow(panel_));
  Activate(window);
  QWidget* menu = window.menuBar();
  for (const auto& name : names) {
    auto* action = window.findChild<QAction*>(name);
    if (action == nullptr) throw std::out_of_range(name.toStdString());
    ClickAction(*menu, *action);
    menu = action->menu();
  }
}

void Desk::Answer(const QString& text) {
  When([] { return FindWindow("InputBox") != nullptr; },
       [text] {
         auto& edit = *FindWindow("InputBox")->findChild<QLineEdit*>();
         Type(edit, text);
         PressKey(edit, Qt::Key_Return);
       });
}

void Desk::Run() {
  When([this] { return IsIdle(); }, [this] { program.session.processOver = true; });
  program.Run();
}

bool Desk::IsIdle() const {
  return program.session.PanelCommand == 0 && program.session.BusBusyText.empty() && !program.msg.Visible();
}

bool Desk::Pass() {
  QApplication::processEvents();
  if (steps_.empty() || !steps_.front().condition()) return false;
  const auto step = std::move(steps_.front().step);
  steps_.pop_front();
  step();
  QApplication::processEvents();
  return true;
}

}  // namespace brelant::test
