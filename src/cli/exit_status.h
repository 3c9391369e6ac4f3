#pragma once

#include <stdexcept>
#include <string>

#include "app/state/ending.h"

namespace kestrel::cli {

// What the program returns to the shell; 128 and the number after a signal.
inline constexpr int kDone = 0;
inline constexpr int kFailed = 1;    ///< the operation failed, or there is no routine for it
inline constexpr int kBadUsage = 2;  ///< usage, an unusable file, a control that is not enabled
inline constexpr int kNoBoard = 3;
inline constexpr int kDiffers = 4;    ///< the chip differs: a mismatch, not blank
inline constexpr int kCancelled = 5;  ///< by the answer to a question

/// The status that tells how a command ended.
[[nodiscard]] constexpr int statusOf(Ending ending) {
  switch (ending) {
    case Ending::Done:
      return kDone;
    case Ending::Refused:
      return kBadUsage;
    case Ending::Differs:
      return kDiffers;
    case Ending::Cancelled:
      return kCancelled;
    case Ending::Failed:
    case Ending::NoRoutine:
    case Ending::RunTimeError:
    case Ending::Stopped:
      break;
  }
  return kFailed;
}

/// The ending that a status stands for, where only that is known.
[[nodiscard]] constexpr Ending endingOf(int status) {
  switch (status) {
    case kDone:
      return Ending::Done;
    case kBadUsage:
    case kNoBoard:
      return Ending::Refused;
    case kDiffers:
      return Ending::Differs;
    case kCancelled:
      return Ending::Cancelled;
    default:
      return status > 128 ? Ending::Stopped : Ending::Failed;
  }
}

/// Ends the run before its last step. The text is for the person at the terminal; it is empty when
/// the reason has been reported already.
class EarlyEnd : public std::runtime_error {
 public:
  explicit EarlyEnd(int status, const std::string& text = {})
      : std::runtime_error(text), status_(status) {}

  [[nodiscard]] int status() const { return status_; }

 private:
  int status_;
};

}  // namespace kestrel::cli
