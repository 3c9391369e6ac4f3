#include "operations/page_writer.h"

#include <algorithm>

#include "platform/runtime_error.h"

namespace kestrel::operations {
namespace {

constexpr std::int32_t kPages = 512;
constexpr std::int32_t kWritePageBytes = 64;
constexpr int kPageAttempts = 79;
constexpr std::int32_t kBeforePageMs = 1;
constexpr std::int32_t kWriteCycleMs = 3;
constexpr std::int32_t kBlinkMask = 7;
constexpr std::int16_t kPagesPerProgressStep = 8;
constexpr std::int32_t kProgressSteps = 64;
constexpr std::size_t kDeviceBytes = 32768;
constexpr std::int32_t kAfterAtmelUnlockMs = 50;
constexpr std::int32_t kAfterXicorUnlockMs = 40;

}  // namespace

void PageWriter::ProgramAT29C256() {
  const auto setAddress = [this] { board_.bus.SETADR_FLASH(); };
  begin("Programming Atmel AT29C256", setAddress);
  protection_.AtmelSDPDisable();
  endUnlock(kAfterAtmelUnlockMs);
  if (programPages(devices::kAt29C256Pins)) {
    finish("FLASH Atmel AT29C256 Programmed Sucessfully");
  }
}

void PageWriter::ProgramX28C256() {
  const auto setAddress = [this] { board_.bus.SETADR_XICOR(); };
  begin("Programming 28C256 XICOR Device", setAddress);
  protection_.XicorSDPDisable();
  endUnlock(kAfterXicorUnlockMs);
  if (programPages(devices::kX28C256Pins)) finish("XICOR 28C256 Programmed Sucessfully");
}

void PageWriter::EraseX28C256() {
  std::fill_n(operation_.ProgramBuffer.begin(), kDeviceBytes, kErased);
  reporting_.LogMessage("Erasing Program Buffer");
  reporting_.LogMessage("Erasing XICOR 28C256");
  ProgramX28C256();
  image_.PrepareProgramBuffer();
}

template <typename SetAddress>
void PageWriter::begin(const char* message, const SetAddress& setAddress) {
  latches_.LinearAddress = 0;
  board_.bus.Endereco2Adr();
  setAddress();
  board_.bus.sleepMs(hardware::Board::kStartWaitMs);
  board_.registers.REG4ON();
  board_.bus.OEOFF();
  board_.bus.CEOFF();
  reporting_.LogMessage(message);
  board_.bus.Reset();
  setAddress();
}

void PageWriter::endUnlock(std::int32_t waitMs) {
  board_.bus.sleepMs(waitMs);
  board_.bus.OEOFF();
  board_.bus.CEOFF();
}

bool PageWriter::programPages(const devices::PageWritePins& pins) {
  controls_.ProgressBar1.setMaximum(kProgressSteps);
  shell_.ProgressStep = kPagesPerProgressStep;
  shell_.ProgressCount = 0;
  for (std::int32_t page = 0; page < kPages; ++page) {
    if (!programPage(pins, page)) {
      reports_.ProgramFailureReport();
      latches_.RegShadow0 = 0;
      board_.registers.SetReg0();
      return false;
    }
    if ((page & kBlinkMask) == 0) board_.lamps.BlinkProgramLamp();
    reporting_.GoProgressiveBar1();
  }
  return true;
}

void PageWriter::finish(const char* message) {
  reporting_.LogMessage(message);
  board_.bus.Reset();
}

bool PageWriter::programPage(const devices::PageWritePins& pins, std::int32_t page) {
  for (int left = kPageAttempts; left > 0; --left) {
    protection_.speedDelay(kBeforePageMs);
    board_.registers.REG4ON();
    latchPageAddress(pins, page);
    loadPage(pins, page);
    protection_.speedDelay(kWriteCycleMs);
    board_.registers.REG4OFF();
    if (pageReadsBack(page)) return true;
  }
  return false;
}

void PageWriter::latchPageAddress(const devices::PageWritePins& pins, std::int32_t page) {
  latches_.LinearAddress = kWritePageBytes * page;
  board_.bus.Endereco2Adr();
  std::int32_t mid = latches_.AddrMid;
  if (pins.movesA14) mid = devices::withA14InBit7(mid);
  mid |= device_.Reg1Fixed;
  if (mid == latches_.RegShadow1) return;
  latches_.RegShadow1 = narrowed<std::int16_t>(mid);
  board_.registers.SetReg1();
}

void PageWriter::setByteAddress(std::int32_t address) {
  latches_.LinearAddress = address;
  board_.bus.Endereco2Adr();
  latches_.RegShadow2 = narrowed<std::int16_t>(latches_.AddrLow);
  board_.registers.SetReg2();
}

// The bytes of a page must follow each other within the chip's load window, so there is nothing
// but port access here.
void PageWriter::loadPage(const devices::PageWritePins& pins, std::int32_t page) {
  for (std::int32_t i = 0; i < kWritePageBytes; ++i) {
    setByteAddress(kWritePageBytes * page + i);
    operation_.ByteToWrite = at(operation_.ProgramBuffer, latches_.LinearAddress);
    board_.registers.REG4ON();
    latches_.RegShadow4 = operation_.ByteToWrite;
    board_.registers.SetReg4();
    board_.bus.CEON();
    hardware::clearBits(latches_.RegShadow1, pins.writeEnable);
    board_.registers.SetReg1();
    hardware::setBits(latches_.RegShadow1, pins.writeEnable);
    board_.registers.SetReg1();
    board_.bus.CEOFF();
  }
}

bool PageWriter::pageReadsBack(std::int32_t page) {
  for (std::int32_t i = 0; i < kWritePageBytes; ++i) {
    setByteAddress(kWritePageBytes * page + i);
    board_.bus.CEOEON();
    board_.bus.GetNibbles();
    board_.bus.OEOFF();
    const std::uint8_t expected = at(operation_.ProgramBuffer, latches_.LinearAddress);
    if (latches_.ReadByte == expected) continue;
    operation_.ByteToWrite = expected;
    return false;
  }
  return true;
}

}  // namespace kestrel::operations
