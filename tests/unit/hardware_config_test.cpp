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

// A complete file counts as a detection. With a key missing or repeated the port is used, but
// nothing is announced; no test runs either way.
TEST(KestrelIni, withAPortTestsNothing) {
  struct Case {
    const char* ini;
    int port, model, detected;
  };
  for (const auto& [ini, port, model, detected] : std::initializer_list<Case>{
           {"[KESTREL6 SETUP]\r\nDATE = 1.1.2000 12:00\r\nIO_PORT = 378\r\nMODEL =  6\r\n", 0x378,
            6, 0x378},
           {"IO_PORT = 3bc\nMODEL = 4", 0x3BC, 4, 0x3BC},
           {"\rIO_PORT =  278h\rMODEL =   4 of 6\r", 0x278, 4, 0x278},
           {"IO_PORT = 378\r\n", 0x378, 0, 0},
           {"MODEL =  5\r\nIO_PORT = 378\r\nMODEL =  5\r\n", 0x378, 5, 0}}) {
    Start f(ini);
    EXPECT_FALSE(f.isTested) << ini;
    EXPECT_EQ(f.s.PortBase, port) << ini;
    EXPECT_EQ(f.s.KestrelModel, model) << ini;
    EXPECT_EQ(f.s.DetectedPort, detected) << ini;
    EXPECT_EQ(f.c.Ready_label.caption(), detected != 0 ? "Ready" : "NotReady") << ini;
    EXPECT_TRUE(f.rig.dialogs.boxes.empty()) << ini;
  }
}

void expectTested(const std::string& ini, std::size_t messages) {
  Start f(ini);
  EXPECT_TRUE(f.isTested) << ini;
  EXPECT_EQ(f.s.PortBase, 0) << ini;
  EXPECT_EQ(f.c.Device.items().size(), 41U) << ini;
  ASSERT_EQ(f.rig.dialogs.boxes.size(), messages) << ini;
  for (const MessageBox& box : f.rig.dialogs.boxes)
    EXPECT_EQ(box.text, "Run-time error 6: Overflow");
}

TEST(KestrelIni, withoutAPortOrWithANumberTooBigTheHardwareIsTested) {
  const auto bytes = randomBytes(4000, 11);
  expectTested(std::string(bytes.begin(), bytes.end()), 0);
  for (const char* const ini : {"MODEL =  5\r\n", "IO_PORT = xyz\r\nMODEL =  5\r\n",
                                "IO_PORT=378\nMODEL = 5\n", "io_port = 378\r\nmodel = 5\r\n"})
    expectTested(ini, 0);
  expectTested("IO_PORT = 10000\r\nMODEL =  5\r\n", 1);
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
