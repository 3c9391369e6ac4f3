#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "devices/families.h"

namespace kestrel::devices {

// What is to be said about a device where it cannot do what others can: one home for the window's
// tips and the command line's errors.

/// What the chips of the family are, in a word or two.
[[nodiscard]] std::string_view kindOf(const Family& family);

/// What the classic procedures make of a voltage class above what the family takes; empty when they
/// apply what is chosen.
[[nodiscard]] std::string_view voltageLimit(const Family& family, std::int16_t vppClass);

/// Why the command is not offered for the family; empty when it is.
[[nodiscard]] std::string_view whyNoBlankCheck(const Family& family);
[[nodiscard]] std::string_view whyNoErase(const Family& family);
[[nodiscard]] std::string_view whyNoDisplay(const Family& family);

/// What the classic procedures do not do right with the device, and those of the data sheets do;
/// empty when there is nothing.
[[nodiscard]] std::string_view classicLimit(std::string_view device);

/// Why the device is not offered with the algorithms of the data sheets; empty when it is.
[[nodiscard]] std::string_view whyNoDataSheet(std::string_view device);

/// The voltage that the data sheet programs with, and what a marking may say instead; empty for a
/// device without one.
[[nodiscard]] std::string usualVoltage(std::string_view device);

}  // namespace kestrel::devices
