#pragma once

#include <QMainWindow>
#include <filesystem>

#include "app/form/frm_main.h"
#include "app/window/binder.h"
#include "app/window/qt_dialogs.h"
#include "app/window/qt_screen.h"
#include "app/window/recent_files.h"
#include "app/window/theme.h"

class QSplitter;

namespace kestrel::window {

class Menus;
class StatusStrip;

/// What the window is put together with; all of it outlives the window.
struct WindowParts {
  form::frmMain& form;
  Mirror& mirror;
  HeldInput& input;
  QtScreen& screen;
  QtDialogs& dialogs;
  SettingsStore& settings;
  StopSwitch& stop;
};

/// The main window: shows the form's controls and presses them. It has no logic of its own.
class MainWindow final : public QMainWindow {
 public:
  explicit MainWindow(const WindowParts& parts);
  ~MainWindow() override;

  /// The form's start-up sequence, then the window is shown.
  void start();

  /// Opens a code file as the Open command does with this answer.
  void openCodeFile(const std::filesystem::path& file);

  /// A panel beside everything else, and its entry in the Hardware menu.
  void addSidePanel(QWidget& panel, const QString& title);

 protected:
  void closeEvent(QCloseEvent* event) override;
  void changeEvent(QEvent* event) override;
  void moveEvent(QMoveEvent* event) override;
  void resizeEvent(QResizeEvent* event) override;
  void dragEnterEvent(QDragEnterEvent* event) override;
  void dropEvent(QDropEvent* event) override;

 private:
  void buildContent();
  void buildMenus();
  void connectCommands();
  void connectFile();
  void showPlace();
  void reportPlace();
  void showTitle();

  WindowParts parts_;
  Controls& controls_;
  Binder binder_;
  IconSet icons_;
  RecentFiles recent_;
  Menus* menus_ = nullptr;
  StatusStrip* strip_ = nullptr;
  bool placed_ = false;  // the stored place was taken over; moves are reported from here on
  bool closeWanted_ = false;
  bool unloaded_ = false;
};

}  // namespace kestrel::window
