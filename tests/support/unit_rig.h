#pragma once

#include <initializer_list>
#include <sstream>
#include <string>
#include <vector>

#include "hardware/decode_tables.h"
#include "hardware/ports/tracing_port.h"
#include "operations/eprom_programmer.h"
#include "operations/flash_programmer.h"
#include "operations/page_writer.h"
#include "operations/serial_eeprom.h"
#include "support/board_trace.h"
#include "support/fakes.h"
#include "support/log_messages.h"
#include "support/scripted_port.h"

namespace kestrel::test {

/// The device procedures over a scripted port on 378h, without the form's commands. No speed is
/// set, so that latch loads have no wait of their own.
struct UnitRig {
  explicit UnitRig(int model = 5) : port(model) {
    BuildDecodeTables(state);
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
  TracingPort traced{port, port, trace};
  RecordingSounds sounds;
  FakeScreen screen;
  Folders folders;
  ProgrammerState state;
  Controls controls;
  Reporting reporting{state, controls, traced, sounds, screen, folders};
  OperationButtons buttons{state, controls};
  Registers registers{state, traced, traced};
  BusPrimitives bus{state, controls, registers, traced, traced};
  Lamps lamps{state, controls, registers, screen};
  OperationParts parts{state, controls, reporting, lamps, registers, bus};
  ErrorAlert alert{parts, buttons};
  FailureReports reports{parts, alert};
  ProgramImage programImage{state, controls};
  EpromProgrammer eprom{parts, reports};
  ProtectionSequences protection{parts};
  PageWriter pages{parts, protection, programImage, reports};
  FlashIdentification identification{parts, protection};
  FlashProgrammer flash{parts, identification, reports, screen};
  SerialEeprom serial{parts, reports};
};

}  // namespace kestrel::test
