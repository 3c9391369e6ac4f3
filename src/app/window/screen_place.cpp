#include "app/window/screen_place.h"

#include <algorithm>

namespace kestrel::window {
namespace {

qint64 area(const QRect& place) {
  return place.isEmpty() ? 0 : qint64{place.width()} * place.height();
}

}  // namespace

QRect placeOnScreen(const QRect& asked, const QList<QRect>& usable) {
  if (usable.isEmpty()) return asked;
  const QRect screen = *std::ranges::max_element(
      usable, {}, [&](const QRect& one) { return area(one.intersected(asked)); });
  const QSize size = asked.size().boundedTo(screen.size());
  const QPoint farthest(screen.right() + 1 - size.width(), screen.bottom() + 1 - size.height());
  return {QPoint(std::clamp(asked.left(), screen.left(), farthest.x()),
                 std::clamp(asked.top(), screen.top(), farthest.y())),
          size};
}

}  // namespace kestrel::window
