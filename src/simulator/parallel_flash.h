#pragma once

#include <cstdint>
#include <span>
#include <string_view>

#include "simulator/byte_wide_memory.h"

namespace kestrel::sim {

// Parallel flash of 128 and 512 KB, 29F010 and 29F040, in 32 pins: /WE is pin 31, A18 pin 1.
//
// Commands go to address bits 0-10; "unlock" is AAh at 555h, then 55h at 2AAh:
//   unlock, 90h at 555h                        identify: maker at 0, device at 1
//   F0h anywhere                               reads cells again
//   unlock, A0h at 555h, data                  programs one byte: bits go from 1 to 0 only
//   unlock, 80h at 555h, unlock, 10h at 555h   erases the chip
// Any other byte ends a sequence. While busy, bit 7 is the complement of the data (0 when erasing),
// bit 6 toggles, and writes are lost.
//
// Not modelled: sector erase, suspend, sector protection (address 2 says "not protected"), bit 5
// after a program from 0 to 1 (the bit stays 0), 12 V on A9.

/// One part of the family.
struct ParallelFlashType {
  std::string_view name;
  std::size_t addressBits = 0;
  std::uint8_t makerCode = 0;
  std::uint8_t deviceCode = 0;
  bool hasContinuation = false;  ///< with A8 low it shows 7Fh for both codes: "in the next bank"
};

[[nodiscard]] std::span<const ParallelFlashType> parallelFlashTypes();

class ParallelFlash final : public ByteWideMemory {
 public:
  explicit ParallelFlash(const ParallelFlashType& type);

 protected:
  void settle(Nanoseconds now) override;
  [[nodiscard]] Nanoseconds busyUntil() const override { return busyUntil_; }
  bool beginWrite() override { return busyUntil_ == kNever; }
  void endWrite(const Strobe& strobe) override;
  [[nodiscard]] std::uint8_t read(std::uint32_t address, bool toggle) const override;
  void losePower() override;
  void contentsReplaced() override { busyUntil_ = kNever; }

 private:
  // Unlocked once more after 80h, a chip waits for what to erase.
  enum class State { array, unlocking, command, erase, eraseUnlocking, eraseCommand, data, codes };

  [[nodiscard]] State afterCommand(const Strobe& strobe);
  [[nodiscard]] std::uint8_t code(std::uint32_t address) const;

  ParallelFlashType type_;
  State state_ = State::array;
  bool erases_ = false;  // what it is busy with: the whole chip, or one byte
  Strobe program_;
  Nanoseconds busyUntil_ = kNever;  // kNever: at rest
};

}  // namespace kestrel::sim
