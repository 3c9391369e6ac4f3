#pragma once

#include <cstdint>

#include "hardware/ports/safe_off.h"

namespace kestrel::ports {

/// Follows from the writes to a port what latch 0 of the board was last loaded with, and so whether
/// a programming voltage is on. It need not know the model:
///
///                   idle   strobe
///   models 5, 6      05h      04h    on model 4, 05h is never written before 04h
///   model 4          0Ah      0Bh    codes that models 5 and 6 never see
///
/// The latch is loaded by what stands on the data lines while its strobe, set from its idle code,
/// is active. Bits of latch 0: 7, 5, 4 put the voltage on a pin; on model 4 bit 2 makes it.
class Latch0Follower {
 public:
  enum class Load : std::uint8_t { None, WithoutVoltage, WithVoltage };

  /// What a write, which may not have reached the board yet, loads into latch 0.
  Load follow(PortRegister target, std::uint8_t value) noexcept {
    if (target == PortRegister::Data) data_ = value;
    if (target == PortRegister::Control) strobe(value & kControlLines);
    if (!isOpen_) return Load::None;
    return (data_ & kVoltages) != 0 ? Load::WithVoltage : Load::WithoutVoltage;
  }

 private:
  static constexpr std::uint8_t kVoltages = 0xB4;

  void strobe(std::uint8_t code) noexcept {
    const unsigned change = static_cast<unsigned>(control_) << 8U | code;
    isOpen_ = change == 0x0504 || change == 0x0A0B || (isOpen_ && code == control_);
    control_ = code;
  }

  std::uint8_t data_ = 0;
  std::uint8_t control_ = 0;
  bool isOpen_ = false;
};

}  // namespace kestrel::ports
