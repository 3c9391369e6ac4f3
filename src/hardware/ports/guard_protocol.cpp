#include "hardware/ports/guard_protocol.h"

#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

#include <new>

namespace kestrel::ports {
namespace {

// A memory of another size comes from a program of another version.
void* mapped(int descriptor) noexcept {
  struct stat file {};
  if (fstat(descriptor, &file) != 0 || file.st_size != sizeof(GuardMemory)) return nullptr;
  void* const memory =
      mmap(nullptr, sizeof(GuardMemory), PROT_READ | PROT_WRITE, MAP_SHARED, descriptor, 0);
  return memory == MAP_FAILED ? nullptr : memory;
}

void makeRobust(pthread_mutex_t& mutex) noexcept {
  pthread_mutexattr_t kind;
  pthread_mutexattr_init(&kind);
  pthread_mutexattr_setpshared(&kind, PTHREAD_PROCESS_SHARED);
  pthread_mutexattr_setrobust(&kind, PTHREAD_MUTEX_ROBUST);
  pthread_mutex_init(&mutex, &kind);
  pthread_mutexattr_destroy(&kind);
}

}  // namespace

SharedGuardMemory::SharedGuardMemory() noexcept
    : descriptor_(memfd_create("kestrel-guard", MFD_CLOEXEC)) {
  if (descriptor_ < 0 || ftruncate(descriptor_, sizeof(GuardMemory)) != 0) return;
  void* const memory = mapped(descriptor_);
  if (memory == nullptr) return;
  memory_ = new (memory) GuardMemory;
  makeRobust(memory_->duty);
}

SharedGuardMemory::SharedGuardMemory(int descriptor) noexcept
    : memory_(static_cast<GuardMemory*>(mapped(descriptor))) {
  ::close(descriptor);
}

SharedGuardMemory::~SharedGuardMemory() {
  if (memory_ != nullptr) munmap(memory_, sizeof(GuardMemory));
  if (descriptor_ >= 0) ::close(descriptor_);
}

}  // namespace kestrel::ports
