// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "connection/BRECOM.h"
#include "safety/snsZ7731.h"

namespace brelant {

/// Reads what a poll needs of a safety unit, in this order: status nibbles, values, alarm bits
/// (docs/architecture.md, The symbolic road). Throws ConnectionError; what was read until then is in `unit`.
void PollUnit(BRECOM& connection, snsZ7731& unit);

}  // namespace brelant
