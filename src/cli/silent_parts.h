#pragma once

#include "platform/help_viewer.h"
#include "platform/settings_store.h"
#include "platform/sound_player.h"

namespace kestrel::cli {

// What the form is given where a terminal has nothing to offer: it makes no sound, has no window
// whose place could be kept, and its manual is a page of man.

class NoSound final : public SoundPlayer {
 public:
  void play(const std::filesystem::path& /*file*/) override {}
};

class NoSettings final : public SettingsStore {
 public:
  [[nodiscard]] std::optional<std::string> value(const std::string& /*section*/,
                                                 const std::string& /*key*/) const override {
    return std::nullopt;
  }
  void setValue(const std::string& /*section*/, const std::string& /*key*/,
                const std::string& /*text*/) override {}
};

class NoHelp final : public HelpViewer {
 public:
  void show(const std::filesystem::path& /*helpFile*/, HelpPage /*page*/) override {}
};

}  // namespace kestrel::cli
