#pragma once

#include <array>
#include <span>
#include <string>
#include <string_view>

#include "app/work/work.h"

namespace kestrel::work {

/// An option of the work itself. Each command names those that it uses. `set` throws UsageError.
struct WorkOption {
  const char* name;
  const char* value;  ///< what stands for the value in the help; empty: a flag
  const char* help;
  void (*set)(Work&, const std::string& text);  ///< nullptr: --project, which says the others
};

/// All of them, in the order of the manual.
[[nodiscard]] std::span<const WorkOption> workOptions();

// The text of a flag; one that is given is yes.
inline constexpr const char* kYes = "yes";
inline constexpr const char* kNo = "no";

// What the options call the buttons of Voltage_button, HiLow_button and ProtectionSelection, in
// their order. The first voltage, none, cannot be asked for.
inline constexpr std::array<std::string_view, 4> kVoltageWords{"", "12.5", "21", "25"};
inline constexpr std::array<std::string_view, 3> kLaneWords{"all", "odd", "even"};
inline constexpr std::array<std::string_view, 3> kProtectionWords{"keep", "on", "off"};

/// The slot of a setup, 1 to 4. Throws UsageError that begins with the option.
[[nodiscard]] std::size_t setupSlot(std::string_view option, const std::string& text);

}  // namespace kestrel::work
