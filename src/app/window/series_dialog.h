#pragma once

#include <QDialog>
#include <QEventLoop>
#include <functional>
#include <memory>
#include <optional>

#include "app/form/series_report.h"
#include "app/window/chip_backup.h"
#include "app/window/held_input.h"
#include "app/window/qt_dialogs.h"
#include "platform/stop_switch.h"

class QCheckBox;
class QLabel;
class QLineEdit;
class QPlainTextEdit;
class QPushButton;
class QVBoxLayout;

namespace kestrel::window {

class SerialFields;
class VerdictLabel;

/// What a series is done with, apart from the chips: kept from one to the next.
struct SeriesSettings {
  std::string serial;  ///< the plan as the command line takes it; empty: none
  std::string report;  ///< a file for the table; empty: none
};

/// The chips of a simulated series, which nobody can change by hand.
struct SimulatedSeries {
  std::function<void(std::size_t number)> changeChip;
  std::function<void()> keepChip;
};

/// Device > Program Several: one chip after another with the image in the buffer. Asks for serial
/// numbers, backup and report, then for each next chip; Esc ends.
class SeriesDialog final : public QDialog, private form::SeriesOperator {
 public:
  struct Parts {
    form::frmMain& form;
    QtDialogs& dialogs;
    HeldInput& input;
    StopSwitch& stop;
    ChipBackup& backup;
    const SimulatedSeries& simulated;
  };

  SeriesDialog(const Parts& parts, const SeriesSettings& settings, QWidget* parent);

  [[nodiscard]] SeriesSettings settings() const;

  void reject() override;

 private:
  void buildFields(const SeriesSettings& settings, QVBoxLayout& column);
  void buildProgress(QVBoxLayout& column);
  QLineEdit* addFile(QVBoxLayout& column, const char* caption, const char* name, bool isFolder);
  void start();
  void runSeries();
  void showRunning(bool isRunning);
  void saveText();

  bool isNextChipIn(std::size_t number) override;
  void chipDone(const form::SeriesChip& chip) override;
  [[nodiscard]] bool keepsContents() const override;
  CommandResult keep(const std::vector<std::uint8_t>& contents) override;

  Parts parts_;
  QWidget* fields_ = nullptr;
  SerialFields* serial_ = nullptr;
  QLineEdit* backup_ = nullptr;
  QLineEdit* report_ = nullptr;
  VerdictLabel* prompt_ = nullptr;
  QLabel* count_ = nullptr;
  QPlainTextEdit* chips_ = nullptr;
  QPushButton* next_ = nullptr;
  QPushButton* end_ = nullptr;
  QPushButton* save_ = nullptr;
  QEventLoop wait_;  // for the next chip: ends with 1 when it is in, with 0 at the end
  bool isRunning_ = false;
  std::size_t done_ = 0;  // chips of this series
  std::optional<form::SeriesReport> table_;
  form::SeriesCount good_;
};

}  // namespace kestrel::window
