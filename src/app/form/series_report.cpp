#include "app/form/series_report.h"

#include <array>
#include <cstdio>
#include <sstream>

#include "platform/atomic_file.h"
#include "platform/file_names.h"
#include "platform/runtime_error.h"

namespace kestrel::form {
namespace {

constexpr const char* kHead = "chip,device,serial,result,sum,seconds,time,reason";

/// In quotation marks where a comma, a mark or a line break stands in it (RFC 4180).
std::string field(const std::string& text) {
  if (text.find_first_of(",\"\r\n") == std::string::npos) return text;
  std::string quoted = "\"";
  for (const char c : text) {
    if (c == '"') quoted += '"';
    quoted += c == '\r' || c == '\n' ? ' ' : c;
  }
  return quoted + '"';
}

std::string oneDecimal(double value) {
  std::array<char, 32> text{};
  (void)std::snprintf(text.data(), text.size(), "%.1f", value);
  return text.data();
}

}  // namespace

SeriesReport::SeriesReport(std::filesystem::path file) : file_(std::move(file)) {
  std::error_code ignored;
  if (std::filesystem::exists(file_, ignored)) {
    std::istringstream text(readWholeTextFile(file_));
    std::string line;
    const bool isReport = std::getline(text, line) && line == kHead;
    if (!isReport) {
      throw FileError("go on with the report", file_.string(),
                      "it is another kind of file; choose another name");
    }
    while (std::getline(text, line)) rows_.push_back(line);
  }
  write();
}

void SeriesReport::add(const SeriesChip& chip, const std::string& device, const std::string& time) {
  rows_.push_back(std::to_string(chip.number) + ',' + field(device) + ',' + field(chip.serial) +
                  (chip.isGood() ? ",good," : ",bad,") + chip.sum + ',' + oneDecimal(chip.seconds) +
                  ',' + time + ',' + field(chip.result.reason));
  write();
}

void SeriesReport::write() const {
  std::string text = std::string(kHead) + '\n';
  for (const std::string& row : rows_) text += row + '\n';
  writeFileAtomically(file_, text);
}

std::string textOf(const SeriesChip& chip) {
  std::string text = "Chip " + std::to_string(chip.number) + (chip.isGood() ? ": good" : ": BAD");
  if (!chip.serial.empty()) text += ", serial number " + shownName(chip.serial);
  return text + (chip.isGood() ? ", sum " + chip.sum : ", " + chip.result.reason);
}

void SeriesCount::add(const SeriesChip& chip) {
  ++(chip.isGood() ? good : bad);
  seconds += chip.seconds;
}

std::string SeriesCount::text() const {
  const std::size_t all = good + bad;
  std::string text = std::to_string(good) + " good, " + std::to_string(bad) + " bad";
  if (all != 0) text += ", " + oneDecimal(seconds / static_cast<double>(all)) + " s a chip";
  return text;
}

}  // namespace kestrel::form
