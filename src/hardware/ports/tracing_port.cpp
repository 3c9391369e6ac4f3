#include "hardware/ports/tracing_port.h"

#include <array>
#include <charconv>
#include <ostream>
#include <string_view>
#include <utility>

namespace kestrel::ports {
namespace {

constexpr std::string_view kHexDigits = "0123456789ABCDEF";

// One line, put together in place: a line inside a pulse must not cost an allocation.
class Line {
 public:
  explicit Line(std::string_view event) { append(event); }
  Line(const Line&) = delete;  // its end points into itself
  Line& operator=(const Line&) = delete;

  Line& access(std::int16_t port, std::uint8_t value) {
    return hex(static_cast<std::uint16_t>(port), 1).blank().hex(value, 2);
  }

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

  [[nodiscard]] std::string_view ended() {
    append("\n");
    return {text_.data(), static_cast<std::size_t>(end_ - text_.data())};
  }

 private:
  void append(std::string_view part) { end_ += part.copy(end_, part.size()); }

  std::array<char, 40> text_;  // the longest: "spin " and 20 characters
  char* end_ = text_.data();
};

}  // namespace

TracingPort::TracingPort(PortAccess& port, Waits& waits, std::ostream& trace)
    : port_(port), waits_(waits), trace_(trace) {}

TracingPort::~TracingPort() { writeHeldBack(); }

void TracingPort::PortOut(std::int16_t port, std::uint8_t value) {
  write(Line("out ").access(port, value).ended());
  port_.PortOut(port, value);
}

std::uint8_t TracingPort::PortIn(std::int16_t port) {
  const std::uint8_t value = port_.PortIn(port);
  writeHeldBack();
  write(Line("in ").access(port, value).ended());
  return value;
}

PendingRead TracingPort::askPortIn(std::int16_t port) {
  const PendingRead pending = port_.askPortIn(port);
  if (pending.isHere) {
    write(Line("in ").access(port, static_cast<std::uint8_t>(pending.number)).ended());
  } else {
    heldBack_.push_back({.text = {}, .isUnanswered = true, .read = pending.number});
  }
  return pending;
}

// Reads are fetched in the order of their asking: one that is unanswered before this one was given
// up.
std::uint8_t TracingPort::awaitPortIn(std::int16_t port, PendingRead pending) {
  const std::uint8_t value = port_.fetchPortIn(port, pending);
  bool isWritten = false;
  while (!heldBack_.empty() && !(isWritten && heldBack_.front().isUnanswered)) {
    const HeldBack first = std::move(heldBack_.front());
    heldBack_.pop_front();
    trace_ << first.text;
    if (!first.isUnanswered || first.read != pending.number) continue;
    trace_ << Line("in ").access(port, value).ended();
    isWritten = true;
  }
  return value;
}

void TracingPort::write(std::string_view line) {
  if (heldBack_.empty()) {
    trace_.write(line.data(), static_cast<std::streamsize>(line.size()));
  } else {
    heldBack_.push_back({.text = std::string(line)});
  }
}

// What is unanswered now will never be answered.
void TracingPort::writeHeldBack() {
  for (const HeldBack& each : heldBack_) trace_ << each.text;
  heldBack_.clear();
}

void TracingPort::Sleep(std::int32_t milliseconds) {
  if (milliseconds > 0) write(Line("sleep ").decimal(milliseconds).ended());
  waits_.Sleep(milliseconds);
}

void TracingPort::Spin(std::int64_t counts) {
  if (counts > 0) write(Line("spin ").decimal(counts).ended());
  waits_.Spin(counts);
}

}  // namespace kestrel::ports
