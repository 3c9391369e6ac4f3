#pragma once

#include <QMainWindow>
#include <QMenu>
#include <filesystem>
#include <functional>
#include <initializer_list>

#include "app/state/controls.h"
#include "app/window/binder.h"
#include "app/window/recent_files.h"
#include "app/window/theme.h"

namespace kestrel::window {

/// The menu bar and the toolbar. Every entry presses the control of its name.
class Menus final : public QObject {
 public:
  Menus(QMainWindow& window, Controls& controls, const Binder& binder, IconSet& icons,
        RecentFiles& recent);

  /// Opens a file of the list of recent ones.
  void onOpenRecent(std::function<void(const std::filesystem::path&)> open);

  [[nodiscard]] QMenu& hardwareMenu() const { return *hardware_; }

 private:
  QMenu* addMenu(const QString& caption, const QString& name);
  QAction* add(QMenu& menu, Button& control, const QString& icon = {});
  void addSetup(QMenu& menu, Button& entry);
  void addAll(QMenu& menu, std::initializer_list<Button*> controls);
  void addSeparator(QMenu& menu, const QString& name);
  void buildFile();
  void buildRecent(QMenu& file);
  void showRecent();
  void buildDevice();
  void buildBuffer();
  void buildSetup();
  void buildHardware();
  void buildHelp();
  void buildToolbar();

  QMainWindow& window_;
  Controls& controls_;
  const Binder& binder_;
  IconSet& icons_;
  RecentFiles& recent_;
  QMenu* recentMenu_ = nullptr;
  QMenu* hardware_ = nullptr;
  std::function<void(const std::filesystem::path&)> openRecent_;
};

}  // namespace kestrel::window
