#pragma once

#include <sstream>
#include <string>
#include <vector>

#include "app/state/controls.h"

namespace kestrel::test {

/// The log's messages without their time stamps.
[[nodiscard]] inline std::vector<std::string> logMessages(const Controls& controls) {
  std::vector<std::string> messages;
  std::istringstream lines(controls.SystemLog.text());
  for (std::string line; std::getline(lines, line);) {
    if (line.ends_with('\r')) line.pop_back();
    const std::size_t start = line.find(">  ");
    if (start != std::string::npos) messages.push_back(line.substr(start + 3));
  }
  return messages;
}

}  // namespace kestrel::test
