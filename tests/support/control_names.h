#pragma once

#include <sstream>
#include <string>
#include <vector>

#include "app/state/controls.h"

namespace kestrel::test {

/// Those of the named controls that are enabled, as one text; an unknown name throws.
inline std::string enabledOf(const Controls& controls, const std::string& names,
                             bool wanted = true) {
  std::istringstream list(names);
  std::string found;
  for (std::string name; list >> name;) {
    const Control* const control = controls.find(name);
    if (control == nullptr) throw std::invalid_argument(name);
    if (control->enabled() == wanted) found += (found.empty() ? "" : " ") + name;
  }
  return found;
}
inline std::string disabledOf(const Controls& controls, const std::string& names) {
  return enabledOf(controls, names, false);
}

/// The names of all controls that are so.
template <typename Wanted>
std::string namesOf(const Controls& controls, Wanted isWanted) {
  std::string names;
  for (const Control* const control : controls.all()) {
    if (isWanted(*control)) names += (names.empty() ? "" : " ") + control->name();
  }
  return names;
}

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
