// emulated-link [--model 4|5|6] [--chip TYPE[=FILE]] [--plug PIN]
//
// Serves the emulated adapter with a simulated board behind it on a pseudo terminal, in step with
// this machine's clock. The name of the serial line is the first line of the output. Ends at SIGINT
// and SIGTERM. FILE holds the chip's contents: read at the start if it is there, and written when
// they have changed. --plug puts a loop-back plug in the board's place, with the wire of a pin cut
// (0: none).
#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <stdlib.h>
#include <termios.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <chrono>
#include <cstdio>
#include <deque>
#include <iostream>
#include <optional>
#include <span>
#include <string>
#include <system_error>
#include <vector>

#include "app/launch/simulated_board.h"
#include "link/emulated_adapter.h"

namespace kestrel::test {
namespace {

using Bytes = std::vector<std::uint8_t>;
using Cycles = EmulatedAdapter::Cycles;
using SteadyClock = std::chrono::steady_clock;

std::atomic<bool> isEnded{false};

struct Options {
  launch::LaunchOptions board;
  std::optional<std::size_t> plugCutAt;
};

Options readOptions(std::span<char*> arguments) {
  Options read;
  launch::LaunchOptions& options = read.board;
  options.simulate = true;
  for (std::size_t i = 1; i < arguments.size(); i += 2) {
    const std::string name = arguments[i];
    const std::string value = i + 1 < arguments.size() ? arguments[i + 1] : "";
    if (name == "--model") {
      options.model = launch::parseModel(value);
    } else if (name == "--chip") {
      options.chip = launch::parseChip(value);
    } else if (name == "--plug") {
      read.plugCutAt = std::stoul(value);
    } else {
      throw launch::UsageError(
          "usage: emulated-link [--model 4|5|6] [--chip TYPE[=FILE]] [--plug PIN]");
    }
  }
  if (!options.chip)
    options.faults.push_back({.kind = launch::Fault::Kind::EmptySocket, .value = 0});
  return read;
}

/// The adapter's end of a pseudo terminal.
class Terminal {
 public:
  Terminal() : descriptor_(::posix_openpt(O_RDWR | O_NOCTTY | O_NONBLOCK)) {
    termios settings{};
    const bool isOpen = descriptor_ >= 0 && ::grantpt(descriptor_) == 0 &&
                        ::unlockpt(descriptor_) == 0 && ::tcgetattr(descriptor_, &settings) == 0;
    if (!isOpen) throw std::system_error(errno, std::generic_category(), "pseudo terminal");
    ::cfmakeraw(&settings);  // or it would echo the adapter's bytes before a program has it open
    ::tcsetattr(descriptor_, TCSANOW, &settings);
  }
  ~Terminal() { ::close(descriptor_); }
  Terminal(const Terminal&) = delete;
  Terminal& operator=(const Terminal&) = delete;

  [[nodiscard]] std::string name() const { return ::ptsname(descriptor_); }

  /// Nothing while no program has the line open.
  [[nodiscard]] Bytes read() const {
    Bytes bytes(4096);
    const ssize_t count = ::read(descriptor_, bytes.data(), bytes.size());
    bytes.resize(count > 0 ? static_cast<std::size_t>(count) : 0);
    return bytes;
  }

  /// What nobody reads is lost, as on a serial line.
  void write(std::span<const std::uint8_t> bytes) const {
    static_cast<void>(!::write(descriptor_, bytes.data(), bytes.size()));
  }

  void waitForBytes(std::chrono::microseconds limit) const {
    pollfd watched{.fd = descriptor_, .events = POLLIN, .revents = 0};
    const timespec time{.tv_sec = 0, .tv_nsec = limit.count() * 1000};
    if (::ppoll(&watched, 1, &time, nullptr) > 0 && (watched.revents & POLLHUP) != 0) {
      ::usleep(static_cast<useconds_t>(limit.count()));  // a closed line is ready all the time
    }
  }

 private:
  int descriptor_;
};

/// Runs the adapter no faster than the clock. Time that this machine was too slow for is not made
/// up: what the program at the other end takes for silence must not pass in a hurry.
class Server {
 public:
  Server(EmulatedAdapter& adapter, const Terminal& terminal)
      : adapter_(adapter), terminal_(terminal) {
    adapter_.onByte([this](std::uint8_t value, Cycles at) { outgoing_.push_back({value, at}); });
  }

  void turn() {
    for (const std::uint8_t value : terminal_.read()) adapter_.send(value, adapter_.now());
    const Cycles target = clockCycles();
    constexpr Cycles kStep = EmulatedAdapter::kCyclesPerMs / 5;
    adapter_.runUntil(std::min(target, adapter_.now() + kStep));
    sendDue();
    if (adapter_.now() >= target) terminal_.waitForBytes(std::chrono::microseconds(500));
  }

 private:
  struct Outgoing {
    std::uint8_t value;
    Cycles at;
  };

  [[nodiscard]] Cycles clockCycles() {
    const auto us =
        std::chrono::duration_cast<std::chrono::microseconds>(SteadyClock::now() - start_);
    const Cycles target = static_cast<Cycles>(us.count()) * EmulatedAdapter::kCyclesPerUs;
    constexpr Cycles kLateness = 5 * EmulatedAdapter::kCyclesPerMs;
    if (target <= adapter_.now() + kLateness) return target;
    start_ += std::chrono::microseconds((target - adapter_.now()) / EmulatedAdapter::kCyclesPerUs);
    return adapter_.now() + 1;
  }

  void sendDue() {
    Bytes due;
    while (!outgoing_.empty() && outgoing_.front().at <= adapter_.now()) {
      due.push_back(outgoing_.front().value);
      outgoing_.pop_front();
    }
    if (!due.empty()) terminal_.write(due);
  }

  EmulatedAdapter& adapter_;
  const Terminal& terminal_;
  std::deque<Outgoing> outgoing_;
  SteadyClock::time_point start_ = SteadyClock::now();
};

void endAtSignals() {
  struct sigaction action {};
  action.sa_handler = [](int) { isEnded = true; };
  ::sigaction(SIGINT, &action, nullptr);
  ::sigaction(SIGTERM, &action, nullptr);
}

void serve(const Options& options) {
  launch::SimulatedBoard simulated(options.board, "");
  EmulatedAdapter adapter(KESTREL_LINK_PROGRAM, simulated.bench());
  if (options.plugCutAt) adapter.fitPlug(*options.plugCutAt);
  const Terminal terminal;
  Server server(adapter, terminal);
  endAtSignals();
  std::cout << terminal.name() << std::endl;
  auto writtenAt = SteadyClock::now();
  while (!isEnded) {
    server.turn();
    if (SteadyClock::now() - writtenAt < std::chrono::milliseconds(250)) continue;
    simulated.saveChip();
    writtenAt = SteadyClock::now();
  }
  simulated.saveChip();
  for (const sim::Finding& finding : simulated.bench().findings().all()) {
    std::cerr << "finding: " << finding.text << " (" << finding.count << ")\n";
  }
}

}  // namespace
}  // namespace kestrel::test

int main(int count, char** arguments) {
  try {
    kestrel::test::serve(kestrel::test::readOptions({arguments, static_cast<std::size_t>(count)}));
    return 0;
  } catch (const std::exception& error) {
    std::cerr << "emulated-link: " << error.what() << '\n';
    return 1;
  }
}
