#include "hardware/registers.h"

#include "platform/runtime_error.h"

namespace kestrel::hardware {

// Bits 1 to 3 address the latch and bit 0 is the strobe. Models 5 and 6 use all four control lines
// inverted. Both tables are kept literally, so that they can be held against the drawing.
void Registers::InitControlTables() {
  portState_.CtlTable4 = {.idle = {0x0A, 0x02, 0x08, 0x00, 0x0E},
                          .strobe = {0x0B, 0x03, 0x09, 0x01, 0x0F}};
  portState_.CtlTable56 = {.idle = {0x05, 0x0D, 0x07, 0x0F, 0x01},
                           .strobe = {0x04, 0x0C, 0x06, 0x0E, 0x00}};
}

void Registers::setPort(std::int16_t base) {
  const auto status = narrowed<std::int16_t>(base + 1);
  const auto control = narrowed<std::int16_t>(base + 2);
  portState_.PortBase = base;
  portState_.StatusPort = status;
  portState_.ControlPort = control;
}

void Registers::apply(const ControlCodes& codes, std::int16_t nibbleSelA, std::int16_t nibbleSelB) {
  portState_.CtlIdle = codes.idle;
  portState_.CtlStrobe = codes.strobe;
  portState_.NibbleSelA = nibbleSelA;
  portState_.NibbleSelB = nibbleSelB;
}

void Registers::ApplyPortAndModel() {
  setPort(portState_.PortBase);
  if (portState_.KestrelModel == 4) apply(portState_.CtlTable4, 0x00, 0x04);
  if (portState_.KestrelModel == 5 || portState_.KestrelModel == 6)
    apply(portState_.CtlTable56, 0x05, 0x01);
}

void Registers::loadLatch(std::size_t latch, std::int16_t shadow) {
  const auto idle = narrowed<std::uint8_t>(portState_.CtlIdle[latch]);
  const auto strobe = narrowed<std::uint8_t>(portState_.CtlStrobe[latch]);
  port_.PortOut(portState_.PortBase, narrowed<std::uint8_t>(shadow));
  port_.PortOut(portState_.ControlPort, idle);
  BusDelay();
  port_.PortOut(portState_.ControlPort, strobe);
  port_.PortOut(portState_.ControlPort, idle);
}

void Registers::loadLatchFast(std::size_t latch, std::uint8_t value) {
  port_.PortOut(portState_.PortBase, value);
  port_.PortOut(portState_.ControlPort, narrowed<std::uint8_t>(at(portState_.CtlStrobe, latch)));
  port_.PortOut(portState_.ControlPort, narrowed<std::uint8_t>(at(portState_.CtlIdle, latch)));
}

void Registers::REG4ON() {
  clearBits(latches_.RegShadow3, kDataLatchOff);
  SetReg3();
}

void Registers::REG4OFF() {
  setBits(latches_.RegShadow3, kDataLatchOff);
  SetReg3();
}

}  // namespace kestrel::hardware
