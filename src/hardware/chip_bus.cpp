#include "hardware/chip_bus.h"

#include <exception>

#include "hardware/registers.h"
#include "platform/runtime_error.h"

namespace kestrel::hardware {
namespace {

using devices::AddressLines;
using devices::Strobe;
using devices::VppPin;

// A latch output charges the chip's supply and its capacitor; EEPROMs ask for 5 ms before a write.
constexpr std::int32_t kSupplyUpMs = 20;
constexpr std::int32_t kVppSettlingMs = 1500;  // of 21 and 25 V: the converter takes a second
constexpr std::int64_t kCountsPerUs = 1000 / kDefaultCountNs;

// Between the two strobe codes of a pulse stand three accesses of about 1 us each: idle code, data,
// and the second strobe code itself.
constexpr std::int64_t kAccessesInPulseUs = 3;

constexpr int kModel4Vpp = 0x04;
constexpr int kVpp21 = 0x02;
constexpr int kVpp25 = 0x03;
constexpr int kAllVpp = kVppOnPin24 | kVppOnPin1 | kVppOnPin3 | kModel4Vpp | kVpp25;

constexpr int kLatch3Address = 0x0F;
constexpr int kHalfSelect = 0x04;
constexpr unsigned kUpperBits = 0xF0;

constexpr std::uint32_t kA14 = 0x4000;
constexpr std::uint32_t kA15 = 0x8000;
constexpr std::uint32_t kA18 = 0x40000;
constexpr std::uint32_t kA19 = 0x80000;

struct StrobeLine {
  std::size_t latch;
  int mask;
};

constexpr StrobeLine lineOf(Strobe strobe) {
  switch (strobe) {
    case Strobe::Pin3:
      return {1, 0x80};
    case Strobe::Pin29:
      return {1, 0x40};
    case Strobe::Pin31:
      return {3, kPin31High};
    case Strobe::ChipEnable:
      break;
  }
  return {3, kChipDisable};
}

constexpr int switchOf(VppPin pin) {
  switch (pin) {
    case VppPin::Pin1:
      return kVppOnPin1;
    case VppPin::Pin3:
      return kVppOnPin3;
    case VppPin::Pin24:
      return kVppOnPin24 | kOutputDisable;
    case VppPin::None:
      break;
  }
  return 0;
}

/// The address as the straight lines would have it: a moved line trades places with the one whose
/// pin it takes, which the chip does not have.
constexpr std::uint32_t onStraightLines(std::uint32_t address, AddressLines lines) {
  const auto moved = [address](std::uint32_t from, std::uint32_t to) {
    return (address & from) != 0 ? (address & ~from) | to : address;
  };
  if (lines == AddressLines::A14OnPin3) return moved(kA14, kA15);
  return lines == AddressLines::A18OnPin1 ? moved(kA18, kA19) : address;
}

}  // namespace

std::int16_t& ChipBus::shadow(std::size_t latch) {
  switch (latch) {
    case 0:
      return latches_.RegShadow0;
    case 1:
      return latches_.RegShadow1;
    case 2:
      return latches_.RegShadow2;
    case 3:
      return latches_.RegShadow3;
    default:
      return latches_.RegShadow4;
  }
}

void ChipBus::load(std::size_t latch, int value) {
  if (shadow(latch) != value) loadAlways(latch, value);
}

void ChipBus::loadAlways(std::size_t latch, int value) {
  shadow(latch) = narrowed<std::int16_t>(value);
  port_.PortOut(portState_.PortBase, narrowed<std::uint8_t>(value));
  addressLatch(latch);
  port_.PortOut(portState_.ControlPort, narrowed<std::uint8_t>(portState_.CtlStrobe[latch]));
  port_.PortOut(portState_.ControlPort, narrowed<std::uint8_t>(portState_.CtlIdle[latch]));
}

// The address lines of the latches settle before the strobe; lines that stand already need not.
void ChipBus::addressLatch(std::size_t latch) {
  const std::int16_t idle = portState_.CtlIdle[latch];
  if (control_ == idle) return;
  port_.PortOut(portState_.ControlPort, narrowed<std::uint8_t>(idle));
  control_ = idle;
  if (!usesFullSpeed_) waits_.Spin(timing_.BusDelayCount);
}

void ChipBus::begin(const devices::Wiring& wiring) {
  wiring_ = wiring;
  usesFullSpeed_ = false;
  control_.reset();
  loadAlways(0, (latches_.RegShadow0 & kBoardLamp) | idleOfPin24());
  loadAlways(3, (wiring_.isSerial ? 0 : kChipDisable) | kDataLatchOff | wiring_.latch3High);
  loadAlways(1, wiring_.latch1High);
  loadAlways(2, 0);
  loadAlways(4, wiring_.isSerial ? 0 : kErased);
  latches_.LinearAddress = 0;
  set(0, kOutputDisable);
  waits_.Sleep(kSupplyUpMs);
}

// Without waits, which throw while the command is being stopped.
void ChipBus::end() {
  usesFullSpeed_ = true;
  if (wiring_.isSerial) return endSerial();
  load(0, (latches_.RegShadow0 & ~kAllVpp) | kOutputDisable);
  const auto [latch, mask] = lineOf(wiring_.strobe);
  set(latch, mask);
  set(3, kChipDisable | kDataLatchOff);
}

// SCL first: what SDA does then is no START and no STOP.
void ChipBus::endSerial() {
  clear(3, kChipDisable);
  release();
  load(0, latches_.RegShadow0 & ~(kAllVpp | kOutputDisable));
}

// The supply of a serial chip: it comes when its lines are low.
int ChipBus::idleOfPin24() const { return wiring_.isSerial ? 0 : kOutputDisable; }

void ChipBus::setAddress(std::uint32_t address) {
  const std::uint32_t lines = onStraightLines(address, wiring_.lines);
  load(2, static_cast<int>(lines & 0xFFU));
  load(1, static_cast<int>(lines >> 8U & 0xFFU) | wiring_.latch1High);
  load(3, static_cast<int>(lines >> 16U) | wiring_.latch3High | (shadow(3) & ~kLatch3Address));
}

void ChipBus::enableOutputs() {
  release();
  clear(0, kOutputDisable);
}

void ChipBus::disableOutputs() { set(0, kOutputDisable); }

void ChipBus::drive(std::uint8_t data) {
  disableOutputs();
  load(4, data);
  clear(3, kDataLatchOff);
}

void ChipBus::release() { set(3, kDataLatchOff); }

bool ChipBus::hasModel() const {
  const std::int16_t model = portState_.KestrelModel;
  return model == 4 || model == 5 || model == 6;
}

bool ChipBus::showsHalf(std::int16_t select) const {
  return control_ && ((*control_ ^ select) & kHalfSelect) == 0;
}

PendingRead ChipBus::askHalf(std::int16_t select) {
  if (!showsHalf(select)) {
    port_.PortOut(portState_.ControlPort, narrowed<std::uint8_t>(select));
    control_ = select;
  }
  return port_.askPortIn(portState_.StatusPort);
}

std::uint8_t ChipBus::decoded(unsigned low, unsigned high) const {
  if (portState_.KestrelModel == 4) {
    return latches_.StatusDecode4[(high & kUpperBits) | (low >> 4U)];
  }
  return static_cast<std::uint8_t>(latches_.StatusDecodeHigh[high] | latches_.StatusDecodeLow[low]);
}

// The half that the control lines show already comes first.
ChipBus::Pending ChipBus::ask() {
  if (!hasModel()) return {};
  const std::int16_t low = portState_.NibbleSelA;
  const std::int16_t high = portState_.NibbleSelB;
  Pending pending{.first = {}, .second = {}, .isHighFirst = showsHalf(high)};
  pending.first = askHalf(pending.isHighFirst ? high : low);
  pending.second = askHalf(pending.isHighFirst ? low : high);
  return pending;
}

std::uint8_t ChipBus::fetch(const Pending& pending) {
  if (!hasModel()) return 0;
  const std::uint8_t first = port_.fetchPortIn(portState_.StatusPort, pending.first);
  const std::uint8_t second = port_.fetchPortIn(portState_.StatusPort, pending.second);
  return pending.isHighFirst ? decoded(second, first) : decoded(first, second);
}

PendingRead ChipBus::askUpperHalf() {
  return hasModel() ? askHalf(portState_.NibbleSelB) : PendingRead();
}

std::uint8_t ChipBus::fetchUpperHalf(const PendingRead& pending) {
  if (!hasModel()) return 0;
  return decoded(0, port_.fetchPortIn(portState_.StatusPort, pending)) & kUpperBits;
}

void ChipBus::pulse(std::int64_t widthUs) {
  const auto [latch, mask] = lineOf(wiring_.strobe);
  clear(latch, mask);
  if (widthUs > kAccessesInPulseUs) {
    waits_.Spin((widthUs - kAccessesInPulseUs) * kCountsPerUs);
  }
  set(latch, mask);
}

// The latch is transparent while its strobe is active, so the line rises with the second byte. Not
// for a pulse, in which a Stop may come: what is written next would reach this latch first.
void ChipBus::strobe() {
  const auto [latch, mask] = lineOf(wiring_.strobe);
  port_.PortOut(portState_.PortBase, narrowed<std::uint8_t>(shadow(latch) & ~mask));
  addressLatch(latch);
  port_.PortOut(portState_.ControlPort, narrowed<std::uint8_t>(portState_.CtlStrobe[latch]));
  port_.PortOut(portState_.PortBase, narrowed<std::uint8_t>(shadow(latch)));
  port_.PortOut(portState_.ControlPort, narrowed<std::uint8_t>(portState_.CtlIdle[latch]));
}

void ChipBus::waitUs(std::int64_t microseconds) { waits_.Spin(microseconds * kCountsPerUs); }

void ChipBus::prepareVpp(int volts) {
  int level = volts == 25 ? kVpp25 : 0;
  if (volts == 21) level = kVpp21;
  if (portState_.KestrelModel == 4) level = kModel4Vpp;
  set(0, level);
  if (volts > 12) waits_.Sleep(kVppSettlingMs);
}

void ChipBus::vppOn() { set(0, switchOf(wiring_.vpp)); }

void ChipBus::vppOff() { clear(0, switchOf(wiring_.vpp) & ~kOutputDisable); }

ChipSession::~ChipSession() {
  try {
    bus_.end();
  } catch (const std::exception&) {
    // The port has gone; what it threw first is on its way already.
  }
}

}  // namespace kestrel::hardware
