#include "app/launch/option_values.h"

#include <gtest/gtest.h>

#include "app/launch/program_folders.h"
#include "support/temporary_folder.h"

namespace kestrel {
namespace {

TEST(OptionValues, areReadInTheirOwnBase) {
  EXPECT_EQ(launch::parseChip("27C256=a=b.bin").file, "a=b.bin");
  EXPECT_EQ(launch::parseFault("weak:1F00").value, 0x1F00U);
  EXPECT_EQ(launch::parseFault("unplug:1000").value, 1000U);
  EXPECT_EQ(launch::parseLpt("3bc"), 0x3BC);
  EXPECT_EQ(launch::parsePort("278=/dev/parport1").device, "/dev/parport1");
  EXPECT_EQ(launch::parseBoardVpp("12.5"), 12'500);
}

TEST(OptionValues, thatMeanNothingAreRefused) {
  const auto refuses = [](const auto& parse, std::initializer_list<const char*> values) {
    for (const char* const wrong : values)
      EXPECT_THROW((void)parse(wrong), launch::UsageError) << wrong;
  };
  refuses(launch::parseChip, {"", "27C256=", "27C999"});
  refuses(launch::parseFault, {"", "weak", "weak:", "weak:xyz", "stuck:8", "stuck:-1", "unplug:1F",
                               "unplug:99999999999999999999", "fire:1"});
  refuses(launch::parseLpt, {"379"});
  refuses(launch::parsePort, {"278", "278=", "=x", "e010=/dev/parport0"});
  refuses(launch::parseBoardVpp, {"13"});
  refuses(launch::parseModel, {"7"});
  refuses(launch::parseCountNs, {"0"});
}

TEST(OptionValues, thatContradictEachOtherAreRefused) {
  launch::LaunchOptions options;
  options.chip = launch::ChipChoice{.type = "27C256", .file = {}};
  options.simulate = true;
  options.boardVppMillivolts = 21'000;
  EXPECT_THROW(launch::checkTogether(options), launch::UsageError);
  options.model = sim::Model::kestrel4;
  EXPECT_NO_THROW(launch::checkTogether(options));
  options.ports.push_back({.base = 0x378, .device = "/dev/parport0"});
  EXPECT_THROW(launch::checkTogether(options), launch::UsageError);
}

TEST(ProgramFolders, everySimulatedBoardHasItsOwn) {
  const test::TemporaryFolder user;
  ASSERT_EQ(::setenv("XDG_CONFIG_HOME", user.path().c_str(), 1), 0);
  launch::LaunchOptions options;
  EXPECT_EQ(launch::programFolders(options).configuration, user / "kestrel");
  options.simulate = true;
  EXPECT_EQ(launch::programFolders(options).configuration,
            user / "kestrel" / "simulator" / "5-378");
  options.model = sim::Model::kestrel4;
  options.lpt = std::uint16_t{0x3BC};
  EXPECT_EQ(launch::programFolders(options).configuration,
            user / "kestrel" / "simulator" / "4-3BC");
  options.home = user / "elsewhere";
  EXPECT_EQ(launch::programFolders(options).configuration, user / "elsewhere");
  EXPECT_TRUE(std::filesystem::exists(launch::programFolders({}).data / "sounds" / "init.wav"));
}

}  // namespace
}  // namespace kestrel
