#pragma once

#include <cstdint>
#include <span>

#include "app/state/controls.h"
#include "app/state/programmer_state.h"

namespace kestrel::display {

/// Pages of the code and the data buffer as hex/ASCII lines.
class MemoryDisplay {
 public:
  MemoryDisplay(BufferState& buffers, LatchState& latches, ShellState& shell, Controls& controls)
      : buffers_(buffers), latches_(latches), shell_(shell), controls_(controls) {}

  /// The page of the code buffer that the scroll bar names.
  void DisplayCodeMemory();

  /// The page of the data buffer, under a heading line, as far as the buffer reaches.
  void DisplayDataMemory();

  /// The page of the buffer that is on view.
  void DisplayPageMemory();

  [[nodiscard]] bool isCodeOnView() const;

  /// Switches to the buffer that the button's caption names; the caption then names the other.
  void Show_button_Click();

  /// Page 0 of the code buffer in the secondary window, which is created if need be.
  void Command1_Click();

  /// The code buffer is on view until Show_button is pressed, whatever its caption says.
  void putCodeBufferOnView() { captionDecides_ = false; }

  /// The caption of Show_button names the buffer that is not on view.
  void letCaptionDecide() { captionDecides_ = true; }

 private:
  void drawPage(TextBox& box, std::int32_t page, std::span<const std::uint8_t> buffer);

  BufferState& buffers_;
  LatchState& latches_;
  ShellState& shell_;
  Controls& controls_;
  bool captionDecides_ = true;
};

}  // namespace kestrel::display
