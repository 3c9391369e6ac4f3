#include <algorithm>
#include <charconv>
#include <limits>

#include "images/serial_numbers.h"

namespace kestrel::images {
namespace {

constexpr std::size_t kMostBinary = 8;
constexpr std::size_t kMostAscii = 64;

std::uint64_t decimal(std::string_view text) {
  std::uint64_t value = 0;
  const char* const end = text.data() + text.size();
  const auto [stop, error] = std::from_chars(text.data(), end, value);
  if (error == std::errc{} && stop == end) return value;
  throw ImageError("\"" + std::string(text) + "\" is no decimal number of at most 20 digits");
}

bool isNumber(std::string_view text) {
  return !text.empty() && std::ranges::all_of(text, [](char c) { return c >= '0' && c <= '9'; });
}

template <typename Value>
Value oneOf(std::string_view text, const char* first, Value a, const char* second, Value b) {
  if (text == first) return a;
  if (text == second) return b;
  throw ImageError("\"" + std::string(text) + "\" is neither " + first + " nor " + second);
}

void setItem(SerialPlan& plan, std::string_view key, std::string_view value) {
  if (key == "at") {
    plan.at = parseAddress(value);
  } else if (key == "bytes") {
    plan.bytes = decimal(value);
  } else if (key == "start") {
    plan.start = decimal(value);
  } else if (key == "step") {
    plan.step = decimal(value);
  } else if (key == "order") {
    plan.order = oneOf(value, "le", ByteOrder::LittleEndian, "be", ByteOrder::BigEndian);
  } else if (key == "form") {
    plan.form = oneOf(value, "binary", SerialPlan::Form::Binary, "ascii", SerialPlan::Form::Ascii);
  } else if (key == "list") {
    plan.list = value;
  } else if (key == "counter") {
    plan.counter = value;
  } else {
    throw ImageError("\"" + std::string(key) +
                     "\" is no item; use at, bytes, start, step, order, form, list and counter");
  }
}

void check(const SerialPlan& plan) {
  const std::size_t most = plan.form == SerialPlan::Form::Binary ? kMostBinary : kMostAscii;
  if (plan.bytes == 0 || plan.bytes > most) {
    throw ImageError("bytes=" + std::to_string(plan.bytes) + " is out of range; use 1 to " +
                     std::to_string(most));
  }
  if (plan.step == 0) throw ImageError("step=0 gives every chip the same number; use 1 or more");
  if (plan.counter.empty()) throw ImageError("counter= wants the name of a file");
}

[[noreturn]] void refuseWidth(const SerialPlan& plan, std::string_view number) {
  throw ImageError("the serial number " + std::string(number) + " does not fit into " +
                   std::to_string(plan.bytes) + " bytes");
}

Bytes binaryBytes(const SerialPlan& plan, std::string_view number) {
  const std::uint64_t value = decimal(number);
  const bool fits = plan.bytes >= kMostBinary || value >> (8 * plan.bytes) == 0;
  if (!fits) refuseWidth(plan, number);
  Bytes bytes;
  for (std::size_t i = 0; i < plan.bytes; ++i) {
    bytes.push_back(static_cast<std::uint8_t>(value >> (8 * i)));
  }
  if (plan.order == ByteOrder::BigEndian) std::ranges::reverse(bytes);
  return bytes;
}

}  // namespace

SerialPlan parseSerialPlan(std::string_view text) {
  SerialPlan plan;
  bool hasAddress = false;
  while (!text.empty()) {
    const std::string_view item = text.substr(0, text.find(','));
    text.remove_prefix(std::min(text.size(), item.size() + 1));
    const std::size_t equals = item.find('=');
    if (equals == std::string_view::npos) {
      throw ImageError("\"" + std::string(item) + "\" is no item; use key=value, commas between");
    }
    setItem(plan, item.substr(0, equals), item.substr(equals + 1));
    hasAddress = hasAddress || item.starts_with("at=");
  }
  if (!hasAddress) throw ImageError("at=ADDRESS is missing: where the number stands in the chip");
  check(plan);
  return plan;
}

std::string textOf(const SerialPlan& plan) {
  std::string text = "at=" + addressText(plan.at) + ",bytes=" + std::to_string(plan.bytes);
  if (plan.list.empty()) {
    text += ",start=" + std::to_string(plan.start) + ",step=" + std::to_string(plan.step);
  }
  text += plan.order == ByteOrder::LittleEndian ? ",order=le" : ",order=be";
  text += plan.form == SerialPlan::Form::Binary ? ",form=binary" : ",form=ascii";
  return plan.list.empty() ? text : text + ",list=" + plan.list.string();
}

// Digits are filled up with zeros in front, a text with blanks behind.
void checkInside(const SerialPlan& plan, std::size_t chipBytes) {
  if (std::size_t{plan.at} + plan.bytes <= chipBytes) return;
  throw ImageError("the serial number at " + addressText(plan.at) + " and its " +
                   std::to_string(plan.bytes) + " bytes are not in the chip");
}

Bytes serialBytes(const SerialPlan& plan, std::string_view number) {
  if (plan.form == SerialPlan::Form::Binary) return binaryBytes(plan, number);
  if (number.size() > plan.bytes) refuseWidth(plan, number);
  std::string text(number);
  const std::size_t missing = plan.bytes - text.size();
  if (isNumber(number)) {
    text.insert(0, missing, '0');
  } else {
    text.append(missing, ' ');
  }
  return {text.begin(), text.end()};
}

}  // namespace kestrel::images
