#include "app/launch/machine_ports.h"

#include <algorithm>
#include <chrono>
#include <utility>

namespace kestrel::launch {
namespace {

std::unique_ptr<SimulatedBoard> simulatedBoard(const LaunchOptions& options,
                                               std::string_view defaultChip,
                                               const StopSwitch& stop) {
  return options.simulate ? std::make_unique<SimulatedBoard>(options, defaultChip, &stop) : nullptr;
}

std::unique_ptr<sim::SimulatedPort> simulatedPort(SimulatedBoard* simulated,
                                                  const LaunchOptions& options) {
  if (simulated == nullptr) return nullptr;
  return std::make_unique<sim::SimulatedPort>(simulated->bench(), options.countNs);
}

}  // namespace

MachinePorts::MachinePorts(const LaunchOptions& options, std::string_view defaultChip,
                           const StopSwitch& stop)
    : simulated_(simulatedBoard(options, defaultChip, stop)),
      simulatedPort_(simulatedPort(simulated_.get(), options)),
      monotonic_(options.countNs, &stop) {
  if (simulatedPort_) return;
  ports::PortOptions portOptions;
  portOptions.choices = options.ports;
  portOptions.link.countNs = options.countNs;
  portOptions.link.stop = &stop;
  realPorts_ = std::make_unique<ports::RealPorts>(calls_, std::move(portOptions));
  realWaits_.emplace(*realPorts_, monotonic_);
}

PortAccess& MachinePorts::port() {
  if (simulatedPort_) return *simulatedPort_;
  return realPorts_->port();
}

Waits& MachinePorts::waits() {
  if (simulatedPort_) return *simulatedPort_;
  return *realWaits_;
}

std::int64_t MachinePorts::nowNs() {
  if (simulated_) return simulated_->bench().now();
  const auto now = std::chrono::steady_clock::now().time_since_epoch();
  return std::chrono::duration_cast<std::chrono::nanoseconds>(now).count();
}

void MachinePorts::chooseLink(const std::optional<ports::PortChoice>& choice) {
  if (realPorts_) realPorts_->chooseLink(choice);
}

void MachinePorts::beginOperation() {
  if (operations_++ > 0 || !realPorts_) return;
  realTime_.emplace();
  realPorts_->beginOperation();
}

void MachinePorts::endOperation() {
  if (--operations_ > 0 || !realPorts_) return;
  realPorts_->endOperation();
  realTime_.reset();
}

void MachinePorts::settle() {
  if (realPorts_) realPorts_->settle();
}

bool MachinePorts::holdsPort(std::int16_t base) const {
  if (realPorts_) return realPorts_->holdsPort(base);
  return std::ranges::count(sim::kPortBases, static_cast<std::uint16_t>(base)) != 0;
}

bool MachinePorts::mayVoltageBeOn() const { return realPorts_ && realPorts_->mayVoltageBeOn(); }

void MachinePorts::takeMissing() {
  if (realPorts_) realPorts_->takeMissing();
}

std::vector<std::string> MachinePorts::diagnosis() const {
  return realPorts_ ? realPorts_->diagnosis() : std::vector<std::string>();
}

std::uint64_t MachinePorts::takeStretchedPulses() {
  const std::uint64_t pulses = monotonic_.stretchedPulses();
  monotonic_.resetStretchedPulses();
  return pulses;
}

}  // namespace kestrel::launch
