#pragma once

#include <cstdint>
#include <cstdio>
#include <functional>
#include <string>
#include <vector>

#include "platform/clock.h"
#include "platform/port_access.h"
#include "platform/screen.h"

namespace kestrel::test {

/// A port, a clock and a screen in one that write down what reaches them, such as
/// "out 378=5A", "in 379", "sleep 10", "spin 300", "turn".
class ScriptedMachine final : public PortAccess, public Clock, public Screen {
 public:
  void PortOut(std::int16_t port, std::uint8_t value) override {
    note("out %X=%02X", static_cast<std::uint16_t>(port), value);
  }
  std::uint8_t PortIn(std::int16_t port) override {
    note("in %X", static_cast<std::uint16_t>(port), 0);
    return answer;
  }
  void Sleep(std::int32_t milliseconds) override { event("sleep " + std::to_string(milliseconds)); }
  void Spin(std::int64_t counts) override { event("spin " + std::to_string(counts)); }
  std::string longTime() const override { return "14:03:07"; }

  void repaint() override { event("repaint"); }
  void turn() override { event("turn"); }
  std::size_t openWindows() const override { return 1; }
  void closeLastWindow() override {}
  void closeMainWindow() override {}

  [[nodiscard]] long count(const std::string& event) const {
    long found = 0;
    for (const std::string& each : events) found += each == event ? 1 : 0;
    return found;
  }

  std::vector<std::string> events;
  std::uint8_t answer = 0x78;
  std::function<void(const std::string&)> onEvent;

 private:
  void note(const char* format, unsigned port, unsigned value) {
    char text[32];
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wformat-nonliteral"
    std::snprintf(text, sizeof text, format, port, value);
#pragma GCC diagnostic pop
    event(text);
  }
  void event(const std::string& text) {
    events.push_back(text);
    if (onEvent) onEvent(text);
  }
};

}  // namespace kestrel::test
