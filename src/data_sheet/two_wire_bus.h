#pragma once

#include <cstdint>
#include <span>
#include <vector>

#include "hardware/chip_bus.h"

namespace kestrel::data_sheet {

/// The two wires of a serial EEPROM: SCL is the /CE line, SDA is D7.
///
/// SDA is driven low or left to its pull-up, as on any such bus, so that nobody drives against the
/// chip, and never moves in one latch load with SCL. Between two edges of SCL are at least 5 us:
/// 100 kHz, which every part takes (low 4.7 us, high 4 us).
class TwoWireBus {
 public:
  explicit TwoWireBus(hardware::ChipBus& bus) : bus_(bus) {}

  /// Whether SDA is high when nobody pulls it low; SCL is low before and after it.
  [[nodiscard]] bool isSdaFree();

  void start();
  void stop();

  /// A byte, and the clock for its acknowledge; isAcknowledged() tells what came.
  void send(std::uint8_t byte);

  /// Whether every byte since the last call was. They are fetched here: over a link a page is one
  /// round trip.
  [[nodiscard]] bool isAcknowledged();

  /// Bytes from the chip, all acknowledged but the last one.
  void receive(std::span<std::uint8_t> bytes);

 private:
  void setSda(bool high);
  void raiseClock();
  void lowerClock();
  void clockOut(bool bit);
  [[nodiscard]] PendingRead clockIn();
  [[nodiscard]] bool fetch(const PendingRead& pending);

  hardware::ChipBus& bus_;
  std::vector<PendingRead> acknowledges_;
};

}  // namespace kestrel::data_sheet
