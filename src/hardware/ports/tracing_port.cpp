#include "hardware/ports/tracing_port.h"

#include <array>
#include <charconv>
#include <ostream>
#include <string_view>

namespace kestrel::ports {
namespace {

constexpr std::string_view kHexDigits = "0123456789ABCDEF";

// One line, put together in place: a line inside a pulse must not cost an allocation.
class Line {
 public:
  explicit Line(std::string_view event) { append(event); }

  Line& hex(unsigned value, unsigned digits) {
    while (digits < 4 && value >> (4 * digits) != 0) ++digits;
    while (digits-- > 0) append(kHexDigits.substr((value >> (4 * digits)) & 0xFU, 1));
    return *this;
  }

  Line& decimal(std::int64_t value) {
    const auto result = std::to_chars(end_, text_.data() + text_.size(), value);
    end_ = result.ptr;
    return *this;
  }

  Line& blank() {
    append(" ");
    return *this;
  }

  void writeTo(std::ostream& stream) {
    append("\n");
    stream.write(text_.data(), end_ - text_.data());
  }

 private:
  void append(std::string_view part) { end_ += part.copy(end_, part.size()); }

  std::array<char, 40> text_;  // the longest: "spin " and 20 characters
  char* end_ = text_.data();
};

std::uint16_t asPortNumber(std::int16_t port) { return static_cast<std::uint16_t>(port); }

}  // namespace

TracingPort::TracingPort(PortAccess& port, Waits& waits, std::ostream& trace)
    : port_(port), waits_(waits), trace_(trace) {}

void TracingPort::PortOut(std::int16_t port, std::uint8_t value) {
  Line("out ").hex(asPortNumber(port), 1).blank().hex(value, 2).writeTo(trace_);
  port_.PortOut(port, value);
}

std::uint8_t TracingPort::PortIn(std::int16_t port) {
  const std::uint8_t value = port_.PortIn(port);
  Line("in ").hex(asPortNumber(port), 1).blank().hex(value, 2).writeTo(trace_);
  return value;
}

void TracingPort::Sleep(std::int32_t milliseconds) {
  if (milliseconds > 0) Line("sleep ").decimal(milliseconds).writeTo(trace_);
  waits_.Sleep(milliseconds);
}

void TracingPort::Spin(std::int64_t counts) {
  if (counts > 0) Line("spin ").decimal(counts).writeTo(trace_);
  waits_.Spin(counts);
}

}  // namespace kestrel::ports
