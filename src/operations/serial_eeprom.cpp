#include "operations/serial_eeprom.h"

#include "buffers/checksum.h"
#include "platform/runtime_error.h"

namespace kestrel::operations {
namespace {

constexpr int kSelectWrite = 0xA0;
constexpr int kSelectRead = 0xA1;
constexpr std::uint8_t kNotAcknowledged = 0x80;

// The chip is powered through /OE: its supply is given time to come up.
constexpr std::int32_t kPowerUpMs = 50;

constexpr std::int16_t kWriteCyclePolls = 50;
constexpr std::int32_t kWriteCyclePollMs = 2;
constexpr std::int32_t kProgressEvery = 16;

/// Division to the nearest whole number, halves to even.
constexpr std::int32_t nearestQuotient(std::int32_t value, std::int32_t divisor) {
  const std::int32_t quotient = value / divisor;
  const std::int32_t twice = (value % divisor) * 2;
  const bool isUp = twice > divisor || (twice == divisor && quotient % 2 != 0);
  return quotient + (isUp ? 1 : 0);
}

}  // namespace

/// In what the two writers differ.
struct SerialEeprom::Writer {
  const char* eraseMessage;
  std::int32_t pageBytes;
  std::int32_t startAddress;
  bool blockInSelect;  ///< address bits 8-10 in the select byte; otherwise two address bytes

  [[nodiscard]] std::uint8_t select(std::int32_t mid) const {
    return narrowed<std::uint8_t>(blockInSelect ? kSelectWrite + mid * 2 : kSelectWrite);
  }
};

void SerialEeprom::Write24CXX() {
  write({.eraseMessage = "Erasing Device 24CXX",
         .pageBytes = 16,
         .startAddress = 0x300,  // fixed and intended: the first 768 bytes are not written
         .blockInSelect = true});
}

void SerialEeprom::Write24C32() {
  write({.eraseMessage = "Erasing Device 24C32",
         .pageBytes = 32,
         .startAddress = 0,
         .blockInSelect = false});
}

void SerialEeprom::write(const Writer& writer) {
  if (p_.state.EraseMode == 1) {
    p_.reporting.LogMessage(writer.eraseMessage);
    p_.reporting.LogMessage("Program Buffer will not be erased");
  }
  const std::int32_t pages = nearestQuotient(p_.state.CodeLength, writer.pageBytes);
  p_.bus.OEOFF();
  p_.bus.sleepMs(kPowerUpMs);
  p_.controls.ProgressBar1.setMaximum(pages);
  std::int32_t address = writer.startAddress;
  for (std::int32_t page = 1; page <= pages; ++page) {
    if (!writePage(writer, address)) return;
    p_.reporting.advanceProgress();
    waitForWriteCycle(writer.select(p_.state.AddrMid));
    i2c_.clock();
  }
  p_.state.RegShadow4 = 0;
  p_.registers.SetReg4();
  p_.registers.REG4ON();
}

bool SerialEeprom::writePage(const Writer& writer, std::int32_t& address) {
  ProgrammerState& s = p_.state;
  s.AddrMid = address / 256;
  s.AddrLow = address - s.AddrMid * 256;
  i2c_.I2CStart();
  if (!send(writer.select(s.AddrMid))) return false;
  if (!writer.blockInSelect && !send(s.AddrMid)) return false;
  if (!send(s.AddrLow)) return false;
  for (std::int32_t i = 0; i < writer.pageBytes; ++i, ++address) {
    if (!send(s.EraseMode == 1 ? kErased : at(s.CodeBuffer, address))) return false;
  }
  i2c_.I2CStop();
  return true;
}

// A chip that is writing acknowledges no select byte. One that never does stays at 50, and the next
// page is tried all the same.
void SerialEeprom::waitForWriteCycle(std::uint8_t select) {
  ProgrammerState& s = p_.state;
  s.I2CError = 0;
  do {
    i2c_.I2CStart();
    s.ByteToWrite = select;
    i2c_.I2CSendByteNoWait();
    ++s.I2CError;
    if (s.ReadByte != 0) p_.bus.sleepMs(kWriteCyclePollMs);
  } while (s.ReadByte == kNotAcknowledged && s.I2CError != kWriteCyclePolls);
  if (s.ReadByte == 0) s.I2CError = 0;
}

bool SerialEeprom::send(int byte) {
  p_.state.ByteToWrite = narrowed<std::uint8_t>(byte);
  i2c_.I2CSendByte();
  return p_.state.I2CError == 0;
}

bool SerialEeprom::startReading() {
  p_.bus.OEOFF();
  p_.bus.sleepMs(kPowerUpMs);
  i2c_.I2CStart();
  if (!send(kSelectWrite) || !send(0)) return false;
  if (p_.state.FamilyCode == "SC" && !send(0)) return false;
  i2c_.I2CStart();
  if (!send(kSelectRead)) return false;
  // From here on SDA reads low, an acknowledge, whenever it is driven.
  p_.registers.REG4OFF();
  p_.state.RegShadow4 = 0;
  p_.registers.SetReg4();
  return true;
}

void SerialEeprom::readAll(const std::function<bool(std::int32_t index)>& visit) {
  for (std::int32_t i = 0; i < p_.state.CodeLength; ++i) {
    if (i % kProgressEvery == 0) p_.reporting.advanceProgress(kProgressEvery);
    i2c_.I2CReadByte();
    p_.registers.REG4ON();
    i2c_.clock();
    if (!visit(i)) break;
  }
}

// The last byte is acknowledged like all others before the stop; this is intended.
void SerialEeprom::Read24CXX() {
  if (!startReading()) return;
  readAll([this](std::int32_t i) {
    at(p_.state.CodeBuffer, i) = p_.state.ReadByte;
    return true;
  });
  i2c_.I2CStop();
}

void SerialEeprom::Verify24CXX() {
  if (!startReading()) return;
  ProgrammerState& s = p_.state;
  readAll([&](std::int32_t i) {
    s.DeviceChecksum = buffers::addToChecksum(s.DeviceChecksum, s.ReadByte);
    if (s.ReadByte == at(s.CodeBuffer, i)) return true;
    s.ProgramIndex = i;
    reports_.VerifyMismatchReport();
    return false;
  });
  i2c_.I2CStop();
}

}  // namespace kestrel::operations
