#pragma once

#include <optional>
#include <span>

#include "images/ranges.h"
#include "images/record_formats.h"

namespace kestrel::images {

/// The contents of a file of this format that holds the bytes from the address on. Throws
/// ImageError for addresses that the format cannot name, FileError when there is no memory for it.
[[nodiscard]] Bytes writeRecords(std::span<const std::uint8_t> bytes, std::uint32_t address,
                                 const Format& format,
                                 std::optional<std::uint32_t> startAddress = {});

}  // namespace kestrel::images
