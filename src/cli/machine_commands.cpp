#include "cli/machine_commands.h"

#include <algorithm>
#include <iomanip>
#include <iostream>
#include <utility>

#include "app/launch/machine_ports.h"
#include "app/launch/program.h"
#include "app/work/device_catalogue.h"
#include "cli/exit_status.h"
#include "cli/json_lines.h"
#include "hardware/ports/real_port.h"
#include "hardware/ports/real_ports.h"
#include "hardware/ports/safe_off.h"
#include "hardware/ports/system_calls.h"
#include "hardware/ports/tracing_port.h"
#include "platform/file_names.h"
#include "platform/runtime_error.h"
#include "setups/setup_files.h"

namespace kestrel::cli {
namespace {

using work::DeviceCatalogue;

std::uint16_t address(std::uint16_t base, ports::PortRegister target) {
  return static_cast<std::uint16_t>(base + static_cast<unsigned>(target));
}

void reportSwitchedOff(const Arguments& arguments, std::uint16_t base) {
  if (arguments.quiet) return;
  std::cout << "Port " << ports::addressText(base)
            << "h: latch 0 loaded with 40h, every voltage is off\n";
}

int switchOffSimulated(const Arguments& arguments) {
  const StopSwitch stop;
  launch::MachinePorts ports(arguments.launch, {}, stop);
  launch::TraceFile trace(arguments.launch, stop);
  ports::TracingPort traced(ports.port(), ports.waits(), trace.stream());
  for (const ports::PortWrite& write : ports::kSafeOff) {
    const std::uint16_t port = address(ports.simulated()->base(), write.target);
    traced.PortOut(static_cast<std::int16_t>(port), write.value);
  }
  trace.finish();
  reportSwitchedOff(arguments, ports.simulated()->base());
  return kDone;
}

int switchOffReal(const Arguments& arguments) {
  ports::LinuxCalls calls;
  ports::PortOptions options;
  options.choices = arguments.launch.ports;
  ports::RealPorts real(calls, std::move(options));
  if (real.switchOff()) {
    for (const std::uint16_t base : real.taken()) reportSwitchedOff(arguments, base);
    return kDone;
  }
  for (const std::string& line : real.diagnosis()) std::cerr << "kestrel-cli: " << line << '\n';
  return kNoBoard;
}

void printDeviceJson(const DeviceCatalogue::Device& device) {
  Json line = jsonEvent("device");
  line["name"] = device.name;
  line["shortName"] = device.shortName;
  line["family"] = device.family;
  line["offered"] = device.isOffered;
  line["bytes"] = device.sizeKB * 1024;
  line["voltages"] = device.voltages;
  printJson(std::cout, line);
}

/// Name, device and file of a setup; a position that is no device has none.
void printSetup(std::size_t slot, const setups::SetupSummary& setup,
                const DeviceCatalogue& catalogue, bool json) {
  const auto isMeant = [&](const auto& d) { return d.position == setup.devicePosition; };
  const auto device = std::ranges::find_if(catalogue.devices(), isMeant);
  const bool isKnown = device != catalogue.devices().end();
  if (json) {
    Json line = jsonEvent("setup");
    line["slot"] = slot;
    line["name"] = setup.name;
    line["device"] = isKnown ? device->name : "";
    line["file"] = setup.codeFile;
    printJson(std::cout, line);
    return;
  }
  std::cout << slot << "  " << std::left << std::setw(24) << shownName(setup.name) << "  "
            << std::setw(28) << (isKnown ? device->name : "no device") << "  "
            << (setup.codeFile.empty() ? "no file" : shownName(setup.codeFile)) << '\n';
}

}  // namespace

int listDevices(const Arguments& arguments) {
  const DeviceCatalogue catalogue;
  const Algorithms algorithms = arguments.launch.algorithms.value_or(Algorithms::Classic);
  if (arguments.json) {
    if (arguments.device) {
      printDeviceJson(catalogue.find(*arguments.device, algorithms));
    } else {
      for (const DeviceCatalogue::Device& device : catalogue.devices()) printDeviceJson(device);
    }
  } else if (arguments.device) {
    DeviceCatalogue::print(catalogue.find(*arguments.device, algorithms), algorithms, std::cout);
  } else if (arguments.names) {
    catalogue.printNames(std::cout, algorithms);
  } else {
    catalogue.print(algorithms, std::cout);
  }
  return kDone;
}

int listSetups(const Arguments& arguments) {
  const DeviceCatalogue catalogue;
  int status = kDone;
  for (std::size_t slot = 1; slot <= setups::kSlots; ++slot) {
    try {
      const setups::SetupSummary setup = setups::summaryOf(".", slot);
      if (setup.isThere) {
        printSetup(slot, setup, catalogue, arguments.json);
      } else if (!arguments.json) {
        std::cout << slot << "  empty\n";
      }
    } catch (const FileError& error) {
      if (!arguments.json) std::cout << slot << "  cannot be read\n" << std::flush;
      std::cerr << "kestrel-cli: " << error.what() << '\n';
      status = kBadUsage;
    }
  }
  return status;
}

int switchOff(const Arguments& arguments) {
  return arguments.launch.simulate ? switchOffSimulated(arguments) : switchOffReal(arguments);
}

}  // namespace kestrel::cli
