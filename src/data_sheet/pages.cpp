#include "data_sheet/pages.h"

#include <algorithm>

namespace kestrel::data_sheet {

Outcome forEachPage(std::span<const std::uint8_t> image, std::size_t pageBytes, Progress& progress,
                    const std::function<Outcome(std::uint32_t, Page)>& write) {
  progress.expect(std::ssize(image));
  for (std::size_t first = 0; first < image.size(); first += pageBytes) {
    const Page page = image.subspan(first, std::min(pageBytes, image.size() - first));
    Outcome outcome = write(static_cast<std::uint32_t>(first), page);
    if (!outcome.isDone()) return outcome;
    progress.advance(std::ssize(page));
  }
  return {};
}

Outcome compareBytes(std::uint32_t first, Page wanted, Page seen) {
  const auto [w, s] = std::ranges::mismatch(wanted, seen);
  if (w == wanted.end()) return {};
  return Outcome::byteFailed(first + static_cast<std::uint32_t>(w - wanted.begin()), *w, *s);
}

}  // namespace kestrel::data_sheet
