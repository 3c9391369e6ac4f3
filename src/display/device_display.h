#pragma once

#include <array>
#include <cstdint>

#include "app/state/controls.h"
#include "app/state/programmer_state.h"
#include "app/state/reporting.h"
#include "data_sheet/drivers.h"
#include "devices/families.h"
#include "hardware/board.h"
#include "platform/dialogs.h"

namespace kestrel::display {

/// The chip in the socket, page by page, straight from the board; nothing is kept between pages.
class DeviceDisplay {
 public:
  DeviceDisplay(const SelectionState& device, LatchState& latches, OperationState& operation,
                BufferState& buffers, Controls& controls, Reporting& reporting,
                hardware::Board& board, const data_sheet::Drivers& drivers, Dialogs& dialogs)
      : device_(device),
        latches_(latches),
        operation_(operation),
        buffers_(buffers),
        controls_(controls),
        reporting_(reporting),
        board_(board),
        drivers_(drivers),
        dialogs_(dialogs) {}

  void Display_button_Click();

  /// Reads and draws the page of the chip that the scroll bar names. The board is left with the
  /// address latched and the chip off.
  void DisplayEprom();

 private:
  using Page = std::array<std::uint8_t, 257>;

  void latchAddress(devices::DisplayAddress address);
  [[nodiscard]] Page readPage(devices::DisplayAddress address);
  void displayByDataSheet();
  void drawPage(const Page& page);

  const SelectionState& device_;
  LatchState& latches_;
  OperationState& operation_;
  BufferState& buffers_;
  Controls& controls_;
  Reporting& reporting_;
  hardware::Board& board_;
  const data_sheet::Drivers& drivers_;
  Dialogs& dialogs_;
};

}  // namespace kestrel::display
