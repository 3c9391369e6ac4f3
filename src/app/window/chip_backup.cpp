#include "app/window/chip_backup.h"

#include <QAction>
#include <QDir>
#include <QFileDialog>
#include <QMainWindow>
#include <QMenu>

#include "app/form/backup.h"
#include "app/state/command_kind.h"
#include "app/window/file_of.h"
#include "app/window/menus.h"
#include "app/window/texts.h"
#include "app/window/window_settings.h"
#include "images/ranges.h"

namespace kestrel::window {
namespace {

constexpr const char* kBackupFolder = "BackupFolder";

}  // namespace

ChipBackup::ChipBackup(const Parts& parts, QMenu& device, const char* before)
    : QObject(&parts.window), parts_(parts) {
  entry_ = insertEntry(parts.window, device, before, "", "keepOldContents");
  entry_->setCheckable(true);
  folder_ = toQString(parts.settings.value(kWindowSection, kBackupFolder).value_or(""));
  showFolder();
  connect(entry_, &QAction::triggered, this, [this](bool on) { choose(on); });
}

void ChipBackup::choose(bool on) {
  setFolder(on ? QFileDialog::getExistingDirectory(&parts_.window, "Keep Old Contents In") : "");
}

void ChipBackup::setFolder(const QString& folder) {
  folder_ = folder;
  parts_.settings.setValue(kWindowSection, kBackupFolder, folder_.toStdString());
  showFolder();
}

void ChipBackup::showFolder() {
  entry_->setChecked(!folder_.isEmpty());
  entry_->setText(folder_.isEmpty()
                      ? QString("&Keep Old Contents...")
                      : "&Keep Old Contents in " + QDir(folder_).dirName().replace("&", "&&"));
  entry_->setToolTip(folder_);
}

bool ChipBackup::mayPress(const Control& control) {
  const Controls& c = parts_.form.controls();
  const CommandKind command = commandKind(c, control);
  const bool destroys = command == CommandKind::Program || command == CommandKind::EraseChip;
  if (folder_.isEmpty() || !destroys || !c.CheckCode.isTicked()) return true;
  images::Bytes chip;
  CommandResult result = parts_.form.readAside(chip);
  if (result.ending == Ending::Done) result = keep(folder_, chip);
  if (result.ending == Ending::Done) return true;
  parts_.outcome.showMessage("The old contents could not be kept, the chip is left as it is: " +
                             onOneLine(QString::fromStdString(result.reason)));
  return false;
}

CommandResult ChipBackup::keep(const QString& folder, const std::vector<std::uint8_t>& chip) {
  return form::keepContents(parts_.form, fileOf(folder), chip);
}

}  // namespace kestrel::window
