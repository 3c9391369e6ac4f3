// An operation takes effect at one moment: when the lines change, when they are sampled, or, for a
// latch load, when its strobe begins. A wait lies between the effects of the operations before and
// after it, however long it takes to look at them: never less than was asked for, and at most 1 us
// more.
//
// Steps of a latch load are half a microsecond apart, so that a cable of two metres settles.
#include "execute.h"

#include <stdbool.h>
#include <util/delay_basic.h>

#include "pins.h"
#include "protocol.h"
#include "serial.h"
#include "timing.h"

enum {
  kStepCycles = 8,
  // From the moment that a hold is for to the effect; the load's without its delay. Measured on the
  // pins, as is what the delay takes beside its cycles.
  kControlLead = 17,
  kDataLead = 25,
  kLoadLead = 34,
  kDelayLead = 6,
  // The selected half of the byte runs through the board's multiplexer and the cable.
  kSettleCycles = 16,
  // A wait adds up to 1.64 ms to what is left of the one before, and both must stay below 2 ms.
  kMostPendingCycles = 4000,
};

// Everything is one function in the end, and this in registers.
typedef struct {
  const uint8_t* next;  // operation or operand
  const uint8_t* end;
  uint16_t dueAt;  // moment of timer 1 before which nothing takes effect
  bool isWaiting;  // dueAt may lie ahead: a wait came after the last effect
  uint16_t loadDelayCycles;
} Run;

static uint16_t loadDelayCycles;  // from block to block

void forgetDelay(void) { loadDelayCycles = 0; }

// Interrupts are off between these two. Where no wait is pending the clock is not even read: the
// seven latch loads of a byte must fit into the 100 us that a page writer waits for the next one.
static inline void holdUntilDue(Run* run, uint8_t leadCycles) {
  if (run->isWaiting) {
    holdUntil(run->dueAt - leadCycles);
    run->isWaiting = false;
  } else {
    cli();
  }
}

static inline void tookEffect(Run* run) {
  run->dueAt = TCNT1;
  sei();
}

static inline void executeData(Run* run) {
  const uint8_t value = *run->next++;
  holdUntilDue(run, kDataLead);
  writeData(value);
  tookEffect(run);
}

static inline void executeControl(Run* run, uint8_t control) {
  holdUntilDue(run, kControlLead);
  writeControl(control);
  tookEffect(run);
}

static inline void executeRead(Run* run) {
  holdUntilDue(run, 0);
  const uint8_t status = statusFromPins();
  tookEffect(run);
  addToAnswer(status);
}

static inline void executeControlAndRead(Run* run, uint8_t control) {
  holdUntilDue(run, kControlLead);
  writeControl(control);
  __builtin_avr_delay_cycles(kSettleCycles);
  const uint8_t status = statusFromPins();
  tookEffect(run);
  addToAnswer(status);
}

// The usual delays of a board are about 1 us: short enough to count them out, four cycles a turn.
static inline void holdDelay(uint16_t cycles) {
  if (cycles < kHeldOffCycles) {
    _delay_loop_2((cycles + 3) / 4 + 1);
  } else {
    holdUntil(TCNT1 + cycles);
  }
}

// Data, idle, delay, strobe, idle. The strobe is bit 0 of the control register, active when it
// differs from the idle code.
static inline void executeLoad(Run* run, uint8_t idle) {
  const uint8_t value = *run->next++;
  const uint8_t portD = portDForData(value);
  const uint8_t portC = portCForData(value);
  const uint8_t dataBit0 = portBForData(value);
  const uint8_t dataSet = (uint8_t)((PORTB & kControlOnPortB) | dataBit0);
  const uint8_t idleSet = dataBit0 | controlLines(idle);
  const uint8_t strobeSet = dataBit0 | controlLines(idle ^ 0x01);
  holdUntilDue(run, kLoadLead);
  PORTD = portD;
  PORTC = portC;
  PORTB = dataSet;
  __builtin_avr_delay_cycles(kStepCycles - 1);
  PORTB = idleSet;
  holdDelay(run->loadDelayCycles);
  PORTB = strobeSet;
  run->dueAt = TCNT1;
  __builtin_avr_delay_cycles(kStepCycles - 5);
  PORTB = idleSet;
  sei();
}

// The same without the idle code before the strobe, as flash command cycles want it.
static inline void executeFastLoad(Run* run, uint8_t idle) {
  const uint8_t value = *run->next++;
  holdUntilDue(run, kDataLead);
  writeData(value);
  __builtin_avr_delay_cycles(kStepCycles - 5);
  writeControl(idle ^ 0x01);
  run->dueAt = TCNT1;
  __builtin_avr_delay_cycles(kStepCycles - 5);
  writeControl(idle);
  sei();
}

// Waits until little is pending, so that the moment of the next effect can be put off further.
static inline void letPendingPass(const Run* run) {
  while ((int16_t)(run->dueAt - TCNT1) > kMostPendingCycles) {
    wdt_reset();
    if (pendingEvents() & kStopAsked) return;
  }
}

static inline void waitFewCounts(Run* run) {
  letPendingPass(run);
  run->dueAt += cyclesOfFewCounts(*run->next++);
  run->isWaiting = true;
}

static inline void waitCounts(Run* run) {
  letPendingPass(run);
  run->dueAt += cyclesOfCounts(run->next[0], run->next[1]);
  run->isWaiting = true;
  run->next += 2;
}

static inline void waitMilliseconds(Run* run) {
  for (uint8_t left = *run->next++; left != 0; --left) {
    letPendingPass(run);
    if (pendingEvents() & kStopAsked) return;
    run->dueAt += kCyclesPerMs;
    run->isWaiting = true;
  }
}

static inline void changeDelay(Run* run) {
  const uint16_t cycles = cyclesOfCounts(run->next[0], run->next[1]);
  run->next += 2;
  run->loadDelayCycles = cycles > kDelayLead ? cycles - kDelayLead : 0;
  loadDelayCycles = run->loadDelayCycles;
}

static inline void executeOther(Run* run, uint8_t operation) {
  switch (operation) {
    case kWriteData:
      executeData(run);
      break;
    case kReadStatus:
      executeRead(run);
      break;
    case kWaitFewCounts:
      waitFewCounts(run);
      break;
    case kWaitCounts:
      waitCounts(run);
      break;
    case kWaitMilliseconds:
      waitMilliseconds(run);
      break;
    default:
      changeDelay(run);
      break;
  }
}

static inline void executeOperation(Run* run) {
  const uint8_t operation = *run->next++;
  const uint8_t control = operation & 0x0F;
  switch (operation & 0xF0) {
    case kLoadLatch:
      executeLoad(run, control);
      break;
    case kControlAndRead:
      executeControlAndRead(run, control);
      break;
    case kWriteControl:
      executeControl(run, control);
      break;
    case kLoadLatchFast:
      executeFastLoad(run, control);
      break;
    default:
      executeOther(run, operation);
      break;
  }
}

void executeBlock(const Block* block) {
  Run run = {.next = operations,
             .end = operations + block->length,
             .dueAt = TCNT1,
             .isWaiting = false,
             .loadDelayCycles = loadDelayCycles};
  while (run.next != run.end && pendingEvents() == 0) {
    wdt_reset();
    executeOperation(&run);
  }
  if (run.isWaiting && !(pendingEvents() & kStopAsked)) {
    letPendingPass(&run);
    holdUntil(run.dueAt);
  }
  sei();
}
