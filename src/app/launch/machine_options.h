#pragma once

#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "app/launch/option_values.h"

namespace kestrel::launch {

/// An option that the window and the command line take alike.
struct MachineOption {
  enum class Group { Machine, SimulatedBoard };
  using Set = void (*)(LaunchOptions&, const std::string& text);
  using IsGiven = bool (*)(const LaunchOptions&);

  const char* name;   ///< with its two hyphens
  const char* value;  ///< what stands for the value in the help; empty: a flag
  const char* help;   ///< a line that still fits 80 columns behind a column of 26
  Group group = Group::Machine;
  bool isRepeatable = false;
  Set set;                    ///< throws UsageError; the text of a flag is empty
  IsGiven isGiven = nullptr;  ///< of what is for the simulated board alone; else nullptr
};

/// All of them, in the order of the manual.
[[nodiscard]] std::span<const MachineOption> machineOptions();

/// Throws UsageError for a second value of an option that takes one.
void refuseSecond(const char* option, const std::vector<std::string>& values);

/// Sets an option to the values that were given for it, in their order. Throws UsageError, also for
/// a second value of an option that takes one. A flag has one empty value.
void setOption(const MachineOption& option, const std::vector<std::string>& values,
               LaunchOptions& options);

/// Throws UsageError for options that exclude or need one another.
void checkTogether(const LaunchOptions& options);

}  // namespace kestrel::launch
