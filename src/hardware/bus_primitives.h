#pragma once

#include "app/state/programmer_state.h"
#include "app/state/rest_listener.h"
#include "hardware/registers.h"
#include "platform/port_access.h"
#include "platform/waits.h"

namespace kestrel::hardware {

/// A byte, or a half of one, that was asked for.
struct PendingByte {
  PendingRead first;
  PendingRead second;
};

/// The signals of the board that every device routine is made of: chip enable, output enable, the
/// programming voltage of 24-pin parts, the address, the byte that the device drives, the waits.
class BusPrimitives {
 public:
  BusPrimitives(const PortState& portState, LatchState& latches, const SelectionState& device,
                OperationState& operation, ShellState& shell, const TimingState& timing,
                Registers& registers, RestListener& atRest, PortAccess& port, Waits& waits)
      : portState_(portState),
        latches_(latches),
        device_(device),
        operation_(operation),
        shell_(shell),
        timing_(timing),
        registers_(registers),
        atRest_(atRest),
        port_(port),
        waits_(waits) {}

  // Chip enable and output enable, both active low. OEON and VPP24_OFF also take the programming
  // voltage off pin 24; OEOFF leaves it as it is.
  void CEON();
  void CEOFF();
  void OEON();
  void OEOFF();
  void CEOEON();
  void CEOEOFF();
  void VPP24_ON();
  void VPP24_OFF();

  /// Splits LinearAddress into AddrHigh, AddrMid and AddrLow.
  void Endereco2Adr();

  /// The next address; SETADR puts it on the pins.
  void IncADR();

  /// Puts the current address on the pins: latches 1, 2 and 3, all three each time. Throws
  /// RuntimeError 9 for an address byte above 255.
  void SETADR();

  /// The parts of SETADR for a walk that changes one address byte at a time: the middle byte
  /// through its map into latch 1, the high byte through its map into latch 3.
  void latchMiddle(std::int32_t mid);
  void latchHigh(std::int32_t high);

  /// SETADR as the flash routines call it.
  void SETADR_FLASH() { SETADR(); }

  /// The address of 28-pin EEPROMs and the AT29C256: a latch is loaded only when it changes.
  void SETADR_XICOR();

  /// The board's idle state: outputs off, voltages off, address 0, chip deselected; the progress
  /// bar at its start and EraseMode off. Latch 4 is not touched.
  void Reset();

  /// The byte that the device drives, into ReadByte, in two halves over the status lines. The chip
  /// is selected and the bus released before. No model, no access.
  void GetNibbles();

  /// One read of the upper half, for the serial chips' SDA (bit 7 of ReadByte).
  void GetNibbles24CXX() { fetchNibbles24CXX(askNibbles24CXX()); }

  /// Both in two steps, for reads in a row: all are asked for, with whatever the procedure does
  /// between them, and fetched afterwards in the same order. Through an adapter they then take one
  /// round trip; on the lines, in the trace and on any other port nothing is different. At most 64
  /// bytes in a row: what an adapter answers at once.
  [[nodiscard]] PendingByte askNibbles();
  void fetchNibbles(const PendingByte& pending);
  [[nodiscard]] PendingByte askNibbles24CXX();
  void fetchNibbles24CXX(const PendingByte& pending);

  /// Busy loop of SettleFactor x 100 counts, counted in LoopIndex.
  void WaitSettlingTime();

  void Delay2Seconds() { waits_.Sleep(2000); }
  void ShortDelay20() { waits_.Spin(20); }
  void ShortDelay10() { waits_.Spin(10); }

  /// Real-time wait of so many milliseconds.
  void sleepMs(std::int32_t milliseconds) { waits_.Sleep(milliseconds); }

  /// Busy loop of so many counts.
  void spin(std::int64_t counts) { waits_.Spin(counts); }

 private:
  [[nodiscard]] bool hasModel() const;
  [[nodiscard]] PendingRead askStatus(std::int16_t nibbleSelect);
  [[nodiscard]] std::uint8_t fetchStatus(PendingRead pending);

  const PortState& portState_;
  LatchState& latches_;
  const SelectionState& device_;
  OperationState& operation_;
  ShellState& shell_;
  const TimingState& timing_;
  Registers& registers_;
  RestListener& atRest_;
  PortAccess& port_;
  Waits& waits_;
};

}  // namespace kestrel::hardware
