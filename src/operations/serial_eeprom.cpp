#include "operations/serial_eeprom.h"

#include <string>
#include <string_view>

#include "buffers/checksum.h"
#include "devices/families.h"
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

}  // namespace

/// In what the two writers differ.
struct SerialEeprom::Writer {
  std::string_view chip;
  std::int32_t pageBytes;
  std::int32_t startAddress;
  bool blockInSelect;  ///< address bits 8-10 in the select byte; otherwise two address bytes

  [[nodiscard]] std::uint8_t select(std::int32_t mid) const {
    return narrowed<std::uint8_t>(blockInSelect ? kSelectWrite + mid * 2 : kSelectWrite);
  }
};

void SerialEeprom::Write24CXX() {
  write({.chip = "24CXX",
         .pageBytes = 16,
         .startAddress = 0x300,  // fixed and intended: the first 768 bytes are not written
         .blockInSelect = true});
}

void SerialEeprom::Write24C32() {
  const devices::SerialWriter& family = devices::familyOf(device_.FamilyCode).serialWriter;
  write({.chip = family.chip,
         .pageBytes = family.pageBytes,
         .startAddress = 0,
         .blockInSelect = false});
}

void SerialEeprom::write(const Writer& writer) {
  if (operation_.EraseMode == 1) {
    reporting_.LogMessage("Erasing Device " + std::string(writer.chip));
    reporting_.LogMessage("Program Buffer will not be erased");
  }
  const std::int32_t pages = devices::wholePages(buffers_.CodeLength, writer.pageBytes);
  board_.bus.OEOFF();
  board_.bus.sleepMs(kPowerUpMs);
  controls_.ProgressBar1.setMaximum(pages);
  std::int32_t address = writer.startAddress;
  for (std::int32_t page = 1; page <= pages; ++page) {
    if (!writePage(writer, address)) return;
    reporting_.advanceProgress();
    waitForWriteCycle(writer.select(latches_.AddrMid));
    i2c_.clock();
  }
  latches_.RegShadow4 = 0;
  board_.registers.SetReg4();
  board_.registers.REG4ON();
}

bool SerialEeprom::writePage(const Writer& writer, std::int32_t& address) {
  latches_.AddrMid = address / 256;
  latches_.AddrLow = address - latches_.AddrMid * 256;
  i2c_.I2CStart();
  if (!send(writer.select(latches_.AddrMid))) return false;
  if (!writer.blockInSelect && !send(latches_.AddrMid)) return false;
  if (!send(latches_.AddrLow)) return false;
  for (std::int32_t i = 0; i < writer.pageBytes; ++i, ++address) {
    if (!send(operation_.EraseMode == 1 ? kErased : at(buffers_.CodeBuffer, address))) return false;
  }
  i2c_.I2CStop();
  return true;
}

// A chip that is writing acknowledges no select byte. One that never does stays at 50, and the next
// page is tried all the same.
void SerialEeprom::waitForWriteCycle(std::uint8_t select) {
  operation_.I2CError = 0;
  do {
    i2c_.I2CStart();
    operation_.ByteToWrite = select;
    i2c_.I2CSendByteNoWait();
    ++operation_.I2CError;
    if (latches_.ReadByte != 0) board_.bus.sleepMs(kWriteCyclePollMs);
  } while (latches_.ReadByte == kNotAcknowledged && operation_.I2CError != kWriteCyclePolls);
  if (latches_.ReadByte == 0) operation_.I2CError = 0;
}

bool SerialEeprom::send(int byte) {
  operation_.ByteToWrite = narrowed<std::uint8_t>(byte);
  i2c_.I2CSendByte();
  return operation_.I2CError == 0;
}

bool SerialEeprom::startReading() {
  board_.bus.OEOFF();
  board_.bus.sleepMs(kPowerUpMs);
  i2c_.I2CStart();
  if (!send(kSelectWrite) || !send(0)) return false;
  if (devices::familyOf(device_.FamilyCode).addressBytes == 2 && !send(0)) return false;
  i2c_.I2CStart();
  if (!send(kSelectRead)) return false;
  // From here on SDA reads low, an acknowledge, whenever it is driven.
  board_.registers.REG4OFF();
  latches_.RegShadow4 = 0;
  board_.registers.SetReg4();
  return true;
}

void SerialEeprom::readAll(const std::function<bool(std::int32_t index)>& visit) {
  for (std::int32_t i = 0; i < buffers_.CodeLength; ++i) {
    if (i % kProgressEvery == 0) reporting_.advanceProgress(kProgressEvery);
    i2c_.I2CReadByte();
    board_.registers.REG4ON();
    i2c_.clock();
    if (!visit(i)) break;
  }
}

// The last byte is acknowledged like all others before the stop; this is intended.
void SerialEeprom::Read24CXX() {
  if (!startReading()) return;
  std::vector<std::uint8_t> read = buffers_.CodeBuffer;
  readAll([this, &read](std::int32_t i) {
    at(read, i) = latches_.ReadByte;
    return true;
  });
  i2c_.I2CStop();
  buffers_.CodeBuffer.swap(read);
}

void SerialEeprom::Verify24CXX() {
  if (!startReading()) return;
  readAll([&](std::int32_t i) {
    buffers_.DeviceChecksum = buffers::addToChecksum(buffers_.DeviceChecksum, latches_.ReadByte);
    if (latches_.ReadByte == at(buffers_.CodeBuffer, i)) return true;
    operation_.ProgramIndex = i;
    reports_.VerifyMismatchReport();
    return false;
  });
  i2c_.I2CStop();
}

}  // namespace kestrel::operations
