#include "app/launch/program_folders.h"

#include <pwd.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <filesystem>
#include <string>
#include <vector>

#include "platform/file_attributes.h"
#include "platform/file_names.h"

namespace kestrel::launch {
namespace {

namespace fs = std::filesystem;

fs::path environment(const char* name) {
  const char* const value = std::getenv(name);
  return value == nullptr ? fs::path{} : fs::path{value};
}

/// The home folder of the password entry, for a start without HOME (a service, "env -i").
fs::path enteredHome() {
  std::vector<char> text(16'384);
  passwd entry{};
  passwd* found = nullptr;
  while (::getpwuid_r(::getuid(), &entry, text.data(), text.size(), &found) == ERANGE) {
    text.resize(2 * text.size());
  }
  return found == nullptr ? fs::path{} : fs::path{found->pw_dir};
}

fs::path home() {
  fs::path folder = environment("HOME");
  if (folder.empty()) folder = enteredHome();
  if (folder.empty()) {
    throw UsageError(
        "there is no home folder: HOME is not set and the user has no password entry; "
        "--home FOLDER names one for the configuration");
  }
  return folder;
}

/// A relative XDG_CONFIG_HOME is invalid and ignored (freedesktop.org, base directories).
fs::path userConfiguration() {
  const fs::path xdg = environment("XDG_CONFIG_HOME");
  return xdg.is_absolute() ? xdg : home() / ".config";
}

std::string simulatedName(const LaunchOptions& options) {
  const int model = static_cast<int>(options.model.value_or(sim::Model::kestrel5));
  switch (options.lpt.value_or(0x378)) {
    case 0x278:
      return std::to_string(model) + "-278";
    case 0x3BC:
      return std::to_string(model) + "-3BC";
    default:
      return std::to_string(model) + "-378";
  }
}

fs::path configurationFolder(const LaunchOptions& options) {
  if (!options.home.empty()) return options.home;
  const fs::path own = userConfiguration() / "kestrel";
  return options.simulate ? own / "simulator" / simulatedName(options) : own;
}

bool holdsData(const fs::path& folder) {
  std::error_code ignored;
  return fs::exists(folder / "sounds" / "init.wav", ignored) ||
         fs::exists(folder / "sample", ignored);
}

fs::path dataFolder() {
  std::error_code ignored;
  const fs::path programs = fs::read_symlink("/proc/self/exe", ignored).parent_path();
  const fs::path installed = programs.parent_path() / "share" / "kestrel";
  if (holdsData(installed)) return installed;
  // Built, not installed: the programs are some folders below the source tree's top.
  for (fs::path above = programs; above.has_relative_path(); above = above.parent_path()) {
    if (holdsData(above / "data")) return above / "data";
  }
  return installed;
}

/// Each folder that is made belongs to the owner of the one above it.
void createFolders(const fs::path& folder) {
  std::error_code ignored;
  if (folder.empty() || fs::exists(folder, ignored)) return;
  createFolders(folder.parent_path());
  if (fs::create_directory(folder, ignored)) giveToOwnerOfFolder(folder);
}

}  // namespace

Folders programFolders(const LaunchOptions& options) {
  Folders folders{.configuration = configurationFolder(options), .data = dataFolder()};
  createFolders(folders.configuration);
  return folders;
}

}  // namespace kestrel::launch
