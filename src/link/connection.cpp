#include "link/connection.h"

#include <algorithm>
#include <array>
#include <utility>

#include "link/link_error.h"

namespace kestrel::link {
namespace {

using std::chrono::milliseconds;

constexpr milliseconds kKeepAliveEvery{100};
// How often a wait for the adapter looks for a stop; a signal wakes it at once.
constexpr milliseconds kLookEvery{20};
constexpr milliseconds kHelloEvery{200};
// A boot loader holds a board for up to two seconds after a reset.
constexpr int kHelloTries = 15;
// Longest time between the end of a block's waits and its answer: the line, and a busy computer.
constexpr milliseconds kAnswerLimit{2000};

// Waits above this are blocks of their own, so that a stop finds short ones only and an adapter
// that has lost its program executes little more.
constexpr std::int64_t kLongWaitMs = 100;

// Version, block bytes, window, reads, and at least one letter of the name.
constexpr std::size_t kLeastWelcome = 6;

std::string reasonOf(SwitchOffCause cause) {
  switch (cause) {
    case SwitchOffCause::SwitchedOn:
      return "it was reset";
    case SwitchOffCause::Broken:
      return "a block arrived damaged";
    case SwitchOffCause::Stopped:
      return "it was stopped";
    case SwitchOffCause::Silent:
      return "the line was silent";
    case SwitchOffCause::Ended:
      return "the connection was ended";
    case SwitchOffCause::Foreign:
      return "it was greeted in another version";
  }
  return "unknown reason";
}

}  // namespace

void LinkConnection::restart() {
  isConnected_ = false;
  isStopSent_ = false;
  reader_ = {};
  received_.clear();
  encoder_ = {};
  unanswered_.clear();
  arrived_.clear();
  nextArrival_ = nextTicket_;
}

void LinkConnection::connect() {
  restart();
  for (int tries = 0; tries < kHelloTries; ++tries) {
    if (offer()) return;
  }
  if (reader_.rejected() > 0) {
    throw LinkError(LinkProblem::NotAnAdapter, line_.name() + ": what answers is no adapter");
  }
  throw LinkError(LinkProblem::NoAnswer, line_.name() + ": nothing answers");
}

// One hello. Answers to blocks of an earlier connection may come before its welcome.
bool LinkConnection::offer() {
  const unsigned sequence = nextSequence_++ & kSequenceBits;
  line_.write(frameBlock(BlockKind::Hello, sequence, std::array{kProtocolVersion}));
  for (;;) {
    const Answer answer = awaitAnswer(kHelloEvery);
    if (answer.kind == AnswerKind::None) return false;
    if (answer.kind != AnswerKind::Welcome || answer.sequence != sequence) continue;
    acceptWelcome(answer);
    return true;
  }
}

void LinkConnection::acceptWelcome(const Answer& answer) {
  const auto& contents = answer.contents;
  const unsigned version = contents.empty() ? 0 : contents[0];
  if (version != kProtocolVersion) {
    throw LinkError(LinkProblem::OtherVersion, line_.name() + ": the adapter speaks version " +
                                                   std::to_string(version) +
                                                   " of the protocol, the program version " +
                                                   std::to_string(kProtocolVersion));
  }
  if (contents.size() < kLeastWelcome) {
    throw LinkError(LinkProblem::NotAnAdapter, line_.name() + ": what answers is no adapter");
  }
  adapter_ = {.name = {contents.begin() + 5, contents.end()},
              .version = version,
              .blockBytes = contents[1] | static_cast<std::size_t>(contents[2]) << 8U,
              .windowBytes = contents[3],
              .mostReads = contents[4]};
  isConnected_ = true;
}

void LinkConnection::goodbye() noexcept {
  if (!isConnected_) return;
  try {
    finish();
    isConnected_ = false;
    line_.write(frameBlock(BlockKind::Goodbye, nextSequence_++, {}));
    static_cast<void>(awaitAnswer(kAnswerLimit));
  } catch (const LinkError&) {
    isConnected_ = false;  // it switches off by itself
  }
}

void LinkConnection::writeData(std::uint8_t value) {
  gather({.kind = Operation::Kind::Data, .value = value});
}

void LinkConnection::writeControl(std::uint8_t value) {
  constexpr std::uint8_t kLines = 0x0F;
  gather({.kind = Operation::Kind::Control, .value = static_cast<std::uint8_t>(value & kLines)});
}

void LinkConnection::waitCounts(std::int64_t counts) {
  if (counts > kLongWaitMs * kCountsPerMs) {
    waitMilliseconds(counts / kCountsPerMs);
    counts %= kCountsPerMs;
  }
  if (counts > 0) gather({.kind = Operation::Kind::Wait, .counts = counts});
}

// The next block is on its way while one is executed, so that no time is lost between them.
void LinkConnection::waitMilliseconds(std::int64_t milliseconds) {
  while (milliseconds > kLongWaitMs) {
    gather({.kind = Operation::Kind::Wait, .counts = kLongWaitMs * kCountsPerMs});
    finishBut(std::chrono::milliseconds(kLongWaitMs));
    milliseconds -= kLongWaitMs;
  }
  if (milliseconds > 0) {
    gather({.kind = Operation::Kind::Wait, .counts = milliseconds * kCountsPerMs});
  }
}

LinkConnection::Ticket LinkConnection::askStatus() {
  gather({.kind = Operation::Kind::Read});
  return nextTicket_++;
}

std::uint8_t LinkConnection::statusOf(Ticket ticket) {
  if (ticket >= nextTicket_ - encoder_.reads()) flush();
  while (ticket >= nextArrival_) takeAnswer();
  return arrived_.extract(ticket).mapped();
}

void LinkConnection::gather(const Operation& operation) {
  const bool isFull =
      encoder_.sizeWithOneMore() > adapter_.blockBytes || encoder_.reads() == adapter_.mostReads;
  if (isFull) flush();
  encoder_.add(operation);
}

void LinkConnection::flush() {
  if (!isConnected_) throw LinkError(LinkProblem::Gone, line_.name() + ": not connected");
  if (encoder_.isEmpty()) return;
  const EncodedOperations encoded = encoder_.take();
  const unsigned sequence = nextSequence_++ & kSequenceBits;
  const auto block = frameBlock(BlockKind::Operations, sequence, encoded.bytes);
  makeRoom(block.size());
  line_.write(block);
  unanswered_.push_back({.sequence = sequence,
                         .lineBytes = block.size(),
                         .reads = encoded.reads,
                         .duration = milliseconds(encoded.waitCounts / kCountsPerMs)});
}

// A block that nothing stands before may have any length; behind one that is being executed the
// adapter keeps what fits into its window.
bool LinkConnection::hasRoom(std::size_t lineBytes) const {
  if (unanswered_.empty()) return true;
  std::size_t waiting = lineBytes;
  for (std::size_t i = 1; i < unanswered_.size(); ++i) waiting += unanswered_[i].lineBytes;
  return waiting <= adapter_.windowBytes;
}

void LinkConnection::makeRoom(std::size_t lineBytes) {
  while (!hasRoom(lineBytes)) takeAnswer();
}

void LinkConnection::finishBut(milliseconds most) {
  flush();
  const auto left = [this] {
    milliseconds sum{0};
    for (const Sent& each : unanswered_) sum += each.duration;
    return sum;
  };
  while (!unanswered_.empty() && (most.count() == 0 || left() > most)) takeAnswer();
}

void LinkConnection::keepAlive() { line_.write(std::array{kKeepAliveMark}); }

void LinkConnection::takeAnswer() {
  const Sent sent = unanswered_.front();
  Answer answer = awaitAnswer(sent.duration + kAnswerLimit);
  // A block may have been over before the stop came.
  while (isStopSent_ && answer.kind == AnswerKind::Done) answer = awaitAnswer(kAnswerLimit);
  if (answer.kind == AnswerKind::Trouble) {
    isConnected_ = false;
    failSwitchedOff(answer);
  }
  const bool isRight = answer.kind == AnswerKind::Done && answer.sequence == sent.sequence &&
                       answer.contents.size() == sent.reads;
  if (!isRight) {
    isConnected_ = false;
    throw LinkError(LinkProblem::NoAnswer, line_.name() + ": the adapter does not answer any more");
  }
  unanswered_.pop_front();
  for (const std::uint8_t status : answer.contents) arrived_.emplace(nextArrival_++, status);
}

// AnswerKind::None when the time has passed.
Answer LinkConnection::awaitAnswer(milliseconds limit) {
  milliseconds waited{0};
  for (;;) {
    while (!received_.empty()) {
      const std::uint8_t value = received_.front();
      received_.pop_front();
      if (auto answer = reader_.take(value)) return *std::move(answer);
    }
    if (waited >= limit) return {.kind = AnswerKind::None, .contents = {}};
    stopIfAsked();
    std::array<std::uint8_t, 256> bytes{};
    const milliseconds step = isStopAsked_ ? kLookEvery : kKeepAliveEvery;
    const std::size_t count = line_.read(bytes, step);
    received_.insert(received_.end(), bytes.begin(), bytes.begin() + count);
    if (count > 0) continue;
    waited += step;
    if (isConnected_ && waited.count() % kKeepAliveEvery.count() == 0) keepAlive();
  }
}

// The answer that is awaited is then that of the stop.
void LinkConnection::stopIfAsked() {
  if (!isConnected_ || isStopSent_ || !isStopAsked_ || !isStopAsked_()) return;
  isStopSent_ = true;
  stop();
}

void LinkConnection::failSwitchedOff(const Answer& answer) const {
  const auto cause = static_cast<SwitchOffCause>(answer.contents.empty() ? 0 : answer.contents[0]);
  throw LinkError(LinkProblem::SwitchedOff,
                  line_.name() + ": the adapter has switched the board off: " + reasonOf(cause),
                  cause);
}

}  // namespace kestrel::link
