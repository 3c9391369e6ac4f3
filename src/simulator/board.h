#pragma once

#include <array>
#include <cstdint>
#include <memory>
#include <optional>
#include <span>

#include "simulator/chip.h"
#include "simulator/findings.h"
#include "simulator/model.h"
#include "simulator/vpp_supply.h"
#include "simulator/wiring.h"

namespace kestrel::sim {

/// The time of the bench; whoever owns it moves it forward.
struct VirtualTime {
  Nanoseconds now = 0;
};

// One board with its socket, from the connector to the chip.
//
// Control lines: nibble n as written, on models 5 and 6 with all four bits inverted.
//   n bit 0      1 = strobe: the chosen latch is transparent and follows the data lines
//   n bits 3..1  5 = latch 0, 1 = latch 1, 4 = latch 2, 0 = latch 3, 7 = latch 4; 2, 3, 6 none
// Status lines show half of the data lines; the line as written on control bit 2 chooses it.
//   models 5, 6  1 = low half, 0 = high half   status bits 3, 4, 5, 6 = bits 0, 1, 2, 3
//   model 4      0 = low half, 1 = high half   status bits 6, 7, 5, 4 = bits 0, NOT 1, 2, 3
// Unused status bits read 1. All latches hold 0 when the board is switched on (a guess).
class Board {
 public:
  /// The time and the list belong to the bench and outlive the board.
  Board(Model model, const VirtualTime& time, Findings& findings);

  [[nodiscard]] Model model() const { return model_; }

  // The connector.
  void writeData(std::uint8_t value);
  void writeControl(std::uint8_t value);
  [[nodiscard]] std::uint8_t readData() const { return data_; }
  [[nodiscard]] std::uint8_t readStatus();
  [[nodiscard]] std::uint8_t readControl() const { return control_ | 0xF0U; }

  // The socket.

  /// Puts a chip into the socket and gives back the one that was there, or nullptr.
  std::unique_ptr<Chip> insert(std::unique_ptr<Chip> chip);
  std::unique_ptr<Chip> takeOut() { return insert(nullptr); }

  /// The chip in the socket as it stands now, or nullptr.
  [[nodiscard]] const Chip* chip();

  // What is done to the chip past its pins. std::logic_error if the socket is empty.

  /// New contents; std::invalid_argument unless the size is the chip's.
  void loadChip(std::span<const std::uint8_t> contents);

  /// All cells to FFh, whatever the part: as delivered.
  void blankChip();

  /// Under the lamp a part with a window is erased; any other stays as it is and the result is
  /// false.
  bool eraseUnderLamp();

  /// A byte that takes new contents in the `pulses`th pulse, or never without a number, see
  /// Chip::fitWeakCell; std::out_of_range past the end of the chip.
  void fitWeakCell(std::uint32_t address, std::optional<std::uint32_t> pulses = {});

  /// Makes a weak byte a good one; std::logic_error as above.
  void mendCell(std::uint32_t address);

  // Settings and faults.

  /// What the part in the socket has to set, see Chip::apply; std::logic_error if it is empty.
  /// The settings as they are: chip()->settings().
  void setChip(const ChipSettings& settings);

  /// Holds the pulses of every chip put in against its data sheet; off at first.
  void judgePulses(bool on);

  /// Model 4: the VPP level set by hand; nullopt = what the chip in the socket wants.
  void setVppByHand(std::optional<int> millivolts);

  /// Holds a data line (0 to 7) at a level, whoever drives it.
  void stickDataLine(int bit, bool high);
  void freeDataLines();
  void freeDataLine(int bit);

  struct StuckLines {
    std::uint8_t low = 0;
    std::uint8_t high = 0;
  };
  /// The data lines that are held, a bit each.
  [[nodiscard]] StuckLines stuckLines() const { return {.low = stuckLow_, .high = stuckHigh_}; }

  // Test points.
  [[nodiscard]] std::uint8_t latch(std::size_t index) const { return latches_.at(index); }
  [[nodiscard]] std::uint8_t dataBus();
  [[nodiscard]] bool isLampOn() const { return (latches_[0] & kLamp) != 0; }

  /// The levels on the socket, the data lines as driven from everywhere.
  [[nodiscard]] PinLevels socketLevels();
  /// The socket pins that carry VPP, and its level in millivolts.
  [[nodiscard]] PinLevels vppPins() const { return vppPins_; }
  [[nodiscard]] int vppMillivolts();

 private:
  void loadLatch(std::size_t index, std::uint8_t value);
  void setLatch(std::size_t index, std::uint8_t value);
  void catchUp();
  void settle(Nanoseconds now);
  void checkConflict(std::uint8_t chipDrives, std::uint8_t chipData, Nanoseconds now);
  [[nodiscard]] bool latch4Drives() const { return (latches_[3] & kLatch4OffBus) == 0; }
  [[nodiscard]] std::uint8_t externalData() const;
  void followHandSetting();
  [[nodiscard]] Chip& settledChip();

  Model model_;
  const VirtualTime& time_;
  Findings& findings_;

  std::uint8_t data_ = 0;
  std::uint8_t control_ = 0;
  std::uint8_t invertedControl_ = 0;  // the bits that the connector inverts
  int openLatch_ = -1;                // the latch that is transparent now
  std::array<std::uint8_t, kLatchCount> latches_{};
  PinLevels latchPins_ = kVccPin;
  PinLevels vppPins_ = 0;
  VppSupply vpp_;
  std::optional<int> handMillivolts_;

  std::unique_ptr<Chip> chip_;
  bool judgesPulses_ = false;
  Nanoseconds chipChangesAt_ = kNever;
  std::uint8_t bus_ = 0xFF;
  bool conflict_ = false;
  std::uint8_t stuckHigh_ = 0;
  std::uint8_t stuckLow_ = 0;
};

}  // namespace kestrel::sim
