#include "block.h"

#include <util/crc16.h>

#include "protocol.h"
#include "serial.h"

enum {
  kLongLength = 0x80,  // the length has a second byte, its low one
  kBadOperation = 0xFF,
};

typedef enum { kBetween, kHead, kLength, kLengthLow, kContents, kCheckLow, kCheckHigh } Stage;

uint8_t operations[kBlockBytes];

static Stage stage;
static bool escaped;
static uint16_t written;  // operations that are there
static uint16_t check;
static Block current;

static uint8_t operation;  // the one whose operands are arriving
static uint8_t operandsLeft;

// Bytes that follow an operation; kBadOperation for one that there is not.
static uint8_t operandsOf(uint8_t code) {
  if (code < kLoadLatch) return 0;
  if (code < kWriteData) return 1;
  switch (code) {
    case kReadStatus:
      return 0;
    case kWriteData:
    case kWaitFewCounts:
    case kWaitMilliseconds:
      return 1;
    case kWaitCounts:
    case kLoadDelay:
      return 2;
    default:
      return kBadOperation;
  }
}

static bool isRead(uint8_t code) { return code == kReadStatus || (code & 0xF0) == kControlAndRead; }

static bool startsOperation(uint8_t code) {
  operation = code;
  operandsLeft = operandsOf(code);
  if (operandsLeft == kBadOperation) return false;
  if (!isRead(code)) return true;
  ++current.reads;
  return current.reads <= kMostReads;
}

// False for a byte that makes the block one that cannot be executed.
static bool checkContents(uint8_t value) {
  if ((current.head & kKindMask) != kOperations) return true;
  if (operandsLeft == 0) return startsOperation(value);
  --operandsLeft;
  return operation != kWaitMilliseconds || (value != 0 && value <= kLongestWaitMs);
}

static void startBlock(void) {
  stage = kHead;
  escaped = false;
  check = 0xFFFF;
  current.reads = 0;
  operandsLeft = 0;
}

static bool startContents(void) {
  written = 0;
  stage = current.length == 0 ? kCheckLow : kContents;
  return current.length <= kBlockBytes;
}

static bool takeContents(uint8_t value) {
  if (!checkContents(value)) return false;
  operations[written] = value;
  ++written;
  if (written != current.length) return true;
  stage = kCheckLow;
  return operandsLeft == 0;
}

// One byte without its escape; false when it cannot be part of a block.
static bool takeByte(uint8_t value) {
  if (stage < kCheckLow) check = _crc_ccitt_update(check, value);
  switch (stage) {
    case kBetween:
      return false;
    case kHead:
      current.head = value;
      stage = kLength;
      return true;
    case kLength:
      current.length = value;
      if (value & kLongLength) {
        current.length = (uint16_t)((uint16_t)(value & ~kLongLength) << 8);
        stage = kLengthLow;
        return true;
      }
      return startContents();
    case kLengthLow:
      current.length |= value;
      return startContents();
    case kContents:
      return takeContents(value);
    case kCheckLow:
      stage = kCheckHigh;
      return value == (uint8_t)check;
    default:
      stage = kBetween;
      return value == (uint8_t)(check >> 8);
  }
}

static Reception takeFromLine(uint8_t value) {
  if (value == kStart) {
    const bool isCutShort = stage != kBetween;
    startBlock();
    return isCutShort ? kDamaged : kNothingYet;
  }
  if (value == kEscape) {
    escaped = true;
    return kNothingYet;
  }
  if (escaped) {
    value ^= kEscapeBit;
    escaped = false;
  }
  if (!takeByte(value)) {
    stage = kBetween;
    return kDamaged;
  }
  return stage == kBetween ? kComplete : kNothingYet;
}

Reception receiveBlock(Block* block) {
  while (hasInput()) {
    const Reception reception = takeFromLine(takeInput());
    if (reception == kComplete) *block = current;
    if (reception != kNothingYet) return reception;
  }
  return kNothingYet;
}

void discardInput(void) {
  dropInput();
  stage = kBetween;
  escaped = false;
}
