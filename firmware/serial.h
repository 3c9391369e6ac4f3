// The line to the program: 1 Mbaud, 8 data bits, no parity, one stop bit.
//
// Received bytes go into a small ring by interrupt. Stop and keep-alive are taken out there: they
// count from the moment of their arrival, in the middle of a block or of its execution too.
#pragma once

#include <avr/io.h>
#include <stdbool.h>
#include <stdint.h>

// Bytes that may arrive while a block is executed. The ring has 256 places, so that its indices
// wrap by themselves, and one of them stays free.
enum { kWindowBytes = 255 };

// What interrupts have to say to the main program, in a register that is read in one cycle.
enum {
  kStopAsked = 0x01,
  kLineSilent = 0x02,
  kLineError = 0x04,  // framing error, or a byte that found no room
  kEvents = 0x07,
  kLineAlive = 0x08,  // a byte has arrived since the last millisecond
};

static inline uint8_t pendingEvents(void) { return GPIOR0 & kEvents; }

void startSerial(void);

bool hasInput(void);

// The oldest byte that has arrived; only while there is one.
uint8_t takeInput(void);

// Throws away what has arrived so far.
void dropInput(void);

// An answer is gathered byte by byte, then sent by interrupt. beginAnswer waits until the one
// before is on the line.
void beginAnswer(uint8_t head);
void addToAnswer(uint8_t value);
void sendAnswer(void);
void waitUntilSent(void);
