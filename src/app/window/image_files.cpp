#include "app/window/image_files.h"

#include <QFileInfo>
#include <QMainWindow>
#include <QMenu>
#include <QMessageBox>
#include <algorithm>
#include <optional>
#include <span>
#include <utility>

#include "app/window/file_of.h"
#include "app/window/image_dialog.h"
#include "app/window/menus.h"
#include "app/window/texts.h"
#include "images/image_file.h"
#include "platform/runtime_error.h"

namespace kestrel::window {
namespace {

using images::FormatId;

constexpr const char* kAllFiles = "All Files (*.*)|*.*";

std::vector<FormatId> idsOf(bool written) {
  std::vector<FormatId> ids;
  for (const images::Format& format : images::formats()) {
    if (!written || format.isWritten) ids.push_back(format.id);
  }
  return ids;
}

/// The records of a file; read again only when the format is another one.
class FileReader {
 public:
  explicit FileReader(std::filesystem::path file) : file_(std::move(file)) {}

  const images::Records& records(const images::Format& format) {
    if (!records_ || records_->format != format.id) {
      records_.reset();
      records_ = images::readImageFile(file_, &format);
    }
    return *records_;
  }

 private:
  std::filesystem::path file_;
  std::optional<images::Records> records_;
};

}  // namespace

ImageFiles::ImageFiles(const Parts& parts, QMenu& file, const char* before)
    : QObject(&parts.window), parts_(parts) {
  const auto add = [&](const char* caption, const char* name, auto handler) {
    connect(insertEntry(parts.window, file, before, caption, name), &QAction::triggered, this,
            handler);
  };
  add("&Import Image...", "importImage", [this] { askForImport(); });
  add("Ex&port Image...", "exportImage", [this] { exportImage(); });
}

void ImageFiles::askForImport() {
  const std::string file = parts_.dialogs.openFile("Import Image", kAllFiles);
  if (!file.empty()) importFile(file);
}

void ImageFiles::importFile(const std::filesystem::path& file) {
  if (!parts_.mayReplace()) return;
  const std::string name = file.string();
  const auto size = static_cast<std::size_t>(parts_.form.state().DeviceSizeBytes);
  try {
    std::error_code unreadable;
    const bool isFolder = std::filesystem::is_directory(file, unreadable);
    if (!isFolder && !std::filesystem::is_regular_file(file, unreadable) && !unreadable) {
      throw FileError("import", name, "it is a pipe or a device; Open takes those");
    }
    FileReader reader(file);
    const FormatId look = images::readImageLook(file).id;
    ImageDialog dialog(
        {.title = "Import Image",
         .verb = "&Import",
         .file = toQString(name),
         .range = "all that the file holds",
         .at = "where the file says"},
        idsOf(false), look,
        [&](const images::Format& format, const images::Placement& placement) {
          const images::Records& records = reader.records(format);
          (void)images::place(records, placement, size);
          return "Found: " + images::describe(records);
        },
        &parts_.window);
    if (dialog.exec() != QDialog::Accepted) return;
    const images::Records& records = reader.records(dialog.format());
    const work::ImageOptions options{.format = dialog.format().name,
                                     .placement = dialog.placement()};
    load({.source = {.file = name, .options = options},
          .bytes = images::place(records, dialog.placement(), size),
          .found = images::describe(records)});
  } catch (const FileError& error) {
    QMessageBox::warning(&parts_.window, "Kestrel", onOneLine(error.what()));
  }
}

ImageFiles::Image ImageFiles::read(const ImageSource& source, std::size_t chipBytes) {
  const work::ImageOptions& options = source.options;
  const images::Records records = images::readImageFile(source.file, options.formatToRead());
  try {
    return {.source = source,
            .bytes = images::place(records, options.placement, chipBytes),
            .found = images::describe(records)};
  } catch (const images::ImageError& error) {
    throw FileError("import", source.file, error.what());
  }
}

void ImageFiles::load(Image image) {
  const std::string& name = image.source.file;
  const CommandResult result = parts_.form.loadImage(name, std::move(image.bytes), image.found);
  if (result.ending != Ending::Done) return;
  options_ = image.source.options;
  if (imported_) imported_();
  parts_.outcome.showMessage(
      onOneLine("Imported " + fileNameOf(name) + ": " + toQString(image.found)));
}

// The part of the buffer that Save writes.
void ImageFiles::exportImage() {
  const ProgrammerState& state = parts_.form.state();
  if (state.CodeLength <= 0) {
    parts_.outcome.showMessage("Export: the buffer holds nothing yet; open a file or read a chip.");
    return;
  }
  const std::string name = parts_.dialogs.saveFile("Export Image", kAllFiles);
  if (name.empty()) return;
  const auto image = std::span(state.CodeBuffer).first(static_cast<std::size_t>(state.CodeLength));
  const images::Range all{.first = 0, .last = static_cast<std::uint32_t>(image.size() - 1)};
  FormatId suggested = images::formatByName(name).id;
  if (!images::formatOf(suggested).isWritten) suggested = FormatId::Binary;
  ImageDialog dialog(
      {.title = "Export Image",
       .verb = "&Export",
       .file = toQString(name),
       .range = toQString("the whole image, " + images::rangeText(all)),
       .at = "as in the chip"},
      idsOf(true), suggested,
      [&](const images::Format& format, const images::Placement& placement) {
        const images::Bytes file = images::exported(image, placement, format);
        const std::size_t bytes = placement.range ? placement.range->size() : image.size();
        return std::string(format.title) + ", " + std::to_string(bytes) + " bytes of the buffer, " +
               std::to_string(file.size()) + " in the file";
      },
      &parts_.window);
  if (dialog.exec() != QDialog::Accepted) return;
  const images::Bytes file = images::exported(image, dialog.placement(), dialog.format());
  const CommandResult result = parts_.form.exportImage(name, file);
  if (result.ending != Ending::Done) return;
  if (exported_) exported_();
  parts_.outcome.showMessage("Exported to " + fileNameOf(name) + " as " + dialog.format().title);
}

void ImageFiles::lookAtOpened() {
  const ProgrammerState& state = parts_.form.state();
  const images::Format* const look = images::recordsByLook(
      std::span(state.CodeBuffer).first(static_cast<std::size_t>(state.CodeLength)));
  if (look == nullptr) return;
  const std::string file = state.CodeFileName;
  parts_.outcome.offer(
      fileNameOf(file) + " has the look of " + look->title + " and was taken byte by byte.",
      "import it", [this, file] { importFile(file); });
}

}  // namespace kestrel::window
