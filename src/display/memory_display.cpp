#include "display/memory_display.h"

#include <algorithm>

#include "app/state/address_fields.h"
#include "display/hex_line.h"
#include "platform/runtime_error.h"

namespace kestrel::display {
namespace {

constexpr const char* kShowCode = "Show Code";
constexpr const char* kShowData = "Show Data";

/// As many of the 16 bytes at the address as the buffer has.
std::span<const std::uint8_t> lineOf(std::span<const std::uint8_t> buffer, std::int32_t address) {
  const std::size_t begin = std::min(static_cast<std::size_t>(address), buffer.size());
  return buffer.subspan(begin, std::min<std::size_t>(kLineBytes, buffer.size() - begin));
}

}  // namespace

void MemoryDisplay::drawPage(TextBox& box, std::int32_t page,
                             std::span<const std::uint8_t> buffer) {
  latches_.LinearAddress = narrowed<std::int32_t>(std::int64_t{page} * kPageBytes);
  splitLinearAddress(latches_);
  const ShownCharacters shown = charactersIn(shell_.PrintableChars);
  for (shell_.LoopIndex = 0; shell_.LoopIndex < kPageLines; ++shell_.LoopIndex) {
    const std::int32_t address = page * kPageBytes + shell_.LoopIndex * kLineBytes;
    const std::span<const std::uint8_t> bytes = lineOf(buffer, address);
    if (!bytes.empty()) box.append(hexLine(address, bytes, shown));
  }
}

void MemoryDisplay::DisplayCodeMemory() {
  controls_.Frame3.setCaption("Code Buffer Hex/Ascii Display");
  controls_.BufferDisplay.setText("");
  drawPage(controls_.BufferDisplay, controls_.VScroll1.value(), buffers_.CodeBuffer);
}

void MemoryDisplay::DisplayDataMemory() {
  controls_.Frame3.setCaption("Data Buffer Hex/Ascii Display");
  controls_.BufferDisplay.setText("             *** BUFFER DATA ***");
  drawPage(controls_.BufferDisplay, controls_.VScroll1.value(), buffers_.DataBuffer);
}

bool MemoryDisplay::isCodeOnView() const {
  return !captionDecides_ || controls_.Show_button.caption() != kShowCode;
}

void MemoryDisplay::DisplayPageMemory() {
  if (isCodeOnView()) {
    DisplayCodeMemory();
  } else {
    DisplayDataMemory();
  }
}

void MemoryDisplay::Show_button_Click() {
  const bool toCode = controls_.Show_button.caption() == kShowCode;
  controls_.Show_button.setCaption(toCode ? kShowData : kShowCode);
  letCaptionDecide();
  buffers_.DisplayMode = "Read";
  DisplayPageMemory();
}

void MemoryDisplay::Command1_Click() {
  SecondaryDisplay& second = controls_.frmDisplay1;
  second.window.setVisible(true);
  second.VScroll1.setValue(0);
  second.BufferDisplay.setText("");
  drawPage(second.BufferDisplay, second.VScroll1.value(), buffers_.CodeBuffer);
}

}  // namespace kestrel::display
