#pragma once

#include <array>
#include <cstdint>

#include "app/state/controls.h"
#include "app/state/programmer_state.h"
#include "app/state/reporting.h"
#include "hardware/bus_primitives.h"
#include "hardware/lamps.h"
#include "hardware/registers.h"
#include "platform/dialogs.h"

namespace kestrel::display {

/// The chip in the socket, page by page, straight from the board; nothing is kept between pages.
class DeviceDisplay {
 public:
  DeviceDisplay(ProgrammerState& state, Controls& controls, Reporting& reporting,
                hardware::Lamps& lamps, hardware::Registers& registers,
                hardware::BusPrimitives& bus, Dialogs& dialogs);

  void Display_button_Click();

  /// Reads and draws the page of the chip that the scroll bar names. The board is left with the
  /// address latched and the chip off.
  void DisplayEprom();

 private:
  using Page = std::array<std::uint8_t, 257>;

  [[nodiscard]] bool isDrawn() const;
  void latchAddress();
  void readPage(Page& page);
  void drawPage(const Page& page);

  ProgrammerState& state_;
  Controls& controls_;
  Reporting& reporting_;
  hardware::Lamps& lamps_;
  hardware::Registers& registers_;
  hardware::BusPrimitives& bus_;
  Dialogs& dialogs_;
};

}  // namespace kestrel::display
