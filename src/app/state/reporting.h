#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "app/state/controls.h"
#include "app/state/ending.h"
#include "app/state/programmer_state.h"
#include "app/state/rest_listener.h"
#include "platform/folders.h"
#include "platform/screen.h"
#include "platform/sound_player.h"
#include "platform/time_of_day.h"

namespace kestrel {

/// How every operation reports: the system log, a sound for the outcome, the progress bar.
class Reporting final : public RestListener {
 public:
  Reporting(ShellState& state, Controls& controls, const TimeOfDay& time, SoundPlayer& sounds,
            Screen& screen, const Folders& folders);

  /// Appends a line break, the time of day, ">  " and the message to the system log. The log is
  /// never trimmed. What would break the line or steer a terminal, as a file's name may, is shown
  /// as an escape.
  void LogMessage(std::string_view message);

  /// Plays the sound of the event word: "INIT", "ERROR", "DONE", "SLIDE", "OK" (case-sensitive);
  /// any other word is an error. Returns at once.
  void PlaySoundEvent(std::string_view eventWord);

  /// Counts one call; every `ProgressStep` calls the progress bar moves by one.
  void GoProgressiveBar1();

  /// Moves the progress bar by one, or more, and lets it be seen.
  void advanceProgress(int by = 1);

  /// The progress bar at its start, for a hundred steps.
  void boardIsAtRest() override;

  /// Notes what came of the running command, where it happens. The first note counts: it is the
  /// cause of what follows. The address is that of the byte which it is about, if it is about one.
  void noteEnding(Ending ending, std::string reason, std::optional<std::int32_t> address = {});

  /// Notes what the person should know although the command ends well; the log has no line of it.
  void noteRemark(std::string remark) { result_.remark = std::move(remark); }

  /// What was noted since the last call.
  [[nodiscard]] CommandResult takeResult();

 private:
  ShellState& state_;
  CommandResult result_;
  Controls& controls_;
  const TimeOfDay& time_;
  SoundPlayer& sounds_;
  Screen& screen_;
  const Folders& folders_;
};

}  // namespace kestrel
