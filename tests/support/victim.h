#pragma once

#include <linux/ppdev.h>
#include <sys/ioctl.h>
#include <sys/mman.h>

#include <array>
#include <atomic>
#include <chrono>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <new>

#include "hardware/ports/system_calls.h"
#include "platform/port_access.h"
#include "simulator/bench.h"

namespace kestrel::test {

/// What was written to a port, in memory that the processes of a test share: it outlives the one
/// that wrote it.
class Tape {
 public:
  static Tape* make() {
    void* const memory = mmap(nullptr, sizeof(Tape), PROT_READ | PROT_WRITE,
                              MAP_SHARED | MAP_ANONYMOUS | MAP_NORESERVE, -1, 0);
    return new (memory) Tape;
  }
  static void discard(Tape* tape) { munmap(tape, sizeof(Tape)); }

  void write(unsigned offset, std::uint8_t value) noexcept {
    const std::size_t at = written.fetch_add(1);
    if (at < entries.size()) entries[at] = static_cast<std::uint16_t>(offset << 8 | value);
  }

  /// Plays what stands between two places of the tape to a simulated board.
  void playTo(sim::Bench& bench, std::size_t from, std::size_t to) const;

  /// How often the tape's end repeats the sequence that switches a board of any model off.
  [[nodiscard]] int switchOffsAtEnd() const;

  std::atomic<std::size_t> written{0};
  std::atomic<bool> isRunning{false};
  std::array<std::uint16_t, 1 << 20> entries;
};

/// A driver that writes its port's lines onto a tape, an access a microsecond as on a real port,
/// and passes them on to a board, if there is one.
class TapeKernel final : public SystemCalls {
 public:
  explicit TapeKernel(Tape& tape, PortAccess* lines = nullptr) : tape_(tape), lines_(lines) {}

  std::function<void()> onAccess;

  int open(const char* /*path*/, int /*flags*/) noexcept override { return 900; }
  int close(int /*descriptor*/) noexcept override { return 0; }
  int ioctl(int /*descriptor*/, unsigned long request, void* argument) noexcept override;
  int ioperm(unsigned long, unsigned long, bool) noexcept override { return -1; }
  void outByte(std::uint16_t, std::uint8_t) noexcept override {}
  std::uint8_t inByte(std::uint16_t) noexcept override { return 0xFF; }

 private:
  void write(unsigned offset, std::uint8_t value) noexcept;

  Tape& tape_;
  PortAccess* lines_;
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
