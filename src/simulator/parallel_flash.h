#pragma once

#include <cstdint>
#include <span>
#include <string_view>

#include "simulator/byte_wide_memory.h"

namespace kestrel::sim {

// Parallel flash of 128 to 512 KB, 29F010 to 29F040, in 32 pins: /WE is pin 31, A18 pin 1.
//
// Commands go to address bits 0-10; "unlock" is AAh at 555h, then 55h at 2AAh:
//   unlock, 90h at 555h                        identify: maker at 0, device at 1
//   F0h anywhere                               reads cells again
//   unlock, A0h at 555h, data                  programs one byte: bits go from 1 to 0 only
//   unlock, 80h at 555h, unlock, 10h at 555h   erases the chip
// Any other byte ends a sequence. While busy, bit 7 is the complement of the data (0 when erasing),
// bit 6 toggles, and writes are lost. When the time limit has passed without success bit 5 goes to
// 1 and the rest stays so; then F0h, and nothing else, leads back to reading.
//
// Protection is that of all sectors at once (address 2 of the codes tells it). A program from 0 to
// 1 ends like any other, and the bit stays 0: data sheets allow that and a time-out. Not modelled:
// sector erase, suspend, 12 V on A9, cells half erased.

/// How long a part works on its own.
struct WorkTime {
  Nanoseconds typical = 0;
  Nanoseconds limit = 0;  ///< then it gives up
};

/// One part of the family.
struct ParallelFlashType {
  std::string_view name;
  std::size_t addressBits = 0;
  std::uint8_t makerCode = 0;
  std::uint8_t deviceCode = 0;
  bool hasContinuation = false;  ///< with A8 low it shows 7Fh for both codes: "in the next bank"
  WorkTime program;              ///< of one byte
  WorkTime erase;                ///< of the chip
};

[[nodiscard]] std::span<const ParallelFlashType> parallelFlashTypes();

class ParallelFlash final : public ByteWideMemory {
 public:
  explicit ParallelFlash(const ParallelFlashType& type);

  [[nodiscard]] ChipSettings settings() const override;
  void apply(const ChipSettings& settings) override;

 protected:
  void settle(Nanoseconds now) override;
  [[nodiscard]] Nanoseconds busyUntil() const override;
  bool beginWrite() override { return !isBusy() || timedOut_; }
  void endWrite(const Strobe& strobe, Findings& findings) override;
  [[nodiscard]] std::uint8_t read(std::uint32_t address, bool toggle) const override;
  void losePower() override;
  void contentsReplaced() override { rest(); }

 private:
  // Unlocked once more after 80h, a chip waits for what to erase.
  enum class State { array, unlocking, command, erase, eraseUnlocking, eraseCommand, data, codes };

  enum class Work { none, program, erase };

  [[nodiscard]] bool isBusy() const { return work_ != Work::none; }
  [[nodiscard]] const WorkTime& timeOf(Work work) const {
    return work == Work::erase ? type_.erase : type_.program;
  }
  void begin(Work work, Nanoseconds now);
  [[nodiscard]] bool attempt();
  void rest();
  [[nodiscard]] State afterCommand(const Strobe& strobe);
  [[nodiscard]] std::uint8_t code(std::uint32_t address) const;

  ParallelFlashType type_;
  State state_ = State::array;
  bool isProtected_ = false;
  bool neverEnds_ = false;

  Work work_ = Work::none;
  Strobe program_;
  Nanoseconds attemptEnds_ = kNever;
  Nanoseconds givesUpAt_ = kNever;
  bool timedOut_ = false;
};

}  // namespace kestrel::sim
