#include <fcntl.h>
#include <sys/file.h>

#include <cerrno>
#include <charconv>
#include <limits>
#include <sstream>

#include "images/serial_numbers.h"
#include "platform/atomic_file.h"
#include "platform/file_attributes.h"
#include "platform/runtime_error.h"

namespace kestrel::images {
namespace {

constexpr const char* kHead = "Kestrel serial numbers 1";

std::vector<std::string> linesOfFile(const std::filesystem::path& path) {
  std::istringstream text(readWholeTextFile(path));
  std::vector<std::string> lines;
  for (std::string line; std::getline(text, line);) {
    if (line.ends_with('\r')) line.pop_back();
    if (!line.empty()) lines.push_back(line);
  }
  return lines;
}

/// The value of "KEY VALUE" in that line.
std::string valueOf(const std::vector<std::string>& lines, std::size_t index,
                    std::string_view key) {
  const bool isThere = index < lines.size() && lines[index].starts_with(std::string(key) + " ");
  return isThere ? lines[index].substr(key.size() + 1) : std::string();
}

}  // namespace

SerialCounter::SerialCounter(SerialPlan plan) : plan_(std::move(plan)) {
  if (!plan_.list.empty()) listed_ = linesOfFile(plan_.list);
  lock();
  load();
  for (const std::string& line : listed_) (void)serialBytes(plan_, line);
  (void)serialBytes(plan_, number());
}

// Two runs on one counter would give numbers twice. The lock is a file of its own, since the
// counter is replaced each time; it is free when its run has ended, however that came.
void SerialCounter::lock() {
  const std::string name = plan_.counter.string() + ".lock";
  Descriptor file(::open(name.c_str(), O_RDWR | O_CREAT | O_CLOEXEC, kNewFileMode));
  if (!file.isOpen()) throw FileError("write", name, errno);
  if (::flock(file.number(), LOCK_EX | LOCK_NB) != 0) {
    throw ImageError("another run is counting in " + plan_.counter.string() +
                     "; wait for its end, or give counter=FILE another name");
  }
  lock_.emplace(std::move(file));
}

void SerialCounter::load() {
  std::error_code ignored;
  if (!std::filesystem::exists(plan_.counter, ignored)) return;
  const std::vector<std::string> lines = linesOfFile(plan_.counter);
  const std::string name = plan_.counter.string();
  if (lines.empty() || lines.front() != kHead) {
    throw ImageError(name +
                     " is no file of serial numbers of this version; give counter=FILE "
                     "another name");
  }
  if (valueOf(lines, 1, "plan") != textOf(plan_)) {
    throw ImageError(name + " counts for another plan (" + valueOf(lines, 1, "plan") +
                     "); give counter=FILE another name");
  }
  const std::string count = valueOf(lines, 2, "given");
  const auto [stop, error] = std::from_chars(count.data(), count.data() + count.size(), given_);
  if (count.empty() || error != std::errc{} || stop != count.data() + count.size()) {
    throw ImageError(name + " is damaged: line 3 is not \"given\" and a number; correct it there");
  }
  if (lines.size() > 3) {  // "out NUMBER": a chip was being programmed
    doubtful_ = valueOf(lines, 3, "out");
    ++given_;
    save();
  }
}

void SerialCounter::save() const {
  std::string text =
      std::string(kHead) + "\nplan " + textOf(plan_) + "\ngiven " + std::to_string(given_) + "\n";
  if (isOut_) text += "out " + number() + "\n";
  writeFileAtomically(plan_.counter, text);
}

std::string SerialCounter::number() const {
  if (!plan_.list.empty()) {
    if (given_ < listed_.size()) return listed_[given_];
    throw ImageError("all " + std::to_string(listed_.size()) + " serial numbers of " +
                     plan_.list.string() + " are used up; add lines to it");
  }
  constexpr std::uint64_t kMost = std::numeric_limits<std::uint64_t>::max();
  if (given_ > (kMost - plan_.start) / plan_.step) {
    throw ImageError("the serial numbers are used up: the next one is beyond " +
                     std::to_string(kMost));
  }
  return std::to_string(plan_.start + given_ * plan_.step);
}

std::string SerialCounter::take() {
  const std::string next = number();
  (void)serialBytes(plan_, next);
  isOut_ = true;
  save();
  return next;
}

void SerialCounter::confirm() {
  if (!isOut_) return;
  isOut_ = false;
  ++given_;
  save();
}

void SerialCounter::giveBack() {
  if (!isOut_) return;
  isOut_ = false;
  save();
}

}  // namespace kestrel::images
