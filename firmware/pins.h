// The lines of a parallel port on the pins of an ATmega328P. Values are those of a PC's registers;
// the lines marked with / are inverted between the register and the connector (IEEE 1284, SPP).
//
//   register       AVR pin     board    DB-25
//   data 0         PB0         D8       2
//   data 1         PC0         A0       3
//   data 2 to 7    PD2 to PD7  D2 - D7  4 to 9
//   control 0 /    PB1         D9       1
//   control 1 /    PB2         D10      14
//   control 2      PB3         D11      16
//   control 3 /    PB4         D12      17
//   status 3       PC1         A1       15
//   status 4       PC2         A2       13
//   status 5       PC3         A3       12
//   status 6       PC4         A4       10
//   status 7 /     PC5         A5       11
//
// All control lines are on one port, so that they change at once: a code on the way between two
// others could open a latch. All status lines are on one port, so that they are sampled at once.
// PB5 is left alone: it carries the lamp of the usual boards, and their boot loaders blink it.
#pragma once

#include <avr/io.h>
#include <stdint.h>

enum {
  kControlInverted = 0x0B,
  kStatusInverted = 0x80,
  kStatusUnused = 0x07,  // read 1, as on a port
  kDataOnPortB = 0x01,
  kDataOnPortC = 0x01,
  kDataOnPortD = 0xFC,
  kControlOnPortB = 0x1E,
  kReceivePullUp = 0x01,  // PD0, the serial input
  kStatusPullUps = 0x3E,  // PC1 to PC5
};

// What port B shows for a control byte, without the data line on it.
static inline uint8_t controlLines(uint8_t control) {
  return (uint8_t)(((control ^ kControlInverted) & 0x0F) << 1);
}

static inline uint8_t portBForData(uint8_t data) { return data & kDataOnPortB; }
static inline uint8_t portCForData(uint8_t data) {
  return (uint8_t)(kStatusPullUps | ((data >> 1) & kDataOnPortC));
}
static inline uint8_t portDForData(uint8_t data) {
  return (uint8_t)((data & kDataOnPortD) | kReceivePullUp);
}

static inline uint8_t statusFromPins(void) {
  return (uint8_t)(((PINC << 2) ^ kStatusInverted) | kStatusUnused);
}

// Writes the data register. The eight lines follow each other within a quarter microsecond.
static inline void writeData(uint8_t data) {
  const uint8_t portD = portDForData(data);
  const uint8_t portC = portCForData(data);
  const uint8_t portB = (uint8_t)((PORTB & kControlOnPortB) | portBForData(data));
  PORTD = portD;
  PORTC = portC;
  PORTB = portB;
}

// Writes the control register.
static inline void writeControl(uint8_t control) {
  PORTB = (uint8_t)((PORTB & kDataOnPortB) | controlLines(control));
}

// Makes the outputs outputs, with a control code that opens no latch of any model.
void startPins(void);

// Loads 40h into latch 0, whatever the model: outputs disabled, every voltage off.
void switchOff(void);
