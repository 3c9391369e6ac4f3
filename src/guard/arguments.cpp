#include "guard/arguments.h"

#include <charconv>

namespace kestrel::guard {
namespace {

template <typename Number>
bool read(std::string_view word, Number& number, int base) {
  const char* const end = word.data() + word.size();
  const auto [stop, error] = std::from_chars(word.data(), end, number, base);
  return error == std::errc{} && stop == end;
}

bool readWay(std::span<const char* const> words, Arguments& arguments) {
  const std::string_view way = words[0];
  if (way == "ppdev") return words.size() == 1;
  arguments.way = Arguments::Way::Direct;
  return way == "direct" && words.size() == 2 && read(words[1], arguments.address, 16);
}

}  // namespace

std::optional<Arguments> readArguments(std::span<const char* const> words) {
  Arguments arguments;
  if (words.size() < 4 || !read(words[0], arguments.link, 10) ||
      !read(words[1], arguments.memory, 10) || !read(words[2], arguments.port, 10) ||
      !readWay(words.subspan(3), arguments)) {
    return std::nullopt;
  }
  return arguments;
}

}  // namespace kestrel::guard
