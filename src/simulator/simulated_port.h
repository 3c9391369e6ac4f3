#pragma once

#include <cstdint>

#include "platform/port_access.h"
#include "platform/waits.h"
#include "simulator/bench.h"

namespace kestrel::sim {

/// The program's port and clock over a bench. The only place where the two meet.
///
/// A sleep and a busy loop pass in virtual time, at once by the host's clock; time of day and date
/// are the host's.
class SimulatedPort final : public PortAccess, public Waits {
 public:
  /// The bench outlives the port. A busy-loop count lasts `countNs` nanoseconds.
  explicit SimulatedPort(Bench& bench, std::int64_t countNs = kDefaultCountNs)
      : bench_(bench), countNs_(countNs) {}

  void PortOut(std::int16_t port, std::uint8_t value) override;
  [[nodiscard]] std::uint8_t PortIn(std::int16_t port) override;
  void Sleep(std::int32_t milliseconds) override;
  void Spin(std::int64_t counts) override;

 private:
  Bench& bench_;
  std::int64_t countNs_;
};

}  // namespace kestrel::sim
