#include "cli/project_options.h"

#include <filesystem>
#include <iostream>

#include "cli/exit_status.h"
#include "platform/atomic_file.h"
#include "platform/file_names.h"
#include "setups/project_file.h"

namespace kestrel::cli {
namespace {

namespace fs = std::filesystem;

bool isFile(std::string_view option) {
  return option == "-i" || option == "-o" || option == "--backup" || option == "--report";
}

/// A plan names files too: "list=FILE" and "counter=FILE".
std::string withFiles(std::string plan, const auto& change) {
  for (const char* const key : {"list=", "counter="}) {
    const std::size_t at = plan.find(key);
    if (at == std::string::npos) continue;
    const std::size_t begin = at + std::string_view(key).size();
    const std::size_t length = std::min(plan.find(',', begin), plan.size()) - begin;
    plan.replace(begin, length, change(plan.substr(begin, length)));
  }
  return plan;
}

std::string withFolder(std::string_view option, const std::string& value, const auto& change) {
  if (isFile(option)) return change(value);
  return option == "--serial" ? withFiles(value, change) : value;
}

}  // namespace

std::string projectKey(std::string_view option) {
  if (option == "-d") return "device";
  if (option == "-i") return "file";
  if (option == "-o") return "save";
  if (option == "--project" || option == "--json" || !option.starts_with("--")) return {};
  return std::string(option.substr(2));
}

std::string inProject(const std::string& projectFile, std::string_view option,
                      const std::string& value) {
  const fs::path folder = folderOf(projectFile);
  return withFolder(option, value, [&](const std::string& name) {
    return name == "-" || fs::path(name).is_absolute()
               ? name
               : (folder / name).lexically_normal().string();
  });
}

int saveProject(const Arguments& arguments) {
  if (arguments.words.size() != 1) throw launch::UsageError("save-project wants one FILE");
  const fs::path file = arguments.words.front();
  std::error_code ignored;
  setups::ProjectFile project =
      fs::exists(file, ignored) ? setups::ProjectFile::read(file) : setups::ProjectFile();
  const fs::path folder = folderOf(fullName(file));
  for (const auto& [option, text] : arguments.given) {
    const std::string key = projectKey(option);
    if (key.empty()) continue;
    project.set(key, withFolder(option, text, [&](const std::string& name) {
                  return name == "-" ? name : fullName(name).lexically_proximate(folder).string();
                }));
  }
  if (const auto algorithms = arguments.launch.algorithms) {
    project.set(kAlgorithmsKey, *algorithms == Algorithms::Classic ? "classic" : "datasheet");
  }
  writeFileAtomically(file, project.text());
  if (!arguments.quiet) std::cout << "Project saved as " << shownName(file.string()) << '\n';
  return kDone;
}

}  // namespace kestrel::cli
