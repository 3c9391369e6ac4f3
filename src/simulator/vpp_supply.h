#pragma once

#include <cstdint>
#include <optional>

#include "simulator/findings.h"
#include "simulator/model.h"

namespace kestrel::sim {

// The programming supply of the board.
//
//   models 5 and 6, latch 0 bits 1, 0:  00 = 12.5 V   10 = 21 V   11 = 25 V   (01: 12.5 V, a guess)
//   model 4, latch 0 bit 2:             1 = on, at the level set by hand on the board
//
// 21 V and 25 V are there 1000 ms after they were chosen, until then the earlier level stands;
// going down takes no time. Both times are not verified on hardware.
class VppSupply {
 public:
  explicit VppSupply(Model model) : model_(model) {}

  /// Takes over latch 0.
  void select(std::uint8_t latch0, Nanoseconds now);

  /// The level set by hand, in millivolts; models 5 and 6 have no such setting and ignore it.
  void setByHand(int millivolts) { handMillivolts_ = millivolts; }

  /// When the level that is rising will have arrived; kNever if none is.
  [[nodiscard]] Nanoseconds arrivesAt() const { return arrivesAt_; }

  /// The rising level has arrived.
  void arrive();

  [[nodiscard]] bool isOn() const { return on_; }

  /// Level of the supply in millivolts, whether or not a switch joins it to a pin.
  [[nodiscard]] int millivolts() const {
    return model_ == Model::kestrel4 ? handMillivolts_ : millivolts_;
  }

 private:
  Model model_;
  bool on_ = false;
  int handMillivolts_ = 12500;
  int millivolts_ = 12500;
  int wantedMillivolts_ = 12500;
  Nanoseconds arrivesAt_ = kNever;
};

}  // namespace kestrel::sim
