#include "link/serial_line.h"

#include <fcntl.h>
#include <stdlib.h>
#include <termios.h>
#include <unistd.h>

#include <array>
#include <filesystem>
#include <fstream>
#include <thread>

#include "link/link_failure.h"
#include "link/serial_devices.h"
#include "support/temporary_folder.h"

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

void expectRefused(const std::string& name, LinkProblem problem) {
  EXPECT_THAT([&] { SerialLine{name}; }, failsWith(problem));
  EXPECT_THAT([&] { SerialLine{name}; },
              testing::ThrowsMessage<LinkError>(testing::HasSubstr(name)));
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
  expectRefused("/dev/ttyNONE", LinkProblem::NoDevice);
  expectRefused("/dev/null", LinkProblem::NotASerialLine);
  Terminal terminal;
  {
    const SerialLine first(terminal.name);
    expectRefused(terminal.name, LinkProblem::Taken);
  }
  const SerialLine again(terminal.name);
}

TEST(SerialLine, noticesThatTheAdapterIsGone) {
  Terminal terminal;
  SerialLine line(terminal.name);
  std::array<std::uint8_t, 4> bytes{};
  EXPECT_EQ(line.read(bytes, milliseconds(1)), 0U);
  terminal.unplug();
  EXPECT_THAT([&] { (void)line.read(bytes, milliseconds(1000)); }, failsWith(LinkProblem::Gone));
}

// A stop: written while another thread waits for an answer, and answered at once.
TEST(SerialLine, takesAnUrgentByteInTheMiddleOfARead) {
  Terminal terminal;
  SerialLine line(terminal.name);
  std::array<std::uint8_t, 1> mark{};
  const std::jthread other([&] {
    std::this_thread::sleep_for(milliseconds(50));
    line.writeUrgently(kStopMark);
    EXPECT_EQ(::read(terminal.end, mark.data(), 1), 1);
    EXPECT_EQ(::write(terminal.end, mark.data(), 1), 1);
  });
  std::array<std::uint8_t, 1> answer{};
  EXPECT_EQ(line.read(answer, milliseconds(5000)), 1U);
  EXPECT_EQ(answer[0], kStopMark);
}

// As the kernel and udev lay them out: the product stands above the interface, and only lines over
// USB can be an adapter.
TEST(SerialDevices, areTheUsbLinesWithProductAndTheNameThatLasts) {
  const test::TemporaryFolder root;
  const auto at = [&](const std::string& name) { return root.path() / name; };
  for (const char* const folder :
       {"sys/usb/1-1/1-1:1.0", "sys/class/tty/ttyACM0", "sys/class/tty/ttyUSB3",
        "sys/class/tty/ttyS0", "dev/serial/by-id"}) {
    std::filesystem::create_directories(at(folder));
  }
  std::ofstream(at("sys/usb/1-1/product")) << "Adapter 1\n";
  std::filesystem::create_symlink(at("sys/usb/1-1/1-1:1.0"), at("sys/class/tty/ttyACM0/device"));
  std::filesystem::create_symlink("../../ttyACM0", at("dev/serial/by-id/usb-adapter"));
  std::string found;
  for (const SerialDevice& each : listSerialDevices(root.path())) {
    found += each.device + " " + each.name + " " + each.product + "\n";
  }
  EXPECT_EQ(found,
            "/dev/ttyACM0 /dev/serial/by-id/usb-adapter Adapter 1\n"
            "/dev/ttyUSB3 /dev/ttyUSB3 \n");
}

}  // namespace
}  // namespace kestrel::link
