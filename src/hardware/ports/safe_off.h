#pragma once

#include <array>
#include <cstdint>

namespace kestrel::ports {

enum class PortRegister : std::uint8_t { Data, Status, Control, None };

/// Bits 0 to 3 of the control register are lines. Bit 5 would turn the data lines round, bit 4 let
/// the port interrupt.
inline constexpr std::uint8_t kControlLines = 0x0F;

struct PortWrite {
  PortRegister target;
  std::uint8_t value;
};

// What switches every voltage off while the model is not known: latch 0 = 40h.
//
//                          models 5, 6                  model 4
//   control 05h 04h 05h    loads latch 0                addresses no latch
//   control 0Ah 0Bh 0Ah    addresses no latch           loads latch 0
//
// Each code is the other family's inverted, and 2, its address there, chooses none.
inline constexpr std::array<PortWrite, 7> kSafeOff{{
    {PortRegister::Data, 0x40},
    {PortRegister::Control, 0x05},
    {PortRegister::Control, 0x04},
    {PortRegister::Control, 0x05},
    {PortRegister::Control, 0x0A},
    {PortRegister::Control, 0x0B},
    {PortRegister::Control, 0x0A},
}};

}  // namespace kestrel::ports
