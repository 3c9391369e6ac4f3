#pragma once

#include <algorithm>
#include <deque>
#include <functional>
#include <optional>
#include <sstream>
#include <string>
#include <vector>

#include "app/form/units.h"
#include "hardware/decode_tables.h"
#include "hardware/ports/tracing_port.h"
#include "support/board_trace.h"
#include "support/control_names.h"
#include "support/fakes.h"

namespace kestrel::test {

/// Thrown by a scripted port that is asked for more than its script holds.
struct ScriptEnd {};

/// A port over which a board seems to give bytes from a script: the low half of the next byte, then
/// its high half, as control bit 2 chooses. A high half alone takes a byte of its own. Waits pass
/// at once.
class ScriptedPort final : public PortAccess, public Waits {
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
  void Sleep(std::int32_t) override {
    if (onSleep) onSleep();
  }
  void Spin(std::int64_t) override {}

  void answer(const std::vector<std::uint8_t>& bytes) {
    answers.insert(answers.end(), bytes.begin(), bytes.end());
  }
  /// A byte as a serial chip gives it: one read of the data line for each bit.
  void answerBits(unsigned byte) {
    for (unsigned bit = 0x80; bit != 0; bit >>= 1U) answers.push_back((byte & bit) ? 0x80 : 0x00);
  }

  std::deque<std::uint8_t> answers;
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
    return {traced, traced,  noService, time,    sounds,   settings,
            help,   dialogs, screen,    ownStop, folders()};
  }

  ScriptedPort port;
  std::ostringstream trace;
  ports::TracingPort traced{port, port, trace};
};

/// The form's own composition over a scripted port on 378h, without its commands and start-up. No
/// speed is set, so that latch loads have no wait of their own.
struct UnitRig : ScriptedMachine, form::Units {
  explicit UnitRig(int model = 5) : ScriptedMachine(model), Units(parts()) {
    hardware::BuildDecodeTables(state);
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
    trace.str("");
  }
  void setImage(const std::vector<std::uint8_t>& bytes) {
    std::ranges::copy(bytes, state.ProgramBuffer.begin());
    state.ProgramLength = static_cast<std::int32_t>(bytes.size());
  }
  [[nodiscard]] std::vector<BoardEvent> events() const {
    return boardEvents(trace.str(), state.KestrelModel);
  }
  [[nodiscard]] std::string traffic() const { return textOf(events()); }
  [[nodiscard]] std::vector<std::string> log() const { return logMessages(controls); }
};

}  // namespace kestrel::test
