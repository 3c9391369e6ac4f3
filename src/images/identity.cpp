#include "images/identity.h"

#include <algorithm>
#include <cmath>

#include "images/image_file.h"

namespace kestrel::images {
namespace {

constexpr std::uint8_t kBlank = 0xFF;
constexpr std::size_t kLeastText = 8;  // shorter runs are found in any code
constexpr std::size_t kShownTexts = 4;
constexpr std::size_t kMostOfAText = 60;
constexpr std::size_t kSmallestPeriod = 256;

bool isPrintable(std::uint8_t byte) { return byte >= 0x20 && byte < 0x7F; }

bool repeatsAfter(ImageSpan image, std::size_t period) {
  return std::equal(image.begin() + static_cast<std::ptrdiff_t>(period), image.end(),
                    image.begin());
}

/// Halved for as long as both halves are the same.
std::size_t periodOf(ImageSpan image) {
  std::size_t period = image.size();
  while (period % 2 == 0 && period / 2 >= kSmallestPeriod &&
         repeatsAfter(image.first(period), period / 2)) {
    period /= 2;
  }
  return period == image.size() ? 0 : period;
}

void noteUniform(ImageSpan image, std::vector<std::string>& notes) {
  if (isAll(image, kBlank)) {
    notes.emplace_back("a blank chip: every byte is FFh");
  } else if (isAll(image, 0)) {
    notes.emplace_back("every byte is 00h: a chip of another kind, or no contact");
  } else if (isAll(image.subspan(image.size() / 2), kBlank)) {
    notes.emplace_back("the upper half is blank");
  }
}

void notePeriod(const Identity& identity, std::vector<std::string>& notes) {
  if (identity.period == 0) return;
  notes.push_back("the same " + std::to_string(identity.period) + " bytes " +
                  std::to_string(identity.bytes / identity.period) +
                  " times: the image of a smaller chip");
}

}  // namespace

bool isAll(ImageSpan image, std::uint8_t value) {
  return std::ranges::all_of(image, [=](std::uint8_t byte) { return byte == value; });
}

double blankPercent(const Identity& identity) {
  if (identity.bytes == 0) return 0;
  const double tenths = std::floor(1000.0 * static_cast<double>(identity.blankBytes) /
                                   static_cast<double>(identity.bytes));
  return tenths / 10;
}

std::vector<FoundText> findTexts(ImageSpan image, std::size_t most) {
  std::vector<FoundText> found;
  for (std::size_t i = 0; i < image.size();) {
    std::size_t end = i;
    while (end < image.size() && isPrintable(image[end])) ++end;
    const std::string text(image.begin() + static_cast<std::ptrdiff_t>(i),
                           image.begin() + static_cast<std::ptrdiff_t>(end));
    const bool isWorthIt =
        text.size() >= kLeastText && text.find_first_not_of(text.front()) != std::string::npos;
    if (isWorthIt) found.push_back({.address = static_cast<std::uint32_t>(i), .text = text});
    i = end + 1;
  }
  std::ranges::stable_sort(found, std::ranges::greater{},
                           [](const FoundText& f) { return f.text.size(); });
  if (found.size() > most) found.resize(most);
  std::ranges::sort(found, {}, &FoundText::address);
  return found;
}

Identity identify(ImageSpan image) {
  Identity identity{.bytes = image.size(),
                    .sum = sum16(image),
                    .crc32 = crc32(image),
                    .sha256 = sha256(image),
                    .blankBytes = static_cast<std::size_t>(std::ranges::count(image, kBlank)),
                    .period = periodOf(image)};
  if (image.empty()) return identity;
  noteUniform(image, identity.looksLike);
  notePeriod(identity, identity.looksLike);
  const Format& look = formatByLook(image);
  if (look.id != FormatId::Binary) {
    identity.looksLike.push_back(std::string(look.title) + " records as text");
  }
  for (const FoundText& found : findTexts(image, kShownTexts)) {
    identity.looksLike.push_back("text at " + addressText(found.address) + ": \"" +
                                 found.text.substr(0, kMostOfAText) + "\"");
  }
  return identity;
}

}  // namespace kestrel::images
