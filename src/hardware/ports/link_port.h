#pragma once

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <functional>
#include <memory>
#include <mutex>
#include <string>
#include <thread>

#include "hardware/ports/held_port.h"
#include "hardware/ports/latch0_follower.h"
#include "hardware/ports/safe_off.h"
#include "link/byte_line.h"
#include "link/connection.h"
#include "link/link_error.h"
#include "platform/stop_switch.h"
#include "platform/waits.h"

namespace kestrel::ports {

/// How the line to an adapter is opened, and used.
struct LinkOptions {
  /// Throws link::LinkError.
  std::function<std::unique_ptr<link::ByteLine>(const std::string& device)> open;
  std::int64_t countNs = kDefaultCountNs;
  const StopSwitch* stop = nullptr;  // if any, outlives the port
  bool keepsAlive = true;            // by a thread of its own; not where time is emulated
};

/// The serial lines of this machine.
[[nodiscard]] std::unique_ptr<link::ByteLine> openSerialLine(const std::string& device);

/// A parallel port at the end of a serial line, and the clock of what is asked of it: writes and
/// waits are gathered and sent when a read is fetched, when a long wait is asked for and at the end
/// of an operation. Outside an operation each write is sent at once.
///
/// The adapter is the guard of its board. Between operations it is left alone and switches off by
/// itself; the next access greets it again. In an operation a thread keeps it awake for as long as
/// the program goes on with its accesses: kStandstillLimit, as for the guard of other ports.
///
/// Throws RuntimeError 57 when the adapter has switched off by itself, 68 when it is gone, and
/// OperationStopped when the stop switch has ended a wait for it.
class LinkPort final : public HeldPort, public Waits {
 public:
  static constexpr std::chrono::milliseconds kStandstillLimit{2'500};

  LinkPort(std::uint16_t base, std::string device, LinkOptions options);
  ~LinkPort() override;
  LinkPort(const LinkPort&) = delete;
  LinkPort& operator=(const LinkPort&) = delete;

  /// Throws link::LinkError.
  void take() override;
  bool giveBack() noexcept override;
  bool switchOff() noexcept override;
  [[nodiscard]] bool isGone() const noexcept override { return isGone_; }
  [[nodiscard]] std::string lossText() const override;
  [[nodiscard]] bool mayVoltageBeOn() const noexcept override { return isGone_ && isVoltageOn_; }

  void PortOut(std::int16_t port, std::uint8_t value) override;
  [[nodiscard]] std::uint8_t PortIn(std::int16_t port) override;
  [[nodiscard]] PendingRead askPortIn(std::int16_t port) override;
  void Sleep(std::int32_t milliseconds) override;
  void Spin(std::int64_t counts) override;

  /// Of the outermost operation. At its end everything that was asked for has been executed; what
  /// went wrong with it is thrown by settle.
  void beginOperation();
  void endOperation() noexcept;

  /// When a command ends: throws what its last accesses came to.
  void settle();

 private:
  using SteadyClock = std::chrono::steady_clock;

  [[nodiscard]] std::uint8_t awaitPortIn(std::int16_t port, PendingRead pending) override;

  template <typename Action>
  auto attempt(Action action);
  void wakeUp();
  [[nodiscard]] bool isAsleep() const;
  void noteSent() { lastSent_ = SteadyClock::now(); }
  void followVoltage(PortRegister target, std::uint8_t value);
  [[nodiscard]] PortRegister registerOf(std::int16_t port) const;
  [[noreturn]] void fail(const link::LinkError& error);
  void startHeartbeat();
  void stopHeartbeat() noexcept;
  void beat();

  std::uint16_t base_;
  std::string device_;
  LinkOptions options_;
  std::unique_ptr<link::ByteLine> line_;
  std::unique_ptr<link::LinkConnection> connection_;
  Latch0Follower latch0_;
  bool isVoltageOn_ = false;
  bool isGone_ = false;
  std::string lossReason_;
  bool isInOperation_ = false;
  std::int64_t sleptMs_ = 0;  // gathered since the last block that a wait has sent
  std::string failure_;       // of an operation's end
  int failureNumber_ = 0;
  SteadyClock::time_point lastSent_{};

  std::atomic<std::uint32_t> accesses_{0};
  std::mutex heartMutex_;
  std::condition_variable heartStopped_;
  bool isHeartStopped_ = false;
  std::thread heart_;
};

}  // namespace kestrel::ports
