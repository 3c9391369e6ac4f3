// The whole program on a chip behind the emulated adapter.

#include <gtest/gtest.h>

#include <cstdlib>
#include <string_view>

#include "link/link_form.h"
#include "support/families.h"

namespace kestrel::test {
namespace {

/// One family a model; KESTREL_LINK_ALL=1 for every family.
std::vector<Family> families() {
  std::vector<Family> chosen;
  for (Family family : kFamilies) {
    const std::string_view code = family.code;
    const bool isShort = code == "P6" || code == "SC" || code == "P8";
    if (!isShort && std::getenv("KESTREL_LINK_ALL") == nullptr) continue;
    family.bytes = std::min(family.bytes, 256);
    chosen.push_back(family);
  }
  return chosen;
}

class ThroughTheAdapter : public testing::TestWithParam<Family> {};

TEST_P(ThroughTheAdapter, aChipIsProgrammedVerifiedAndReadWithTheTraceOfAnyPort) {
  const FamilyTrace linked = traceOf<LinkForm>(GetParam());
  const FamilyTrace simulated = traceOf<SimulatedForm>(GetParam());
  EXPECT_TRUE(linked.reading == simulated.reading);
  // CMOS EPROMs get pulses of some microseconds until they hold the byte. An adapter's are longer
  // by its slower accesses, so that a chip takes fewer of them.
  const std::string_view code = GetParam().code;
  const bool areRowsOfPulses = code.front() == 'P' && code >= "P3";
  EXPECT_TRUE(areRowsOfPulses || linked.programming == simulated.programming);
}

INSTANTIATE_TEST_SUITE_P(Families, ThroughTheAdapter, testing::ValuesIn(families()),
                         [](const auto& family) { return family.param.code; });

}  // namespace
}  // namespace kestrel::test
