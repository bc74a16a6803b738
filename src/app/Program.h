// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <string>

#include "app/KVXMain.h"
#include "calibration/frmCalCurve.h"
#include "calibration/snsCal.h"
#include "comm/SensorImage.h"
#include "comm/SerialLink.h"
#include "comm/snscom.h"
#include "connection/unit_names.h"
#include "knowledge/SnsInfo.h"
#include "knowledge/Table.h"
#include "knowledge/definitions.h"
#include "knowledge/snsFil.h"
#include "platform/machine.h"
#include "shell/form.h"
#include "shell/frmComSet.h"
#include "shell/frmMsg.h"
#include "shell/frmSim.h"
#include "shell/frmSpanCalNote.h"
#include "shell/session.h"

namespace brelant {

/// One instance of each module, made and wired: everything of one process above the machine.
struct Program {
  /// `applicationPath` is the folder where the program's files lie.
  Program(const Machine& machine, const std::string& applicationPath, UnitNames names = {});
  Program(const Program&) = delete;
  Program& operator=(const Program&) = delete;

  /// Sessions, one after the other, until the process is over.
  void Run();

  const UnitNames unitNames;
  Session session;
  Screen screen;
  SensorImage image;
  SerialLink link;
  snscom com;
  Definitions definitions;
  SnsInfo info;
  Table table;
  snsFil file;
  snsCal cal;
  frmMsg msg;
  frmComSet comSet;
  frmSim sim;
  frmSpanCalNote spanNote;
  frmCalCurve calCurve;
  KVXMain main;
};

}  // namespace brelant
