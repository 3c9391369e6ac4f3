#include "app/state/reporting.h"

#include <array>
#include <string>
#include <utility>

#include "platform/file_names.h"
#include "platform/runtime_error.h"

namespace kestrel {
namespace {

constexpr std::array<std::pair<std::string_view, const char*>, 5> kSoundFiles{{
    {"INIT", "init.wav"},
    {"ERROR", "error.wav"},
    {"DONE", "done.wav"},
    {"SLIDE", "slide.wav"},
    {"OK", "ok.wav"},
}};

}  // namespace

Reporting::Reporting(ShellState& state, Controls& controls, const TimeOfDay& time,
                     SoundPlayer& sounds, Screen& screen, const Folders& folders)
    : state_(state),
      controls_(controls),
      time_(time),
      sounds_(sounds),
      screen_(screen),
      folders_(folders) {}

void Reporting::LogMessage(std::string_view message) {
  controls_.SystemLog.append("\r\n" + time_.longTime() + ">  " + shownName(message));
  screen_.turn();
}

void Reporting::PlaySoundEvent(std::string_view eventWord) {
  const char* file = "error.wav";
  for (const auto& [word, wordFile] : kSoundFiles) {
    if (word == eventWord) file = wordFile;
  }
  sounds_.play(folders_.data / "sounds" / file);
}

void Reporting::GoProgressiveBar1() {
  state_.ProgressCount = narrowed<std::int16_t>(state_.ProgressCount + 1);
  if (state_.ProgressCount == state_.ProgressStep) {
    advanceProgress();
    state_.ProgressCount = 0;
  }
}

void Reporting::advanceProgress(int by) {
  controls_.ProgressBar1.advance(by);
  screen_.turn();
}

void Reporting::boardIsAtRest() {
  controls_.ProgressBar1.setMaximum(100);
  controls_.ProgressBar1.setValue(0);
}

void Reporting::noteEnding(Ending ending, std::string reason, std::optional<std::int32_t> address) {
  if (result_.ending != Ending::Done) return;
  result_.address = address;
  result_.ending = ending;
  result_.reason = std::move(reason);
}

CommandResult Reporting::takeResult() { return std::exchange(result_, {}); }

}  // namespace kestrel
