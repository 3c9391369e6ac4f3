#pragma once

#include <chrono>
#include <cstdint>
#include <functional>
#include <string>

#include "simulator/bench.h"
#include "support/tape.h"

namespace kestrel::test {

/// How a program that was programming a chip came to its end.
struct Death {
  bool endedInTime = false;  // program and guard are gone
  std::chrono::microseconds guardTook{};
  int end = 0;               // its exit status, or the signal as a negative number
  bool wasUnderVpp = false;  // when it was killed
  int switchOffs = 0;        // whole switch-off sequences at the end of all that was written
  std::uint8_t latch0 = 0;
  sim::PinLevels vppPins = 0;
};

/// Has the whole form program a chip in a process of its own until `kill` (called in the test), or
/// `end` (called in the program at every access with VPP on a pin when it has programmed for
/// `runsFor`), or a run-time error, its number then the status, ends it.
Death dieWhileProgramming(sim::Model model, std::chrono::microseconds runsFor,
                          const std::function<void(int process)>& kill,
                          const std::function<void(Tape&)>& end);

}  // namespace kestrel::test
