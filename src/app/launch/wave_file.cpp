#include "app/launch/wave_file.h"

#include "app/state/text_format.h"
#include "devices/chip_pins.h"
#include "platform/file_names.h"
#include "platform/runtime_error.h"

namespace kestrel::launch {

WaveFile::WaveFile(waveform::RecordingPort& port, form::frmMain& form, const StopSwitch& stop)
    : port_(port), form_(form), stop_(stop) {
  form.runner().whenStarted([this] { commandStarts(); });
}

// The record goes before the stream that it writes to.
WaveFile::~WaveFile() { (void)port_.stop(); }

void WaveFile::begin(const std::filesystem::path& file) {
  end();
  stream_.clear();
  stream_.rdbuf(&buffer_.emplace(file, stop_));
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
  port_.start(stream_, pinout, trimmed(device_), state, state);
}

void WaveFile::end() {
  if (!isOpen()) return;
  const std::uint64_t bytes = port_.stop();
  summary_ = shownName(name_.string()) + ": " + std::to_string(bytes) + " bytes";
  struct Closed {
    std::optional<OutputBuffer>& buffer;
    ~Closed() { buffer.reset(); }
  } const closed{buffer_};
  buffer_->finish();
}

}  // namespace kestrel::launch
