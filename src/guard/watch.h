#pragma once

#include <chrono>
#include <cstdint>

#include "hardware/ports/guard_protocol.h"
#include "hardware/ports/switch_off.h"

namespace kestrel::guard {

/// What a guard holds: everything else is closed.
struct Post {
  int link;                    // to the program
  int port;                    // the open file of the port
  ports::GuardMemory& memory;  // shared with the program
  ports::SwitchOff& board;
};

/// Notices that a program with a voltage on has not accessed its port for kLongestStandstill.
class Standstill {
 public:
  using Time = std::chrono::steady_clock::time_point;

  /// True while it lasts.
  [[nodiscard]] bool look(std::uint32_t accesses, bool isVoltageOn, Time now) noexcept {
    if (accesses != accesses_ || !isVoltageOn) since_ = now;
    accesses_ = accesses;
    return now - since_ >= ports::kLongestStandstill;
  }

 private:
  std::uint32_t accesses_ = 0;
  Time since_{};
};

/// Stands guard until the program says good-bye or is gone. Returns the exit status: 0, or 1 when
/// the board could not be switched off in the end.
int watch(const Post& post) noexcept;

}  // namespace kestrel::guard
