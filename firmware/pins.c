#include "pins.h"

#include <util/delay.h>

// An access of a PC's port takes about as long; the board was built for that.
enum { kAccessUs = 1 };

enum {
  kLatch0Off = 0x40,  // /OE high, no voltage on any pin
  kNoLatch = 0x05,    // no strobe for models 5 and 6, no latch for a model 4
};

void startPins(void) {
  PORTB = controlLines(kNoLatch);
  PORTC = kStatusPullUps;
  PORTD = kReceivePullUp;
  DDRB = kDataOnPortB | kControlOnPortB;
  DDRC = kDataOnPortC;
  DDRD = kDataOnPortD;
}

static void pacedControl(uint8_t control) {
  writeControl(control);
  _delay_us(kAccessUs);
}

// Idle, strobe and idle of latch 0 for models 5 and 6, then the same for a model 4. Each code is
// the other's inverted, and for the other family it chooses none of its latches.
//
// A program may have left the strobe of a latch standing, which the data would go through. So the
// code that opens none comes before the data.
void switchOff(void) {
  pacedControl(kNoLatch);
  writeData(kLatch0Off);
  _delay_us(kAccessUs);
  pacedControl(0x05);
  pacedControl(0x04);
  pacedControl(0x05);
  pacedControl(0x0A);
  pacedControl(0x0B);
  pacedControl(0x0A);
}
