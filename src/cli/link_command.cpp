#include "cli/link_command.h"

#include <algorithm>
#include <iomanip>
#include <iostream>

#include "cli/exit_status.h"
#include "link/connection.h"
#include "link/link_error.h"
#include "link/loop_back.h"
#include "link/serial_line.h"

namespace kestrel::cli {
namespace {

const std::string& deviceOf(const Arguments& arguments) {
  const auto& ports = arguments.launch.ports;
  const auto link = std::ranges::find_if(ports, [](const auto& port) { return port.isLink; });
  if (link == ports.end()) {
    throw launch::UsageError("link-test: no adapter is named; add --port 378=link:DEVICE");
  }
  return link->device;
}

bool printLines(const link::LinesResult& result) {
  if (!result.hasPlug) {
    std::cout << "No loop-back plug: the lines were not tested. The manual shows how to make one\n";
    return false;
  }
  for (const link::LineResult& line : result.lines) {
    std::cout << std::left << std::setw(20) << line.output << "to " << line.input << "  "
              << (line.fault.empty() ? "well" : "BAD: " + line.fault) << '\n';
  }
  return std::ranges::all_of(result.lines, [](const auto& line) { return line.fault.empty(); });
}

void printSpeed(const link::SpeedResult& speed) {
  using Milliseconds = std::chrono::duration<double, std::milli>;
  std::cout << std::fixed << std::setprecision(2)
            << "Round trip: " << Milliseconds(speed.meanRoundTrip).count() << " ms, the longest "
            << Milliseconds(speed.longestRoundTrip).count()
            << " ms; throughput: " << std::setprecision(0) << speed.bytesPerSecond / 1000
            << " kB/s\n";
}

}  // namespace

int testLink(const Arguments& arguments) {
  const std::string& device = deviceOf(arguments);
  try {
    link::SerialLine line(device);
    link::LinkConnection connection(line);
    connection.connect();
    std::cout << device << ": " << connection.adapter().name << ", version "
              << connection.adapter().version << " of the protocol\n";
    const bool isWell = printLines(link::testLines(connection));
    printSpeed(link::measureSpeed(connection));
    connection.goodbye();
    return isWell ? kDone : kFailed;
  } catch (const link::LinkError& error) {
    std::cerr << "kestrel-cli: " << error.what() << '\n';
    const std::string cure = link::cureOf(error.problem(), device);
    if (!cure.empty()) std::cerr << "kestrel-cli: Cure: " << cure << '\n';
    return kNoBoard;
  }
}

}  // namespace kestrel::cli
