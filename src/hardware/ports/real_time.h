#pragma once

namespace kestrel::ports {

/// As long as this lives, the program's memory is not paged out, where the user may: a page fault
/// inside a pulse stretches it by the time of a disk. Without permission nothing happens. To be
/// held for the length of a command.
class LockedMemory {
 public:
  LockedMemory() noexcept;
  ~LockedMemory();
  LockedMemory(const LockedMemory&) = delete;
  LockedMemory& operator=(const LockedMemory&) = delete;
};

/// As long as this lives, the calling thread runs before all ordinary programs, where the user
/// may; without permission nothing happens. Processes started meanwhile do not inherit it. To be
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

/// Both together: what a device operation runs under.
struct RealTime {
  LockedMemory memory;
  RealTimePriority priority;
};

}  // namespace kestrel::ports
