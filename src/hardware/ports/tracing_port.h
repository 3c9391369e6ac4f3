#pragma once

#include <cstdint>
#include <deque>
#include <iosfwd>
#include <string>
#include <string_view>

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
///
/// Behind a read that is fetched later the lines wait for its answer, so that they stand in the
/// order of the calls. A stop may leave such a read unfetched: its line is left out.
class TracingPort final : public PortAccess, public Waits {
 public:
  /// All three outlive the trace.
  TracingPort(PortAccess& port, Waits& waits, std::ostream& trace);
  ~TracingPort() override;
  TracingPort(const TracingPort&) = delete;
  TracingPort& operator=(const TracingPort&) = delete;

  void PortOut(std::int16_t port, std::uint8_t value) override;
  [[nodiscard]] std::uint8_t PortIn(std::int16_t port) override;
  [[nodiscard]] PendingRead askPortIn(std::int16_t port) override;
  void Sleep(std::int32_t milliseconds) override;
  void Spin(std::int64_t counts) override;

 private:
  struct HeldBack {
    std::string text;
    bool isUnanswered = false;
    std::uint64_t read = 0;
  };

  [[nodiscard]] std::uint8_t awaitPortIn(std::int16_t port, PendingRead pending) override;
  void write(std::string_view line);
  void writeHeldBack();

  PortAccess& port_;
  Waits& waits_;
  std::ostream& trace_;
  std::deque<HeldBack> heldBack_;
};

}  // namespace kestrel::ports
