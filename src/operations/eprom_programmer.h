#pragma once

#include <cstdint>

#include "operations/failure_reports.h"
#include "operations/operation_parts.h"

namespace kestrel::operations {

/// The UV EPROM algorithms: latch the byte, pulse, read it back, again until it is right.
///
/// All five share one frame and one pulse loop; a row of a table says in what they differ. A byte
/// gets at most 254 pulses: 55 short ones, then long ones. FFh, the erased state, is never
/// programmed.
class EpromProgrammer {
 public:
  EpromProgrammer(const OperationParts& parts, FailureReports& reports)
      : p_(parts), reports_(reports) {}

  /// 2716, 2732: VPP on the /OE pin, 5 ms pulses on /CE, each address read first.
  void P2732();

  /// 2764, 27128: pulses on /PGM, latch 1 bit 6.
  void P2764_128();

  /// 27256 and 4 Mbit: pulses on /CE with /OE high.
  void P27256_040();

  /// 27512 and 8 Mbit: VPP on the /OE pin, pulses on /CE, each address read first.
  void P27080();

  /// 1 and 2 Mbit: pulses on /PGM, latch 3 bit 2.
  void P27010_020();

 private:
  struct Algorithm;
  struct Algorithms;

  void program(const Algorithm& algorithm);
  void setUpLatch0(const Algorithm& algorithm);
  void waitForVppSettling();
  bool programByte(const Algorithm& algorithm);
  bool pulseUntilRight(const Algorithm& algorithm);
  void ReadBackByte();

  // The bus before the set-up of latch 0.
  void deselect();
  void selectWithOutputsOff();

  // What is done at an address before its first pulse.
  void latchAddress();
  void latchAddressAndSelect();
  void readFirst24();
  void readFirst();

  // One pulse, up to the read-back.
  void pulse2732();
  void pulse2764();
  void pulse27256();
  void pulse27080();
  void pulse27010();

  void putByteOnBus();
  void putByteInLatch();
  void pulseDelay();

  OperationParts p_;
  FailureReports& reports_;
  std::int16_t PulsesLeft_ = 0;
};

}  // namespace kestrel::operations
