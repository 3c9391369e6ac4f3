#pragma once

#include <cstdint>
#include <filesystem>
#include <functional>
#include <optional>
#include <ostream>
#include <string>
#include <utility>

#include "app/form/frm_main.h"
#include "platform/output_buffer.h"
#include "platform/stop_switch.h"
#include "waveform/recording_port.h"

namespace kestrel::launch {

/// The wave file of a program: begun with the first command behind the choice of a device, whose
/// pins it names.
class WaveFile {
 public:
  /// All outlive the file.
  WaveFile(waveform::RecordingPort& port, form::frmMain& form, const StopSwitch& stop);
  ~WaveFile();
  WaveFile(const WaveFile&) = delete;
  WaveFile& operator=(const WaveFile&) = delete;

  /// The next command on a chip is recorded, and those after it on the same device. Throws
  /// FileError, and OperationStopped where a pipe has no reader.
  void begin(const std::filesystem::path& file);

  /// Ends the record. Throws FileError when something of it was lost.
  void end();

  /// Calls when the choice of another device has ended the record.
  void whenOver(std::function<void()> over) { over_ = std::move(over); }

  [[nodiscard]] bool isOpen() const { return buffer_.has_value(); }

  /// What became of the last record: "read.vcd: 1234567 bytes"; empty before the first.
  [[nodiscard]] const std::string& summary() const { return summary_; }

 private:
  void commandStarts();
  void commandEnded();

  waveform::RecordingPort& port_;
  form::frmMain& form_;
  std::filesystem::path name_;
  const StopSwitch& stop_;
  std::optional<OutputBuffer> buffer_;
  std::ostream stream_{nullptr};
  std::string device_;
  int commands_ = 0;  ///< recorded on it
  std::function<void()> over_;
  std::string summary_;
};

}  // namespace kestrel::launch
