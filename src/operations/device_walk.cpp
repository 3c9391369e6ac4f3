#include "operations/device_walk.h"

#include "platform/runtime_error.h"

namespace kestrel::operations {

void DeviceWalk::setBounds() {
  const std::int32_t last = buffers_.CodeLength - 1;
  operation_.ReadHighLast = narrowed<std::int16_t>(last / 65536);
  operation_.ReadMidLast = narrowed<std::int16_t>((last - operation_.ReadHighLast * 65536) / 256);
}

void DeviceWalk::begin() {
  board_.startOperation();
  board_.registers.REG4OFF();
  board_.bus.CEOEON();
}

bool DeviceWalk::readAll(const Visit& visit) {
  setBounds();
  for (std::int32_t high = 0; high <= operation_.ReadHighLast; ++high) {
    board_.bus.latchHigh(high);
    for (std::int32_t mid = 0; mid <= operation_.ReadMidLast; ++mid) {
      board_.bus.latchMiddle(mid);
      reporting_.advanceProgress();
      if (!readPage(high * 65536 + mid * 256, visit)) return false;
    }
  }
  return true;
}

bool DeviceWalk::readPage(std::int32_t pageAddress, const Visit& visit) {
  for (latches_.RegShadow2 = 0; latches_.RegShadow2 <= 255; ++latches_.RegShadow2) {
    board_.registers.SetReg2();
    board_.bus.GetNibbles();
    if (!visit(pageAddress + latches_.RegShadow2)) return false;
  }
  return true;
}

}  // namespace kestrel::operations
