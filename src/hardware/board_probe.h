#pragma once

#include <cstdint>

#include "app/state/programmer_state.h"
#include "app/state/reporting.h"
#include "hardware/board.h"
#include "platform/port_access.h"

namespace kestrel::hardware {

/// Tells whether a board answers at a port, and which model it is, by what its latches and its
/// read-back do.
class BoardProbe {
 public:
  BoardProbe(PortState& portState, const AlgorithmState& chosen, const LatchState& latches,
             Reporting& reporting, Board& board, PortAccess& port)
      : portState_(portState),
        chosen_(chosen),
        latches_(latches),
        reporting_(reporting),
        board_(board),
        port_(port) {}

  /// Probes the board at PortBase. A board sets KestrelModel and DetectedPort; none is logged and
  /// changes neither.
  void CheckHardware();

 private:
  /// Two status reads of a probe, each with the three lines in bits 4-6.
  using Signature = int;

  void data(std::uint8_t value);
  void control(std::uint8_t value);
  [[nodiscard]] int settledStatusLines();
  [[nodiscard]] Signature probeModel5or6();
  [[nodiscard]] Signature probeModel4();
  [[nodiscard]] bool answersAsModel6();
  [[nodiscard]] std::uint8_t readWithLatch3(std::uint8_t value);

  PortState& portState_;
  const AlgorithmState& chosen_;
  const LatchState& latches_;
  Reporting& reporting_;
  Board& board_;
  PortAccess& port_;
};

}  // namespace kestrel::hardware
