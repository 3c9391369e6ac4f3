#pragma once

#include <cstddef>
#include <cstdint>
#include <limits>
#include <string>
#include <string_view>
#include <vector>

namespace kestrel::sim {

/// Virtual time since the bench was switched on.
using Nanoseconds = std::int64_t;

inline constexpr Nanoseconds kNever = std::numeric_limits<Nanoseconds>::max();

constexpr Nanoseconds microseconds(std::int64_t count) { return count * 1'000; }
constexpr Nanoseconds milliseconds(std::int64_t count) { return count * 1'000'000; }

/// What no real socket forgives. "Judged" ones are looked for on request, see Board::judgePulses.
enum class FindingKind {
  busConflict,              ///< two push-pull drivers on one data line that disagree
  wrongVpp,                 ///< a program pulse with a VPP that the part cannot program with
  overVoltage,              ///< VPP above the part's maximum, or on a pin that never takes it
  addressMovedDuringPulse,  ///< an address line changed while the part was programming
  dataMovedDuringPulse,     ///< a data line changed while the part was programming
  strobeWithOutputEnabled,  ///< a write or program strobe while /OE is low
  strobeLeftActive,         ///< a write or program strobe far longer than any data sheet allows
  writeLost,                ///< a byte sent while the chip was busy or outside its load window
  overErase,                ///< an erase pulse on cells that are erased already
  pulseTooShort,            ///< judged: a pulse shorter than the data sheet's window
  pulseTooLong,             ///< judged: a pulse longer than it
  tooManyPulses,            ///< judged: more pulses at a byte than the data sheet allows
  wrongOverprogram,         ///< judged: an overprogram pulse that does not fit the pulses before it
  missingOverprogram,       ///< judged: a programmed byte was left without its overprogram pulse
};

/// One kind of finding with its text; identical ones are counted, not stored again.
struct Finding {
  FindingKind kind{};
  std::string text;
  Nanoseconds firstAt = 0;
  std::uint64_t count = 0;
};

/// The list that the board and the chips add to.
class Findings {
 public:
  void report(FindingKind kind, std::string_view text, Nanoseconds now);

  [[nodiscard]] const std::vector<Finding>& all() const { return list_; }
  [[nodiscard]] bool empty() const { return list_.empty(); }

  /// How often findings of this kind were reported since the list was cleared.
  [[nodiscard]] std::uint64_t count(FindingKind kind) const;

  void clear() { list_.clear(); }

 private:
  std::vector<Finding> list_;
};

}  // namespace kestrel::sim
