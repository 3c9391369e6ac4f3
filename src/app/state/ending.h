#pragma once

#include <cstdint>
#include <optional>
#include <string>

namespace kestrel {

/// How a command ended.
enum class Ending {
  Done,
  Differs,       ///< the chip is not what it was compared with: not blank, or not the image
  Failed,        ///< the operation did not succeed
  Refused,       ///< it was not begun: a control is disabled, a file cannot be used
  Cancelled,     ///< by the answer to a question
  NoRoutine,     ///< the program has none for this device
  RunTimeError,  ///< an error ended it
  Stopped,       ///< Stop, or a signal
};

struct CommandResult {
  Ending ending = Ending::Done;
  std::string reason = {};                   ///< in words; empty when done
  std::string remark = {};                   ///< what the person should know although it ended well
  bool isFileError = false;                  ///< the error that ended it was a file's
  std::optional<std::int32_t> address = {};  ///< of the byte that the ending is about
};

}  // namespace kestrel
