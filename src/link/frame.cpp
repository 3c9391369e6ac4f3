#include "link/frame.h"

#include "link/crc16.h"

namespace kestrel::link {
namespace {

constexpr std::size_t kLongLength = 0x80;  // the length has a second byte, its low one
constexpr std::size_t kAnswerHeaderBytes = 2;
constexpr std::size_t kCheckBytes = 2;

bool isMark(std::uint8_t value) { return value >= kStopMark && value <= kKeepAliveMark; }

std::vector<std::uint8_t> escaped(std::span<const std::uint8_t> bytes) {
  std::vector<std::uint8_t> line{kStartMark};
  line.reserve(bytes.size() + 8);
  for (const std::uint8_t value : bytes) {
    if (isMark(value)) line.push_back(kEscapeMark);
    line.push_back(isMark(value) ? value ^ kEscapedBit : value);
  }
  return line;
}

}  // namespace

std::vector<std::uint8_t> frameBlock(BlockKind kind, unsigned sequence,
                                     std::span<const std::uint8_t> contents) {
  std::vector<std::uint8_t> frame;
  const auto put = [&frame](std::size_t value) {
    frame.push_back(static_cast<std::uint8_t>(value));
  };
  put(static_cast<std::size_t>(kind) | (sequence & kSequenceBits));
  if (contents.size() >= kLongLength) put(kLongLength | contents.size() >> 8U);
  put(contents.size() & 0xFFU);
  frame.insert(frame.end(), contents.begin(), contents.end());
  const std::size_t check = crc16(frame);
  put(check & 0xFFU);
  put(check >> 8U);
  return escaped(frame);
}

std::optional<Answer> AnswerReader::take(std::uint8_t value) {
  if (value == kStartMark) {
    if (isInside_) ++rejected_;
    restart();
    isInside_ = true;
    return std::nullopt;
  }
  if (!isInside_) {
    ++rejected_;
    return std::nullopt;
  }
  if (value == kEscapeMark) {
    isEscaped_ = true;
    return std::nullopt;
  }
  frame_.push_back(isEscaped_ ? value ^ kEscapedBit : value);
  isEscaped_ = false;
  return isComplete() ? finish() : std::nullopt;
}

void AnswerReader::restart() {
  frame_.clear();
  isInside_ = false;
  isEscaped_ = false;
}

bool AnswerReader::isComplete() const {
  return frame_.size() >= kAnswerHeaderBytes &&
         frame_.size() == kAnswerHeaderBytes + frame_[1] + kCheckBytes;
}

std::optional<Answer> AnswerReader::finish() {
  const std::span<const std::uint8_t> frame(frame_);
  const auto checked = frame.first(frame.size() - kCheckBytes);
  const auto check = frame.last(kCheckBytes);
  std::optional<Answer> answer;
  if (crc16(checked) == (check[0] | check[1] << 8)) {
    const auto contents = checked.subspan(kAnswerHeaderBytes);
    answer = Answer{.kind = static_cast<AnswerKind>(frame[0] & kKindBits),
                    .sequence = frame[0] & static_cast<unsigned>(kSequenceBits),
                    .contents = {contents.begin(), contents.end()}};
  } else {
    ++rejected_;
  }
  restart();
  return answer;
}

}  // namespace kestrel::link
