#pragma once

#include <QPointer>
#include <QWidget>
#include <filesystem>
#include <optional>

#include "app/window/mirror.h"
#include "platform/dialogs.h"

namespace kestrel::window {

/// The questions of the commands as dialogs over the main window.
class QtDialogs final : public Dialogs {
 public:
  explicit QtDialogs(Mirror& mirror) : mirror_(mirror) {}

  void setOwner(QWidget& owner) { owner_ = &owner; }

  /// The next file to open is already chosen (dropped on the window, named at the start, recent):
  /// the dialog is not shown for it.
  void answerNextOpen(const std::filesystem::path& file) { nextOpen_ = file; }
  void forgetNextOpen() { nextOpen_.reset(); }

  Answer messageBox(const MessageBox& box) override;
  [[nodiscard]] std::string inputBox(const std::string& prompt, const std::string& title) override;
  [[nodiscard]] std::string openFile(const std::string& title, const std::string& filter) override;
  [[nodiscard]] std::string saveFile(const std::string& title, const std::string& filter) override;
  void about() override;

 private:
  Mirror& mirror_;
  QPointer<QWidget> owner_;
  std::optional<std::filesystem::path> nextOpen_;
};

}  // namespace kestrel::window
