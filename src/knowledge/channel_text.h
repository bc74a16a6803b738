// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <string>

namespace brelant {

/// The ways between the raw number that a sensor holds and the text that the user sees, for one channel whose
/// configuration is known (docs/memory-maps.md, Channels).

/// Platform 5, by the type of the channel; `raw` is without offset.
std::string TypedText(float raw, int type);
/// Raw number without offset, 0 for an unknown type.
float TypedRaw(float value, int type);
/// Empty for an unknown type.
std::string TypedUnit(int type);

/// The other platforms, by configuration byte.
struct ChannelFormat {
  float scale;
  float divider;
  bool fahrenheit;
};

/// Empty if the format cannot be computed with.
std::string FormattedText(double raw, const ChannelFormat& format, bool keepFraction);
/// The exact product of the value's shortest decimal text with scale and divider, truncated toward zero, so
/// that a value that is shown and read back does not creep.
float FormattedRaw(float value, const ChannelFormat& format);

}  // namespace brelant
