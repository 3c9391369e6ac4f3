#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "app/launch/option_values.h"
#include "app/launch/simulated_board.h"
#include "hardware/ports/monotonic_clock.h"
#include "hardware/ports/real_ports.h"
#include "hardware/ports/real_time.h"
#include "hardware/ports/system_calls.h"
#include "platform/port_service.h"
#include "platform/stop_switch.h"
#include "simulator/simulated_port.h"

namespace kestrel::launch {

/// The ports and the waits that the options ask for: the real ones, or those of a simulated board.
class MachinePorts final : public PortService {
 public:
  /// The switch outlives this. `defaultChip` is in the simulated socket when no --chip is given.
  /// Throws UsageError, and FileError for a chip file.
  MachinePorts(const LaunchOptions& options, std::string_view defaultChip, const StopSwitch& stop);

  [[nodiscard]] PortAccess& port();
  [[nodiscard]] Waits& waits();

  /// The time of the port, in nanoseconds from some moment: the board's own on a simulated one.
  [[nodiscard]] std::int64_t nowNs();

  /// The simulated machine; nullptr with real ports.
  [[nodiscard]] SimulatedBoard* simulated() { return simulated_.get(); }

  /// Another adapter, or none, from the next hardware test on; without effect on a simulated board.
  void chooseLink(const std::optional<ports::PortChoice>& choice);

  // The service of real ports; with the simulated board there is nothing to do.
  void beginOperation() override;
  void endOperation() override;
  void settle() override;
  void takeMissing() override;
  [[nodiscard]] bool holdsPort(std::int16_t base) const override;
  [[nodiscard]] bool mayVoltageBeOn() const override;
  [[nodiscard]] std::vector<std::string> diagnosis() const override;
  [[nodiscard]] std::uint64_t takeStretchedPulses() override;

 private:
  std::unique_ptr<SimulatedBoard> simulated_;
  std::unique_ptr<sim::SimulatedPort> simulatedPort_;
  ports::LinuxCalls calls_;
  std::unique_ptr<ports::RealPorts> realPorts_;
  ports::MonotonicClock monotonic_;
  std::optional<ports::PortWaits> realWaits_;
  int operations_ = 0;  // that run, one within another
  std::optional<ports::RealTime> realTime_;
};

}  // namespace kestrel::launch
