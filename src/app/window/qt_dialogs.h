#pragma once

#include <QPointer>
#include <QWidget>
#include <filesystem>
#include <optional>

#include "app/window/mirror.h"
#include "platform/dialogs.h"
#include "platform/settings_store.h"

class QDialog;
class QFileDialog;

namespace kestrel::window {

/// The questions of the commands as dialogs over the main window. The file dialogs begin in the
/// folder that the last one ended in.
class QtDialogs final : public Dialogs {
 public:
  QtDialogs(Mirror& mirror, SettingsStore& settings) : mirror_(mirror), settings_(settings) {}

  void setOwner(QWidget& owner) { owner_ = &owner; }

  /// The next file to open is already chosen (dropped on the window, named at the start, recent):
  /// the dialog is not shown for it.
  void answerNextOpen(const std::filesystem::path& file) { nextOpen_ = file; }
  void forgetNextOpen() { nextOpen_.reset(); }

  /// While this is on, nothing is asked and nothing shown: every answer is OK. For a series, which
  /// tells what came of each chip by itself.
  void answerAll(bool on) { answersAll_ = on; }

  /// A command begins.
  void beginCommand();
  /// The milliseconds since then that questions waited for their answers.
  [[nodiscard]] qint64 asked() const { return asked_; }
  /// Since then the choice of a file was cancelled.
  [[nodiscard]] bool wasFileCancelled() const { return fileCancelled_; }

  Answer messageBox(const MessageBox& box) override;
  [[nodiscard]] std::string inputBox(const std::string& prompt, const std::string& title) override;
  [[nodiscard]] std::string openFile(const std::string& title, const std::string& filter) override;
  [[nodiscard]] std::string saveFile(const std::string& title, const std::string& filter) override;
  void about() override;

 private:
  [[nodiscard]] std::string choose(QFileDialog& dialog, const std::string& filter);
  int ask(QDialog& dialog);

  Mirror& mirror_;
  SettingsStore& settings_;
  QPointer<QWidget> owner_;
  std::optional<std::filesystem::path> nextOpen_;
  bool fileCancelled_ = false;
  bool answersAll_ = false;
  qint64 asked_ = 0;
};

}  // namespace kestrel::window
