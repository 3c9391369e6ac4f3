#pragma once

namespace kestrel::ports {

/// Keeps the program's memory from being paged out, where the user may: a page fault inside a
/// pulse stretches it by the time of a disk. Without permission nothing happens.
void lockMemory() noexcept;

/// As long as this lives, the calling thread runs before all ordinary programs, where the user
/// may; without permission nothing happens. Processes forked meanwhile do not inherit it. To be
/// held for the length of a command, on one thread.
class RealTimePriority {
 public:
  RealTimePriority() noexcept;
  ~RealTimePriority();
  RealTimePriority(const RealTimePriority&) = delete;
  RealTimePriority& operator=(const RealTimePriority&) = delete;

  [[nodiscard]] bool isGranted() const { return granted_; }

 private:
  int policyBefore_ = 0;
  int priorityBefore_ = 0;
  bool granted_ = false;
};

}  // namespace kestrel::ports
