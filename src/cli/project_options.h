#pragma once

#include <string>
#include <string_view>

#include "cli/arguments.h"

namespace kestrel::cli {

inline constexpr const char* kAlgorithmsKey = "algorithms";  ///< of --algorithms

/// The key by which a project names an option: "device" for -d, "file" for -i, "save" for -o, else
/// its name without hyphens. Empty for one that no project has.
[[nodiscard]] std::string projectKey(std::string_view option);

/// A value as it stands in a project, with the files that it names in the project's folder.
[[nodiscard]] std::string inProject(const std::string& projectFile, std::string_view option,
                                    const std::string& value);

/// `save-project FILE`: writes the options given into the project; its other lines stay. Throws
/// FileError.
[[nodiscard]] int saveProject(const Arguments& arguments);

}  // namespace kestrel::cli
