// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <string>

// The library behind it takes longer to compile than all that includes this.
namespace CLI {
class App;
}

namespace brelant {

/// The options that both programs have (docs/architecture.md, Options). Empty: not given.
struct Options {
  std::string appDir;
  std::string settings;
  std::string port;
};

void AddCommonOptions(CLI::App& app, Options& options);

/// The folder of definition, simulation, settings, log and help files: the one that was told, or the
/// program's own if it can be written, or the user's data folder, which is then given the files that come
/// with the program. Needs a QCoreApplication.
std::string ResolveAppDir(const Options& options);

}  // namespace brelant
