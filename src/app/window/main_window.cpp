#include "app/window/main_window.h"

#include <QCloseEvent>
#include <QDockWidget>
#include <QDragEnterEvent>
#include <QFileInfo>
#include <QHBoxLayout>
#include <QLabel>
#include <QMimeData>
#include <QPushButton>
#include <QSplitter>
#include <QTimer>
#include <QVBoxLayout>

#include "app/window/command_bar.h"
#include "app/window/display_panel.h"
#include "app/window/log_view.h"
#include "app/window/menus.h"
#include "app/window/options_panel.h"
#include "app/window/second_display.h"
#include "app/window/status_strip.h"
#include "app/window/twips.h"

namespace kestrel::window {

MainWindow::MainWindow(const WindowParts& parts)
    : parts_(parts),
      controls_(parts.form.controls()),
      binder_(parts.mirror, parts.form.runner()),
      recent_(parts.settings) {
  setObjectName("frmMain");
  setAcceptDrops(true);
  buildMenus();
  buildContent();
  icons_.apply(palette());
  connectCommands();
  connectFile();
  controls_.setListener(&parts_.mirror);
  parts_.mirror.bind(controls_.frmMain, [this] { showPlace(); });
}

// The widgets go before what they refer to: losing the focus, one may still ask for a refresh.
MainWindow::~MainWindow() {
  controls_.setListener(nullptr);
  delete takeCentralWidget();
}

void MainWindow::buildMenus() {
  menus_ = new Menus(*this, controls_, binder_, icons_, recent_);
  menus_->onOpenRecent([this](const std::filesystem::path& file) { openCodeFile(file); });
}

void MainWindow::buildContent() {
  auto* const content = new QWidget(this);
  setCentralWidget(content);
  auto* const column = new QVBoxLayout(content);
  column->setContentsMargins(0, 0, 0, 0);
  column->setSpacing(0);
  auto* const middle = new QHBoxLayout;
  middle->setSpacing(0);
  column->addLayout(middle, 1);
  middle->addWidget(new OptionsPanel(controls_, binder_, icons_, content));
  auto* const right = new QVBoxLayout;
  middle->addLayout(right, 1);
  right->addWidget(new CommandBar(controls_, binder_, icons_, content));
  auto* const split = new QSplitter(Qt::Vertical, content);
  split->setChildrenCollapsible(false);
  split->addWidget(new DisplayPanel(controls_, binder_, split));
  auto* const logPart = new QWidget(split);
  auto* const log = new QVBoxLayout(logPart);
  log->setContentsMargins(0, 0, 8, 0);
  auto* const title = new QLabel("System &log", logPart);
  QFont bold = title->font();
  bold.setBold(true);
  title->setFont(bold);
  log->addWidget(title);
  auto* const view = new LogView(controls_, binder_, logPart);
  title->setBuddy(view);
  constexpr int kFewestLines = 5;
  view->setMinimumHeight(kFewestLines * view->fontMetrics().lineSpacing());
  log->addWidget(view, 1);
  split->addWidget(logPart);
  split->setStretchFactor(0, 3);
  split->setStretchFactor(1, 2);
  right->addWidget(split, 1);
  strip_ = new StatusStrip(controls_, binder_, icons_, content);
  column->addWidget(strip_);
  new SecondDisplay(controls_.frmDisplay1, binder_, parts_.screen, this);
}

void MainWindow::connectCommands() {
  form::CommandRunner& runner = parts_.form.runner();
  parts_.screen.setMainWindow(*this, runner);
  parts_.dialogs.setOwner(*this);
  const auto stop = [this] { parts_.stop.stopCommand(); };
  parts_.input.setStop(strip_->stopButton(), stop);
  strip_->onStop(stop);
  runner.whenStarted([this] { strip_->setRunning(true); });
  runner.whenEnded([this] {
    strip_->setRunning(false);
    parts_.mirror.refresh();
    parts_.input.release();
    if (closeWanted_) QTimer::singleShot(0, this, [this] { close(); });
  });
}

void MainWindow::connectFile() {
  parts_.mirror.bind(controls_.FileNameCodeText, [this] { showTitle(); });
  parts_.mirror.bind(controls_.frmMain, [this] { showTitle(); });
}

void MainWindow::showTitle() {
  const QString name = toQString(controls_.frmMain.caption());
  const QString file = toQString(parts_.form.state().CodeFileName);
  if (!file.isEmpty() && !controls_.FileNameCodeText.caption().empty()) {
    setWindowTitle(QFileInfo(file).fileName() + " - " + name);
    recent_.add(file);
  } else {
    setWindowTitle(name);
  }
}

void MainWindow::start() {
  (void)parts_.form.runner().run([this] { parts_.form.Form_Load(); });
  parts_.mirror.refresh();
  placed_ = true;
  show();
}

void MainWindow::openCodeFile(const std::filesystem::path& file) {
  (void)parts_.form.runner().run([this, file] {
    parts_.dialogs.answerNextOpen(file);
    controls_.mnuFileOpenCode.press();
    parts_.dialogs.forgetNextOpen();
  });
}

void MainWindow::addSidePanel(QWidget& panel, const QString& title) {
  auto* const dock = new QDockWidget(title, this);
  dock->setObjectName("sidePanel");
  dock->setFeatures(QDockWidget::DockWidgetClosable | QDockWidget::DockWidgetMovable);
  dock->setWidget(&panel);
  addDockWidget(Qt::RightDockWidgetArea, dock);
  menus_->hardwareMenu().addSeparator();
  menus_->hardwareMenu().addAction(dock->toggleViewAction());
}

// The place of the form and that of the window are one; the side that moved last leads. The window
// follows only a place that differs from its own by more than rounding.
void MainWindow::showPlace() {
  const Pane& place = controls_.frmMain;
  if (place.width() <= 0 || place.height() <= 0) return;
  const QPoint corner(pixelsFromTwips(place.left(), logicalDpiX()),
                      pixelsFromTwips(place.top(), logicalDpiY()));
  const QSize size(pixelsFromTwips(place.width(), logicalDpiX()),
                   pixelsFromTwips(place.height(), logicalDpiY()));
  if (isMinimized() || isMaximized() || isFullScreen()) return;
  if (pos() != corner) move(corner);
  if (this->size() != size) resize(size);
}

void MainWindow::reportPlace() {
  if (!placed_) return;
  Pane& place = controls_.frmMain;
  place.setMinimised(isMinimized());
  if (isMinimized() || isMaximized() || isFullScreen()) return;
  const auto keep = [](std::int32_t twips, int pixels, int dpi) {
    return pixelsFromTwips(twips, dpi) == pixels ? twips : twipsFromPixels(pixels, dpi);
  };
  place.setLeft(keep(place.left(), x(), logicalDpiX()));
  place.setTop(keep(place.top(), y(), logicalDpiY()));
  place.setWidth(keep(place.width(), width(), logicalDpiX()));
  place.setHeight(keep(place.height(), height(), logicalDpiY()));
}

void MainWindow::moveEvent(QMoveEvent* event) {
  QMainWindow::moveEvent(event);
  reportPlace();
}

void MainWindow::resizeEvent(QResizeEvent* event) {
  QMainWindow::resizeEvent(event);
  reportPlace();
}

void MainWindow::changeEvent(QEvent* event) {
  QMainWindow::changeEvent(event);
  if (event->type() == QEvent::WindowStateChange) reportPlace();
  if (event->type() == QEvent::PaletteChange) icons_.apply(palette());
}

// A command that is running ends first.
void MainWindow::closeEvent(QCloseEvent* event) {
  if (parts_.form.runner().isRunning()) {
    closeWanted_ = true;
    event->ignore();
    return;
  }
  closeWanted_ = false;
  reportPlace();
  if (!unloaded_) {
    unloaded_ = true;
    (void)parts_.form.runner().run([this] { parts_.form.Form_Unload(); });
  }
  event->accept();
}

void MainWindow::dragEnterEvent(QDragEnterEvent* event) {
  const QList<QUrl> files = event->mimeData()->urls();
  const bool usable = files.size() == 1 && files.first().isLocalFile();
  if (usable && !parts_.form.runner().isRunning()) event->acceptProposedAction();
}

void MainWindow::dropEvent(QDropEvent* event) {
  const QString file = event->mimeData()->urls().value(0).toLocalFile();
  if (file.isEmpty() || parts_.form.runner().isRunning()) return;
  event->acceptProposedAction();
  openCodeFile(file.toStdString());
}

}  // namespace kestrel::window
