#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "platform/clock.h"
#include "platform/port_access.h"
#include "platform/screen.h"

namespace kestrel::test {

using Events = std::vector<std::string>;

/// A port, a clock and a screen in one that note what reaches them, ports and bytes in decimal:
/// "out 888 90", "in 889", "sleep 10", "spin 300", "turn".
class ScriptedMachine final : public PortAccess, public Clock, public Screen {
 public:
  void PortOut(std::int16_t port, std::uint8_t value) override {
    event("out " + std::to_string(port) + " " + std::to_string(value));
  }
  std::uint8_t PortIn(std::int16_t port) override {
    event("in " + std::to_string(port));
    return 0x78;
  }
  void Sleep(std::int32_t milliseconds) override { event("sleep " + std::to_string(milliseconds)); }
  void Spin(std::int64_t counts) override { event("spin " + std::to_string(counts)); }
  void repaint() override {}
  void turn() override { event("turn"); }
  std::size_t openWindows() const override { return 1; }
  void closeLastWindow() override {}
  void closeMainWindow() override {}

  Events events;
  std::function<void()> onEvent = [] {};

 private:
  void event(const std::string& text) {
    events.push_back(text);
    onEvent();
  }
};

}  // namespace kestrel::test
