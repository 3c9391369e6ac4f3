// kestrel6.ini at start-up: complete, incomplete, damaged, unreadable, not writable.

#include <gtest/gtest.h>

#include "support/script_form.h"

namespace kestrel::test {
namespace {

namespace fs = std::filesystem;

/// A start with this kestrel6.ini and no board on any port.
struct Start : ScriptForm {
  explicit Start(const std::string& ini) {
    fs::create_directory(rig.folder / "config");
    file("config/kestrel6.ini", ini);
    rig.form.Form_Load();
    isTested = port.taken().find('?') != std::string::npos;
  }
  bool isTested;
};

void expectTaken(const std::string& ini, int port, int model) {
  Start f(ini);
  EXPECT_FALSE(f.isTested) << ini;
  EXPECT_EQ(f.s.PortBase, port) << ini;
  EXPECT_EQ(f.s.DetectedPort, port) << ini;
  EXPECT_EQ(f.s.KestrelModel, model) << ini;
  EXPECT_EQ(f.c.Ready_label.caption(), "Ready") << ini;
  EXPECT_TRUE(f.rig.dialogs.boxes.empty()) << ini;
}

TEST(KestrelIni, aCompleteFileCountsAsADetection) {
  expectTaken("[KESTREL6 SETUP]\r\nDATE = 1.1.2000 12:00\r\nIO_PORT = 378\r\nMODEL =  6\r\n", 0x378,
              6);
  expectTaken("MODEL = 5\r\nIO_PORT = 278\r\n", 0x278, 5);
  expectTaken("IO_PORT = 3bc\nMODEL = 4", 0x3BC, 4);
  expectTaken("\rIO_PORT =  378h\rMODEL =   4 of 6\r", 0x378, 4);
}

// A port but no detection: the port is used, nothing is announced, no test runs.
TEST(KestrelIni, aMissingOrRepeatedKeyIsNoDetection) {
  for (const char* const ini :
       {"IO_PORT = 378\r\n", "IO_PORT = 278\r\nIO_PORT = 378\r\nMODEL =  5\r\n",
        "MODEL =  5\r\nIO_PORT = 378\r\nMODEL =  5\r\n"}) {
    Start f(ini);
    EXPECT_FALSE(f.isTested) << ini;
    EXPECT_EQ(f.s.PortBase, 0x378) << ini;
    EXPECT_EQ(f.s.DetectedPort, 0) << ini;
    EXPECT_EQ(f.c.Ready_label.caption(), "NotReady") << ini;
  }
}

void expectTested(const std::string& ini, std::size_t messages) {
  Start f(ini);
  EXPECT_TRUE(f.isTested) << ini;
  EXPECT_EQ(f.s.PortBase, 0) << ini;
  EXPECT_EQ(f.s.KestrelModel, 0) << ini;
  EXPECT_EQ(f.c.Ready_label.caption(), "NotReady") << ini;
  EXPECT_EQ(f.c.Device.items().size(), 41U) << ini;
  ASSERT_EQ(f.rig.dialogs.boxes.size(), messages) << ini;
  for (const MessageBox& box : f.rig.dialogs.boxes)
    EXPECT_EQ(box.text, "Run-time error 6: Overflow");
}

TEST(KestrelIni, withoutAPortTheHardwareIsTested) {
  std::string rubbish;
  for (const std::uint8_t byte : randomBytes(4000, 11)) rubbish += static_cast<char>(byte);
  for (const std::string& ini :
       {std::string(), std::string("MODEL =  5\r\n"),
        std::string("IO_PORT = xyz\r\nMODEL =  5\r\n"),
        std::string(" IO_PORT = 378\r\nMODEL =  5\r\n"), std::string("IO_PORT=378\nMODEL = 5\n"),
        std::string("io_port = 378\r\nmodel = 5\r\n"), rubbish}) {
    expectTested(ini, 0);
  }
}

TEST(KestrelIni, aNumberThatDoesNotFitIsToldAndTheHardwareTested) {
  expectTested("IO_PORT = 10000\r\nMODEL =  5\r\n", 1);
  expectTested("IO_PORT = 378\r\nMODEL =  99999\r\n", 1);
  expectTested("IO_PORT = 7FFF\r\nMODEL =  5\r\n", 1);
}

TEST(KestrelIni, aFailingWriteIsToldOnceAndTheBoardIsStillApplied) {
  ScriptForm f;
  f.port.answers = {0xFF, 0xFF, 0xFF, 0xFF, 0x0F, 0x7F};  // a board at 378h
  fs::create_directory(f.rig.folder / "config");
  const ReadOnlyFolder locked(f.rig.folder / "config");
  f.rig.form.Form_Load();
  ASSERT_EQ(f.rig.dialogs.boxes.size(), 1U);
  EXPECT_NE(f.rig.dialogs.boxes[0].text.find("kestrel6.ini: Permission denied"), std::string::npos);
  EXPECT_EQ(f.c.KestrelHardwareFound.caption(), "MODEL 5 - PC port 378h");
  EXPECT_EQ(f.s.CtlIdle[4], 0x01);
  EXPECT_EQ(f.s.RegShadow0, 0x40);
}

}  // namespace
}  // namespace kestrel::test
