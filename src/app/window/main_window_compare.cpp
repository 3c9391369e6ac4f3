// What the main window does beside the form's commands: a series, comparing, recording waves.

#include <QFileInfo>
#include <QMenu>
#include <QMessageBox>
#include <algorithm>
#include <utility>

#include "app/window/display_panel.h"
#include "app/window/lamp.h"
#include "app/window/main_window.h"
#include "app/window/menus.h"
#include "app/window/outcome_line.h"
#include "app/window/status_strip.h"
#include "app/window/texts.h"
#include "images/changes.h"
#include "images/image_file.h"
#include "platform/atomic_file.h"
#include "platform/runtime_error.h"

namespace kestrel::window {

void MainWindow::offerWaves(launch::WaveFile& waves) {
  QAction* const entry = menus_->hardwareMenu().addAction("Record &Waveform...");
  entry->setObjectName("recordWaves");
  entry->setCheckable(true);
  entry->setChecked(waves.isOpen());
  connect(entry, &QAction::triggered, this, [this, &waves, entry] { recordWaves(waves, *entry); });
  waves.whenOver([this, &waves, entry] {
    outcome_->showMessage("Another device: the waveform ends here. " + toQString(waves.summary()));
    entry->setChecked(false);
  });
}

// The bytes of the buffer that belong into the chip.
images::Bytes MainWindow::imageForChip() const {
  const ProgrammerState& state = parts_.form.state();
  const auto end = state.CodeBuffer.begin() + state.DeviceSizeBytes;
  images::Bytes image(state.CodeBuffer.begin(), end);
  if (controls_.HiLow_button[1].value()) return images::splitLane(image, images::Lane::Odd);
  if (controls_.HiLow_button[2].value()) return images::splitLane(image, images::Lane::Even);
  return image;
}

void MainWindow::compareWithChip() {
  if (strip_->errorLamp().isAlert()) binder.press(controls_.Error_label);
  if (!controls_.Read_button.enabled()) {
    outcome_->showMessage("Compare: choose a device first.");
    return;
  }
  images::Bytes chip;
  const CommandResult result = parts_.form.readAside(chip);
  if (result.ending != Ending::Done) {
    outcome_->showMessage("Compare: " + QString::fromStdString(result.reason));
    return;
  }
  comparedDevice_ = parts_.form.state().DeviceName;
  display_->showComparison(std::move(chip), "chip", [this] { return imageForChip(); });
}

void MainWindow::compareWithFile() {
  const std::string file = parts_.dialogs.openFile("Compare with File", "All Files (*.*)|*.*");
  if (file.empty()) return;
  try {
    images::Bytes other = readWholeFile(file, images::kMostImageBytes);
    const QString name = onOneLine(QFileInfo(toQString(file)).fileName());
    comparedDevice_.clear();
    display_->showComparison(std::move(other), name, [this] { return editor_.memory(); });
  } catch (const FileError& error) {
    QMessageBox::warning(this, "Kestrel", onOneLine(error.what()));
  }
}

void MainWindow::programSeveral() {
  if (strip_->errorLamp().isAlert()) binder.press(controls_.Error_label);
  if (!controls_.Program_button.enabled()) {
    outcome_->showMessage("Program Several: choose a device and open a file first.");
    return;
  }
  SeriesDialog dialog({.form = parts_.form,
                       .dialogs = parts_.dialogs,
                       .input = parts_.input,
                       .stop = parts_.stop,
                       .backup = *backup_,
                       .simulated = simulated_},
                      series_, this);
  dialog.exec();
  series_ = dialog.settings();
}

// The second press ends what the first began.
void MainWindow::recordWaves(launch::WaveFile& waves, QAction& entry) {
  try {
    if (waves.isOpen()) {
      waves.end();
      outcome_->showMessage("Waveform: " + QString::fromStdString(waves.summary()));
    } else {
      const std::string file =
          parts_.dialogs.saveFile("Record Waveform", "Wave files (*.vcd)|*.vcd");
      if (!file.empty()) {
        waves.begin(file);
        outcome_->showMessage(
            "The next commands are recorded; Hardware > Record Waveform ends the record.");
      }
    }
  } catch (const FileError& error) {
    QMessageBox::warning(this, "Kestrel", onOneLine(error.what()));
  }
  entry.setChecked(waves.isOpen());
}

}  // namespace kestrel::window
