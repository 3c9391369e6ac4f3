// The program itself, from its options to its exit status.

#include <gtest/gtest.h>

#include <QProcess>
#include <QTest>

#include "platform/atomic_file.h"
#include "support/temporary_folder.h"

namespace kestrel::test {
namespace {

TEST(Program, opensItsFileAndKeepsTheChipAtASignal) {
  const TemporaryFolder folder;
  writeFileAtomically(folder / "rom.bin", "code");
  QProcess program;
  QProcessEnvironment own = QProcessEnvironment::systemEnvironment();
  own.insert("XDG_CONFIG_HOME", folder.path().c_str());
  program.setProcessEnvironment(own);
  program.setWorkingDirectory(folder.path().c_str());
  program.start(KESTREL_WINDOW, {"--simulate", "--chip", "27C256=chip.bin", "rom.bin"});
  const auto settings = [&] {
    const auto file = folder.path() / "kestrel" / "kestrel.ini";
    return std::filesystem::exists(file) ? readWholeTextFile(file) : "";
  };
  const auto isOpen = [&] { return settings().find("rom.bin") != std::string::npos; };
  EXPECT_TRUE(QTest::qWaitFor(isOpen, 30'000)) << program.readAllStandardError().toStdString();
  program.terminate();
  ASSERT_TRUE(program.waitForFinished(30'000));
  EXPECT_EQ(program.exitCode(), 143);
  EXPECT_EQ(std::filesystem::file_size(folder / "chip.bin"), 32'768U);
}

}  // namespace
}  // namespace kestrel::test
