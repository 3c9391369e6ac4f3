#include "operations/device_walk.h"

#include <algorithm>
#include <array>
#include <span>

#include "display/hex_line.h"
#include "platform/runtime_error.h"

namespace kestrel::operations {
namespace {

using display::kPageBytes;

}  // namespace

void DeviceWalk::setBounds() {
  const std::int32_t last = buffers_.CodeLength - 1;
  operation_.ReadHighLast = narrowed<std::int16_t>(last / 65536);
  operation_.ReadMidLast = narrowed<std::int16_t>((last - operation_.ReadHighLast * 65536) / 256);
}

void DeviceWalk::begin() {
  outcome_ = {};
  if (isByDataSheet()) {
    driver_ = drivers_.forDevice();
    driver_->begin();
    return;
  }
  board_.startOperation();
  board_.registers.REG4OFF();
  board_.bus.CEOEON();
}

bool DeviceWalk::readAll(const Visit& visit) {
  if (isByDataSheet()) return readAllByDataSheet(visit);
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

bool DeviceWalk::readAllByDataSheet(const Visit& visit) {
  bool isDone = true;
  for (std::int32_t first = 0; isDone && first < buffers_.CodeLength; first += kPageBytes) {
    reporting_.advanceProgress();
    isDone = readPageByDataSheet(first, visit);
  }
  driver_->end();
  return isDone;
}

bool DeviceWalk::readPageByDataSheet(std::int32_t pageAddress, const Visit& visit) {
  std::array<std::uint8_t, kPageBytes> page{};
  const std::int32_t count = std::min(kPageBytes, buffers_.CodeLength - pageAddress);
  const std::span bytes = std::span(page).first(static_cast<std::size_t>(count));
  outcome_ = driver_->read(static_cast<std::uint32_t>(pageAddress), bytes);
  if (!outcome_.isDone()) return false;
  for (std::int32_t address = pageAddress; const std::uint8_t byte : bytes) {
    latches_.ReadByte = byte;
    if (!visit(address++)) return false;
  }
  return true;
}

}  // namespace kestrel::operations
