#pragma once

#include <string>
#include <string_view>

#include "app/state/controls.h"
#include "app/state/programmer_state.h"
#include "app/state/reporting.h"
#include "platform/folders.h"
#include "platform/time_of_day.h"

namespace kestrel::display {

/// The StatCode of an export: the sum of the bytes of its text, line-break characters included.
[[nodiscard]] double statCode(std::string_view text);

/// Copies of what is on screen: KESTREL.BUF and KESTREL.LOG in the working folder. A file that
/// cannot be written throws FileError and leaves the earlier one whole.
class Exports {
 public:
  Exports(const PortState& portState, Controls& controls, Reporting& reporting,
          const TimeOfDay& time, const Folders& folders)
      : portState_(portState),
        controls_(controls),
        reporting_(reporting),
        time_(time),
        folders_(folders) {}

  void BufferDisplay_DblClick();
  void SystemLog_DblClick();

 private:
  struct Heading {
    const char* title;
    const char* contents;
  };

  void save(const char* fileName, const Heading& heading, const std::string& text);

  const PortState& portState_;
  Controls& controls_;
  Reporting& reporting_;
  const TimeOfDay& time_;
  const Folders& folders_;
};

}  // namespace kestrel::display
