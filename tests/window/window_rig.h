#pragma once

#include <gtest/gtest.h>

#include <QAction>
#include <QApplication>
#include <QComboBox>
#include <QFileDialog>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QMessageBox>
#include <QPlainTextEdit>
#include <QTest>
#include <QTimer>
#include <QToolButton>
#include <algorithm>
#include <functional>
#include <stdexcept>
#include <string>
#include <vector>

#include "app/launch/program.h"
#include "app/window/main_window.h"
#include "platform/atomic_file.h"
#include "support/fakes.h"
#include "support/temporary_folder.h"

namespace kestrel::test {

[[nodiscard]] inline launch::LaunchOptions simulatedOptions(const std::string& chip) {
  launch::LaunchOptions options;
  options.simulate = true;
  options.chip = launch::ChipChoice{.type = chip, .file = {}};
  return options;
}

/// The whole window on a simulated board, as its main puts it together, with silent surroundings.
struct WindowRig {
  explicit WindowRig(const launch::LaunchOptions& options = simulatedOptions("27C256"))
      : program(options, "27C256",
                {.sounds = sounds,
                 .settings = settings,
                 .help = help,
                 .dialogs = dialogs,
                 .screen = screen},
                stop,
                Folders{.configuration = folder / "config",
                        .data = folder / "data",
                        .working = folder.path()}),
        form(program.form()),
        window({.form = form,
                .mirror = mirror,
                .input = input,
                .screen = screen,
                .dialogs = dialogs,
                .settings = settings,
                .stop = stop}) {
    std::filesystem::create_directories(folder / "config");
    QObject::connect(&watchdog_, &QTimer::timeout, &watchdog_, [] { closeForgottenDialog(); });
    watchdog_.start(30'000);
  }

  /// Shows the window after the form's start-up.
  void start() {
    window.start();
    activate();
  }
  /// The keys go to the window again: this platform forgets it for a popup.
  void activate() {
    turn();
    window.activateWindow();
    turn();
  }
  /// Lets everything that is due happen.
  static void turn() {
    for (int round = 0; round < 3; ++round) QCoreApplication::processEvents();
  }

  /// The widget or action of that name.
  template <typename T = QWidget>
  T& find(const char* name) {
    T* const found = window.findChild<T*>(name);
    if (found == nullptr) throw std::invalid_argument(name);
    return *found;
  }
  /// The widget of that name that can be seen; nullptr if none can.
  QWidget* shown(const char* name) {
    const auto all = window.findChildren<QWidget*>(name);
    const auto found = std::ranges::find_if(all, &QWidget::isVisible);
    return found == all.end() ? nullptr : *found;
  }
  void click(const char* name) {
    QTest::mouseClick(&find(name), Qt::LeftButton);
    activate();
  }
  void trigger(const char* action) {
    find<QAction>(action).trigger();
    turn();
  }
  /// Types into the device list and presses Enter.
  void select(const char* typed) {
    auto& device = find<QComboBox>("Device");
    device.setFocus();
    device.lineEdit()->selectAll();
    QTest::keyClicks(device.lineEdit(), typed);
    QTest::keyClick(&device, Qt::Key_Return);
    activate();
  }
  void openFile(const std::string& name, const std::vector<std::uint8_t>& bytes) {
    writeFileAtomically(folder / name, bytes);
    window.openCodeFile(folder / name);
    turn();
  }
  [[nodiscard]] QString logText() { return find<QPlainTextEdit>("SystemLog").toPlainText(); }
  [[nodiscard]] bool logged(const char* message) { return logText().contains(message); }
  [[nodiscard]] bool displayed(const char* text) {
    return find<QPlainTextEdit>("BufferDisplay").toPlainText().contains(text);
  }
  [[nodiscard]] Controls& controls() { return form.controls(); }
  [[nodiscard]] sim::Board& board() { return program.simulated()->board(); }
  [[nodiscard]] std::vector<std::uint8_t> chipContents() {
    const auto cells = board().chip()->contents();
    return {cells.begin(), cells.end()};
  }

  /// Somebody is still at it.
  void restartWatch() { watchdog_.start(); }
  /// A dialog that nobody answers fails the test instead of stopping it.
  static void closeForgottenDialog() {
    auto* const dialog = dynamic_cast<QDialog*>(QApplication::activeModalWidget());
    if (dialog == nullptr) return;
    auto* const box = dynamic_cast<QMessageBox*>(dialog);
    ADD_FAILURE() << "unexpected dialog: "
                  << (box ? box->text() : dialog->windowTitle()).toStdString();
    dialog->reject();
  }

  TemporaryFolder folder;
  window::Mirror mirror;
  window::HeldInput input;
  StopSwitch stop;
  window::QtScreen screen{mirror, input};
  MemorySettings settings;
  window::QtDialogs dialogs{mirror, settings};
  RecordingSounds sounds;
  RecordingHelp help;
  launch::LaunchedProgram program;
  form::frmMain& form;
  window::MainWindow window;

 private:
  QTimer watchdog_;
};

/// Names what lies over another widget or is cut off by its frame, and tool buttons that tell
/// nothing.
[[nodiscard]] inline std::string misplacedIn(const QWidget& window) {
  const auto isPlaced = [](const QWidget* each) {
    return each->isVisible() && !each->isWindow() &&
           !each->testAttribute(Qt::WA_TransparentForMouseEvents);
  };
  std::string names;
  const auto note = [&](const QWidget* each) {
    names += each->objectName().toStdString() + " (" + each->metaObject()->className() + ") ";
  };
  for (const QWidget* const each : window.findChildren<QWidget*>()) {
    if (!isPlaced(each)) continue;
    const bool isScrolled = each->parentWidget()->objectName() == "qt_scrollarea_viewport";
    if (!isScrolled && !each->parentWidget()->rect().contains(each->geometry())) note(each);
    if (dynamic_cast<const QToolButton*>(each) != nullptr && each->toolTip().isEmpty()) note(each);
    for (const QObject* const object : each->parent()->children()) {
      const auto* const other = dynamic_cast<const QWidget*>(object);
      if (other == nullptr || other == each || !isPlaced(other)) continue;
      if (each->geometry().intersects(other->geometry())) note(each);
    }
  }
  return names;
}

/// A rig after its start-up, the blank chip in its socket selected when that is
/// asked for.
struct StartedRig : WindowRig {
  explicit StartedRig(const char* selected = nullptr)
      : WindowRig(simulatedOptions(selected == nullptr ? "27C256" : selected)) {
    start();
    board().blankChip();
    if (selected != nullptr) select(selected);
  }
  ~StartedRig() { EXPECT_EQ(misplacedIn(window), ""); }
};

/// Waits for the next modal dialog (of a name, if one is given) and does something with it.
/// Remembers what the dialog said: the text of a message box, the title of any other.
class WithDialog {
 public:
  explicit WithDialog(std::function<void(QDialog&)> act, QString name = {})
      : act_(std::move(act)), name_(std::move(name)) {
    QObject::connect(&look_, &QTimer::timeout, &look_, [this] { look(); });
    look_.start(1);
  }
  [[nodiscard]] std::string said() const { return said_.toStdString(); }

 private:
  void look() {
    auto* const dialog = dynamic_cast<QDialog*>(QApplication::activeModalWidget());
    if (dialog == nullptr || (!name_.isEmpty() && dialog->objectName() != name_)) return;
    look_.stop();
    auto* const box = dynamic_cast<QMessageBox*>(dialog);
    said_ = box ? box->text() : dialog->windowTitle();
    if (box == nullptr && dynamic_cast<QFileDialog*>(dialog) == nullptr) {
      EXPECT_EQ(misplacedIn(*dialog), "") << said_.toStdString();
    }
    act_(*dialog);
  }

  std::function<void(QDialog&)> act_;
  QString name_;
  QTimer look_;
  QString said_;
};

[[nodiscard]] inline WithDialog answering(QMessageBox::StandardButton answer) {
  return WithDialog([answer](QDialog& dialog) {
    QTest::mouseClick(dynamic_cast<QMessageBox&>(dialog).button(answer), Qt::LeftButton);
  });
}

/// Presses the button of a question whose caption has this text.
[[nodiscard]] inline WithDialog pressing(const char* caption) {
  return WithDialog([caption](QDialog& dialog) {
    for (QAbstractButton* const button : dialog.findChildren<QAbstractButton*>()) {
      if (button->text().remove('&').contains(caption)) {
        QTest::mouseClick(button, Qt::LeftButton);
        return;
      }
    }
    ADD_FAILURE() << "no button " << caption;
  });
}

[[nodiscard]] inline std::vector<std::uint8_t> countingBytes(std::size_t count) {
  std::vector<std::uint8_t> bytes(count);
  for (std::size_t i = 0; i < count; ++i) bytes[i] = static_cast<std::uint8_t>(i * 7 + i / 256);
  return bytes;
}

}  // namespace kestrel::test
