#include "waveform/vcd_writer.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <ostream>
#include <utility>

namespace kestrel::waveform {
namespace {

constexpr std::size_t kBlock = 65'536;  // written at once
constexpr int kLongestVector = 32;

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

}  // namespace

VcdWriter::Signal VcdWriter::add(std::string_view name, int width) {
  Declared signal{.name = std::string(name), .width = width, .codes = {}, .value = {}};
  const int lines = std::max(1, width);
  for (int line = 0; line < lines; ++line) signal.codes.push_back(codeOf(lines_++));
  signals_.push_back(std::move(signal));
  return signals_.size() - 1;
}

VcdWriter::Signal VcdWriter::declare(std::string_view name, int width) { return add(name, width); }

VcdWriter::Signal VcdWriter::declareReal(std::string_view name) { return add(name, 0); }

void VcdWriter::begin(std::string_view device) {
  write("$comment " + std::string(device) + " in the socket of the board $end\n");
  write("$timescale " + std::to_string(kTickNs) + " ns $end\n$scope module socket $end\n");
  for (const Declared& signal : signals_) {
    if (signal.width == 0) write("$var real 64 " + signal.codes[0] + ' ' + signal.name + " $end\n");
    for (int line = signal.width - 1; line >= 0; --line) {
      const auto index = static_cast<std::size_t>(signal.width - 1 - line);
      const std::string bit = signal.width > 1 ? '[' + std::to_string(line) + ']' : std::string();
      write("$var wire 1 " + signal.codes[index] + ' ' + signal.name + bit + " $end\n");
    }
  }
  write("$upscope $end\n$enddefinitions $end\n");
}

void VcdWriter::set(Signal signal, std::string_view digits) { change(signals_[signal], digits); }

void VcdWriter::set(Signal signal, unsigned value) {
  std::array<char, kLongestVector> digits{};
  const auto width = static_cast<std::size_t>(signals_[signal].width);
  for (std::size_t i = 0; i < width; ++i) {
    digits.at(width - 1 - i) = (value >> i & 1U) != 0 ? '1' : '0';
  }
  change(signals_[signal], std::string_view(digits.data(), width));
}

void VcdWriter::setReal(Signal signal, double value) {
  std::array<char, kLongestVector> text{};
  const auto end = std::to_chars(text.data(), text.data() + text.size(), value).ptr;
  change(signals_[signal], std::string_view(text.data(), end));
}

void VcdWriter::change(Declared& signal, std::string_view value) {
  if (signal.value == value) return;
  writeTime();
  if (signal.width == 0) {
    ((((pending_ += 'r') += value) += ' ') += signal.codes[0]) += '\n';
  } else {
    for (std::size_t line = 0; line < value.size(); ++line) {
      if (line < signal.value.size() && signal.value[line] == value[line]) continue;
      ((pending_ += value[line]) += signal.codes[line]) += '\n';
    }
  }
  signal.value = value;
  if (pending_.size() >= kBlock) write({});
}

void VcdWriter::writeTime() {
  if (now_ == written_) return;
  ((pending_ += '#') += std::to_string(now_)) += '\n';
  written_ = now_;
}

void VcdWriter::write(std::string_view text) {
  pending_ += text;
  if (pending_.size() < kBlock && !text.empty()) return;
  out_.write(pending_.data(), static_cast<std::streamsize>(pending_.size()));
  bytes_ += pending_.size();
  pending_.clear();
}

void VcdWriter::finish() {
  if (written_ >= 0) writeTime();
  write({});
  out_.flush();
}

}  // namespace kestrel::waveform
