#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "simulator/findings.h"

namespace kestrel::sim {

/// How a data sheet wants one part to be pulsed. kNever as the longest pulse: the part has a stop
/// timer of its own.
struct PulsePlan {
  Nanoseconds shortest = 0;
  Nanoseconds longest = 0;
  unsigned greatestNumber = 0;          ///< of pulses at one byte
  Nanoseconds overprogramPerPulse = 0;  ///< times the pulses that were given; 0 = no overprogram
};

// Holds the pulses that a part gets against its data sheet.
//
// The pulses of one byte are a series, whatever happens at other bytes in between. It ends with the
// overprogram pulse where the part wants one: of so many times the pulses given, 5 % more or less.
// A byte that took its data has to get that pulse before the address moves on; one that refused
// every pulse is given up without. Where the part wants none, the series ends with the run.
class PulseJudge {
 public:
  /// `pulseName` opens each finding, such as "2764: program pulse".
  PulseJudge(std::string pulseName, const PulsePlan& plan, std::size_t sizeBytes);

  struct Pulse {
    std::uint32_t address = 0;
    Nanoseconds width = 0;
    bool taken = false;  ///< the byte holds the data now
    Nanoseconds end = 0;
  };
  void judge(const Pulse& pulse, Findings& findings);

  /// What stands on the address pins, with or without a pulse.
  void followAddress(std::uint32_t address, Nanoseconds now, Findings& findings);

  /// A new run: the series of all bytes begin anew.
  void beginRun();

 private:
  void judgeOverprogram(const Pulse& pulse, unsigned pulses, Findings& findings) const;
  void report(FindingKind kind, const std::string& text, Nanoseconds now, Findings& findings) const;

  std::string pulseName_;
  PulsePlan plan_;
  std::size_t sizeBytes_;
  std::vector<std::uint16_t> counts_;        // pulses in the series, by address; empty at first
  std::optional<std::uint32_t> programmed_;  // has its data, but no overprogram pulse yet
};

}  // namespace kestrel::sim
