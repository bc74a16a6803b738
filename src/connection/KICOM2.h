// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "connection/BRECOM.h"
#include "connection/BREFILE.h"
#include "connection/CalibrationLibrary.h"

namespace brelant {

/// What platform 8 is reached with. It is the library of platform 9 under the names of its own: the roads,
/// the files and the procedures are the same (docs/memory-maps.md, The units of platform 8).
using KICOM2 = BRECOM;
using KIFILE2 = BREFILE;
using KICAL2 = CalibrationLibrary;

}  // namespace brelant
