#pragma once

#include <array>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>
#include <vector>

namespace kestrel::test {

/// What a trace of the port says to the board on 378h, worked out from its wiring alone.
struct BoardEvent {
  enum class Kind { Load, Low, High, Spin, Sleep };
  Kind kind{};
  int latch = 0;   ///< Load: 0 to 4
  long value = 0;  ///< Load: the byte; Low, High: the status byte; Spin, Sleep: how long
};

/// Latch loads are the data that stands when a strobe goes active; `busDelay` is the wait within
/// each load, which is left out.
inline std::vector<BoardEvent> boardEvents(const std::string& trace, int model, long busDelay = 0) {
  using Kind = BoardEvent::Kind;
  constexpr std::array<int, 8> kLatchOfCode{3, 1, -1, -1, 2, 0, -1, 4};
  std::vector<BoardEvent> events;
  long data = 0;
  unsigned control = 0;
  const char* line = trace.c_str();
  for (; *line != '\0'; line = std::strchr(line, '\n') + 1) {
    char* rest = nullptr;
    const char* const number = std::strchr(line, ' ') + 1;
    if (line[0] == 's') {  // "spin 12", "sleep 500"
      const bool isSpin = line[1] == 'p';
      const long length = std::strtol(number, nullptr, 10);
      if (isSpin && length == busDelay) continue;
      events.push_back({.kind = isSpin ? Kind::Spin : Kind::Sleep, .value = length});
      continue;
    }
    const long port = std::strtol(number, &rest, 16);  // "in 379 78", "out 378 5A"
    const long value = std::strtol(rest, nullptr, 16);
    if (line[0] == 'i') {
      const bool isHigh = ((control & 4U) != 0) == (model == 4);
      events.push_back({.kind = isHigh ? Kind::High : Kind::Low, .value = value});
    } else if (port == 0x378) {
      data = value;
    } else {
      control = static_cast<unsigned>(value);
      const unsigned nibble = model == 4 ? control : control ^ 0x0FU;
      const int latch = (nibble & 1U) != 0 ? kLatchOfCode[nibble >> 1U & 7U] : -1;
      if (latch >= 0) events.push_back({.kind = Kind::Load, .latch = latch, .value = data});
    }
  }
  return events;
}

inline std::string hexByte(long value) {
  std::array<char, 20> text{};
  std::snprintf(text.data(), text.size(), "%02lX", value);
  return text.data();
}

/// The events as a short text: "3=86 0=40 spin=20 sleep=5 lo hi".
inline std::string textOf(const std::vector<BoardEvent>& events) {
  std::string text;
  for (const BoardEvent& event : events) {
    const std::array<std::string, 5> pieces{
        std::to_string(event.latch) + "=" + hexByte(event.value), "lo", "hi",
        "spin=" + std::to_string(event.value), "sleep=" + std::to_string(event.value)};
    text += (text.empty() ? "" : " ") + pieces.at(static_cast<std::size_t>(event.kind));
  }
  return text;
}

/// The values loaded into one latch, such as "40 5C".
inline std::string loadsOf(int latch, const std::vector<BoardEvent>& events) {
  std::string text;
  for (const BoardEvent& event : events) {
    if (event.kind != BoardEvent::Kind::Load || event.latch != latch) continue;
    text += (text.empty() ? "" : " ") + hexByte(event.value);
  }
  return text;
}

inline int countOf(BoardEvent::Kind kind, long value, const std::vector<BoardEvent>& events) {
  int count = 0;
  for (const BoardEvent& event : events) count += event.kind == kind && event.value == value;
  return count;
}

}  // namespace kestrel::test
