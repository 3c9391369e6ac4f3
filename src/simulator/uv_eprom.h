#pragma once

#include <cstdint>
#include <memory>
#include <span>
#include <string_view>
#include <vector>

#include "simulator/chip.h"
#include "simulator/pulse_judge.h"

namespace kestrel::sim {

// UV-erasable EPROMs, 2732 to 27C801, as their data sheets describe them.
//
//   mode               /CE   /OE   /PGM   VPP pin
//   read               low   low   -      5 V (NMOS) or any level
//   program (pgmPin)   low   high  low    VPP
//   verify  (pgmPin)   low   low   high   VPP
//   program (cePulse)  low   high         VPP
//   verify  (cePulse)  high  low          VPP
//   program (vppOnOe)  low   VPP
//
// A cell goes from 1 to 0 only. Programming time adds up for each address while the same data
// stands there, over as many pulses as it takes; when it reaches the part's time the zero bits are
// written. A run of programming ends when VPP stays away from its pin for half a second. Not
// modelled: access times, cells half programmed, supply current, electronic signature (A9 at 12 V).

/// How a part is made to program, and so where its VPP pin is.
enum class ProgramControl { pgmPin, cePulse, vppOnOe };

/// A programming voltage with the limits of the data sheets, in millivolts.
struct VppWindow {
  int wanted = 0;
  int lowest = 0;
  int highest = 0;
  int destructive = 0;  ///< above this the part is damaged
};

/// One part of the catalogue.
struct UvEpromType {
  std::string_view name;
  Package package{};
  std::uint32_t sizeBytes = 0;
  ProgramControl control{};
  VppWindow vpp;
  Nanoseconds programTime = 0;  ///< what a typical cell needs in all
  PulsePlan plan;               ///< what the data sheet prescribes
  bool isNmos = false;          ///< needs 5 V on its VPP pin to be read
  bool isOneTime = false;       ///< without a window: the lamp does not reach the cells
};

/// All parts, small ones first.
[[nodiscard]] std::span<const UvEpromType> uvEpromTypes();

/// The pins of one part, by their own numbers. `pgm` and `vpp` are 0 where the part has none.
struct UvEpromPinout {
  std::span<const std::uint8_t> address;
  std::span<const std::uint8_t> data;
  PinLevels ce = 0;
  PinLevels oe = 0;
  PinLevels pgm = 0;
  PinLevels vpp = 0;
  PinLevels vcc = 0;
};

[[nodiscard]] UvEpromPinout pinoutOf(const UvEpromType& type);

class UvEprom final : public Chip {
 public:
  explicit UvEprom(const UvEpromType& type);

  PinOutput evaluate(const PinInput& pins, Findings& findings) override;

  [[nodiscard]] bool isDamaged() const override { return damaged_; }
  [[nodiscard]] bool isUvErasable() const override { return !type_.isOneTime; }
  [[nodiscard]] int wantedVppMillivolts() const override { return type_.vpp.wanted; }

 protected:
  void contentsReplaced() override;

 private:
  struct Charge {
    std::uint32_t time = 0;
    std::uint8_t data = 0xFF;
  };
  /// The part as it stands between two calls: the address and data it programs, if it does.
  struct Pulse {
    bool active = false;
    bool written = false;  // what it writes is written, or was refused
    bool reportedLong = false;
    std::uint32_t address = 0;
    std::uint8_t data = 0xFF;
    Nanoseconds begin = 0;
    Nanoseconds settledUntil = 0;
  };

  void settlePulse(Nanoseconds now, Findings& findings);
  void checkVoltages(const PinInput& pins, Findings& findings);
  [[nodiscard]] bool isStrobed(PinLevels high) const;
  void endStrobe(Nanoseconds now, Findings& findings);
  void checkStrobe(const PinInput& pins, bool strobed, bool vppFits, Findings& findings);
  void endPulse(Nanoseconds now, Findings& findings);
  void followRun(const PinInput& pins, bool vppOn, Findings& findings);
  void followPulse(const PinInput& pins, bool programs, Findings& findings);
  [[nodiscard]] bool drives(PinLevels high, bool vppOn) const;
  void report(FindingKind kind, std::string_view text, Nanoseconds now, Findings& findings) const;

  UvEpromType type_;
  UvEpromPinout pins_;
  PinBus address_;
  PinBus data_;
  std::vector<Charge> charges_;  // by address; empty until the first pulse
  Pulse pulse_;
  PulseJudge judge_;
  bool vppWasOn_ = false;
  Nanoseconds vppLeftAt_ = 0;
  bool wrongVpp_ = false;
  bool outputsDuringStrobe_ = false;
  bool damaged_ = false;
};

}  // namespace kestrel::sim
