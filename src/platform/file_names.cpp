#include "platform/file_names.h"

#include <sys/stat.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <optional>

#include "platform/runtime_error.h"

namespace kestrel {
namespace fs = std::filesystem;
namespace {

constexpr int kMostLinks = 40;  // as many as the system follows

/// One character of a text: its code point and the bytes that it takes.
struct Character {
  char32_t code;
  std::size_t length;
};

constexpr Character kNoCharacter{.code = 0, .length = 0};

struct Lead {
  std::uint8_t mask, bits;
  std::size_t length;
  char32_t least;  ///< a smaller code in this many bytes is overlong, and invalid
};
constexpr std::array<Lead, 4> kLeads{{
    {.mask = 0x80, .bits = 0x00, .length = 1, .least = 0},
    {.mask = 0xE0, .bits = 0xC0, .length = 2, .least = 0x80},
    {.mask = 0xF0, .bits = 0xE0, .length = 3, .least = 0x800},
    {.mask = 0xF8, .bits = 0xF0, .length = 4, .least = 0x10000},
}};

std::uint8_t byteOf(char c) { return static_cast<std::uint8_t>(c); }

/// The first character of a text in UTF-8 (RFC 3629); kNoCharacter where there is none.
Character firstCharacter(std::string_view text) {
  const std::uint8_t first = byteOf(text.front());
  const auto* const lead =
      std::ranges::find_if(kLeads, [&](const Lead& l) { return (first & l.mask) == l.bits; });
  if (lead == kLeads.end() || text.size() < lead->length) return kNoCharacter;
  char32_t code = first & static_cast<std::uint8_t>(~lead->mask);
  for (const char c : text.substr(1, lead->length - 1)) {
    if ((byteOf(c) & 0xC0) != 0x80) return kNoCharacter;
    code = code << 6 | (byteOf(c) & 0x3FU);
  }
  const bool isSurrogate = code >= 0xD800 && code <= 0xDFFF;
  if (code < lead->least || code > 0x10FFFF || isSurrogate) return kNoCharacter;
  return {.code = code, .length = lead->length};
}

bool isHarmless(char32_t code) {
  struct Range {
    char32_t first, last;
  };
  // C0; DEL and C1 (a terminal takes U+009B for ESC [); line and paragraph separator with the
  // embeddings and overrides of direction; the isolates of direction.
  constexpr std::array<Range, 4> kHarmful{
      {{0x00, 0x1F}, {0x7F, 0x9F}, {0x2028, 0x202E}, {0x2066, 0x2069}}};
  return std::ranges::none_of(kHarmful,
                              [&](const Range& r) { return code >= r.first && code <= r.last; });
}

std::string escaped(char c) {
  constexpr std::string_view kDigits = "0123456789ABCDEF";
  switch (c) {
    case '\n':
      return "\\n";
    case '\r':
      return "\\r";
    case '\t':
      return "\\t";
    default:
      return {'\\', 'x', kDigits[byteOf(c) >> 4], kDigits[byteOf(c) & 0x0F]};
  }
}

/// True where ".." behind the name takes nothing but its last part away.
bool isRealFolder(const fs::path& name) {
  std::error_code error;
  return name.filename() != ".." &&
         fs::symlink_status(name, error).type() == fs::file_type::directory;
}

std::optional<struct stat> statusOf(const fs::path& name) {
  struct stat status {};
  if (::stat(name.c_str(), &status) != 0) return std::nullopt;
  return status;
}

/// Folders, pipes and devices too, which the standard library does not compare.
bool isOneObject(const std::optional<struct stat>& a, const std::optional<struct stat>& b) {
  return a && b && a->st_dev == b->st_dev && a->st_ino == b->st_ino;
}

}  // namespace

std::string shownName(std::string_view text) {
  const auto isPlain = [](char c) { return c >= ' ' && c <= '~'; };
  std::string shown;
  while (true) {
    const auto plain = std::ranges::find_if_not(text, isPlain) - text.begin();
    shown += text.substr(0, static_cast<std::size_t>(plain));
    text.remove_prefix(static_cast<std::size_t>(plain));
    if (text.empty()) return shown;
    const Character character = firstCharacter(text);
    const std::size_t length = std::max<std::size_t>(character.length, 1);
    if (character.length > 0 && isHarmless(character.code)) {
      shown += text.substr(0, length);
    } else {
      for (const char c : text.substr(0, length)) shown += escaped(c);
    }
    text.remove_prefix(length);
  }
}

fs::path fullName(const fs::path& name) {
  if (name.empty()) return name;
  std::error_code error;
  const fs::path whole = fs::absolute(name, error);
  if (error) throw FileError("find", name.string(), "the working folder is no longer there");
  fs::path full;
  for (const fs::path& part : whole) {
    if (part == ".." && isRealFolder(full)) {
      full = full.parent_path();
    } else if (part != ".") {
      full /= part;
    }
  }
  return full;
}

fs::path followLinks(fs::path name, std::error_code& error) {
  for (int links = 0; links <= kMostLinks; ++links) {
    const fs::path next = fs::read_symlink(name, error);
    const bool isEnd =
        error == std::errc::invalid_argument || error == std::errc::no_such_file_or_directory;
    if (isEnd) error.clear();
    if (isEnd) return name;
    if (error) return {};
    name = name.parent_path() / next;
  }
  error = std::make_error_code(std::errc::too_many_symbolic_link_levels);
  return {};
}

fs::path folderOf(const fs::path& name) {
  return name.has_parent_path() ? name.parent_path() : fs::path(".");
}

bool isSameFile(const fs::path& a, const fs::path& b) {
  const auto statusA = statusOf(a);
  const auto statusB = statusOf(b);
  if (statusA || statusB) return isOneObject(statusA, statusB);
  std::error_code error;
  const fs::path newA = followLinks(a, error);
  const fs::path newB = followLinks(b, error);
  return !newA.empty() && newA.filename() == newB.filename() &&
         isOneObject(statusOf(folderOf(newA)), statusOf(folderOf(newB)));
}

}  // namespace kestrel
