#include "hardware/ports/lpt_filter.h"

#include <algorithm>
#include <stdexcept>

namespace kestrel::ports {
namespace {

std::size_t indexOf(std::uint16_t base) {
  const auto* const found = std::find(kLptBases.begin(), kLptBases.end(), base);
  if (found == kLptBases.end()) throw std::invalid_argument("not a printer port base");
  return static_cast<std::size_t>(found - kLptBases.begin());
}

}  // namespace

void LptFilter::connect(std::uint16_t base, PortAccess& port, Waits* time) {
  const std::size_t slot = indexOf(base);
  ports_[slot] = &port;
  times_[slot] = time;
}

void LptFilter::disconnect(std::uint16_t base) {
  const std::size_t slot = indexOf(base);
  ports_[slot] = &none_;
  times_[slot] = nullptr;
}

}  // namespace kestrel::ports
