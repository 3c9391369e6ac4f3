#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <span>
#include <string_view>

#include "simulator/chip.h"
#include "simulator/damage.h"

namespace kestrel::sim {

// Serial memories 24Cxx on two wires. They act on edges of SCL and SDA alone.
//
//   pin 1-3   E0-E2           pin 5   SDA, open drain
//   pin 4     GND             pin 6   SCL
//   pin 8     VCC             pin 7   WP: high = acknowledges, but writes nothing
//
// START and STOP are edges of SDA while SCL is high; a bit is taken with the rising edge of SCL,
// and the memory moves SDA after the falling one. Select byte 1010 b b b r:
//
//   24C08   E2 P1 P0   P = block of 256 bytes, E = must be as the pin stands
//   24C16   P2 P1 P0
//   24C32   E2 E1 E0   two address bytes follow; so on the larger ones
//
// A write wraps inside its page; STOP after a whole byte begins the write cycle, in which no select
// is acknowledged. Reads run on and wrap at the end of the memory until one is not acknowledged.
// The block bits of a select for reading replace those of the address counter (not verified on
// hardware). Not modelled: set-up and hold times, the shortest clock, glitch filters.

/// One part of the family.
struct SerialEepromType {
  std::string_view name;
  std::uint32_t sizeBytes = 0;
  std::uint32_t pageBytes = 0;  ///< at most 64
  unsigned blockBits = 0;       ///< of b b b: they are part of the address
  unsigned pinBits = 0;         ///< of b b b: they have to match E2-E0
  int addressBytes = 1;
};

[[nodiscard]] std::span<const SerialEepromType> serialEepromTypes();

class SerialEeprom final : public Chip {
 public:
  explicit SerialEeprom(const SerialEepromType& type);

  PinOutput evaluate(const PinInput& pins, Findings& findings) override;

  [[nodiscard]] bool isDamaged() const override { return damage_.isDamaged(); }
  [[nodiscard]] ChipSettings settings() const override;
  void apply(const ChipSettings& settings) override;

 protected:
  void contentsReplaced() override { writeEnds_ = kNever; }

 private:
  enum class Phase { idle, select, addressHigh, addressLow, data, send };

  void settle(Nanoseconds now);
  void losePower();
  void start();
  void stop(const PinInput& pins);
  void clockRises();
  void clockFalls(const PinInput& pins);
  [[nodiscard]] bool acceptByte(PinLevels high);
  [[nodiscard]] bool acceptSelect(PinLevels high);
  void keepData();
  void sendNext();

  SerialEepromType type_;
  Damage damage_;
  Nanoseconds writeCycle_;
  bool writeProtected_ = false;  // WP is tied high on the chip itself
  bool neverEnds_ = false;
  std::optional<std::uint64_t> acknowledgesLeft_;

  bool powered_ = false;
  bool scl_ = false;  // the lines as they stood, SDA with the memory's own drive
  bool sda_ = false;
  bool pullsSdaLow_ = false;

  Phase phase_ = Phase::idle;
  int clocks_ = 0;  // rising edges since the byte began; the ninth is that of the acknowledge
  std::uint8_t shift_ = 0;
  bool acknowledged_ = false;  // by the reader
  std::uint32_t address_ = 0;
  std::array<std::uint8_t, 64> page_{};
  std::uint64_t loaded_ = 0;        // bit n: page_[n] was sent
  Nanoseconds writeEnds_ = kNever;  // kNever: no write cycle
};

}  // namespace kestrel::sim
