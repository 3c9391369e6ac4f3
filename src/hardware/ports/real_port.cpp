#include "hardware/ports/real_port.h"

#include <pthread.h>

#include <array>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <ctime>

namespace kestrel::ports {
namespace {

std::string reasonFor(PortProblem problem, int errorNumber) {
  // The driver answers "No such device or address" here, which says nothing to the reader.
  if (problem == PortProblem::Taken) return "another driver or program has it";
  if (problem == PortProblem::NotAPort) return "not a parallel port";
  return std::strerror(errorNumber);
}

}  // namespace

std::string addressText(std::uint16_t address) {
  std::array<char, 8> text{};
  std::snprintf(text.data(), text.size(), "%X", address);
  return text.data();
}

PortError::PortError(PortProblem problem, const std::string& device, int errorNumber)
    : RuntimeError(
          problem == PortProblem::NoPermission || problem == PortProblem::NotPermitted
              ? kPermissionDeniedError
              : kDeviceUnavailableError,
          "Parallel port " + device + " cannot be used: " + reasonFor(problem, errorNumber)),
      problem_(problem) {}

bool RealPort::switchOff() noexcept {
  const bool isOff = switchOffWithin(kSwitchOffLimit, board());
  if (isOff) noteVoltage(false);
  switchOffFailed_ = !isOff;
  return isOff;
}

std::string RealPort::lossText() const {
  return loss_ == Loss::Guard
             ? "its guard process was ended. Cure: press the hardware test"
             : "the port has vanished. Cure: plug it in again and press the hardware test";
}

void RealPort::begin() {
  loss_ = switchOff() ? Loss::None : Loss::Port;
  if (isGone()) throwGone();
}

void RealPort::setGuard(GuardMemory* memory) noexcept {
  GuardMemory* const next = memory != nullptr ? memory : &ownMemory_;
  next->isVoltageOn = memory_->isVoltageOn.load();
  memory_ = next;
  isGuarded_ = memory != nullptr;
}

// The guard holds this for as long as it lives. Without one the port is to be taken anew; the board
// can still be put to rest.
void RealPort::lookForGuard() {
  if (pthread_mutex_trylock(&memory_->duty) == EBUSY) return;
  isGuarded_ = false;
  loss_ = Loss::Guard;
  throw RuntimeError(kDeviceIoError, "The guard process of " + name_ +
                                         " was ended. Press the hardware test to go on");
}

// Both would write at once if this did not wait for the guard's last try.
void RealPort::throwStoodStill() {
  constexpr std::timespec kPause{.tv_sec = 0, .tv_nsec = 1'000'000};
  GuardAct act = memory_->act;
  for (int i = 0; act == GuardAct::SwitchesOff && i < 3000; ++i) {
    nanosleep(&kPause, nullptr);
    act = memory_->act;
  }
  memory_->act.compare_exchange_strong(act, GuardAct::Watches);
  switchOffFailed_ = act != GuardAct::SwitchedOff;
  throw RuntimeError(kDeviceIoError,
                     switchOffFailed_
                         ? "The program stood still with a programming voltage on"
                         : "The program stood still with a programming voltage on: switched off");
}

// Whoever hears of it may ask first and act later: the voltages do not wait for that.
void RealPort::throwGone() {
  const int reason = errno;
  if (loss_ != Loss::Port) {
    loss_ = Loss::Port;
    switchOff();
  }
  throw RuntimeError(kDeviceUnavailableError,
                     "Device unavailable: " + name_ + " (" + std::strerror(reason) + ")");
}

}  // namespace kestrel::ports
