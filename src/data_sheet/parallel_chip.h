#pragma once

#include "data_sheet/chip_driver.h"
#include "hardware/chip_bus.h"

namespace kestrel::data_sheet {

/// What all chips with address and data pins share: being read.
class ParallelChip : public ChipDriver {
 public:
  ParallelChip(const ChipChoice& chip, hardware::ChipBus& bus) : chip_(chip), bus_(bus) {}

  void begin() override { bus_.begin(chip_.sheet.pinout); }
  void end() override { bus_.end(); }
  [[nodiscard]] Outcome read(std::uint32_t first, std::span<std::uint8_t> bytes) override;

 protected:
  [[nodiscard]] const ChipChoice& chip() const { return chip_; }
  [[nodiscard]] hardware::ChipBus& bus() { return bus_; }

  /// The byte at the address, with chip and outputs on.
  [[nodiscard]] std::uint8_t readAt(std::uint32_t address);

 private:
  ChipChoice chip_;
  hardware::ChipBus& bus_;
};

}  // namespace kestrel::data_sheet
