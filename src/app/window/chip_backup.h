#pragma once

#include <QObject>
#include <QString>
#include <cstdint>
#include <vector>

#include "app/form/frm_main.h"
#include "app/window/outcome_line.h"
#include "platform/settings_store.h"

class QAction;
class QMainWindow;
class QMenu;

namespace kestrel::window {

/// Keeps what is in a chip in a file of its own before the chip is programmed or erased, when the
/// person asked for it.
class ChipBackup final : public QObject {
 public:
  struct Parts {
    QMainWindow& window;
    form::frmMain& form;
    OutcomeLine& outcome;
    SettingsStore& settings;
  };

  /// The entry stands before the named one.
  ChipBackup(const Parts& parts, QMenu& device, const char* before);

  /// Before a control is pressed: reads the chip and keeps it, if the control would destroy what is
  /// in it. False when it could not be kept, and then the chip is to stay as it is.
  bool mayPress(const Control& control);

  /// The folder; empty: nothing is kept.
  [[nodiscard]] QString folder() const { return folder_; }
  void setFolder(const QString& folder);

  /// Writes a file into the folder. A blank chip has nothing to keep.
  CommandResult keep(const QString& folder, const std::vector<std::uint8_t>& chip);

 private:
  void choose(bool on);
  void showFolder();

  Parts parts_;
  QAction* entry_ = nullptr;
  QString folder_;
};

}  // namespace kestrel::window
