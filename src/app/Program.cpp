// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/Program.h"

#include <utility>

namespace brelant {

namespace {

std::string WithoutTrailingSeparator(std::string path) {
  while (path.size() > 1 && (path.back() == '\\' || path.back() == '/')) path.pop_back();
  return path;
}

}  // namespace

Program::Program(const Machine& machine, const std::string& applicationPath, UnitNames names)
    : unitNames(std::move(names)),
      link(session, machine),
      com(session, image, link, machine),
      definitions(session, image, com, machine),
      info(session, image, com, definitions, machine),
      table(session, image, com, definitions, info),
      file(session, image, com, info, table, machine),
      cal(session, image, link, com, info, table, machine),
      msg(session, machine.pump, screen),
      comSet(session, machine, screen),
      sim(session, screen),
      spanNote(session, screen),
      calCurve(info, screen),
      main({machine,
            session,
            screen,
            image,
            com,
            info,
            definitions,
            file,
            cal,
            msg,
            comSet,
            spanNote,
            calCurve,
            {session, link, machine.files, machine.modbusMaster, unitNames.names, unitNames.modbus},
            {}},
           link, sim, WithoutTrailingSeparator(applicationPath)) {}

void Program::Run() {
  while (!session.processOver) {
    main.Main();
    if (!session.Over()) session.CurrentPanel->PanelLoop();
  }
}

}  // namespace brelant
