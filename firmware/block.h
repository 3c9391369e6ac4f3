// Blocks on their way in: taken from the line byte by byte as they arrive, so that the last byte
// leaves little to do. Nothing of a block is executed before all of it was found right.
#pragma once

#include <stdint.h>

typedef struct {
  uint8_t head;
  uint16_t length;  // of the operations, in bytes
  uint8_t reads;    // status bytes that they give
} Block;

typedef enum {
  kNothingYet,
  kComplete,
  kDamaged,  // what the line brought is no block; the receiver waits for the next start
} Reception;

// Room for the operations of one block. A page of 64 bytes with seven latch loads each is 896.
enum { kBlockBytes = 1400 };

// The operations of the block that was received last.
extern uint8_t operations[kBlockBytes];

// Goes on with the bytes that are there.
Reception receiveBlock(Block* block);

// Throws away what has arrived so far.
void discardInput(void);
