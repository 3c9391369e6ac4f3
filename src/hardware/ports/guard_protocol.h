#pragma once

#include <pthread.h>

#include <atomic>
#include <chrono>
#include <cstdint>

namespace kestrel::ports {

// What a program and the guard of its port say to each other: words on a link, one byte each, and
// a piece of memory that both have mapped.

inline constexpr char kReadyWord = 'r';    // the guard: from here on the board is watched
inline constexpr char kGoodByeWord = 'q';  // the program: the board is off, go
inline constexpr char kAlarmWord = '!';    // the program: it crashes, switch off now

/// With a voltage on and no access for so long, the program stands still: a terminal that was
/// stopped, a display that hangs, a debugger. The longest wait of the procedures is 1.5 s, for 21
/// and 25 V to rise.
inline constexpr std::chrono::milliseconds kLongestStandstill{2'500};

enum class GuardAct : std::uint8_t { Watches, SwitchesOff, SwitchedOff, Failed };

struct GuardMemory {
  /// Moves with every access to the port.
  std::atomic<std::uint32_t> accesses{0};

  /// What the guard did about a standstill. Watches and Failed become SwitchesOff by the guard
  /// alone; the program, awake again, takes SwitchedOff and Failed back to Watches.
  std::atomic<GuardAct> act{GuardAct::Watches};

  /// Set before a voltage goes on, cleared after it went off.
  std::atomic<bool> isVoltageOn{false};

  /// Robust, and held by the guard while it lives: the kernel gives it free when the guard dies.
  pthread_mutex_t duty{};
};

static_assert(std::atomic<std::uint32_t>::is_always_lock_free);
static_assert(std::atomic<GuardAct>::is_always_lock_free && std::atomic<bool>::is_always_lock_free);

/// A GuardMemory in memory that another process can map.
class SharedGuardMemory {
 public:
  /// Makes one; its file is closed in a program that is started. Null memory() when there is none.
  SharedGuardMemory() noexcept;
  /// Maps the one that another process made; closes the file.
  explicit SharedGuardMemory(int descriptor) noexcept;
  ~SharedGuardMemory();
  SharedGuardMemory(const SharedGuardMemory&) = delete;
  SharedGuardMemory& operator=(const SharedGuardMemory&) = delete;

  [[nodiscard]] GuardMemory* memory() const { return memory_; }
  [[nodiscard]] int descriptor() const { return descriptor_; }

 private:
  int descriptor_ = -1;
  GuardMemory* memory_ = nullptr;
};

}  // namespace kestrel::ports
