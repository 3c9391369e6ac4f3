#include <QApplication>
#include <QIcon>
#include <QTimer>
#include <csignal>
#include <iostream>

#include "app/launch/machine_ports.h"
#include "app/launch/program_folders.h"
#include "app/window/arguments.h"
#include "app/window/board_panel.h"
#include "app/window/main_window.h"
#include "app/window/qt_help_viewer.h"
#include "app/window/qt_settings_store.h"
#include "app/window/qt_sound_player.h"
#include "app/window/signal_end.h"
#include "hardware/ports/signal_stop.h"

namespace kestrel::window {
namespace {

constexpr const char* kDefaultChip = "27C256";

/// The configuration file of this simulated board must not tell of another one that was plugged in
/// its place.
void putAway(launch::SimulatedBoard& simulated, const Folders& folders) {
  std::error_code ignored;
  if (simulated.wasExchanged())
    std::filesystem::remove(folders.configuration / "kestrel6.ini", ignored);
  simulated.saveChip();
}

/// Puts the program together in the order of its layers and runs it until the window is closed.
/// Returns the exit status.
int runProgram(const Arguments& arguments) {
  Mirror mirror;
  HeldInput input;
  CommandGate gate(mirror, input);
  StopSwitch stop;
  const TimeOfDay time;
  const ports::SignalStop signalStop(stop);
  QtScreen screen(mirror, gate, input);
  QtDialogs dialogs(mirror);
  QtSettingsStore settings;
  QtSoundPlayer sounds;
  QtHelpViewer help(screen);
  const Folders folders = launch::programFolders(arguments.launch);
  launch::MachinePorts ports(arguments.launch, kDefaultChip, stop, screen);
  form::frmMain form({.port = ports.port(),
                      .waits = ports.waits(),
                      .portService = ports,
                      .time = time,
                      .sounds = sounds,
                      .settings = settings,
                      .help = help,
                      .dialogs = dialogs,
                      .screen = screen,
                      .stop = stop,
                      .folders = folders});
  MainWindow window({.form = form,
                     .mirror = mirror,
                     .gate = gate,
                     .input = input,
                     .screen = screen,
                     .dialogs = dialogs,
                     .settings = settings,
                     .stop = stop});
  const SignalEnd end(signalStop, window);
  help.setOwner(window);
  launch::SimulatedBoard* const simulated = ports.simulated();
  if (simulated != nullptr) {
    window.addSidePanel(*new SimulatedBoardPanel(*simulated, gate, &window), "Simulated board");
  }
  window.start();
  if (simulated != nullptr) simulated->startUpDone();
  if (!arguments.codeFile.empty()) {
    QTimer::singleShot(0, &window, [&] { window.openCodeFile(arguments.codeFile); });
  }
  const int result = QApplication::exec();
  if (simulated != nullptr) putAway(*simulated, folders);
  return signalStop.isEndRequested() ? signalStop.exitStatus() : result;
}

/// A look at the options needs none; Qt would abort without one.
bool hasDisplay(int argc, char** argv) {
  for (int i = 1; i < argc; ++i) {
    const std::string_view option = argv[i];
    if (option == "--help" || option == "-h" || option == "--version" || option == "-v") {
      qputenv("QT_QPA_PLATFORM", "offscreen");
    }
  }
  for (const char* const name : {"DISPLAY", "WAYLAND_DISPLAY", "QT_QPA_PLATFORM"}) {
    if (qEnvironmentVariableIsSet(name)) return true;
  }
  return false;
}

}  // namespace
}  // namespace kestrel::window

int main(int argc, char** argv) {
  kestrel::ports::openMissingStandardFiles();
  // A reader of the messages that goes away must not end the program with a voltage on.
  std::signal(SIGPIPE, SIG_IGN);
  kestrel::ports::switchOffOnCrash();
  if (!kestrel::window::hasDisplay(argc, argv)) {
    std::cerr << "kestrel: there is no display for the window; kestrel-cli does the same work.\n";
    return 2;
  }
  const QApplication application(argc, argv);
  QApplication::setApplicationName("kestrel");
  QApplication::setApplicationVersion(KESTREL_VERSION);
  QApplication::setDesktopFileName("kestrel");
  QApplication::setWindowIcon(QIcon(":/icons/kestrel.svg"));
  try {
    return kestrel::window::runProgram(kestrel::window::readArguments(QApplication::arguments()));
  } catch (const kestrel::launch::UsageError& error) {
    std::cerr << "kestrel: " << error.what() << "\nTry kestrel --help.\n";
    return 2;
  } catch (const std::exception& error) {
    std::cerr << "kestrel: " << error.what() << '\n';
    return 2;
  }
}
