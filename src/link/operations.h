#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

namespace kestrel::link {

/// One thing that the program asked of the port or of its clock.
struct Operation {
  enum class Kind : std::uint8_t { Data, Control, Read, Wait };
  Kind kind{};
  std::uint8_t value = 0;   // of a write; control bytes have four bits
  std::int64_t counts = 0;  // of a wait, 25 ns each
};

/// Operations as an adapter takes them.
struct EncodedOperations {
  std::vector<std::uint8_t> bytes;
  std::size_t reads = 0;        // status bytes that they give
  std::int64_t waitCounts = 0;  // all waits together, those in the latch loads too
};

/// Encodes operations as they come, in their order.
///
/// What the program does to load a latch (data, idle code, delay, strobe code, idle code) becomes
/// one operation of two bytes; the strobe code is the idle code with bit 0 turned over. The delay
/// stands in the adapter from block to block, so the encoder remembers which one it has sent.
class OperationEncoder {
 public:
  void add(const Operation& operation);

  [[nodiscard]] bool isEmpty() const { return encoded_.bytes.empty() && ahead_.empty(); }
  [[nodiscard]] std::size_t reads() const { return reads_; }

  /// No more bytes than this, with one more operation added.
  [[nodiscard]] std::size_t sizeWithOneMore() const;

  /// Everything that was added since the last take.
  [[nodiscard]] EncodedOperations take();

 private:
  void encodeFirst();

  EncodedOperations encoded_;
  std::vector<Operation> ahead_;  // not encoded yet: they may begin a latch load
  std::size_t reads_ = 0;
  std::int64_t sentDelayCounts_ = 0;
};

}  // namespace kestrel::link
