#include "app/launch/program_folders.h"

#include <array>
#include <cstdlib>
#include <filesystem>
#include <string>

namespace kestrel::launch {
namespace {

namespace fs = std::filesystem;

fs::path environment(const char* name) {
  const char* const value = std::getenv(name);
  return value == nullptr ? fs::path{} : fs::path{value};
}

/// A relative XDG_CONFIG_HOME is invalid and ignored (freedesktop.org, base directories).
fs::path userConfiguration() {
  const fs::path xdg = environment("XDG_CONFIG_HOME");
  return xdg.is_absolute() ? xdg : environment("HOME") / ".config";
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

}  // namespace

Folders programFolders(const LaunchOptions& options) {
  Folders folders{.configuration = configurationFolder(options), .data = dataFolder()};
  std::error_code ignored;
  fs::create_directories(folders.configuration, ignored);
  return folders;
}

}  // namespace kestrel::launch
