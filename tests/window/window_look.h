#pragma once

#include <QString>
#include <QStringList>
#include <filesystem>
#include <map>
#include <vector>

namespace kestrel::test {

struct WindowRig;

/// Of a part what is seen, read and heard, by kind: its text under "", its tip, colour, marks.
using Facets = std::map<QString, QString>;
using Parts = std::map<QString, Facets>;

/// What a person sees of the whole: the parts of each window by the window's title, and under ""
/// what is about it: the files, the chip in the socket, sounds, the clipboard.
using Look = std::map<QString, Parts>;

/// The title of the main window in a look. Its parts are left out while a command runs.
inline constexpr const char* kMainWindow = "main window";

[[nodiscard]] Look lookAt(WindowRig& rig);

/// A line for each change from one look to the next.
[[nodiscard]] QStringList changesFrom(Look before, const Look& now);

}  // namespace kestrel::test
