#include "app/window/recent_files.h"

#include <QFileInfo>

namespace kestrel::window {
namespace {

constexpr int kMost = 8;
const std::string kRecentSection = "RecentFiles";

std::string key(qsizetype index) { return "File" + std::to_string(index + 1); }

}  // namespace

RecentFiles::RecentFiles(SettingsStore& settings) : settings_(settings) {
  for (qsizetype index = 0; index < kMost; ++index) {
    const auto path = settings.value(kRecentSection, key(index));
    if (path && !path->empty()) paths_.append(QString::fromStdString(*path));
  }
}

void RecentFiles::add(const QString& path) {
  const QString absolute = QFileInfo(path).absoluteFilePath();
  if (!paths_.isEmpty() && paths_.first() == absolute) return;
  paths_.removeAll(absolute);
  paths_.prepend(absolute);
  if (paths_.size() > kMost) paths_.removeLast();
  for (qsizetype index = 0; index < paths_.size(); ++index) {
    settings_.setValue(kRecentSection, key(index), paths_[index].toStdString());
  }
}

}  // namespace kestrel::window
