#include "simulator/uv_eprom.h"

#include <algorithm>
#include <string>

namespace kestrel::sim {
namespace {

// The longest pulse of any data sheet here is an overprogram pulse of 78.75 ms.
constexpr Nanoseconds kLongestPulse = milliseconds(200);

// Between two pulses VPP is off for a verify at the most, on the parts that have it on /OE; a pause
// of this length is taken for the end of the run (not of any data sheet).
constexpr Nanoseconds kRunPause = milliseconds(500);

bool isWithin(const VppWindow& window, int millivolts) {
  return window.lowest <= millivolts && millivolts <= window.highest;
}

std::string volts(int millivolts) {
  return std::to_string(millivolts / 1000) + '.' + std::to_string(millivolts % 1000 / 100) + " V";
}

}  // namespace

UvEprom::UvEprom(const UvEpromType& type)
    : Chip(type.name, type.package, type.sizeBytes),
      type_(type),
      pins_(pinoutOf(type)),
      address_(pins_.address),
      data_(pins_.data),
      judge_(typeName() + ": program pulse", type.plan, type.sizeBytes) {}

PinOutput UvEprom::evaluate(const PinInput& pins, Findings& findings) {
  if (pulse_.active) settlePulse(pins.now, findings);
  if (pins.vppPins != 0) checkVoltages(pins, findings);

  const bool powered = (pins.high & pins_.vcc) != 0 && !damaged_;
  const bool vppOn = (pins.vppPins & pins_.vpp) != 0;
  const bool outputs = powered && drives(pins.high, vppOn);
  if (vppOn) {
    const bool strobed = powered && isStrobed(pins.high);
    const bool vppFits = isWithin(type_.vpp, pins.vppMillivolts);
    checkStrobe(pins, strobed, vppFits, findings);
    followPulse(pins, strobed && vppFits, findings);
  } else {
    endStrobe(pins.now, findings);
  }
  if (judgesPulses()) followRun(pins, vppOn, findings);
  if (!outputs) return {};
  return {.driven = data_.mask(), .high = data_.levels(cell(address_.value(pins.high)))};
}

void UvEprom::settlePulse(Nanoseconds now, Findings& findings) {
  if (charges_.empty()) charges_.resize(contents().size());
  Charge& charge = charges_[pulse_.address];
  if (charge.data != pulse_.data) charge = {.time = 0, .data = pulse_.data};
  const Nanoseconds sum = charge.time + (now - pulse_.settledUntil);
  charge.time = static_cast<std::uint32_t>(std::min(sum, type_.programTime));
  pulse_.settledUntil = now;
  if (charge.time >= type_.programTime && !pulse_.written) {
    pulse_.written = true;
    setCell(pulse_.address, cell(pulse_.address) & pulse_.data);
  }
  if (now - pulse_.begin > kLongestPulse && !pulse_.reportedLong) {
    pulse_.reportedLong = true;
    report(FindingKind::strobeLeftActive, "program pulse of more than 200 ms", now, findings);
  }
}

// Any pin but the VPP pin takes the supply voltage at most.
void UvEprom::checkVoltages(const PinInput& pins, Findings& findings) {
  if (damaged_) return;
  if ((pins.vppPins & ~pins_.vpp) != 0) {
    damaged_ = true;
    report(FindingKind::overVoltage, "damaged: VPP on a pin that never takes it", pins.now,
           findings);
  } else if (pins.vppMillivolts > type_.vpp.destructive) {
    damaged_ = true;
    report(FindingKind::overVoltage,
           "damaged: VPP " + volts(pins.vppMillivolts) + " is above its maximum of " +
               volts(type_.vpp.destructive),
           pins.now, findings);
  }
}

bool UvEprom::isStrobed(PinLevels high) const {
  if ((high & pins_.ce) != 0) return false;
  return (high & pins_.pgm) == 0 && (high & pins_.oe) != 0;
}

void UvEprom::checkStrobe(const PinInput& pins, bool strobed, bool vppFits, Findings& findings) {
  const bool wrong = strobed && !vppFits;
  if (wrong && !wrongVpp_) {
    report(FindingKind::wrongVpp,
           "program pulse with VPP " + volts(pins.vppMillivolts) + " instead of " +
               volts(type_.vpp.wanted),
           pins.now, findings);
  }
  wrongVpp_ = wrong;

  const bool outputsToo = type_.control == ProgramControl::pgmPin &&
                          (pins.high & (pins_.ce | pins_.pgm | pins_.oe)) == 0 &&
                          (pins.high & pins_.vcc) != 0;
  if (outputsToo && !outputsDuringStrobe_) {
    report(FindingKind::strobeWithOutputEnabled, "program pulse with /OE low", pins.now, findings);
  }
  outputsDuringStrobe_ = outputsToo;
}

// Without VPP nothing is programmed, whatever the strobe does.
void UvEprom::endStrobe(Nanoseconds now, Findings& findings) {
  wrongVpp_ = false;
  outputsDuringStrobe_ = false;
  if (pulse_.active) endPulse(now, findings);
}

void UvEprom::contentsReplaced() {
  charges_.clear();
  judge_.beginRun();
}

void UvEprom::endPulse(Nanoseconds now, Findings& findings) {
  pulse_.active = false;
  if (!judgesPulses()) return;
  const bool taken = (cell(pulse_.address) & ~static_cast<unsigned>(pulse_.data)) == 0;
  judge_.judge({.address = pulse_.address, .width = now - pulse_.begin, .taken = taken, .end = now},
               findings);
}

void UvEprom::followRun(const PinInput& pins, bool vppOn, Findings& findings) {
  judge_.followAddress(address_.value(pins.high), pins.now, findings);
  if (vppWasOn_ && !vppOn) vppLeftAt_ = pins.now;
  if (vppOn && !vppWasOn_ && pins.now - vppLeftAt_ >= kRunPause) judge_.beginRun();
  vppWasOn_ = vppOn;
}

void UvEprom::followPulse(const PinInput& pins, bool programs, Findings& findings) {
  if (!programs) {
    if (pulse_.active) endPulse(pins.now, findings);
    return;
  }
  const std::uint32_t address = address_.value(pins.high);
  const auto data = static_cast<std::uint8_t>(data_.value(pins.high));
  if (!pulse_.active) {
    pulse_ = {.active = true, .begin = pins.now, .settledUntil = pins.now};
  } else if (address != pulse_.address) {
    report(FindingKind::addressMovedDuringPulse, "address moved during a program pulse", pins.now,
           findings);
  } else if (data != pulse_.data) {
    report(FindingKind::dataMovedDuringPulse, "data moved during a program pulse", pins.now,
           findings);
  }
  const bool moved = address != pulse_.address || data != pulse_.data;
  if (moved) pulse_.written = false;
  pulse_.address = address;
  pulse_.data = data;
}

bool UvEprom::drives(PinLevels high, bool vppOn) const {
  if ((high & pins_.oe) != 0) return false;
  const bool ceHigh = (high & pins_.ce) != 0;
  if (vppOn && type_.control == ProgramControl::cePulse) return ceHigh;
  if (vppOn && (high & pins_.pgm) == 0) return false;
  const bool vppPinLow = (high & pins_.vpp) == 0;
  return !ceHigh && !(type_.isNmos && vppPinLow);
}

void UvEprom::report(FindingKind kind, std::string_view text, Nanoseconds now,
                     Findings& findings) const {
  findings.report(kind, typeName() + ": " + std::string(text), now);
}

}  // namespace kestrel::sim
