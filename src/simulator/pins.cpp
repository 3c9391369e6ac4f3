#include "simulator/pins.h"

namespace kestrel::sim {

PinBus::PinBus(std::span<const std::uint8_t> pins) {
  for (std::size_t bit = 0; bit < pins.size(); ++bit) {
    const PinLevels own = pin(pins[bit]);
    mask_ |= own;
    for (std::size_t byte = 0; byte < gather_.size(); ++byte) {
      for (std::uint32_t value = 0; value < 256; ++value) {
        if ((value << (8 * byte) & own) != 0) gather_[byte][value] |= 1U << bit;
      }
    }
    if (bit >= 8) continue;
    for (std::uint32_t value = 0; value < 256; ++value) {
      if ((value >> bit & 1U) != 0) scatter_[value] |= own;
    }
  }
}

}  // namespace kestrel::sim
