#pragma once

#include <sys/mman.h>

#include <array>
#include <atomic>
#include <chrono>
#include <functional>
#include <new>

#include "platform/port_access.h"
#include "simulator/bench.h"
#include "support/stand_in_kernel.h"

namespace kestrel::test {

/// What was written to a port, in memory that the processes of a test share: it outlives the one
/// that wrote it. It is passed on to a board, if there is one.
struct Tape final : PortAccess {
  static Tape* make() {
    void* const memory = mmap(nullptr, sizeof(Tape), PROT_READ | PROT_WRITE,
                              MAP_SHARED | MAP_ANONYMOUS | MAP_NORESERVE, -1, 0);
    return new (memory) Tape;
  }
  static void discard(Tape* tape) { munmap(tape, sizeof(Tape)); }

  // The entry first: what is on the tape has reached the board.
  void PortOut(std::int16_t port, std::uint8_t value) override {
    const std::size_t at = written.fetch_add(1);
    if (at < entries.size()) entries[at] = static_cast<std::uint16_t>((port - 0x378) << 8 | value);
    if (board != nullptr) board->PortOut(port, value);
  }
  std::uint8_t PortIn(std::int16_t port) override {
    return board != nullptr ? board->PortIn(port) : 0xFF;
  }

  /// How often the tape's end repeats the sequence that switches a board of any model off.
  [[nodiscard]] int switchOffsAtEnd() const;

  PortAccess* board = nullptr;
  std::atomic<std::size_t> written{0};
  std::atomic<bool> isRunning{false};
  std::array<std::uint16_t, 1 << 20> entries;
};

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

/// Has the whole form program a chip in a process of its own until `kill` (called in the test) or
/// `end` (called in the program when it has programmed for `runsFor`) ends it.
Death dieWhileProgramming(sim::Model model, std::chrono::microseconds runsFor,
                          const std::function<void(int process)>& kill,
                          const std::function<void()>& end);

}  // namespace kestrel::test
