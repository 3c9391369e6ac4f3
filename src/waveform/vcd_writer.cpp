#include "waveform/vcd_writer.h"

#include <algorithm>
#include <bit>
#include <charconv>
#include <cstring>
#include <ostream>

namespace kestrel::waveform {
namespace {

constexpr std::size_t kLongestNumber = 32;
constexpr unsigned kFour = 4;
constexpr unsigned kAllFour = 0x0F;
constexpr std::size_t kAreOther = 0x100;
constexpr std::size_t kLongestGroup = kLongestNumber + 256;  // the time and 64 lines

/// The short name of a signal: the printable characters from '!' on.
std::string codeOf(std::size_t index) {
  constexpr std::size_t kFirst = '!';
  constexpr std::size_t kCount = '~' - '!' + 1;
  std::string code;
  do {
    code += static_cast<char>(kFirst + index % kCount);
    index /= kCount;
  } while (index > 0);
  return code;
}

/// 00 to 99.
constexpr auto kTwoDigits = [] {
  std::array<std::array<char, 2>, 100> all{};
  for (std::size_t number = 0; number < all.size(); ++number) {
    all[number] = {static_cast<char>('0' + number / 10), static_cast<char>('0' + number % 10)};
  }
  return all;
}();

}  // namespace

VcdWriter::VcdWriter(std::ostream& out) : out_(out), buffer_(kBuffer) {}

VcdWriter::Line VcdWriter::declare(std::string_view name) {
  declared_.push_back(
      {.name = std::string(name), .code = codeOf(declared_.size()), .isReal = false, .number = {}});
  return declared_.size() - 1;
}

std::vector<VcdWriter::Line> VcdWriter::declareVector(std::string_view name, std::size_t width) {
  std::vector<Line> lines;
  for (std::size_t line = width; line-- > 0;) {
    const std::string index = width > 1 ? '[' + std::to_string(line) + ']' : std::string();
    lines.push_back(declare(std::string(name) + index));
  }
  return lines;
}

VcdWriter::Line VcdWriter::declareReal(std::string_view name) {
  const Line line = declare(name);
  declared_[line].isReal = true;
  return line;
}

VcdWriter::Group VcdWriter::group(std::span<const Line> lines) {
  Lines& added = groups_.emplace_back();
  for (std::size_t last = lines.size(); last > 0;) {
    const std::size_t first = last - std::min<std::size_t>(last, kFour);
    added.fours.push_back(fourLines(lines.subspan(first, last - first)));
    last = first;
  }
  for (std::size_t i = 0; i < lines.size(); ++i) added.all = added.all << 1U | 1U;
  added.unset = added.all;
  return groups_.size() - 1;
}

VcdWriter::FourLines VcdWriter::fourLines(std::span<const Line> lines) const {
  FourLines four;
  for (std::size_t index = 0; index < four.size(); ++index) {
    const char* const digits = (index & kAreOther) == 0 ? "01" : "zx";
    std::string text;
    for (std::size_t i = 0; i < lines.size(); ++i) {
      const std::size_t bit = lines.size() - 1 - i;
      if ((index >> kFour >> bit & 1U) == 0) continue;
      text += digits[index >> bit & 1U] + declared_[lines[i]].code + '\n';
    }
    four[index].size = text.copy(four[index].text.data(), four[index].text.size());
  }
  return four;
}

void VcdWriter::begin(std::string_view device) {
  append("$comment " + std::string(device) + " in the socket of the board $end\n");
  append("$timescale " + std::to_string(kTickNs) + " ns $end\n$scope module socket $end\n");
  for (const Declared& each : declared_) {
    append((each.isReal ? "$var real 64 " : "$var wire 1 ") + each.code + ' ' + each.name +
           " $end\n");
  }
  append("$upscope $end\n$enddefinitions $end\n");
}

void VcdWriter::change(Lines& lines, std::uint64_t changed, const Levels& levels) {
  lines.levels = levels;
  lines.unset = 0;
  makeRoom(kLongestGroup);
  writeTime();
  char* end = buffer_.data() + used_;
  const std::size_t other = levels.areOther ? kAreOther : 0;
  while (changed != 0) {
    const auto four = static_cast<unsigned>(std::bit_width(changed) - 1) / kFour;
    const unsigned shift = four * kFour;
    const Text& text =
        lines.fours[four][other | changed >> shift << kFour | (levels.bits >> shift & kAllFour)];
    std::memcpy(end, text.text.data(), text.text.size());  // a fixed size: one move
    end += text.size;
    changed &= (std::uint64_t{1} << shift) - 1;
  }
  used_ = static_cast<std::size_t>(end - buffer_.data());
}

void VcdWriter::changeReal(Declared& real, double value) {
  real.number = value;
  std::array<char, kLongestNumber> text{};
  char* const end = std::to_chars(text.data(), text.data() + text.size(), value).ptr;
  makeRoom(2 * kLongestNumber);
  writeTime();
  append("r" + std::string(text.data(), end) + ' ' + real.code + '\n');
}

// Mostly the last four digits change alone.
void VcdWriter::writeTime() {
  if (now_ == written_) return;
  constexpr std::int64_t kHundred = 100;
  constexpr std::int64_t kLast = kHundred * kHundred;
  written_ = now_;
  if (now_ < kLast) {
    append('#' + std::to_string(now_) + '\n');
    return;
  }
  if (upper_ == 0 || now_ - upper_ >= kLast) {
    upper_ = now_ - now_ % kLast;
    upperSize_ = ('#' + std::to_string(upper_ / kLast)).copy(upperText_.data(), upperText_.size());
  }
  const auto last = static_cast<std::size_t>(now_ - upper_);
  char* end = buffer_.data() + used_;
  std::memcpy(end, upperText_.data(), upperText_.size());
  end = std::ranges::copy(kTwoDigits[last / kHundred], end + upperSize_).out;
  end = std::ranges::copy(kTwoDigits[last % kHundred], end).out;
  *end++ = '\n';
  used_ = static_cast<std::size_t>(end - buffer_.data());
}

void VcdWriter::append(std::string_view text) {
  makeRoom(text.size());
  used_ += text.copy(buffer_.data() + used_, text.size());
}

void VcdWriter::flush() {
  out_.write(buffer_.data(), static_cast<std::streamsize>(used_));
  bytes_ += used_;
  used_ = 0;
}

void VcdWriter::finish() {
  if (written_ >= 0) writeTime();
  flush();
  out_.flush();
}

}  // namespace kestrel::waveform
