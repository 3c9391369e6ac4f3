#include "cli/image_commands.h"

#include <algorithm>
#include <array>
#include <iomanip>
#include <iostream>
#include <span>

#include "cli/exit_status.h"
#include "cli/json_lines.h"
#include "images/changes.h"
#include "images/identity.h"
#include "images/image_file.h"
#include "platform/atomic_file.h"
#include "platform/file_names.h"
#include "platform/polled_io.h"

namespace kestrel::cli {
namespace {

using images::Bytes;
using Words = std::span<const std::string>;

/// What stands behind the operation's name, and the image of -i.
struct Request {
  Words words;
  Bytes image;
};

Bytes rawFile(const std::string& name) { return readWholeFile(name, images::kMostImageBytes); }

/// The range that a word names; without the word the whole image.
images::Range rangeOr(const Request& request, std::size_t index) {
  return index < request.words.size() ? images::parseRange(request.words[index])
                                      : images::wholeOf(request.image);
}

std::uint8_t byteOf(std::string_view text) {
  const std::uint32_t value = images::parseAddress(text);
  if (value > 0xFF)
    throw images::ImageError("\"" + std::string(text) + "\" is no byte; use 0 to FF");
  return static_cast<std::uint8_t>(value);
}

Bytes fill(const Request& r) {
  Bytes pattern;
  for (const std::string& word : r.words.subspan(1)) pattern.push_back(byteOf(word));
  return images::fillRange(r.image, images::parseRange(r.words[0]), pattern);
}

Bytes copy(const Request& r) {
  return images::copyRange(r.image, images::parseRange(r.words[0]),
                           images::parseAddress(r.words[1]));
}

Bytes swap(const Request& r) {
  const images::Range range = rangeOr(r, 0);
  return images::swapWordBytes(r.image, range);
}

Bytes reverse(const Request& r) {
  const images::Range range = rangeOr(r, 0);
  return images::reverseBits(r.image, range);
}

/// The word is one of two; true for the first.
bool isFirst(const std::string& word, const char* first, const char* second) {
  if (word == first || word == second) return word == first;
  throw images::ImageError("\"" + word + "\" is neither " + first + " nor " + second);
}

Bytes split(const Request& r) {
  return images::splitLane(
      r.image, isFirst(r.words[0], "even", "odd") ? images::Lane::Even : images::Lane::Odd);
}

Bytes join(const Request& r) { return images::joinLanes(rawFile(r.words[0]), rawFile(r.words[1])); }

Bytes halve(const Request& r) {
  return images::halve(r.image,
                       isFirst(r.words[0], "low", "high") ? images::Half::Low : images::Half::High);
}

Bytes twice(const Request& r) { return images::twice(r.image); }

Bytes checksum(const Request& r) {
  const bool isLittle = r.words.size() < 4 || isFirst(r.words[3], "le", "be");
  return images::putChecksum(
      r.image, images::checksumNamed(r.words[0]), images::parseRange(r.words[1]),
      images::parseAddress(r.words[2]),
      isLittle ? images::ByteOrder::LittleEndian : images::ByteOrder::BigEndian);
}

Bytes insert(const Request& r) {
  return images::insertAt(r.image, rawFile(r.words[0]), images::parseAddress(r.words[1]));
}

Bytes convert(const Request& r) { return r.image; }

struct Operation {
  const char* name;
  const char* words;  ///< what it wants behind its name
  std::size_t least;
  std::size_t most;
  Bytes (*change)(const Request&);
  bool takesInput = true;
};

// clang-format off
constexpr std::array<Operation, 11> kOperations{{
    {"fill",     "FROM-TO BYTE...",                           2, 65, fill},
    {"copy",     "FROM-TO ADDRESS",                           2, 2,  copy},
    {"swap",     "[FROM-TO]",                                 0, 1,  swap},
    {"reverse",  "[FROM-TO]",                                 0, 1,  reverse},
    {"split",    "even|odd",                                  1, 1,  split},
    {"join",     "EVENFILE ODDFILE",                          2, 2,  join, false},
    {"halve",    "low|high",                                  1, 1,  halve},
    {"double",   "",                                          0, 0,  twice},
    {"checksum", "sum|crc16|crc32 FROM-TO ADDRESS [le|be]",   3, 4,  checksum},
    {"insert",   "FILE ADDRESS",                              2, 2,  insert},
    {"convert",  "",                                          0, 0,  convert},
}};
// clang-format on

const Operation& operationNamed(const std::string& name) {
  const auto found =
      std::ranges::find_if(kOperations, [&](const auto& o) { return o.name == name; });
  if (found != kOperations.end()) return *found;
  std::string names = "info";
  for (const Operation& operation : kOperations) names += std::string(", ") + operation.name;
  throw launch::UsageError("image: \"" + name + "\" is no operation; use one of " + names);
}

void checkWords(const Operation& operation, const Arguments& a, std::size_t count) {
  const std::string name = std::string("image ") + operation.name;
  if (count < operation.least || count > operation.most) {
    const std::string words = operation.words;
    throw launch::UsageError(name + (words.empty() ? " takes no words" : " wants " + words));
  }
  if (!a.saveFile) throw launch::UsageError(name + ": -o FILE is missing, the file to write");
  if (operation.takesInput != a.codeFile.has_value()) {
    throw launch::UsageError(name + (operation.takesInput
                                         ? ": -i FILE is missing, the file to change"
                                         : " takes its two files and no -i"));
  }
}

/// The log's place: standard error where the other is a file's.
std::ostream& talk(const Arguments& a) { return a.saveFile ? std::cerr : std::cout; }

Bytes imageOf(const Arguments& a) {
  const std::string& name = *a.codeFile;
  if (!a.image.isImport()) {
    Bytes bytes = rawFile(name);
    const std::string hint = images::hintForRaw(bytes);
    if (!hint.empty()) std::cerr << "kestrel-cli: " << shownName(name) << ": " << hint << '\n';
    return bytes;
  }
  const images::Records records = images::readImageFile(name, a.image.formatToRead());
  if (!a.quiet) talk(a) << shownName(name) << ": " << images::describe(records) << '\n';
  return images::place(records, a.image.placement, 0);
}

void printResult(const Arguments& a, const Bytes& image) {
  const images::Identity identity = images::identify(image);
  if (a.json) {
    Json line = jsonEvent("image");
    line["file"] = *a.saveFile;
    line.update(jsonOf(identity));
    printJson(std::cout, line);
  } else if (!a.quiet) {
    talk(a) << shownName(*a.saveFile) << ": " << identity.bytes << " bytes, sum "
            << images::addressText(identity.sum) << ", CRC-32 "
            << images::addressText(identity.crc32) << '\n';
  }
}

void printInfo(const std::string& name, const images::Records& records,
               const images::Identity& identity) {
  std::cout << "File:       " << shownName(name) << '\n'
            << "Format:     " << images::describe(records) << '\n'
            << "Size:       " << identity.bytes << " bytes\n"
            << "Sum:        " << images::addressText(identity.sum) << '\n'
            << "CRC-32:     " << std::hex << std::uppercase << std::setfill('0') << std::setw(8)
            << identity.crc32 << std::dec << '\n'
            << "SHA-256:    " << identity.sha256 << '\n'
            << "Blank:      " << std::fixed << std::setprecision(1)
            << images::blankPercent(identity) << " %\n";
  for (const std::string& sentence : identity.looksLike) {
    std::cout << "Looks like: " << shownName(sentence) << '\n';
  }
}

// A file is described by what it looks like unless the format is said; records wherever they lie.
int printAbout(const Arguments& a, const std::string& name) {
  const images::Format* const format = a.image.format ? a.image.formatToRead() : nullptr;
  const images::Records records = images::readImageFile(name, format);
  images::Placement placement = a.image.placement;
  if (!placement.at) placement.at = 0;
  const images::Identity identity = images::identify(images::place(records, placement, 0));
  if (!a.json) {
    printInfo(name, records, identity);
    return kDone;
  }
  Json line = jsonEvent("image");
  line["file"] = name;
  line.update(jsonOf(records));
  line.update(jsonOf(identity));
  printJson(std::cout, line);
  return kDone;
}

int run(const Arguments& a) {
  const Words words(a.words);
  if (words.front() == "info") {
    if (words.size() != 2) throw launch::UsageError("image info wants the name of one file");
    return printAbout(a, words[1] == "-" ? kStandardInput : words[1]);
  }
  const Operation& operation = operationNamed(words.front());
  checkWords(operation, a, words.size() - 1);
  const Bytes image = operation.change(
      {.words = words.subspan(1), .image = operation.takesInput ? imageOf(a) : Bytes()});
  const images::Placement placement = a.codeFile ? images::Placement{} : a.image.placement;
  writeFileAtomically(*a.saveFile,
                      images::exported(image, placement, a.image.formatToWrite(*a.saveFile)));
  printResult(a, image);
  return kDone;
}

}  // namespace

int changeImage(const Arguments& arguments) {
  try {
    return run(arguments);
  } catch (const images::ImageError& error) {
    throw launch::UsageError("image " + arguments.words.front() + ": " + error.what());
  }
}

}  // namespace kestrel::cli
