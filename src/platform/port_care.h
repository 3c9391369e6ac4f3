#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace kestrel {

/// What a real port wants beside its accesses; a simulated one wants nothing of it.
class PortCare {
 public:
  virtual ~PortCare() = default;

  /// Around every command: the processor for this thread first, where the user may have it.
  virtual void beginCommand() {}
  virtual void endCommand() {}

  /// Before a hardware test: tries again to take a port that was missing, busy or has vanished.
  virtual void takeMissing() {}

  /// Why no board may have answered, and what cures it: a line a matter, for the person at the
  /// screen.
  [[nodiscard]] virtual std::vector<std::string> diagnosis() const { return {}; }

  /// Pulses since the last call that lasted more than twice as long as asked for, because the
  /// computer gave the processor to something else.
  [[nodiscard]] virtual std::uint64_t takeStretchedPulses() { return 0; }
};

}  // namespace kestrel
