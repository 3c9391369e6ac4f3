#include "operations/i2c_bus.h"

#include <array>

namespace kestrel::operations {
namespace {

constexpr std::int16_t kSdaHigh = 0x80;
constexpr std::int16_t kSdaLow = 0x00;
constexpr unsigned kSdaBit = 0x80;
constexpr int kBits = 8;
constexpr std::int16_t kAckPolls = 200;
constexpr std::int32_t kAckPollMs = 1;

}  // namespace

void I2cBus::setSda(std::int16_t level) {
  latches_.RegShadow4 = level;
  board_.registers.SetReg4();
}

void I2cBus::clock() {
  board_.bus.CEOFF();
  board_.bus.CEON();
}

// SDA falls while SCL is high.
void I2cBus::I2CStart() {
  board_.bus.CEON();
  setSda(kSdaHigh);
  board_.registers.REG4ON();
  board_.bus.CEOFF();
  setSda(kSdaLow);
  board_.bus.CEON();
}

// SDA rises while SCL is high.
void I2cBus::I2CStop() {
  board_.bus.CEON();
  setSda(kSdaLow);
  board_.registers.REG4ON();
  board_.bus.CEOFF();
  setSda(kSdaHigh);
  board_.bus.CEON();
}

void I2cBus::sendBits() {
  board_.registers.REG4ON();
  latches_.RegShadow4 = operation_.ByteToWrite;
  for (int bit = 0; bit < kBits; ++bit) {
    board_.registers.SetReg4();
    clock();
    latches_.RegShadow4 = static_cast<std::int16_t>((latches_.RegShadow4 * 2) & 0xFF);
  }
}

void I2cBus::I2CSendByte() {
  sendBits();
  I2CWaitAck();
}

void I2cBus::I2CSendByteNoWait() {
  sendBits();
  board_.registers.REG4OFF();
  board_.bus.sleepMs(kAckPollMs);
  board_.bus.GetNibbles24CXX();
  latches_.ReadByte &= kSdaBit;
}

void I2cBus::I2CWaitAck() {
  board_.registers.REG4OFF();
  for (std::int16_t count = 1; count <= kAckPolls; ++count) {
    operation_.I2CError = count;
    board_.bus.GetNibbles24CXX();
    if ((latches_.ReadByte & kSdaBit) == 0) {
      operation_.I2CError = 0;
      break;
    }
    board_.bus.sleepMs(kAckPollMs);
  }
  clock();
}

void I2cBus::I2CReadByte() {
  unsigned value = 0;
  std::array<hardware::PendingByte, kBits> bits;
  board_.registers.REG4OFF();
  for (hardware::PendingByte& bit : bits) {
    board_.bus.CEON();
    board_.bus.CEOFF();
    bit = board_.bus.askNibbles24CXX();
  }
  for (const hardware::PendingByte& bit : bits) {
    board_.bus.fetchNibbles24CXX(bit);
    value = value * 2 + ((latches_.ReadByte & kSdaBit) != 0 ? 1 : 0);
  }
  board_.bus.CEON();
  latches_.ReadByte = static_cast<std::uint8_t>(value);
}

}  // namespace kestrel::operations
