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

class QToolBar;

namespace kestrel::window {

/// The menu bar and the toolbar. Every entry presses the control of its name.
class Menus final : public QObject {
 public:
  /// `maySave` is asked before the code buffer is saved over its file.
  Menus(QMainWindow& window, Controls& controls, const Binder& binder, IconSet& icons,
        RecentFiles& recent, std::function<bool()> maySave);

  /// Opens a file of the list of recent ones.
  void onOpenRecent(std::function<void(const std::filesystem::path&)> open);

  [[nodiscard]] QMenu& fileMenu() const { return *file_; }
  [[nodiscard]] QMenu& deviceMenu() const { return *device_; }
  [[nodiscard]] QMenu& hardwareMenu() const { return *hardware_; }
  [[nodiscard]] QMenu& bufferMenu() const { return *buffer_; }

  /// What cannot be used looks so: everything while a command runs, the Device menu while the name
  /// of a device is typed.
  void setCommandsOff(bool all, bool ofDevice);

 private:
  QMenu* addMenu(const QString& caption, const QString& name);
  QAction* add(QMenu& menu, Button& control, const QString& icon = {},
               const std::function<bool()>& mayPress = {});
  void addSetup(QMenu& menu, Button& entry);
  void addAll(QMenu& menu, std::initializer_list<Button*> controls);
  void addSeparator(QMenu& menu, const QString& name);
  void buildFile();
  void buildRecent(QMenu& file);
  void showRecent();
  void buildDevice();
  void buildAdvanced(QMenu& device);
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
  std::function<bool()> maySave_;
  QMenu* file_ = nullptr;
  QMenu* device_ = nullptr;
  QMenu* buffer_ = nullptr;
  QToolBar* toolbar_ = nullptr;
  QMenu* recentMenu_ = nullptr;
  QMenu* hardware_ = nullptr;
  std::function<void(const std::filesystem::path&)> openRecent_;
};

/// A new entry of the menu, before the one of that name.
QAction* insertEntry(QMainWindow& window, QMenu& menu, const char* before, const char* caption,
                     const char* name);

}  // namespace kestrel::window
