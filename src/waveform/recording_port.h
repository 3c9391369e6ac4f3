#pragma once

#include <cstdint>
#include <functional>
#include <iosfwd>
#include <optional>
#include <string_view>

#include "app/state/programmer_state.h"
#include "devices/chip_pins.h"
#include "platform/port_access.h"
#include "waveform/socket_signals.h"
#include "waveform/vcd_writer.h"

namespace kestrel::waveform {

/// Passes all accesses on, and while it records writes what they do to the socket into a wave file.
///
/// It knows the latches from what is written and the data lines from what is read; a line that a
/// chip drives and nobody reads is unknown. SDA of a serial chip that was read while the clock was
/// high is shown so from before the rise of the clock, as it was for the chip.
class RecordingPort final : public PortAccess {
 public:
  using Nanoseconds = std::function<std::int64_t()>;

  /// `now` is the time of the port: the board's own on a simulated one. All outlive the recording.
  RecordingPort(PortAccess& port, Nanoseconds now);
  ~RecordingPort() override;
  RecordingPort(const RecordingPort&) = delete;
  RecordingPort& operator=(const RecordingPort&) = delete;

  /// Records from now on. The latches are as the shadows say; the port and the codes of the model
  /// are those of the state, also when they change.
  void start(std::ostream& out, const devices::ChipPins& pinout, std::string_view device,
             const PortState& port, const LatchState& latches);
  /// Ends the record; the bytes written. The stream tells whether all could be.
  std::uint64_t stop();
  [[nodiscard]] bool isRecording() const { return record_.has_value(); }

  void PortOut(std::int16_t port, std::uint8_t value) override {
    if (!record_) return port_.PortOut(port, value);
    recordOut(port, value);
  }
  [[nodiscard]] std::uint8_t PortIn(std::int16_t port) override;
  // While it records it wants each byte at its time, though that takes longer through an adapter.
  [[nodiscard]] PendingRead askPortIn(std::int16_t port) override {
    return record_ ? PortAccess::askPortIn(port) : port_.askPortIn(port);
  }

 private:
  [[nodiscard]] std::uint8_t awaitPortIn(std::int16_t port, PendingRead pending) override {
    return port_.fetchPortIn(port, pending);
  }

  static constexpr std::size_t kLatches = std::tuple_size_v<Latches>;

  struct Record {
    Record(std::ostream& out, const devices::ChipPins& pinout, const PortState& portState,
           const LatchState& latchState);

    VcdWriter writer;
    SocketSignals socket;
    const PortState& port;
    const LatchState& decode;
    std::int64_t startNs = 0;
    std::uint8_t data = 0;
    std::uint8_t control = 0;
    std::uint8_t first = 0;                 // the status byte of the half that was read last
    std::size_t open = kLatches;            // the latch that is transparent; kLatches: none
    bool sda = true;                        // of a serial chip, when nobody drives it here
    std::optional<std::int64_t> clockRise;  // of a serial chip; what SDA is then is not known yet
  };

  void recordOut(std::int16_t port, std::uint8_t value);
  void written(std::int16_t port, std::uint8_t value);
  void read(std::uint8_t status);
  void load();
  void loadSerial();
  void showSda(bool high);
  void settleClock();
  [[nodiscard]] std::int64_t tick() const;

  PortAccess& port_;
  Nanoseconds now_;
  std::optional<Record> record_;
};

}  // namespace kestrel::waveform
