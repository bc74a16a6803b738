// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

namespace brelant {

/// The arithmetic of the output stage (docs/architecture.md, The offline model). All results are percent.

/// Contribution of a function of that type (FunctionBlocks::Type) at input x, which saturates at a and b.
/// Throws NoResult if a equals b.
double FunctionContribution(int type, double x, double a, double b);

/// The sum limited to -100 to 100.
double LimitSum(double sum);

/// The output of a sum. A digital output keeps `shown`, its present value, anywhere between 0 and 100, and is
/// either 0 or 100.
double OutputOf(double sum, bool digital, double shown);

/// The same on platform 6, where a digital output shows what it keeps.
double KeptOutputOf(double sum, bool digital, double shown);

}  // namespace brelant
