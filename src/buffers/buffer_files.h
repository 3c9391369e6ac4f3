#pragma once

#include <cstdint>
#include <functional>
#include <span>
#include <string>
#include <vector>

#include "app/state/controls.h"
#include "app/state/programmer_state.h"
#include "app/state/reporting.h"
#include "display/memory_display.h"
#include "hardware/error_alert.h"
#include "hardware/lamps.h"
#include "platform/dialogs.h"
#include "platform/runtime_error.h"
#include "platform/stop_switch.h"

namespace kestrel::buffers {

/// Raw binary files into the code and the data buffer and out of them. A file that cannot be read
/// or written is reported in a message box and the log, and nothing else has changed then.
class BufferFiles {
 public:
  BufferFiles(BufferState& buffers, const SelectionState& device, Controls& controls,
              Reporting& reporting, hardware::Lamps& lamps, hardware::ErrorAlert& alert,
              display::MemoryDisplay& display, Dialogs& dialogs, const StopSwitch& stop)
      : buffers_(buffers),
        device_(device),
        controls_(controls),
        reporting_(reporting),
        lamps_(lamps),
        alert_(alert),
        display_(display),
        dialogs_(dialogs),
        stop_(stop) {}

  void mnuFileOpenCode_Click();
  void mnuFileOpenData_Click();
  void mnuFileSaveCode_Click();
  void mnuFileSaveCodeAs_Click();
  void mnuFileSaveData_Click();
  void mnuFileSaveDataAs_Click();
  void mnuFileClose_Click();

  /// Erase_button: the buffers that CheckCode and CheckData select.
  void Erase_button_Click();

  /// Loads the file named by CodeFileName; false when it was refused.
  bool ReadBinaryFile();

  /// Loads the file named by DataFileName; false when it was refused.
  bool ReadBinaryFileData();

  /// Loads a code file; CodeFileName keeps the earlier name when the file is refused.
  void openCodeFile(const std::string& name);

  /// Takes over an image that was made of this file: what the file itself holds is something else,
  /// so it is not the file to save into. `found` goes to the log.
  void loadImage(const std::string& name, std::vector<std::uint8_t> image,
                 const std::string& found);

  /// Takes over the whole code buffer with bytes of it changed; so many of them are the image now.
  /// `done` goes to the log, if it says anything.
  void changeCode(std::vector<std::uint8_t> buffer, std::int32_t length, const std::string& done);

  /// One byte of it.
  void putCodeByte(std::size_t address, std::uint8_t value, std::int32_t length);

  /// Writes the contents of a file that were made of the code buffer.
  void exportImage(const std::string& name, std::span<const std::uint8_t> contents);

  /// Fills the first 1 MB and one byte of the code buffer with FFh, whatever its length.
  void EraseCodeBuffer();

  /// Fills the data buffer up to index 8192 with FFh.
  void EraseDataBuffer();

 private:
  /// Runs the steps; a FileError is reported and gives false.
  bool tried(const char* title, const std::function<void()>& steps);
  void startOpening();
  void openDataFile(const std::string& name);
  void showCode(CodeSource source, const std::string& name);
  void storeCode(CodeSource source, const std::string& name);
  void showChanged(std::int32_t length);
  void enableForCode();
  void showCodeLoaded();
  void refuseDataFile(std::uintmax_t length);
  void storeData();
  void showDataLoaded();
  void finishLoading();
  void saveCodeAs(const std::string& name);

  /// Takes the name over and writes; a failing save gives the earlier name and caption back.
  static void saveUnder(const std::string& name, std::string& fileName, Control& label,
                        const std::function<bool()>& write);
  bool writeCode();
  bool writeData(const std::string& path);
  void disableForErased(Button& verifyEntry, Button& programEntry);

  BufferState& buffers_;
  const SelectionState& device_;
  Controls& controls_;
  Reporting& reporting_;
  hardware::Lamps& lamps_;
  hardware::ErrorAlert& alert_;
  display::MemoryDisplay& display_;
  Dialogs& dialogs_;
  const StopSwitch& stop_;  // ends the wait for a pipe
};

}  // namespace kestrel::buffers
