#pragma once

#include <string>

#include "link/byte_line.h"

namespace kestrel::link {

/// A serial device of this machine: 1 Mbaud, 8 data bits, no parity, raw, for this program alone.
///
/// Opening one resets most boards, since it raises DTR; the adapter's answer then comes late.
/// Closing does not lower DTR, so that the end of the program resets nothing.
class SerialLine final : public ByteLine {
 public:
  /// Throws LinkError.
  explicit SerialLine(const std::string& device);
  ~SerialLine() override;
  SerialLine(const SerialLine&) = delete;
  SerialLine& operator=(const SerialLine&) = delete;

  void write(std::span<const std::uint8_t> bytes) override;
  [[nodiscard]] std::size_t read(std::span<std::uint8_t> bytes,
                                 std::chrono::milliseconds limit) override;
  void writeUrgently(std::uint8_t value) noexcept override;
  [[nodiscard]] const std::string& name() const override { return device_; }

 private:
  void takeAlone();
  void setUp();
  [[nodiscard]] bool waitFor(short events, std::chrono::milliseconds limit);
  [[noreturn]] void failGone() const;

  std::string device_;
  int descriptor_ = -1;
};

}  // namespace kestrel::link
