#pragma once

#include <cstddef>
#include <filesystem>
#include <string>
#include <string_view>

#include "app/state/controls.h"
#include "app/state/programmer_state.h"
#include "app/state/reporting.h"
#include "buffers/buffer_files.h"
#include "platform/dialogs.h"
#include "platform/folders.h"
#include "platform/stop_switch.h"

namespace kestrel::setups {

/// The four setup slots, KSSetup1.INI to KSSetup4.INI in the working folder.
///
/// Writer and reader are two lists of keys that disagree on purpose: the voltage buttons and the
/// blank-check box are written but never restored from a file that the program wrote.
class NamedSetups {
 public:
  NamedSetups(BufferState& buffers, Controls& controls, Reporting& reporting,
              buffers::BufferFiles& files, Dialogs& dialogs, const Folders& folders,
              const StopSwitch& stop)
      : buffers_(buffers),
        controls_(controls),
        reporting_(reporting),
        files_(files),
        dialogs_(dialogs),
        folders_(folders),
        stop_(stop) {}

  /// Slots count from 1 to 4.
  void SaveSetup_Click(std::size_t slot);
  void LoadSetup_Click(std::size_t slot);

  /// The Setup menu opens: each slot with a file shows its name and can be loaded. A file that
  /// cannot be read leaves its slot disabled.
  void Setup_Click();

  /// Asks for a name and writes the nineteen lines. Throws FileError, also for a code file whose
  /// name has more than one line; the earlier file stays then.
  void SaveSetupRot(const std::string& fileName);

  /// Applies what the file's lines say, in their order. Throws FileError before anything changed.
  void RestoreSetup(const std::string& fileName);

 private:
  [[nodiscard]] std::string setupText(const std::string& name) const;
  [[nodiscard]] std::filesystem::path pathOf(const std::string& fileName) const;
  void restoreLine(std::string_view line);
  void restoreDevice(std::string_view value);

  BufferState& buffers_;
  Controls& controls_;
  Reporting& reporting_;
  buffers::BufferFiles& files_;
  Dialogs& dialogs_;
  const Folders& folders_;
  const StopSwitch& stop_;
};

}  // namespace kestrel::setups
