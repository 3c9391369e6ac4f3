#include "simulator/serial_eeprom.h"

namespace kestrel::sim {
namespace {

constexpr PinLevels kSelectPins = 0x07;  // E0-E2 are pins 1-3, in the order of the select byte
constexpr PinLevels kGnd = pin(4);
constexpr PinLevels kSda = pin(5);
constexpr PinLevels kScl = pin(6);
constexpr PinLevels kWriteProtect = pin(7);
constexpr PinLevels kVcc = pin(8);

constexpr Nanoseconds kWriteCycle = milliseconds(5);

// clang-format off
constexpr auto kTypes = std::to_array<SerialEepromType>({
    {.name = "24C08",  .sizeBytes = 0x400,  .pageBytes = 16, .blockBits = 3, .pinBits = 4, .addressBytes = 1},
    {.name = "24C16",  .sizeBytes = 0x800,  .pageBytes = 16, .blockBits = 7, .pinBits = 0, .addressBytes = 1},
    {.name = "24C32",  .sizeBytes = 0x1000, .pageBytes = 32, .blockBits = 0, .pinBits = 7, .addressBytes = 2},
    {.name = "24C256", .sizeBytes = 0x8000, .pageBytes = 64, .blockBits = 0, .pinBits = 7, .addressBytes = 2},
});
// clang-format on

}  // namespace

std::span<const SerialEepromType> serialEepromTypes() { return kTypes; }

SerialEeprom::SerialEeprom(const SerialEepromType& type)
    : Chip(type.name, Package::serial8, type.sizeBytes),
      type_(type),
      damage_(0),
      writeCycle_(kWriteCycle) {}

ChipSettings SerialEeprom::settings() const {
  return {.writeCycle = writeCycle_,
          .writeProtected = writeProtected_,
          .writeNeverEnds = neverEnds_,
          .acknowledgeLimit = acknowledgesLeft_};
}

void SerialEeprom::apply(const ChipSettings& settings) {
  writeCycle_ = settings.writeCycle.value_or(writeCycle_);
  writeProtected_ = settings.writeProtected.value_or(writeProtected_);
  neverEnds_ = settings.writeNeverEnds.value_or(neverEnds_);
  acknowledgesLeft_ = settings.acknowledgeLimit;
}

PinOutput SerialEeprom::evaluate(const PinInput& pins, Findings& findings) {
  settle(pins.now);
  const bool wasPowered = powered_;
  powered_ = !damage_.suffered(pins, typeName(), findings) && (pins.high & kVcc) != 0 &&
             (pins.high & kGnd) == 0;
  if (!powered_) {
    if (wasPowered) losePower();
    return {};
  }
  const bool scl = (pins.high & kScl) != 0;
  if (!wasPowered) {  // the levels that stand when the power comes are no edges
    scl_ = scl;
    sda_ = (pins.high & kSda) != 0;
    return {};
  }
  if (scl != scl_) {
    scl_ = scl;
    scl ? clockRises() : clockFalls(pins);
  }
  const bool sda = (pins.high & kSda) != 0 && !pullsSdaLow_;
  if (sda != sda_) {
    sda_ = sda;
    if (scl_) sda ? stop(pins) : start();
  }
  if (!pullsSdaLow_) return {};
  return {.driven = kSda, .openDrain = kSda};
}

void SerialEeprom::settle(Nanoseconds now) {
  if (writeEnds_ == kNever || now < writeEnds_ || neverEnds_) return;
  writeEnds_ = kNever;
  const std::uint32_t page = address_ & ~(type_.pageBytes - 1);
  for (std::uint32_t i = 0; i < type_.pageBytes; ++i) {
    if ((loaded_ >> i & 1U) != 0) setCell(page + i, page_[i]);
  }
}

// A page that is being written is lost with the power.
void SerialEeprom::losePower() {
  phase_ = Phase::idle;
  pullsSdaLow_ = false;
  writeEnds_ = kNever;
  address_ = 0;
}

void SerialEeprom::start() {
  phase_ = Phase::select;
  clocks_ = 0;
}

// SCL has risen once for the STOP itself; more clocks mean that it comes inside a byte, and then
// nothing is written.
void SerialEeprom::stop(const PinInput& pins) {
  const bool wholeBytes = phase_ == Phase::data && clocks_ <= 1 && loaded_ != 0;
  const bool isProtected = writeProtected_ || (pins.high & kWriteProtect) != 0;
  if (wholeBytes && !isProtected) writeEnds_ = pins.now + writeCycle_;
  phase_ = Phase::idle;
}

void SerialEeprom::clockRises() {
  ++clocks_;
  if (phase_ == Phase::send) {
    if (clocks_ == 9) acknowledged_ = !sda_;
  } else if (clocks_ <= 8) {
    shift_ = static_cast<std::uint8_t>(shift_ << 1 | (sda_ ? 1 : 0));
  }
}

void SerialEeprom::clockFalls(const PinInput& pins) {
  pullsSdaLow_ = false;
  if (phase_ == Phase::idle) return;
  if (clocks_ == 9) {
    clocks_ = 0;
    if (phase_ == Phase::send) sendNext();
  } else if (clocks_ == 8 && phase_ != Phase::send) {
    pullsSdaLow_ = acceptByte(pins.high);
    if (!pullsSdaLow_) phase_ = Phase::idle;
  } else if (clocks_ < 8 && phase_ == Phase::send) {
    pullsSdaLow_ = (shift_ << clocks_ & 0x80) == 0;
  }
}

// True if the byte is acknowledged.
bool SerialEeprom::acceptByte(PinLevels high) {
  if (acknowledgesLeft_ == 0U) return false;
  switch (phase_) {
    case Phase::select:
      if (!acceptSelect(high)) return false;
      break;
    case Phase::addressHigh:
      address_ = std::uint32_t{shift_} << 8 & (type_.sizeBytes - 1);
      phase_ = Phase::addressLow;
      break;
    case Phase::addressLow:
      address_ = (address_ & ~0xFFU) | shift_;
      loaded_ = 0;
      phase_ = Phase::data;
      break;
    case Phase::data:
      keepData();
      break;
    case Phase::idle:
    case Phase::send:
      return false;
  }
  if (acknowledgesLeft_) --*acknowledgesLeft_;
  return true;
}

bool SerialEeprom::acceptSelect(PinLevels high) {
  const unsigned bits = shift_ >> 1 & 7U;
  if (writeEnds_ != kNever || (shift_ & 0xF0) != 0xA0) return false;
  if (((bits ^ (high & kSelectPins)) & type_.pinBits) != 0) return false;
  if (type_.blockBits != 0) address_ = (address_ & 0xFFU) | (bits & type_.blockBits) << 8;
  if ((shift_ & 1U) != 0) {
    phase_ = Phase::send;
  } else {
    phase_ = type_.addressBytes == 2 ? Phase::addressHigh : Phase::addressLow;
  }
  return true;
}

void SerialEeprom::keepData() {
  const std::uint32_t inPage = address_ & (type_.pageBytes - 1);
  page_[inPage] = shift_;
  loaded_ |= std::uint64_t{1} << inPage;
  address_ = (address_ - inPage) | ((inPage + 1) & (type_.pageBytes - 1));
}

void SerialEeprom::sendNext() {
  if (!acknowledged_) {
    phase_ = Phase::idle;
    return;
  }
  shift_ = cell(address_);
  address_ = (address_ + 1) & (type_.sizeBytes - 1);
  pullsSdaLow_ = (shift_ & 0x80) == 0;
}

}  // namespace kestrel::sim
