#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace kestrel::devices {

/// The part names that a chip's marking may stand for, the most exact first. Makers put letters
/// before the part name and die revision, package and speed grade behind it:
///
///   M27C256B-12F1 -> 27C256B, 27C256        TMS2732A -> 2732A, 2732
///
/// A revision letter may be a part of its own (a 2732A takes 21 V, a 2732 25 V), so it is left out
/// last. Empty for a text that has no part name in it.
[[nodiscard]] std::vector<std::string> partNames(std::string_view marking);

/// Whether a word of the device's name is this part, the maker's letters before it aside ("Eeprom
/// XICOR X28C256" has the part 28C256).
[[nodiscard]] bool hasPart(std::string_view deviceName, std::string_view part);

}  // namespace kestrel::devices
