#pragma once

#include <benchmark/benchmark.h>

#include "hardware/ports/interruptible_port.h"
#include "hardware/ports/lpt_filter.h"
#include "support/fakes.h"

namespace kestrel {

/// Time of one PortOut from the procedures' interface through stop switch and base filter down to
/// the port given, which stands behind base 378h.
inline void measurePortOut(benchmark::State& state, PortAccess& lowest, Waits& clock) {
  ports::LptFilter ports;
  ports.connect(0x378, lowest);
  const StopSwitch stop;
  test::FakeScreen screen;
  ports::InterruptiblePort interruptible(ports, clock, stop, screen);
  PortAccess& port = interruptible;
  std::uint8_t value = 0;
  for (auto _ : state) {
    port.PortOut(0x37A, value++);
    benchmark::ClobberMemory();
  }
}

}  // namespace kestrel
