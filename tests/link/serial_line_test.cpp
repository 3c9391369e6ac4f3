#include "link/serial_line.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <stdlib.h>
#include <termios.h>
#include <unistd.h>

#include <array>

#include "link/link_error.h"

namespace kestrel::link {
namespace {

using std::chrono::milliseconds;

/// A pseudo terminal: what it is called, and the end of the adapter.
struct Terminal {
  Terminal() : end(::posix_openpt(O_RDWR | O_NOCTTY)) {
    EXPECT_EQ(::grantpt(end) | ::unlockpt(end), 0);
    name = ::ptsname(end);
  }
  ~Terminal() { unplug(); }
  void unplug() {
    if (end >= 0) ::close(end);
    end = -1;
  }
  int end;
  std::string name;
};

LinkProblem problemOfOpening(const std::string& name) {
  try {
    const SerialLine line(name);
  } catch (const LinkError& error) {
    EXPECT_NE(std::string(error.what()).find(name), std::string::npos);
    return error.problem();
  }
  ADD_FAILURE() << "no LinkError";
  return {};
}

TEST(SerialLine, carriesEveryByteUnchanged) {
  Terminal terminal;
  SerialLine line(terminal.name);
  std::array<std::uint8_t, 256> all{};
  for (unsigned i = 0; i < all.size(); ++i) all.at(i) = static_cast<std::uint8_t>(i);
  std::array<std::uint8_t, 256> got{};
  line.write(all);
  EXPECT_EQ(::read(terminal.end, got.data(), got.size()), 256);
  EXPECT_EQ(got, all);
  got.fill(0);
  ASSERT_EQ(::write(terminal.end, all.data(), all.size()), 256);
  EXPECT_EQ(line.read(got, milliseconds(1000)), 256U);
  EXPECT_EQ(got, all);
}

// Modem lines, which the adapter's cable has not, neither hold a byte up nor end the line.
TEST(SerialLine, isSetTo1MbaudWithoutModemLines) {
  Terminal terminal;
  termios settings{};
  ASSERT_EQ(::tcgetattr(terminal.end, &settings), 0);
  settings.c_cflag |= HUPCL | CRTSCTS | CSTOPB;
  ASSERT_EQ(::tcsetattr(terminal.end, TCSANOW, &settings), 0);
  const SerialLine line(terminal.name);
  ASSERT_EQ(::tcgetattr(terminal.end, &settings), 0);
  EXPECT_EQ(settings.c_cflag & (CLOCAL | CREAD | HUPCL | CRTSCTS | CSTOPB | CSIZE | PARENB),
            static_cast<tcflag_t>(CLOCAL | CREAD | CS8));
  EXPECT_EQ(::cfgetospeed(&settings), static_cast<speed_t>(B1000000));
}

TEST(SerialLine, tellsWhyItCannotBeTaken) {
  EXPECT_EQ(problemOfOpening("/dev/ttyNONE"), LinkProblem::NoDevice);
  EXPECT_EQ(problemOfOpening("/dev/null"), LinkProblem::NotASerialLine);
  Terminal terminal;
  {
    const SerialLine first(terminal.name);
    EXPECT_EQ(problemOfOpening(terminal.name), LinkProblem::Taken);
  }
  const SerialLine again(terminal.name);
}

TEST(SerialLine, noticesThatTheAdapterIsGone) {
  Terminal terminal;
  SerialLine line(terminal.name);
  std::array<std::uint8_t, 4> bytes{};
  EXPECT_EQ(line.read(bytes, milliseconds(1)), 0U);
  terminal.unplug();
  try {
    static_cast<void>(line.read(bytes, milliseconds(1000)));
    FAIL();
  } catch (const LinkError& error) {
    EXPECT_EQ(error.problem(), LinkProblem::Gone);
  }
}

}  // namespace
}  // namespace kestrel::link
