#include "app/launch/wave_file.h"

#include <cerrno>

#include "app/state/text_format.h"
#include "devices/chip_pins.h"
#include "platform/file_names.h"
#include "platform/runtime_error.h"

namespace kestrel::launch {

WaveFile::WaveFile(waveform::RecordingPort& port, form::frmMain& form) : port_(port), form_(form) {
  form.runner().whenStarted([this] { commandStarts(); });
}

void WaveFile::begin(const std::filesystem::path& file) {
  end();
  file_.open(file, std::ios::binary | std::ios::trunc);
  if (!file_) throw FileError("write", file.string(), errno);
  name_ = file;
}

// The names of the pins are those of one device: with another one the record is over.
void WaveFile::commandStarts() {
  const ProgrammerState& state = form_.state();
  if (port_.isRecording() && state.DeviceName != device_) {
    try {
      end();
    } catch (const FileError& error) {
      summary_ = error.what();
    }
  }
  if (!isOpen() || port_.isRecording()) return;
  const devices::ChipPins pinout = devices::chipPinsOf(state.FamilyCode);
  if (pinout.count() == 0) return;
  device_ = state.DeviceName;
  port_.start(file_, pinout, trimmed(device_), state, state);
}

void WaveFile::end() {
  if (!isOpen()) return;
  const std::uint64_t bytes = port_.stop();
  file_.close();
  const int error = errno;
  summary_ = shownName(name_.string()) + ": " + std::to_string(bytes) + " bytes";
  if (file_.fail()) throw FileError("write", name_.string(), error == 0 ? EIO : error);
}

}  // namespace kestrel::launch
