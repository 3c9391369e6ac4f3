#include "app/launch/wave_file.h"

#include "app/state/text_format.h"
#include "devices/chip_pins.h"
#include "platform/file_names.h"
#include "platform/runtime_error.h"

namespace kestrel::launch {

WaveFile::WaveFile(waveform::RecordingPort& port, form::frmMain& form, const StopSwitch& stop)
    : port_(port), form_(form), stop_(stop) {
  form.runner().whenStarted([this] { commandStarts(); });
  form.runner().whenEnded([this] { commandEnded(); });
}

// The record goes before the stream that it writes to.
WaveFile::~WaveFile() { (void)port_.stop(); }

void WaveFile::begin(const std::filesystem::path& file) {
  end();
  stream_.clear();
  stream_.rdbuf(&buffer_.emplace(file, stop_));
  name_ = file;
}

void WaveFile::commandStarts() {
  if (!isOpen()) return;
  ++commands_;
  if (port_.isRecording()) return;
  const ProgrammerState& state = form_.state();
  const devices::ChipPins pinout = devices::chipPinsOf(state.FamilyCode);
  if (pinout.count() == 0) return;
  device_ = state.DeviceName;
  commands_ = 1;
  port_.start(stream_, pinout, trimmed(device_), state, state);
}

// The names of the pins are those of one device: with another one the record is over. Where nothing
// but its choice was recorded, the record begins anew.
void WaveFile::commandEnded() {
  if (!port_.isRecording() || form_.state().DeviceName == device_) return;
  try {
    const std::filesystem::path same = name_;
    commands_ == 1 ? begin(same) : end();
  } catch (const FileError& error) {
    summary_ = error.what();
  }
  if (!isOpen() && over_) over_();
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
