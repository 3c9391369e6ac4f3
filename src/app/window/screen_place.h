#pragma once

#include <QList>
#include <QRect>

namespace kestrel::window {

/// Where a window that asks for a place, frame included, comes up: wholly within the usable area
/// of the screen that it lies on for the most part, else of the first one; made smaller only where
/// it is larger than that area.
[[nodiscard]] QRect placeOnScreen(const QRect& asked, const QList<QRect>& usable);

}  // namespace kestrel::window
