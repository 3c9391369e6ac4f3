#include <QApplication>
#include <QIcon>
#include <QProcess>
#include <QTimer>
#include <csignal>
#include <iostream>
#include <optional>

#include "app/launch/program.h"
#include "app/launch/version.h"
#include "app/window/arguments.h"
#include "app/window/board_panel.h"
#include "app/window/device_card.h"
#include "app/window/instance_number.h"
#include "app/window/link_dialog.h"
#include "app/window/main_window.h"
#include "app/window/qt_help_viewer.h"
#include "app/window/qt_settings_store.h"
#include "app/window/qt_sound_player.h"
#include "app/window/readable_style.h"
#include "app/window/signal_end.h"
#include "hardware/ports/signal_stop.h"
#include "platform/file_names.h"

namespace kestrel::window {
namespace {

constexpr const char* kDefaultChip = "27C256";

/// The configuration file of this simulated board must not name another one that was plugged in
/// its place.
void putAway(launch::SimulatedBoard& simulated, const Folders& folders) {
  std::error_code ignored;
  if (simulated.wasExchanged())
    std::filesystem::remove(folders.configuration / "kestrel6.ini", ignored);
  simulated.saveChip();
}

/// While the algorithms of the data sheets are chosen the simulated board holds every pulse against
/// the chip's data sheet.
void judgeByDataSheet(launch::SimulatedBoard& simulated, form::frmMain& form) {
  form.runner().whenEnded([&simulated, &form] {
    simulated.bench().judgePulses(form.state().algorithms == Algorithms::DataSheet);
  });
}

/// The program anew on a simulated board in place of this one, with the chip of the chosen device
/// and the opened file.
void changeToSimulation(form::frmMain& form, MainWindow& window) {
  const ProgrammerState& state = form.state();
  const bool isByDataSheet = state.algorithms == Algorithms::DataSheet;
  QStringList arguments{"--simulate", "--algorithms", isByDataSheet ? "datasheet" : "classic"};
  const std::string chip = launch::chipTypeForDevice(state.DeviceName);
  if (!chip.empty()) arguments << "--chip" << QString::fromStdString(chip);
  const CodeOrigin& from = state.CodeFrom;
  if (from.source == CodeSource::File) arguments << QString::fromStdString(from.name);
  if (QProcess::startDetached(QCoreApplication::applicationFilePath(), arguments)) window.close();
}

/// The simulated board's panel, and its socket wherever the window shows the chip in it.
void fitSimulation(launch::SimulatedBoard& simulated, form::CommandRunner& runner, HeldInput& input,
                   MainWindow& window) {
  auto* const panel = new SimulatedBoardPanel(simulated, runner, input, &window);
  window.addSidePanel(*panel, "Simulated board");
  window.changeChipsBy({.changeChip = [&simulated](std::size_t n) { simulated.changeChip(n); },
                        .keepChip = [&simulated] { simulated.saveChip(); }});
  watchSocket(simulated, window.deviceCard());
  window.onLeaving([panel] { return panel->keepChip(); });
}

/// What helps where the board is not found at the ports of this computer.
void fitRealPorts(launch::LaunchedProgram& program, SettingsStore& settings, MainWindow& window) {
  window.addLinkEntry([&] { return askForLink(program, settings, window); });
  window.offerSimulation([&] { changeToSimulation(program.form(), window); });
}

/// Puts the program together in the order of its layers and runs it until the window is closed.
/// Returns the exit status.
int runProgram(const Arguments& arguments) {
  Mirror mirror;
  HeldInput input;
  StopSwitch stop;
  const ports::SignalStop signalStop(stop);
  QtScreen screen(mirror, input);
  QtSettingsStore settings;
  QtDialogs dialogs(mirror, settings);
  QtSoundPlayer sounds;
  QtHelpViewer help(screen);
  std::optional<launch::LaunchedProgram> launched;
  const launch::FrontEnd frontEnd{
      .sounds = sounds, .settings = settings, .help = help, .dialogs = dialogs, .screen = screen};
  const launch::LaunchOptions options = withKeptLink(arguments.launch, settings);
  if (!launch::launchProgram(launched, options, kDefaultChip, frontEnd, stop)) {
    return signalStop.exitStatus();
  }
  launch::LaunchedProgram& program = *launched;
  MainWindow window({.form = program.form(),
                     .mirror = mirror,
                     .input = input,
                     .screen = screen,
                     .dialogs = dialogs,
                     .settings = settings,
                     .stop = stop});
  const SignalEnd end(signalStop, window);
  help.setOwner(window);
  launch::SimulatedBoard* const simulated = program.simulated();
  if (simulated != nullptr) {
    fitSimulation(*simulated, program.form().runner(), input, window);
  } else {
    fitRealPorts(program, settings, window);
  }
  if (program.waves() != nullptr) window.offerWaves(*program.waves());
  if (!arguments.launch.algorithms) window.restoreAlgorithms();
  if (simulated != nullptr) judgeByDataSheet(*simulated, program.form());
  const InstanceNumber instance;
  window.start(instance.value());
  if (simulated != nullptr) simulated->startUpDone();
  QTimer::singleShot(0, &window, [&] {
    if (!arguments.project.empty()) window.openProject(arguments.project);
    if (!arguments.codeFile.empty()) window.openCodeFile(arguments.codeFile);
  });
  const int result = QApplication::exec();
  if (program.waves() != nullptr) program.waves()->end();
  if (signalStop.isEndRequested() && program.form().mayVoltageBeOn()) {
    std::cerr << "kestrel: " << form::kVoltageWarning << '\n';
  }
  program.trace().finish();
  if (simulated != nullptr) putAway(*simulated, program.folders());
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
  // Nor must a file that reaches the limit of its size (ulimit -f): that is an error of the write.
  std::signal(SIGXFSZ, SIG_IGN);
  kestrel::ports::switchOffOnCrash();
  if (!kestrel::window::hasDisplay(argc, argv)) {
    std::cerr << "kestrel: there is no display for the window; kestrel-cli does the same work.\n";
    return 2;
  }
  const QApplication application(argc, argv);
  QApplication::setStyle(new kestrel::window::ReadableStyle);
  QApplication::setApplicationName("kestrel");
  QApplication::setApplicationVersion(kestrel::launch::kVersion);
  QApplication::setDesktopFileName("kestrel");
  QApplication::setWindowIcon(QIcon(":/icons/kestrel.svg"));
  try {
    return kestrel::window::runProgram(kestrel::window::readArguments(QApplication::arguments()));
  } catch (const kestrel::launch::UsageError& error) {
    std::cerr << "kestrel: " << kestrel::shownName(error.what()) << "\nTry kestrel --help.\n";
    return 2;
  } catch (const std::exception& error) {
    std::cerr << "kestrel: " << kestrel::shownName(error.what()) << '\n';
    return 2;
  }
}
