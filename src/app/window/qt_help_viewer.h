#pragma once

#include <QPointer>
#include <filesystem>

#include "app/window/help_window.h"
#include "app/window/qt_screen.h"
#include "platform/help_viewer.h"

namespace kestrel::window {

/// Shows the manual in a window of the program's own.
class QtHelpViewer final : public HelpViewer {
 public:
  explicit QtHelpViewer(QtScreen& screen) : screen_(screen) {}

  void setOwner(QWidget& owner) { owner_ = &owner; }

  void show(const std::filesystem::path& helpFile, HelpPage page) override {
    if (!window_) window_ = new HelpWindow(helpFile, owner_);
    window_->open(page);
    screen_.opened(*window_);
  }

 private:
  QtScreen& screen_;
  QPointer<QWidget> owner_;
  QPointer<HelpWindow> window_;
};

}  // namespace kestrel::window
