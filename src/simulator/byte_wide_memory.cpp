#include "simulator/byte_wide_memory.h"

namespace kestrel::sim {

ByteWideMemory::ByteWideMemory(std::string_view typeName, Package package, std::size_t sizeBytes,
                               const ByteWidePinout& pins)
    : Chip(typeName, package, sizeBytes),
      pins_(pins),
      address_(pins.address),
      data_(pins.data),
      damage_(pins.oe, pins.vpp) {}

PinOutput ByteWideMemory::evaluate(const PinInput& pins, Findings& findings) {
  settle(pins.now);
  const bool wasPowered = powered_;
  powered_ = !damage_.suffered(pins, typeName(), findings) && (pins.high & pins_.vcc) != 0;
  if (!powered_) {
    if (wasPowered) losePower();
    strobed_ = reading_ = false;
    inhibited_ = true;
    return {};
  }
  const bool hasVpp = (pins.vppPins & pins_.vpp) != 0;
  followVpp(hasVpp ? pins.vppMillivolts : 0, pins.now, findings);
  if (wasPowered) {
    followStrobe(pins, findings);
  } else {
    strobed_ = (pins.high & (pins_.ce | pins_.we)) == 0;
  }
  standingData_ = static_cast<std::uint8_t>(data_.value(pins.high));

  const bool reads = !strobed_ && (pins.high & (pins_.ce | pins_.oe)) == 0;
  if (reads && !reading_) toggle_ = !toggle_;
  reading_ = reads;
  if (!reads) return {};
  return {.driven = data_.mask(),
          .high = data_.levels(read(address_.value(pins.high), toggle_)),
          .changesAt = busyUntil()};
}

// /OE going low ends a strobe as a rising edge does (not verified on hardware).
void ByteWideMemory::followStrobe(const PinInput& pins, Findings& findings) {
  const bool strobes = (pins.high & (pins_.ce | pins_.we)) == 0;
  if (strobes && !strobed_) beginStrobe(pins, findings);
  strobed_ = strobes;
  const bool stands = strobes && (pins.high & pins_.oe) != 0;
  if (stands || inhibited_) return;
  inhibited_ = true;
  strobe_.end = pins.now;
  strobe_.data = standingData_;
  endWrite(strobe_, findings);
}

void ByteWideMemory::beginStrobe(const PinInput& pins, Findings& findings) {
  inhibited_ = true;
  if ((pins.high & pins_.oe) == 0) {
    findings.report(FindingKind::strobeWithOutputEnabled,
                    typeName() + ": write strobe with /OE low", pins.now);
  } else if (!beginWrite()) {
    findings.report(FindingKind::writeLost, typeName() + ": byte lost, the chip is busy", pins.now);
  } else {
    inhibited_ = false;
    strobe_.address = address_.value(pins.high);
    strobe_.begin = pins.now;
  }
}

}  // namespace kestrel::sim
