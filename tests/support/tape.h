#pragma once

#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <atomic>
#include <cstddef>
#include <cstdint>

namespace kestrel::test {

/// What was written to a port, in memory that the processes of a test share: it outlives the one
/// that wrote it. The file of the memory stands for the open port.
struct Tape {
  /// Null for a file that is no tape.
  static Tape* map(int file) {
    struct stat status {};
    if (fstat(file, &status) != 0 || status.st_size != sizeof(Tape)) return nullptr;
    return static_cast<Tape*>(
        mmap(nullptr, sizeof(Tape), PROT_READ | PROT_WRITE, MAP_SHARED, file, 0));
  }
  static int makeFile() {
    const int file = memfd_create("tape", MFD_CLOEXEC);
    return ftruncate(file, sizeof(Tape)) == 0 ? file : -1;
  }

  // Zero, as new memory is.
  std::atomic<std::size_t> written;
  std::atomic<int> guardFailures;  // so many writes of the guard fail
  std::atomic<bool> isRunning;
  std::array<std::uint16_t, 1 << 22> entries;

  // The entry first: what is on the tape has reached the board.
  void write(int registerNumber, std::uint8_t value) {
    const std::size_t at = written.fetch_add(1);
    entries[at % entries.size()] = static_cast<std::uint16_t>(registerNumber << 8 | value);
  }

  /// The oldest entry that is still there: a program that nobody stopped in time fills the tape.
  [[nodiscard]] std::size_t oldest() const {
    return written > entries.size() ? written - entries.size() : 0;
  }
  [[nodiscard]] std::uint16_t entry(std::size_t at) const { return entries[at % entries.size()]; }

  /// How often the tape's end repeats the sequence that switches a board of any model off.
  [[nodiscard]] int switchOffsAtEnd() const;
};

}  // namespace kestrel::test
