#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <span>
#include <string>

namespace kestrel::link {

/// The bytes between the program and an adapter. Throws LinkError when the line is gone.
class ByteLine {
 public:
  virtual ~ByteLine() = default;

  /// Sends all of the bytes.
  virtual void write(std::span<const std::uint8_t> bytes) = 0;

  /// Waits for bytes and gives how many came; 0 when the time has passed without any.
  [[nodiscard]] virtual std::size_t read(std::span<std::uint8_t> bytes,
                                         std::chrono::milliseconds limit) = 0;

  /// Sends one byte before all that waits to be sent, which is thrown away. From any thread and
  /// from signal handlers.
  virtual void writeUrgently(std::uint8_t value) noexcept = 0;

  /// What it is called in messages: the name of the device.
  [[nodiscard]] virtual const std::string& name() const = 0;
};

}  // namespace kestrel::link
