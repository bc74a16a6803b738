// SPDX-License-Identifier: GPL-3.0-or-later
#include "calibration/sensor_definition.h"

#include "bench/channel_plan.h"
#include "support/knowledge.h"

namespace brelant::test {

std::vector<std::uint8_t> DefinitionOf(int part) {
  DefinitionFile file;
  const auto& plans = bench::PlanOf(part);
  for (std::size_t i = 0; i < plans.size(); ++i) {
    const auto& plan = plans[i];
    const auto block = DefinitionFile::Block(i);
    const auto put = [&](std::size_t offset, const bench::Decimal& decimal) {
      file.Put(block + offset, decimal.mantissa);
      file.Put(block + offset + 4, decimal.exponent);
    };
    if (plan.curve) {
      put(32, plan.curve->a1);
      put(40, plan.curve->k);
      put(48, plan.curve->a2);
      put(56, plan.curve->b);
      put(64, plan.curve->a3);
    }
    file.Put(block + 72, plan.full_scale);
    file.SetActive(i, plan.quantity == bench::Quantity::kNone ? 0 : 1);
    file.SetType(i, plan.type);
  }
  return file.bytes;
}

}  // namespace brelant::test
