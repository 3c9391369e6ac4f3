#pragma once

#include <memory>

#include "app/state/buttons.h"
#include "app/state/programmer_state.h"
#include "data_sheet/chip_driver.h"
#include "hardware/chip_bus.h"

namespace kestrel::data_sheet {

/// The driver of the selected device, where the algorithms of the data sheets are chosen.
class Drivers {
 public:
  Drivers(const AlgorithmState& chosen, const SelectionState& device, const CheckBox& anyCode,
          hardware::ChipBus& bus)
      : chosen_(chosen), device_(device), anyCode_(anyCode), bus_(bus) {}

  /// True when the selected device is worked on by its data sheet.
  [[nodiscard]] bool areChosen() const;

  /// For one command; only with areChosen().
  [[nodiscard]] std::unique_ptr<ChipDriver> forDevice() const;

  /// The voltage that the board applies, 12 for 12.5 V.
  [[nodiscard]] int vppVolts() const;

 private:
  const AlgorithmState& chosen_;
  const SelectionState& device_;
  const CheckBox& anyCode_;
  hardware::ChipBus& bus_;
};

}  // namespace kestrel::data_sheet
