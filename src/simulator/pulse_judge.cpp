#include "simulator/pulse_judge.h"

#include <cstdio>
#include <utility>

namespace kestrel::sim {
namespace {

std::string duration(Nanoseconds time) {
  const bool small = time < milliseconds(1);
  char text[32];
  std::snprintf(text, sizeof text, "%g %s",
                static_cast<double>(time) / (small ? 1'000.0 : 1'000'000.0), small ? "us" : "ms");
  return text;
}

constexpr Nanoseconds percent(Nanoseconds time, int percentage) { return time * percentage / 100; }

}  // namespace

PulseJudge::PulseJudge(std::string pulseName, const PulsePlan& plan, std::size_t sizeBytes)
    : pulseName_(std::move(pulseName)), plan_(plan), sizeBytes_(sizeBytes) {}

void PulseJudge::judge(const Pulse& pulse, Findings& findings) {
  if (counts_.empty()) counts_.resize(sizeBytes_);
  std::uint16_t& count = counts_[pulse.address];
  const bool wantsOverprogram = plan_.overprogramPerPulse != 0;
  programmed_.reset();
  if (wantsOverprogram && count != 0 && pulse.width > plan_.longest) {
    judgeOverprogram(pulse, count, findings);
    count = 0;
    return;
  }
  ++count;
  if (pulse.width < plan_.shortest) {
    report(FindingKind::pulseTooShort, "shorter than " + duration(plan_.shortest), pulse.end,
           findings);
  }
  if (pulse.width > plan_.longest) {
    report(FindingKind::pulseTooLong, "longer than " + duration(plan_.longest), pulse.end,
           findings);
  }
  if (count > plan_.greatestNumber) {
    report(FindingKind::tooManyPulses,
           "after the greatest number of " + std::to_string(plan_.greatestNumber), pulse.end,
           findings);
  }
  if (wantsOverprogram && pulse.taken) programmed_ = pulse.address;
}

void PulseJudge::judgeOverprogram(const Pulse& pulse, unsigned pulses, Findings& findings) const {
  const Nanoseconds wanted = plan_.overprogramPerPulse * pulses;
  if (percent(wanted, 95) <= pulse.width && pulse.width <= percent(wanted, 105)) return;
  report(FindingKind::wrongOverprogram,
         "to overprogram that is not of " + duration(plan_.overprogramPerPulse) +
             " times the pulses given",
         pulse.end, findings);
}

void PulseJudge::followAddress(std::uint32_t address, Nanoseconds now, Findings& findings) {
  if (!programmed_ || *programmed_ == address) return;
  programmed_.reset();
  report(FindingKind::missingOverprogram, "to overprogram is missing", now, findings);
}

void PulseJudge::beginRun() {
  counts_.clear();
  programmed_.reset();
}

void PulseJudge::report(FindingKind kind, const std::string& text, Nanoseconds now,
                        Findings& findings) const {
  findings.report(kind, pulseName_ + ' ' + text, now);
}

}  // namespace kestrel::sim
