#pragma once

#include <filesystem>

namespace kestrel {

/// Plays short WAV files in the background; a new sound replaces one that is still playing.
class SoundPlayer {
 public:
  virtual ~SoundPlayer() = default;

  /// Returns at once. A file that is missing or cannot be played is no error and says nothing.
  virtual void play(const std::filesystem::path& file) = 0;
};

}  // namespace kestrel
