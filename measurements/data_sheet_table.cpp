// Every device with the algorithms of the data sheets on the simulated board, models 4, 5 and 6: a
// whole random image is programmed, verified, read back and, where that can be, erased, with every
// pulse held against the data sheet. Prints a table (Markdown) of the board's own time (1 us an
// access and the waits), beside it the sum of the pulses or write cycles that the data sheet asks
// for, and the classic procedure on model 5. Returns 1 if anything was not right.

#include <cstdio>
#include <string>
#include <string_view>
#include <vector>

#include "support/form_rig.h"

namespace kestrel {
namespace {

using Bytes = std::vector<std::uint8_t>;

struct Part {
  const char* device;
  const char* chip;
  std::size_t bytes;
  std::size_t voltage;  ///< Voltage_button: 0 = 5 V, 1 = 12.5 V, 2 = 21 V, 3 = 25 V
  double usPerByte;     ///< the data sheet's pulses, or its write cycle's share, of a typical chip
  double limit = 0;     ///< of the ratio; 0: none
  std::int64_t writeCycleUs = 0;  ///< set on the chip; 0: as it is
  bool isClassic = true;
};

constexpr double kPageUs = 5'000;  // a typical write cycle of the 28C256 and AT29C256 sheets

// clang-format off
// A byte of flash: the writes of its commands, each of 17 accesses (three latches of 4, the strobe
// of 5), and the time of a typical chip.
constexpr double kFlashByteUs = 4 * 17 + 7;
constexpr double kSlowerFlashByteUs = 4 * 17 + 10;
constexpr double kTwelveVoltByteUs = 3 * 13 + 10 + 6;

constexpr Part kParts[]{
    {"Eprom 2732",       "2732",       0x1000,   3, 50'000},
    {"Eprom 27C32",      "27C32",      0x1000,   3, 50'000},
    {"Eprom 2732A",      "2732A",      0x1000,   2, 50'000},
    {"Eprom 2732B",      "2732B",      0x1000,   1, 10 * 1'000 + 10 * 3'000},
    {"Eprom 2764",       "2764",       0x2000,   2, 1'000 + 4'000},
    {"Eprom 27128",      "27128",      0x4000,   2, 1'000 + 4'000},
    {"Eprom 27256",      "27256",      0x8000,   1, 1'000 + 3'000},
    {"Eprom 27C64",      "27C64",      0x2000,   1, 100, 1.6},
    {"Eprom 27C128",     "27C128",     0x4000,   1, 100, 1.6},
    {"Eprom 27C256",     "27C256",     0x8000,   1, 100, 1.6},
    {"Eprom 27C259",     "27C259",     0x8000,   1, 100, 1.6},
    {"Eprom 27C512",     "27C512",     0x10000,  1, 100, 1.6},
    {"Eprom 27C1001",    "27C1001",    0x20000,  1, 100, 1.6},
    {"Eprom 27C010",     "27C010",     0x20000,  1, 100, 1.6},
    {"Eprom 27C2001",    "27C2001",    0x40000,  1, 100, 1.6},
    {"Eprom 27C020",     "27C020",     0x40000,  1, 100, 1.6},
    {"Eprom 27C4001",    "27C4001",    0x80000,  1, 100, 1.6},
    {"Eprom 27C040",     "27C040",     0x80000,  1, 100, 1.6},
    {"Eprom 27C801",     "27C801",     0x100000, 1, 50,  1.6},
    {"Eprom 27C080",     "27C080",     0x100000, 1, 50,  1.6},
    {"Eprom 27C080 OTP", "27C080-OTP", 0x100000, 1, 50,  1.6, 0, false},
    {"Eeprom XICOR X28C256",      "X28C256",   0x8000, 0, kPageUs / 64,  1.3, 5'000},
    {"Eeprom Catalyst CAT28C256", "CAT28C256", 0x8000, 0, kPageUs / 64,  1.3, 5'000, false},
    {"Eeprom Catalyst CAT28C257", "CAT28C257", 0x8000, 0, kPageUs / 128, 0,   5'000, false},
    {"Flash Atmel AT29C256",      "AT29C256",  0x8000, 0, kPageUs / 64,  0,   5'000, false},
    {"Eeprom 24C08 Serial (8 pins)",  "24C08",  0x400,  0, kPageUs / 16},
    {"Eeprom 24C16 Serial (8 pins)",  "24C16",  0x800,  0, kPageUs / 16},
    {"Eeprom 24C32 Serial (8 pins)",  "24C32",  0x1000, 0, kPageUs / 32},
    {"Eeprom 24C256 Serial (8 pins)", "24C256", 0x8000, 0, kPageUs / 64, 0, 0, false},
    {"Flash AMD AM29F010",       "AM29F010",  0x20000, 0, kFlashByteUs,      1.5, 0, false},
    {"Flash AMD AM29F020",       "AM29F020",  0x40000, 0, kFlashByteUs,      1.5, 0, false},
    {"Flash AMD AM29F040",       "AM29F040",  0x80000, 0, kFlashByteUs,      1.5, 0, false},
    {"Flash AMIC A29040",        "A29040",    0x80000, 0, kSlowerFlashByteUs, 1.5, 0, false},
    {"Flash EON EN29F040",       "EN29F040",  0x80000, 0, kSlowerFlashByteUs, 1.5, 0, false},
    {"Flash Catalyst CAT28F010", "CAT28F010", 0x20000, 0, kTwelveVoltByteUs, 0,   0, false},
    {"Flash Catalyst CAT28F020", "CAT28F020", 0x40000, 0, kTwelveVoltByteUs, 0,   0, false},
};
// clang-format on

double seconds(sim::Nanoseconds time) { return static_cast<double>(time) * 1e-9; }

struct Prepared : test::SimulatedForm {
  Prepared(const Part& part, sim::Model model, Algorithms algorithms)
      : SimulatedForm(model, Trace::Off), chip(part) {
    const bool isBySheet = algorithms == Algorithms::DataSheet;
    bench.judgePulses(isBySheet);
    if (isBySheet) rig.controls.AlgorithmSelection[1].press();
    start();
    insert(part.chip);
    if (part.writeCycleUs != 0) board->setChip({.writeCycle = part.writeCycleUs * 1'000});
    rig.select(part.device);
    if (part.voltage != 0) rig.controls.Voltage_button[part.voltage].press();
    // It is a read of the chip before, with its own time.
    if (rig.controls.CheckChipFirst.isTicked()) rig.controls.CheckChipFirst.press();
    bench.findings().clear();
  }

  /// The board's time for a command; below 0 if it did not end well.
  double take(const char* control) {
    const sim::Nanoseconds before = bench.now();
    rig.dialogs.answers = {Answer::Ok};
    rig.press(control);
    rig.dialogs.answers.clear();
    return rig.result.ending == Ending::Done ? seconds(bench.now() - before) : -1;
  }

  const Part& chip;
};

std::string shown(double time) {
  char text[32];
  std::snprintf(text, sizeof text, "%.2f", time);
  return time < 0 ? "-" : text;
}

/// Programming by the classic procedure; "-" where it fails or is not offered.
std::string classicTime(const Part& part, const Bytes& image) {
  if (!part.isClassic) return "-";
  Prepared s(part, sim::Model::kestrel5, Algorithms::Classic);
  s.rig.openImage(image);
  const double time = s.take("Program_button");
  return s.chipContents() == image ? shown(time) : "-";
}

bool measure(const Part& part, sim::Model model) {
  const Bytes image = test::randomBytes(part.bytes, 17);
  Prepared s(part, model, Algorithms::DataSheet);
  s.rig.openImage(image);
  const double programmed = s.take("Program_button");
  bool isRight = s.chipContents() == image;
  const double verified = s.take("Verify_button");
  std::ranges::fill(s.rig.state.CodeBuffer, std::uint8_t{0});
  const double read = s.take("Read_button");
  isRight = isRight && std::equal(image.begin(), image.end(), s.rig.state.CodeBuffer.begin());
  std::string erased = "-";
  if (s.rig.controls.EraseFlash_button.enabled()) {
    erased = shown(s.take("EraseFlash_button"));
    isRight = isRight && s.chipContents() == Bytes(part.bytes, 0xFF);
  }
  const auto pulsed = static_cast<double>(std::ssize(image) - std::ranges::count(image, 0xFF));
  const double wanted = pulsed * part.usPerByte * 1e-6;
  const double ratio = programmed / wanted;
  const bool isModel5 = model == sim::Model::kestrel5;
  isRight = isRight && programmed > 0 && verified > 0 && read > 0 && s.bench.findings().empty();
  isRight = isRight && (part.limit == 0 || ratio <= part.limit);
  std::printf("| %s | %d | %s | %.2f | %.2f | %s | %s | %s | %zu | %s%s |\n", part.device,
              static_cast<int>(model), shown(programmed).c_str(), wanted, ratio,
              shown(verified).c_str(), shown(read).c_str(), erased.c_str(),
              s.bench.findings().all().size(), isModel5 ? classicTime(part, image).c_str() : "",
              isRight ? "" : " WRONG");
  std::fflush(stdout);
  return isRight;
}

}  // namespace
}  // namespace kestrel

// With a word: the devices that have it in their name.
int main(int argc, char** argv) {
  using namespace kestrel;
  std::puts(
      "| device | model | programmed, s | data sheet, s | ratio | verified, s | read, s | "
      "erased, s | findings | classic, s |");
  std::puts("|---|---|---|---|---|---|---|---|---|---|");
  bool isRight = true;
  for (const Part& part : kParts) {
    if (argc > 1 && std::string_view(part.device).find(argv[1]) == std::string_view::npos) continue;
    for (const sim::Model model :
         {sim::Model::kestrel4, sim::Model::kestrel5, sim::Model::kestrel6}) {
      isRight = measure(part, model) && isRight;
    }
  }
  return isRight ? 0 : 1;
}
