#pragma once

#include <atomic>

namespace kestrel {

/// The switch that ends the running command: thrown by the Stop button or by a signal handler,
/// looked at by the port and the clock that the procedures use. Lock-free, so it may be thrown from
/// a signal handler and from another thread.
class StopSwitch {
 public:
  void throwIt() noexcept { thrown_.store(true, std::memory_order_relaxed); }
  void reset() noexcept { thrown_.store(false, std::memory_order_relaxed); }
  [[nodiscard]] bool isThrown() const noexcept { return thrown_.load(std::memory_order_relaxed); }

 private:
  std::atomic<bool> thrown_{false};
  static_assert(std::atomic<bool>::is_always_lock_free);
};

}  // namespace kestrel
