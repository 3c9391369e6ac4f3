#pragma once

#include <benchmark/benchmark.h>

#include "hardware/ports/attended_port.h"
#include "hardware/ports/lpt_ports.h"
#include "support/fakes.h"

namespace kestrel {

/// Time of one PortOut from the procedures' interface through stop switch and base filter down to
/// the port given, which stands behind base 378h.
inline void measurePortOut(benchmark::State& state, PortAccess& lowest, Clock& clock) {
  LptPorts ports;
  ports.connect(0x378, lowest);
  const StopSwitch stop;
  test::FakeScreen screen;
  AttendedPort attended(ports, clock, stop, screen);
  PortAccess& port = attended;
  std::uint8_t value = 0;
  for (auto _ : state) {
    port.PortOut(0x37A, value++);
    benchmark::ClobberMemory();
  }
}

}  // namespace kestrel
