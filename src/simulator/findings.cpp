#include "simulator/findings.h"

namespace kestrel::sim {

void Findings::report(FindingKind kind, std::string_view text, Nanoseconds now) {
  for (Finding& finding : list_) {
    if (finding.kind == kind && finding.text == text) {
      ++finding.count;
      return;
    }
  }
  list_.push_back({.kind = kind, .text = std::string(text), .firstAt = now, .count = 1});
}

std::uint64_t Findings::count(FindingKind kind) const {
  std::uint64_t sum = 0;
  for (const Finding& finding : list_) {
    if (finding.kind == kind) sum += finding.count;
  }
  return sum;
}

}  // namespace kestrel::sim
