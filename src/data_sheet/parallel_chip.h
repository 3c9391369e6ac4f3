#pragma once

#include <vector>

#include "data_sheet/chip_driver.h"
#include "hardware/chip_bus.h"

namespace kestrel::data_sheet {

/// What all chips with address and data pins share: being read, and taking a command.
class ParallelChip : public ChipDriver {
 public:
  ParallelChip(const ChipChoice& chip, hardware::ChipBus& bus) : chip_(chip), bus_(bus) {}

  void begin() override { bus_.begin(chip_.sheet.wiring); }
  void end() override { bus_.end(); }
  [[nodiscard]] Outcome read(std::uint32_t first, std::span<std::uint8_t> bytes) override;

 protected:
  [[nodiscard]] const ChipChoice& chip() const { return chip_; }
  [[nodiscard]] hardware::ChipBus& bus() { return bus_; }

  struct Cycle {
    std::uint32_t address;
    std::uint8_t data;
  };

  /// The bytes from the address on, with chip and outputs on.
  void readBlock(std::uint32_t first, std::span<std::uint8_t> bytes);

  /// A byte to the selected chip, outputs off: taken when the strobe rises.
  void write(const Cycle& cycle);

  /// The JEDEC cycles AAh at 5555h, 55h at 2AAAh, the command at 5555h.
  static constexpr std::uint32_t kCommandAddress = 0x5555;
  void writeCommand(std::uint8_t command);

  /// The address on the pins, with an edge of /OE of its own: a busy chip turns bit 6 over with
  /// each.
  [[nodiscard]] std::uint8_t readOnce();

  /// Maker code at the address and device code behind it, in the chip's identify mode.
  [[nodiscard]] devices::ChipCodes codesAt(std::uint32_t address);

 private:
  ChipChoice chip_;
  hardware::ChipBus& bus_;
  std::vector<hardware::ChipBus::Pending> pending_;
};

}  // namespace kestrel::data_sheet
