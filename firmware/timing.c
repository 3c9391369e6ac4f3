#include "timing.h"

enum {
  kMillisecondTop = 249,  // 16 MHz / 64 / 250 = 1 kHz
};

static volatile uint16_t silentMs;

void startTiming(void) {
  TCCR1A = 0;
  TCCR1B = _BV(CS10);
  TCCR0A = _BV(WGM01);
  TCCR0B = _BV(CS01) | _BV(CS00);
  OCR0A = kMillisecondTop;
  TIMSK0 = _BV(OCIE0A);
}

ISR(TIMER0_COMPA_vect) {
  if (GPIOR0 & kLineAlive) {
    GPIOR0 &= (uint8_t)~kLineAlive;
    silentMs = 0;
  } else if (silentMs < kSilenceMs) {
    ++silentMs;
  } else {
    GPIOR0 |= kLineSilent;
  }
}

void clearEvents(void) {
  cli();
  GPIOR0 = 0;
  silentMs = 0;
  sei();
}
