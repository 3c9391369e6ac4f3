#pragma once

#include <filesystem>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "app/work/work.h"

namespace kestrel::work {

/// Keys and values for a project; one without a value goes out of it.
using ProjectItems = std::vector<std::pair<std::string, std::optional<std::string>>>;

inline constexpr const char* kAlgorithmsKey = "algorithms";  ///< of --algorithms

[[nodiscard]] constexpr const char* wordOf(Algorithms algorithms) {
  return algorithms == Algorithms::Classic ? "classic" : "datasheet";
}

/// The key by which a project names an option: "device" for -d, "file" for -i, "save" for -o, else
/// its name without hyphens. Empty for one that no project has.
[[nodiscard]] std::string projectKey(std::string_view option);

/// Adds what a project says to the work, but for the options that `isGiven` names; returns the keys
/// that are unknown. The files that it names are in its folder. Throws UsageError for a value that
/// is none, FileError.
std::vector<std::string> readProject(const std::filesystem::path& file, Work& work,
                                     const std::function<bool(std::string_view option)>& isGiven);

/// Writes the items into a project; its other lines stay, and its files are named from its folder.
/// Throws FileError, also for a file that is there and no project.
void writeProject(const std::filesystem::path& file, const ProjectItems& items);

/// A sentence about options as one about the keys of a project.
[[nodiscard]] std::string inKeys(std::string text);

}  // namespace kestrel::work
