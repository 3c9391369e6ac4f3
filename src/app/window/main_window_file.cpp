// The main window's code file: its name in the title, what would be lost with it, a file dropped.

#include <QDragEnterEvent>
#include <QFileInfo>
#include <QMessageBox>
#include <QMimeData>
#include <QPushButton>
#include <QTimer>
#include <algorithm>
#include <utility>

#include "app/window/buffer_changes.h"
#include "app/window/file_of.h"
#include "app/window/file_watch.h"
#include "app/window/main_window.h"
#include "app/window/notice_bar.h"
#include "app/window/project_files.h"
#include "app/window/texts.h"
#include "platform/runtime_error.h"

namespace kestrel::window {
namespace {

constexpr const char* kFileNotice = "file";

/// "game.bin", or what stands in its place; empty before the first file.
QString shownOrigin(const CodeOrigin& from) {
  const auto file = [&] { return onOneLine(QFileInfo(toQString(from.name)).fileName()); };
  switch (from.source) {
    case CodeSource::Start:
      return {};
    case CodeSource::File:
      return file();
    case CodeSource::Import:
      return file() + " (imported)";
    case CodeSource::Chip:
      return "read from chip";
    case CodeSource::Erased:
      return "buffer erased";
  }
  return {};
}

/// It holds what may exist nowhere else.
bool isUnsavedRead(const CodeOrigin& from) { return from.source == CodeSource::Chip; }

/// It is not what the open file holds.
bool isOther(const CodeOrigin& from) {
  return isUnsavedRead(from) || from.source == CodeSource::Erased;
}

}  // namespace

// The open file was loaded or saved; a setup may name none and leave the buffer.
void MainWindow::codeFileIsKnown() {
  const bool isInIt =
      origin().source == CodeSource::File && origin().name == parts_.form.state().CodeFileName;
  if (parts_.dialogs.wasFileCancelled() || !isInIt) return;
  followFile();
  recent.add(codeFileName());
}

const CodeOrigin& MainWindow::origin() const { return parts_.form.state().CodeFrom; }

QString MainWindow::codeFileName() const { return toQString(parts_.form.state().CodeFileName); }

void MainWindow::showTitle() {
  const QString name = toQString(controls_.frmMain.caption());
  QString shown = shownOrigin(origin());
  if (isBufferChanged()) shown += shown.isEmpty() ? "buffer changed" : " (changed)";
  const bool isModified = isOther(origin()) || isBufferChanged();
  if (!isModified) setWindowModified(false);
  setWindowTitle((shown.isEmpty() ? QString() : shown + (isModified ? "[*] - " : " - ")) + name);
  setWindowModified(isModified);
  changes_->showSteps();
}

bool MainWindow::isBufferChanged() const { return parts_.form.state().CodeChanged; }

bool MainWindow::saveCodeAs() {
  binder.press(controls_.mnuFileSaveCodeAs);
  return !isUnsavedRead(origin()) && !isBufferChanged();
}

// Behind the first file that was opened, Save writes over it without a word, whatever the buffer
// holds since then.
bool MainWindow::maySaveOverFile() {
  if (!isOther(origin()) || codeFileName().isEmpty()) return true;
  const QString file = onOneLine(QFileInfo(codeFileName()).fileName());
  const Answer answer =
      askAboutBuffer("overwriteQuestion",
                     isUnsavedRead(origin()) ? "The buffer holds what was read from the chip."
                                             : "The buffer has been erased.",
                     "Write it over the file " + file + "?", "Over&write");
  if (answer == Answer::SaveAs) saveCodeAs();
  return answer == Answer::GoOn;
}

bool MainWindow::mayLose(const char* otherwise) {
  if (!isUnsavedRead(origin()) && !isBufferChanged()) return true;
  const Answer answer =
      askAboutBuffer("unsavedQuestion",
                     isUnsavedRead(origin()) ? "What was read from the chip has not been saved."
                                             : "The buffer was changed and has not been saved.",
                     "", otherwise);
  return answer == Answer::SaveAs ? saveCodeAs() : answer == Answer::GoOn;
}

MainWindow::Answer MainWindow::askAboutBuffer(const char* name, const QString& what,
                                              const QString& question, const char* goOn) {
  QMessageBox box(QMessageBox::Question, "Kestrel", what, QMessageBox::Cancel, this);
  box.setObjectName(name);
  box.setTextFormat(Qt::PlainText);
  box.setInformativeText(question);
  QAbstractButton* const other = box.addButton("Save &As...", QMessageBox::AcceptRole);
  QAbstractButton* const on = box.addButton(goOn, QMessageBox::DestructiveRole);
  box.setDefaultButton(QMessageBox::Cancel);
  box.exec();
  if (box.clickedButton() == other) return Answer::SaveAs;
  return box.clickedButton() == on ? Answer::GoOn : Answer::Cancel;
}

// Reading, opening and importing end what can be taken back; an edited buffer would be gone.
bool MainWindow::mayReplace() {
  return mayReplace_ || !isBufferChanged() || mayLose("&Replace Without Saving");
}

bool MainWindow::replacesBuffer(const Control& control) const {
  const CommandKind command = commandKind(controls_, control);
  return command == CommandKind::Read || command == CommandKind::OpenCode ||
         command == CommandKind::LoadSetup;
}

std::optional<ImageSource> MainWindow::imageSource() const {
  const auto& [source, name] = origin();
  if (source == CodeSource::Import)
    return ImageSource{.file = name, .options = files_->importedBy()};
  if (source == CodeSource::File) return ImageSource{.file = name};
  return std::nullopt;
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
