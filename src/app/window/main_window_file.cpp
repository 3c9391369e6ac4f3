// The main window's code file: its name in the title, what would be lost with it, a file dropped.

#include <QDragEnterEvent>
#include <QFileInfo>
#include <QMessageBox>
#include <QMimeData>
#include <QPushButton>
#include <QTimer>
#include <algorithm>
#include <span>
#include <utility>

#include "app/window/buffer_changes.h"
#include "app/window/file_of.h"
#include "app/window/file_watch.h"
#include "app/window/image_files.h"
#include "app/window/main_window.h"
#include "app/window/notice_bar.h"
#include "app/window/project_files.h"
#include "app/window/texts.h"
#include "images/checksums.h"
#include "platform/runtime_error.h"

namespace kestrel::window {
namespace {

constexpr const char* kFileNotice = "file";

}  // namespace

void MainWindow::bufferIsInFile() {
  if (parts_.dialogs.wasFileCancelled() || codeFileName().isEmpty()) return;
  origin_.isInFile();
  followFile();
  recent.add(codeFileName());
}

// A setup may name a file or none: by the sum of its bytes the buffer tells which it was.
bool MainWindow::holdsLoadedFile() const {
  const ProgrammerState& state = parts_.form.state();
  const int length = std::clamp(state.CodeLength, 0, static_cast<int>(state.CodeBuffer.size()));
  const auto image = std::span(state.CodeBuffer).first(static_cast<std::size_t>(length));
  return std::cmp_equal(images::sum16(image), state.FileChecksum);
}

QString MainWindow::codeFileName() const { return toQString(parts_.form.state().CodeFileName); }

void MainWindow::showTitle() {
  const QString name = toQString(controls_.frmMain.caption());
  QString shown = origin_.title(parts_.form.state().CodeFileName);
  if (isBufferChanged()) shown += shown.isEmpty() ? "buffer changed" : " (changed)";
  const bool isModified = origin_.isChanged() || isBufferChanged();
  if (!isModified) setWindowModified(false);
  setWindowTitle((shown.isEmpty() ? QString() : shown + (isModified ? "[*] - " : " - ")) + name);
  setWindowModified(isModified);
  changes_->showSteps();
}

bool MainWindow::isBufferChanged() const { return parts_.form.state().CodeChanged; }

bool MainWindow::saveCodeAs() {
  binder.press(controls_.mnuFileSaveCodeAs);
  return !origin_.isUnsavedRead() && !isBufferChanged();
}

// Behind the first file that was opened, Save writes over it without a word, whatever the buffer
// holds since then.
bool MainWindow::maySaveOverFile() {
  if (!origin_.isChanged() || codeFileName().isEmpty()) return true;
  const QString file = onOneLine(QFileInfo(codeFileName()).fileName());
  QMessageBox box(QMessageBox::Question, "Kestrel",
                  origin_.isUnsavedRead() ? "The buffer holds what was read from the chip."
                                          : "The buffer has been erased.",
                  QMessageBox::Cancel, this);
  box.setObjectName("overwriteQuestion");
  box.setTextFormat(Qt::PlainText);
  box.setInformativeText("Write it over the file " + file + "?");
  QAbstractButton* const overwrite = box.addButton("Over&write", QMessageBox::DestructiveRole);
  QAbstractButton* const other = box.addButton("Save &As...", QMessageBox::ActionRole);
  box.setDefaultButton(QMessageBox::Cancel);
  box.exec();
  if (box.clickedButton() == other) saveCodeAs();
  return box.clickedButton() == overwrite;
}

// `otherwise`: the button that goes on without saving.
bool MainWindow::mayLose(const char* otherwise) {
  if (!origin_.isUnsavedRead() && !isBufferChanged()) return true;
  QMessageBox box(QMessageBox::Question, "Kestrel",
                  origin_.isUnsavedRead() ? "What was read from the chip has not been saved."
                                          : "The buffer was changed and has not been saved.",
                  QMessageBox::Cancel, this);
  box.setObjectName("unsavedQuestion");
  QAbstractButton* const save = box.addButton("Save &As...", QMessageBox::AcceptRole);
  QAbstractButton* const lose = box.addButton(otherwise, QMessageBox::DestructiveRole);
  box.setDefaultButton(QMessageBox::Cancel);
  box.exec();
  if (box.clickedButton() == save) return saveCodeAs();
  return box.clickedButton() == lose;
}

// Reading, opening and importing end what can be taken back; an edited buffer would be gone.
bool MainWindow::mayReplace() {
  return mayReplace_ || !isBufferChanged() || mayLose("&Replace Without Saving");
}

bool MainWindow::replacesBuffer(const Control& control) const {
  const auto isIt = [&](const Button& button) { return &button == &control; };
  return isIt(controls_.Read_button) || isIt(controls_.menuReadCode) ||
         isIt(controls_.mnuFileOpenCode) || isIt(controls_.toolbarButton(1)) ||
         std::ranges::any_of(controls_.LoadSetup, isIt);
}

std::optional<ImageSource> MainWindow::imageSource() const {
  return origin_.source(parts_.form.state().CodeFileName);
}

// What is in the file now is what the buffer was loaded from, or saved as.
void MainWindow::followFile() {
  const std::optional<ImageSource> source = imageSource();
  std::error_code ignored;  // a working folder that is gone: nothing changes there
  watch_->follow(source ? std::filesystem::absolute(source->file, ignored)
                        : std::filesystem::path());
  watch_->takeAsKnown();
  noticeBar_->withdraw(kFileNotice);
}

void MainWindow::offerFileAgain() {
  const std::optional<ImageSource> source = imageSource();
  if (!source) return;
  const QString name = onOneLine(QFileInfo(toQString(source->file)).fileName());
  noticeBar_->withdraw(kFileNotice);
  noticeBar_->post({.about = kFileNotice,
                    .text = name + " changed on the disk. The buffer holds what was in it before.",
                    .actions = {{.caption = "Read Again", .name = "readAgain", .act = [this] {
                                   readFileAgain();
                                 }}}});
}

void MainWindow::readFileAgain() {
  const std::optional<ImageSource> source = imageSource();
  if (!source) return;
  if (!source->options.isImport()) return openCodeFile(source->file);
  if (!mayReplace()) return;
  try {
    const auto size = static_cast<std::size_t>(parts_.form.state().DeviceSizeBytes);
    files_->load(ImageFiles::read(*source, size));
  } catch (const FileError& error) {
    QMessageBox::warning(this, "Kestrel", onOneLine(error.what()));
  }
}

void MainWindow::openCodeFile(const std::filesystem::path& file) {
  parts_.dialogs.answerNextOpen(file);
  binder.press(controls_.mnuFileOpenCode);
  parts_.dialogs.forgetNextOpen();
}

void MainWindow::openProject(const std::filesystem::path& file) { projects_->open(file); }

void MainWindow::dragEnterEvent(QDragEnterEvent* event) {
  const QList<QUrl> files = event->mimeData()->urls();
  const bool usable = files.size() == 1 && files.first().isLocalFile();
  if (usable && !parts_.form.runner().isRunning()) event->acceptProposedAction();
}

// The file is opened after the drop: the other program waits for its end, and a box may come up.
void MainWindow::dropEvent(QDropEvent* event) {
  const QUrl url = event->mimeData()->urls().value(0);
  if (!url.isLocalFile() || parts_.form.runner().isRunning()) return;
  event->acceptProposedAction();
  QTimer::singleShot(0, this, [this, file = fileOf(url)] { openCodeFile(file); });
}

}  // namespace kestrel::window
