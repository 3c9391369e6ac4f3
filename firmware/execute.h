// Executes the operations of a block that was found right, straight from its buffer.
#pragma once

#include "block.h"

// Status bytes go into the answer that was begun. Ends early at an event: a stop at once, another
// one between two operations. At the end the last wait is over and interrupts are on.
void executeBlock(const Block* block);

// Forgets the delay of the latch loads, as a new connection does.
void forgetDelay(void);
