#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>

#include "app/state/programmer_state.h"
#include "devices/wiring.h"
#include "hardware/registers.h"
#include "platform/port_access.h"
#include "platform/waits.h"

namespace kestrel::hardware {

/// The pins of the chip in the socket, for the algorithms of the data sheets: address, data, /CE,
/// /OE, the write strobe, the programming voltage, each where the wiring has it.
///
/// It knows what the latches hold (the shadows, from begin() on) and loads only what changes. Data
/// lines have one driver at a time: the board's latch leaves them before /OE goes low, and /OE goes
/// high before the latch drives. The wait within a latch load follows the speed slider where the
/// control lines move to another latch; a pulse has its own length.
class ChipBus {
 public:
  ChipBus(const PortState& portState, LatchState& latches, const TimingState& timing,
          PortAccess& port, Waits& waits)
      : portState_(portState), latches_(latches), timing_(timing), port_(port), waits_(waits) {}

  /// Takes the board over: voltages off, chip deselected, data lines free, address 0; then the
  /// supply comes up.
  void begin(const devices::Wiring& wiring);

  /// Voltages off first, then outputs off, chip deselected, data lines free; of a serial chip every
  /// line low and its supply off.
  void end();

  /// Somebody else has used the port meanwhile; the shadows are still right.
  void portWasUsed() { control_.reset(); }

  void setAddress(std::uint32_t address);

  void select() { clear(3, kChipDisable); }
  void deselect() { set(3, kChipDisable); }

  /// /OE low, for the chip to drive the data lines; and high.
  void enableOutputs();
  void disableOutputs();

  /// The byte on the data lines, and off them again.
  void drive(std::uint8_t data);
  void release();

  /// What stands on the data lines; 0 without a known model.
  [[nodiscard]] std::uint8_t read() { return fetch(ask()); }

  /// The same in two steps, see PortAccess: bytes are fetched in the order in which they were asked
  /// for.
  struct Pending {
    PendingRead first;
    PendingRead second;
    bool isHighFirst = false;
  };
  [[nodiscard]] Pending ask();
  [[nodiscard]] std::uint8_t fetch(const Pending& pending);

  /// The upper half alone, in place: bit 7 is the SDA of a serial chip.
  [[nodiscard]] PendingRead askUpperHalf();
  [[nodiscard]] std::uint8_t fetchUpperHalf(const PendingRead& pending);

  /// The strobe low for so long, never shorter than three accesses.
  void pulse(std::int64_t widthUs);

  /// The strobe low and high again in as few accesses as there are.
  void strobe();

  /// Chooses the level, 12 (for 12.5 V), 21 or 25 V, and waits for it. It is on no pin yet. On
  /// model 4 the level is set by hand.
  void prepareVpp(int volts);
  void vppOn();
  void vppOff();

  void waitMs(std::int32_t milliseconds) { waits_.Sleep(milliseconds); }
  void waitUs(std::int64_t microseconds);

  /// Without the waits of the speed slider, for what must follow faster than they allow.
  void useFullSpeed() { usesFullSpeed_ = true; }

 private:
  [[nodiscard]] std::int16_t& shadow(std::size_t latch);
  void load(std::size_t latch, int value);
  void loadAlways(std::size_t latch, int value);
  void set(std::size_t latch, int mask) { load(latch, shadow(latch) | mask); }
  void clear(std::size_t latch, int mask) { load(latch, shadow(latch) & ~mask); }
  void addressLatch(std::size_t latch);
  void endSerial();
  [[nodiscard]] int idleOfPin24() const;
  [[nodiscard]] bool hasModel() const;
  [[nodiscard]] bool showsHalf(std::int16_t select) const;
  [[nodiscard]] PendingRead askHalf(std::int16_t select);
  [[nodiscard]] std::uint8_t decoded(unsigned low, unsigned high) const;

  const PortState& portState_;
  LatchState& latches_;
  const TimingState& timing_;
  PortAccess& port_;
  Waits& waits_;
  devices::Wiring wiring_;
  std::optional<std::int16_t> control_;  ///< what the control lines hold; empty: not known
  bool usesFullSpeed_ = false;
};

/// The board in the hands of an algorithm, given back with every voltage off on every way out.
class ChipSession {
 public:
  ChipSession(ChipBus& bus, const devices::Wiring& wiring) : bus_(bus) { bus_.begin(wiring); }
  ~ChipSession();
  ChipSession(const ChipSession&) = delete;
  ChipSession& operator=(const ChipSession&) = delete;

 private:
  ChipBus& bus_;
};

}  // namespace kestrel::hardware
