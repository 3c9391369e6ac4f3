#include "images/edit_history.h"

#include <algorithm>

namespace kestrel::images {

void EditHistory::note(std::string name, const Bytes& before, const Bytes& after) {
  if (before == after) return;
  const auto [b, a] = std::ranges::mismatch(before, after);
  const auto from = static_cast<std::size_t>(b - before.begin());
  // From behind, but not over what is the same in front.
  std::size_t same = 0;
  const std::size_t most = std::min(before.size(), after.size()) - from;
  while (same < most && before[before.size() - 1 - same] == after[after.size() - 1 - same]) ++same;
  changes_.resize(done_);
  if (savedAt_ && *savedAt_ > done_) savedAt_.reset();
  const auto end = static_cast<std::ptrdiff_t>(same);
  changes_.push_back({.name = std::move(name),
                      .from = from,
                      .before = Bytes(b, before.end() - end),
                      .after = Bytes(a, after.end() - end)});
  ++done_;
}

void EditHistory::put(Bytes& image, std::size_t from, const Bytes& there, const Bytes& instead) {
  const auto begin = image.begin() + static_cast<std::ptrdiff_t>(from);
  const auto behind = image.erase(begin, begin + static_cast<std::ptrdiff_t>(there.size()));
  image.insert(behind, instead.begin(), instead.end());
}

std::optional<std::string> EditHistory::undo(Bytes& image) {
  if (done_ == 0) return std::nullopt;
  const Change& change = changes_[--done_];
  put(image, change.from, change.after, change.before);
  return change.name;
}

std::optional<std::string> EditHistory::redo(Bytes& image) {
  if (done_ == changes_.size()) return std::nullopt;
  const Change& change = changes_[done_++];
  put(image, change.from, change.before, change.after);
  return change.name;
}

void EditHistory::clear() { *this = EditHistory(); }

}  // namespace kestrel::images
