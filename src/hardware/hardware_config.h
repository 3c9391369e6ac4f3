#pragma once

#include <filesystem>
#include <string>
#include <string_view>

#include "app/state/programmer_state.h"

namespace kestrel::hardware {

/// kestrel6.ini: the port and the model that the last hardware test found.
class HardwareConfig {
 public:
  /// The file is in this folder.
  explicit HardwareConfig(const std::filesystem::path& folder) : folder_(folder) {}

  /// Takes port and model over from the file's lines, if there is one; what stands there last
  /// counts. Throws FileError for a file that cannot be read, RuntimeError 6 for a number that does
  /// not fit 16 bits.
  void load(PortState& state) const;

  /// Replaces the file. Throws FileError.
  void save(const PortState& state, std::string_view dateAndTime) const;

 private:
  [[nodiscard]] std::filesystem::path path() const;

  const std::filesystem::path& folder_;
};

/// The text of kestrel6.ini: port in hexadecimal, model in numeric print form, CR LF line ends.
[[nodiscard]] std::string hardwareConfigText(std::string_view dateAndTime, int port, int model);

}  // namespace kestrel::hardware
