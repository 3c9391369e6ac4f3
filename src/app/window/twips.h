#pragma once

#include <cmath>
#include <cstdint>

namespace kestrel::window {

/// Units of a window's stored place to an inch.
inline constexpr double kTwipsPerInch = 1440.0;

/// The pixel that a place of that many 1/1440 inch falls on, at so many pixels to an inch.
[[nodiscard]] inline int pixelsFromTwips(std::int32_t twips, int dotsPerInch) {
  return static_cast<int>(std::lround(twips * dotsPerInch / kTwipsPerInch));
}

[[nodiscard]] inline std::int32_t twipsFromPixels(int pixels, int dotsPerInch) {
  return static_cast<std::int32_t>(std::lround(pixels * kTwipsPerInch / dotsPerInch));
}

}  // namespace kestrel::window
