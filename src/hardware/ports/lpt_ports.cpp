#include "hardware/ports/lpt_ports.h"

#include <algorithm>
#include <stdexcept>

namespace kestrel {
namespace {

std::size_t indexOf(std::uint16_t base) {
  const auto* const found = std::find(kLptBases.begin(), kLptBases.end(), base);
  if (found == kLptBases.end()) throw std::invalid_argument("not a printer port base");
  return static_cast<std::size_t>(found - kLptBases.begin());
}

}  // namespace

void LptPorts::connect(std::uint16_t base, PortAccess& port) { ports_[indexOf(base)] = &port; }

void LptPorts::disconnect(std::uint16_t base) { ports_[indexOf(base)] = &none_; }

}  // namespace kestrel
