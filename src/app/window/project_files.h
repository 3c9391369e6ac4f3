#pragma once

#include <QObject>
#include <filesystem>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "app/form/frm_main.h"
#include "app/window/chip_backup.h"
#include "app/window/image_files.h"
#include "app/window/notice_bar.h"
#include "app/window/outcome_line.h"
#include "app/window/qt_dialogs.h"
#include "app/window/series_dialog.h"
#include "app/work/device_catalogue.h"
#include "app/work/work.h"

class QMainWindow;
class QMenu;

namespace kestrel::window {

/// File > Open Project and Save Project: what is set in the window, as a text file that
/// `kestrel-cli --project` takes too.
class ProjectFiles final : public QObject {
 public:
  /// What it works with; all of it outlives this.
  struct Parts {
    QMainWindow& window;
    form::frmMain& form;
    QtDialogs& dialogs;
    OutcomeLine& outcome;
    NoticeBar& notices;
    ImageFiles& images;
    ChipBackup& backup;
    SeriesSettings& series;
    std::function<bool()> mayReplace;  ///< asked before the image in the buffer is another one
    std::function<void(const std::filesystem::path&)> openCode;  ///< byte by byte, unasked
    std::function<std::optional<ImageSource>()> source;          ///< of the image in the buffer
  };

  /// The entries stand before the one that is named.
  ProjectFiles(const Parts& parts, QMenu& file, const char* before);

  void open(const std::filesystem::path& file);
  void save(const std::filesystem::path& file);

 private:
  struct Checked;

  void use(const std::function<void()>& event);
  [[nodiscard]] Checked read(const std::filesystem::path& file) const;
  void check(Checked& project) const;
  void apply(const Checked& project);
  void loadFile(Checked& project);
  void chooseAlgorithms(const Checked& project);
  void showProblem(const std::exception& error);

  Parts parts_;
};

}  // namespace kestrel::window
