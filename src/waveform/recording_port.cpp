#include "waveform/recording_port.h"

#include <utility>

namespace kestrel::waveform {
namespace {

constexpr int kModelWithOtherStatus = 4;
constexpr unsigned kUpperStatusBits = 0xF0;
constexpr std::uint8_t kSdaBit = 0x80;

Latches contentsOf(const LatchState& shadows) {
  const auto byte = [](std::int16_t shadow) { return static_cast<std::uint8_t>(shadow); };
  return {byte(shadows.RegShadow0), byte(shadows.RegShadow1), byte(shadows.RegShadow2),
          byte(shadows.RegShadow3), byte(shadows.RegShadow4)};
}

/// The latch whose strobe the control byte makes active; their number for none.
std::size_t latchOpenedBy(const std::array<std::int16_t, kLatchCount>& strobes, int control) {
  std::size_t open = strobes.size();
  for (std::size_t latch = 0; latch < strobes.size(); ++latch) {
    if (strobes[latch] == control) open = latch;
  }
  return open;
}

}  // namespace

RecordingPort::RecordingPort(PortAccess& port, Nanoseconds now)
    : port_(port), now_(std::move(now)) {}

RecordingPort::~RecordingPort() { (void)stop(); }

RecordingPort::Record::Record(std::ostream& out, const devices::ChipPins& pinout,
                              const PortState& portState, const LatchState& latchState)
    : writer(out),
      socket(writer, pinout, contentsOf(latchState)),
      port(portState),
      decode(latchState) {}

void RecordingPort::start(std::ostream& out, const devices::ChipPins& pinout,
                          std::string_view device, const PortState& port,
                          const LatchState& latches) {
  (void)stop();
  Record& record = record_.emplace(out, pinout, port, latches);
  record.writer.begin(device);
  record.startNs = now_();
  if (record.socket.isSerial()) record.socket.showSda(true);
  record.socket.show(port.KestrelModel);
}

std::uint64_t RecordingPort::stop() {
  if (!record_) return 0;
  settleClock();
  record_->writer.at(tick());
  record_->writer.finish();
  const std::uint64_t bytes = record_->writer.bytes();
  record_.reset();
  return bytes;
}

std::int64_t RecordingPort::tick() const {
  return (now_() - record_->startNs) / VcdWriter::kTickNs + 1;  // SDA may go one tick before
}

void RecordingPort::recordOut(std::int16_t port, std::uint8_t value) {
  port_.PortOut(port, value);
  written(port, value);
}

std::uint8_t RecordingPort::PortIn(std::int16_t port) {
  const std::uint8_t value = port_.PortIn(port);
  if (!record_) return value;
  if (port == record_->port.StatusPort) read(value);
  record_->writer.writeOut();  // no read stands inside a pulse or a page load
  return value;
}

// A latch is transparent as long as its strobe is active: it follows the data lines.
void RecordingPort::written(std::int16_t port, std::uint8_t value) {
  Record& record = *record_;
  if (port == record.port.PortBase) {
    record.data = value;
  } else if (port == record.port.ControlPort) {
    record.control = value;
    record.open = latchOpenedBy(record.port.CtlStrobe, value);
  }
  if (record.open == kLatches || record.socket.latch(record.open) == record.data) return;
  record.socket.isSerial() ? loadSerial() : load();
}

void RecordingPort::load() {
  Record& record = *record_;
  record.socket.load(record.open, record.data);
  record.writer.at(tick());
  record.socket.show(record.port.KestrelModel);
}

void RecordingPort::loadSerial() {
  settleClock();
  Record& record = *record_;
  const bool wasDriven = record.socket.isDriven();
  const bool wasHigh = record.socket.isClockHigh();
  record.socket.load(record.open, record.data);
  const bool isReleased = !record.socket.isDriven();
  if (isReleased && record.socket.isClockHigh() && !wasHigh) {
    record.clockRise = tick();
    return;
  }
  record.writer.at(tick());
  record.socket.show(record.port.KestrelModel);
  // The chip lets go of the line when the clock falls; what it does then shows when it is read.
  if (isReleased && (wasHigh || wasDriven)) showSda(true);
}

void RecordingPort::showSda(bool high) {
  record_->sda = high;
  record_->socket.showSda(high);
}

// The chip has put its bit on SDA before the clock went up.
void RecordingPort::settleClock() {
  Record& record = *record_;
  if (!record.clockRise) return;
  record.writer.at(*record.clockRise - 1);
  record.socket.showSda(record.sda);
  record.writer.at(*record.clockRise);
  record.socket.show(record.port.KestrelModel);
  record.clockRise.reset();
}

// The halves of the data lines, as GetNibbles decodes them.
void RecordingPort::read(std::uint8_t status) {
  Record& record = *record_;
  const PortState& port = record.port;
  if (record.control == port.NibbleSelA) {
    record.first = status;
    return;
  }
  if (record.control != port.NibbleSelB) return;
  const LatchState& decode = record.decode;
  const unsigned byte =
      port.KestrelModel == kModelWithOtherStatus
          ? decode.StatusDecode4.at((status & kUpperStatusBits) | (record.first >> 4U))
          : static_cast<unsigned>(decode.StatusDecodeHigh.at(status)) |
                decode.StatusDecodeLow.at(record.first);
  if (record.socket.isDriven()) return;
  if (record.socket.isSerial()) {
    record.sda = (byte & kSdaBit) != 0;
    if (!record.clockRise) record.writer.at(tick());
    record.clockRise ? settleClock() : record.socket.showSda(record.sda);
    return;
  }
  record.writer.at(tick());
  record.socket.showRead(static_cast<std::uint8_t>(byte));
}

}  // namespace kestrel::waveform
