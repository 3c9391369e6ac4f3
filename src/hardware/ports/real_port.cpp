#include "hardware/ports/real_port.h"

#include <array>
#include <cstdio>
#include <cstring>

namespace kestrel::ports {
namespace {

std::string reasonFor(PortProblem problem, int errorNumber) {
  // The driver answers "No such device or address" here, which says nothing to the reader.
  if (problem == PortProblem::Taken) return "another driver or program has it";
  if (problem == PortProblem::NotAPort) return "not a parallel port";
  return std::strerror(errorNumber);
}

}  // namespace

std::string addressText(std::uint16_t address) {
  std::array<char, 8> text{};
  std::snprintf(text.data(), text.size(), "%X", address);
  return text.data();
}

PortError::PortError(PortProblem problem, const std::string& device, int errorNumber)
    : RuntimeError(
          problem == PortProblem::NoPermission || problem == PortProblem::NotPermitted
              ? kPermissionDeniedError
              : kDeviceUnavailableError,
          "Parallel port " + device + " cannot be used: " + reasonFor(problem, errorNumber)),
      problem_(problem) {}

bool RealPort::switchOff() noexcept {
  bool written = true;
  for (const PortWrite& each : kSafeOff) written = write(each.target, each.value) && written;
  return written;
}

}  // namespace kestrel::ports
