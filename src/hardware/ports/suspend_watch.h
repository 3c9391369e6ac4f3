#pragma once

#include <cstdint>

namespace kestrel::ports {

/// Notices that the machine was suspended in the middle of a command. The monotonic time stands
/// still while the machine sleeps and the boot time runs on: their distance grows by the sleep.
///
/// A sleep that lies between two commands is nobody's concern, and shows as a long time awake
/// without a look before or after it.
class SuspendWatch {
 public:
  /// A distance that grew by less is no sleep: the two times cannot be read in one instant.
  static constexpr std::int64_t kShortestSleepNs = 1'000'000'000;
  /// Looks that are further apart, in time awake, belong to different commands.
  static constexpr std::int64_t kSameCommandNs = 2'000'000'000;

  /// True when the machine slept since the last look and that was in the same command.
  bool look(std::int64_t monotonicNs, std::int64_t bootNs) {
    const std::int64_t distance = bootNs - monotonicNs;
    const bool slept = hasLooked_ && distance - distance_ >= kShortestSleepNs &&
                       monotonicNs - lastLook_ < kSameCommandNs;
    hasLooked_ = true;
    distance_ = distance;
    lastLook_ = monotonicNs;
    return slept;
  }

 private:
  bool hasLooked_ = false;
  std::int64_t distance_ = 0;
  std::int64_t lastLook_ = 0;
};

}  // namespace kestrel::ports
