// What the program itself adds to a port access, and how fast the simulated port is.

#include <benchmark/benchmark.h>

#include "hardware/ports/monotonic_clock.h"
#include "hardware/ports/no_port.h"
#include "port_out.h"
#include "simulator/bench.h"
#include "simulator/chip_factory.h"
#include "simulator/simulated_port.h"

namespace kestrel {
namespace {

/// The program's own layers, over a port that does nothing.
void portOutOverANoPort(benchmark::State& state) {
  ports::NoPort nothing;
  ports::MonotonicClock clock;
  measurePortOut(state, nothing, clock);
}
BENCHMARK(portOutOverANoPort);

/// Latch 2 loaded and a byte read back, as a read does it: eight accesses.
void simulatedAccesses(benchmark::State& state) {
  sim::Bench bench;
  bench.plug(sim::Model::kestrel5, 0x378).insert(sim::makeChip("27C080"));
  sim::SimulatedPort port(bench);
  std::uint8_t address = 0;
  for (auto _ : state) {
    port.PortOut(0x378, address++);
    port.PortOut(0x37A, 0x07);
    port.PortOut(0x37A, 0x06);
    port.PortOut(0x37A, 0x07);
    port.PortOut(0x37A, 0x05);
    benchmark::DoNotOptimize(port.PortIn(0x379));
    port.PortOut(0x37A, 0x01);
    benchmark::DoNotOptimize(port.PortIn(0x379));
  }
  state.SetItemsProcessed(state.iterations() * 8);
}
BENCHMARK(simulatedAccesses);

}  // namespace
}  // namespace kestrel
