#include "setups/named_setups.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <optional>
#include <utility>

#include "app/state/text_format.h"
#include "platform/atomic_file.h"
#include "platform/file_names.h"
#include "platform/runtime_error.h"
#include "setups/setup_files.h"

namespace kestrel::setups {
namespace {

namespace fs = std::filesystem;

constexpr std::size_t kSlotDigit = 7;   // of "KSSetup1.INI"
constexpr std::size_t kNameStart = 12;  // behind "SetupName = "
constexpr const char* kRule = ">>>>>>>>>>>>";

const char* wordOf(bool value) { return value ? "True" : "False"; }

/// True and False in any case, or a number; nothing for any other text.
std::optional<bool> booleanIn(std::string_view text) {
  const std::string word = upperCase(trimmed(text));
  if (word == "TRUE") return true;
  if (word == "FALSE") return false;
  const std::string_view digits = std::string_view(word).substr(word.starts_with('+') ? 1 : 0);
  if (digits.find_first_not_of("-.0123456789E") != digits.npos) return std::nullopt;
  double number = 0;
  const auto result = std::from_chars(digits.data(), digits.data() + digits.size(), number);
  if (result.ec != std::errc() || result.ptr != digits.data() + digits.size()) return std::nullopt;
  return number != 0;
}

std::int32_t integerIn(std::string_view text) { return clampedInt32(leadingNumber(text)); }

void setOption(OptionButton& button, std::string_view value) {
  if (const std::optional<bool> on = booleanIn(value)) button.setValue(*on);
}

void setCheck(CheckBox& box, std::string_view value) {
  box.setValue(std::clamp(integerIn(value), 0, 2));
}

/// A line break in a value would add a line to the file.
bool isOneLine(std::string_view value) { return value.find_first_of("\r\n") == value.npos; }

/// What follows the key, if the first `length` characters of the line are the key.
std::optional<std::string_view> valueOf(std::string_view line, std::string_view key,
                                        std::size_t length) {
  if (line.substr(0, length) != key) return std::nullopt;
  return line.substr(length);
}

}  // namespace

void NamedSetups::SaveSetup_Click(std::size_t slot) { SaveSetupRot(fileNameOf(slot)); }

void NamedSetups::LoadSetup_Click(std::size_t slot) { RestoreSetup(fileNameOf(slot)); }

fs::path NamedSetups::pathOf(const std::string& fileName) const {
  return setups::pathOf(folders_.working, fileName);
}

std::string NamedSetups::setupText(const std::string& name) const {
  const Controls& c = controls_;
  std::string text;
  const auto line = [&text](const std::string& key, const std::string& value) {
    text += key + " = " + value + "\r\n";
  };
  line("SetupName", name);
  line("sFILE", buffers_.CodeFileName);
  line("Device.Index", std::to_string(c.Device.position()));
  // Written in small letters and read in capitals; this is intended.
  for (const OptionButton& button : c.Voltage_button) {
    line(button.name() + ".value", wordOf(button.value()));
  }
  for (const CheckBox* const box : {&c.CheckBlankPriorProgramming, &c.VerifyAfterProgramming}) {
    line(box->name() + ".Value", std::to_string(box->value()));
  }
  for (const OptionButton& button : c.LPTSelection) {
    line(button.name() + ".Value", wordOf(button.value()));
  }
  line("PortSelected.Text", c.PortSelected.text());
  for (const OptionButton& button : c.HiLow_button) {
    line(button.name() + ".Value", wordOf(button.value()));
  }
  line("Slider1.Value", std::to_string(c.Slider1.value()));
  for (const CheckBox* const box : {&c.CheckCode, &c.CheckData}) {
    line(box->name() + ".Value", std::to_string(box->value()));
  }
  return text;
}

void NamedSetups::SaveSetupRot(const std::string& fileName) {
  std::string name = dialogs_.inputBox("Please input a NAME for this Setup", "Saving Name Input");
  if (name.empty()) name = std::string("No Name Setup ") + fileName.at(kSlotDigit);
  if (!isOneLine(buffers_.CodeFileName)) {
    throw FileError("keep", buffers_.CodeFileName, "a name of several lines does not fit a setup");
  }
  if (!isOneLine(name)) name = shownName(name);
  writeFileAtomically(pathOf(fileName), setupText(name));
  reporting_.LogMessage("Setup Saved as " + fileName + ", named:" + name);
}

void NamedSetups::RestoreSetup(const std::string& fileName) {
  reporting_.LogMessage(kRule);
  reporting_.LogMessage("RESTORING SETUP FROM " + fileName);
  const std::vector<std::string> lines = linesOf(readWholeTextFile(pathOf(fileName), &stop_));
  const std::string earlierFile = buffers_.CodeFileName;
  const std::string earlierCaption = controls_.FileNameCodeText.caption();
  try {
    for (const std::string& line : lines) restoreLine(line);
  } catch (...) {
    // The file is not loaded: under its name the next save would replace it with another image.
    buffers_.CodeFileName = earlierFile;
    throw;
  }
  controls_.FrameVoltageSelection.setEnabled(true);
  controls_.Frame5.setEnabled(true);
  controls_.FileNameCodeText.setCaption(buffers_.CodeFileName);
  if (!buffers_.CodeFileName.empty() && !files_.ReadBinaryFile()) {
    buffers_.CodeFileName = earlierFile;
    controls_.FileNameCodeText.setCaption(earlierCaption);
  }
  reporting_.LogMessage("SETUP RESTORED FROM " + fileName);
  reporting_.LogMessage(kRule);
}

// The key of the blank-check box has 35 characters and is compared with 19 of the line, so it never
// matches; this is intended.
void NamedSetups::restoreLine(std::string_view line) {
  Controls& c = controls_;
  if (const auto value = valueOf(line, "sFILE = ", 8)) buffers_.CodeFileName = *value;
  if (const auto value = valueOf(line, "Device.Index = ", 15)) restoreDevice(*value);
  for (OptionButton& button : c.Voltage_button) {
    if (const auto value = valueOf(line, button.name() + ".Value = ", 26)) {
      setOption(button, *value);
    }
  }
  if (const auto value = valueOf(line, "CheckBlankPriorProgramming.Value = ", 19)) {
    setCheck(c.CheckBlankPriorProgramming, *value);
  }
  if (const auto value = valueOf(line, "VerifyAfterProgramming.Value = ", 31)) {
    setCheck(c.VerifyAfterProgramming, *value);
  }
  for (OptionButton& button : c.LPTSelection) {
    if (const auto value = valueOf(line, button.name() + ".Value = ", 24)) {
      setOption(button, *value);
    }
  }
  if (const auto value = valueOf(line, "PortSelected.Text = ", 20)) {
    c.PortSelected.setText(std::string(*value));
  }
  for (OptionButton& button : c.HiLow_button) {
    if (const auto value = valueOf(line, button.name() + ".Value = ", 24)) {
      setOption(button, *value);
    }
  }
  if (const auto value = valueOf(line, "Slider1.Value = ", 16))
    c.Slider1.setValue(integerIn(*value));
  if (const auto value = valueOf(line, "CheckCode.Value = ", 18)) setCheck(c.CheckCode, *value);
  if (const auto value = valueOf(line, "CheckData.Value = ", 18)) setCheck(c.CheckData, *value);
}

// A position that the list does not have is passed over.
void NamedSetups::restoreDevice(std::string_view value) {
  const std::int32_t position = std::max(integerIn(value), -1);
  if (std::cmp_less(position, controls_.Device.items().size())) {
    controls_.Device.setPosition(position);
  }
}

void NamedSetups::Setup_Click() {
  for (Button& entry : controls_.LoadSetup) entry.setEnabled(false);
  for (std::size_t slot = 1; slot <= controls_.LoadSetup.size(); ++slot) {
    const fs::path path = pathOf(fileNameOf(slot));
    std::error_code error;
    if (!fs::is_regular_file(path, error)) continue;
    try {
      const std::vector<std::string> lines = linesOf(readWholeTextFile(path, &stop_));
      const std::string first = lines.empty() ? std::string() : lines.front();
      Button& entry = controls_.LoadSetup[slot - 1];
      entry.setCaption(shownName(first.substr(std::min(kNameStart, first.size()))));
      entry.setEnabled(true);
    } catch (const FileError&) {
      continue;  // not readable: the slot stays disabled
    }
  }
}

}  // namespace kestrel::setups
