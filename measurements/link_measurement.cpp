// A whole read through the adapter, in emulated time: what the program, the line of 1 Mbaud and the
// adapter's own program take together. The argument is what a round trip takes beside, in
// microseconds; about 1000 on a USB plug.

#include <benchmark/benchmark.h>

#include "link/link_form.h"

namespace kestrel {
namespace {

void read27C256ThroughTheLink(benchmark::State& state) {
  const auto latency = static_cast<std::uint64_t>(state.range(0));
  test::LinkForm f(sim::Model::kestrel5, latency * test::EmulatedAdapter::kCyclesPerUs,
                   test::LinkForm::Trace::Off);
  f.start();
  const test::Bytes contents = test::randomBytes(32768, 44);
  f.insert("27C256", contents);
  f.rig.select("Eprom 27C256");
  for (auto _ : state) {
    const sim::Nanoseconds before = f.bench.now();
    f.rig.press("Read_button");
    state.SetIterationTime(static_cast<double>(f.bench.now() - before) * 1e-9);
  }
  const auto& buffer = f.rig.state.CodeBuffer;
  if (!std::equal(contents.begin(), contents.end(), buffer.begin())) {
    state.SkipWithError("the chip was read wrongly");
  }
}
BENCHMARK(read27C256ThroughTheLink)
    ->Arg(0)
    ->Arg(1000)
    ->Iterations(1)
    ->UseManualTime()
    ->Unit(benchmark::kSecond);

}  // namespace
}  // namespace kestrel
