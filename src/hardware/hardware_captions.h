#pragma once

#include <cstdint>
#include <string>

#include "app/state/controls.h"
#include "app/state/programmer_state.h"

namespace kestrel::hardware {

/// What the form says of the board, and whether it says that one is there.
class HardwareCaptions {
 public:
  HardwareCaptions(PortState& port, Controls& controls) : port_(port), controls_(controls) {}

  void showNoBoardYet();
  void showNoHardware();
  void showNotReady();
  void showReady();
  void showModel(const std::string& model, const std::string& port);
  void showForcedModel(const std::string& model);

 private:
  void showNoPort();

  PortState& port_;
  Controls& controls_;
};

}  // namespace kestrel::hardware
