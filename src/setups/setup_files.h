#pragma once

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <string>

namespace kestrel::setups {

inline constexpr std::size_t kSlots = 4;

/// "KSSetup1.INI" to "KSSetup4.INI".
[[nodiscard]] std::string fileNameOf(std::size_t slot);

/// The file of this name in the folder. The look-up ignores case, so that a slot never has two
/// files.
[[nodiscard]] std::filesystem::path pathOf(const std::filesystem::path& folder,
                                           const std::string& fileName);

/// What a list of the setups shows of one.
struct SetupSummary {
  bool isThere = false;
  std::string name;
  std::int32_t devicePosition = -1;  ///< in the device list, -1: none
  std::string codeFile;              ///< empty: none
};

/// Throws FileError for a file that is there and cannot be read.
[[nodiscard]] SetupSummary summaryOf(const std::filesystem::path& folder, std::size_t slot);

}  // namespace kestrel::setups
