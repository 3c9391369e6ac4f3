#pragma once

#include <span>
#include <string>
#include <string_view>

#include "cli/arguments.h"

namespace kestrel::cli {

/// An option of the work itself. Each command names those that it uses.
struct WorkOption {
  const char* name;
  const char* value;  ///< what stands for the value in the help; empty: a flag
  const char* help;
  void (*set)(Arguments&, const std::string& text);
};

/// All of them, in the order of the manual.
[[nodiscard]] std::span<const WorkOption> workOptions();

inline constexpr const char* kYes = "yes";  ///< the text of a flag that is given

/// Sets what was given, and what the project of --project says besides. Throws UsageError, and
/// FileError for the project.
void setWork(Arguments& arguments);

/// The slot of a setup, 1 to 4. Throws UsageError that begins with the option.
[[nodiscard]] std::size_t setupSlot(std::string_view option, const std::string& text);

}  // namespace kestrel::cli
