#include "operations/flash_identification.h"

#include <array>
#include <string>

#include "app/state/text_format.h"
#include "devices/families.h"
#include "platform/runtime_error.h"

namespace kestrel::operations {
namespace {

constexpr std::int16_t kIdentify = 0x90;
constexpr std::int16_t kReadReset = 0xF0;
constexpr std::int32_t kReadModeWaitMs = 20;
constexpr std::size_t kByteDigits = 2;

// Latch 3 in the fast cycles: the data latch drives the bus throughout.
constexpr std::uint8_t kDeselected = 0x84;
constexpr std::uint8_t kSelected = 0x04;
constexpr std::uint8_t kWriteEnabled = 0x00;

struct FlashChip {
  const char* code;
  const char* name;
  std::int16_t pageSize;
  std::int16_t pageCount;
};

// clang-format off
constexpr std::array<FlashChip, 12> kFlashChips{{
    {"1C04", "EON EN29F040 Flash Memory",    512, 1024},
    {"0120", "AMD am29F010 Flash Memory",    512,  256},
    {"01A4", "AMD am29F040 Flash Memory",    512, 1024},
    {"3786", "AMIC A29040 Flash Memory",     512, 1024},
    {"37A4", "AMIC A29010 Flash Memory",     512,  256},
    {"1F5B", "ATMEL 29C040 Flash Memory",    512, 1024},
    {"1FA4", "ATMEL 29C040A Flash Memory",   256, 2048},
    {"1FDA", "ATMEL 29C020 Flash Memory",    256, 1024},
    {"1F25", "ATMEL 29C1024 Flash Memory",   128,  512},
    {"1FD5", "ATMEL 29C010 Flash Memory",    128, 1024},
    {"1F5D", "ATMEL 29C512 Flash Memory",    128,  512},
    {"1FDC", "ATMEL 29C256 Flash Memory",     64,  512},
}};
// clang-format on

}  // namespace

// The strobe: chip enabled, write enable low, high again (the chip takes the data), chip disabled.
void FlashIdentification::fastCycle(std::uint8_t mid, std::uint8_t low, std::uint8_t data) {
  board_.registers.loadLatchFast(4, data);
  board_.registers.loadLatchFast(1, mid);
  board_.registers.loadLatchFast(2, low);
  for (const std::uint8_t step : {kSelected, kWriteEnabled, kSelected, kDeselected}) {
    board_.registers.loadLatchFast(3, step);
  }
}

void FlashIdentification::FlashCommand() {
  if (devices::familyOf(device_.FamilyCode).flashCommands == devices::FlashCommands::Atmel) {
    FlashCommandAtmel();
    return;
  }
  board_.bus.OEOFF();
  board_.registers.loadLatchFast(3, kDeselected);
  fastCycle(0x05, 0x55, 0xAA);
  fastCycle(0x02, 0xAA, 0x55);
  fastCycle(0x05, 0x55, narrowed<std::uint8_t>(operation_.FlashCmd));
}

void FlashIdentification::FlashCommandAtmel() {
  protection_.sendAtmelCommand(narrowed<std::uint8_t>(operation_.FlashCmd));
}

void FlashIdentification::sendCommand(std::int16_t command) {
  operation_.FlashCmd = command;
  FlashCommand();
}

void FlashIdentification::WEON_FLASH() {
  latches_.RegShadow3 = narrowed<std::int16_t>(
      (at(device_.AddrMapHigh, latches_.AddrHigh) | device_.Reg3Fixed | latches_.RegShadow3) &
      ~hardware::kPin31High);
  board_.registers.SetReg3();
}

void FlashIdentification::WEOFF_FLASH() {
  latches_.RegShadow3 =
      narrowed<std::int16_t>(latches_.RegShadow3 | at(device_.AddrMapHigh, latches_.AddrHigh) |
                             device_.Reg3Fixed | hardware::kPin31High);
  board_.registers.SetReg3();
}

std::uint8_t FlashIdentification::readHere() {
  board_.bus.SETADR_FLASH();
  board_.bus.GetNibbles();
  return latches_.ReadByte;
}

std::uint8_t FlashIdentification::readNext() {
  board_.bus.IncADR();
  return readHere();
}

void FlashIdentification::ReadFlashID() {
  const DeviceOperation operation = board_.operation();
  if (drivers_.areChosen()) return readByDataSheet();
  if (devices::familyOf(device_.FamilyCode).flashCommands == devices::FlashCommands::None) return;
  operation_.FlashPageSize = 0;
  operation_.FlashPageCount = 0;
  board_.bus.Reset();
  hardware::setBits(latches_.RegShadow0, hardware::kBoardLamp);
  board_.registers.SetReg0();
  board_.bus.OEOFF();
  sendCommand(kIdentify);
  board_.bus.CEOEON();
  board_.registers.REG4OFF();
  operation_.FlashMakerID = readHere();
  operation_.FlashDeviceID = readNext();
  board_.bus.OEOFF();
  sendCommand(kReadReset);
  board_.bus.sleepMs(kReadModeWaitMs);
  board_.bus.sleepMs(kReadModeWaitMs);
  latches_.AddrLow = latches_.AddrMid = latches_.AddrHigh = 0;
  board_.bus.CEOEON();
  const std::uint8_t first = readHere();
  const std::uint8_t second = readNext();
  board_.bus.CEOEOFF();
  operation_.FlashRawCode = hexText(first, kByteDigits) + hexText(second, kByteDigits);
  operation_.FlashCode = hexText(operation_.FlashMakerID, kByteDigits) +
                         hexText(operation_.FlashDeviceID, kByteDigits);
  nameChip();
  hardware::clearBits(latches_.RegShadow0, hardware::kBoardLamp);
  board_.registers.SetReg0();
}

void FlashIdentification::readByDataSheet() {
  const std::optional<devices::ChipCodes> codes = drivers_.forDevice()->codes();
  if (!codes) return;
  operation_.FlashPageSize = 0;
  operation_.FlashPageCount = 0;
  operation_.FlashMakerID = codes->maker;
  operation_.FlashDeviceID = codes->device;
  operation_.FlashCode = hexText(codes->maker, kByteDigits) + hexText(codes->device, kByteDigits);
  operation_.FlashRawCode.clear();
  nameChip();
}

void FlashIdentification::nameChip() {
  if (operation_.FlashCode == operation_.FlashRawCode) {
    reporting_.LogMessage("*** Not a Flash Unit, Address 00&01 = FlashCode ***");
  }
  const std::string prefix = "Device ID# " + operation_.FlashCode + " - ";
  for (const FlashChip& chip : kFlashChips) {
    if (operation_.FlashCode != chip.code) continue;
    reporting_.LogMessage(prefix + chip.name);
    operation_.FlashPageSize = chip.pageSize;
    operation_.FlashPageCount = chip.pageCount;
  }
  if (operation_.FlashPageSize != 0) return;
  const devices::DataSheet* const sheet = drivers_.areChosen() ? sheetOfCodes() : nullptr;
  reporting_.LogMessage(prefix + (sheet == nullptr ? " Not Valid!!!" : std::string(sheet->device)));
}

const devices::DataSheet* FlashIdentification::sheetOfCodes() const {
  return devices::dataSheetOf({.maker = narrowed<std::uint8_t>(operation_.FlashMakerID),
                               .device = narrowed<std::uint8_t>(operation_.FlashDeviceID)});
}

void FlashIdentification::ProbeFlashID() {
  sendCommand(kIdentify);
  board_.bus.CEOEON();
  board_.registers.REG4OFF();
  (void)readHere();
  (void)readNext();
  board_.bus.OEOFF();
  sendCommand(kReadReset);
  board_.bus.sleepMs(kReadModeWaitMs);
}

void FlashIdentification::menuFlashShowCodeID_Click() {
  reporting_.LogMessage("Reading Flash Code ID_________________ wait");
  ReadFlashID();
}

void FlashIdentification::ResetFlash_Click() {
  board_.bus.CEOFF();
  board_.bus.OEOFF();
  latches_.RegShadow4 = kReadReset;
  board_.registers.SetReg4();
  WEON_FLASH();
  board_.bus.CEON();
  board_.bus.CEOFF();
  WEOFF_FLASH();
}

}  // namespace kestrel::operations
