#pragma once

#include <cstddef>
#include <cstdint>

// The protocol of docs/link.md, as the program sees it.
namespace kestrel::link {

inline constexpr std::uint8_t kProtocolVersion = 1;

// Four bytes have a meaning of their own anywhere on the line. Inside a block or an answer each of
// them is sent as an escape and the byte with bit 5 turned over.
inline constexpr std::uint8_t kStopMark = 0x7C;
inline constexpr std::uint8_t kEscapeMark = 0x7D;
inline constexpr std::uint8_t kStartMark = 0x7E;
inline constexpr std::uint8_t kKeepAliveMark = 0x7F;
inline constexpr std::uint8_t kEscapedBit = 0x20;

// The first byte of a block and of an answer: kind in bits 7 and 6, sequence number in the rest.
enum class BlockKind : std::uint8_t { Operations = 0x00, Hello = 0x40, Goodbye = 0x80 };
enum class AnswerKind : std::uint8_t { Done = 0x00, Welcome = 0x40, Trouble = 0x80, None = 0xC0 };
inline constexpr std::uint8_t kKindBits = 0xC0;
inline constexpr std::uint8_t kSequenceBits = 0x3F;

/// Why an adapter has switched off.
enum class SwitchOffCause : std::uint8_t {
  SwitchedOn = 1,  // power-up or reset
  Broken = 2,      // a block that was not right in every respect
  Stopped = 3,
  Silent = 4,  // nothing on the line for 500 ms
  Ended = 5,
  Foreign = 6,  // the hello was of another protocol version
};

// Operations; in the first four the low half is a control byte.
inline constexpr std::uint8_t kOpWriteControl = 0x00;
inline constexpr std::uint8_t kOpControlAndRead = 0x10;
inline constexpr std::uint8_t kOpLoadLatch = 0x20;
inline constexpr std::uint8_t kOpLoadLatchFast = 0x30;
inline constexpr std::uint8_t kOpWriteData = 0x40;
inline constexpr std::uint8_t kOpReadStatus = 0x41;
inline constexpr std::uint8_t kOpWaitFewCounts = 0x42;
inline constexpr std::uint8_t kOpWaitCounts = 0x43;
inline constexpr std::uint8_t kOpWaitMilliseconds = 0x44;
inline constexpr std::uint8_t kOpLoadDelay = 0x45;

inline constexpr std::uint8_t kLongestWaitMs = 64;
inline constexpr std::int64_t kCountNs = 25;
inline constexpr std::int64_t kCountsPerMs = 40'000;

}  // namespace kestrel::link
