#pragma once

#include <deque>
#include <optional>
#include <sstream>
#include <string>
#include <vector>

#include "data_sheet/drivers.h"
#include "hardware/board.h"
#include "hardware/chip_bus.h"
#include "hardware/decode_tables.h"
#include "hardware/error_alert.h"
#include "hardware/ports/tracing_port.h"
#include "operations/eprom_programmer.h"
#include "operations/flash_programmer.h"
#include "operations/page_writer.h"
#include "operations/serial_eeprom.h"
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

/// The device procedures over a scripted port on 378h, without the form's commands. No speed is
/// set, so that latch loads have no wait of their own.
struct UnitRig {
  explicit UnitRig(int model = 5) : port(model) {
    hardware::BuildDecodeTables(state);
    registers.InitControlTables();
    state.PortBase = 0x378;
    state.KestrelModel = static_cast<std::int16_t>(model);
    registers.ApplyPortAndModel();
  }

  /// The state in which a program command starts a routine, for a device with these fixed bits.
  void start(std::int16_t reg1Fixed, std::int16_t reg3Fixed) {
    state.Reg1Fixed = reg1Fixed;
    state.Reg3Fixed = reg3Fixed;
    bus.Reset();
    bus.SETADR();
    trace.str("");
  }
  /// The image to program.
  void image(const std::vector<std::uint8_t>& bytes) {
    std::copy(bytes.begin(), bytes.end(), state.ProgramBuffer.begin());
    state.ProgramLength = static_cast<std::int32_t>(bytes.size());
  }
  [[nodiscard]] std::vector<BoardEvent> events() const {
    return boardEvents(trace.str(), state.KestrelModel);
  }
  [[nodiscard]] std::string traffic() const { return textOf(events()); }
  [[nodiscard]] std::vector<std::string> log() const { return logMessages(controls); }

  ScriptedPort port;
  std::ostringstream trace;
  ports::TracingPort traced{port, port, trace};
  RecordingSounds sounds;
  FakeScreen screen;
  Folders folders;
  ProgrammerState state;
  Controls controls;
  FixedTime time;
  Reporting reporting{state, controls, time, sounds, screen, folders};
  PortService service;
  hardware::Board board{state, controls, reporting, traced, traced, service, screen};
  hardware::Registers& registers = board.registers;
  hardware::BusPrimitives& bus = board.bus;
  hardware::Lamps& lamps = board.lamps;
  hardware::ErrorAlert alert{state, controls, reporting, lamps, bus};
  operations::FailureReports reports{state, state, state, controls, reporting, board, alert};
  operations::ProgramImage programImage{state, state, state, controls};
  operations::EpromProgrammer eprom{state, state,     state, state,  state,
                                    state, reporting, board, reports};
  operations::ProtectionSequences protection{state, state, state, controls, board};
  operations::PageWriter pages{state,     state, state,      state,        controls,
                               reporting, board, protection, programImage, reports};
  hardware::ChipBus chipBus{state, state, state, traced, traced};
  data_sheet::Drivers drivers{state, state, controls.AnyCode, chipBus};
  operations::FlashIdentification identification{state, state,      state,  reporting,
                                                 board, protection, drivers};
  operations::FlashProgrammer flash{state,     state, state,          state,   state, controls,
                                    reporting, board, identification, reports, screen};
  operations::SerialEeprom serial{state, state, state, state, controls, reporting, board, reports};
};

}  // namespace kestrel::test
