#pragma once

#include <memory>
#include <string_view>
#include <vector>

#include "simulator/chip.h"

namespace kestrel::sim {

/// A new, blank chip of a type such as "27C256" (case ignored); nullptr for an unknown type.
[[nodiscard]] std::unique_ptr<Chip> makeChip(std::string_view typeName);

/// The names that makeChip knows, as printed on the chips, family by family, small parts first.
[[nodiscard]] std::vector<std::string_view> chipTypeNames();

}  // namespace kestrel::sim
