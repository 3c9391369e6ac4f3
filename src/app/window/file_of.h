#pragma once

#include <QString>
#include <QUrl>
#include <filesystem>

namespace kestrel::window {

/// The file that a name stands for as Qt shows it. Bytes of a file's name that are no UTF-8 are
/// shown as replacement marks, which lead back to no file; so each such part of the path is looked
/// up in its folder. A name that fits none of the entries there, or several, is taken as it is.
[[nodiscard]] std::filesystem::path fileOf(const QString& shown);

/// The file of a local URL, byte for byte.
[[nodiscard]] std::filesystem::path fileOf(const QUrl& url);

}  // namespace kestrel::window
