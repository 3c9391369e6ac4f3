#include "operations/device_walk.h"

#include "platform/runtime_error.h"

namespace kestrel {
namespace {

constexpr int kLatch3Kept = 0xF0;

}  // namespace

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
    s.RegShadow3 = narrowed<std::int16_t>(at(s.AddrMapHigh, high) | (s.RegShadow3 & kLatch3Kept) |
                                          s.Reg3Fixed);
    p_.registers.SetReg3();
    for (std::int32_t mid = 0; mid <= s.ReadMidLast; ++mid) {
      s.RegShadow1 = narrowed<std::int16_t>(at(s.AddrMapMid, mid) | s.Reg1Fixed);
      p_.registers.SetReg1();
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

}  // namespace kestrel
