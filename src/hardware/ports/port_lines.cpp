#include "hardware/ports/port_lines.h"

#include <linux/ppdev.h>
#include <sys/ioctl.h>

#include <cerrno>

namespace kestrel::ports {
bool PortLines::switchOff() noexcept {
  bool written = true;
  for (const PortWrite& each : kSafeOff) written = write(each.target, each.value) && written;
  return written;
}

int PpdevLines::call(unsigned long request, void* argument) noexcept {
  int result = 0;
  for (int i = 0; i < SystemCalls::kMostInterruptions; ++i) {
    result = calls_.ioctl(descriptor_, request, argument);
    if (result >= 0 || errno != EINTR) break;
  }
  return result;
}

bool PpdevLines::write(PortRegister target, std::uint8_t value) noexcept {
  if (target == PortRegister::Data) return call(PPWDATA, &value) >= 0;
  if (target != PortRegister::Control) return true;
  value &= kControlLines;
  return call(PPWCONTROL, &value) >= 0;
}

bool PpdevLines::readStatus(std::uint8_t& value) noexcept { return call(PPRSTATUS, &value) >= 0; }

bool DirectLines::permit(bool isWanted) noexcept {
  return calls_.ioperm(address_, kRegisters, isWanted) == 0;
}

bool DirectLines::write(PortRegister target, std::uint8_t value) noexcept {
  if (target == PortRegister::Data) calls_.outByte(address_, value);
  if (target == PortRegister::Control) {
    calls_.outByte(static_cast<std::uint16_t>(address_ + 2U), value & kControlLines);
  }
  return true;
}

bool DirectLines::readStatus(std::uint8_t& value) noexcept {
  value = calls_.inByte(static_cast<std::uint16_t>(address_ + 1U));
  return true;
}

}  // namespace kestrel::ports
