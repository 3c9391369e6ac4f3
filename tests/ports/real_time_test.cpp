#include "hardware/ports/real_time.h"

#include <gtest/gtest.h>
#include <sched.h>
#include <sys/wait.h>
#include <unistd.h>

#include <vector>

namespace kestrel {
namespace {

int policy() { return sched_getscheduler(0) & ~SCHED_RESET_ON_FORK; }

int policyOfAChild() {
  const pid_t process = fork();
  if (process == 0) _exit(policy());
  int status = 0;
  waitpid(process, &status, 0);
  return WEXITSTATUS(status);
}

TEST(RealTimePriority, lastsForItsScopeAndIsNotInherited) {
  const int before = policy();
  {
    const RealTimePriority priority;
    // Without permission nothing changes, and that is no error.
    EXPECT_EQ(policy(), priority.isGranted() ? SCHED_FIFO : before);
    EXPECT_EQ(policyOfAChild(), before);
  }
  EXPECT_EQ(policy(), before);
}

TEST(LockMemory, leavesRoomForWhatComesLater) {
  const pid_t process = fork();
  if (process == 0) {
    lockMemory();
    const std::vector<char> later(64 << 20, 1);
    _exit(later.back());
  }
  int status = 0;
  waitpid(process, &status, 0);
  EXPECT_EQ(WEXITSTATUS(status), 1);
}

}  // namespace
}  // namespace kestrel
