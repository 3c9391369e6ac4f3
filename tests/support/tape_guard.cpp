// The guard of the tests: told as the true one is, it writes to a tape instead of a port.

#include <linux/ppdev.h>
#include <sys/ioctl.h>

#include <cerrno>

#include "guard/arguments.h"
#include "guard/watch.h"
#include "hardware/ports/port_lines.h"
#include "support/tape.h"

namespace kestrel::test {
namespace {

struct TapeCalls final : ports::SystemCalls {
  explicit TapeCalls(Tape* given) : tape(given) {}
  int open(const char*, int) noexcept override { return -1; }
  int close(int) noexcept override { return -1; }
  int ioctl(int, unsigned long request, void* value) noexcept override {
    if (tape == nullptr) return 0;
    if (tape->guardFailures > 0) {
      --tape->guardFailures;
      errno = EIO;
      return -1;
    }
    tape->write(request == PPWDATA ? 0 : 2, *static_cast<std::uint8_t*>(value));
    return 0;
  }
  int ioperm(unsigned long, unsigned long, bool) noexcept override { return 0; }
  void outByte(std::uint16_t, std::uint8_t) noexcept override {}
  std::uint8_t inByte(std::uint16_t) noexcept override { return 0xFF; }

  Tape* tape;
};

}  // namespace
}  // namespace kestrel::test

int main(int argc, char** argv) {
  using namespace kestrel;
  const std::span<const char* const> words(argv, static_cast<std::size_t>(argc));
  const auto arguments = guard::readArguments(words.subspan(1));
  if (!arguments) return 2;
  test::TapeCalls calls(test::Tape::map(arguments->port));
  ports::PpdevLines board(calls, arguments->port);
  const ports::SharedGuardMemory shared(arguments->memory);
  if (shared.memory() == nullptr) return 1;
  return guard::watch({.link = arguments->link,
                       .port = arguments->port,
                       .memory = *shared.memory(),
                       .board = board});
}
