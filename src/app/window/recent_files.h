#pragma once

#include <QString>
#include <QStringList>

#include "platform/settings_store.h"

namespace kestrel::window {

/// The code files opened last, the newest first, kept in the per-user store.
class RecentFiles {
 public:
  explicit RecentFiles(SettingsStore& settings);

  void add(const QString& path);
  [[nodiscard]] const QStringList& all() const { return paths_; }

 private:
  SettingsStore& settings_;
  QStringList paths_;
};

}  // namespace kestrel::window
