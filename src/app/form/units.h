#pragma once

#include "app/form/command_runner.h"
#include "app/form/help_commands.h"
#include "app/state/controls.h"
#include "app/state/error_report.h"
#include "app/state/programmer_state.h"
#include "buffers/buffer_files.h"
#include "data_sheet/drivers.h"
#include "display/device_display.h"
#include "display/exports.h"
#include "display/memory_display.h"
#include "hardware/board.h"
#include "hardware/board_detection.h"
#include "hardware/chip_bus.h"
#include "hardware/error_alert.h"
#include "hardware/hardware_captions.h"
#include "operations/blank_check.h"
#include "operations/data_sheet_way.h"
#include "operations/eprom_programmer.h"
#include "operations/erase_chip.h"
#include "operations/failure_reports.h"
#include "operations/flash_identification.h"
#include "operations/flash_programmer.h"
#include "operations/image_check.h"
#include "operations/page_writer.h"
#include "operations/program_command.h"
#include "operations/program_image.h"
#include "operations/protection.h"
#include "operations/read_device.h"
#include "operations/routines.h"
#include "operations/serial_eeprom.h"
#include "operations/verify.h"
#include "platform/machine.h"
#include "selection/device_selection.h"
#include "selection/kept_selection.h"
#include "setups/named_setups.h"

namespace kestrel::form {

/// The composition: every unit with references to what it uses, in the order of the layers. No
/// control leads anywhere until connectAll.
struct Units {
  explicit Units(const Machine& given) : machine(given) {}

  Machine machine;
  ProgrammerState state;
  Controls controls;

  Reporting reporting{state,          controls,       machine.time,
                      machine.sounds, machine.screen, machine.folders};
  ErrorReport errors{reporting, machine.dialogs};

  hardware::Board board{
      state, controls, reporting, machine.port, machine.waits, machine.portService, machine.screen};
  hardware::ChipBus chipBus{state, state, state, machine.port, machine.waits};
  data_sheet::Drivers drivers{state, state, controls.AnyCode, chipBus};
  hardware::ErrorAlert alert{state, controls, reporting, board.lamps, board.bus};
  hardware::HardwareCaptions captions{state, controls};
  hardware::BoardDetection detection{state,        state,        state,          controls,
                                     reporting,    errors,       board,          alert,
                                     machine.port, machine.time, machine.folders};

  display::MemoryDisplay memoryDisplay{state, state, state, controls};
  display::DeviceDisplay deviceDisplay{state,     state, state,   state,          controls,
                                       reporting, board, drivers, machine.dialogs};
  display::Exports exports{state, controls, reporting, machine.time, machine.folders};
  buffers::BufferFiles files{state, state,         controls,        reporting,   board.lamps,
                             alert, memoryDisplay, machine.dialogs, machine.stop};

  operations::FailureReports reports{state, state, state, controls, reporting, board, alert};
  operations::ProgramImage image{state, state, state, controls};
  operations::DeviceWalk walk{state, state, state, reporting, board, drivers};
  operations::DataSheetWay dataSheet{state, state,   state,   controls, reporting,
                                     board, chipBus, drivers, reports};
  operations::SerialEeprom serial{state, state, state, state, controls, reporting, board, reports};
  operations::ProtectionSequences protection{state, state, state, controls, board};
  operations::FlashIdentification flashIdentification{state, state,      state,  reporting,
                                                      board, protection, drivers};
  operations::FlashProgrammer flashProgrammer{
      state,   state,         state, state, state, controls, reporting, board, flashIdentification,
      reports, machine.screen};
  operations::PageWriter pages{state,     state, state,      state, controls,
                               reporting, board, protection, image, reports};
  operations::EpromProgrammer eprom{state, state,     state, state,  state,
                                    state, reporting, board, reports};
  operations::Routines routines{eprom, pages, flashProgrammer, serial};
  operations::ReadDevice read{state,    state,     state,   state,          state,
                              controls, reporting, board,   alert,          memoryDisplay,
                              serial,   walk,      reports, machine.dialogs};
  operations::BlankCheck blank{state,     state, state,   state, state,          controls,
                               reporting, board, reports, walk,  machine.dialogs};
  operations::Verify verify{state, state, state,  state, state,   controls,       reporting,
                            board, image, serial, walk,  reports, machine.dialogs};
  operations::ImageCheck check{state,    state,     state, state, state,
                               controls, reporting, board, image, walk};
  operations::EraseChip erase{state, state,    state,   controls, reporting,
                              board, routines, reports, dataSheet};
  operations::ProgramCommand program{
      state, state,   state, state, state,  controls, reporting, board,          alert,
      image, reports, check, blank, verify, routines, dataSheet, machine.dialogs};
  selection::DeviceSelection devices{state,
                                     state,
                                     state,
                                     state,
                                     state,
                                     controls,
                                     reporting,
                                     board,
                                     alert,
                                     memoryDisplay,
                                     flashIdentification,
                                     state,
                                     drivers};
  selection::SelectionKeeper selectionKeeper{state, state, state, controls, alert};
  setups::NamedSetups setups{state,           controls,        reporting,   files,
                             machine.dialogs, machine.folders, machine.stop};
  HelpCommands help{machine.help, machine.dialogs, machine.folders};
  CommandRunner runner{controls,     reporting,          errors, board, selectionKeeper,
                       machine.stop, machine.portService};

  // Start-up and shut-down.
  void findBoard();
  [[nodiscard]] bool step(const CommandRunner::Event& event);
  void restAfterFault();
  void reportPortInForce();
  [[nodiscard]] std::string whyNoBoard() const;

  // Routing: every control's event to its handler.
  void connectAll();
  void connectButtons();
  void connectMenus();
  void connectHardwareMenu();
  void connectValues();
  void connectToolbar();
  void takeSupplyFromSerialChip();

 private:
  void testHardware();
  void reportDiagnosis();
  void reportPortNotHeld();
  void logDiagnosis();
  void VScroll1_Change();
  void tbToolBar_ButtonClick(const std::string& key);
};

}  // namespace kestrel::form
