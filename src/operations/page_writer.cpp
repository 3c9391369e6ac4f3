#include "operations/page_writer.h"

#include <algorithm>

#include "platform/runtime_error.h"

namespace kestrel::operations {
namespace {

constexpr std::int32_t kPages = 512;
constexpr std::int32_t kWritePageBytes = 64;
constexpr int kTries = 80;
constexpr std::int32_t kBeforePageMs = 1;
constexpr std::int32_t kWriteCycleMs = 3;
constexpr std::int32_t kBlinkMask = 7;
constexpr std::int16_t kPagesPerProgressStep = 8;
constexpr std::int32_t kProgressSteps = 64;
constexpr std::size_t kDeviceBytes = 32768;

}  // namespace

/// In what the two chips differ.
struct PageWriter::Chip {
  const char* startMessage;
  const char* endMessage;
  void (hardware::BusPrimitives::*setAddress)();
  void (ProtectionSequences::*unlock)();
  std::int32_t afterUnlockMs;
  int writeEnable;  ///< active-low bit of latch 1
  bool movesA14;    ///< A14 goes to bit 7 of latch 1
};

void PageWriter::ProgramAT29C256() {
  program({.startMessage = "Programming Atmel AT29C256",
           .endMessage = "FLASH Atmel AT29C256 Programmed Sucessfully",
           .setAddress = &hardware::BusPrimitives::SETADR_FLASH,
           .unlock = &ProtectionSequences::AtmelSDPDisable,
           .afterUnlockMs = 50,
           .writeEnable = 0x80,
           .movesA14 = false});
}

void PageWriter::ProgramX28C256() {
  program({.startMessage = "Programming 28C256 XICOR Device",
           .endMessage = "XICOR 28C256 Programmed Sucessfully",
           .setAddress = &hardware::BusPrimitives::SETADR_XICOR,
           .unlock = &ProtectionSequences::XicorSDPDisable,
           .afterUnlockMs = 40,
           .writeEnable = 0x40,
           .movesA14 = true});
}

void PageWriter::EraseX28C256() {
  std::fill_n(p_.state.ProgramBuffer.begin(), kDeviceBytes, kErased);
  p_.reporting.LogMessage("Erasing Program Buffer");
  p_.reporting.LogMessage("Erasing XICOR 28C256");
  ProgramX28C256();
  image_.PrepareProgramBuffer();
}

void PageWriter::program(const Chip& chip) {
  unlock(chip);
  p_.controls.ProgressBar1.setMaximum(kProgressSteps);
  p_.state.ProgressStep = kPagesPerProgressStep;
  p_.state.ProgressCount = 0;
  for (std::int32_t page = 0; page < kPages; ++page) {
    if (!programPage(chip, page)) {
      reports_.ProgramFailureReport();
      p_.state.RegShadow0 = 0;
      p_.registers.SetReg0();
      return;
    }
    if ((page & kBlinkMask) == 0) p_.lamps.BlinkProgramLamp();
    p_.reporting.GoProgressiveBar1();
  }
  p_.reporting.LogMessage(chip.endMessage);
  p_.bus.Reset();
}

void PageWriter::unlock(const Chip& chip) {
  p_.state.LinearAddress = 0;
  p_.bus.Endereco2Adr();
  (p_.bus.*chip.setAddress)();
  p_.bus.sleepMs(kStartWaitMs);
  p_.registers.REG4ON();
  p_.bus.OEOFF();
  p_.bus.CEOFF();
  p_.reporting.LogMessage(chip.startMessage);
  p_.bus.Reset();
  (p_.bus.*chip.setAddress)();
  (protection_.*chip.unlock)();
  p_.bus.sleepMs(chip.afterUnlockMs);
  p_.bus.OEOFF();
  p_.bus.CEOFF();
}

bool PageWriter::programPage(const Chip& chip, std::int32_t page) {
  for (int tries = kTries - 1; tries > 0; --tries) {
    protection_.speedDelay(kBeforePageMs);
    p_.registers.REG4ON();
    latchPageAddress(chip, page);
    loadPage(chip, page);
    protection_.speedDelay(kWriteCycleMs);
    p_.registers.REG4OFF();
    if (pageReadsBack(page)) return true;
  }
  return false;
}

void PageWriter::latchPageAddress(const Chip& chip, std::int32_t page) {
  ProgrammerState& s = p_.state;
  s.LinearAddress = kWritePageBytes * page;
  p_.bus.Endereco2Adr();
  std::int32_t mid = s.AddrMid;
  if (chip.movesA14) mid = hardware::withA14InBit7(mid);
  mid |= s.Reg1Fixed;
  if (mid == s.RegShadow1) return;
  s.RegShadow1 = narrowed<std::int16_t>(mid);
  p_.registers.SetReg1();
}

void PageWriter::setByteAddress(std::int32_t address) {
  p_.state.LinearAddress = address;
  p_.bus.Endereco2Adr();
  p_.state.RegShadow2 = narrowed<std::int16_t>(p_.state.AddrLow);
  p_.registers.SetReg2();
}

// The bytes of a page must follow each other within the chip's load window, so there is nothing
// but port access here.
void PageWriter::loadPage(const Chip& chip, std::int32_t page) {
  ProgrammerState& s = p_.state;
  for (std::int32_t i = 0; i < kWritePageBytes; ++i) {
    setByteAddress(kWritePageBytes * page + i);
    s.ByteToWrite = at(s.ProgramBuffer, s.LinearAddress);
    p_.registers.REG4ON();
    s.RegShadow4 = s.ByteToWrite;
    p_.registers.SetReg4();
    p_.bus.CEON();
    hardware::clearBits(s.RegShadow1, chip.writeEnable);
    p_.registers.SetReg1();
    hardware::setBits(s.RegShadow1, chip.writeEnable);
    p_.registers.SetReg1();
    p_.bus.CEOFF();
  }
}

bool PageWriter::pageReadsBack(std::int32_t page) {
  ProgrammerState& s = p_.state;
  for (std::int32_t i = 0; i < kWritePageBytes; ++i) {
    setByteAddress(kWritePageBytes * page + i);
    p_.bus.CEOEON();
    p_.bus.GetNibbles();
    p_.bus.OEOFF();
    const std::uint8_t expected = at(s.ProgramBuffer, s.LinearAddress);
    if (s.ReadByte == expected) continue;
    s.ByteToWrite = expected;
    return false;
  }
  return true;
}

}  // namespace kestrel::operations
