#include "app/window/qt_dialogs.h"

#include <QDir>
#include <QElapsedTimer>
#include <QFileDialog>
#include <QInputDialog>
#include <QMessageBox>
#include <utility>

#include "app/window/about_box.h"
#include "app/window/file_of.h"
#include "app/window/theme.h"
#include "app/window/window_settings.h"

namespace kestrel::window {
namespace {

QMessageBox::Icon iconOf(MessageIcon icon) {
  switch (icon) {
    case MessageIcon::None:
      return QMessageBox::NoIcon;
    case MessageIcon::Information:
      return QMessageBox::Information;
    case MessageIcon::Question:
      return QMessageBox::Question;
    case MessageIcon::Exclamation:
      return QMessageBox::Warning;
    case MessageIcon::Critical:
      return QMessageBox::Critical;
  }
  return QMessageBox::NoIcon;
}

/// Below the text of the box, warnings in amber.
void showFacts(QMessageBox& dialog, const std::vector<Fact>& facts) {
  if (facts.empty()) return;
  QString lines;
  for (const Fact& fact : facts) {
    const QString text = QString::fromStdString(fact.text).toHtmlEscaped();
    if (!lines.isEmpty()) lines += "<br>";
    lines += fact.isWarning
                 ? QString("<b style=\"color:%1\">%2</b>").arg(amber(dialog.palette()).name(), text)
                 : text;
  }
  dialog.setTextFormat(Qt::RichText);
  dialog.setText(dialog.text().toHtmlEscaped());
  dialog.setInformativeText(lines);
}

/// The filter's text is shown whole and every file matches: "*.*" as a pattern would leave out the
/// names without a dot. The last bracket is the pattern and is not shown.
void setFilter(QFileDialog& dialog, const std::string& filter) {
  const QString shown = QString::fromStdString(filter).section('|', 0, 0);
  dialog.setOption(QFileDialog::HideNameFilterDetails);
  dialog.setNameFilter(shown + " (*)");
}

constexpr const char* kFolder = "Folder";

/// Opens also what Qt cannot name: a file whose name is no UTF-8 is there for all that it says.
class OpenDialog final : public QFileDialog {
 public:
  using QFileDialog::QFileDialog;

 protected:
  void accept() override {
    const QString chosen = selectedFiles().value(0);
    std::error_code unreadable;
    const bool isNamedByMarks = chosen.contains(QChar::ReplacementCharacter);
    if (isNamedByMarks && std::filesystem::is_regular_file(fileOf(chosen), unreadable)) {
      QDialog::accept();  // NOLINT(bugprone-parent-virtual-call): past the file dialog's checks
    } else {
      QFileDialog::accept();
    }
  }
};

}  // namespace

void QtDialogs::beginCommand() {
  fileCancelled_ = false;
  asked_ = 0;
}

int QtDialogs::ask(QDialog& dialog) {
  QElapsedTimer clock;
  clock.start();
  const int answer = dialog.exec();
  asked_ += clock.elapsed();
  return answer;
}

Answer QtDialogs::messageBox(const MessageBox& box) {
  mirror_.refresh();
  if (answersAll_) return Answer::Ok;
  QMessageBox dialog(owner_);
  dialog.setObjectName("messageBox");
  dialog.setTextFormat(Qt::PlainText);
  dialog.setText(QString::fromStdString(box.text));
  dialog.setWindowTitle(QString::fromStdString(box.title));
  showFacts(dialog, box.facts);
  dialog.setIcon(iconOf(box.icon));
  const bool canCancel = box.buttons == MessageButtons::OkCancel;
  dialog.setStandardButtons(canCancel ? QMessageBox::Ok | QMessageBox::Cancel : QMessageBox::Ok);
  const bool cancelFirst = canCancel && box.defaultAnswer == Answer::Cancel;
  dialog.setDefaultButton(cancelFirst ? QMessageBox::Cancel : QMessageBox::Ok);
  return ask(dialog) == QMessageBox::Ok ? Answer::Ok : Answer::Cancel;
}

std::string QtDialogs::inputBox(const std::string& prompt, const std::string& title) {
  mirror_.refresh();
  QInputDialog dialog(owner_);
  dialog.setObjectName("inputBox");
  dialog.setWindowTitle(QString::fromStdString(title));
  dialog.setLabelText(QString::fromStdString(prompt));
  if (ask(dialog) != QDialog::Accepted) return {};
  return dialog.textValue().toStdString();
}

std::string QtDialogs::openFile(const std::string& title, const std::string& filter) {
  if (const auto file = std::exchange(nextOpen_, std::nullopt)) return file->string();
  OpenDialog dialog(owner_, QString::fromStdString(title));
  dialog.setObjectName("openFile");
  dialog.setFileMode(QFileDialog::ExistingFile);
  return choose(dialog, filter);
}

std::string QtDialogs::saveFile(const std::string& title, const std::string& filter) {
  QFileDialog dialog(owner_, QString::fromStdString(title));
  dialog.setObjectName("saveFile");
  dialog.setAcceptMode(QFileDialog::AcceptSave);
  dialog.setFileMode(QFileDialog::AnyFile);
  const QString suffix = QString::fromStdString(filter).section("*.", -1);
  if (suffix != "*") dialog.setDefaultSuffix(suffix);  // for a name without one
  return choose(dialog, filter);
}

std::string QtDialogs::choose(QFileDialog& dialog, const std::string& filter) {
  mirror_.refresh();
  setFilter(dialog, filter);
  const QString folder =
      QString::fromStdString(settings_.value(kWindowSection, kFolder).value_or(""));
  if (!folder.isEmpty() && QDir(folder).exists()) dialog.setDirectory(folder);
  const bool isChosen = ask(dialog) == QDialog::Accepted && !dialog.selectedFiles().isEmpty();
  fileCancelled_ = !isChosen;
  if (!isChosen) return {};
  settings_.setValue(kWindowSection, kFolder, dialog.directory().absolutePath().toStdString());
  return fileOf(dialog.selectedFiles().first()).string();
}

void QtDialogs::about() {
  mirror_.refresh();
  AboutBox box(owner_);
  box.exec();
}

}  // namespace kestrel::window
