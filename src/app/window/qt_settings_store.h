#pragma once

#include <QSettings>

#include "platform/file_attributes.h"
#include "platform/settings_store.h"

namespace kestrel::window {

/// The user's own settings file, kestrel/kestrel.ini in the configuration folder.
class QtSettingsStore final : public SettingsStore {
 public:
  QtSettingsStore() : store_(QSettings::IniFormat, QSettings::UserScope, "kestrel", "kestrel") {}
  /// A file of its own, for tests.
  explicit QtSettingsStore(const QString& file) : store_(file, QSettings::IniFormat) {}

  /// What the superuser's start in a user's home made on the way stays changeable for that user.
  ~QtSettingsStore() override {
    store_.sync();
    const std::filesystem::path file = store_.fileName().toStdString();
    giveToOwnerOfFolder(file.parent_path().parent_path());
    giveToOwnerOfFolder(file.parent_path());
    giveToOwnerOfFolder(file);
  }

  [[nodiscard]] std::optional<std::string> value(const std::string& section,
                                                 const std::string& key) const override {
    const QVariant stored = store_.value(path(section, key));
    if (!stored.isValid()) return std::nullopt;
    return stored.toString().toStdString();
  }

  void setValue(const std::string& section, const std::string& key,
                const std::string& text) override {
    store_.setValue(path(section, key), QString::fromStdString(text));
  }

 private:
  static QString path(const std::string& section, const std::string& key) {
    return QString::fromStdString(section + "/" + key);
  }

  QSettings store_;
};

}  // namespace kestrel::window
