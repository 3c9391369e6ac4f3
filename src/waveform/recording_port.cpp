#include "waveform/recording_port.h"

#include <utility>

namespace kestrel::waveform {
namespace {

constexpr int kModelWithOtherStatus = 4;
constexpr unsigned kUpperStatusBits = 0xF0;
constexpr std::uint8_t kSdaBit = 0x80;

}  // namespace

RecordingPort::RecordingPort(PortAccess& port, Nanoseconds now)
    : port_(port), now_(std::move(now)) {}

RecordingPort::~RecordingPort() { (void)stop(); }

RecordingPort::Record::Record(std::ostream& out, const devices::ChipPins& pinout,
                              const PortState& portState, const LatchState& latchState)
    : writer(out), socket(writer, pinout), port(portState), decode(latchState) {}

void RecordingPort::start(std::ostream& out, const devices::ChipPins& pinout,
                          std::string_view device, const PortState& port,
                          const LatchState& latches) {
  (void)stop();
  Record& record = record_.emplace(out, pinout, port, latches);
  const auto byte = [](std::int16_t shadow) { return static_cast<std::uint8_t>(shadow); };
  record.latches = {byte(latches.RegShadow0), byte(latches.RegShadow1), byte(latches.RegShadow2),
                    byte(latches.RegShadow3), byte(latches.RegShadow4)};
  record.writer.begin(device);
  record.startNs = now_();
  record.socket.showSda(true);
  record.socket.show(record.latches, port.KestrelModel);
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

void RecordingPort::PortOut(std::int16_t port, std::uint8_t value) {
  port_.PortOut(port, value);
  if (record_) written(port, value);
}

std::uint8_t RecordingPort::PortIn(std::int16_t port) {
  const std::uint8_t value = port_.PortIn(port);
  if (record_ && port == record_->port.StatusPort) read(value);
  return value;
}

// A latch is transparent as long as its strobe is active: it follows the data lines.
void RecordingPort::written(std::int16_t port, std::uint8_t value) {
  Record& record = *record_;
  if (port == record.port.PortBase) {
    record.data = value;
  } else if (port == record.port.ControlPort) {
    record.control = value;
    record.open = -1;
    for (std::size_t latch = 0; latch < record.latches.size(); ++latch) {
      if (record.port.CtlStrobe.at(latch) == value) record.open = static_cast<int>(latch);
    }
  } else {
    return;
  }
  if (record.open >= 0) load();
}

void RecordingPort::load() {
  Record& record = *record_;
  const auto latch = static_cast<std::size_t>(record.open);
  if (record.latches.at(latch) == record.data) return;
  settleClock();
  const Latches before = record.latches;
  record.latches.at(latch) = record.data;
  const bool isReleased = record.socket.isSerial() && !SocketSignals::isDriven(record.latches);
  const bool wasHigh = SocketSignals::clockOf(before);
  const bool isHigh = SocketSignals::clockOf(record.latches);
  if (isReleased && isHigh && !wasHigh) {
    record.clockRise = tick();
    return;
  }
  record.writer.at(tick());
  record.socket.show(record.latches, record.port.KestrelModel);
  // The chip lets go of the line when the clock falls; what it does then shows when it is read.
  if (isReleased && (wasHigh || SocketSignals::isDriven(before))) showSda(true);
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
  record.socket.show(record.latches, record.port.KestrelModel);
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
  if (SocketSignals::isDriven(record.latches)) return;
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
