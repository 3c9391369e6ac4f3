#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "hardware/ports/port_discovery.h"
#include "hardware/ports/real_port.h"

namespace kestrel::ports {

/// What became of one of the three bases that has, or should have, a port behind it.
struct PortFinding {
  std::uint16_t base = 0;
  std::string device;                  // /dev/parport0, or the address of direct access
  bool isDirect = false;               // by I/O address, without a driver
  std::optional<PortProblem> problem;  // none: the port is taken and works
  std::string reason;                  // the failure in words
  std::string holder;                  // who has it: "name, process 4711", where that is known
  bool isLink = false;                 // a serial line with an adapter at its end
};

/// All that is known about the ports of this machine when no board answers.
struct PortSurvey {
  std::vector<ListedPort> listed;
  std::vector<PortFinding> findings;
  bool isPortDriverLoaded = false;  // parport_pc
  bool isUserDriverLoaded = false;  // ppdev
  bool isLockedDown = false;
};

/// Says in one line for each finding what it is and, after "Cure: ", the one command that helps.
/// Never empty.
[[nodiscard]] std::vector<std::string> diagnose(const PortSurvey& survey);

}  // namespace kestrel::ports
