#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace kestrel {

/// Upper-case hexadecimal without prefix or leading zeros; a negative number as its 32-bit pattern.
[[nodiscard]] std::string hexText(std::int32_t value);

/// Exactly `digits` upper-case hexadecimal digits: padded with zeros, cut to the rightmost ones.
[[nodiscard]] std::string hexText(std::int32_t value, std::size_t digits);

/// Decimal in numeric print form: a number that is not negative has a leading blank for the sign.
[[nodiscard]] std::string printForm(double value);

/// Without the blanks at both ends.
[[nodiscard]] std::string_view trimmed(std::string_view text);

/// ASCII letters in upper case, every other byte as it is.
[[nodiscard]] std::string upperCase(std::string_view text);

/// The lines of a text whose lines end with CR LF, CR or LF.
[[nodiscard]] std::vector<std::string> linesOf(std::string_view text);

/// The decimal number at the beginning of the text, leading blanks skipped; 0 if there is none,
/// infinite if it is too large for a double.
[[nodiscard]] double leadingNumber(std::string_view text);

/// The hexadecimal number at the beginning of the text as a 16-bit pattern ("FFFF" is -1), leading
/// blanks skipped; 0 if there is none. Throws RuntimeError 6 above FFFF.
[[nodiscard]] std::int16_t leadingHex16(std::string_view text);

/// Rounds to the nearest integer, halves to even. Throws RuntimeError 6 when the type cannot hold
/// it.
[[nodiscard]] std::int16_t roundedInt16(double value);
[[nodiscard]] std::int32_t roundedInt32(double value);

/// The same with the nearest end of the range for what does not fit.
[[nodiscard]] std::int32_t clampedInt32(double value);

}  // namespace kestrel
