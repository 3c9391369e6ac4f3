#pragma once

#include <cstdint>
#include <iosfwd>
#include <string>

#include "platform/port_access.h"
#include "platform/waits.h"

namespace kestrel::ports {

/// Records what the procedures ask of the port and the clock, one event a line:
///
///   out 378 5A     write: port and byte in upper-case hex, the byte with two digits
///   in 379 78      read: port and the byte that came back
///   spin 12        busy loop, in counts
///   sleep 500      wait, in milliseconds
///
/// A loop of no counts and a wait of no time pass no time and leave no line. A line is written
/// before the event, so that the last line names what a failure ended; a read's line has its
/// answer and therefore comes after. The stream is not flushed, nothing is allocated.
class TracingPort final : public PortAccess, public Waits {
 public:
  /// All three outlive the trace.
  TracingPort(PortAccess& port, Waits& waits, std::ostream& trace);

  void PortOut(std::int16_t port, std::uint8_t value) override;
  [[nodiscard]] std::uint8_t PortIn(std::int16_t port) override;
  void Sleep(std::int32_t milliseconds) override;
  void Spin(std::int64_t counts) override;

 private:
  PortAccess& port_;
  Waits& waits_;
  std::ostream& trace_;
};

}  // namespace kestrel::ports
