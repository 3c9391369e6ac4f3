#pragma once

#include <optional>
#include <string>

namespace kestrel {

/// The per-user store of texts under the application's title.
class SettingsStore {
 public:
  virtual ~SettingsStore() = default;

  /// The stored text, or nothing when the key was never saved.
  [[nodiscard]] virtual std::optional<std::string> value(const std::string& section,
                                                         const std::string& key) const = 0;

  /// Stores a text. A store that cannot be written loses it silently.
  virtual void setValue(const std::string& section, const std::string& key,
                        const std::string& text) = 0;
};

}  // namespace kestrel
