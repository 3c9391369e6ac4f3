#pragma once

#include <optional>

#include "hardware/registers.h"

namespace kestrel::hardware {

/// The programming voltage on the socket.
struct VppOutput {
  bool onPin1 = false;
  bool onPin3 = false;
  bool onPin24 = false;
  std::optional<double> volts = {};  ///< none: set by hand on the board
};

/// What latch 0 puts on the socket, on a board of the model; nothing where no pin carries VPP.
[[nodiscard]] constexpr std::optional<VppOutput> vppOutput(int latch0, int model) {
  constexpr int kModelSetByHand = 4;
  constexpr int kSwitch = 0x04;
  constexpr int kLevel = 0x03;
  constexpr int k21Volts = 2;
  constexpr int k25Volts = 3;
  const bool isSetByHand = model == kModelSetByHand;
  const VppOutput output{.onPin1 = (latch0 & kVppOnPin1) != 0,
                         .onPin3 = (latch0 & kVppOnPin3) != 0,
                         .onPin24 = (latch0 & kVppOnPin24) != 0};
  if (!output.onPin1 && !output.onPin3 && !output.onPin24) return std::nullopt;
  if (isSetByHand && (latch0 & kSwitch) == 0) return std::nullopt;
  VppOutput on = output;
  if (isSetByHand) return on;
  const int level = latch0 & kLevel;
  on.volts = level == k25Volts ? 25.0 : level == k21Volts ? 21.0 : 12.5;
  return on;
}

}  // namespace kestrel::hardware
