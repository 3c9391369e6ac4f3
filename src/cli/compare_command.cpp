#include "cli/compare_command.h"

#include <algorithm>
#include <iostream>

#include "cli/exit_status.h"
#include "cli/session.h"
#include "images/changes.h"
#include "images/compare.h"

namespace kestrel::cli {
namespace {

/// The bytes of the file that belong into this chip.
images::Bytes imageForChip(Session& s) {
  const ProgrammerState& state = s.state();
  const images::Bytes file(state.CodeBuffer.begin(), state.CodeBuffer.begin() + state.CodeLength);
  if (s.controls().HiLow_button[1].value()) return images::splitLane(file, images::Lane::Odd);
  if (s.controls().HiLow_button[2].value()) return images::splitLane(file, images::Lane::Even);
  return file;
}

images::Bytes readChip(Session& s) {
  s.press(s.controls().Read_button, s.unless("compare", "not offered for this device"));
  const ProgrammerState& state = s.state();
  const std::int32_t size = std::min(state.CodeLength, state.DeviceSizeBytes);
  return {state.CodeBuffer.begin(), state.CodeBuffer.begin() + size};
}

void print(const images::Bytes& chip, const images::Bytes& image,
           const images::Comparison& comparison, std::ostream& out) {
  out << comparison.differentBytes << " of " << comparison.comparedBytes << " bytes differ, in "
      << comparison.ranges.size() << (comparison.ranges.size() == 1 ? " range" : " ranges") << '\n';
  for (const images::Range& range : comparison.ranges) {
    out << "  " << rangeText(range) << ' ' << images::rangeMeaning(chip, image, range) << '\n';
  }
  for (const images::Finding& finding : comparison.findings) out << finding.text << '\n';
  out << std::flush;
}

}  // namespace

void compareChip(Session& s) {
  if (s.state().CodeLength == 0 || !s.arguments().codeFile) {
    throw EarlyEnd(kBadUsage, "compare: there is nothing to compare with; add -i FILE");
  }
  const images::Bytes image = imageForChip(s);
  const images::Bytes chip = readChip(s);
  const images::Comparison comparison = images::compare(chip, image);
  if (s.json() != nullptr) {
    s.json()->difference(comparison);
  } else {
    print(chip, image, comparison, s.out());
  }
  if (!comparison.isEqual()) {
    throw EarlyEnd(kDiffers, "the chip differs from the file at " +
                                 images::addressText(comparison.ranges.front().first) + "h");
  }
}

}  // namespace kestrel::cli
