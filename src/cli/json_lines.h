#pragma once

#include <nlohmann/json.hpp>
#include <ostream>

#include "images/compare.h"
#include "images/identity.h"
#include "images/record_reader.h"

namespace kestrel::cli {

using Json = nlohmann::ordered_json;

/// The version of what --json prints, the first member of each line. It counts up when a member
/// goes or changes its meaning; new members come without.
inline constexpr int kJsonVersion = 1;

/// An object with version and event in front.
[[nodiscard]] Json jsonEvent(const char* event);

/// One object, one line, at once. A byte that is no UTF-8 is printed as the replacement character.
void printJson(std::ostream& out, const Json& object);

[[nodiscard]] Json jsonOf(const images::Identity& identity);
[[nodiscard]] Json jsonOf(const images::Records& records);
[[nodiscard]] Json jsonOf(const images::Comparison& comparison);
[[nodiscard]] Json jsonOf(const std::vector<images::Range>& ranges);

}  // namespace kestrel::cli
