#pragma once

#include <cstdint>
#include <deque>
#include <string>

#include "link/byte_line.h"
#include "link/emulated_adapter.h"

namespace kestrel::test {

/// The line between a program and an emulated adapter, both in this process. The program's own work
/// takes no time; the adapter runs while the program reads. `latency` is what a round trip takes
/// beside the bytes themselves.
class EmulatedLine final : public link::ByteLine {
 public:
  explicit EmulatedLine(EmulatedAdapter& adapter, EmulatedAdapter::Cycles latency = 0);

  void write(std::span<const std::uint8_t> bytes) override;
  [[nodiscard]] std::size_t read(std::span<std::uint8_t> bytes,
                                 std::chrono::milliseconds limit) override;
  void writeUrgently(std::uint8_t value) noexcept override;
  [[nodiscard]] const std::string& name() const override { return name_; }

  /// The next byte that is written arrives with these bits turned over.
  void damageNextByte(std::uint8_t bits) { damage_ = bits; }

 private:
  struct Arrived {
    std::uint8_t value;
    EmulatedAdapter::Cycles at;
  };

  [[nodiscard]] bool hasByte() const {
    return !arrived_.empty() && arrived_.front().at <= adapter_.now();
  }

  EmulatedAdapter& adapter_;
  EmulatedAdapter::Cycles latency_;
  std::deque<Arrived> arrived_;
  std::uint8_t damage_ = 0;
  std::string name_ = "emulated adapter";
};

}  // namespace kestrel::test
