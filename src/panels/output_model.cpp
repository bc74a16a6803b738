// SPDX-License-Identifier: GPL-3.0-or-later
#include "panels/output_model.h"

#include <algorithm>

#include "knowledge/gas_curve.h"
#include "panels/FunctionBlocks.h"

namespace brelant {

double FunctionContribution(int type, double x, double a, double b) {
  if (a == b) throw NoResult("Division by zero");
  // Not std::clamp: with a above b both limits still apply, in this order.
  if (x > b) x = b;
  if (x < a) x = a;
  const double part = (x - a) / (b - a) * 100;
  switch (type) {
    case FunctionBlocks::psignPslope:
    case FunctionBlocks::digPsignPslope:
      return part;
    case FunctionBlocks::psignNslope:
    case FunctionBlocks::digPsignNslope:
      return 100 - part;
    case FunctionBlocks::nsignNslope:
    case FunctionBlocks::digNsignNslope:
      return -part;
    case FunctionBlocks::pslope:
    case FunctionBlocks::digPslope:
      return 2 * part - 100;
    case FunctionBlocks::nslope:
    case FunctionBlocks::digNslope:
      return 100 - 2 * part;
    default:
      return part - 100;
  }
}

double LimitSum(double sum) {
  return std::clamp(sum, -100.0, 100.0);
}

double OutputOf(double sum, bool digital, double shown) {
  if (digital && sum > 0 && sum < 100) sum = shown;
  if (digital && sum != 100) sum = 0;
  return std::clamp(sum, 0.0, 100.0);
}

double KeptOutputOf(double sum, bool digital, double shown) {
  const double limited = std::clamp(sum, 0.0, 100.0);
  return digital && limited > 0 && limited < 100 ? shown : limited;
}

}  // namespace brelant
