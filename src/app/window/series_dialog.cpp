#include "app/window/series_dialog.h"

#include <QCheckBox>
#include <QFileDialog>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QVBoxLayout>

#include "app/state/text_format.h"
#include "app/window/file_of.h"
#include "app/window/serial_fields.h"
#include "app/window/texts.h"
#include "app/window/verdict_label.h"
#include "platform/atomic_file.h"
#include "platform/file_names.h"

namespace kestrel::window {
namespace {

constexpr int kIn = 1;   // the next chip is in the socket
constexpr int kEnd = 0;  // there is none
constexpr int kListWidth = 560;
constexpr int kListLines = 8;
constexpr int kPromptLines = 1;

}  // namespace

SeriesDialog::SeriesDialog(const Parts& parts, const SeriesSettings& settings, QWidget* parent)
    : QDialog(parent), parts_(parts) {
  setObjectName("seriesDialog");
  setWindowTitle("Program Several");
  auto* const column = new QVBoxLayout(this);
  buildFields(settings, *column);
  buildProgress(*column);
  parts.input.letThrough(*end_);
  showRunning(false);
  prompt_->showVerdict(
      "Each chip is blank checked, programmed and verified. Put the first one in, then Start.",
      false);
}

void SeriesDialog::buildFields(const SeriesSettings& settings, QVBoxLayout& column) {
  fields_ = new QWidget(this);
  auto* const fields = new QVBoxLayout(fields_);
  fields->setContentsMargins(0, 0, 0, 0);
  serial_ = new SerialFields(fields_);
  serial_->setText(settings.serial);
  fields->addWidget(serial_);
  backup_ = addFile(*fields, "Keep &old contents in the folder:", "seriesBackup", true);
  backup_->setText(parts_.backup.folder());
  report_ = addFile(*fields, "&Report as a table (CSV):", "seriesReport", false);
  report_->setText(toQString(settings.report));
  column.addWidget(fields_);
}

QLineEdit* SeriesDialog::addFile(QVBoxLayout& column, const char* caption, const char* name,
                                 bool isFolder) {
  auto* const row = new QHBoxLayout;
  auto* const label = new QLabel(caption, fields_);
  auto* const line = new QLineEdit(fields_);
  line->setObjectName(name);
  line->setPlaceholderText("none");
  label->setBuddy(line);
  auto* const choose = new QPushButton("Choose...", fields_);
  choose->setAutoDefault(false);
  connect(choose, &QPushButton::clicked, this, [this, line, isFolder] {
    // A report that is there is gone on with: nothing to be asked about.
    const QString chosen =
        isFolder ? QFileDialog::getExistingDirectory(this, "Keep Old Contents In")
                 : QFileDialog::getSaveFileName(this, "Report", {}, "Tables (*.csv)", nullptr,
                                                QFileDialog::DontConfirmOverwrite);
    if (!chosen.isEmpty()) line->setText(chosen);
  });
  row->addWidget(label);
  row->addWidget(line, 1);
  row->addWidget(choose);
  column.addLayout(row);
  return line;
}

void SeriesDialog::buildProgress(QVBoxLayout& column) {
  prompt_ = new VerdictLabel("seriesPrompt", kListWidth, kPromptLines, this);
  QFont bold = prompt_->font();
  bold.setBold(true);
  prompt_->setFont(bold);
  chips_ = new QPlainTextEdit(this);
  chips_->setObjectName("seriesChips");
  chips_->setAccessibleName("Chips done");
  chips_->setReadOnly(true);
  chips_->setMinimumSize(kListWidth, kListLines * fontMetrics().lineSpacing());
  count_ = new QLabel(this);
  count_->setObjectName("seriesCount");
  const auto button = [this](const char* caption, const char* name) {
    auto* const made = new QPushButton(caption, this);
    made->setObjectName(name);
    made->setAutoDefault(false);
    return made;
  };
  save_ = button("Save &Text...", "seriesSave");
  next_ = button("", "seriesNext");
  end_ = button("", "seriesEnd");
  next_->setDefault(true);
  auto* const row = new QHBoxLayout;
  row->addWidget(count_, 1);
  for (QPushButton* const each : {save_, next_, end_}) row->addWidget(each);
  column.addWidget(prompt_);
  column.addWidget(chips_, 1);
  column.addLayout(row);
  connect(save_, &QPushButton::clicked, this, [this] { saveText(); });
  connect(next_, &QPushButton::clicked, this, [this] { isRunning_ ? wait_.exit(kIn) : start(); });
  connect(end_, &QPushButton::clicked, this, [this] { reject(); });
}

// While a command runs it is stopped, and with it the series; between two chips the series ends;
// without a series the box closes.
void SeriesDialog::reject() {
  if (parts_.form.runner().isRunning()) {
    parts_.stop.stopCommand();
  } else if (wait_.isRunning()) {
    wait_.exit(kEnd);
  } else if (!isRunning_) {
    QDialog::reject();
  }
}

SeriesSettings SeriesDialog::settings() const {
  return {.serial = serial_->text(), .report = report_->text().toStdString()};
}

void SeriesDialog::showRunning(bool isRunning) {
  isRunning_ = isRunning;
  fields_->setEnabled(!isRunning);
  next_->setText(isRunning ? "&Next Chip" : "&Start");
  end_->setText(isRunning ? "&End" : "&Close");
  next_->setEnabled(!isRunning);
  save_->setEnabled(!isRunning && !chips_->toPlainText().isEmpty());
}

void SeriesDialog::start() {
  Controls& c = parts_.form.controls();
  const bool isVerified = c.VerifyAfterProgramming.isTicked();
  const bool isBlankChecked = c.CheckBlankPriorProgramming.isTicked();
  images::Bytes image = parts_.form.state().CodeBuffer;
  done_ = 0;
  good_ = {};
  showRunning(true);
  try {
    runSeries();
  } catch (const images::ImageError& error) {
    prompt_->showVerdict(error.what(), true);
  } catch (const FileError& error) {
    prompt_->showVerdict(error.what(), true);
  }
  parts_.dialogs.answerAll(false);
  parts_.form.state().CodeBuffer.swap(image);  // without the last serial number
  (void)parts_.form.runner().run([&] {
    if (c.VerifyAfterProgramming.isTicked() != isVerified) c.VerifyAfterProgramming.press();
    if (c.CheckBlankPriorProgramming.isTicked() != isBlankChecked) {
      c.CheckBlankPriorProgramming.press();
    }
  });
  showRunning(false);
}

void SeriesDialog::runSeries() {
  std::optional<images::SerialCounter> counter;
  if (const auto plan = serial_->plan()) {
    images::checkInside(*plan, static_cast<std::size_t>(parts_.form.state().DeviceSizeBytes));
    counter.emplace(*plan);
  }
  table_.reset();
  if (!report_->text().isEmpty()) table_.emplace(fileOf(report_->text()));
  if (counter && !counter->doubtful().empty()) {
    chips_->appendPlainText(
        "The serial number " + toQString(shownName(counter->doubtful())) +
        " was with a chip when an earlier series ended; it is not given again.");
  }
  form::ChipSeries series(parts_.form, *this, counter ? &*counter : nullptr);
  const CommandResult result = series.run(table_ ? table_->nextNumber() : 1);
  const std::string all = "The series has ended: " + good_.text() + ".";
  const bool isWhole = result.ending == Ending::Done;
  prompt_->showVerdict(isWhole ? all : all + " " + result.reason, !isWhole);
}

bool SeriesDialog::isNextChipIn(std::size_t number) {
  parts_.dialogs.answerAll(false);
  if (parts_.stop.isEnding()) return false;
  if (done_ != 0) {
    prompt_->showVerdict(
        "Chip " + std::to_string(number) + ": put it in, then Next Chip. Esc ends the series.",
        false);
    next_->setEnabled(true);
    next_->setFocus();
    if (wait_.exec() != kIn) return false;
    if (parts_.simulated.changeChip) parts_.simulated.changeChip(number);
  }
  next_->setEnabled(false);
  prompt_->showVerdict("Chip " + std::to_string(number) + " is being programmed. Esc stops it.",
                       false);
  parts_.dialogs.answerAll(true);
  return true;
}

void SeriesDialog::chipDone(const form::SeriesChip& chip) {
  ++done_;
  good_.add(chip);
  if (parts_.simulated.keepChip) parts_.simulated.keepChip();
  chips_->appendPlainText(toQString(form::textOf(chip)) +
                          QString(", %1 s").arg(chip.seconds, 0, 'f', 1));
  count_->setText(toQString(good_.text()));
  if (table_) {
    const std::string device(trimmed(parts_.form.state().DeviceName));
    table_->add(chip, device, parts_.form.dateAndTime());
  }
}

bool SeriesDialog::keepsContents() const { return !backup_->text().isEmpty(); }

CommandResult SeriesDialog::keep(const std::vector<std::uint8_t>& contents) {
  return parts_.backup.keep(backup_->text(), contents);
}

void SeriesDialog::saveText() {
  const std::string name = parts_.dialogs.saveFile("Save Report", "Text (*.txt)|*.txt");
  if (name.empty()) return;
  try {
    const QString text = chips_->toPlainText() + "\n" + count_->text() + "\n";
    writeFileAtomically(name, text.toStdString());
  } catch (const FileError& error) {
    prompt_->showVerdict(error.what(), true);
  }
}

}  // namespace kestrel::window
