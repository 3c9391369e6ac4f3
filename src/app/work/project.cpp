#include "app/work/project.h"

#include <algorithm>

#include "app/launch/option_values.h"
#include "app/work/work_options.h"
#include "platform/atomic_file.h"
#include "platform/file_names.h"
#include "setups/project_file.h"

namespace kestrel::work {
namespace {

namespace fs = std::filesystem;

bool isFile(std::string_view key) {
  return key == "file" || key == "save" || key == "backup" || key == "report";
}

/// A plan names files too: "list=FILE" and "counter=FILE".
std::string withFiles(std::string plan, const auto& change) {
  for (const char* const item : {"list=", "counter="}) {
    const std::size_t at = plan.find(item);
    if (at == std::string::npos) continue;
    const std::size_t begin = at + std::string_view(item).size();
    const std::size_t length = std::min(plan.find(',', begin), plan.size()) - begin;
    plan.replace(begin, length, change(plan.substr(begin, length)));
  }
  return plan;
}

std::string withFolder(std::string_view key, const std::string& value, const auto& change) {
  if (isFile(key)) return value == "-" ? value : change(value);
  return key == "serial" ? withFiles(value, change) : value;
}

/// A value as it stands in a project, with the files that it names in the project's folder.
std::string inFolder(const fs::path& folder, std::string_view key, const std::string& value) {
  return withFolder(key, value, [&](const std::string& name) {
    return fs::path(name).is_absolute() ? name : (folder / name).lexically_normal().string();
  });
}

std::string fromFolder(const fs::path& folder, std::string_view key, const std::string& value) {
  return withFolder(key, value, [&](const std::string& name) {
    return fullName(name).lexically_proximate(folder).string();
  });
}

/// The option that a key of a project stands for; nullptr for a key that is unknown.
const WorkOption* optionOf(const std::string& key) {
  const auto found = std::ranges::find_if(
      workOptions(), [&](const WorkOption& option) { return projectKey(option.name) == key; });
  return found == workOptions().end() ? nullptr : &*found;
}

void setOption(Work& work, const WorkOption& option, const std::string& value) {
  const bool isFlag = *option.value == '\0';
  if (isFlag && value != kYes && value != kNo) {
    throw launch::UsageError(std::string(option.name) + " is \"" + value + "\"; use yes or no");
  }
  option.set(work, value);
}

}  // namespace

std::string projectKey(std::string_view option) {
  if (option == "-d") return "device";
  if (option == "-i") return "file";
  if (option == "-o") return "save";
  if (option == "--project" || option == "--json" || !option.starts_with("--")) return {};
  return std::string(option.substr(2));
}

std::vector<std::string> readProject(const fs::path& file, Work& work,
                                     const std::function<bool(std::string_view)>& isGiven) {
  std::vector<std::string> unknown;
  const setups::ProjectFile project = setups::ProjectFile::read(file);
  try {
    for (const auto& [key, value] : project.items()) {
      const WorkOption* const option = optionOf(key);
      if (key == kAlgorithmsKey) {
        work.algorithms = launch::parseAlgorithms(value);
      } else if (option == nullptr) {
        unknown.push_back(key);
      } else if (!isGiven(option->name)) {
        setOption(work, *option, inFolder(folderOf(file), key, value));
      }
    }
  } catch (const launch::UsageError& error) {
    throw launch::UsageError(file.string() + ": " + inKeys(error.what()));
  }
  return unknown;
}

void writeProject(const fs::path& file, const ProjectItems& items) {
  std::error_code ignored;
  setups::ProjectFile project =
      fs::exists(file, ignored) ? setups::ProjectFile::read(file) : setups::ProjectFile();
  const fs::path folder = folderOf(fullName(file));
  for (const auto& [key, value] : items) {
    if (value) {
      project.set(key, fromFolder(folder, key, *value));
    } else {
      project.remove(key);
    }
  }
  writeFileAtomically(file, project.text());
}

std::string inKeys(std::string text) {
  const auto replace = [&](const std::string& option, const std::string& key) {
    for (std::size_t at = text.find(option); at != text.npos; at = text.find(option, at + 1)) {
      const std::size_t behind = at + option.size();
      const bool isWhole = (at == 0 || text[at - 1] == ' ') &&
                           (behind == text.size() || text.find_first_of(" :;", behind) == behind);
      if (isWhole) text.replace(at, option.size(), key);
    }
  };
  replace("--algorithms", kAlgorithmsKey);
  for (const WorkOption& option : workOptions()) {
    const std::string key = projectKey(option.name);
    if (!key.empty()) replace(option.name, key);
  }
  return text;
}

}  // namespace kestrel::work
