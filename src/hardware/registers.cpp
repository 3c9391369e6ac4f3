#include "hardware/registers.h"

#include "platform/runtime_error.h"

namespace kestrel::hardware {

Registers::Registers(ProgrammerState& state, PortAccess& port, Waits& waits)
    : state_(state), port_(port), waits_(waits) {}

// Bits 1 to 3 address the latch and bit 0 is the strobe. Models 5 and 6 use all four control lines
// inverted. Both tables are kept literally, so that they can be held against the drawing.
void Registers::InitControlTables() {
  state_.CtlTable4 = {.idle = {0x0A, 0x02, 0x08, 0x00, 0x0E},
                      .strobe = {0x0B, 0x03, 0x09, 0x01, 0x0F}};
  state_.CtlTable56 = {.idle = {0x05, 0x0D, 0x07, 0x0F, 0x01},
                       .strobe = {0x04, 0x0C, 0x06, 0x0E, 0x00}};
}

void Registers::derivePorts() {
  state_.StatusPort = narrowed<std::int16_t>(state_.PortBase + 1);
  state_.ControlPort = narrowed<std::int16_t>(state_.PortBase + 2);
}

void Registers::apply(const ControlCodes& codes, std::int16_t nibbleSelA, std::int16_t nibbleSelB) {
  state_.CtlIdle = codes.idle;
  state_.CtlStrobe = codes.strobe;
  state_.NibbleSelA = nibbleSelA;
  state_.NibbleSelB = nibbleSelB;
}

void Registers::ApplyPortAndModel() {
  derivePorts();
  if (state_.KestrelModel == 4) apply(state_.CtlTable4, 0x00, 0x04);
  if (state_.KestrelModel == 5 || state_.KestrelModel == 6) apply(state_.CtlTable56, 0x05, 0x01);
}

void Registers::loadLatch(std::size_t latch, std::int16_t shadow) {
  const auto idle = narrowed<std::uint8_t>(state_.CtlIdle[latch]);
  const auto strobe = narrowed<std::uint8_t>(state_.CtlStrobe[latch]);
  port_.PortOut(state_.PortBase, narrowed<std::uint8_t>(shadow));
  port_.PortOut(state_.ControlPort, idle);
  BusDelay();
  port_.PortOut(state_.ControlPort, strobe);
  port_.PortOut(state_.ControlPort, idle);
}

void Registers::loadLatchFast(std::size_t latch, std::uint8_t value) {
  port_.PortOut(state_.PortBase, value);
  port_.PortOut(state_.ControlPort, narrowed<std::uint8_t>(at(state_.CtlStrobe, latch)));
  port_.PortOut(state_.ControlPort, narrowed<std::uint8_t>(at(state_.CtlIdle, latch)));
}

void Registers::REG4ON() {
  clearBits(state_.RegShadow3, kDataLatchOff);
  SetReg3();
}

void Registers::REG4OFF() {
  setBits(state_.RegShadow3, kDataLatchOff);
  SetReg3();
}

}  // namespace kestrel::hardware
