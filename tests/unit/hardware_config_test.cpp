// kestrel6.ini at start-up: complete, incomplete, damaged, not writable.

#include <gtest/gtest.h>

#include "support/script_form.h"

namespace kestrel::test {
namespace {

namespace fs = std::filesystem;

struct Case {
  std::string ini;
  bool isTested;
  int port, model, detected;
  std::size_t overflows = 0;
};

// A complete file counts as a detection. With a key missing or repeated the port is used, but
// nothing is announced; the hardware is tested only without a port that can be used.
TEST(KestrelIni, isReadAsFarAsItCanBe) {
  const auto bytes = randomBytes(4000, 11);
  for (const auto& [ini, isTested, port, model, detected, overflows] : std::initializer_list<Case>{
           {"[KESTREL6 SETUP]\r\nDATE = 1.1.2000 12:00\r\nIO_PORT = 378\r\nMODEL =  6\r\n", false,
            0x378, 6, 0x378},
           {"\rIO_PORT =  278h\rMODEL =   4 of 6\r", false, 0x278, 4, 0x278},
           {"IO_PORT = 3bc\n", false, 0x3BC, 0, 0},
           {"MODEL =  5\r\nIO_PORT = 378\r\nMODEL =  5\r\n", false, 0x378, 5, 0},
           {std::string(bytes.begin(), bytes.end()), true, 0, 0, 0},
           {"IO_PORT = xyz\r\n", true, 0, 0, 0},
           {"IO_PORT=378\nio_port = 378\nMODEL = 5\n", true, 0, 0, 0},
           {"IO_PORT = 10000\r\n", true, 0, 0, 0, 1},
           {"IO_PORT = 7FFF\r\n", true, 0, 0, 0, 1}}) {
    ScriptForm f;
    fs::create_directory(f.rig.folder / "config");
    f.file("config/kestrel6.ini", ini);
    f.rig.form.Form_Load();
    EXPECT_EQ(f.port.taken().find('?') != std::string::npos, isTested) << ini;
    EXPECT_EQ(f.s.PortBase, port) << ini;
    EXPECT_EQ(f.s.KestrelModel, model) << ini;
    EXPECT_EQ(f.s.DetectedPort, detected) << ini;
    EXPECT_EQ(f.c.Ready_label.caption(), detected != 0 ? "Ready" : "NotReady") << ini;
    EXPECT_EQ(f.rig.form.hasBoard(), detected != 0) << ini;
    ASSERT_EQ(f.rig.dialogs.boxes.size(), overflows) << ini;
    for (const MessageBox& box : f.rig.dialogs.boxes)
      EXPECT_EQ(box.text, "Run-time error 6: Overflow");
  }
}

TEST(KestrelIni, aFailingWriteIsToldOnceAndTheBoardIsStillApplied) {
  ScriptForm f;
  f.port.answers = {0xFF, 0xFF, 0xFF, 0xFF, 0x0F, 0x7F};  // a board at 378h
  f.file("config", "no folder");
  f.rig.form.Form_Load();
  ASSERT_EQ(f.rig.dialogs.boxes.size(), 1U);
  EXPECT_NE(f.rig.dialogs.boxes[0].text.find("kestrel6.ini: Not a directory"), std::string::npos);
  EXPECT_EQ(f.c.KestrelHardwareFound.caption(), "MODEL 5 - PC port 378h");
  EXPECT_EQ(f.s.RegShadow0, 0x40);
}

}  // namespace
}  // namespace kestrel::test
