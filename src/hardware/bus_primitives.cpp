#include "hardware/bus_primitives.h"

#include "platform/runtime_error.h"

namespace kestrel::hardware {
namespace {

// Latch 3 keeps /CE, the data-latch enable and bit 4; the low half is rebuilt from the address.
constexpr int kLatch3Kept = 0xF0;

// Latch 3 at rest: chip deselected, data latch off the bus, pin 31 (/WE, /PGM) high.
constexpr int kLatch3Idle = kChipDisable | kDataLatchOff | kPin31High;

constexpr unsigned kUpperStatusBits = 0xF0;

}  // namespace

BusPrimitives::BusPrimitives(ProgrammerState& state, Controls& controls, Registers& registers,
                             PortAccess& port, Waits& waits)
    : state_(state), controls_(controls), registers_(registers), port_(port), waits_(waits) {}

void BusPrimitives::CEON() {
  clearBits(state_.RegShadow3, kChipDisable);
  registers_.SetReg3();
}

void BusPrimitives::CEOFF() {
  setBits(state_.RegShadow3, kChipDisable);
  registers_.SetReg3();
}

void BusPrimitives::OEON() {
  clearBits(state_.RegShadow0, kVppOnPin24 | kOutputDisable);
  registers_.SetReg0();
}

void BusPrimitives::OEOFF() {
  setBits(state_.RegShadow0, kOutputDisable);
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
  setBits(state_.RegShadow0, kVppOnPin24 | kOutputDisable);
  registers_.SetReg0();
}

void BusPrimitives::VPP24_OFF() { OEON(); }

void BusPrimitives::Endereco2Adr() {
  state_.AddrHigh = state_.LinearAddress / state_.AddrDivHigh;
  const std::int32_t rest = state_.LinearAddress - state_.AddrHigh * state_.AddrDivHigh;
  state_.AddrMid = rest / state_.AddrDivLow;
  state_.AddrLow = rest % state_.AddrDivLow;
}

void BusPrimitives::IncADR() {
  ++state_.LinearAddress;
  if (++state_.AddrLow <= 255) return;
  state_.AddrLow = 0;
  if (++state_.AddrMid <= 255) return;
  state_.AddrMid = 0;
  ++state_.AddrHigh;
}

void BusPrimitives::latchMiddle(std::int32_t mid) {
  state_.RegShadow1 = narrowed<std::int16_t>(at(state_.AddrMapMid, mid) | state_.Reg1Fixed);
  registers_.SetReg1();
}

void BusPrimitives::latchHigh(std::int32_t high) {
  state_.RegShadow3 = narrowed<std::int16_t>(at(state_.AddrMapHigh, high) |
                                             (state_.RegShadow3 & kLatch3Kept) | state_.Reg3Fixed);
  registers_.SetReg3();
}

void BusPrimitives::SETADR() {
  latchMiddle(state_.AddrMid);
  state_.RegShadow2 = narrowed<std::int16_t>(state_.AddrLow);
  registers_.SetReg2();
  latchHigh(state_.AddrHigh);
}

void BusPrimitives::SETADR_XICOR() {
  const std::int32_t mid = withA14InBit7(state_.AddrMid) | state_.Reg1Fixed;
  if (mid != state_.RegShadow1) {
    state_.RegShadow1 = narrowed<std::int16_t>(mid);
    registers_.SetReg1();
  }
  if (state_.AddrLow != state_.RegShadow2) {
    state_.RegShadow2 = narrowed<std::int16_t>(state_.AddrLow);
    registers_.SetReg2();
  }
  const std::int32_t high = (state_.RegShadow3 & kLatch3Kept) | state_.Reg3Fixed | state_.AddrHigh;
  if (high != state_.RegShadow3) {
    state_.RegShadow3 = narrowed<std::int16_t>(high);
    registers_.SetReg3();
  }
}

void BusPrimitives::Reset() {
  state_.RegShadow0 = kLatch0Idle;
  registers_.SetReg0();
  state_.LinearAddress = 0;
  Endereco2Adr();
  state_.RegShadow1 = narrowed<std::int16_t>(state_.AddrMid | state_.Reg1Fixed);
  registers_.SetReg1();
  state_.RegShadow2 = narrowed<std::int16_t>(state_.AddrLow);
  registers_.SetReg2();
  state_.RegShadow3 = narrowed<std::int16_t>(state_.Reg3Fixed | kLatch3Idle);
  registers_.SetReg3();
  controls_.ProgressBar1.setMaximum(100);
  controls_.ProgressBar1.setValue(0);
  state_.EraseMode = 0;
}

std::uint8_t BusPrimitives::readStatus(std::int16_t nibbleSelect) {
  port_.PortOut(state_.ControlPort, narrowed<std::uint8_t>(nibbleSelect));
  return port_.PortIn(state_.StatusPort);
}

void BusPrimitives::GetNibbles() {
  const std::int16_t model = state_.KestrelModel;
  if (model != 4 && model != 5 && model != 6) return;
  const unsigned first = state_.StatusLow = readStatus(state_.NibbleSelA);
  const unsigned second = state_.StatusHigh = readStatus(state_.NibbleSelB);
  if (model == 4) {
    state_.ReadByte = state_.StatusDecode4[(second & kUpperStatusBits) | (first >> 4U)];
  } else {
    state_.ReadByte =
        static_cast<std::uint8_t>(state_.StatusDecodeHigh[second] | state_.StatusDecodeLow[first]);
  }
}

void BusPrimitives::GetNibbles24CXX() {
  const std::int16_t model = state_.KestrelModel;
  if (model != 4 && model != 5 && model != 6) return;
  const unsigned status = readStatus(state_.NibbleSelB);
  state_.ReadByte = model == 4 ? state_.StatusDecode4[status & kUpperStatusBits]
                               : state_.StatusDecodeHigh[status];
}

void BusPrimitives::WaitSettlingTime() {
  const std::int32_t counts = state_.SettleFactor * 100;
  waits_.Spin(counts);
  state_.LoopIndex = counts < 1 ? 1 : counts + 1;
}

}  // namespace kestrel::hardware
