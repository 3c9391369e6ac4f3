#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "devices/chip_pins.h"
#include "waveform/vcd_writer.h"

namespace kestrel::waveform {

/// The contents of the five latches.
using Latches = std::array<std::uint8_t, 5>;

/// The signals of the socket with one chip in it: its pins by their names, address and data with
/// who drives them, the programming voltage, the latches.
class SocketSignals {
 public:
  /// Declares the signals of the chip. The writer outlives them.
  SocketSignals(VcdWriter& writer, const devices::ChipPins& pinout);

  /// What the latches put on the pins; `model` decides about the voltage.
  void show(const Latches& latches, int model);

  /// The byte that was read from the data lines.
  void showRead(std::uint8_t byte);

  /// The level of SDA that the chip decides, on a serial chip; 1 = released.
  void showSda(bool high);

  [[nodiscard]] bool isSerial() const { return isSerial_; }
  /// The level of the clock of a serial chip.
  [[nodiscard]] static bool clockOf(const Latches& latches);
  /// True when latch 4 drives the data lines.
  [[nodiscard]] static bool isDriven(const Latches& latches);

 private:
  struct Pin {
    int socketPin = 0;
    VcdWriter::Signal signal = 0;
  };

  void declarePins(const devices::ChipPins& pinout);
  void showPins(std::uint32_t levels);
  void showData(const Latches& latches, std::uint32_t levels);
  void setData(std::string_view digits);
  void setData(std::uint8_t byte);
  [[nodiscard]] bool doesChipDrive(std::uint32_t levels, std::uint32_t vpp) const;

  VcdWriter& writer_;
  std::vector<Pin> pins_;         // but for the data lines
  std::vector<int> addressPins_;  // socket pins, A0 first
  std::array<std::optional<VcdWriter::Signal>, 8> dataLines_;
  std::array<VcdWriter::Signal, 5> latchSignals_{};
  VcdWriter::Signal address_ = 0;
  VcdWriter::Signal data_ = 0;
  VcdWriter::Signal latchDrives_ = 0;
  VcdWriter::Signal chipDrives_ = 0;
  VcdWriter::Signal vpp_ = 0;
  std::uint32_t chipEnable_ = 0;  // masks of socket pins
  std::uint32_t outputEnable_ = 0;
  std::uint32_t writeEnable_ = 0;
  bool isSerial_ = false;
};

}  // namespace kestrel::waveform
