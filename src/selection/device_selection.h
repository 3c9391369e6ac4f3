#pragma once

#include <cstddef>

#include "app/state/controls.h"
#include "app/state/programmer_state.h"
#include "app/state/reporting.h"
#include "data_sheet/drivers.h"
#include "devices/families.h"
#include "display/memory_display.h"
#include "hardware/board.h"
#include "hardware/error_alert.h"
#include "operations/flash_identification.h"

namespace kestrel::selection {

/// Choosing a device, a programming voltage, a speed.
class DeviceSelection {
 public:
  DeviceSelection(const CatalogueState& catalogue, SelectionState& device, TimingState& timing,
                  BufferState& buffers, ShellState& shell, Controls& controls, Reporting& reporting,
                  hardware::Board& board, hardware::ErrorAlert& alert,
                  display::MemoryDisplay& display, operations::FlashIdentification& flash,
                  AlgorithmState& chosen, const data_sheet::Drivers& drivers)
      : catalogue_(catalogue),
        device_(device),
        timing_(timing),
        buffers_(buffers),
        shell_(shell),
        controls_(controls),
        reporting_(reporting),
        board_(board),
        alert_(alert),
        display_(display),
        flash_(flash),
        chosen_(chosen),
        drivers_(drivers) {}

  /// Takes over the row that the list's position names. An entry that is not available is
  /// deselected and changes nothing.
  void Device_Click();

  /// Index 0 = 5 V, 1 = 12.5 V, 2 = 21 V, 3 = 25 V.
  void Voltage_button_Click(std::size_t index);

  void Slider1_Change();

  /// Index 0 = classic, 1 = those of the data sheets. Refused while the device in force is not
  /// offered with them.
  void AlgorithmSelection_Click(std::size_t index);

  /// Index 0 = left as it is found, 1 = on, 2 = off, once the chip is programmed or erased.
  void ProtectionSelection_Click(std::size_t index);

  /// Recomputes the three delay counts from the slider; a higher value is faster.
  void ApplyProgramSpeed();

 private:
  void copyRow(std::int32_t row);
  void patchAddressMaps(devices::AddressMap map);
  void setTimingFactors(const devices::TimingFactors& factors);
  void prepareBoard(const devices::Family& family);
  void showOptions();
  void showSheetOptions();
  void fillList();
  void exchangeCheck();
  void enableCommands(const devices::Family& family);
  void chooseMemories(const devices::Family& family);
  void offerDataMemory();
  void offerVoltages();
  void enableForLoadedBuffers();
  void reportSelection();

  const CatalogueState& catalogue_;
  SelectionState& device_;
  TimingState& timing_;
  BufferState& buffers_;
  ShellState& shell_;
  Controls& controls_;
  Reporting& reporting_;
  hardware::Board& board_;
  hardware::ErrorAlert& alert_;
  display::MemoryDisplay& display_;
  operations::FlashIdentification& flash_;
  AlgorithmState& chosen_;
  const data_sheet::Drivers& drivers_;
  bool isCheckedOtherwise_ = true;  // the box in the way of working that is not in force
};

}  // namespace kestrel::selection
