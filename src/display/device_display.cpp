#include "display/device_display.h"

#include <algorithm>
#include <span>

#include "devices/remarks.h"
#include "display/hex_line.h"
#include "platform/runtime_error.h"

namespace kestrel::display {
namespace {

constexpr std::int64_t kPauseCounts = 100;

}  // namespace

void DeviceDisplay::Display_button_Click() {
  if (!controls_.CheckCode.isTicked()) return;
  buffers_.DisplayMode = "DisplayEprom";
  // From another page this already draws page 0 through the change handler.
  controls_.VScroll1.setValue(0);
  reporting_.LogMessage("Fetching Device Binary Contents to Screen");
  controls_.Frame3.setCaption("Device Memory Hex/Ascii Display");
  const devices::Family& family = devices::familyOf(device_.FamilyCode);
  if (family.hasDisplay || drivers_.areChosen()) {
    DisplayEprom();
  } else {
    reporting_.noteEnding(Ending::NoRoutine, std::string(devices::whyNoDisplay(family)));
  }
  if (family.hasDataMemory) {
    dialogs_.messageBox(
        {.text = "Please Write AT90S2313 Code Display ROutine", .title = "Routine Not Ready"});
  }
}

void DeviceDisplay::latchAddress(devices::DisplayAddress address) {
  switch (address) {
    case devices::DisplayAddress::Setadr:
      return board_.bus.SETADR();
    case devices::DisplayAddress::SetadrXicor:
      return board_.bus.SETADR_XICOR();
    case devices::DisplayAddress::SetadrFlash:
      return board_.bus.SETADR_FLASH();
    case devices::DisplayAddress::None:
      return;
  }
}

DeviceDisplay::Page DeviceDisplay::readPage(devices::DisplayAddress address) {
  Page page{};
  for (operation_.ProgramIndex = 0; operation_.ProgramIndex < kPageBytes;
       ++operation_.ProgramIndex) {
    latchAddress(address);
    board_.bus.OEON();
    board_.bus.CEON();
    board_.bus.GetNibbles();
    board_.bus.CEOFF();
    board_.bus.OEOFF();
    at(page, operation_.ProgramIndex) = latches_.ReadByte;
    board_.bus.IncADR();
  }
  return page;
}

void DeviceDisplay::drawPage(const Page& page) {
  const ShownCharacters shown = deviceCharacters();
  const std::int32_t begin = controls_.VScroll1.value() * kPageBytes;
  controls_.BufferDisplay.setText("");
  for (operation_.ProgramIndex = 0; operation_.ProgramIndex < kPageLines;
       ++operation_.ProgramIndex) {
    const std::int32_t offset = operation_.ProgramIndex * kLineBytes;
    const std::span bytes =
        std::span(page).subspan(static_cast<std::size_t>(offset), std::size_t{kLineBytes});
    controls_.BufferDisplay.append(hexLine(begin + offset, bytes, shown));
  }
}

void DeviceDisplay::DisplayEprom() {
  const DeviceOperation operation = board_.operation();
  board_.lamps.DataFlowLampOn();
  if (drivers_.areChosen()) return displayByDataSheet();
  const devices::DisplayAddress address = devices::familyOf(device_.FamilyCode).display;
  board_.bus.Reset();
  latchAddress(address);
  board_.bus.sleepMs(hardware::Board::kStartWaitMs);
  board_.registers.REG4OFF();
  latches_.LinearAddress = controls_.VScroll1.value() * kPageBytes;
  board_.bus.Endereco2Adr();
  board_.bus.spin(kPauseCounts);
  drawPage(readPage(address));
  board_.lamps.DataFlowLampOff();
}

void DeviceDisplay::displayByDataSheet() {
  const std::unique_ptr<data_sheet::ChipDriver> driver = drivers_.forDevice();
  Page page{};
  driver->begin();
  const data_sheet::Outcome outcome =
      driver->read(static_cast<std::uint32_t>(controls_.VScroll1.value() * kPageBytes),
                   std::span(page).first(static_cast<std::size_t>(kPageBytes)));
  driver->end();
  board_.lamps.DataFlowLampOff();
  if (outcome.isDone()) return drawPage(page);
  const bool isSilent = outcome.kind == data_sheet::Outcome::Kind::NoAcknowledge;
  reporting_.noteEnding(Ending::Failed,
                        isSilent ? "the device does not acknowledge" : outcome.reason);
}

}  // namespace kestrel::display
