#include "app/window/project_files.h"

#include <QAction>
#include <QMainWindow>
#include <QMenu>
#include <QMessageBox>
#include <utility>

#include "app/launch/option_values.h"
#include "app/window/menus.h"
#include "app/window/texts.h"
#include "app/work/project.h"
#include "app/work/work_at_form.h"
#include "platform/atomic_file.h"
#include "platform/polled_io.h"
#include "platform/runtime_error.h"

namespace kestrel::window {
namespace {

using work::DeviceCatalogue;

constexpr const char* kProjects = "Projects (*.*)|*.*";
constexpr const char* kNotice = "project";

/// What a device would be when it is chosen, as far as options depend on it.
SelectionState selectionOf(const DeviceCatalogue::Device& device) {
  constexpr int kBytesPerKB = 1024;
  SelectionState selection;
  selection.DeviceName = device.name;
  selection.FamilyCode = device.family;
  selection.VppClass = device.vppClass;
  selection.DeviceSizeBytes = device.sizeKB * kBytesPerKB;
  return selection;
}

std::string wholePlan(const images::SerialPlan& plan) {
  return images::textOf(plan) + ",counter=" + plan.counter.string();
}

std::optional<std::string> unlessEmpty(std::string text) {
  return text.empty() ? std::nullopt : std::optional(std::move(text));
}

/// The file of the image and how it is taken; what is in no file has none.
work::ProjectItems itemsOf(const std::optional<ImageSource>& source) {
  const work::ImageOptions options = source ? source->options : work::ImageOptions();
  const auto& [at, range] = options.placement;
  return {{"file", source ? std::optional(source->file) : std::nullopt},
          {"format", options.format},
          {"at", at ? std::optional(images::addressText(*at)) : std::nullopt},
          {"range", range ? std::optional(images::rangeText(*range)) : std::nullopt}};
}

}  // namespace

/// A project that can be applied.
struct ProjectFiles::Checked {
  work::Work work;
  std::vector<std::string> unknown;
  DeviceCatalogue catalogue;
  const DeviceCatalogue::Device* device = nullptr;
  Algorithms algorithms = Algorithms::Classic;
  std::optional<ImageFiles::Image> image;  ///< of a file that is imported
};

ProjectFiles::ProjectFiles(const Parts& parts, QMenu& file, const char* before)
    : QObject(&parts.window), parts_(parts) {
  const auto add = [&](const char* caption, const char* name, auto handler) {
    connect(insertEntry(parts.window, file, before, caption, name), &QAction::triggered, this,
            handler);
  };
  add("Open Pro&ject...", "openProject", [this] {
    const std::string name = parts_.dialogs.openFile("Open Project", kProjects);
    if (!name.empty()) open(name);
  });
  add("Sav&e Project...", "saveProject", [this] {
    const std::string name = parts_.dialogs.saveFile("Save Project", kProjects);
    if (!name.empty()) save(name);
  });
  file.insertSeparator(parts.window.findChild<QAction*>(before));
}

void ProjectFiles::showProblem(const std::exception& error) {
  const std::string text = work::inKeys(error.what());
  if (!text.empty()) QMessageBox::warning(&parts_.window, "Kestrel", onOneLine(toQString(text)));
}

// Whatever can be wrong with it is found before the first control is pressed.
void ProjectFiles::open(const std::filesystem::path& file) {
  try {
    Checked project = read(file);
    const bool isReplaced = project.work.codeFile || project.work.setup;
    if (isReplaced && !parts_.mayReplace()) return;
    apply(project);
    parts_.outcome.showMessage("Project opened: " + fileNameOf(file));
    loadFile(project);
    QStringList unknown;
    for (const std::string& key : project.unknown) unknown << onOneLine(toQString(key));
    parts_.notices.withdraw(kNotice);
    if (unknown.isEmpty()) return;
    parts_.notices.post({.about = kNotice,
                         .text = fileNameOf(file) +
                                 " has keys that this version does not know; they "
                                 "were passed over and stay in the file: " +
                                 unknown.join(", ")});
  } catch (const FileError& error) {
    showProblem(error);
  } catch (const launch::UsageError& error) {
    showProblem(error);
  }
}

ProjectFiles::Checked ProjectFiles::read(const std::filesystem::path& file) const {
  Checked project;
  project.unknown = work::readProject(file, project.work, [](std::string_view) { return false; });
  try {
    check(project);
  } catch (const launch::UsageError& error) {
    throw launch::UsageError(file.string() + ": " + error.what());
  }
  return project;
}

void ProjectFiles::check(Checked& project) const {
  const ProgrammerState& state = parts_.form.state();
  const work::Work& work = project.work;
  project.algorithms = work.algorithms.value_or(state.algorithms);
  const bool hasDevice = work.device || !state.DeviceName.empty();
  if (hasDevice) {
    project.device =
        &project.catalogue.find(work.device.value_or(state.DeviceName), project.algorithms);
  }
  const SelectionState device =
      project.device != nullptr ? selectionOf(*project.device) : SelectionState();
  if (!work.setup) work::checkOffered(work, device, project.algorithms);
  if (!work.codeFile) return;
  if (*work.codeFile == kStandardInput) {
    throw launch::UsageError("file: standard input is for kestrel-cli; name a file");
  }
  if (work.image.isImport()) {
    const auto size = static_cast<std::size_t>(device.DeviceSizeBytes);
    project.image = ImageFiles::read({.file = *work.codeFile, .options = work.image}, size);
  } else {
    (void)readWholeFile(*work.codeFile, images::kMostImageBytes);
  }
}

// An empty text: the form has shown it already.
void ProjectFiles::use(const std::function<void()>& event) {
  const CommandResult result = parts_.form.runner().run(event);
  if (result.ending == Ending::Done) return;
  throw launch::UsageError(result.ending == Ending::RunTimeError ? "" : result.reason);
}

void ProjectFiles::apply(const Checked& project) {
  const work::Work& work = project.work;
  chooseAlgorithms(project);
  work::applyWork(parts_.form, work, work.device ? project.device : nullptr,
                  [this](const auto& event) { use(event); });
  parts_.series = {.serial = work.serial ? wholePlan(*work.serial) : "",
                   .report = work.report.value_or("")};
  if (work.backup) parts_.backup.setFolder(toQString(*work.backup));
}

void ProjectFiles::loadFile(Checked& project) {
  const work::Work& work = project.work;
  if (project.image) {
    parts_.images.load(std::move(*project.image));
  } else if (work.codeFile) {
    work::openPadded(
        work.padFF, [&] { parts_.openCode(*work.codeFile); },
        [this] { use([this] { parts_.form.controls().Erase_button.press(); }); });
  }
}

// A device that the other algorithms do not have is put down before they are chosen.
void ProjectFiles::chooseAlgorithms(const Checked& project) {
  Controls& c = parts_.form.controls();
  if (project.algorithms == parts_.form.state().algorithms) return;
  const bool isClassic = project.algorithms == Algorithms::Classic;
  if (project.work.device) use([&] { c.Device.setPosition(-1); });
  use([&] { c.AlgorithmSelection[isClassic ? 0 : 1].press(); });
}

void ProjectFiles::save(const std::filesystem::path& file) {
  try {
    const std::optional<ImageSource> source = parts_.source();
    work::ProjectItems items = work::itemsAtForm(parts_.form);
    for (auto& item : itemsOf(source)) items.push_back(std::move(item));
    const std::string serial = parts_.series.serial;
    if (!serial.empty()) (void)images::parseSerialPlan(serial);
    items.emplace_back("serial", unlessEmpty(serial));
    items.emplace_back("report", unlessEmpty(parts_.series.report));
    items.emplace_back("backup", unlessEmpty(parts_.backup.folder().toStdString()));
    work::writeProject(file, items);
    const bool isInFile = source && !parts_.form.state().CodeChanged;
    parts_.outcome.showMessage(
        "Project saved as " + fileNameOf(file) +
        (isInFile ? "." : "; what is in the buffer is in no file yet: save it too."));
  } catch (const FileError& error) {
    showProblem(error);
  } catch (const images::ImageError& error) {
    showProblem(error);
  }
}

}  // namespace kestrel::window
