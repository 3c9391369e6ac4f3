#include "operations/flash_identification.h"

#include <array>
#include <string>

#include "app/state/text_format.h"
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
  p_.registers.loadLatchFast(4, data);
  p_.registers.loadLatchFast(1, mid);
  p_.registers.loadLatchFast(2, low);
  for (const std::uint8_t step : {kSelected, kWriteEnabled, kSelected, kDeselected}) {
    p_.registers.loadLatchFast(3, step);
  }
}

void FlashIdentification::FlashCommand() {
  if (p_.state.FamilyCode == "FA") {
    FlashCommandAtmel();
    return;
  }
  p_.bus.OEOFF();
  p_.registers.loadLatchFast(3, kDeselected);
  fastCycle(0x05, 0x55, 0xAA);
  fastCycle(0x02, 0xAA, 0x55);
  fastCycle(0x05, 0x55, narrowed<std::uint8_t>(p_.state.FlashCmd));
}

void FlashIdentification::FlashCommandAtmel() {
  atmel_.sendAtmelCommand(narrowed<std::uint8_t>(p_.state.FlashCmd));
}

void FlashIdentification::sendCommand(std::int16_t command) {
  p_.state.FlashCmd = command;
  FlashCommand();
}

void FlashIdentification::WEON_FLASH() {
  ProgrammerState& s = p_.state;
  s.RegShadow3 = narrowed<std::int16_t>(
      (at(s.AddrMapHigh, s.AddrHigh) | s.Reg3Fixed | s.RegShadow3) & ~hardware::kPin31High);
  p_.registers.SetReg3();
}

void FlashIdentification::WEOFF_FLASH() {
  ProgrammerState& s = p_.state;
  s.RegShadow3 = narrowed<std::int16_t>(s.RegShadow3 | at(s.AddrMapHigh, s.AddrHigh) | s.Reg3Fixed |
                                        hardware::kPin31High);
  p_.registers.SetReg3();
}

std::uint8_t FlashIdentification::readHere() {
  p_.bus.SETADR_FLASH();
  p_.bus.GetNibbles();
  return p_.state.ReadByte;
}

std::uint8_t FlashIdentification::readNext() {
  p_.bus.IncADR();
  return readHere();
}

void FlashIdentification::ReadFlashID() {
  ProgrammerState& s = p_.state;
  if (s.FamilyLetter != "F") return;
  s.FlashPageSize = 0;
  s.FlashPageCount = 0;
  p_.bus.Reset();
  hardware::setBits(s.RegShadow0, hardware::kBoardLamp);
  p_.registers.SetReg0();
  p_.bus.OEOFF();
  sendCommand(kIdentify);
  p_.bus.CEOEON();
  p_.registers.REG4OFF();
  s.FlashMakerID = readHere();
  s.FlashDeviceID = readNext();
  p_.bus.OEOFF();
  sendCommand(kReadReset);
  p_.bus.sleepMs(kReadModeWaitMs);
  p_.bus.sleepMs(kReadModeWaitMs);
  s.AddrLow = s.AddrMid = s.AddrHigh = 0;
  p_.bus.CEOEON();
  const std::uint8_t first = readHere();
  const std::uint8_t second = readNext();
  p_.bus.CEOEOFF();
  s.FlashRawCode = hexText(first, kByteDigits) + hexText(second, kByteDigits);
  s.FlashCode = hexText(s.FlashMakerID, kByteDigits) + hexText(s.FlashDeviceID, kByteDigits);
  nameChip();
  hardware::clearBits(s.RegShadow0, hardware::kBoardLamp);
  p_.registers.SetReg0();
}

void FlashIdentification::nameChip() {
  ProgrammerState& s = p_.state;
  if (s.FlashCode == s.FlashRawCode) {
    p_.reporting.LogMessage("*** Not a Flash Unit, Address 00&01 = FlashCode ***");
  }
  const std::string prefix = "Device ID# " + s.FlashCode + " - ";
  for (const FlashChip& chip : kFlashChips) {
    if (s.FlashCode != chip.code) continue;
    p_.reporting.LogMessage(prefix + chip.name);
    s.FlashPageSize = chip.pageSize;
    s.FlashPageCount = chip.pageCount;
  }
  if (s.FlashPageSize == 0) p_.reporting.LogMessage(prefix + " Not Valid!!!");
}

void FlashIdentification::ProbeFlashID() {
  sendCommand(kIdentify);
  p_.bus.CEOEON();
  p_.registers.REG4OFF();
  (void)readHere();
  (void)readNext();
  p_.bus.OEOFF();
  sendCommand(kReadReset);
  p_.bus.sleepMs(kReadModeWaitMs);
}

void FlashIdentification::menuFlashShowCodeID_Click() {
  p_.reporting.LogMessage("Reading Flash Code ID_________________ wait");
  ReadFlashID();
}

void FlashIdentification::ResetFlash_Click() {
  p_.bus.CEOFF();
  p_.bus.OEOFF();
  p_.state.RegShadow4 = kReadReset;
  p_.registers.SetReg4();
  WEON_FLASH();
  p_.bus.CEON();
  p_.bus.CEOFF();
  WEOFF_FLASH();
}

}  // namespace kestrel::operations
