#include <iostream>
#include <memory>
#include <span>

#include "guard/arguments.h"
#include "guard/watch.h"
#include "hardware/ports/port_lines.h"
#include "hardware/ports/system_calls.h"

namespace {

namespace guard = kestrel::guard;
namespace ports = kestrel::ports;

// Null when the port cannot be reached from here: the permission of direct access is inherited, but
// asked for once more, since without it the first access would end the guard.
std::unique_ptr<ports::SwitchOff> boardOf(ports::SystemCalls& calls,
                                          const guard::Arguments& arguments) {
  if (arguments.way == guard::Arguments::Way::Ppdev) {
    return std::make_unique<ports::PpdevLines>(calls, arguments.port);
  }
  auto lines = std::make_unique<ports::DirectLines>(calls, arguments.address);
  if (!lines->permit(true)) return nullptr;
  return lines;
}

}  // namespace

int main(int argc, char** argv) {
  const std::span<const char* const> words(argv, static_cast<std::size_t>(argc));
  const auto arguments = guard::readArguments(words.subspan(1));
  if (!arguments) {
    std::cerr << "vpp-guard is started by kestrel and kestrel-cli, not by hand.\n";
    return 2;
  }
  ports::LinuxCalls calls;
  const auto board = boardOf(calls, *arguments);
  const ports::SharedGuardMemory shared(arguments->memory);
  if (!board || shared.memory() == nullptr) return 1;
  return guard::watch({.link = arguments->link,
                       .port = arguments->port,
                       .memory = *shared.memory(),
                       .board = *board});
}
