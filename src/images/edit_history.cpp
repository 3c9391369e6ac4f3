#include "images/edit_history.h"

#include <algorithm>
#include <utility>

namespace kestrel::images {
namespace {

std::optional<std::size_t> changedTo(std::size_t from, std::size_t to) {
  return from == to ? std::nullopt : std::optional(to);
}

}  // namespace

void EditHistory::note(std::string name, const Bytes& before, const Bytes& after, Lengths lengths) {
  if (before == after && lengths.before == lengths.after) return;
  const auto [b, a] = std::ranges::mismatch(before, after);
  const auto from = static_cast<std::size_t>(b - before.begin());
  // From behind, but not over what is the same in front.
  std::size_t same = 0;
  const std::size_t most = std::min(before.size(), after.size()) - from;
  while (same < most && before[before.size() - 1 - same] == after[after.size() - 1 - same]) ++same;
  const auto end = static_cast<std::ptrdiff_t>(same);
  add({.name = std::move(name),
       .from = from,
       .before = Bytes(b, before.end() - end),
       .after = Bytes(a, after.end() - end),
       .lengths = lengths});
}

void EditHistory::noteByte(std::string name, std::size_t at, std::uint8_t before,
                           std::uint8_t after, Lengths lengths, bool goesOn) {
  const bool isLast = done_ != 0 && done_ == changes_.size() && savedAt_ != done_;
  if (goesOn && isLast && changes_.back().from == at && changes_.back().after.size() == 1) {
    changes_.back().after = {after};
  } else {
    add({.name = std::move(name),
         .from = at,
         .before = {before},
         .after = {after},
         .lengths = lengths});
  }
}

void EditHistory::add(Change change) {
  for (; changes_.size() > done_; changes_.pop_back()) bytes_ -= changes_.back().bytes();
  if (savedAt_ && *savedAt_ > done_) savedAt_.reset();
  bytes_ += change.bytes();
  changes_.push_back(std::move(change));
  ++done_;
  while (bytes_ > mostBytes_ && changes_.size() > 1) forgetFirst();
}

void EditHistory::forgetFirst() {
  bytes_ -= changes_.front().bytes();
  changes_.pop_front();
  --done_;
  if (savedAt_) savedAt_ = *savedAt_ == 0 ? std::nullopt : std::optional(*savedAt_ - 1);
}

void EditHistory::put(Bytes& memory, std::size_t from, const Bytes& there, const Bytes& instead) {
  const auto begin = memory.begin() + static_cast<std::ptrdiff_t>(from);
  if (there.size() == instead.size()) {
    std::ranges::copy(instead, begin);
    return;
  }
  const auto behind = memory.erase(begin, begin + static_cast<std::ptrdiff_t>(there.size()));
  memory.insert(behind, instead.begin(), instead.end());
}

std::optional<EditHistory::Step> EditHistory::undo(Bytes& memory) {
  if (done_ == 0) return std::nullopt;
  const Change& change = changes_[--done_];
  put(memory, change.from, change.after, change.before);
  return Step{.name = change.name,
              .first = change.from,
              .length = changedTo(change.lengths.after, change.lengths.before)};
}

std::optional<EditHistory::Step> EditHistory::redo(Bytes& memory) {
  if (done_ == changes_.size()) return std::nullopt;
  const Change& change = changes_[done_++];
  put(memory, change.from, change.before, change.after);
  return Step{.name = change.name,
              .first = change.from,
              .length = changedTo(change.lengths.before, change.lengths.after)};
}

const std::string* EditHistory::undoName() const {
  return done_ == 0 ? nullptr : &changes_[done_ - 1].name;
}

const std::string* EditHistory::redoName() const {
  return done_ == changes_.size() ? nullptr : &changes_[done_].name;
}

void EditHistory::clear() { *this = EditHistory(mostBytes_); }

}  // namespace kestrel::images
