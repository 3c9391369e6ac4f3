#pragma once

#include <array>
#include <cstdint>
#include <memory>
#include <optional>

#include "simulator/board.h"

namespace kestrel::sim {

inline constexpr std::array<std::uint16_t, 3> kPortBases{0x378, 0x278, 0x3BC};

/// A machine with three printer ports, the boards on them, and the time.
///
/// A port access takes 1 us of virtual time. Data is at the base, status at base + 1, control at
/// base + 2. A port with no board, and any other port number, reads FFh and swallows writes.
class Bench {
 public:
  Bench() = default;
  Bench(const Bench&) = delete;  // the boards refer to its time and its findings
  Bench& operator=(const Bench&) = delete;

  // The machine's side.
  void portOut(std::uint16_t port, std::uint8_t value);
  [[nodiscard]] std::uint8_t portIn(std::uint16_t port);

  /// Lets time pass; a negative time is none.
  void wait(Nanoseconds time);

  [[nodiscard]] Nanoseconds now() const { return time_.now; }
  [[nodiscard]] std::uint64_t accessCount() const { return accessCount_; }

  // The boards.

  /// Connects a board, switched on anew, to one of kPortBases; std::invalid_argument for another.
  /// The chip and the settings of the board that was at this base last are not kept.
  Board& plug(Model model, std::uint16_t base);

  /// Pulls the cable. The board, its latches and its chip stay as they are.
  void unplug(std::uint16_t base);

  /// All cables are pulled after so many further port accesses; never without a number.
  void unplugAfter(std::optional<std::uint64_t> accesses) {
    accessesLeft_ = accesses.value_or(kUnlimited);
  }
  /// How many are left until then.
  [[nodiscard]] std::optional<std::uint64_t> accessesLeft() const {
    return accessesLeft_ == kUnlimited ? std::nullopt : std::optional(accessesLeft_);
  }

  [[nodiscard]] bool isPlugged(std::uint16_t base) const;

  /// The board at a base, also when its cable was pulled; nullptr if there never was one.
  [[nodiscard]] Board* board(std::uint16_t base);

  /// Holds the pulses on all boards, those plugged later too, against the chips' data sheets.
  void judgePulses(bool on);
  [[nodiscard]] bool judgesPulses() const { return judgesPulses_; }

  /// What went wrong on all boards.
  [[nodiscard]] Findings& findings() { return findings_; }

 private:
  struct Slot {
    std::unique_ptr<Board> board;
    bool plugged = false;
  };
  static constexpr std::uint64_t kUnlimited = ~std::uint64_t{0};

  void countAccess();
  [[nodiscard]] Board* addressed(std::uint16_t port, unsigned& offset);

  VirtualTime time_;
  Findings findings_;
  std::array<Slot, kPortBases.size()> slots_;
  bool judgesPulses_ = false;
  std::uint64_t accessCount_ = 0;
  std::uint64_t accessesLeft_ = kUnlimited;
};

}  // namespace kestrel::sim
