#pragma once

#include <cstdint>

namespace kestrel::ports {

/// The few calls by which a port driver of the kernel is reached, so that a test can stand in for
/// the kernel. Results are the kernel's: -1 and errno on failure. All are async-signal-safe.
class SystemCalls {
 public:
  /// A timer may interrupt a call now and then; what is interrupted this often never gets through.
  static constexpr int kMostInterruptions = 1000;

  virtual ~SystemCalls() = default;

  virtual int open(const char* path, int flags) noexcept = 0;
  virtual int ioctl(int descriptor, unsigned long request, void* argument) noexcept = 0;
  virtual int close(int descriptor) noexcept = 0;

  /// Asks for, or gives back, the permission to reach I/O ports directly. It is the calling
  /// thread's, and inherited by the processes that it starts.
  virtual int ioperm(unsigned long first, unsigned long count, bool permit) noexcept = 0;

  /// Direct access; without permission the processor stops the program.
  virtual void outByte(std::uint16_t port, std::uint8_t value) noexcept = 0;
  [[nodiscard]] virtual std::uint8_t inByte(std::uint16_t port) noexcept = 0;
};

/// The kernel itself. Where a processor has no I/O ports, asking for them fails (ENOSYS).
class LinuxCalls final : public SystemCalls {
 public:
  int open(const char* path, int flags) noexcept override;
  int ioctl(int descriptor, unsigned long request, void* argument) noexcept override;
  int close(int descriptor) noexcept override;
  int ioperm(unsigned long first, unsigned long count, bool permit) noexcept override;
  void outByte(std::uint16_t port, std::uint8_t value) noexcept override;
  [[nodiscard]] std::uint8_t inByte(std::uint16_t port) noexcept override;
};

}  // namespace kestrel::ports
