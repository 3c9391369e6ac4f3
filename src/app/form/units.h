#pragma once

#include "app/form/command_boundary.h"
#include "app/form/frm_main.h"
#include "app/form/help_commands.h"
#include "app/state/error_report.h"
#include "app/state/operation_buttons.h"
#include "buffers/buffer_files.h"
#include "devices/device_selection.h"
#include "display/device_display.h"
#include "display/exports.h"
#include "display/memory_display.h"
#include "hardware/board_detection.h"
#include "operations/blank_check.h"
#include "operations/eprom_programmer.h"
#include "operations/erase_chip.h"
#include "operations/error_alert.h"
#include "operations/failure_reports.h"
#include "operations/flash_identification.h"
#include "operations/flash_programmer.h"
#include "operations/page_writer.h"
#include "operations/program_command.h"
#include "operations/program_image.h"
#include "operations/protection.h"
#include "operations/read_device.h"
#include "operations/serial_eeprom.h"
#include "operations/verify.h"
#include "setups/named_setups.h"

namespace kestrel {

/// The composition: every unit with references to what it uses, in the order of the layers.
struct frmMain::Units {
  explicit Units(const Machine& given) : machine(given) {}

  Machine machine;
  PortCare noCare;
  ProgrammerState state;
  Controls controls;

  Reporting reporting{state,          controls,       machine.clock,
                      machine.sounds, machine.screen, machine.folders};
  ErrorReport errors{reporting, machine.dialogs};
  OperationButtons buttons{state, controls};

  Registers registers{state, machine.port, machine.clock};
  BusPrimitives bus{state, controls, registers, machine.port, machine.clock};
  Lamps lamps{state, controls, registers, machine.screen};
  BoardDetection detection{{.state = state,
                            .controls = controls,
                            .reporting = reporting,
                            .errors = errors,
                            .buttons = buttons,
                            .lamps = lamps,
                            .registers = registers,
                            .bus = bus,
                            .port = machine.port,
                            .clock = machine.clock,
                            .folders = machine.folders}};
  OperationParts parts{.state = state,
                       .controls = controls,
                       .reporting = reporting,
                       .lamps = lamps,
                       .registers = registers,
                       .bus = bus};

  MemoryDisplay memoryDisplay{state, controls, bus};
  DeviceDisplay deviceDisplay{state, controls, reporting, lamps, registers, bus, machine.dialogs};
  Exports exports{state, controls, reporting, machine.clock, machine.folders};
  BufferFiles files{{.state = state,
                     .controls = controls,
                     .reporting = reporting,
                     .buttons = buttons,
                     .lamps = lamps,
                     .display = memoryDisplay,
                     .dialogs = machine.dialogs}};

  ErrorAlert alert{parts, buttons};
  FailureReports reports{parts, alert};
  ProgramImage image{state, controls};
  SerialEeprom serial{parts, reports};
  ProtectionSequences protection{parts};
  FlashIdentification flashIdentification{parts, protection};
  FlashProgrammer flashProgrammer{parts, flashIdentification, reports, machine.screen};
  PageWriter pages{parts, protection, image, reports};
  EpromProgrammer eprom{parts, reports};
  ReadDevice read{parts, buttons, memoryDisplay, serial, reports, machine.dialogs};
  BlankCheck blank{parts, reports, machine.dialogs};
  Verify verify{parts, image, serial, reports, machine.dialogs};
  EraseChip erase{parts, pages, flashProgrammer, serial, reports};
  ProgramCommand program{parts,
                         {.image = image,
                          .alert = alert,
                          .reports = reports,
                          .blank = blank,
                          .verify = verify,
                          .eprom = eprom,
                          .pages = pages,
                          .flash = flashProgrammer,
                          .serial = serial,
                          .dialogs = machine.dialogs}};
  DeviceSelection devices{parts, buttons, memoryDisplay, flashIdentification};
  NamedSetups setups{state, controls, reporting, files, machine.dialogs, machine.folders};
  HelpCommands help{machine.help, machine.dialogs, machine.folders};
  CommandBoundary boundary{parts, errors, machine.stop, care()};

  // Start-up and shut-down.
  void showNoBoardYet();
  void findBoard();

  // Routing: every control's event to its handler.
  void connectAll();
  void connectButtons();
  void connectMenus();
  void connectHardwareMenu();
  void connectValues();
  void connectToolbar();

 private:
  [[nodiscard]] PortCare& care() { return machine.care != nullptr ? *machine.care : noCare; }
  template <typename Unit>
  void onPress(Button& button, Unit& unit, void (Unit::*handler)()) {
    button.onPress([this, &unit, handler] { boundary.run([&] { (unit.*handler)(); }); });
  }
  void testHardware();
  void tellDiagnosis();
  void VScroll1_Change();
  void tbToolBar_ButtonClick(const std::string& key);
};

}  // namespace kestrel
