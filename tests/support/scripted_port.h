#pragma once

#include <cstdint>
#include <deque>
#include <optional>
#include <vector>

#include "platform/clock.h"
#include "platform/port_access.h"

namespace kestrel::test {

/// Thrown by a scripted port that is asked for more than its script holds.
struct ScriptEnd {};

/// A port over which a board seems to give bytes from a script: the low half of the next byte, then
/// its high half, as control bit 2 chooses. A high half alone takes a byte of its own. Waits pass
/// at once.
class ScriptedPort final : public PortAccess, public Clock {
 public:
  explicit ScriptedPort(int model) : isModel4_(model == 4) {}

  void PortOut(std::int16_t port, std::uint8_t value) override {
    if (port == 0x37A) control_ = value;
  }
  std::uint8_t PortIn(std::int16_t) override {
    if (answers.empty() && !thereafter) throw ScriptEnd();
    const unsigned byte = answers.empty() ? *thereafter : answers.front();
    const bool isHigh = ((control_ & 0x04U) != 0) == isModel4_;
    if (isHigh && !answers.empty()) answers.pop_front();
    const unsigned half = isHigh ? byte >> 4U : byte & 0x0FU;
    if (!isModel4_) return static_cast<std::uint8_t>(0x87U | half << 3U);
    const unsigned lines =
        (half & 1U) << 6U | (~half & 2U) << 6U | (half & 4U) << 3U | (half & 8U) << 1U;
    return static_cast<std::uint8_t>(0x0FU | lines);
  }
  void Sleep(std::int32_t) override {}
  void Spin(std::int64_t) override {}

  void answer(const std::vector<std::uint8_t>& bytes) {
    answers.insert(answers.end(), bytes.begin(), bytes.end());
  }
  /// A byte as a serial chip gives it: one read of the data line for each bit.
  void answerBits(unsigned byte) {
    for (unsigned bit = 0x80; bit != 0; bit >>= 1U) answers.push_back((byte & bit) ? 0x80 : 0x00);
  }

  std::deque<std::uint8_t> answers;
  std::optional<std::uint8_t> thereafter;  ///< given when the script is at its end

 private:
  bool isModel4_;
  std::uint8_t control_ = 0;
};

}  // namespace kestrel::test
