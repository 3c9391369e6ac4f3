#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace kestrel {

/// What a real port offers beside its accesses; a simulated one has nothing of it to do.
class PortService {
 public:
  virtual ~PortService() = default;

  /// Around a device operation, never across a question: this thread before all ordinary programs
  /// and its memory kept from being paged out, where the user may. An operation within another
  /// changes nothing: the outermost pair counts.
  virtual void beginOperation() {}
  virtual void endOperation() {}

  /// When a command has come to its end: throws RuntimeError when the port did not do all that it
  /// was asked for. A port that does everything at once has reported already.
  virtual void settle() {}

  /// Before a hardware test: tries again to take a port that was missing, busy or has vanished.
  virtual void takeMissing() {}

  /// Whether the program holds a port behind this base, so that an access reaches one.
  [[nodiscard]] virtual bool holdsPort(std::int16_t /*base*/) const { return true; }

  /// True when a programming voltage was on and could not be switched off, so that only the board's
  /// supply is left to be taken away.
  [[nodiscard]] virtual bool mayVoltageBeOn() const { return false; }

  /// Why no board may have answered, and what cures it: one line for each port or driver concerned.
  [[nodiscard]] virtual std::vector<std::string> diagnosis() const { return {}; }

  /// Pulses since the last call that lasted more than twice as long as asked for, because the
  /// computer gave the processor to something else.
  [[nodiscard]] virtual std::uint64_t takeStretchedPulses() { return 0; }
};

/// A device operation for as long as it lives. One within another changes nothing.
class DeviceOperation {
 public:
  explicit DeviceOperation(PortService& service) : service_(service) { service_.beginOperation(); }
  ~DeviceOperation() { service_.endOperation(); }
  DeviceOperation(const DeviceOperation&) = delete;
  DeviceOperation& operator=(const DeviceOperation&) = delete;

 private:
  PortService& service_;
};

}  // namespace kestrel
