#pragma once

#include <memory>

#include "platform/sound_player.h"

class QSoundEffect;

namespace kestrel::window {

/// Plays through the default audio output; without one it is silent.
class QtSoundPlayer final : public SoundPlayer {
 public:
  QtSoundPlayer();
  ~QtSoundPlayer() override;

  void play(const std::filesystem::path& file) override;

 private:
  std::unique_ptr<QSoundEffect> effect_;
};

}  // namespace kestrel::window
