#include "serial.h"

#include <avr/interrupt.h>
#include <avr/wdt.h>
#include <util/crc16.h>

#include "protocol.h"

enum {
  kAnswerHeader = 2,  // head and length
  kAnswerBytes = kAnswerHeader + kMostReads + 2,
};

static volatile uint8_t ring[kWindowBytes + 1];
static volatile uint8_t ringHead;  // where the next byte goes
static volatile uint8_t ringTail;  // the oldest byte that nobody has seen

static uint8_t answer[kAnswerBytes];
static uint8_t answerEnd;
static volatile uint8_t answerSent;
static volatile uint8_t answerToSend;  // 0: nothing under way
static volatile bool startSent;
static uint8_t escapedByte;

// 16 MHz / 16 / 1 = 1 Mbaud without error; 16 samples a bit.
void startSerial(void) {
  UBRR0 = 0;
  UCSR0A = 0;
  UCSR0C = _BV(UCSZ01) | _BV(UCSZ00);
  UCSR0B = _BV(RXEN0) | _BV(TXEN0) | _BV(RXCIE0);
}

// As short as it can be: at full speed there are 160 cycles between two bytes.
ISR(USART_RX_vect) {
  if (UCSR0A & (_BV(FE0) | _BV(DOR0))) GPIOR0 |= kLineError;
  const uint8_t received = UDR0;
  GPIOR0 |= kLineAlive;
  if (received == kKeepAlive) return;
  if (received == kStop) {
    GPIOR0 |= kStopAsked;
    return;
  }
  const uint8_t place = ringHead;
  const uint8_t next = (uint8_t)(place + 1);
  ring[place] = received;  // in a full ring this is the free place
  if (next == ringTail) {
    GPIOR0 |= kLineError;
  } else {
    ringHead = next;
  }
}

bool hasInput(void) { return ringHead != ringTail; }

uint8_t takeInput(void) {
  const uint8_t place = ringTail;
  const uint8_t value = ring[place];
  ringTail = (uint8_t)(place + 1);
  return value;
}

void dropInput(void) { ringTail = ringHead; }

void waitUntilSent(void) {
  while (answerToSend != 0) wdt_reset();
}

void beginAnswer(uint8_t answerHead) {
  waitUntilSent();
  answer[0] = answerHead;
  answerEnd = kAnswerHeader;
}

void addToAnswer(uint8_t value) { answer[answerEnd++] = value; }

void sendAnswer(void) {
  answer[1] = (uint8_t)(answerEnd - kAnswerHeader);
  uint16_t check = 0xFFFF;
  for (uint8_t i = 0; i < answerEnd; ++i) check = _crc_ccitt_update(check, answer[i]);
  addToAnswer((uint8_t)check);
  addToAnswer((uint8_t)(check >> 8));
  answerSent = 0;
  escapedByte = 0;
  startSent = false;
  answerToSend = answerEnd;
  UCSR0B |= _BV(UDRIE0);
}

ISR(USART_UDRE_vect) {
  if (!startSent) {
    startSent = true;
    UDR0 = kStart;
    return;
  }
  if (escapedByte != 0) {
    UDR0 = escapedByte;
    escapedByte = 0;
  } else {
    const uint8_t value = answer[answerSent++];
    if ((value & kMarkMask) == (kStop & kMarkMask)) {
      escapedByte = value ^ kEscapeBit;
      UDR0 = kEscape;
      return;
    }
    UDR0 = value;
  }
  if (answerSent == answerToSend) {
    UCSR0B &= (uint8_t)~_BV(UDRIE0);
    answerToSend = 0;
  }
}
