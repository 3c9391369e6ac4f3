#pragma once

#include <filesystem>
#include <optional>
#include <span>
#include <string>

#include "images/record_reader.h"
#include "platform/stop_switch.h"

namespace kestrel::images {

/// Where a file's contents come to lie. Without `at` they keep the addresses that the file gives
/// them; a binary file begins at 0.
struct Placement {
  std::optional<std::uint32_t> at;  ///< of the first byte taken
  std::optional<Range> range;       ///< what is taken, in the file's addresses
};

/// The buffer's size: the longest image that there is.
inline constexpr std::size_t kMostImageBytes = 2'100'001;

/// Reads a file in this format, or in the one that it looks like. Throws FileError that names the
/// file, the line and the reason, OperationStopped at a pipe.
[[nodiscard]] Records readImageFile(const std::filesystem::path& path, const Format* format,
                                    const StopSwitch* stop = nullptr);

/// The image of a chip of so many bytes, holes FFh; with 0 it is as long as its data. Throws
/// ImageError when data would lie outside of it, or nothing is in the range.
[[nodiscard]] Bytes place(const Records& records, const Placement& placement,
                          std::size_t chipBytes);

/// The part of an image that the range names (all without one), in this format; its first byte has
/// the address `at`, without one its own. Throws ImageError.
[[nodiscard]] Bytes exported(std::span<const std::uint8_t> image, const Placement& placement,
                             const Format& format);

/// What was found, in one line: "Intel HEX, 2 blocks (0000-01FF, 1FF0-1FFF), hole 0200-1FEF, ...".
[[nodiscard]] std::string describe(const Records& records);

/// The format that the contents of a file have the look of, without reading its records. Throws
/// FileError.
[[nodiscard]] const Format& readImageLook(const std::filesystem::path& path);

/// The format of records that bytes have the unmistakable look of; nullptr for none.
[[nodiscard]] const Format* recordsByLook(std::span<const std::uint8_t> file);

/// What to say of a file that is taken byte by byte but has the look of records; else empty.
[[nodiscard]] std::string hintForRaw(std::span<const std::uint8_t> file);

}  // namespace kestrel::images
