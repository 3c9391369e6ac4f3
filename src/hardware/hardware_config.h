#pragma once

#include <string>
#include <string_view>

namespace kestrel::hardware {

inline constexpr std::string_view kConfigFileName = "kestrel6.ini";
inline constexpr std::string_view kPortKey = "IO_PORT = ";
inline constexpr std::string_view kModelKey = "MODEL = ";

/// The text of kestrel6.ini: port in hexadecimal, model in numeric print form, CR LF line ends.
[[nodiscard]] std::string hardwareConfigText(std::string_view dateAndTime, int port, int model);

}  // namespace kestrel::hardware
