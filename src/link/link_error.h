#pragma once

#include <optional>
#include <stdexcept>
#include <string>

#include "link/protocol.h"

namespace kestrel::link {

/// Why an adapter cannot be used, or can be used no more.
enum class LinkProblem {
  NoDevice,        // no such device file: not plugged in
  NoPermission,    // the file belongs to others: group dialout
  Taken,           // another program has it
  NotASerialLine,  // the file is something else
  NoAnswer,        // nothing came back
  NotAnAdapter,    // something came back, but no welcome
  OtherVersion,    // an adapter of another protocol version
  SwitchedOff,     // the adapter has switched the board off by itself
  Gone,            // unplugged
};

/// The text names the device and the reason.
class LinkError : public std::runtime_error {
 public:
  LinkError(LinkProblem problem, const std::string& text,
            std::optional<SwitchOffCause> cause = std::nullopt)
      : std::runtime_error(text), problem_(problem), cause_(cause) {}

  [[nodiscard]] LinkProblem problem() const { return problem_; }

  /// Of LinkProblem::SwitchedOff.
  [[nodiscard]] std::optional<SwitchOffCause> cause() const { return cause_; }

 private:
  LinkProblem problem_;
  std::optional<SwitchOffCause> cause_;
};

/// The one command or action that helps; empty when there is none.
[[nodiscard]] std::string cureOf(LinkProblem problem, const std::string& device);

}  // namespace kestrel::link
