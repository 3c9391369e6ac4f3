#pragma once

#include <cstdint>
#include <string>

#include "app/state/controls.h"

namespace kestrel::hardware {

/// What the form says of the board.
class HardwareCaptions {
 public:
  explicit HardwareCaptions(Controls& controls) : controls_(controls) {}

  void showNoHardware();
  void showReady();
  void showModel(const std::string& model, const std::string& port);
  void showForcedModel(const std::string& model);

 private:
  Controls& controls_;
};

}  // namespace kestrel::hardware
