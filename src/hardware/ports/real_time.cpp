#include "hardware/ports/real_time.h"

#include <sched.h>
#include <sys/mman.h>
#include <sys/resource.h>

namespace kestrel::ports {

// With a limit, locking what is yet to come would make a later allocation fail: then only what is
// there now is locked, if the limit allows that much.
LockedMemory::LockedMemory() noexcept {
  rlimit limit{};
  const bool unlimited = getrlimit(RLIMIT_MEMLOCK, &limit) == 0 && limit.rlim_cur == RLIM_INFINITY;
  mlockall(unlimited ? MCL_CURRENT | MCL_FUTURE | MCL_ONFAULT : MCL_CURRENT | MCL_ONFAULT);
}

LockedMemory::~LockedMemory() { munlockall(); }

// The lowest real-time priority: above every ordinary program, below the kernel's own threads.
RealTimePriority::RealTimePriority() noexcept {
  sched_param before{};
  policyBefore_ = sched_getscheduler(0);
  if (policyBefore_ < 0 || sched_getparam(0, &before) != 0) return;
  priorityBefore_ = before.sched_priority;
  const sched_param lowest{.sched_priority = sched_get_priority_min(SCHED_FIFO)};
  granted_ = sched_setscheduler(0, SCHED_FIFO | SCHED_RESET_ON_FORK, &lowest) == 0;
}

RealTimePriority::~RealTimePriority() {
  if (!granted_) return;
  // The flag that children do not inherit may be kept, but only root may take it away again.
  const sched_param before{.sched_priority = priorityBefore_};
  const int policy = policyBefore_ | SCHED_RESET_ON_FORK;
  sched_setscheduler(0, policy, &before);
}

}  // namespace kestrel::ports
