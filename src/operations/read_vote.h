#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <vector>

namespace kestrel::operations {

/// Several reads of the same bytes: each byte is what was read most often, of equals the one that
/// was read first.
class ReadVote {
 public:
  /// All reads are of one length.
  void add(std::span<const std::uint8_t> read) { reads_.emplace_back(read.begin(), read.end()); }

  [[nodiscard]] std::vector<std::uint8_t> majority() const;

  /// The addresses that did not read the same each time.
  [[nodiscard]] std::vector<std::size_t> unstable() const;

  /// Every read of an address, such as "5A 5B 5A".
  [[nodiscard]] std::string readsAt(std::size_t address) const;

 private:
  [[nodiscard]] std::uint8_t majorityAt(std::size_t address) const;

  std::vector<std::vector<std::uint8_t>> reads_;
};

}  // namespace kestrel::operations
