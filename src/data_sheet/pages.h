#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <span>

#include "data_sheet/chip_driver.h"

namespace kestrel::data_sheet {

using Page = std::span<const std::uint8_t>;

/// The image page by page, the last one perhaps shorter, up to the first that is not done.
[[nodiscard]] Outcome forEachPage(std::span<const std::uint8_t> image, std::size_t pageBytes,
                                  Progress& progress,
                                  const std::function<Outcome(std::uint32_t, Page)>& write);

/// The first byte that is not as wanted, or done. `first` is the address of the first one; as many
/// are seen as are wanted.
[[nodiscard]] Outcome compareBytes(std::uint32_t first, Page wanted, Page seen);

}  // namespace kestrel::data_sheet
