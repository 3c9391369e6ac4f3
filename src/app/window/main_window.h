#pragma once

#include <QMainWindow>
#include <QPointer>
#include <QTimer>
#include <filesystem>
#include <functional>
#include <memory>

#include "app/form/buffer_editor.h"
#include "app/form/frm_main.h"
#include "app/launch/wave_file.h"
#include "app/window/binder.h"
#include "app/window/image_files.h"
#include "app/window/qt_dialogs.h"
#include "app/window/qt_screen.h"
#include "app/window/recent_files.h"
#include "app/window/series_dialog.h"
#include "app/window/theme.h"
#include "images/ranges.h"

class QDockWidget;
class QMessageBox;
class QSplitter;

namespace kestrel::window {

class BufferChanges;
class ChipBackup;
class CommandBar;
class DeviceCard;
class DisplayPanel;
class FileWatch;
class LogPanel;
class Menus;
class NoticeBar;
class Notices;
class OptionsPanel;
class OutcomeLine;
class ProjectFiles;
class RunningLook;
class StatusStrip;
class VppSign;

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

/// What the window's widgets refer to. A base of the window, so that it outlives them.
struct WidgetServices {
  Binder binder;
  IconSet icons;
  RecentFiles recent;
};

/// The main window: shows the form's controls and presses them. It has no logic of its own.
class MainWindow final : private WidgetServices, public QMainWindow {
 public:
  explicit MainWindow(const WindowParts& parts);
  ~MainWindow() override;

  /// The form's start-up sequence, then the window is shown; so many windows of the program are
  /// open already.
  void start(int windowsBefore = 0);

  /// The algorithms of the last time, before the start.
  void restoreAlgorithms();

  /// Opens a code file as the Open command does with this answer.
  void openCodeFile(const std::filesystem::path& file);

  /// Opens a project as File > Open Project does.
  void openProject(const std::filesystem::path& file);

  /// Where it is shown which chip goes where.
  [[nodiscard]] DeviceCard& deviceCard() const;

  /// A panel beside everything else, and its entry in the Hardware menu.
  void addSidePanel(QWidget& panel, const QString& title);

  /// Offers to record the pins of the socket into a wave file.
  void offerWaves(launch::WaveFile& waves);

  /// The entry Link... in the Hardware menu. `choose` asks for an adapter; when it returns true the
  /// hardware is tested.
  void addLinkEntry(std::function<bool()> choose);

  /// A notice of a missing board offers to go over to a simulated one.
  void offerSimulation(std::function<void()> simulate);

  /// The simulated board changes the chips of a series.
  void changeChipsBy(SimulatedSeries simulated) { simulated_ = std::move(simulated); }

  /// Asked when the window is about to close for good; false keeps it.
  void onLeaving(std::function<bool()> mayLeave) { mayLeave_ = std::move(mayLeave); }

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
  void buildSearch();
  void buildImages();
  void buildProjects();
  void connectCommands();
  void connectInput();
  void commandStarted();
  void commandEnded();
  void closeAfterCommand();
  void warnOfVoltage();
  void pressed(const Control& control, const CommandResult& result);
  void showCommandsOff();

  void codeFileIsKnown();
  void showTitle();
  [[nodiscard]] bool isBufferChanged() const;
  [[nodiscard]] const CodeOrigin& origin() const;
  [[nodiscard]] QString codeFileName() const;
  [[nodiscard]] std::optional<ImageSource> imageSource() const;
  [[nodiscard]] bool maySaveOverFile();
  /// `otherwise`: the button that goes on without saving.
  [[nodiscard]] bool mayLose(const char* otherwise);
  enum class Answer { Cancel, GoOn, SaveAs };
  [[nodiscard]] Answer askAboutBuffer(const char* name, const QString& what,
                                      const QString& question, const char* goOn);
  [[nodiscard]] bool mayReplace();
  [[nodiscard]] bool replacesBuffer(const Control& control) const;
  void followFile();
  void offerFileAgain();
  void readFileAgain();
  bool saveCodeAs();

  void programSeveral();
  void compareWithChip();
  void compareWithFile();
  [[nodiscard]] images::Bytes imageForChip() const;
  void recordWaves(launch::WaveFile& waves, QAction& entry);
  void askToStop();

  void showPlace();
  void reportPlace();
  void fitToScreen();
  void restoreLook();
  void saveLook();

  WindowParts parts_;
  Controls& controls_;
  form::BufferEditor editor_;
  Ending ending_ = Ending::Done;  // of the last command
  Menus* menus_ = nullptr;
  OptionsPanel* options_ = nullptr;
  OutcomeLine* outcome_ = nullptr;
  NoticeBar* noticeBar_ = nullptr;
  std::unique_ptr<Notices> notices_;
  VppSign* vppSign_ = nullptr;
  CommandBar* commands_ = nullptr;
  DisplayPanel* display_ = nullptr;
  ImageFiles* files_ = nullptr;
  BufferChanges* changes_ = nullptr;
  FileWatch* watch_ = nullptr;
  ChipBackup* backup_ = nullptr;
  ProjectFiles* projects_ = nullptr;
  SimulatedSeries simulated_;
  SeriesSettings series_;
  LogPanel* log_ = nullptr;
  QSplitter* split_ = nullptr;
  QDockWidget* side_ = nullptr;
  StatusStrip* strip_ = nullptr;
  RunningLook* look_ = nullptr;
  QPointer<QMessageBox> stopQuestion_;
  std::function<bool()> mayLeave_;
  QTimer placeRests_;  // a maximised window has its new size before it knows that it is maximised
  std::string comparedDevice_;  // the chip that is compared with; empty: none, or a file
  bool placed_ = false;         // the stored place was taken over; moves are reported from here on
  bool looksRunning_ = false;
  bool isTypingDevice_ = false;
  bool closeWanted_ = false;
  bool isVoltageWarned_ = false;
  bool mayReplace_ = false;  // the person has been asked
  bool unloaded_ = false;
};

}  // namespace kestrel::window
