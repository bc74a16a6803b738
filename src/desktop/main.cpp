// SPDX-License-Identifier: GPL-3.0-or-later
// brelant: the desktop program.
#include <CLI/CLI.hpp>
#include <QApplication>
#include <QMessageBox>
#include <iostream>
#include <map>
#include <optional>
#include <string>

#include "app/Program.h"
#include "desktop/Appearance.h"
#include "desktop/Desktop.h"
#include "desktop/DesktopUserInterface.h"
#include "names/names_file.h"
#include "qt/QtMachine.h"
#include "qt/options.h"

namespace {

constexpr int kBadOptions = 2;

using brelant::Options;
using brelant::Style;

struct DesktopOptions : Options {
  Style style = Style::system;
};

void Describe(CLI::App& app, DesktopOptions& options) {
  const std::map<std::string, Style> styles{
      {"system", Style::system}, {"light", Style::light}, {"dark", Style::dark}};
  brelant::AddCommonOptions(app, options);
  app.add_option("--style", options.style, "Light or dark windows; system: as the machine has them")
      ->transform(CLI::CheckedTransformer(styles).description(""))
      ->type_name("system|light|dark");
  app.set_version_flag("--version", std::string("brelant ") + BRELANT_VERSION);
}

/// A port that was told is enough to start with the single sensor on it.
void Preset(brelant::frmComSet& dialog, const std::string& port) {
  if (port.empty()) return;
  dialog.txbComPort.SetText(port);
  for (const auto* option : dialog.optStartMode) {
    if (option->Value() == 1) return;
  }
  dialog.form.Select(dialog.optStartMode[brelant::frmComSet::singleSensor]);
}

/// Nothing, after the user was told, if the names file says what cannot be.
std::optional<brelant::UnitNames> LoadNames(const brelant::Files& files, const std::string& folder) {
  try {
    return brelant::ReadUnitNames(files, folder);
  } catch (const brelant::NamesError& error) {
    std::cerr << error.what() << std::endl;
    QMessageBox::critical(nullptr, QApplication::applicationName(), QString::fromStdString(error.what()));
    return {};
  }
}

int Run(QApplication& application, const DesktopOptions& options) {
  brelant::ApplyStyle(application, options.style);
  brelant::DesktopUserInterface userInterface;
  brelant::QtMachine machine(options, userInterface);
  const auto folder = brelant::ResolveAppDir(options);
  const auto names = LoadNames(machine.machine().files, folder);
  if (!names) return kBadOptions;
  brelant::Program program(machine.machine(), folder, *names);
  brelant::Desktop desktop(program, machine.pump(), userInterface);
  machine.pump().OnPass([&desktop] { return desktop.Pass(); });
  Preset(program.comSet, options.port);
  program.Run();
  return 0;
}

}  // namespace

int main(int argc, char** argv) {
  DesktopOptions options;
  CLI::App app("Configures and watches CO2 sensors.", "brelant");
  Describe(app, options);
  try {
    app.parse(argc, argv);
  } catch (const CLI::ParseError& error) {
    return app.exit(error) == 0 ? 0 : kBadOptions;
  }
  // The toolkit has an option of its own named --style; the environment still reaches it.
  int count = 1;
  QApplication application(count, argv);
  QApplication::setApplicationName("BRELANT");
  QApplication::setQuitOnLastWindowClosed(false);
  return Run(application, options);
}
