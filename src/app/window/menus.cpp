#include "app/window/menus.h"

#include <QMenuBar>
#include <QToolBar>
#include <QToolButton>
#include <utility>

#include "app/window/file_of.h"
#include "app/window/texts.h"

namespace kestrel::window {
namespace {

constexpr qsizetype kLongestName = 60;  // of a setup; a damaged file may give one of any length
constexpr int kRecentLetters = 60;      // of a recent file's path

}  // namespace

Menus::Menus(QMainWindow& window, Controls& controls, const Binder& binder, IconSet& icons,
             RecentFiles& recent, std::function<bool()> maySave)
    : QObject(&window),
      window_(window),
      controls_(controls),
      binder_(binder),
      icons_(icons),
      recent_(recent),
      maySave_(std::move(maySave)) {
  buildFile();
  buildDevice();
  buildBuffer();
  buildSetup();
  buildHardware();
  buildHelp();
  buildToolbar();
}

QMenu* Menus::addMenu(const QString& caption, const QString& name) {
  QMenu* const menu = window_.menuBar()->addMenu(caption);
  menu->setObjectName(name);
  return menu;
}

QAction* Menus::add(QMenu& menu, Button& control, const QString& icon,
                    const std::function<bool()>& mayPress) {
  auto* const action = new QAction(&window_);
  binder_.action(control, *action, mayPress);
  if (!icon.isEmpty()) icons_.add(*action, icon);
  menu.addAction(action);
  return action;
}

void Menus::addAll(QMenu& menu, std::initializer_list<Button*> controls) {
  for (Button* const control : controls) add(menu, *control);
}

void Menus::addSeparator(QMenu& menu, const QString& name) {
  menu.addSeparator()->setObjectName(name);
}

void Menus::buildFile() {
  QMenu& menu = *addMenu("&File", "mnuFile");
  file_ = &menu;
  add(menu, controls_.mnuFileOpenCode, "open-code")->setShortcut(QKeySequence::Open);
  add(menu, controls_.mnuFileOpenData, "open-data");
  buildRecent(menu);
  add(menu, controls_.mnuFileClose);
  menu.addSeparator();
  add(menu, controls_.mnuFileSaveCode, "save-code", maySave_)->setShortcut(QKeySequence::Save);
  // The key that users know from elsewhere, whatever the desktop's theme defines.
  add(menu, controls_.mnuFileSaveCodeAs)->setShortcut(QKeySequence("Ctrl+Shift+S"));
  add(menu, controls_.mnuFileSaveData, "save-data");
  add(menu, controls_.mnuFileSaveDataAs);
  menu.addSeparator();
  add(menu, controls_.BufferDisplay_DblClick)->setText("Export Displa&y to KESTREL.BUF");
  add(menu, controls_.SystemLog_DblClick)->setText("Export &Log to KESTREL.LOG");
  menu.addSeparator();
  add(menu, controls_.mnuFileExit)->setShortcut(QKeySequence("Ctrl+Q"));
}

void Menus::buildRecent(QMenu& file) {
  recentMenu_ = file.addMenu("Open &Recent");
  recentMenu_->setObjectName("recentFiles");
  recentMenu_->setToolTipsVisible(true);
  connect(&file, &QMenu::aboutToShow, this, [this] { showRecent(); });
  showRecent();
}

void Menus::showRecent() {
  recentMenu_->clear();
  for (const QString& path : recent_.all()) {
    const QFontMetrics metrics(recentMenu_->font());
    const int widest = kRecentLetters * metrics.averageCharWidth();
    QString caption = metrics.elidedText(onOneLine(path), Qt::ElideMiddle, widest);
    QAction* const entry = recentMenu_->addAction(caption.replace("&", "&&"), this, [this, path] {
      if (openRecent_) openRecent_(fileOf(path));
    });
    entry->setToolTip(onOneLine(path));
  }
  recentMenu_->setEnabled(!recentMenu_->isEmpty());
}

void Menus::onOpenRecent(std::function<void(const std::filesystem::path&)> open) {
  openRecent_ = std::move(open);
}

void Menus::buildDevice() {
  QMenu& menu = *addMenu("Dev&ice", "mnuDevice");
  device_ = &menu;
  add(menu, controls_.menuReadCode, "read");
  add(menu, controls_.menuBlankCheck, "blank-check");
  add(menu, controls_.menuVerifyCode, "verify");
  add(menu, controls_.menuProgramCode, "program");
  add(menu, controls_.menuDisplayCode, "display");
  addSeparator(menu, "menuCommandBar0");
  addAll(menu, {&controls_.menuReadData, &controls_.menuVerifyData, &controls_.menuProgramData,
                &controls_.menuDisplayData});
  addSeparator(menu, "menuCommandBar2");
  add(menu, controls_.menuEraseFlash, "erase-chip");
  addSeparator(menu, "mnuCommandBar3");
  add(menu, controls_.menuFlashShowCodeID);
  buildAdvanced(menu);
}

// What only helps to look for a fault in the hardware.
void Menus::buildAdvanced(QMenu& device) {
  QMenu& menu = *device.addMenu("Ad&vanced");
  menu.setObjectName("mnuAdvanced");
  menu.setToolTipsVisible(true);
  add(menu, controls_.ResetFlash)
      ->setToolTip(
          "Strobes /CE and /WE with F0h in the data latch; the latch does not drive the bus");
  add(menu, controls_.LoopFlashTest)
      ->setToolTip("Repeats the step that writes a flash byte, which is empty, until Stop");
}

void Menus::setCommandsOff(bool all, bool ofDevice) {
  window_.menuBar()->setEnabled(!all);
  toolbar_->setEnabled(!all);
  device_->menuAction()->setEnabled(!ofDevice);
}

void Menus::buildBuffer() {
  QMenu& menu = *addMenu("Buff&er", "mnuBuffer");
  buffer_ = &menu;
  add(menu, controls_.menuEraseCode, "erase-buffer");
  add(menu, controls_.menuEraseData);
}

void Menus::buildSetup() {
  QMenu& menu = *addMenu(toQString(controls_.Setup.caption()), toQString(controls_.Setup.name()));
  QMenu& load = *menu.addMenu("&Load Setup");
  QMenu& save = *menu.addMenu("&Save Setup");
  load.setObjectName("LoadSetup");
  save.setObjectName("SaveSetup");
  for (Button& entry : controls_.LoadSetup) addSetup(load, entry);
  for (Button& entry : controls_.SaveSetup) add(save, entry);
  connect(&menu, &QMenu::aboutToShow, this, [this] {
    binder_.press(controls_.Setup);
    binder_.mirror().refresh();
  });
}

// The name that a setup was given is shown as it is: an ampersand in it marks no mnemonic.
void Menus::addSetup(QMenu& menu, Button& entry) {
  QAction* const action = add(menu, entry);
  binder_.mirror().bind(entry, *action, [&entry, action, atStart = toQString(entry.caption())] {
    QString name = toQString(entry.caption());
    if (name.size() > kLongestName) name = name.left(kLongestName) + u'\u2026';
    const bool isUnnamed = name.isEmpty() || name == atStart;
    action->setText(isUnnamed ? atStart : name.replace("&", "&&"));
  });
}

void Menus::buildHardware() {
  hardware_ = addMenu("H&ardware", "mnuHardware");
  add(*hardware_, controls_.menuTestHardware, "test-hardware");
  addSeparator(*hardware_, "mnuCommandBar4");
  addAll(*hardware_,
         {&controls_.ForceKestrel4, &controls_.ForceKestrel5, &controls_.ForceKestrel6});
  hardware_->addSeparator();
  add(*hardware_, controls_.mnuToolsOptions);
}

void Menus::buildHelp() {
  QMenu& menu = *addMenu("&Help", "mnuHelp");
  add(menu, controls_.mnuHelpContents, "help")->setShortcut(QKeySequence("F1"));
  add(menu, controls_.mnuHelpSearchForHelpOn);
  addSeparator(menu, "mnuHelpBar0");
  add(menu, controls_.mnuHelpAbout);
}

void Menus::buildToolbar() {
  struct Entry {
    const char* caption;
    const char* icon;
    const char* toolTip;
  };
  // In the order of the buttons; the third is the separator before those of the data memory.
  constexpr std::array<Entry, 5> kEntries{{{"Open", "open-code", "Open a code file (Ctrl+O)"},
                                           {"Save", "save-code", "Save the code buffer (Ctrl+S)"},
                                           {"", "", ""},
                                           {"Open Data", "open-data", "Open a data file"},
                                           {"Save Data", "save-data", "Save the data buffer"}}};
  QToolBar& bar = *window_.addToolBar("Files");
  toolbar_ = &bar;
  bar.setObjectName("tbToolBar");
  bar.setMovable(false);
  bar.setToolButtonStyle(Qt::ToolButtonTextBesideIcon);
  for (std::size_t i = 0; i < kEntries.size(); ++i) {
    ToolButton& control = controls_.tbToolBar[i];
    auto* const action = new QAction(&window_);
    binder_.action(control, *action, control.key() == "SaveCode" ? maySave_ : nullptr);
    action->setSeparator(control.key().empty());
    action->setIconText(kEntries[i].caption);
    action->setToolTip(kEntries[i].toolTip);
    if (!control.key().empty()) icons_.add(*action, kEntries[i].icon);
    bar.addAction(action);
    if (QWidget* const button = bar.widgetForAction(action)) {
      button->setFocusPolicy(Qt::TabFocus);
      button->setAccessibleName(kEntries[i].toolTip);
      button->setObjectName(QString::fromStdString(control.key()));
    }
  }
}

QAction* insertEntry(QMainWindow& window, QMenu& menu, const char* before, const char* caption,
                     const char* name) {
  auto* const entry = new QAction(caption, &window);
  entry->setObjectName(name);
  menu.insertAction(window.findChild<QAction*>(before), entry);
  return entry;
}

}  // namespace kestrel::window
