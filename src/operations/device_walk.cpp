#include "operations/device_walk.h"

#include "platform/runtime_error.h"

namespace kestrel::operations {

void DeviceWalk::setBounds() {
  const std::int32_t last = p_.state.CodeLength - 1;
  p_.state.ReadHighLast = narrowed<std::int16_t>(last / 65536);
  p_.state.ReadMidLast = narrowed<std::int16_t>((last - p_.state.ReadHighLast * 65536) / 256);
}

void DeviceWalk::begin() {
  p_.bus.Reset();
  p_.bus.SETADR();
  p_.bus.sleepMs(kStartWaitMs);
  p_.registers.REG4OFF();
  p_.bus.CEOEON();
}

bool DeviceWalk::readAll(const Visit& visit) {
  ProgrammerState& s = p_.state;
  setBounds();
  for (std::int32_t high = 0; high <= s.ReadHighLast; ++high) {
    p_.bus.latchHigh(high);
    for (std::int32_t mid = 0; mid <= s.ReadMidLast; ++mid) {
      p_.bus.latchMiddle(mid);
      p_.reporting.advanceProgress();
      if (!readPage(high * 65536 + mid * 256, visit)) return false;
    }
  }
  return true;
}

bool DeviceWalk::readPage(std::int32_t pageAddress, const Visit& visit) {
  ProgrammerState& s = p_.state;
  for (s.RegShadow2 = 0; s.RegShadow2 <= 255; ++s.RegShadow2) {
    p_.registers.SetReg2();
    p_.bus.GetNibbles();
    if (!visit(pageAddress + s.RegShadow2)) return false;
  }
  return true;
}

}  // namespace kestrel::operations
