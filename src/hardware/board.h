#pragma once

#include "app/state/controls.h"
#include "app/state/programmer_state.h"
#include "app/state/rest_listener.h"
#include "hardware/bus_primitives.h"
#include "hardware/lamps.h"
#include "hardware/registers.h"
#include "platform/port_access.h"
#include "platform/port_service.h"
#include "platform/screen.h"
#include "platform/waits.h"

namespace kestrel::hardware {

/// The board as the device operations drive it: its latches, its signals, its lamps.
class Board {
 public:
  /// What it refers to outlives it. `atRest` hears of every Reset.
  Board(ProgrammerState& state, Controls& controls, RestListener& atRest, PortAccess& port,
        Waits& waits, PortService& service, Screen& screen)
      : registers(state, state, state, port, waits),
        bus(state, state, state, state, state, state, registers, atRest, port, waits),
        lamps(state, controls, registers, screen),
        latches_(state),
        service_(service) {}

  Registers registers;
  BusPrimitives bus;
  Lamps lamps;

  /// To be held for the length of an operation on the chip or the board, never across a question.
  [[nodiscard]] DeviceOperation operation() { return DeviceOperation(service_); }

  /// Wait between the start address on the pins and the first access, for the chip's supply.
  static constexpr std::int32_t kStartWaitMs = 500;

  /// How an operation on the chip begins: everything idle, address 0 on the pins, the chip's supply
  /// given time to come up.
  void startOperation() {
    bus.Reset();
    bus.SETADR();
    bus.sleepMs(kStartWaitMs);
  }

  /// How an operation on a serial chip ends: clock and /OE low, latches 1 and 2 at 0. The supply of
  /// the chip is /OE, so it can be taken out.
  void leaveSerialChip() {
    bus.CEON();
    bus.OEON();
    latches_.RegShadow1 = 0;
    latches_.RegShadow2 = 0;
    registers.SetReg1();
    registers.SetReg2();
  }

  /// The socket while a chip is changed: no voltage, every pin that a latch drives low, the supply
  /// of 24- and 28-pin chips included, and nobody on the data bus. Pin 32 has its 5 V always.
  void releaseSocket() {
    latches_.RegShadow0 = 0;
    registers.SetReg0();
    latches_.RegShadow3 = kLatch3BusReleased;
    registers.SetReg3();
    latches_.RegShadow1 = 0;
    registers.SetReg1();
    latches_.RegShadow2 = 0;
    registers.SetReg2();
  }

 private:
  static constexpr std::int16_t kLatch3BusReleased = 0x40;  // bit 6: latch 4 off the data bus

  LatchState& latches_;
  PortService& service_;
};

}  // namespace kestrel::hardware
