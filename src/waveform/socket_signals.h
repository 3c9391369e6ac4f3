#pragma once

#include <array>
#include <cstdint>
#include <string>
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
  SocketSignals(VcdWriter& writer, const devices::ChipPins& pinout, const Latches& latches);

  /// What a latch holds.
  [[nodiscard]] std::uint8_t latch(std::size_t index) const { return latches_[index]; }
  /// A latch takes another byte; show() writes what that changes.
  void load(std::size_t latch, std::uint8_t byte);

  /// What the latches put on the pins; `model` decides about the voltage.
  void show(int model);

  /// The byte that was read from the data lines.
  void showRead(std::uint8_t byte);

  /// The level of SDA that the chip decides, on a serial chip; 1 = released.
  void showSda(bool high);

  [[nodiscard]] bool isSerial() const { return isSerial_; }
  /// The level of the clock of a serial chip.
  [[nodiscard]] bool isClockHigh() const;
  /// True when latch 4 drives the data lines.
  [[nodiscard]] bool isDriven() const;

 private:
  /// Some pins of the chip: their lines, a bit each, and those of them that are address lines.
  struct Pins {
    std::uint32_t lines = 0;    // the last pin of the chip in bit 0; no data lines
    std::uint32_t address = 0;  // A0 in bit 0

    friend Pins operator|(Pins a, Pins b) { return {a.lines | b.lines, a.address | b.address}; }
    friend Pins operator^(Pins a, Pins b) { return {a.lines ^ b.lines, a.address ^ b.address}; }
  };

  void declarePins(const devices::ChipPins& pinout);
  void declareBus();
  void takeSources();
  void takeVoltage(int model);
  void showBus(Pins pins);
  void setData(std::uint8_t byte) { writer_.set(dataGroup_, {.bits = dataLevels_[byte]}); }
  [[nodiscard]] bool doesChipDrive(std::uint32_t lines) const;

  VcdWriter& writer_;
  Latches latches_{};
  std::uint64_t allLatches_ = 0;                       // latch 4 in the lowest byte
  std::array<std::array<Pins, 256>, 5> reached_{};     // by a latch and some of its bits
  std::array<Pins, devices::kSocketPins + 1> pins_{};  // what stands in each socket pin
  Pins high_;                                          // by the latches and the supply
  Pins vpp_;                                           // those with the programming voltage
  double volts_ = 0;
  int latch0_ = -1;  // the one that the voltage was worked out for, and the model
  int model_ = 0;
  std::uint32_t enable_ = 0;  // lines: /CE and /OE
  std::uint32_t outputEnable_ = 0;
  std::uint32_t writeEnable_ = 0;
  bool isSerial_ = false;

  std::vector<VcdWriter::Line> dataLines_;       // pins of the chip, D0 first
  std::array<std::uint16_t, 256> dataLevels_{};  // of a byte on the data lines of a parallel chip
  std::size_t addressWidth_ = 0;
  VcdWriter::Group pinGroup_ = 0;
  VcdWriter::Group latchGroup_ = 0;    // and whether latch 4 drives
  VcdWriter::Group addressGroup_ = 0;  // and whether the chip drives
  VcdWriter::Group dataGroup_ = 0;
  VcdWriter::Line voltage_ = 0;
};

}  // namespace kestrel::waveform
