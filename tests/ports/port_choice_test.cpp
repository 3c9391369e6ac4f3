#include "hardware/ports/port_choice.h"

#include <gtest/gtest.h>

#include <stdexcept>

namespace kestrel {
namespace {

TEST(PortChoice, takesADeviceFileOrAnAddress) {
  const PortChoice file = parsePortChoice("3bc=/dev/parport1");
  EXPECT_EQ(file.base, 0x3BC);
  EXPECT_EQ(file.device, "/dev/parport1");
  EXPECT_FALSE(file.isDirect());
  EXPECT_EQ(parsePortChoice("378=parport2").device, "/dev/parport2");
  const PortChoice direct = parsePortChoice("278=0xD010");
  EXPECT_TRUE(direct.isDirect());
  EXPECT_EQ(direct.address, 0xD010);
}

std::string refusalOf(std::string_view text) {
  try {
    static_cast<void>(parsePortChoice(text));
  } catch (const std::invalid_argument& error) {
    return error.what();
  }
  return "accepted";
}

TEST(PortChoice, saysWhatIsWrong) {
  EXPECT_EQ(refusalOf("378"), "a port is given as BASE=DEVICE, such as 378=/dev/parport1");
  EXPECT_EQ(refusalOf("379=/dev/parport0"), "the port must be 378, 278 or 3BC, not \"379\"");
  EXPECT_EQ(refusalOf("=/dev/parport0"), "the port must be 378, 278 or 3BC, not \"\"");
  EXPECT_EQ(refusalOf("1378=x"), "the port must be 378, 278 or 3BC, not \"1378\"");
  EXPECT_EQ(refusalOf("378=LPT1"), "\"LPT1\" is neither a device file nor an address with 0x");
  for (const char* address : {"378=0x", "378=0x60", "378=0xFFFD", "378=0x1D010", "378=0xD01G"}) {
    EXPECT_TRUE(refusalOf(address).starts_with("no port can be at the address")) << address;
  }
}

}  // namespace
}  // namespace kestrel
