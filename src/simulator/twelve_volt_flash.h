#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string_view>
#include <vector>

#include "simulator/byte_wide_memory.h"
#include "simulator/pulse_judge.h"

namespace kestrel::sim {

// Flash of the first generation, 28F010 and 28F020, in 32 pins: VPP is pin 1, /WE pin 31, A17 pin
// 30. With 12 V (11.4 to 12.6 V) on pin 1 every write goes to a command register; without them the
// part is a read-only memory, whatever is written.
//
//   00h                   reads cells; so after VPP came
//   FFh, FFh              the same, out of any command
//   90h                   identify: maker at 0, device at 1
//   40h, address + data   a program pulse begins; bits go from 1 to 0 only
//   C0h                   ends it; 6 us later any read shows the byte that was programmed
//   20h, 20h              an erase pulse begins for all cells
//   A0h + address         ends it; 6 us later any read shows the byte at that address
//
// Every other command ends a pulse too, and a stop timer of the part's own does at the latest.
// Program time adds up while the same data goes to the same address, erase time until the next
// program pulse or new contents; a cell gives way when the part's time is reached. An erase has to
// begin with all bytes at 00h and may not go on once all are FFh: cells that are erased further
// conduct for ever. A run, which the judged numbers of pulses belong to, ends with VPP.
//
// Where the sheet leaves undefined what a read shows, it is the complement of the cell.
// Not modelled: what over-erased cells do, the margins of the verify modes, 12 V on A9.

/// One part of the family.
struct TwelveVoltFlashType {
  std::string_view name;
  std::size_t addressBits = 0;
  std::uint8_t makerCode = 0;
  std::uint8_t deviceCode = 0;
};

[[nodiscard]] std::span<const TwelveVoltFlashType> twelveVoltFlashTypes();

class TwelveVoltFlash final : public ByteWideMemory {
 public:
  explicit TwelveVoltFlash(const TwelveVoltFlashType& type);

  [[nodiscard]] int wantedVppMillivolts() const override { return 12000; }

 protected:
  void settle(Nanoseconds now) override { now_ = now; }
  [[nodiscard]] Nanoseconds busyUntil() const override;
  bool beginWrite() override { return true; }
  void endWrite(const Strobe& strobe, Findings& findings) override;
  void followVpp(int millivolts, Nanoseconds now, Findings& findings) override;
  [[nodiscard]] std::uint8_t read(std::uint32_t address, bool toggle) const override;
  void losePower() override { state_ = State::array; }
  void contentsReplaced() override;

 private:
  enum class State {
    array,
    codes,
    reset,
    programSetUp,
    programming,
    programVerify,
    eraseSetUp,
    erasing,
    eraseVerify
  };

  [[nodiscard]] State afterCommand(const Strobe& strobe);
  void beginProgramPulse(const Strobe& strobe);
  void beginErasePulse(Nanoseconds now, Findings& findings);
  void endPulse(Nanoseconds now, Findings& findings);
  void endProgramPulse(Nanoseconds now, Findings& findings);
  void endErasePulse(Nanoseconds now, Findings& findings);
  void eraseCells();
  void forgetProgram();
  void forgetErase();

  TwelveVoltFlashType type_;
  State state_ = State::array;
  int vppMillivolts_ = 0;
  Nanoseconds now_ = 0;
  Nanoseconds pulseBegan_ = 0;

  std::uint32_t address_ = 0;  // programmed last, or to be verified
  std::uint8_t data_ = 0xFF;   // programmed last
  Nanoseconds programTime_ = 0;
  Nanoseconds eraseTime_ = 0;
  std::optional<std::vector<std::uint32_t>> notErased_;  // once the part's erase time is reached
  Nanoseconds verifiesFrom_ = 0;
  PulseJudge programJudge_;
  PulseJudge eraseJudge_;
};

}  // namespace kestrel::sim
