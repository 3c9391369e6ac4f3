#include "simulator/simulated_port.h"

namespace kestrel::sim {

void SimulatedPort::PortOut(std::int16_t port, std::uint8_t value) {
  bench_.portOut(static_cast<std::uint16_t>(port), value);
}

std::uint8_t SimulatedPort::PortIn(std::int16_t port) {
  return bench_.portIn(static_cast<std::uint16_t>(port));
}

void SimulatedPort::Sleep(std::int32_t milliseconds) {
  bench_.wait(sim::milliseconds(milliseconds));
}

void SimulatedPort::Spin(std::int64_t counts) { bench_.wait(counts * countNs_); }

}  // namespace kestrel::sim
