#pragma once

#include <cstdint>
#include <deque>
#include <functional>
#include <string>

#include "app/state/text_format.h"
#include "platform/port_access.h"
#include "platform/waits.h"

namespace kestrel::test {

/// A port and a clock that answer reads from a script (FFh when it is empty) and write down what is
/// asked of them in one line: a write "378=5A", a read "379?", a busy loop "spin12", a wait
/// "sleep200".
class PortScript : public PortAccess, public Waits {
 public:
  void PortOut(std::int16_t port, std::uint8_t value) override {
    note(hexText(port) + "=" + hexText(value, 2));
  }
  std::uint8_t PortIn(std::int16_t port) override {
    note(hexText(port) + "?");
    if (answers.empty()) return 0xFF;
    const std::uint8_t answer = answers.front();
    answers.pop_front();
    return answer;
  }
  void Sleep(std::int32_t milliseconds) override {
    const std::size_t last = line_.rfind(' ') + 1;
    if (joinsSleeps && line_.compare(last, 5, "sleep") == 0) {
      milliseconds += std::stoi(line_.substr(last + 5));
      line_.resize(last == 0 ? 0 : last - 1);
    }
    note("sleep" + std::to_string(milliseconds));
  }
  void Spin(std::int64_t counts) override {
    if (counts > 0) note("spin" + std::to_string(counts));
  }

  [[nodiscard]] const std::string& accesses() const { return line_; }

  /// What was written down since the last call.
  [[nodiscard]] std::string taken() { return std::exchange(line_, std::string()); }

  void note(const std::string& event) {
    line_ += (line_.empty() ? "" : " ") + event;
    if (onEvent) onEvent();
  }

  bool joinsSleeps = false;  ///< the slices that a long wait passes in are one wait
  std::deque<std::uint8_t> answers;
  std::function<void()> onEvent;

 private:
  std::string line_;
};

}  // namespace kestrel::test
