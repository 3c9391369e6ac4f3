#pragma once

#include "data_sheet/pages.h"
#include "data_sheet/two_wire_bus.h"

namespace kestrel::data_sheet {

/// Serial EEPROMs 24Cxx.
///
///   select byte     1010 b b b r: the block, address bits 8 to 10, of a part with one address
///   byte;
///                   else 000; r = 1 to read
///   writing         select, address, up to a page of bytes, STOP; then the part does not
///                   acknowledge its select byte before its write cycle is over
///   reading         select and address, START again, select to read, bytes
///
/// The chip has its supply from begin() to end() alone. A Stop takes it away, and a page that is
/// being written then is left in part.
class TwoWireEeprom final : public ChipDriver {
 public:
  TwoWireEeprom(const ChipChoice& chip, const devices::SerialSheet& sheet, hardware::ChipBus& bus)
      : chip_(chip), sheet_(sheet), bus_(bus), wires_(bus) {}

  void begin() override { bus_.begin(chip_.sheet.wiring); }
  void end() override { bus_.end(); }
  [[nodiscard]] Outcome read(std::uint32_t first, std::span<std::uint8_t> bytes) override;
  [[nodiscard]] Outcome program(std::span<const std::uint8_t> image, Progress& progress) override;
  [[nodiscard]] Outcome erase(Progress& progress) override;

 private:
  [[nodiscard]] Outcome writePage(std::uint32_t first, Page page);
  [[nodiscard]] Outcome waitForEnd(std::uint32_t address);
  [[nodiscard]] Outcome compare(std::uint32_t first, Page page);
  [[nodiscard]] bool select(std::uint32_t address);
  [[nodiscard]] std::uint8_t selectByte(std::uint32_t address) const;

  ChipChoice chip_;
  const devices::SerialSheet& sheet_;
  hardware::ChipBus& bus_;
  TwoWireBus wires_;
};

}  // namespace kestrel::data_sheet
