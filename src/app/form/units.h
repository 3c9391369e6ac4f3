#pragma once

#include "app/form/command_boundary.h"
#include "app/form/frm_main.h"
#include "app/form/help_commands.h"
#include "app/state/error_report.h"
#include "buffers/buffer_files.h"
#include "display/device_display.h"
#include "display/exports.h"
#include "display/memory_display.h"
#include "hardware/board_detection.h"
#include "hardware/error_alert.h"
#include "operations/blank_check.h"
#include "operations/eprom_programmer.h"
#include "operations/erase_chip.h"
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
#include "selection/device_selection.h"
#include "setups/named_setups.h"

namespace kestrel::form {

/// The composition: every unit with references to what it uses, in the order of the layers.
struct frmMain::Units {
  explicit Units(const Machine& given) : machine(given) {}

  Machine machine;
  ProgrammerState state;
  Controls controls;

  Reporting reporting{state,          controls,       machine.time,
                      machine.sounds, machine.screen, machine.folders};
  ErrorReport errors{reporting, machine.dialogs};

  hardware::Registers registers{state, machine.port, machine.waits};
  hardware::BusPrimitives bus{state, controls, registers, machine.port, machine.waits};
  hardware::Lamps lamps{state, controls, registers, machine.screen};
  hardware::ErrorAlert alert{state, controls, reporting, lamps, bus};
  hardware::BoardDetection detection{{.state = state,
                                      .controls = controls,
                                      .reporting = reporting,
                                      .errors = errors,
                                      .alert = alert,
                                      .lamps = lamps,
                                      .registers = registers,
                                      .bus = bus,
                                      .port = machine.port,
                                      .time = machine.time,
                                      .folders = machine.folders}};
  operations::OperationParts parts{.state = state,
                                   .controls = controls,
                                   .reporting = reporting,
                                   .lamps = lamps,
                                   .registers = registers,
                                   .bus = bus};

  display::MemoryDisplay memoryDisplay{state, controls, bus};
  display::DeviceDisplay deviceDisplay{state,     controls, reporting,      lamps,
                                       registers, bus,      machine.dialogs};
  display::Exports exports{state, controls, reporting, machine.time, machine.folders};
  buffers::BufferFiles files{{.state = state,
                              .controls = controls,
                              .reporting = reporting,
                              .alert = alert,
                              .lamps = lamps,
                              .display = memoryDisplay,
                              .dialogs = machine.dialogs}};

  operations::FailureReports reports{parts, alert};
  operations::ProgramImage image{state, controls};
  operations::SerialEeprom serial{parts, reports};
  operations::ProtectionSequences protection{parts};
  operations::FlashIdentification flashIdentification{parts, protection};
  operations::FlashProgrammer flashProgrammer{parts, flashIdentification, reports, machine.screen};
  operations::PageWriter pages{parts, protection, image, reports};
  operations::EpromProgrammer eprom{parts, reports};
  operations::ReadDevice read{parts, alert, memoryDisplay, serial, reports, machine.dialogs};
  operations::BlankCheck blank{parts, reports, machine.dialogs};
  operations::Verify verify{parts, image, serial, reports, machine.dialogs};
  operations::EraseChip erase{parts, pages, flashProgrammer, serial, reports};
  operations::ProgramCommand program{parts,
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
  selection::DeviceSelection devices{parts, alert, memoryDisplay, flashIdentification};
  setups::NamedSetups setups{state, controls, reporting, files, machine.dialogs, machine.folders};
  HelpCommands help{machine.help, machine.dialogs, machine.folders};
  CommandBoundary boundary{parts, errors, machine.stop, machine.portService};

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
  template <typename Unit>
  void onPress(Button& button, Unit& unit, void (Unit::*handler)()) {
    button.onPress([this, &unit, handler] { boundary.run([&] { (unit.*handler)(); }); });
  }
  void testHardware();
  void tellDiagnosis();
  void VScroll1_Change();
  void tbToolBar_ButtonClick(const std::string& key);
};

}  // namespace kestrel::form
