#pragma once

#include <deque>
#include <filesystem>
#include <functional>
#include <map>
#include <string>
#include <utility>
#include <vector>

#include "platform/dialogs.h"
#include "platform/folders.h"
#include "platform/help_viewer.h"
#include "platform/port_service.h"
#include "platform/screen.h"
#include "platform/settings_store.h"
#include "platform/sound_player.h"
#include "platform/stop_switch.h"
#include "platform/time_of_day.h"
#include "support/temporary_folder.h"

namespace kestrel::test {

/// Answers from a script and remembers what was asked. An empty script answers Cancel, or nothing.
class ScriptedDialogs final : public Dialogs {
 public:
  Answer messageBox(const MessageBox& box) override {
    boxes.push_back(box);
    if (onBox) onBox();
    if (box.buttons == MessageButtons::Ok) return Answer::Ok;
    return taken(answers, Answer::Cancel);
  }
  std::string inputBox(const std::string& prompt, const std::string& title) override {
    asked.push_back(title + "|" + prompt);
    return taken(texts, std::string());
  }
  std::string openFile(const std::string& title, const std::string& filter) override {
    asked.push_back(title + "|" + filter);
    return taken(files, std::string());
  }
  std::string saveFile(const std::string& title, const std::string& filter) override {
    return openFile(title, filter);
  }
  void about() override { asked.emplace_back("About"); }

  std::deque<Answer> answers;
  std::deque<std::string> texts;
  std::deque<std::string> files;
  std::vector<MessageBox> boxes;
  std::function<void()> onBox;
  std::vector<std::string> asked;

 private:
  template <typename T>
  static T taken(std::deque<T>& script, T fallback) {
    if (script.empty()) return fallback;
    T next = std::move(script.front());
    script.pop_front();
    return next;
  }
};

class FixedTime final : public TimeOfDay {
 public:
  [[nodiscard]] std::string longTime() const override { return "14:03:07"; }
  [[nodiscard]] std::string shortTime() const override { return "14:03"; }
  [[nodiscard]] std::string shortDate() const override { return "2026-11-21"; }
};

class RecordingSounds final : public SoundPlayer {
 public:
  void play(const std::filesystem::path& file) override { played.push_back(file.filename()); }
  std::vector<std::string> played;
};

class MemorySettings final : public SettingsStore {
 public:
  std::optional<std::string> value(const std::string& section,
                                   const std::string& key) const override {
    const auto found = texts.find(section + "/" + key);
    return found == texts.end() ? std::nullopt : std::optional(found->second);
  }
  void setValue(const std::string& section, const std::string& key,
                const std::string& text) override {
    texts[section + "/" + key] = text;
  }
  std::map<std::string, std::string> texts;
};

class RecordingHelp final : public HelpViewer {
 public:
  void show(const std::filesystem::path& file, HelpPage page) override {
    shown.emplace_back(file.filename(), page);
  }
  std::vector<std::pair<std::string, HelpPage>> shown;
};

class FakeScreen final : public Screen {
 public:
  void repaint() override { ++repaints; }
  void turn() override {
    if (onTurn) onTurn();
  }
  std::size_t openWindows() const override { return windows; }
  void closeLastWindow() override { --windows; }
  void closeMainWindow() override { mainClosed = true; }

  std::function<void()> onTurn;
  int repaints = 0;
  std::size_t windows = 1;
  bool mainClosed = false;
};

/// All that a program speaks to but its port, in a folder of its own.
struct Surroundings {
  [[nodiscard]] Folders folders() const {
    return {.configuration = folder / "config", .data = folder / "data", .working = folder.path()};
  }

  TemporaryFolder folder;
  FixedTime time;
  PortService noService;
  RecordingSounds sounds;
  MemorySettings settings;
  RecordingHelp help;
  ScriptedDialogs dialogs;
  FakeScreen screen;
  StopSwitch ownStop;
};

}  // namespace kestrel::test
