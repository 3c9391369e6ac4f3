#include "hardware/bus_primitives.h"

#include "app/state/address_fields.h"
#include "devices/page_write_pins.h"
#include "platform/runtime_error.h"

namespace kestrel::hardware {
namespace {

// Latch 3 keeps /CE, the data-latch enable and bit 4; the low half is rebuilt from the address.
constexpr int kLatch3Kept = 0xF0;

// Latch 3 at rest: chip deselected, data latch off the bus, pin 31 (/WE, /PGM) high.
constexpr int kLatch3Idle = kChipDisable | kDataLatchOff | kPin31High;

constexpr unsigned kUpperStatusBits = 0xF0;

}  // namespace

void BusPrimitives::CEON() {
  clearBits(latches_.RegShadow3, kChipDisable);
  registers_.SetReg3();
}

void BusPrimitives::CEOFF() {
  setBits(latches_.RegShadow3, kChipDisable);
  registers_.SetReg3();
}

void BusPrimitives::OEON() {
  clearBits(latches_.RegShadow0, kVppOnPin24 | kOutputDisable);
  registers_.SetReg0();
}

void BusPrimitives::OEOFF() {
  setBits(latches_.RegShadow0, kOutputDisable);
  registers_.SetReg0();
}

void BusPrimitives::CEOEON() {
  CEON();
  OEON();
}

void BusPrimitives::CEOEOFF() {
  CEOFF();
  OEOFF();
}

void BusPrimitives::VPP24_ON() {
  setBits(latches_.RegShadow0, kVppOnPin24 | kOutputDisable);
  registers_.SetReg0();
}

void BusPrimitives::VPP24_OFF() { OEON(); }

void BusPrimitives::Endereco2Adr() { splitLinearAddress(latches_); }

void BusPrimitives::IncADR() {
  ++latches_.LinearAddress;
  if (++latches_.AddrLow <= 255) return;
  latches_.AddrLow = 0;
  if (++latches_.AddrMid <= 255) return;
  latches_.AddrMid = 0;
  ++latches_.AddrHigh;
}

void BusPrimitives::latchMiddle(std::int32_t mid) {
  latches_.RegShadow1 = narrowed<std::int16_t>(at(device_.AddrMapMid, mid) | device_.Reg1Fixed);
  registers_.SetReg1();
}

void BusPrimitives::latchHigh(std::int32_t high) {
  latches_.RegShadow3 = narrowed<std::int16_t>(
      at(device_.AddrMapHigh, high) | (latches_.RegShadow3 & kLatch3Kept) | device_.Reg3Fixed);
  registers_.SetReg3();
}

void BusPrimitives::SETADR() {
  latchMiddle(latches_.AddrMid);
  latches_.RegShadow2 = narrowed<std::int16_t>(latches_.AddrLow);
  registers_.SetReg2();
  latchHigh(latches_.AddrHigh);
}

void BusPrimitives::SETADR_XICOR() {
  const std::int32_t mid = devices::withA14InBit7(latches_.AddrMid) | device_.Reg1Fixed;
  if (mid != latches_.RegShadow1) {
    latches_.RegShadow1 = narrowed<std::int16_t>(mid);
    registers_.SetReg1();
  }
  if (latches_.AddrLow != latches_.RegShadow2) {
    latches_.RegShadow2 = narrowed<std::int16_t>(latches_.AddrLow);
    registers_.SetReg2();
  }
  const std::int32_t high =
      (latches_.RegShadow3 & kLatch3Kept) | device_.Reg3Fixed | latches_.AddrHigh;
  if (high != latches_.RegShadow3) {
    latches_.RegShadow3 = narrowed<std::int16_t>(high);
    registers_.SetReg3();
  }
}

void BusPrimitives::Reset() {
  latches_.RegShadow0 = kLatch0Idle;
  registers_.SetReg0();
  latches_.LinearAddress = 0;
  Endereco2Adr();
  latches_.RegShadow1 = narrowed<std::int16_t>(latches_.AddrMid | device_.Reg1Fixed);
  registers_.SetReg1();
  latches_.RegShadow2 = narrowed<std::int16_t>(latches_.AddrLow);
  registers_.SetReg2();
  latches_.RegShadow3 = narrowed<std::int16_t>(device_.Reg3Fixed | kLatch3Idle);
  registers_.SetReg3();
  atRest_.boardIsAtRest();
  operation_.EraseMode = 0;
}

PendingRead BusPrimitives::askStatus(std::int16_t nibbleSelect) {
  port_.PortOut(portState_.ControlPort, narrowed<std::uint8_t>(nibbleSelect));
  return port_.askPortIn(portState_.StatusPort);
}

std::uint8_t BusPrimitives::fetchStatus(PendingRead pending) {
  return port_.fetchPortIn(portState_.StatusPort, pending);
}

bool BusPrimitives::hasModel() const {
  const std::int16_t model = portState_.KestrelModel;
  return model == 4 || model == 5 || model == 6;
}

PendingByte BusPrimitives::askNibbles() {
  if (!hasModel()) return {};
  const PendingRead first = askStatus(portState_.NibbleSelA);
  return {.first = first, .second = askStatus(portState_.NibbleSelB)};
}

void BusPrimitives::fetchNibbles(const PendingByte& pending) {
  if (!hasModel()) return;
  const unsigned first = latches_.StatusLow = fetchStatus(pending.first);
  const unsigned second = latches_.StatusHigh = fetchStatus(pending.second);
  if (portState_.KestrelModel == 4) {
    latches_.ReadByte = latches_.StatusDecode4[(second & kUpperStatusBits) | (first >> 4U)];
  } else {
    latches_.ReadByte = static_cast<std::uint8_t>(latches_.StatusDecodeHigh[second] |
                                                  latches_.StatusDecodeLow[first]);
  }
}

void BusPrimitives::GetNibbles() { fetchNibbles(askNibbles()); }

PendingByte BusPrimitives::askNibbles24CXX() {
  if (!hasModel()) return {};
  return {.first = {}, .second = askStatus(portState_.NibbleSelB)};
}

void BusPrimitives::fetchNibbles24CXX(const PendingByte& pending) {
  if (!hasModel()) return;
  const unsigned status = fetchStatus(pending.second);
  latches_.ReadByte = portState_.KestrelModel == 4
                          ? latches_.StatusDecode4[status & kUpperStatusBits]
                          : latches_.StatusDecodeHigh[status];
}

void BusPrimitives::WaitSettlingTime() {
  const std::int32_t counts = timing_.SettleFactor * 100;
  waits_.Spin(counts);
  shell_.LoopIndex = counts < 1 ? 1 : counts + 1;
}

}  // namespace kestrel::hardware
