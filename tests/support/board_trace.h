#pragma once

#include <array>
#include <cstdint>
#include <sstream>
#include <string>
#include <vector>

namespace kestrel::test {

/// What the accesses of a PortScript mean to the board on 378h, worked out from its wiring alone:
/// "3=86" a latch load, the data that stand when its strobe goes active; "lo" and "hi" the reads of
/// a half; "spin=20" and "sleep=5".
inline std::vector<std::string> boardEvents(const std::string& accesses, int model) {
  constexpr std::array<int, 8> kLatchOfCode{3, 1, -1, -1, 2, 0, -1, 4};
  std::vector<std::string> events;
  std::string data;
  unsigned control = 0;
  std::istringstream list(accesses);
  for (std::string access; list >> access;) {
    if (access[0] == 's') {  // "spin20", "sleep5"
      events.push_back(access.insert(access.find_first_of("0123456789"), "="));
    } else if (access.ends_with('?')) {
      events.emplace_back(((control & 4U) != 0) == (model == 4) ? "hi" : "lo");
    } else if (access.starts_with("378=")) {
      data = access.substr(4);
    } else {
      control = static_cast<unsigned>(std::stoul(access.substr(4), nullptr, 16));
      const unsigned nibble = model == 4 ? control : control ^ 0x0FU;
      const int latch = (nibble & 1U) != 0 ? kLatchOfCode[nibble >> 1U & 7U] : -1;
      if (latch >= 0) events.push_back(std::to_string(latch) + "=" + data);
    }
  }
  return events;
}

/// What follows the equals sign of all events that begin so: the loads of latch 0 by "0=".
inline std::vector<std::string> valuesOf(const std::string& begin,
                                         const std::vector<std::string>& events) {
  std::vector<std::string> values;
  for (const std::string& event : events) {
    if (event.starts_with(begin)) values.push_back(event.substr(begin.size()));
  }
  return values;
}

inline std::string joined(const std::vector<std::string>& words) {
  std::string text;
  for (const std::string& word : words) text += (text.empty() ? "" : " ") + word;
  return text;
}

}  // namespace kestrel::test
