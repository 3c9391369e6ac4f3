#include "simulator/vpp_supply.h"

#include "simulator/wiring.h"

namespace kestrel::sim {
namespace {

constexpr Nanoseconds kRiseTime = milliseconds(1000);

int levelOf(std::uint8_t latch0) {
  if ((latch0 & kVppLevelHigh) == 0) return 12500;
  return (latch0 & kVppLevelLow) == 0 ? 21000 : 25000;
}

}  // namespace

void VppSupply::select(std::uint8_t latch0, Nanoseconds now) {
  if (model_ == Model::kestrel4) {
    on_ = (latch0 & kVppOnModel4) != 0;
    return;
  }
  on_ = true;
  const int wanted = levelOf(latch0);
  if (wanted == wantedMillivolts_) return;
  wantedMillivolts_ = wanted;
  if (wanted > millivolts_) {
    arrivesAt_ = now + kRiseTime;
  } else {
    arrive();
  }
}

void VppSupply::arrive() {
  millivolts_ = wantedMillivolts_;
  arrivesAt_ = kNever;
}

}  // namespace kestrel::sim
