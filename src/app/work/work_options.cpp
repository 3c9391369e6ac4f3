#include "app/work/work_options.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <limits>

#include "app/launch/option_values.h"
#include "platform/polled_io.h"

namespace kestrel::work {
namespace {

[[noreturn]] void refuse(std::string_view option, const std::string& text,
                         std::string_view remedy) {
  throw launch::UsageError(std::string(option) + ": \"" + text + "\" " + std::string(remedy));
}

std::int32_t number(std::string_view option, const std::string& text, std::int32_t least,
                    std::int32_t most, std::string_view remedy) {
  std::int32_t value = 0;
  const char* const end = text.data() + text.size();
  const auto [stop, error] = std::from_chars(text.data(), end, value);
  if (error != std::errc{} || stop != end || value < least || value > most) {
    refuse(option, text, remedy);
  }
  return value;
}

std::size_t slotOf(std::string_view option, const std::string& text) {
  return static_cast<std::size_t>(number(option, text, 1, 4, "is no setup slot; use 1 to 4"));
}

/// The button that the word stands for.
std::size_t buttonOf(std::string_view option, const std::string& text,
                     std::span<const std::string_view> words, std::string_view remedy) {
  const auto found = std::ranges::find(words, text);
  if (text.empty() || found == words.end()) refuse(option, text, remedy);
  return static_cast<std::size_t>(found - words.begin());
}

std::size_t modelEntry(const std::string& text) {
  return static_cast<std::size_t>(
      number("--force-model", text, 4, 6, "is no board model; use 4, 5 or 6") - 4);
}

std::size_t portButton(const std::string& text) {
  if (text == "378") return 0;
  if (text == "278") return 1;
  if (text == "3BC" || text == "3bc") return 2;
  refuse("--select-port", text, "is no port address; use 378, 278 or 3BC");
}

const std::string& named(std::string_view option, const std::string& text) {
  if (text.empty()) throw launch::UsageError(std::string(option) + " is empty; give it a name");
  return text;
}

/// A file; "-" is the standard stream.
std::string fileName(std::string_view option, const std::string& text, const char* standard) {
  return text == "-" ? standard : named(option, text);
}

images::SerialPlan serialPlan(const std::string& text) {
  try {
    return images::parseSerialPlan(text);
  } catch (const images::ImageError& error) {
    throw launch::UsageError(std::string("--serial: ") + error.what());
  }
}

bool isYes(const std::string& text) { return text != kNo; }

constexpr std::int32_t kMostPages = std::numeric_limits<std::int32_t>::max();

// clang-format off
constexpr std::array<WorkOption, 29> kWorkOptions{{
    {"-d", "NAME", "device: its name, a word of it, or a fitting part",
     [](auto& a, const auto& text) { a.device = named("-d", text); }},
    {"-i", "FILE", "code file to load; -: standard input",
     [](auto& a, const auto& text) { a.codeFile = fileName("-i", text, kStandardInput); }},
    {"-o", "FILE", "file to save the buffer to; -: standard output",
     [](auto& a, const auto& text) { a.saveFile = fileName("-o", text, kStandardOutput); }},
    {"--select-port", "BASE", "use the port 378, 278 or 3BC without asking it",
     [](auto& a, const auto& text) { a.port = portButton(text); }},
    {"--force-model", "4|5|6", "use the board as this model without asking it",
     [](auto& a, const auto& text) { a.model = modelEntry(text); }},
    {"--format", "F", "of -i and -o: auto, binary, ihex, srec, ...",
     [](auto& a, const auto& text) { setFormat(a.image, text); }},
    {"--save-format", "F", "of -o, where it is another",
     [](auto& a, const auto& text) { setSaveFormat(a.image, text); }},
    {"--at", "ADDR", "where the file begins in the chip, hexadecimal",
     [](auto& a, const auto& text) { setAt(a.image, text); }},
    {"--range", "FROM-TO", "take only these addresses, hexadecimal",
     [](auto& a, const auto& text) { setRange(a.image, text); }},
    {"--project", "FILE", "take options from a project",
     nullptr},
    {"--setup", "N", "load setup slot N (1 to 4)",
     [](auto& a, const auto& text) { a.setup = slotOf("--setup", text); }},
    {"--speed", "1..20", "program speed",
     [](auto& a, const auto& text) { a.speed = number("--speed", text, 1, 20, "is no program speed; use 1 (slow) to 20 (fast)"); }},
    {"--vpp", "12.5|21|25", "programming voltage",
     [](auto& a, const auto& text) { a.voltage = buttonOf("--vpp", text, kVoltageWords, "is no programming voltage; use 12.5, 21 or 25"); }},
    {"--lane", "all|odd|even", "bytes of the buffer to program and verify",
     [](auto& a, const auto& text) { a.lane = buttonOf("--lane", text, kLaneWords, "is no byte lane; use all, odd or even"); }},
    {"--check", "", "refuse an EPROM that cannot take the image",
     [](auto& a, const auto& text) { a.check = isYes(text); }},
    {"--blank-check", "", "check that it is blank before programming",
     [](auto& a, const auto& text) { a.blankCheck = isYes(text); }},
    {"--verify", "", "verify after programming",
     [](auto& a, const auto& text) { a.verify = isYes(text); }},
    {"--pad-ff", "", "fill what -i FILE does not cover with FFh",
     [](auto& a, const auto& text) { a.padFF = isYes(text); }},
    {"--page", "N", "with display: page of 256 bytes, from 0",
     [](auto& a, const auto& text) { a.page = number("--page", text, 0, kMostPages, "is no page; use 0 or more"); }},
    {"--show", "", "with read: print the first page of the buffer",
     [](auto& a, const auto& text) { a.show = isYes(text); }},
    {"--backup", "DIR", "keep what a chip held before it is written",
     [](auto& a, const auto& text) { a.backup = named("--backup", text); }},
    {"--protect", "on|off|keep", "data sheet: a 28C256's protection afterwards",
     [](auto& a, const auto& text) { a.protection = buttonOf("--protect", text, kProtectionWords, "is no protection; use on, off or keep"); }},
    {"--force", "", "data sheet: work on a flash of another code too",
     [](auto& a, const auto& text) { a.force = isYes(text); }},
    {"--repeat", "N", "with read: read N times, take the majority",
     [](auto& a, const auto& text) { a.repeat = number("--repeat", text, 1, 99, "is no number of reads; use 1 to 99"); }},
    {"--several", "", "with program: one chip after another",
     [](auto& a, const auto& text) { a.several = isYes(text); }},
    {"--serial", "PLAN", "a number for each chip: at=ADDR,bytes=N,start=S",
     [](auto& a, const auto& text) { a.serial = serialPlan(text); }},
    {"--report", "FILE", "table of the chips of --several (CSV)",
     [](auto& a, const auto& text) { a.report = named("--report", text); }},
    {"--json", "", "one JSON object a line; the log on standard error",
     [](auto& a, const auto& text) { a.json = isYes(text); }},
    {"--names", "", "with devices: one short name a line, no more",
     [](auto& a, const auto& text) { a.names = isYes(text); }},
}};
// clang-format on

}  // namespace

std::span<const WorkOption> workOptions() { return kWorkOptions; }

std::size_t setupSlot(std::string_view option, const std::string& text) {
  return slotOf(option, text);
}

}  // namespace kestrel::work
