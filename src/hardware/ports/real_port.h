#pragma once

#include <cstdint>
#include <string>
#include <utility>
#include <vector>

#include "hardware/ports/guard_protocol.h"
#include "hardware/ports/held_port.h"
#include "hardware/ports/latch0_follower.h"
#include "hardware/ports/port_lines.h"
#include "platform/runtime_error.h"

namespace kestrel::ports {

/// An I/O address in upper-case hex, with nothing before or behind: 378.
[[nodiscard]] std::string addressText(std::uint16_t address);

/// Why a port could not be taken.
enum class PortProblem {
  NoDevice,      // no such device file: the driver that makes it is not loaded
  NoHardware,    // the device file has no port behind it
  NoPermission,  // the file belongs to others
  Taken,         // another driver or program has the port
  NotAPort,      // the device is something else
  NotPermitted,  // direct access: not for this user, or the kernel is locked down
  Other,
};

/// A port that cannot be taken. The text names the device and the reason.
class PortError : public RuntimeError {
 public:
  PortError(PortProblem problem, const std::string& device, int errorNumber);

  [[nodiscard]] PortProblem problem() const { return problem_; }

 private:
  PortProblem problem_;
};

/// One parallel port of this machine.
///
/// Every access moves the counter that the port's guard looks at. It throws RuntimeError 57 when
/// the guard has switched off meanwhile, because the program stood still with a voltage on, or when
/// the guard is gone; and RuntimeError 68 when the access fails. Before an access that failed is
/// reported, the voltages are switched off, if that can still be done.
class RealPort : public HeldPort {
 public:
  // The voltages are switched off before anything else: the claim itself moves the control lines.
  // When they cannot be, the port stays claimed after giveBack, so that the guard can go on trying.

  /// Tries for up to kSwitchOffLimit.
  bool switchOff() noexcept final;

  /// The open file, for the guard to inherit.
  [[nodiscard]] virtual int descriptor() const noexcept = 0;

  /// What the guard learns of the port on its command line.
  [[nodiscard]] virtual std::vector<std::string> guardArguments() const = 0;

  [[nodiscard]] bool isGone() const noexcept final { return loss_ != Loss::None; }
  [[nodiscard]] std::string lossText() const final;
  [[nodiscard]] bool mayVoltageBeOn() const noexcept final {
    return switchOffFailed_ && memory_->isVoltageOn;
  }

  /// From now on a guard looks on by this memory; with nullptr none does any more.
  void setGuard(GuardMemory* memory) noexcept;

 protected:
  RealPort(std::uint16_t base, std::string name) : base_(base), name_(std::move(name)) {}

  /// What switches off the board behind this port.
  [[nodiscard]] virtual SwitchOff& board() noexcept = 0;

  /// After the claim: switches off, and begins with a clean slate. Throws RuntimeError 68.
  void begin();

  [[nodiscard]] const std::string& name() const { return name_; }

  [[nodiscard]] PortRegister registerOf(std::int16_t port) const {
    const unsigned offset = static_cast<unsigned>(static_cast<std::uint16_t>(port)) - base_;
    return offset < 3 ? static_cast<PortRegister>(offset) : PortRegister::None;
  }

  /// Before each access. The counter has one writer, so it needs no locked instruction.
  void countAccess() {
    constexpr std::uint32_t kAccessesBetweenLooks = 256;  // a look takes 20 ns
    const std::uint32_t count = memory_->accesses.load(std::memory_order_relaxed) + 1;
    memory_->accesses.store(count, std::memory_order_relaxed);
    if (memory_->act.load(std::memory_order_relaxed) != GuardAct::Watches) throwStoodStill();
    if (count % kAccessesBetweenLooks == 0 && isGuarded_) lookForGuard();
  }

  /// Before and after each write: a voltage counts as on from before it goes on until after it
  /// went off.
  [[nodiscard]] Latch0Follower::Load beforeWrite(PortRegister target, std::uint8_t value) {
    const Latch0Follower::Load load = latch0_.follow(target, value);
    if (load == Latch0Follower::Load::WithVoltage) noteVoltage(true);
    return load;
  }
  void afterWrite(Latch0Follower::Load load) {
    if (load == Latch0Follower::Load::WithoutVoltage) noteVoltage(false);
  }

  /// After an access that failed; errno tells why.
  [[noreturn]] void throwGone();

 private:
  enum class Loss : std::uint8_t { None, Port, Guard };

  void noteVoltage(bool isOn) { memory_->isVoltageOn.store(isOn, std::memory_order_relaxed); }
  void lookForGuard();
  [[noreturn]] void throwStoodStill();

  GuardMemory* memory_ = &ownMemory_;
  Latch0Follower latch0_;
  std::uint16_t base_;
  Loss loss_ = Loss::None;
  bool isGuarded_ = false;
  bool switchOffFailed_ = false;
  std::string name_;
  GuardMemory ownMemory_;  // while there is no guard
};

/// The port over lines of a kind: the calls between them are direct, as there are millions.
template <typename Lines>
class RealPortOver : public RealPort {
 public:
  void PortOut(std::int16_t port, std::uint8_t value) final {
    countAccess();
    const PortRegister target = registerOf(port);
    const Latch0Follower::Load load = beforeWrite(target, value);
    if (!lines_.write(target, value)) throwGone();
    afterWrite(load);
  }

  [[nodiscard]] std::uint8_t PortIn(std::int16_t port) final {
    countAccess();
    std::uint8_t value = 0xFF;
    if (registerOf(port) == PortRegister::Status && !lines_.readStatus(value)) throwGone();
    return value;
  }

 protected:
  RealPortOver(std::uint16_t base, std::string name, Lines lines)
      : RealPort(base, std::move(name)), lines_(lines) {}

  [[nodiscard]] SwitchOff& board() noexcept override { return lines_; }

  Lines lines_;
};

}  // namespace kestrel::ports
