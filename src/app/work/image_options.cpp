#include "app/work/image_options.h"

#include "app/launch/option_values.h"

namespace kestrel::work {
namespace {

constexpr const char* kAuto = "auto";

/// Runs the steps; what is wrong with a value is reported with the option's name.
template <typename Steps>
auto asOption(const char* option, Steps steps) {
  try {
    return steps();
  } catch (const images::ImageError& error) {
    throw launch::UsageError(std::string(option) + ": " + error.what());
  }
}

std::string checkedFormat(const char* option, const std::string& text) {
  if (text != kAuto) (void)asOption(option, [&] { return images::formatNamed(text).id; });
  return text;
}

}  // namespace

bool ImageOptions::isImport() const { return format || placement.at || placement.range; }

bool ImageOptions::isExport(bool hasInput) const {
  return format || saveFormat || (!hasInput && (placement.at || placement.range));
}

const images::Format* ImageOptions::formatToRead() const {
  if (!format) return &images::formatOf(images::FormatId::Binary);
  return *format == kAuto ? nullptr : &images::formatNamed(*format);
}

const images::Format& ImageOptions::formatToWrite(std::string_view fileName) const {
  const std::optional<std::string>& name = saveFormat ? saveFormat : format;
  if (!name) return images::formatOf(images::FormatId::Binary);
  return *name == kAuto ? images::formatByName(fileName) : images::formatNamed(*name);
}

void setFormat(ImageOptions& options, const std::string& text) {
  options.format = checkedFormat("--format", text);
}

void setSaveFormat(ImageOptions& options, const std::string& text) {
  options.saveFormat = checkedFormat("--save-format", text);
}

void setAt(ImageOptions& options, const std::string& text) {
  options.placement.at = asOption("--at", [&] { return images::parseAddress(text); });
}

void setRange(ImageOptions& options, const std::string& text) {
  options.placement.range = asOption("--range", [&] { return images::parseRange(text); });
}

}  // namespace kestrel::work
