#pragma once

#include <cstddef>

#include "display/memory_display.h"
#include "hardware/error_alert.h"
#include "operations/flash_identification.h"
#include "operations/operation_parts.h"

namespace kestrel::selection {

/// Choosing a device, a programming voltage, a speed.
class DeviceSelection {
 public:
  DeviceSelection(const operations::OperationParts& parts, hardware::ErrorAlert& alert,
                  display::MemoryDisplay& display, operations::FlashIdentification& flash);

  /// Takes over the row that the list's position names. An entry that is not available is
  /// deselected and changes nothing.
  void Device_Click();

  /// Index 0 = 5 V, 1 = 12.5 V, 2 = 21 V, 3 = 25 V.
  void Voltage_button_Click(std::size_t index);

  void Slider1_Change();

  /// Recomputes the three delay counts from the slider; a higher value is faster.
  void ApplyProgramSpeed();

 private:
  void copyRow(std::int32_t row);
  void patchAddressMaps();
  void setTimingFactors();
  void prepareBoard();
  void showOptions();
  void enableCommands();
  void chooseMemories();
  void offerDataMemory();
  void offerVoltages();
  void enableForLoadedBuffers();
  void reportSelection();

  operations::OperationParts p_;
  hardware::ErrorAlert& alert_;
  display::MemoryDisplay& display_;
  operations::FlashIdentification& flash_;
};

}  // namespace kestrel::selection
