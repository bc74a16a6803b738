// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <algorithm>
#include <deque>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "app/Program.h"
#include "panels/definition_file.h"
#include "panels/frm5.h"
#include "panels/sample_ram.h"
#include "support/memory_files.h"
#include "support/memory_store.h"
#include "support/queued_user_interface.h"
#include "support/sensor_port.h"
#include "support/virtual_modbus.h"

namespace brelant::test {

inline constexpr const char* kUnknownSensor = "Unknown sensor type, can't connect to sensor.";

/// Files that tell when they are read and written, and on which a question can go wrong.
class WatchedFiles : public MemoryFiles {
 public:
  bool Exists(const std::string& path) const override {
    if (onExists) onExists(path);
    return MemoryFiles::Exists(path);
  }
  std::vector<std::uint8_t> Read(const std::string& path, std::size_t limit) const override {
    if (onRead) onRead(path);
    return MemoryFiles::Read(path, limit);
  }
  void Write(const std::string& path, std::span<const std::uint8_t> bytes) override {
    if (onWrite) onWrite(path);
    MemoryFiles::Write(path, bytes);
  }

  std::function<void(const std::string&)> onExists;
  std::function<void(const std::string&)> onRead;
  std::function<void(const std::string&)> onWrite;
};

/// The whole program on a virtual machine, and a person before it who follows a plan: what to do when a form
/// comes up. Without a plan the person leaves the dialog, cancels the choice of a simulation and closes the
/// panel.
template <typename Port>
class ProgramBench {
 public:
  template <typename... PortSetup>
  explicit ProgramBench(PortSetup&&... setup)
      : port(clock, pump, std::forward<PortSetup>(setup)...), machine{clock, pump,  port, modbus,
                                                                      files, store, ui} {
    files.Put("C:\\KVX\\DEF00104.PDT", DefinitionFile(SampleChannels()));
  }
  ~ProgramBench() {
    // Forms that are still up go with the program, when there is nobody left to see it.
    if (program) program->screen.onShow = nullptr;
  }
  ProgramBench(const ProgramBench&) = delete;
  ProgramBench& operator=(const ProgramBench&) = delete;

  void Store(const std::string& key, const std::string& value) {
    store.values["BRELANT/Start/" + key] = value;
  }

  /// The process begins.
  Program& Make(const std::string& path = "C:\\KVX") {
    program.emplace(machine, path);
    program->screen.onShow = [this](Form& form, bool visible) {
      shown.push_back((visible ? "" : "-") + form.Name());
      if (visible) Follow(form);
      if (onShow) onShow(form, visible);
    };
    return *program;
  }
  /// From the begin of the process to its end.
  void Run() {
    if (!program) Make();
    program->Run();
  }

  /// What is done the next time that the form comes, in the order of the calls.
  void When(const std::string& form, std::function<void()> act) { plan_[form].push_back(std::move(act)); }
  void After(std::chrono::microseconds delay, std::function<void()> act) {
    pump.After(delay, std::move(act));
  }

  void StartSingle() {
    When("frmComSet", [this] {
      Click("frmComSet", "optStartMode(0)");
      Click("frmComSet", "btnStartKVX");
    });
  }
  void StartNetwork(const std::string& id) {
    When("frmComSet", [this, id] {
      Click("frmComSet", "optStartMode(1)");
      Control("frmComSet", "txbID").SetText(id);
      Click("frmComSet", "btnStartKVX");
    });
  }
  /// With the choice that is in the box, or another.
  void StartSimulated(const std::optional<std::string>& choice) {
    When("frmComSet", [this] {
      Click("frmComSet", "optStartMode(2)");
      Click("frmComSet", "btnStartKVX");
    });
    When("frmSim", [this, choice] {
      auto& list = Control("frmSim", "cmbTypeOfS");
      if (choice) {
        EXPECT_TRUE(list.Owner().Choose(list, *choice)) << *choice;
      }
      Click("frmSim", "Command1");
    });
  }

  brelant::Control& Control(const std::string& form, const std::string& control) {
    return *program->screen.Find(form)->Find(control);
  }
  bool Click(const std::string& form, const std::string& control) {
    auto& found = Control(form, control);
    return found.Owner().Click(found);
  }
  frm5& Panel5() { return dynamic_cast<frm5&>(*program->session.CurrentPanel); }
  int CountShown(const std::string& form) const {
    return static_cast<int>(std::count(shown.begin(), shown.end(), form));
  }

  VirtualClock clock;
  VirtualPump pump{clock};
  Port port;
  VirtualModbus modbus{clock, pump};
  WatchedFiles files;
  MemoryStore store;
  QueuedUserInterface ui;
  Machine machine;
  std::optional<Program> program;
  /// Forms as they come, and with a "-" as they go.
  std::vector<std::string> shown;
  std::function<void(Form&, bool)> onShow;

 private:
  void Follow(Form& form) {
    auto& acts = plan_[form.Name()];
    std::function<void()> act = Default(form);
    if (!acts.empty()) {
      act = acts.front();
      acts.pop_front();
    }
    if (act) After(std::chrono::milliseconds(10), act);
  }
  std::function<void()> Default(Form& form) {
    if (form.Name() == "frmComSet") return [this] { Click("frmComSet", "btnExit"); };
    if (form.Name() == "frmSim") return [this] { Click("frmSim", "Command2"); };
    if (form.Name().starts_with("frm5")) return [&form] { form.Close(); };
    return {};
  }

  std::map<std::string, std::deque<std::function<void()>>> plan_;
};

/// The program with a virtual sensor that holds the sample on its line.
class SensorBench : public ProgramBench<SensorPort> {
 public:
  SensorBench() : ProgramBench(bench::SensorSetup{.part = 104}) { Hold(SampleRam()); }

  void Hold(const RamBytes& ram) { std::copy(ram.begin(), ram.end(), port.sensor.Ram().begin()); }
  bool Sent(const Bytes& bytes) const {
    const auto sent = port.Sent();
    return std::search(sent.begin(), sent.end(), bytes.begin(), bytes.end()) != sent.end();
  }
};

/// The program with nothing on its line but a voice that tells a part number.
class PartBench : public ProgramBench<ScriptedPort> {
 public:
  explicit PartBench(std::optional<std::uint8_t> part = {}) {
    if (!part) return;
    port.onOutput = [this, number = *part](const Bytes& bytes) {
      for (const auto byte : bytes) Hear(byte, number);
    };
  }

 private:
  void Hear(std::uint8_t byte, std::uint8_t part) {
    heard_.push_back(byte);
    if (heard_ == Bytes{254}) {
      port.Arrive({223});
    } else if (heard_ == Bytes{254, 129, 65, 194}) {
      port.Arrive({6, part, static_cast<std::uint8_t>(6 + part)});
    }
    if (heard_.size() == 4) heard_.clear();
  }

  Bytes heard_;
};

}  // namespace brelant::test
