#include "app/window/main_window.h"

#include <QApplication>
#include <QCloseEvent>
#include <QDockWidget>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QMessageBox>
#include <QPushButton>
#include <QScopedValueRollback>
#include <QSplitter>
#include <QTimer>
#include <QVBoxLayout>
#include <algorithm>
#include <utility>

#include "app/window/buffer_changes.h"
#include "app/window/chip_backup.h"
#include "app/window/command_bar.h"
#include "app/window/device_box.h"
#include "app/window/device_card.h"
#include "app/window/display_panel.h"
#include "app/window/file_watch.h"
#include "app/window/fitting_area.h"
#include "app/window/image_identity.h"
#include "app/window/lamp.h"
#include "app/window/log_panel.h"
#include "app/window/menus.h"
#include "app/window/notice_bar.h"
#include "app/window/notices.h"
#include "app/window/off_tips.h"
#include "app/window/options_panel.h"
#include "app/window/outcome_line.h"
#include "app/window/project_files.h"
#include "app/window/running_look.h"
#include "app/window/second_display.h"
#include "app/window/status_strip.h"
#include "app/window/texts.h"
#include "app/window/vpp_sign.h"
#include "app/window/window_settings.h"

namespace kestrel::window {
namespace {

constexpr int kPlaceRestsMs = 200;
constexpr int kBesideOthers = 32;                     // pixels from one window to the next
constexpr std::array<int, 2> kFrameKnownMs{50, 400};  // looked at twice: some desktops are slow

bool isPageKey(const QEvent& event) {
  if (event.type() != QEvent::KeyPress) return false;
  const int key = static_cast<const QKeyEvent&>(event).key();
  return key == Qt::Key_PageUp || key == Qt::Key_PageDown || key == Qt::Key_Home ||
         key == Qt::Key_End;
}

bool isScroll(const QEvent& event) { return event.type() == QEvent::Wheel || isPageKey(event); }

}  // namespace

MainWindow::MainWindow(const WindowParts& parts)
    : WidgetServices{.binder = {parts.mirror, parts.form.runner()},
                     .icons = {},
                     .recent = RecentFiles(parts.settings)},
      parts_(parts),
      controls_(parts.form.controls()),
      editor_(parts.form) {
  setObjectName("frmMain");
  setAcceptDrops(true);
  buildMenus();
  buildContent();
  buildSearch();
  buildImages();
  buildProjects();
  icons.apply(palette());
  connectCommands();
  connectInput();
  showTitle();
  controls_.setListener(&parts_.mirror);
  parts_.mirror.bind(controls_.frmMain, *this, [this] { showPlace(); });
}

MainWindow::~MainWindow() {
  parts_.stop.whileWaiting({});
  controls_.setListener(nullptr);
}

void MainWindow::buildMenus() {
  menus_ = new Menus(*this, controls_, binder, icons, recent, [this] { return maySaveOverFile(); });
  menus_->onOpenRecent([this](const std::filesystem::path& file) { openCodeFile(file); });
}

void MainWindow::buildContent() {
  auto* const content = new QWidget(this);
  content->setFocusPolicy(Qt::ClickFocus);  // a click beside everything leaves the device list
  setCentralWidget(content);
  auto* const column = new QVBoxLayout(content);
  column->setContentsMargins(0, 0, 0, 0);
  column->setSpacing(0);
  auto* const area = new FittingArea(content);
  auto* const work = new FittingContents(area);
  area->setWidget(work);
  column->addWidget(area, 1);
  auto* const middle = new QHBoxLayout(work);
  middle->setContentsMargins(0, 0, 0, 0);
  middle->setSpacing(0);
  const ProgrammerState& state = parts_.form.state();
  options_ = new OptionsPanel(controls_, state, state, state, state, binder, icons, work);
  middle->addWidget(options_);
  auto* const right = new QVBoxLayout;
  middle->addLayout(right, 1);
  commands_ = new CommandBar(controls_, state, state, binder, icons, work);
  right->addWidget(commands_);
  outcome_ = new OutcomeLine(
      controls_, state, state, state, [this] { return parts_.form.hasBoard(); }, work);
  right->addWidget(outcome_);
  split_ = new QSplitter(Qt::Vertical, work);
  split_->setChildrenCollapsible(false);
  display_ = new DisplayPanel(controls_, state, state, binder, split_);
  log_ = new LogPanel(controls_, binder, parts_.dialogs, split_);
  split_->addWidget(display_);
  noticeBar_ = new NoticeBar(*display_->focusProxy(), work);
  notices_ = std::make_unique<Notices>(parts_.form, binder, *noticeBar_);
  right->addWidget(noticeBar_);
  vppSign_ = new VppSign(state, state, &display_->header());
  split_->addWidget(log_);
  split_->setStretchFactor(0, 3);
  split_->setStretchFactor(1, 2);
  right->addWidget(split_, 1);
  strip_ = new StatusStrip(controls_, binder, icons, content);
  column->addWidget(strip_);
  new SecondDisplay(controls_.frmDisplay1, binder, parts_.screen, this);
}

// What is looked for is in the log when the keyboard is there, else in the buffer.
void MainWindow::buildSearch() {
  QMenu& menu = menus_->bufferMenu();
  const auto add = [&](const char* caption, const QKeySequence& key, const char* name,
                       const std::function<void()>& handler) {
    QAction* const action = menu.addAction(caption, this, handler);
    action->setShortcut(key);
    action->setObjectName(name);
  };
  menu.addSeparator();
  add("&Go to Address...", QKeySequence("Ctrl+G"), "bufferGoTo",
      [this] { display_->askForAddress(); });
  add("&Find...", QKeySequence("Ctrl+F"), "bufferFind",
      [this] { log_->hasKeyboard() ? log_->openFind() : display_->openFind(); });
  add("Find &Next", QKeySequence("F3"), "bufferFindNext", [this] { display_->goOn(); });
  menu.addSeparator();
  add("&Compare with Chip", QKeySequence("Ctrl+D"), "compareChip", [this] { compareWithChip(); });
  add("Compare with &File...", QKeySequence(), "compareFile", [this] { compareWithFile(); });
  add("&Previous Difference", QKeySequence("Shift+F3"), "previousDifference",
      [this] { display_->goBack(); });
}

void MainWindow::buildImages() {
  files_ = new ImageFiles({.window = *this,
                           .form = parts_.form,
                           .dialogs = parts_.dialogs,
                           .outcome = *outcome_,
                           .mayReplace = [this] { return mayReplace(); }},
                          menus_->fileMenu(), "mnuFileClose");
  files_->onImported([this] { followFile(); });
  files_->onExported([this] { watch_->takeAsKnown(); });
  watch_ = new FileWatch(this, [this] { offerFileAgain(); });
  changes_ = new BufferChanges(*this, editor_, menus_->bufferMenu());
  changes_->onChanged([this](std::int32_t address) {
    parts_.mirror.refresh();
    display_->showAddress(address, 0);
    showTitle();
  });
  backup_ = new ChipBackup(
      {.window = *this, .form = parts_.form, .outcome = *outcome_, .settings = parts_.settings},
      menus_->deviceMenu(), "menuCommandBar0");
  binder.onGuard([this](const Control& control) {
    return (!replacesBuffer(control) || mayReplace()) && backup_->mayPress(control);
  });
  connect(insertEntry(*this, menus_->deviceMenu(), "menuDisplayCode", "Program Se&veral...",
                      "programSeveral"),
          &QAction::triggered, this, [this] { programSeveral(); });
  options_->identity().lookAt(
      [this] {
        const bool isEmpty = origin().source == CodeSource::Start && !isBufferChanged();
        return isEmpty ? images::Bytes() : editor_.image();
      },
      [this] { return parts_.form.runner().isRunning(); });
  display_->letType([this] { return parts_.form.isCodeOnView(); },
                    [this] { return static_cast<std::int32_t>(editor_.size()); },
                    [this](std::int32_t address, std::uint8_t value, bool goesOn) {
                      editor_.putByte(static_cast<std::size_t>(address), value, goesOn);
                    });
}

void MainWindow::buildProjects() {
  projects_ = new ProjectFiles({.window = *this,
                                .form = parts_.form,
                                .dialogs = parts_.dialogs,
                                .outcome = *outcome_,
                                .notices = *noticeBar_,
                                .images = *files_,
                                .backup = *backup_,
                                .series = series_,
                                .mayReplace = [this] { return mayReplace(); },
                                .openCode =
                                    [this](const std::filesystem::path& file) {
                                      const QScopedValueRollback asked(mayReplace_, true);
                                      openCodeFile(file);
                                    },
                                .source = [this] { return imageSource(); }},
                               menus_->fileMenu(), "BufferDisplay_DblClick");
}

void MainWindow::connectCommands() {
  form::CommandRunner& runner = parts_.form.runner();
  parts_.screen.setMainWindow(*this, runner);
  parts_.dialogs.setOwner(*this);
  look_ = new RunningLook(*this, [this](bool running) {
    looksRunning_ = running;
    showCommandsOff();
  });
  look_->setParent(this);
  runner.whenStarted([this] { commandStarted(); });
  runner.whenEnded([this] { commandEnded(); });
  binder.onPress([this](const Control& control) {
    if (commandKind(controls_, control) == CommandKind::EraseBuffer) editor_.keepBeforeErase();
    outcome_->begin(control);
  });
  outcome_->onCompare([this] { compareWithChip(); });
  outcome_->onAddress([this](std::int32_t address) { display_->showAddress(address); });
  binder.onPressed(
      [this](const Control& control, const CommandResult& result) { pressed(control, result); });
  explainWhatIsOff(*this, [this] {
    return Situation{.isRunning = parts_.form.runner().isRunning(),
                     .isTypingDevice = isTypingDevice_,
                     .isAlertUp = strip_->errorLamp().isAlert(),
                     .isDeviceChosen = !parts_.form.state().DeviceName.empty()};
  });
}

void MainWindow::connectInput() {
  const auto stop = [this] { parts_.stop.stopCommand(); };
  parts_.stop.whileWaiting([this] { parts_.screen.turn(); });
  strip_->onStop(stop);
  parts_.input.onEscape(stop);
  parts_.input.letThrough(strip_->stopButton());
  // A scroll while a page is drawn is done after it.
  parts_.input.letThrough(
      *display_, [this](const QEvent& event) { return display_->isDrawing() && isScroll(event); });
  options_->device().onTyping([this](bool isTyping) {
    isTypingDevice_ = isTyping;
    showCommandsOff();
  });
}

void MainWindow::commandStarted() {
  parts_.dialogs.beginCommand();
  ending_ = Ending::Done;
  strip_->setRunning(true);
  options_->card().setRunning(true);
  look_->begin();
}

void MainWindow::commandEnded() {
  parts_.input.dropPending();
  strip_->setRunning(false);
  parts_.mirror.refresh();
  options_->card().setRunning(false);
  vppSign_->lookAtEnd();
  display_->showMap();
  if (!comparedDevice_.empty() && comparedDevice_ != parts_.form.state().DeviceName) {
    display_->closeComparison();
    comparedDevice_.clear();
  }
  display_->compareSoon();
  commands_->showVoltage();
  editor_.lookAtBuffer();
  options_->identity().lookSoon();
  showTitle();
  notices_->look();
  ErrorLamp& alert = strip_->errorLamp();
  look_->end(alert.isAlert() ? &alert : nullptr, *display_->focusProxy());
  if (stopQuestion_) stopQuestion_->close();
  QTimer::singleShot(0, this, [this] { warnOfVoltage(); });
  if (closeWanted_) QTimer::singleShot(0, this, [this] { closeAfterCommand(); });
}

void MainWindow::warnOfVoltage() {
  const bool mayBeOn = parts_.form.mayVoltageBeOn();
  const bool wasWarned = std::exchange(isVoltageWarned_, mayBeOn);
  if (!mayBeOn || wasWarned || parts_.stop.isEnding()) return;
  QMessageBox box(QMessageBox::Critical, "Kestrel", toQString(std::string(form::kVoltageWarning)),
                  QMessageBox::Ok, this);
  box.setObjectName("voltageWarning");
  box.exec();
}

// What failed is to be read before the window goes.
void MainWindow::closeAfterCommand() {
  const bool hasEnded = ending_ == Ending::Done || ending_ == Ending::Stopped;
  closeWanted_ = false;
  if (parts_.stop.isEnding() || (hasEnded && !strip_->errorLamp().isAlert())) close();
}

void MainWindow::pressed(const Control& control, const CommandResult& result) {
  ending_ = result.ending;
  outcome_->end(control, result, parts_.dialogs.asked());
  notices_->commandEnded(result);
  if (result.ending != Ending::Done) return;
  const CommandKind command = commandKind(controls_, control);
  const bool isOpened = command == CommandKind::OpenCode;
  if (isOpened || command == CommandKind::SaveCode || command == CommandKind::LoadSetup) {
    codeFileIsKnown();
  }
  if (isOpened && !parts_.dialogs.wasFileCancelled()) files_->lookAtOpened();
}

void MainWindow::showCommandsOff() {
  options_->widget()->setEnabled(!looksRunning_);
  commands_->setEnabled(!looksRunning_ && !isTypingDevice_);
  display_->setCommandsOff(looksRunning_);
  log_->setCommandsOff(looksRunning_);
  noticeBar_->setEnabled(!looksRunning_);
  menus_->setCommandsOff(looksRunning_, isTypingDevice_);
}

// --- opening and closing ---

void MainWindow::start(int windowsBefore) {
  (void)parts_.form.runner().run([this] { parts_.form.Form_Load(); });
  parts_.mirror.refresh();
  placeRests_.setSingleShot(true);
  placeRests_.setInterval(kPlaceRestsMs);
  connect(&placeRests_, &QTimer::timeout, this, [this] { reportPlace(); });
  move(pos() + windowsBefore * QPoint(kBesideOthers, kBesideOthers));
  restoreLook();
  fitToScreen();
  placed_ = true;
  const bool wasMaximised = parts_.settings.value(kWindowSection, "Maximised") == "1";
  wasMaximised ? showMaximized() : show();
  for (const int wait : kFrameKnownMs) QTimer::singleShot(wait, this, [this] { fitToScreen(); });
}

void MainWindow::restoreAlgorithms() {
  if (parts_.settings.value(kWindowSection, "Algorithms") != "DataSheet") return;
  (void)parts_.form.runner().run([this] { controls_.AlgorithmSelection[1].press(); });
}

void MainWindow::offerSimulation(std::function<void()> simulate) {
  notices_->offerSimulation(std::move(simulate));
}

DeviceCard& MainWindow::deviceCard() const { return options_->card(); }

void MainWindow::addSidePanel(QWidget& panel, const QString& title) {
  side_ = new QDockWidget(title, this);
  side_->setObjectName("sidePanel");
  side_->setFeatures(QDockWidget::DockWidgetClosable | QDockWidget::DockWidgetMovable |
                     QDockWidget::DockWidgetFloatable);
  side_->setWidget(&panel);
  addDockWidget(Qt::RightDockWidgetArea, side_);
  menus_->hardwareMenu().addSeparator();
  menus_->hardwareMenu().addAction(side_->toggleViewAction());
}

void MainWindow::addLinkEntry(std::function<bool()> choose) {
  QMenu& ports = *menus_->hardwareMenu().addMenu("&Port");
  ports.setObjectName("mnuPort");
  QAction& entry = *ports.addAction("&Link...");
  entry.setObjectName("mnuLink");
  connect(&entry, &QAction::triggered, this, [this, choose = std::move(choose)] {
    if (choose()) binder.press(controls_.menuTestHardware);
  });
}

void MainWindow::closeEvent(QCloseEvent* event) {
  event->ignore();
  if (parts_.form.runner().isRunning()) {
    if (parts_.stop.isEnding()) {
      closeWanted_ = true;
    } else {
      askToStop();
    }
    return;
  }
  if (!unloaded_) {
    const bool mayAsk = !parts_.stop.isEnding();
    if (mayAsk && !mayLose("Close &Without Saving")) return;
    if (mayLeave_ && mayAsk && !mayLeave_()) return;
    unloaded_ = true;
    reportPlace();
    saveLook();
    (void)parts_.form.runner().run([this] { parts_.form.Form_Unload(); });
    warnOfVoltage();
  }
  event->accept();
}

// The command goes on behind the question: nothing waits with a voltage on the chip.
void MainWindow::askToStop() {
  if (stopQuestion_) {
    stopQuestion_->raise();
    return;
  }
  stopQuestion_ = new QMessageBox(QMessageBox::Question, "Kestrel", "A command is running.",
                                  QMessageBox::NoButton, this);
  stopQuestion_->setObjectName("stopQuestion");
  stopQuestion_->setAttribute(Qt::WA_DeleteOnClose);
  stopQuestion_->setModal(false);
  stopQuestion_->setInformativeText(
      "Stopped, it switches the programming voltage off; a chip that is being programmed or erased "
      "stays half done.");
  QAbstractButton* const stop =
      stopQuestion_->addButton("&Stop and Close", QMessageBox::DestructiveRole);
  QPushButton* const keepOn = stopQuestion_->addButton("&Keep On", QMessageBox::RejectRole);
  stopQuestion_->setDefaultButton(keepOn);
  connect(stop, &QAbstractButton::clicked, this, [this] {
    closeWanted_ = true;
    parts_.stop.stopCommand();
  });
  parts_.input.letThrough(*stopQuestion_);
  stopQuestion_->show();
}

void MainWindow::changeEvent(QEvent* event) {
  QMainWindow::changeEvent(event);
  if (event->type() == QEvent::WindowStateChange) reportPlace();
  if (event->type() == QEvent::PaletteChange) icons.apply(palette());
}

}  // namespace kestrel::window
