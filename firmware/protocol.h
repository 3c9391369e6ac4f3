// The protocol of docs/link.md, as the adapter sees it.
#pragma once

#include <stdint.h>

enum { kProtocolVersion = 1 };

// Four bytes have a meaning of their own anywhere on the line. Inside a block or an answer each of
// them is sent as kEscape and the byte with bit 5 turned over.
enum {
  kStop = 0x7C,
  kEscape = 0x7D,
  kStart = 0x7E,
  kKeepAlive = 0x7F,
  kMarkMask = 0xFC,  // the bits that the four have in common
  kEscapeBit = 0x20,
};

// Head of a block and of an answer: kind in bits 7 and 6, sequence number in bits 5 to 0.
enum {
  kKindMask = 0xC0,
  kSequenceMask = 0x3F,
  kOperations = 0x00,
  kHello = 0x40,
  kGoodbye = 0x80,

  kDone = 0x00,
  kWelcome = 0x40,
  kTrouble = 0x80,
};

// Operations. n is a control byte, in the low half of the operation itself.
enum {
  kWriteControl = 0x00,    // 0n
  kControlAndRead = 0x10,  // 1n
  kLoadLatch = 0x20,       // 2n value
  kLoadLatchFast = 0x30,   // 3n value
  kWriteData = 0x40,       // value
  kReadStatus = 0x41,
  kWaitFewCounts = 0x42,     // counts
  kWaitCounts = 0x43,        // counts, low byte first
  kWaitMilliseconds = 0x44,  // milliseconds
  kLoadDelay = 0x45,         // counts, low byte first
};

enum {
  kLongestWaitMs = 64,  // with the 500 ms of silence together below 600 ms
  kMostReads = 128,     // of one block: a page of 64 bytes, two halves each
};

// Why the adapter has switched off.
typedef enum {
  kSwitchedOn = 1,  // power-up or reset, or no hello yet
  kBroken = 2,      // wrong check value, length, operation or sequence number, line error
  kStopped = 3,
  kSilent = 4,
  kEnded = 5,    // goodbye
  kForeign = 6,  // the hello was of another protocol version
} Cause;
