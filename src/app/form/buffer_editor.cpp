#include "app/form/buffer_editor.h"

#include <algorithm>
#include <span>
#include <utility>

#include "platform/runtime_error.h"

namespace kestrel::form {
namespace {

constexpr const char* kErase = "Erase Buffer";

images::Bytes firstBytes(const images::Bytes& buffer, std::size_t count) {
  return {buffer.begin(), buffer.begin() + static_cast<std::ptrdiff_t>(count)};
}

std::size_t lengthOf(const BufferState& buffers) {
  return static_cast<std::size_t>(std::max(buffers.CodeLength, 0));
}

/// Where the last byte differs; nothing for equal ones.
std::optional<std::size_t> lastDifference(std::span<const std::uint8_t> a,
                                          std::span<const std::uint8_t> b) {
  for (std::size_t i = std::min(a.size(), b.size()); i-- > 0;) {
    if (a[i] != b[i]) return i;
  }
  return std::nullopt;
}

}  // namespace

images::Bytes BufferEditor::image() const {
  const BufferState& buffers = form_.state();
  return firstBytes(buffers.CodeBuffer, lengthOf(buffers));
}

images::Bytes BufferEditor::memory() const { return firstBytes(form_.state().CodeBuffer, size()); }

std::size_t BufferEditor::size() const {
  const ProgrammerState& state = form_.state();
  return std::max(lengthOf(state), static_cast<std::size_t>(state.DeviceSizeBytes));
}

void BufferEditor::change(const std::string& name, const images::Bytes& memory) {
  const BufferState& buffers = form_.state();
  const std::size_t length = lengthOf(buffers);
  const std::optional<std::size_t> last = lastDifference(buffers.CodeBuffer, memory);
  images::Bytes buffer = buffers.CodeBuffer;
  std::ranges::copy(memory, buffer.begin());
  put(name, std::move(buffer), last && *last >= length ? memory.size() : length);
}

void BufferEditor::replace(const std::string& name, const images::Bytes& image) {
  const BufferState& buffers = form_.state();
  images::Bytes buffer = buffers.CodeBuffer;
  const auto behind = std::ranges::copy(image, buffer.begin()).out;
  const auto end = buffer.begin() + static_cast<std::ptrdiff_t>(size());
  if (behind < end) std::fill(behind, end, kErased);
  put(name, std::move(buffer), image.size());
}

void BufferEditor::put(const std::string& name, images::Bytes buffer, std::size_t length) {
  const BufferState& buffers = form_.state();
  history_.note(name, buffers.CodeBuffer, buffer, {.before = lengthOf(buffers), .after = length});
  (void)form_.changeCode(std::move(buffer), narrowed<std::int32_t>(length),
                         "Buffer changed: " + name);
}

void BufferEditor::putByte(std::size_t address, std::uint8_t value, bool goesOn) {
  const BufferState& buffers = form_.state();
  const std::uint8_t before = at(buffers.CodeBuffer, address);
  const std::size_t length = lengthOf(buffers);
  const std::size_t after = address >= length ? size() : length;
  if (before == value && !goesOn) return;
  history_.noteByte("typing", address, before, value, {.before = length, .after = after}, goesOn);
  (void)form_.putCodeByte(address, value, narrowed<std::int32_t>(after));
}

std::optional<std::size_t> BufferEditor::undo() {
  images::Bytes buffer = form_.state().CodeBuffer;
  const auto step = history_.undo(buffer);
  took(step, std::move(buffer), false);
  return step ? std::optional(step->first) : std::nullopt;
}

std::optional<std::size_t> BufferEditor::redo() {
  images::Bytes buffer = form_.state().CodeBuffer;
  const auto step = history_.redo(buffer);
  took(step, std::move(buffer), true);
  return step ? std::optional(step->first) : std::nullopt;
}

void BufferEditor::took(const std::optional<images::EditHistory::Step>& step, images::Bytes buffer,
                        bool isMadeAgain) {
  if (!step) return;
  const char* const what = isMadeAgain ? "Made again: " : "Taken back: ";
  const std::size_t length = step->length.value_or(lengthOf(form_.state()));
  (void)form_.changeCode(std::move(buffer), narrowed<std::int32_t>(length), what + step->name);
  BufferState& buffers = form_.state();
  buffers.CodeChanged = wasChanged_ = history_.isChanged();
  if (step->name == kErase) tookErase(buffers.CodeFrom, isMadeAgain);
  if (!buffers.CodeChanged) buffers.CodeFrom = unchangedFrom_;
  lastFrom_ = buffers.CodeFrom;
}

void BufferEditor::tookErase(CodeOrigin& from, bool isMadeAgain) {
  if (isMadeAgain) {
    fromBeforeErases_.push_back(std::exchange(from, {.source = CodeSource::Erased}));
  } else if (!fromBeforeErases_.empty()) {
    from = std::move(fromBeforeErases_.back());
    fromBeforeErases_.pop_back();
  }
}

void BufferEditor::keepBeforeErase() { beforeErase_ = form_.state().CodeBuffer; }

void BufferEditor::lookAtBuffer() {
  const BufferState& buffers = form_.state();
  const images::Bytes before = std::exchange(beforeErase_, {});
  if (buffers.CodeLoads != loads_) {
    loads_ = buffers.CodeLoads;
    const bool isErased = buffers.CodeFrom.source == CodeSource::Erased && !before.empty();
    if (isErased) {
      if (before != buffers.CodeBuffer) fromBeforeErases_.push_back(lastFrom_);
      history_.note(kErase, before, buffers.CodeBuffer,
                    {.before = lengthOf(buffers), .after = lengthOf(buffers)});
    } else {
      fromBeforeErases_.clear();
      unchangedFrom_ = buffers.CodeFrom;
      history_.clear();
    }
  } else if (buffers.CodeFrom != lastFrom_ || (wasChanged_ && !buffers.CodeChanged)) {
    unchangedFrom_ = buffers.CodeFrom;
    history_.markSaved();
  }
  lastFrom_ = buffers.CodeFrom;
  wasChanged_ = buffers.CodeChanged;
}

}  // namespace kestrel::form
