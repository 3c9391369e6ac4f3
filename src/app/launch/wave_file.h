#pragma once

#include <cstdint>
#include <filesystem>
#include <fstream>
#include <string>

#include "app/form/frm_main.h"
#include "waveform/recording_port.h"

namespace kestrel::launch {

/// The wave file of a program: begun with the first command behind the choice of a device, whose
/// pins it names.
class WaveFile {
 public:
  /// Both outlive the file.
  WaveFile(waveform::RecordingPort& port, form::frmMain& form);

  /// The next command on a chip is recorded, and those after it on the same device. Throws
  /// FileError.
  void begin(const std::filesystem::path& file);

  /// Ends the record. Throws FileError when something of it was lost.
  void end();

  [[nodiscard]] bool isOpen() const { return file_.is_open(); }

  /// What became of the last record: "read.vcd: 1234567 bytes"; empty before the first.
  [[nodiscard]] const std::string& summary() const { return summary_; }

 private:
  void commandStarts();

  waveform::RecordingPort& port_;
  form::frmMain& form_;
  std::filesystem::path name_;
  std::ofstream file_;
  std::string device_;
  std::string summary_;
};

}  // namespace kestrel::launch
