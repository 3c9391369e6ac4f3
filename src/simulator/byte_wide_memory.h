#pragma once

#include <cstdint>
#include <span>
#include <string_view>

#include "simulator/chip.h"
#include "simulator/damage.h"

namespace kestrel::sim {

// What all electrically written memories with /CE, /OE and /WE have in common.
//
//   mode        /CE   /OE   /WE
//   read        low   low   high
//   write       low   high  low     address: later falling edge of /CE and /WE
//                                   data: earlier rising edge of the two
//   inhibited   low   low   low     and a strobe that stands already when the power comes
//
// Not modelled: access times, the delay of some milliseconds after power-on before the first write.

/// The pins of a part, by their own numbers; address and data from bit 0.
struct ByteWidePinout {
  std::span<const std::uint8_t> address;
  std::span<const std::uint8_t> data;
  PinLevels ce = 0;
  PinLevels oe = 0;
  PinLevels we = 0;
  PinLevels vcc = 0;
  PinLevels vpp = 0;  ///< 0 where the part has none
};

class ByteWideMemory : public Chip {
 public:
  PinOutput evaluate(const PinInput& pins, Findings& findings) final;
  [[nodiscard]] bool isDamaged() const final { return damage_.isDamaged(); }

 protected:
  /// One write strobe that the part took.
  struct Strobe {
    std::uint32_t address = 0;
    std::uint8_t data = 0;
    Nanoseconds begin = 0;
    Nanoseconds end = 0;
  };

  ByteWideMemory(std::string_view typeName, Package package, std::size_t sizeBytes,
                 const ByteWidePinout& pins);

  /// Brings about what time does by itself, up to now.
  virtual void settle(Nanoseconds now) = 0;

  /// When settle has something to do next; kNever at rest.
  [[nodiscard]] virtual Nanoseconds busyUntil() const = 0;

  /// A write strobe begins. False if the part is busy: the byte is lost.
  virtual bool beginWrite() = 0;

  virtual void endWrite(const Strobe& strobe, Findings& findings) = 0;

  /// What stands on the VPP pin, before the strobes of the same call; millivolts 0 = no VPP.
  virtual void followVpp(int /*millivolts*/, Nanoseconds /*now*/, Findings& /*findings*/) {}

  /// What an address shows. `toggle` changes from one read to the next.
  [[nodiscard]] virtual std::uint8_t read(std::uint32_t address, bool toggle) const = 0;

  /// The supply is gone: all but the cells is forgotten.
  virtual void losePower() = 0;

 private:
  void followStrobe(const PinInput& pins, Findings& findings);
  void beginStrobe(const PinInput& pins, Findings& findings);

  ByteWidePinout pins_;
  PinBus address_;
  PinBus data_;
  Damage damage_;
  bool powered_ = false;
  bool strobed_ = false;   // /CE and /WE are low
  bool inhibited_ = true;  // no strobe, or one that writes nothing
  Strobe strobe_;
  std::uint8_t standingData_ = 0;  // on the data pins since the last call
  bool reading_ = false;
  bool toggle_ = false;
};

}  // namespace kestrel::sim
