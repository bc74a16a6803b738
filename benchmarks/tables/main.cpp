// SPDX-License-Identifier: GPL-3.0-or-later
// brelant-table-benchmark: what the tables of a calibration and of a definition file cost to compute, without
// the passes of the event loop. Exit status 1: one takes longer than the limit.
#include <array>
#include <cstdio>
#include <string>
#include <vector>

#include <benchmark/benchmark.h>

#include "calibration/table_search.h"
#include "knowledge/gas_curve.h"

namespace {

using namespace brelant;

constexpr double kLimitMilliseconds = 5;
constexpr auto kNoPass = [] {};

/// A gas at which a sensor is calibrated, in the unit of the curve, and what the sensor measures there. The
/// last is beyond the curve, so that the searches of low positions go on to their limit.
struct SpanGas {
  const char* name;
  float concentration;
  float transmission;
};
constexpr std::array kSpanGases{SpanGas{"low", 400, 0.93F}, SpanGas{"usual", 1000, 0.82F},
                                SpanGas{"high", 5000, 0.6F}, SpanGas{"far", 9000, 0.85F}};

void SearchSpan(benchmark::State& state, const SpanCurve& curve, const SpanGas& gas) {
  for ([[maybe_unused]] const auto turn : state) {
    benchmark::DoNotOptimize(SpanTable(curve, gas.transmission, gas.concentration, 5000, kNoPass));
  }
}

struct DefinedChannel {
  GasCurve curve;
  float fullScale;
};
using DefinedChannels = std::array<DefinedChannel, 4>;

void ComputeDefinition(benchmark::State& state, const DefinedChannels& channels) {
  for ([[maybe_unused]] const auto turn : state) {
    for (const auto& channel : channels) {
      benchmark::DoNotOptimize(NormalisedTable(channel.curve, channel.fullScale, kNoPass));
    }
  }
}

/// The usual table, and a judgement of each row.
class JudgingReporter : public benchmark::ConsoleReporter {
 public:
  JudgingReporter() : ConsoleReporter(OO_None) {}

  void ReportRuns(const std::vector<Run>& runs) override {
    ConsoleReporter::ReportRuns(runs);
    for (const auto& run : runs) {
      if (run.run_type != Run::RT_Iteration) continue;
      ++judged_;
      const double milliseconds = 1000 * run.real_accumulated_time / static_cast<double>(run.iterations);
      if (!run.error_occurred && milliseconds <= kLimitMilliseconds) continue;
      ++broken_;
      std::printf("%s: BROKEN, the limit is %g ms\n", run.benchmark_name().c_str(), kLimitMilliseconds);
    }
  }

  bool Holds() const { return judged_ > 0 && broken_ == 0; }

 private:
  int judged_ = 0;
  int broken_ = 0;
};

void RegisterAll() {
  constexpr std::array<const char*, 4> kCurves{"A", "B", "C", "D"};
  for (std::size_t i = 0; i < kCurves.size(); ++i) {
    const auto curve = CurveOfNibble(static_cast<int>(i));
    for (const auto& gas : kSpanGases) {
      const auto name = std::string("span, curve ") + kCurves[i] + ", " + gas.name;
      benchmark::RegisterBenchmark(name.c_str(), SearchSpan, curve, gas)->Unit(benchmark::kMillisecond);
    }
  }
  const auto curve = [](int nibble) { return CurveOfNibble(nibble).curve; };
  const DefinedChannels fourGases{{{curve(0), 2000}, {curve(1), 5000}, {curve(2), 5000}, {curve(3), 5000}}};
  benchmark::RegisterBenchmark("definition, four tables", ComputeDefinition, fourGases)
      ->Unit(benchmark::kMillisecond);
}

}  // namespace

int main(int argc, char** argv) {
  benchmark::Initialize(&argc, argv);
  if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 1;
  RegisterAll();
  JudgingReporter reporter;
  benchmark::RunSpecifiedBenchmarks(&reporter);
  benchmark::Shutdown();
  return reporter.Holds() ? 0 : 1;
}
