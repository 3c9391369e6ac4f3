#pragma once

#include <QObject>
#include <QString>
#include <filesystem>
#include <functional>
#include <string>

#include "app/form/frm_main.h"
#include "app/window/outcome_line.h"
#include "app/window/qt_dialogs.h"
#include "images/ranges.h"

class QMainWindow;
class QMenu;

namespace kestrel::window {

/// File > Import Image and Export Image: image files of every format, into the buffer and out.
class ImageFiles final : public QObject {
 public:
  /// What it works with; all of it outlives this.
  struct Parts {
    QMainWindow& window;
    form::frmMain& form;
    QtDialogs& dialogs;
    OutcomeLine& outcome;
  };

  /// The entries stand before the one that is named.
  ImageFiles(const Parts& parts, QMenu& file, const char* before);

  /// The buffer holds what was imported from this file.
  void onImported(std::function<void(const QString& file)> imported) {
    imported_ = std::move(imported);
  }

  /// A file was opened byte by byte: says so if it has the look of records, with the way to import
  /// it.
  void lookAtOpened();

  void importFile(const std::filesystem::path& file);

 private:
  void askForImport();
  void exportImage();
  void load(const std::string& name, images::Bytes image, const std::string& found);

  Parts parts_;
  std::function<void(const QString&)> imported_;
};

}  // namespace kestrel::window
