#pragma once

#include <algorithm>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "app/form/units.h"
#include "hardware/decode_tables.h"
#include "support/board_trace.h"
#include "support/control_names.h"
#include "support/fakes.h"
#include "support/port_script.h"

namespace kestrel::test {

/// Thrown by a scripted port that is asked for more than its script holds.
struct ScriptEnd {};

/// A port over which a board seems to give bytes from a script: the low half of the next byte, then
/// its high half, as control bit 2 chooses. A high half alone takes a byte of its own. Waits pass
/// at once.
class ScriptedPort final : public PortScript {
 public:
  explicit ScriptedPort(int model) : isModel4_(model == 4) {}

  void PortOut(std::int16_t port, std::uint8_t value) override {
    PortScript::PortOut(port, value);
    if (port == 0x37A) control_ = value;
  }
  std::uint8_t PortIn(std::int16_t port) override {
    if (answers.empty() && !thereafter) throw ScriptEnd();
    const unsigned byte = answers.empty() ? *thereafter : answers.front();
    const bool isHigh = ((control_ & 0x04U) != 0) == isModel4_;
    if (!isHigh) answers.push_front(static_cast<std::uint8_t>(byte));  // for the high half
    (void)PortScript::PortIn(port);
    const unsigned half = isHigh ? byte >> 4U : byte & 0x0FU;
    if (!isModel4_) return static_cast<std::uint8_t>(0x87U | half << 3U);
    const unsigned lines =
        (half & 1U) << 6U | (~half & 2U) << 6U | (half & 4U) << 3U | (half & 8U) << 1U;
    return static_cast<std::uint8_t>(0x0FU | lines);
  }
  void Sleep(std::int32_t milliseconds) override {
    PortScript::Sleep(milliseconds);
    if (onSleep) onSleep();
  }

  void answer(const std::vector<std::uint8_t>& bytes) {
    answers.insert(answers.end(), bytes.begin(), bytes.end());
  }
  /// A byte as a serial chip gives it: one read of the data line for each bit.
  void answerBits(unsigned byte) {
    for (unsigned bit = 0x80; bit != 0; bit >>= 1U) answers.push_back((byte & bit) ? 0x80 : 0x00);
  }

  std::function<void()> onSleep;
  std::optional<std::uint8_t> thereafter;  ///< given when the script is at its end

 private:
  bool isModel4_;
  std::uint8_t control_ = 0;
};

/// What the form's units are put together over.
struct ScriptedMachine : Surroundings {
  explicit ScriptedMachine(int model) : port(model) {}

  [[nodiscard]] Machine parts() {
    return {port, port,    noService, time,    sounds,   settings,
            help, dialogs, screen,    ownStop, folders()};
  }

  ScriptedPort port;
};

/// The form's own composition over a scripted port on 378h, without its commands and start-up. No
/// speed is set, so that latch loads have no wait of their own.
struct UnitRig : ScriptedMachine, form::Units {
  explicit UnitRig(int model = 5) : ScriptedMachine(model), Units(parts()) {
    hardware::BuildDecodeTables(state, state, state);
    board.registers.InitControlTables();
    state.PortBase = 0x378;
    state.KestrelModel = static_cast<std::int16_t>(model);
    board.registers.ApplyPortAndModel();
  }

  /// The state in which a program command starts a routine, for a device with these fixed bits.
  void start(std::int16_t reg1Fixed, std::int16_t reg3Fixed) {
    state.Reg1Fixed = reg1Fixed;
    state.Reg3Fixed = reg3Fixed;
    board.bus.Reset();
    board.bus.SETADR();
    (void)port.taken();
  }
  void setImage(const std::vector<std::uint8_t>& bytes) {
    std::ranges::copy(bytes, state.ProgramBuffer.begin());
    state.ProgramLength = static_cast<std::int32_t>(bytes.size());
  }
  [[nodiscard]] std::vector<std::string> events() const {
    return boardEvents(port.accesses(), state.KestrelModel);
  }
  [[nodiscard]] std::string traffic() const { return joined(events()); }
  [[nodiscard]] std::vector<std::string> log() const { return logMessages(controls); }
};

}  // namespace kestrel::test
