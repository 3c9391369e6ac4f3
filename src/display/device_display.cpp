#include "display/device_display.h"

#include <algorithm>
#include <span>

#include "display/hex_line.h"
#include "platform/runtime_error.h"

namespace kestrel::display {
namespace {

constexpr std::int32_t kStartWaitMs = 500;
constexpr std::int64_t kPauseCounts = 100;
constexpr std::array<const char*, 6> kDrawnCodes{"EN", "FL", "FM", "FR", "FA", "FS"};

}  // namespace

DeviceDisplay::DeviceDisplay(ProgrammerState& state, Controls& controls, Reporting& reporting,
                             hardware::Lamps& lamps, hardware::Registers& registers,
                             hardware::BusPrimitives& bus, Dialogs& dialogs)
    : state_(state),
      controls_(controls),
      reporting_(reporting),
      lamps_(lamps),
      registers_(registers),
      bus_(bus),
      dialogs_(dialogs) {}

bool DeviceDisplay::isDrawn() const {
  return state_.FamilyLetter == "P" ||
         std::ranges::find(kDrawnCodes, state_.FamilyCode) != kDrawnCodes.end();
}

void DeviceDisplay::Display_button_Click() {
  if (!controls_.CheckCode.isTicked()) return;
  state_.DisplayMode = "DisplayEprom";
  // From another page this already draws page 0 through the change handler.
  controls_.VScroll1.setValue(0);
  reporting_.LogMessage("Fetching Device Binary Contents to Screen");
  controls_.Frame3.setCaption("Device Memory Hex/Ascii Display");
  if (isDrawn()) DisplayEprom();
  if (state_.FamilyLetter == "M") {
    dialogs_.messageBox(
        {.text = "Please Write AT90S2313 Code Display ROutine", .title = "Routine Not Ready"});
  }
}

void DeviceDisplay::latchAddress() {
  if (state_.FamilyLetter == "P") bus_.SETADR();
  if (state_.FamilyCode == "EN") bus_.SETADR_XICOR();
  if (state_.FamilyLetter == "F") bus_.SETADR_FLASH();
}

void DeviceDisplay::readPage(Page& page) {
  for (state_.ProgramIndex = 0; state_.ProgramIndex < kPageBytes; ++state_.ProgramIndex) {
    latchAddress();
    bus_.OEON();
    bus_.CEON();
    bus_.GetNibbles();
    bus_.CEOFF();
    bus_.OEOFF();
    at(page, state_.ProgramIndex) = state_.ReadByte;
    bus_.IncADR();
  }
}

void DeviceDisplay::drawPage(const Page& page) {
  const ShownCharacters shown = deviceCharacters();
  const std::int32_t begin = controls_.VScroll1.value() * kPageBytes;
  controls_.BufferDisplay.setText("");
  for (state_.ProgramIndex = 0; state_.ProgramIndex < kPageLines; ++state_.ProgramIndex) {
    const std::int32_t offset = state_.ProgramIndex * kLineBytes;
    const std::span bytes =
        std::span(page).subspan(static_cast<std::size_t>(offset), std::size_t{kLineBytes});
    controls_.BufferDisplay.append(hexLine(begin + offset, bytes, shown));
  }
}

void DeviceDisplay::DisplayEprom() {
  lamps_.DataFlowLampOn();
  bus_.Reset();
  latchAddress();
  bus_.sleepMs(kStartWaitMs);
  registers_.REG4OFF();
  state_.LinearAddress = controls_.VScroll1.value() * kPageBytes;
  bus_.Endereco2Adr();
  bus_.spin(kPauseCounts);
  Page page{};
  readPage(page);
  drawPage(page);
  lamps_.DataFlowLampOff();
}

}  // namespace kestrel::display
