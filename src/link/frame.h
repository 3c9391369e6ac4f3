#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <vector>

#include "link/protocol.h"

namespace kestrel::link {

/// A block as it goes over the line: start, head, length, contents, check value, with escapes.
[[nodiscard]] std::vector<std::uint8_t> frameBlock(BlockKind kind, unsigned sequence,
                                                   std::span<const std::uint8_t> contents);

/// An answer of the adapter.
struct Answer {
  AnswerKind kind{};
  unsigned sequence = 0;
  std::vector<std::uint8_t> contents;
};

/// Finds the answers in the bytes of the line. What is no answer, or has a wrong check value, is
/// passed over and counted.
class AnswerReader {
 public:
  /// Takes one byte; gives an answer when it was the last one of a right one.
  [[nodiscard]] std::optional<Answer> take(std::uint8_t value);

  /// Bytes outside answers and answers that were wrong.
  [[nodiscard]] std::size_t rejected() const { return rejected_; }

  /// As if nothing had been received, but for what was rejected.
  void restart();

 private:
  [[nodiscard]] bool isComplete() const;
  [[nodiscard]] std::optional<Answer> finish();

  std::vector<std::uint8_t> frame_;  // without start and escapes
  bool isInside_ = false;
  bool isEscaped_ = false;
  std::size_t rejected_ = 0;
};

}  // namespace kestrel::link
