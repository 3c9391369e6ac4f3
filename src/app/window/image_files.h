#pragma once

#include <QObject>
#include <QString>
#include <filesystem>
#include <functional>
#include <string>

#include "app/form/frm_main.h"
#include "app/window/outcome_line.h"
#include "app/window/qt_dialogs.h"
#include "app/work/image_options.h"
#include "images/ranges.h"

class QMainWindow;
class QMenu;

namespace kestrel::window {

/// A file and how the image is made of it; without options byte by byte.
struct ImageSource {
  std::string file;
  work::ImageOptions options = {};
};

/// File > Import Image and Export Image: image files of every format, into the buffer and out.
class ImageFiles final : public QObject {
 public:
  /// What it works with; all of it outlives this.
  struct Parts {
    QMainWindow& window;
    form::frmMain& form;
    QtDialogs& dialogs;
    OutcomeLine& outcome;
    std::function<bool()> mayReplace;  ///< asked before the image in the buffer is another one
  };

  /// The entries stand before the one that is named.
  ImageFiles(const Parts& parts, QMenu& file, const char* before);

  /// A file was imported into the buffer.
  void onImported(std::function<void()> imported) { imported_ = std::move(imported); }

  /// How the last one was.
  [[nodiscard]] const work::ImageOptions& importedBy() const { return options_; }

  /// A file was written.
  void onExported(std::function<void()> exported) { exported_ = std::move(exported); }

  /// A file was opened byte by byte: says so if it has the look of records, with the way to import
  /// it.
  void lookAtOpened();

  /// Asks how the file is to be imported.
  void importFile(const std::filesystem::path& file);

  /// An image that is read and fits, not yet in the buffer.
  struct Image {
    ImageSource source;
    images::Bytes bytes;
    std::string found;
  };
  /// Reads it as the source says, for a chip of so many bytes. Throws FileError.
  [[nodiscard]] static Image read(const ImageSource& source, std::size_t chipBytes);
  void load(Image image);

 private:
  void askForImport();
  void exportImage();

  Parts parts_;
  work::ImageOptions options_;
  std::function<void()> imported_;
  std::function<void()> exported_;
};

}  // namespace kestrel::window
