#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "link/connection.h"

namespace kestrel::link {

// A check of the adapter's lines, with a plug on its connector in the place of the board. The plug
// has twelve diodes, each with its cathode at an output; the adapter pulls its inputs up. An input
// reads 0 while any of its outputs is low.
//
//   input              outputs
//   status 3 (pin 15)  data 0 (2), data 5 (7), control 0 (1)
//   status 4 (pin 13)  data 1 (3), data 6 (8), control 1 (14)
//   status 5 (pin 12)  data 2 (4), data 7 (9), control 2 (16)
//   status 6 (pin 10)  data 3 (5), control 3 (17)
//   status 7 (pin 11)  data 4 (6)
//
// Not found: two outputs of one input that are mistaken for each other.

/// One of the twelve outputs.
struct LineResult {
  std::string output;  // "data 0 (pin 2)"
  std::string input;   // "status 3 (pin 15)"
  std::string fault;   // empty when it is well
};

struct LinesResult {
  bool hasPlug = false;           // without it nothing was moved but data lines
  std::vector<LineResult> lines;  // in the order of the outputs
};

/// Looks for the plug with the data lines alone, while no latch of any board is open, and moves the
/// control lines only when it is there: they could switch a board's voltages on.
[[nodiscard]] LinesResult testLines(LinkConnection& connection);

struct SpeedResult {
  std::chrono::nanoseconds meanRoundTrip{};
  std::chrono::nanoseconds longestRoundTrip{};
  double bytesPerSecond = 0;  // of operations that are sent in full blocks and executed
};

/// Moves data lines alone, while no latch of any board is open.
[[nodiscard]] SpeedResult measureSpeed(LinkConnection& connection);

}  // namespace kestrel::link
