// A parallel port at the end of a serial line, and the guard of the board behind it.
//
// The adapter is either off, with 40h in latch 0 and deaf to everything but a hello, or connected.
// It goes off by its own at power-up and reset, when the line has been silent for 500 ms, at a
// block that is not right in every respect, at a stop and at the goodbye. The watchdog resets it
// when the program hangs, which is one more way to off.
#include <avr/interrupt.h>
#include <avr/sleep.h>
#include <avr/wdt.h>
#include <stdbool.h>

#include "block.h"
#include "execute.h"
#include "pins.h"
#include "protocol.h"
#include "serial.h"
#include "timing.h"

static bool connected;
static Cause cause = kSwitchedOn;
static uint8_t expectedSequence;

// The first thing after a reset, before the memory is cleared, which takes 0.8 ms. After a reset by
// the watchdog that is still on, with its shortest time.
__attribute__((naked, used, section(".init3"))) static void guardFirst(void) {
  startPins();
  switchOff();
  MCUSR = 0;
  wdt_disable();
}

static void sendTrouble(uint8_t sequence) {
  beginAnswer(kTrouble | sequence);
  addToAnswer((uint8_t)cause);
  sendAnswer();
}

// Switches off first and tells the program then.
static void goOff(Cause why) {
  switchOff();
  connected = false;
  cause = why;
  discardInput();
  clearEvents();
  sendTrouble(expectedSequence);
}

static void sendWelcome(uint8_t sequence) {
  static const char kName[] = "KESTREL LINK";
  beginAnswer(kWelcome | sequence);
  addToAnswer(kProtocolVersion);
  addToAnswer((uint8_t)kBlockBytes);
  addToAnswer((uint8_t)(kBlockBytes >> 8));
  addToAnswer(kWindowBytes);
  addToAnswer(kMostReads);
  for (const char* letter = kName; *letter != 0; ++letter) addToAnswer((uint8_t)*letter);
  sendAnswer();
}

// A foreign program is told the adapter's version as well, and gets no further.
static void takeHello(const Block* block) {
  switchOff();
  forgetDelay();
  const uint8_t sequence = block->head & kSequenceMask;
  connected = block->length == 1 && operations[0] == kProtocolVersion;
  cause = kForeign;
  expectedSequence = (uint8_t)((sequence + 1) & kSequenceMask);
  clearEvents();
  sendWelcome(sequence);
}

static void takeGoodbye(const Block* block) {
  switchOff();
  connected = false;
  cause = kEnded;
  beginAnswer(kDone | (block->head & kSequenceMask));
  sendAnswer();
}

static void takeOperations(const Block* block) {
  const uint8_t sequence = block->head & kSequenceMask;
  if (!connected) {
    sendTrouble(sequence);
    return;
  }
  if (sequence != expectedSequence) {
    goOff(kBroken);
    return;
  }
  expectedSequence = (uint8_t)((sequence + 1) & kSequenceMask);
  beginAnswer(kDone | sequence);
  waitUntilSent();
  executeBlock(block);
  if (pendingEvents() != 0) return;  // the answer is never sent: goOff tells why
  sendAnswer();
}

static void takeBlock(const Block* block) {
  switch (block->head & kKindMask) {
    case kOperations:
      takeOperations(block);
      break;
    case kHello:
      takeHello(block);
      break;
    case kGoodbye:
      takeGoodbye(block);
      break;
    default:
      if (connected) goOff(kBroken);
      break;
  }
}

static void heedEvents(void) {
  const uint8_t events = pendingEvents();
  if (events & kStopAsked) {
    goOff(kStopped);
  } else if (!connected) {
    // Noise on the line of an adapter that is off means nothing.
    if (events & kLineError) discardInput();
    clearEvents();
  } else if (events & kLineError) {
    goOff(kBroken);
  } else {
    goOff(kSilent);
  }
}

static void heedLine(void) {
  Block block;
  switch (receiveBlock(&block)) {
    case kComplete:
      takeBlock(&block);
      break;
    case kDamaged:
      if (connected) goOff(kBroken);
      break;
    case kNothingYet:
      break;
  }
}

// Sleeps until the next interrupt, at the latest until the next millisecond. Looked at with
// interrupts off, an arriving byte cannot be overlooked; sei takes effect after the sleep.
static void rest(void) {
  cli();
  if (!hasInput() && pendingEvents() == 0) {
    sleep_enable();
    sei();
    sleep_cpu();
    sleep_disable();
  }
  sei();
}

int main(void) {
  startSerial();
  startTiming();
  SMCR = 0;  // sleep is idle: the timers and the receiver run on
  wdt_enable(WDTO_250MS);
  sei();
  sendTrouble(0);
  for (;;) {
    wdt_reset();
    if (pendingEvents() != 0) heedEvents();
    heedLine();
    rest();
  }
}
