#include <gtest/gtest.h>

#include <algorithm>

#include "cli/run_program.h"

namespace kestrel::test {
namespace {

class DeviceName : public testing::Test {
 protected:
  /// The device that the form logs for a text; empty when it is refused.
  std::string selected(const std::string& text) {
    last = work.simulate({"save-setup", "1", "x", "-d", text});
    for (const std::string& message : last.log()) {
      const std::size_t end = message.find(" was Selected");
      if (message.starts_with("Device ") && end != std::string::npos) {
        return message.substr(7, end - 7);
      }
    }
    return {};
  }
  void expectRefused(const std::string& text, const Words& parts) {
    EXPECT_EQ(selected(text), "") << text;
    EXPECT_EQ(last.status, 2) << text;
    EXPECT_EQ(last.out, "") << "the board is touched before the name is understood: " << text;
    for (const std::string& part : parts) {
      EXPECT_TRUE(last.told(part)) << text << ": " << part << " in " << last.err;
    }
  }

  Workplace work;
  Outcome last;
};

TEST_F(DeviceName, isTheFullNameAWordOfItOrAPartThatFitsOneDevice) {
  EXPECT_EQ(selected("Eprom 27C256"), "Eprom 27C256");
  EXPECT_EQ(selected("eprom 27c256"), "Eprom 27C256");
  EXPECT_EQ(selected("27C256"), "Eprom 27C256");
  EXPECT_EQ(selected("xicor"), "Eeprom XICOR X28C256");
  EXPECT_EQ(selected("28C256"), "Eeprom XICOR X28C256") << "the other two are not offered";
  EXPECT_EQ(selected("C16 Ser"), "Eeprom 24C16 Serial (8 pins)");
}

TEST_F(DeviceName, isAWordBeforeItIsAPart) {
  EXPECT_EQ(selected("2732"), "Eprom 2732") << "2732A and 2732B have it as a part";
  EXPECT_EQ(selected("27C080"), "Eprom 27C080") << "the OTP part is not offered";
}

TEST_F(DeviceName, thatFitsSeveralIsRefusedWithTheCandidates) {
  expectRefused("273", {"Eprom 2732A\"", "Eprom 2732B\"", "Eprom 2732\"", "more of the name"});
  expectRefused("Serial", {"24C08", "24C16", "24C32"});
  EXPECT_FALSE(last.told("24C256")) << "it is not offered, so it is no candidate";
}

TEST_F(DeviceName, ofADeviceThatIsNotAvailableIsRefusedAsSuch) {
  expectRefused("24C256", {"N/A", "Eeprom 24C256 Serial (8 pins)", "kestrel-cli devices"});
  expectRefused("AT29C256", {"N/A", "Flash Atmel AT29C256"});
  expectRefused("Eprom 27C080 OTP", {"N/A"});
}

TEST_F(DeviceName, thatFitsNothingIsRefusedWithTheNearest) {
  expectRefused("27C257", {"fits no device", "Eprom 27C256", "kestrel-cli devices"});
  expectRefused("toaster", {"fits no device", "kestrel-cli devices"});
}

TEST(Devices, areListedWithoutStartingUp) {
  const Workplace work;
  const Outcome run = work.run({"devices"});
  EXPECT_EQ(run.status, 0);
  EXPECT_EQ(std::count(run.out.begin(), run.out.end(), '\n'), 40);
  EXPECT_NE(run.out.find("\nEprom 27C256                             32 KB   12.5 V\n"),
            std::string::npos)
      << run.out;
  EXPECT_NE(run.out.find("\nN/A - uC Atmel AT90S2313 Micro "), std::string::npos);
  EXPECT_TRUE(run.log().empty());
}

}  // namespace
}  // namespace kestrel::test
