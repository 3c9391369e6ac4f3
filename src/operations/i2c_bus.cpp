#include "operations/i2c_bus.h"

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
  p_.state.RegShadow4 = level;
  p_.registers.SetReg4();
}

void I2cBus::clock() {
  p_.bus.CEOFF();
  p_.bus.CEON();
}

// SDA falls while SCL is high.
void I2cBus::I2CStart() {
  p_.bus.CEON();
  setSda(kSdaHigh);
  p_.registers.REG4ON();
  p_.bus.CEOFF();
  setSda(kSdaLow);
  p_.bus.CEON();
}

// SDA rises while SCL is high.
void I2cBus::I2CStop() {
  p_.bus.CEON();
  setSda(kSdaLow);
  p_.registers.REG4ON();
  p_.bus.CEOFF();
  setSda(kSdaHigh);
  p_.bus.CEON();
}

void I2cBus::sendBits() {
  p_.registers.REG4ON();
  p_.state.RegShadow4 = p_.state.ByteToWrite;
  for (int bit = 0; bit < kBits; ++bit) {
    p_.registers.SetReg4();
    clock();
    p_.state.RegShadow4 = static_cast<std::int16_t>((p_.state.RegShadow4 * 2) & 0xFF);
  }
}

void I2cBus::I2CSendByte() {
  sendBits();
  I2CWaitAck();
}

void I2cBus::I2CSendByteNoWait() {
  sendBits();
  p_.registers.REG4OFF();
  p_.bus.sleepMs(kAckPollMs);
  p_.bus.GetNibbles24CXX();
  p_.state.ReadByte &= kSdaBit;
}

void I2cBus::I2CWaitAck() {
  p_.registers.REG4OFF();
  for (std::int16_t count = 1; count <= kAckPolls; ++count) {
    p_.state.I2CError = count;
    p_.bus.GetNibbles24CXX();
    if ((p_.state.ReadByte & kSdaBit) == 0) {
      p_.state.I2CError = 0;
      break;
    }
    p_.bus.sleepMs(kAckPollMs);
  }
  clock();
}

void I2cBus::I2CReadByte() {
  unsigned value = 0;
  p_.registers.REG4OFF();
  for (int bit = 0; bit < kBits; ++bit) {
    p_.bus.CEON();
    p_.bus.CEOFF();
    p_.bus.GetNibbles24CXX();
    value = value * 2 + ((p_.state.ReadByte & kSdaBit) != 0 ? 1 : 0);
  }
  p_.bus.CEON();
  p_.state.ReadByte = static_cast<std::uint8_t>(value);
}

}  // namespace kestrel::operations
