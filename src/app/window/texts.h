#pragma once

#include <QString>
#include <cstdint>
#include <filesystem>
#include <string_view>

#include "app/state/text_format.h"
#include "platform/file_names.h"

namespace kestrel::window {

[[nodiscard]] inline QString toQString(std::string_view utf8) {
  return QString::fromUtf8(utf8.data(), static_cast<qsizetype>(utf8.size()));
}

/// A text on one line: what would break it is shown as an escape.
[[nodiscard]] inline QString onOneLine(const QString& text) {
  return toQString(shownName(text.toStdString()));
}

/// The name of a file without its folder, on one line.
[[nodiscard]] inline QString fileNameOf(const std::filesystem::path& file) {
  return toQString(shownName(file.filename().string()));
}

/// An address of the largest chip (20 bits), such as "07FF0h".
[[nodiscard]] inline QString addressText(std::int32_t address) {
  return toQString(hexText(address, 5) + "h");
}

}  // namespace kestrel::window
