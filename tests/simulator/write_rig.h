#pragma once

#include "simulator/rig.h"

namespace kestrel::sim::test {

/// A chip full of 00h, powered and selected, /OE and /WE high, latch 4 on the data lines. A8-A13
/// are latch 1 bits 0-5 on all parts.
class WriteRig : public Rig {
 public:
  /// The latch bit that is /WE, and the one of latch 1 that is A14.
  WriteRig(const char* type, std::size_t weLatch, std::uint8_t we, std::uint8_t a14)
      : weLatch_(weLatch), we_(we), a14_(a14), fixed1_(weLatch == 1 ? we : 0) {
    load({0x40, fixed1_, 0x00, 0x00});
    board.insert(makeChip(type));
    board.loadChip(std::vector<std::uint8_t>(board.chip()->contents().size()));
    load(3, 0x06);
  }

  void setAddress(std::uint32_t address) {
    const unsigned a14 = (address & 0x4000) != 0 ? a14_ : 0U;
    load(2, static_cast<std::uint8_t>(address));
    load(1, static_cast<std::uint8_t>((address >> 8 & 0x3F) | a14 | fixed1_));
  }
  void moveWe() { load(weLatch_, board.latch(weLatch_) ^ we_); }
  /// /WE falls 11 us after the call and is low for 3 us; the call ends 1 us later.
  void write(std::uint32_t address, std::uint8_t value) {
    load(4, value);
    setAddress(address);
    moveWe();
    moveWe();
  }
  std::uint8_t read(std::uint32_t address) {
    setAddress(address);
    load(3, 0x46);
    load(0, 0x00);
    const std::uint8_t value = readBus();
    load(0, 0x40);
    load(3, 0x06);
    return value;
  }
  void waitUs(std::int64_t us) { bench.wait(microseconds(us)); }

 private:
  std::size_t weLatch_;
  std::uint8_t we_;
  std::uint8_t a14_;
  std::uint8_t fixed1_;
};

}  // namespace kestrel::sim::test
