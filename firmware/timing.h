// Time. Timer 1 counts cycles of 62.5 ns and carries the waits of a block; timer 0 makes the
// milliseconds by which the silence of the line is measured.
#pragma once

#include <avr/interrupt.h>
#include <avr/io.h>
#include <avr/wdt.h>
#include <stdint.h>

#include "serial.h"

enum {
  kSilenceMs = 500,
  kCyclesPerMs = 16000,
  // The serial interrupt takes up to 4 us. It is held off for the last 12 us of a wait, so that the
  // line changes on time; the receiver itself keeps bytes of 20 us.
  kHeldOffCycles = 192,
};

void startTiming(void);

// Forgets what happened on the line so far; the silence counts from now.
void clearEvents(void);

// 25 ns counts to cycles, 0.4 each, rounded up by two at most. From products of bytes: a division
// would take longer than the shortest waits.
static inline uint16_t cyclesOfFewCounts(uint8_t counts) {
  return (uint8_t)((counts * 103U + 255U) >> 8);
}

static inline uint16_t cyclesOfCounts(uint8_t low, uint8_t high) {
  const uint8_t fraction = (uint8_t)((high * 103U + 255U) >> 8);
  return (uint16_t)(high * 102U + fraction + cyclesOfFewCounts(low));
}

// Waits until timer 1 has come to a moment that is less than 2 ms away, or goes on at once when it
// has passed or a stop is asked for. Afterwards interrupts are off.
static inline void holdUntil(uint16_t moment) {
  while ((int16_t)(moment - TCNT1) > kHeldOffCycles) {
    sei();
    if (pendingEvents() & kStopAsked) {
      cli();
      return;
    }
  }
  cli();
  while ((int16_t)(TCNT1 - moment) < 0) {
  }
}
