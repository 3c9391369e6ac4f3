#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <deque>
#include <functional>
#include <map>
#include <string>
#include <utility>
#include <vector>

#include "link/byte_line.h"
#include "link/frame.h"
#include "link/operations.h"

namespace kestrel::link {

/// What an adapter says of itself.
struct AdapterIdentity {
  std::string name;
  unsigned version = 0;
  std::size_t blockBytes = 0;   // operations of one block
  std::size_t windowBytes = 0;  // of the line, that may follow a block while it is executed
  std::size_t mostReads = 0;    // of one block
};

/// An adapter at the other end of a line: a parallel port whose accesses and waits are gathered
/// into blocks.
///
/// Writes and waits return at once. They are sent when a status byte is asked for and when a block
/// is full, and are executed in their order and with their waits as if each had been done by
/// itself. A row of accesses that must not be interrupted (a pulse, a page load) belongs between
/// two flushes. Everything that waits for the adapter keeps the line alive meanwhile; whoever is
/// silent for 500 ms otherwise finds the board switched off.
///
/// All calls but stop and keepAlive come from one thread. All but these two throw LinkError; the
/// adapter has switched the board off by then, or does so within 600 ms. After one only connect
/// helps.
class LinkConnection {
 public:
  /// The line outlives the connection. `isStopAsked`, if any, is looked at while an answer is
  /// awaited; it makes the adapter stop, and the wait end in a LinkError with that cause.
  explicit LinkConnection(ByteLine& line, std::function<bool()> isStopAsked = {})
      : line_(line), isStopAsked_(std::move(isStopAsked)) {}

  /// Says hello until the adapter answers; a board that is reset by the opening of its line takes
  /// up to two seconds. The board is switched off by it.
  void connect();

  /// Ends in order: the adapter switches off. Without effect on a connection that has failed.
  void goodbye() noexcept;

  [[nodiscard]] const AdapterIdentity& adapter() const { return adapter_; }
  [[nodiscard]] bool isConnected() const { return isConnected_; }

  // The port and the clock.
  void writeData(std::uint8_t value);
  void writeControl(std::uint8_t value);
  void waitCounts(std::int64_t counts);
  void waitMilliseconds(std::int64_t milliseconds);

  /// A status byte, in one round trip with all that was gathered before.
  [[nodiscard]] std::uint8_t readStatus() { return statusOf(askStatus()); }

  // The same in two steps: several reads, with writes between them, in one round trip.
  using Ticket = std::uint64_t;
  [[nodiscard]] Ticket askStatus();

  /// Each ticket once. Sends what was gathered, when the read is not on its way yet.
  [[nodiscard]] std::uint8_t statusOf(Ticket ticket);

  /// Sends what was gathered and returns without waiting for its execution, except for room.
  void flush();

  /// Sends what was gathered and waits until all of it was executed.
  void finish() { finishBut(std::chrono::milliseconds(0)); }

  /// Sends what was gathered and waits until no more than so much time of it is left.
  void finishBut(std::chrono::milliseconds most);

  /// Ends the running block at once and drops what follows; the adapter switches off. From any
  /// thread and from signal handlers. The calls under way then throw LinkError.
  void stop() noexcept { line_.writeUrgently(kStopMark); }

  /// To be called at least every 300 ms while no other call is under way. From any thread.
  void keepAlive();

 private:
  using Milliseconds = std::chrono::milliseconds;

  struct Sent {
    unsigned sequence = 0;
    std::size_t lineBytes = 0;
    std::size_t reads = 0;
    Milliseconds duration{};  // of its waits
  };

  void gather(const Operation& operation);
  void makeRoom(std::size_t lineBytes);
  [[nodiscard]] bool hasRoom(std::size_t lineBytes) const;
  [[nodiscard]] Answer awaitAnswer(Milliseconds limit);
  void takeAnswer();
  void acceptWelcome(const Answer& answer);
  [[nodiscard]] bool offer();
  [[noreturn]] void failSwitchedOff(const Answer& answer) const;
  void restart();

  void stopIfAsked();

  ByteLine& line_;
  std::function<bool()> isStopAsked_;
  AdapterIdentity adapter_;
  AnswerReader reader_;
  std::deque<std::uint8_t> received_;
  OperationEncoder encoder_;
  bool isConnected_ = false;
  bool isStopSent_ = false;

  unsigned nextSequence_ = 0;
  std::deque<Sent> unanswered_;
  Ticket nextTicket_ = 0;   // of the next read that is asked for
  Ticket nextArrival_ = 0;  // of the next status byte that arrives
  std::map<Ticket, std::uint8_t> arrived_;
};

}  // namespace kestrel::link
