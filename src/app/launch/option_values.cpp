#include "app/launch/option_values.h"

#include <algorithm>
#include <charconv>

#include "simulator/chip_factory.h"

namespace kestrel::launch {
namespace {

[[noreturn]] void refuse(std::string_view option, std::string_view text, std::string_view remedy) {
  throw UsageError(std::string(option) + ": \"" + std::string(text) + "\" " + std::string(remedy));
}

std::optional<std::uint64_t> number(std::string_view text, int base) {
  std::uint64_t value = 0;
  const char* const end = text.data() + text.size();
  const auto [stop, error] = std::from_chars(text.data(), end, value, base);
  if (error != std::errc{} || stop != end) return std::nullopt;
  return value;
}

std::optional<std::uint16_t> portBase(std::string_view text) {
  const auto value = number(text, 16);
  if (value == 0x378U || value == 0x278U || value == 0x3BCU) {
    return static_cast<std::uint16_t>(*value);
  }
  return std::nullopt;
}

std::string knownChips() {
  std::string list;
  for (const std::string_view name : sim::chipTypeNames()) {
    list += (list.empty() ? "" : ", ") + std::string(name);
  }
  return list;
}

}  // namespace

sim::Model parseModel(std::string_view text) {
  if (text == "4") return sim::Model::kestrel4;
  if (text == "5") return sim::Model::kestrel5;
  if (text == "6") return sim::Model::kestrel6;
  refuse("--model", text, "is no board model; use 4, 5 or 6");
}

std::uint16_t parseLpt(std::string_view text) {
  if (const auto base = portBase(text)) return *base;
  refuse("--lpt", text, "is no port address; use 378, 278 or 3BC");
}

ChipChoice parseChip(std::string_view text) {
  const std::size_t equals = text.find('=');
  const std::string_view type = text.substr(0, equals);
  if (!sim::makeChip(type)) refuse("--chip", type, "is no known chip; use one of " + knownChips());
  if (equals == std::string_view::npos) return {.type = std::string(type), .file = {}};
  const std::string_view file = text.substr(equals + 1);
  if (file.empty()) refuse("--chip", text, "names no file after the equals sign");
  return {.type = std::string(type), .file = std::filesystem::path(file)};
}

int parseBoardVpp(std::string_view text) {
  if (text == "12.5") return 12'500;
  if (text == "21") return 21'000;
  if (text == "25") return 25'000;
  refuse("--board-vpp", text, "is no voltage of the board; use 12.5, 21 or 25");
}

Fault parseFault(std::string_view text) {
  using Kind = Fault::Kind;
  if (text == "empty") return {.kind = Kind::EmptySocket};
  const std::size_t colon = std::min(text.find(':'), text.size());
  const std::string_view kind = text.substr(0, colon);
  const std::string_view value = text.substr(std::min(colon + 1, text.size()));
  if (kind == "weak") {
    if (const auto address = number(value, 16)) return {.kind = Kind::WeakCell, .value = *address};
    refuse("--fault", text, "needs an address in hexadecimal, such as weak:1F00");
  }
  if (kind == "stuck") {
    const auto line = number(value, 10);
    if (line && *line <= 7) return {.kind = Kind::StuckDataLine, .value = *line};
    refuse("--fault", text, "needs a data line from 0 to 7, such as stuck:3");
  }
  if (kind == "unplug") {
    if (const auto accesses = number(value, 10)) return {.kind = Kind::Unplug, .value = *accesses};
    refuse("--fault", text, "needs a number of port accesses, such as unplug:5000");
  }
  refuse("--fault", text, "is no fault; use weak:ADDR, stuck:BIT, unplug:N or empty");
}

ports::PortChoice parsePort(std::string_view text) {
  try {
    return ports::parsePortChoice(text);
  } catch (const std::invalid_argument& error) {
    throw UsageError(std::string("--port: ") + error.what());
  }
}

std::int64_t parseCountNs(std::string_view text) {
  constexpr std::uint64_t kMostNs = 1'000'000;  // a default 2764 pulse of 40 s is beyond all use
  const auto value = number(text, 10);
  if (value && *value >= 1 && *value <= kMostNs) return static_cast<std::int64_t>(*value);
  refuse("--count-ns", text, "is no count length; use 1 to 1000000 nanoseconds (default 25)");
}

Algorithms parseAlgorithms(std::string_view text) {
  if (text == "classic") return Algorithms::Classic;
  if (text == "datasheet") return Algorithms::DataSheet;
  refuse("--algorithms", text, "is no way to work on a chip; use classic or datasheet");
}

}  // namespace kestrel::launch
