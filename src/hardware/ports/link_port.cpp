#include "hardware/ports/link_port.h"

#include <pthread.h>
#include <signal.h>

#include <algorithm>
#include <utility>

#include "link/serial_line.h"
#include "platform/runtime_error.h"

namespace kestrel::ports {
namespace {

using link::LinkError;
using link::LinkProblem;
using std::chrono::milliseconds;

// The adapter switches off after 500 ms without a byte.
constexpr milliseconds kAwakeFor{300};
constexpr milliseconds kBeatEvery{100};

// Long waits come in slices and are sent in blocks of so much; a block of them is executed while
// the next one is on its way. Shorter waits may be pulses and stay in one block with the writes
// behind them.
constexpr std::int64_t kLongWaitMs = 20;
constexpr milliseconds kAhead{20};

}  // namespace

std::unique_ptr<link::ByteLine> openSerialLine(const std::string& device) {
  return std::make_unique<link::SerialLine>(device);
}

LinkPort::LinkPort(std::uint16_t base, std::string device, LinkOptions options)
    : base_(base), device_(std::move(device)), options_(std::move(options)) {}

LinkPort::~LinkPort() { giveBack(); }

void LinkPort::take() {
  line_ = options_.open(device_);
  std::function<bool()> isStopAsked;
  if (options_.stop != nullptr) isStopAsked = [stop = options_.stop] { return stop->isThrown(); };
  connection_ = std::make_unique<link::LinkConnection>(*line_, std::move(isStopAsked));
  connection_->connect();
  noteSent();
  isGone_ = false;
  isVoltageOn_ = false;
}

bool LinkPort::giveBack() noexcept {
  stopHeartbeat();
  if (connection_ && !isGone_) {
    connection_->goodbye();
    isVoltageOn_ = false;
  }
  connection_.reset();
  line_.reset();
  return !mayVoltageBeOn();
}

bool LinkPort::switchOff() noexcept {
  try {
    if (!connection_ || isGone_) return false;
    connection_->connect();  // each hello switches off
    noteSent();
    isVoltageOn_ = false;
    return true;
  } catch (const LinkError& error) {
    isGone_ = true;
    lossReason_ = error.what();
    return false;
  }
}

std::string LinkPort::lossText() const {
  return lossReason_ + ". Cure: " + link::cureOf(LinkProblem::Gone, device_) +
         " and press the hardware test";
}

PortRegister LinkPort::registerOf(std::int16_t port) const {
  const unsigned offset = static_cast<unsigned>(static_cast<std::uint16_t>(port)) - base_;
  return offset < 3 ? static_cast<PortRegister>(offset) : PortRegister::None;
}

// Between operations nobody keeps the adapter awake.
bool LinkPort::isAsleep() const {
  if (!connection_->isConnected()) return true;
  return !isInOperation_ && SteadyClock::now() - lastSent_ > kAwakeFor;
}

void LinkPort::wakeUp() {
  if (isGone_ || !connection_) {
    throw RuntimeError(kDeviceUnavailableError, "Device unavailable: " + lossReason_);
  }
  if (!isAsleep()) return;
  connection_->connect();
  isVoltageOn_ = false;
}

// Everything that is asked of the adapter: what goes wrong on the line becomes the failure of a
// port.
template <typename Action>
auto LinkPort::attempt(Action action) {
  accesses_.fetch_add(1, std::memory_order_relaxed);
  try {
    wakeUp();
    return action();
  } catch (const LinkError& error) {
    fail(error);
  }
}

void LinkPort::fail(const LinkError& error) {
  const bool hasSwitchedOff = error.problem() == LinkProblem::SwitchedOff;
  if (hasSwitchedOff) {
    isVoltageOn_ = false;
    const bool isStopped = error.cause() == link::SwitchOffCause::Stopped;
    if (isStopped && options_.stop != nullptr && options_.stop->isThrown()) {
      throw OperationStopped();
    }
    throw RuntimeError(kDeviceIoError, error.what());
  }
  isGone_ = true;
  lossReason_ = error.what();
  throw RuntimeError(kDeviceUnavailableError, std::string("Device unavailable: ") + error.what());
}

// A voltage counts as on from the moment at which it is asked for.
void LinkPort::followVoltage(PortRegister target, std::uint8_t value) {
  const Latch0Follower::Load load = latch0_.follow(target, value);
  if (load != Latch0Follower::Load::None) isVoltageOn_ = load == Latch0Follower::Load::WithVoltage;
}

void LinkPort::PortOut(std::int16_t port, std::uint8_t value) {
  const PortRegister target = registerOf(port);
  if (target != PortRegister::Data && target != PortRegister::Control) return;
  attempt([&] {
    followVoltage(target, value);
    if (target == PortRegister::Data) {
      connection_->writeData(value);
    } else {
      connection_->writeControl(value);
    }
    if (isInOperation_) return;
    connection_->flush();
    noteSent();
  });
}

PendingRead LinkPort::askPortIn(std::int16_t port) {
  if (registerOf(port) != PortRegister::Status) return {.number = 0xFF};
  return attempt([&] { return PendingRead{.number = connection_->askStatus(), .isHere = false}; });
}

std::uint8_t LinkPort::awaitPortIn(std::int16_t /*port*/, PendingRead pending) {
  return attempt([&] {
    const std::uint8_t value = connection_->statusOf(pending.number);
    sleptMs_ = 0;
    noteSent();
    return value;
  });
}

std::uint8_t LinkPort::PortIn(std::int16_t port) { return fetchPortIn(port, askPortIn(port)); }

void LinkPort::Sleep(std::int32_t milliseconds) {
  if (milliseconds <= 0) return;
  attempt([&] {
    connection_->waitMilliseconds(milliseconds);
    sleptMs_ += milliseconds;
    if (sleptMs_ < kLongWaitMs && isInOperation_) return;
    sleptMs_ = 0;
    connection_->finishBut(kAhead);
    noteSent();
  });
}

void LinkPort::Spin(std::int64_t counts) {
  if (counts <= 0) return;
  attempt([&] {
    constexpr std::int64_t kMostCounts = 1'000'000'000'000;  // no product overflows
    const std::int64_t ns = std::min(counts, kMostCounts) * options_.countNs;
    connection_->waitCounts((ns + link::kCountNs - 1) / link::kCountNs);
  });
}

void LinkPort::beginOperation() {
  if (isGone_ || !connection_) return;
  failure_.clear();
  try {
    attempt([] {});
    isInOperation_ = true;
    startHeartbeat();
  } catch (const std::exception&) {
    // The operation's first access fails in the same way.
  }
}

void LinkPort::endOperation() noexcept {
  if (!isInOperation_) return;
  try {
    attempt([this] { connection_->finish(); });
  } catch (const RuntimeError& error) {
    failure_ = error.what();
    failureNumber_ = error.number();
  } catch (const std::exception&) {
    // A stop: the command's end knows of it.
  }
  stopHeartbeat();
  isInOperation_ = false;
  noteSent();
}

void LinkPort::settle() {
  if (failure_.empty()) return;
  throw RuntimeError(failureNumber_, std::exchange(failure_, {}));
}

void LinkPort::startHeartbeat() {
  if (!options_.keepsAlive) return;
  isHeartStopped_ = false;
  // Signals belong to the thread that waits for the adapter.
  sigset_t all;
  sigset_t before;
  sigfillset(&all);
  pthread_sigmask(SIG_SETMASK, &all, &before);
  heart_ = std::thread([this] { beat(); });
  pthread_sigmask(SIG_SETMASK, &before, nullptr);
}

void LinkPort::stopHeartbeat() noexcept {
  if (!heart_.joinable()) return;
  {
    const std::lock_guard lock(heartMutex_);
    isHeartStopped_ = true;
  }
  heartStopped_.notify_one();
  heart_.join();
}

void LinkPort::beat() {
  std::uint32_t seen = accesses_;
  SteadyClock::time_point movedAt = SteadyClock::now();
  std::unique_lock lock(heartMutex_);
  while (!heartStopped_.wait_for(lock, kBeatEvery, [this] { return isHeartStopped_; })) {
    const std::uint32_t now = accesses_;
    if (now != std::exchange(seen, now)) movedAt = SteadyClock::now();
    // The adapter adds its own 500 ms.
    if (SteadyClock::now() - movedAt > kStandstillLimit - milliseconds(500)) continue;
    try {
      connection_->keepAlive();
    } catch (const LinkError&) {
      return;  // the next access finds it gone
    }
  }
}

}  // namespace kestrel::ports
