// Takes the pictures of the README: screenshots FOLDER [light|dark] [SCENE...]
// Each scene is the whole window on a simulated board, driven as a person would.

#include <QPainter>
#include <QStyleFactory>
#include <filesystem>
#include <iostream>
#include <map>

#include "app/launch/program_folders.h"
#include "app/window/board_panel.h"
#include "app/window/device_card.h"
#include "app/window/help_window.h"
#include "app/window/readable_style.h"
#include "window/window_rig.h"

namespace kestrel::test {
namespace {

QPalette darkPalette() {
  QPalette dark(QColor(0x2B, 0x2E, 0x33), QColor(0x2B, 0x2E, 0x33));
  dark.setColor(QPalette::Base, QColor(0x1E, 0x20, 0x24));
  dark.setColor(QPalette::Highlight, QColor(0x2A, 0x6F, 0xB0));
  dark.setColor(QPalette::HighlightedText, Qt::white);
  dark.setColor(QPalette::Link, QColor(0x6C, 0xB6, 0xF2));
  return dark;
}

struct Scene : WindowRig {
  explicit Scene(const launch::LaunchOptions& options = simulatedOptions("27C256"))
      : WindowRig(options) {
    settings.texts = {{"Settings/MainLeft", "0"},
                      {"Settings/MainTop", "0"},
                      {"Settings/MainWidth", "19200"},
                      {"Settings/MainHeight", "11700"}};
    window.addSidePanel(*new window::SimulatedBoardPanel(*WindowRig::program.simulated(),
                                                         form.runner(), input, &window),
                        "Simulated board");
    window::watchSocket(*WindowRig::program.simulated(), window.deviceCard());
    start();
    WindowRig::program.simulated()->startUpDone();
  }
  void keep(const QString& file) {
    turn();
    window.grab().save(file);
  }
  void openSample() {
    // A name without folders: a picture tells nothing of the machine it was taken on.
    std::filesystem::current_path(launch::programFolders({}).data / "sample");
    window.openCodeFile("sample-27C256.bin");
    turn();
  }
  void open(const std::string& name, const std::vector<std::uint8_t>& image) {
    writeFileAtomically(folder / name, image);
    std::filesystem::current_path(folder.path());
    window.openCodeFile(name);
    turn();
  }
  void program() {
    const WithDialog question = answering(QMessageBox::Ok);
    click("Program_button");
  }
};

using Picture = std::function<void(const QString& file)>;

void atStart(const QString& file) { Scene().keep(file); }

void smallest(const QString& file) {
  Scene scene;
  scene.window.resize(scene.window.minimumSizeHint());
  scene.select("27C256");
  scene.openSample();
  scene.keep(file);
}

void largest(const QString& file) {
  Scene scene;
  scene.window.resize(1900, 1040);
  scene.openSample();
  scene.select("27C256");
  scene.keep(file);
}

void programmed(const QString& file) {
  Scene scene;
  scene.openSample();
  scene.select("27C256");
  scene.click("VerifyAfterProgramming");
  scene.program();
  scene.keep(file);
}

void alert(const QString& file) {
  Scene scene;
  scene.board().fitWeakCell(0x40);
  scene.openSample();
  scene.select("27C256");
  scene.program();
  scene.keep(file);
}

void compared(const QString& file) {
  Scene scene;
  scene.openSample();
  scene.select("27C256");
  const auto& buffer = scene.form.state().CodeBuffer;
  std::vector<std::uint8_t> chip(buffer.begin(), buffer.begin() + 32'768);
  // Three kinds of faults: bits that cannot be, a page that was left out, a shifted range.
  for (std::size_t i = 0x1000; i < 0x1800; i += 97) chip[i] ^= 0x0F;
  std::fill_n(chip.begin() + 0x3000, 0x300, 0xFF);
  std::copy_n(buffer.begin() + 0x4803, 0x600, chip.begin() + 0x4800);
  scene.board().loadChip(chip);
  scene.trigger("compareChip");
  while (!scene.find<QLabel>("differenceSides").text().contains("shifted")) {
    scene.click("nextDifference");
  }
  scene.keep(file);
}

void running(const QString& file) {
  Scene scene(simulatedOptions("27C020"));
  scene.select("27C020");
  QTimer look;
  QObject::connect(&look, &QTimer::timeout, &look, [&] {
    if (scene.controls().ProgressBar1.value() < 45) return;
    look.stop();
    scene.window.grab().save(file);
    scene.stop.stopCommand();
  });
  look.start(5);
  scene.click("Read_button");
}

/// The cards of chips of all four sizes, one beside the other.
void cards(const QString& file) {
  QImage all;
  for (const char* const name : {"2732A", "27C256", "27C080", "24C32"}) {
    Scene scene(simulatedOptions(name));
    scene.select(name);
    QImage card = scene.window.deviceCard().grab().toImage();
    card.setDevicePixelRatio(1);
    QImage wider(all.width() + card.width(), std::max(all.height(), card.height()),
                 QImage::Format_RGB32);
    wider.fill(scene.window.palette().color(QPalette::Window));
    QPainter painter(&wider);
    painter.drawImage(0, 0, all);
    painter.drawImage(all.width(), 0, card);
    painter.end();
    all = wider;
  }
  all.save(file);
}

void programming(const QString& file) {
  Scene scene(simulatedOptions("27C020"));
  scene.select("27C020");
  std::vector<std::uint8_t> image = countingBytes(0x40000);
  std::fill(image.begin() + 0x18000, image.begin() + 0x20000, 0xFF);
  scene.open("firmware.bin", image);
  QTimer look;
  QObject::connect(&look, &QTimer::timeout, &look, [&] {
    if (scene.controls().ProgressBar1.value() < 45 || !scene.find("vppSign").isVisible()) return;
    look.stop();
    scene.window.grab().save(file);
    scene.stop.stopCommand();
  });
  look.start(5);
  scene.program();
}

void map(const QString& file) {
  Scene scene(simulatedOptions("27C080"));
  scene.select("27C080");
  std::vector<std::uint8_t> image(0x100000, 0xFF);
  const std::vector<std::uint8_t> code = countingBytes(0x80000);
  std::copy(code.begin(), code.end(), image.begin());
  std::fill_n(image.begin() + 0x30000, 0x8000, 0x00);
  scene.open("half.bin", image);
  scene.keep(file);
}

void noBoard(const QString& file) {
  Scene scene;
  scene.select("27C040");
  scene.WindowRig::program.simulated()->bench().unplug(0x378);
  scene.click("TestHardware_button");
  scene.keep(file);
}

void highVoltage(const QString& file) {
  Scene scene(simulatedOptions("2732A"));
  scene.select("2732A");
  scene.click("Voltage_button(2)");
  scene.keep(file);
}

void longTexts(const QString& file) {
  Scene scene;
  const std::string folder = std::string(80, 'f');
  std::filesystem::create_directories(scene.folder / folder);
  scene.openFile(folder + "/a file with a long name for the bootloader of the second board.bin",
                 std::vector<std::uint8_t>(65536, 0x42));
  scene.controls().StatusBar.setText("Reading Code File " + folder + " into Buffer... Wait");
  scene.keep(file);
}

void help(const QString& file) {
  window::HelpWindow window(launch::programFolders({}).data / "help" / "kestrel5.hlp", nullptr);
  window.open(HelpPage::Contents);
  WindowRig::turn();
  window.grab().save(file);
}

}  // namespace
}  // namespace kestrel::test

int main(int argc, char** argv) {
  using namespace kestrel::test;
  const std::map<QString, Picture> pictures{{"start", atStart},   {"smallest", smallest},
                                            {"largest", largest}, {"programmed", programmed},
                                            {"alert", alert},     {"compared", compared},
                                            {"running", running}, {"voltage", highVoltage},
                                            {"long", longTexts},  {"help", help},
                                            {"cards", cards},     {"programming", programming},
                                            {"map", map},         {"notice", noBoard}};
  const QApplication application(argc, argv);
  QApplication::setStyle(new kestrel::window::ReadableStyle(QStyleFactory::create("Fusion")));
  QApplication::setQuitOnLastWindowClosed(false);
  const QStringList arguments = QApplication::arguments();
  if (arguments.size() < 3) {
    std::cerr << "screenshots FOLDER light|dark [SCENE...]\n";
    return 2;
  }
  if (arguments[2] == "dark") QApplication::setPalette(darkPalette());
  for (const auto& [name, take] : pictures) {
    if (arguments.size() > 3 && !arguments.mid(3).contains(name)) continue;
    take(arguments[1] + "/" + name + "-" + arguments[2] + ".png");
  }
  return 0;
}
