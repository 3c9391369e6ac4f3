#pragma once

#include <sys/stat.h>

#include <filesystem>

#include "platform/descriptor.h"

namespace kestrel {

inline constexpr mode_t kNewFileMode = 0666;  ///< less what the user's mask takes away
/// Without set-user-id, set-group-id and the sticky bit.
inline constexpr mode_t kPermissions = 0777;

/// Gives a new file what belongs to the old one that it will replace: owner, group, extended
/// attributes (access lists among them) and permissions, but never the right to run as its owner or
/// group. False when something of it cannot be given.
[[nodiscard]] bool takeOverAttributes(const std::filesystem::path& oldName,
                                      const struct stat& oldStatus, const Descriptor& newFile);

/// What the superuser makes in a user's folder belongs to that user, who could not change it else.
/// For anyone but the superuser, and in the superuser's own folders, this does nothing.
void giveToOwnerOf(const std::filesystem::path& folder, const Descriptor& file);

/// The same for a file or folder by its name. A link is left alone, and so is a file with a second
/// name: it need not be the one that was made.
void giveToOwnerOfFolder(const std::filesystem::path& name);

}  // namespace kestrel
