// SPDX-License-Identifier: GPL-3.0-or-later
#include "desk.h"

#include <QApplication>
#include <QListWidget>
#include <fstream>
#include <iterator>

namespace brelant::test {

namespace {

constexpr const char* kAppDir = "C:\\KVX";

}  // namespace

Desk::Desk(int part)
    : port(clock, pump, bench::SensorSetup{.part = part, .variant = 0}),
      program(TheMachine(), kAppDir),
      desktop(program, pump, ui),
      part_(std::to_string(part)) {
  PutFile("DEF00" + part_ + ".PDT");
  PutFile("Platform 5 part " + part_ + ".sim");
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
