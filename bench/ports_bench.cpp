// What the program itself adds to a port access, and how fast the simulated port is.

#include <benchmark/benchmark.h>

#include "hardware/ports/attended_port.h"
#include "hardware/ports/lpt_ports.h"
#include "simulator/bench.h"
#include "simulator/chip_factory.h"
#include "simulator/simulated_port.h"
#include "support/fakes.h"

namespace kestrel {
namespace {

class IdleClock final : public Clock {
 public:
  void Sleep(std::int32_t) override {}
  void Spin(std::int64_t) override {}
};

/// From the procedures' interface down to a port that does nothing: stop switch, base filter, port.
void portOutOverANoPort(benchmark::State& state) {
  NoPort nothing;
  LptPorts ports;
  ports.connect(0x378, nothing);
  IdleClock clock;
  const StopSwitch stop;
  test::FakeScreen screen;
  AttendedPort attended(ports, clock, stop, screen);
  PortAccess& port = attended;
  std::uint8_t value = 0;
  for (auto _ : state) {
    port.PortOut(0x378, value++);
    benchmark::ClobberMemory();
  }
  state.SetItemsProcessed(state.iterations());
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
