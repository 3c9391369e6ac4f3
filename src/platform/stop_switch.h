#pragma once

#include <atomic>
#include <functional>
#include <utility>

namespace kestrel {

/// What ends the running command, looked at by the port and the waits that the procedures use.
///
/// Two requests are told apart: to stop this command, which is over when the next one begins, and
/// to end the program, which is never taken back. Lock-free, so a signal handler and another thread
/// may ask too.
class StopSwitch {
 public:
  void stopCommand() noexcept { state_.fetch_or(kStopCommand, std::memory_order_relaxed); }
  void endProgram() noexcept { state_.fetch_or(kEndProgram, std::memory_order_relaxed); }

  /// A command begins: a stop that was meant for an earlier one is forgotten.
  void beginCommand() noexcept { state_.fetch_and(~kStopCommand, std::memory_order_relaxed); }

  /// True while the port and the waits have to throw OperationStopped.
  [[nodiscard]] bool isThrown() const noexcept {
    return state_.load(std::memory_order_relaxed) > 0;
  }

  [[nodiscard]] bool isEnding() const noexcept {
    return (state_.load(std::memory_order_relaxed) & kEndProgram) != 0;
  }

  /// `handler` is called again and again while a pipe is waited for, so that the person can throw
  /// the switch. Set once, before anybody waits.
  void whileWaiting(std::function<void()> handler) { waiting_ = std::move(handler); }
  void stillWaiting() const {
    if (waiting_) waiting_();
  }

  /// As long as it lives the switch stands as if nobody had asked: for putting the board to rest,
  /// which no stop may cut short. Requests that come meanwhile are kept.
  class Shield {
   public:
    explicit Shield(StopSwitch& stop) noexcept
        : stop_(stop),
          isOutermost_((stop.state_.fetch_or(kShielded, std::memory_order_relaxed) & kShielded) ==
                       0) {}
    ~Shield() {
      if (isOutermost_) stop_.state_.fetch_and(~kShielded, std::memory_order_relaxed);
    }
    Shield(const Shield&) = delete;
    Shield& operator=(const Shield&) = delete;

   private:
    StopSwitch& stop_;
    bool isOutermost_;
  };

 private:
  // A shielded state is negative, so that one comparison tells whether to stop.
  static constexpr int kStopCommand = 1;
  static constexpr int kEndProgram = 2;
  static constexpr int kShielded = ~0x7FFFFFFF;

  std::atomic<int> state_{0};
  std::function<void()> waiting_;
  static_assert(std::atomic<int>::is_always_lock_free);
};

}  // namespace kestrel
