#pragma once

#include <cstddef>
#include <cstdint>

#include "app/state/programmer_state.h"
#include "platform/port_access.h"
#include "platform/waits.h"

namespace kestrel::hardware {

// The board has five write-only latches. A byte on the data port is taken by the latch that the
// control port addresses when the strobe goes active.
//
//   latch 0  bit 7   VPP onto the OE/VPP pin (socket pin 24)
//            bit 6   /OE, 1 = outputs disabled
//            bit 5   VPP onto socket pin 1
//            bit 4   VPP onto socket pin 3
//            bit 3   lamp on the board
//            bit 2   VPP on (model 4)
//            bits 1,0  VPP level (models 5, 6): 00 = 12.5 V, 10 = 21 V, 11 = 25 V
//   latch 1  address bits 8-15 through the device's map
//   latch 2  address bits 0-7
//   latch 3  bit 7   /CE, 1 = deselected; the serial chips' SCL
//            bit 6   data latch off the data bus (1) or on it (0)
//            bit 2   socket pin 31: /PGM, /WE of 32-pin chips
//            bits 3-0  high address bits
//   latch 4  data byte
inline constexpr int kVppOnPin24 = 0x80;
inline constexpr int kOutputDisable = 0x40;
inline constexpr int kVppOnPin1 = 0x20;
inline constexpr int kVppOnPin3 = 0x10;
inline constexpr int kBoardLamp = 0x08;
inline constexpr int kChipDisable = 0x80;
inline constexpr int kDataLatchOff = 0x40;
inline constexpr int kPin31High = 0x04;

/// Latch 0 at rest: outputs disabled, every voltage off.
inline constexpr std::int16_t kLatch0Idle = 0x40;

/// Sets or clears bits of a shadow; the shadows hold bytes, so no bit is ever lost.
constexpr void setBits(std::int16_t& shadow, int mask) {
  shadow = static_cast<std::int16_t>(shadow | mask);
}
constexpr void clearBits(std::int16_t& shadow, int mask) {
  shadow = static_cast<std::int16_t>(shadow & ~mask);
}

/// Loads the latches through the port. Every procedure changes a shadow and then loads its latch;
/// a shadow outside 0..255 is an overflow (RuntimeError 6).
class Registers {
 public:
  Registers(PortState& portState, LatchState& latches, const TimingState& timing, PortAccess& port,
            Waits& waits)
      : portState_(portState), latches_(latches), timing_(timing), port_(port), waits_(waits) {}

  /// Fills the control-code tables of the two board families. Once, before any port access.
  void InitControlTables();

  /// Derives the port addresses and the model's control codes from PortBase and KestrelModel. A
  /// model that is none of 4, 5, 6 changes the addresses alone. Throws RuntimeError 6 for a base
  /// whose neighbours do not fit 16 bits.
  void ApplyPortAndModel();

  /// PortBase, StatusPort and ControlPort together, or none of them: throws RuntimeError 6 for a
  /// base whose neighbours do not fit 16 bits.
  void setPort(std::int16_t base);

  void SetReg0() { loadLatch(0, latches_.RegShadow0); }
  void SetReg1() { loadLatch(1, latches_.RegShadow1); }
  void SetReg2() { loadLatch(2, latches_.RegShadow2); }
  void SetReg3() { loadLatch(3, latches_.RegShadow3); }
  void SetReg4() { loadLatch(4, latches_.RegShadow4); }

  /// The data latch drives the device's data bus.
  void REG4ON();

  /// The data bus is released, so that the device can drive it.
  void REG4OFF();

  /// Busy loop of BusDelayCount counts between addressing a latch and strobing it.
  void BusDelay() { waits_.Spin(timing_.BusDelayCount); }

  /// Loads a latch without a wait and past its shadow: flash command cycles must follow each other
  /// as fast as the port allows.
  void loadLatchFast(std::size_t latch, std::uint8_t value);

 private:
  void loadLatch(std::size_t latch, std::int16_t shadow);
  void apply(const ControlCodes& codes, std::int16_t nibbleSelA, std::int16_t nibbleSelB);

  PortState& portState_;
  LatchState& latches_;
  const TimingState& timing_;
  PortAccess& port_;
  Waits& waits_;
};

}  // namespace kestrel::hardware
