#include "setups/project_file.h"

#include <algorithm>
#include <optional>

#include "app/state/text_format.h"
#include "platform/atomic_file.h"
#include "platform/runtime_error.h"

namespace kestrel::setups {
namespace {

constexpr const char* kVersionKey = "kestrel-project";
constexpr const char* kVersion = "1";

bool isComment(std::string_view line) { return line.empty() || line.starts_with('#'); }

/// "KEY = VALUE"; nothing for another line.
std::optional<ProjectFile::Item> itemOf(std::string_view line) {
  line = trimmed(line);
  const std::size_t equals = line.find('=');
  if (isComment(line) || equals == std::string_view::npos) return std::nullopt;
  const std::string_view key = trimmed(line.substr(0, equals));
  if (key.empty()) return std::nullopt;
  return ProjectFile::Item(key, trimmed(line.substr(equals + 1)));
}

[[noreturn]] void refuse(const std::string& name, std::size_t line, const std::string& reason) {
  throw FileError("open the project", name, "line " + std::to_string(line + 1) + ": " + reason);
}

std::string withoutReturn(std::string line) {
  if (line.ends_with('\r')) line.pop_back();
  return line;
}

}  // namespace

ProjectFile::ProjectFile() { set(kVersionKey, kVersion); }

ProjectFile ProjectFile::parse(std::string_view text, const std::string& name) {
  ProjectFile project;
  project.lines_.clear();
  while (!text.empty()) {
    const std::string_view line = text.substr(0, text.find('\n'));
    text.remove_prefix(std::min(text.size(), line.size() + 1));
    project.lines_.push_back(withoutReturn(std::string(line)));
  }
  std::vector<std::string> keys;
  for (std::size_t i = 0; i < project.lines_.size(); ++i) {
    const std::string_view line = trimmed(project.lines_[i]);
    if (isComment(line)) continue;
    const std::optional<Item> item = itemOf(line);
    if (!item) refuse(name, i, "it is neither a comment nor KEY = VALUE");
    if (keys.empty() && item->first != kVersionKey) {
      refuse(name, i, "a project begins with \"kestrel-project = 1\"");
    }
    if (keys.empty() && item->second != kVersion) {
      refuse(name, i,
             "it is of version " + item->second +
                 ", which a newer Kestrel wrote; use that one, this one knows version 1");
    }
    if (std::ranges::count(keys, item->first) != 0) {
      refuse(name, i, item->first + " is given twice; keep one of the two lines");
    }
    keys.push_back(item->first);
  }
  if (keys.empty()) refuse(name, 0, "a project begins with \"kestrel-project = 1\"");
  return project;
}

ProjectFile ProjectFile::read(const std::filesystem::path& file) {
  return parse(readWholeTextFile(file), file.string());
}

std::vector<ProjectFile::Item> ProjectFile::items() const {
  std::vector<Item> found;
  for (const std::string& line : lines_) {
    const std::optional<Item> item = itemOf(line);
    if (item && item->first != kVersionKey) found.push_back(*item);
  }
  return found;
}

void ProjectFile::set(const std::string& key, const std::string& value) {
  if (value != trimmed(value) || value.find_first_of("\r\n") != value.npos) {
    throw FileError("keep", value,
                    "a name with blanks at its ends or of several lines does not fit a project");
  }
  const std::string line = key + " = " + value;
  for (std::string& old : lines_) {
    const std::optional<Item> item = itemOf(old);
    if (!item || item->first != key) continue;
    if (item->second != value) old = line;
    return;
  }
  lines_.push_back(line);
}

void ProjectFile::remove(const std::string& key) {
  std::erase_if(lines_, [&](const std::string& line) {
    const std::optional<Item> item = itemOf(line);
    return item && item->first == key;
  });
}

std::string ProjectFile::text() const {
  std::string text;
  for (const std::string& line : lines_) text += line + '\n';
  return text;
}

}  // namespace kestrel::setups
