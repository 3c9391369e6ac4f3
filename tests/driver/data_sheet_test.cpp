// The algorithms of the data sheets on the simulated board, which holds every pulse against the
// data sheet: not one finding, whatever the device, the model and the command.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <set>

#include "driver/parts.h"
#include "driver/prepared_form.h"
#include "operations/programming_facts.h"

namespace kestrel::test {
namespace {

struct BySheet : SimulatedForm {
  explicit BySheet(const Part& part, sim::Model model = sim::Model::kestrel5)
      : SimulatedForm(model, Trace::Off) {
    bench.judgePulses(true);
    rig.controls.AlgorithmSelection[1].press();
    rig.form.Form_Load();
    insert(part.chip);
    bench.findings().clear();
    rig.select(part.device);
    rig.controls.Voltage_button[part.voltage].press();
  }

  /// Voltages off; a serial chip has its supply taken away too, and no line feeds it.
  void expectRest() {
    const bool isSerial = rig.state.FamilyLetter == "S";
    EXPECT_EQ(board->latch(0) & ~0x08, isSerial ? 0x00 : 0x40);
    const int lines = board->latch(1) | board->latch(2) | (board->latch(3) & 0x80);
    EXPECT_TRUE(!isSerial || lines == 0);
  }
  void expectNoFinding() {
    for (const sim::Finding& finding : bench.findings().all()) {
      ADD_FAILURE() << finding.text << ", " << finding.count << " times";
    }
  }
};

/// A large chip's image is sparse, a small one's whole.
Bytes imageFor(const Part& part) {
  return part.bytes <= 0x2000 ? randomBytes(part.bytes, 9) : sparse(part.bytes);
}

class EveryDevice : public testing::TestWithParam<std::tuple<sim::Model, Part>> {};

// Large chips on model 5 alone, and checked and read at their beginning: the measurement goes
// through all of them, whole.
TEST_P(EveryDevice, isCheckedProgrammedVerifiedReadAndShownWithoutAFinding) {
  const auto& [model, part] = GetParam();
  const bool isLarge = part.bytes > 0x10000 || part.chip == std::string("24C256");
  if (isLarge && model != sim::Model::kestrel5) return;
  BySheet s(part, model);
  EXPECT_EQ(s.rig.state.KestrelModel, static_cast<int>(model)) << "at the first test";
  EXPECT_EQ(operations::voltageToApply(s.rig.state).has_value(),
            s.board->chip()->wantedVppMillivolts() != 0)
      << "what the safety question tells";
  const Bytes image = imageFor(part);
  s.rig.openImage(image);
  s.rig.controls.VerifyAfterProgramming.press();
  if (isLarge) s.rig.state.CodeLength = 4096;
  s.rig.press("Blank_button");
  EXPECT_TRUE(s.rig.logged("Device IS BLANK (ERASED)"));
  ASSERT_TRUE(s.rig.program());
  EXPECT_TRUE(s.rig.logged("Programming Device Successfull"));
  EXPECT_TRUE(s.rig.logged("Device Contents MATCHES with Buffer Contents"));
  EXPECT_TRUE(s.chipContents() == image);
  s.expectRest();
  std::ranges::fill(s.rig.state.CodeBuffer, std::uint8_t{0});
  s.rig.press("Read_button");
  EXPECT_TRUE(std::equal(image.begin(), image.begin() + s.rig.state.CodeLength,
                         s.rig.state.CodeBuffer.begin()));
  s.rig.press("Display_button");
  if (s.rig.controls.EraseFlash_button.enabled()) {
    s.rig.press("EraseFlash_button");
    EXPECT_TRUE(s.chipContents() == Bytes(part.bytes, 0xFF));
  }
  s.expectRest();
  s.expectNoFinding();
}

INSTANTIATE_TEST_SUITE_P(Sheets, EveryDevice,
                         testing::Combine(testing::ValuesIn(kModels), testing::ValuesIn(kParts)),
                         [](const auto& test) {
                           std::string name = std::get<1>(test.param).chip;
                           std::erase(name, '-');
                           return name + "OnModel" +
                                  std::to_string(static_cast<int>(std::get<0>(test.param)));
                         });

/// A chip that is not as it should be, and how programming some random bytes then ends.
struct Trouble {
  const char* name;
  Part part;
  void (*prepare)(BySheet& s);
  const char* reason;  ///< part of it; empty: it ends well
  Ending ending = Ending::Failed;
  const char* control = "Program_button";
};

constexpr Part k27C256{"Eprom 27C256", "27C256", 0x8000};
constexpr Part k27C512{"Eprom 27C512", "27C512", 0x10000};
constexpr Part k2764{"Eprom 2764", "2764", 0x2000, 2};
constexpr Part k28C256{"Eeprom XICOR X28C256", "X28C256", 0x8000, 0};
constexpr Part k29F010{"Flash AMD AM29F010", "AM29F010", 0x20000, 0};
constexpr Part k29F040{"Flash AMD AM29F040", "AM29F040", 0x80000, 0};
constexpr Part k28F010{"Flash Catalyst CAT28F010", "CAT28F010", 0x20000, 0};
constexpr Part k24C16{"Eeprom 24C16 Serial", "24C16", 0x800, 0};

void neverErased(BySheet& s) {
  s.board->setChip({.writeNeverEnds = true});
  s.board->loadChip(Bytes(0x20000, 0));
}

/// Bit 5 cannot tell it, once the chip is busy.
void neverSaysSo(BySheet& s) {
  neverErased(s);
  s.rig.screen.onTurn = [&s, begin = s.bench.now()] {
    if (s.bench.now() > begin + 1'000'000'000) s.board->stickDataLine(5, false);
  };
}

// clang-format off
const Trouble kTroubles[]{
    {"aCellThatNeedsThreePulses", k2764,   [](BySheet& s) { s.board->fitWeakCell(0x123, 3); }, ""},
    {"aCellOfTheSecondPass",      k27C512, [](BySheet& s) { s.board->fitWeakCell(0x123, 25); }, ""},
    {"aCellThatNeverTakes",       k27C256, [](BySheet& s) { s.board->fitWeakCell(0x123); }, "byte at address 123 does not"},
    {"aCellThatNeverTakesOnOe",   k27C512, [](BySheet& s) { s.board->fitWeakCell(0x123); }, "byte at address 123 does not"},
    {"aChipThatIsNotBlank",       k27C256, [](BySheet& s) { s.board->loadChip(Bytes(0x8000, 0)); }, "byte at address 0 does not"},
    {"anEmptySocket",             k27C512, [](BySheet& s) { s.board->takeOut(); }, "byte at address 0 does not"},
    {"aStuckLine",                k28C256, [](BySheet& s) { s.board->stickDataLine(3, false); }, "byte at address 0 does not"},
    {"aWriteWithoutEnd",          k28C256, [](BySheet& s) { s.board->setChip({.writeNeverEnds = true}); }, "still busy 30 ms"},
    {"aProtectedChip",            k28C256, [](BySheet& s) { s.board->setChip({.softwareProtection = true}); }, ""},
    {"aSerialChipThatIsSilent",   k24C16,  [](BySheet& s) { s.board->takeOut(); }, "does not acknowledge"},
    {"aSerialChipProtected",      k24C16,  [](BySheet& s) { s.board->setChip({.writeProtected = true}); }, "byte at address 0 does not"},
    {"aSerialChipThatEndsInAByte", k24C16, [](BySheet& s) { s.board->setChip({.acknowledgeLimit = 100}); }, "does not acknowledge"},
    {"aSerialWriteWithoutEnd",    k24C16,  [](BySheet& s) { s.board->setChip({.writeNeverEnds = true}); }, "30 ms after it was sent the page of address 0"},
    {"aSerialLineHeldLow",        k24C16,  [](BySheet& s) { s.board->stickDataLine(7, false); }, "data line of the chip stays low"},
    {"aFlashOfAnotherCode",       k29F010, [](BySheet& s) { s.insert("AM29F040"); }, "is a Flash AMD AM29F040 (codes 01h A4h instead of 01h 20h)", Ending::Refused},
    {"noFlash",                   k29F010, [](BySheet& s) { s.board->takeOut(); }, "no flash answers", Ending::Refused},
    {"aFlashThatIsNotBlank",      k29F010, [](BySheet& s) { s.board->loadChip(Bytes(0x20000, 0)); }, "byte at address 0 does not"},
    {"aFlashCellThatNeverTakes",  k29F010, [](BySheet& s) { s.board->fitWeakCell(0x123); }, "given up with the byte at address 123"},
    {"aFlashOfAnotherCodeForced", k29F040, [](BySheet& s) { s.insert("A29040"); s.rig.controls.AnyCode.press(); }, ""},
    {"aFlashWriteWithoutEnd",     k29F010, [](BySheet& s) { s.board->setChip({.writeNeverEnds = true}); }, "given up with the byte at address 0"},
    {"aFlashEraseGivenUp",        k29F010, neverErased, "not erased: address 0 reads 00h", Ending::Failed, "EraseFlash_button"},
    {"aFlashEraseWithoutEnd",     k29F010, neverSaysSo, "still busy 42 s after its erase", Ending::Failed, "EraseFlash_button"},
    {"a12VFlashErasedForEver",    k28F010, [](BySheet& s) { s.board->fitWeakCell(0x123); s.board->loadChip(Bytes(0x20000, 0)); }, "1000 pulses: address 123 reads 00h", Ending::Failed, "EraseFlash_button"},
    {"aProtectedFlash",           k29F010, [](BySheet& s) { s.board->setChip({.writeProtected = true}); }, "write-protected at address 0", Ending::Refused},
    {"a12VFlashOfAnotherCode",    k28F010, [](BySheet& s) { s.insert("CAT28F020"); }, "is a Flash Catalyst CAT28F020", Ending::Refused},
    {"a12VFlashNotBlank",         k28F010, [](BySheet& s) { s.board->loadChip(Bytes(0x20000, 0)); }, "byte at address 0 does not"},
    {"a12VFlashCellOf25Pulses",   k28F010, [](BySheet& s) { s.board->fitWeakCell(0x123, 25); }, ""},
    {"a12VFlashCellOf26Pulses",   k28F010, [](BySheet& s) { s.board->fitWeakCell(0x123, 26); }, "byte at address 123 does not"},
};
// clang-format on

class Troubles : public testing::TestWithParam<Trouble> {};

TEST_P(Troubles, endClearlyWithVoltageOff) {
  const Trouble& trouble = GetParam();
  BySheet s(trouble.part);
  Bytes image(trouble.part.bytes, 0xFF);
  std::ranges::copy(randomBytes(0x200, 3), image.begin());
  s.rig.openImage(image);
  const bool endsWell = *trouble.reason == '\0';
  std::set<int> shown;
  s.rig.screen.onTurn = [&] { shown.insert(s.rig.controls.ProgressBar1.value()); };
  trouble.prepare(s);
  s.rig.program(trouble.control);
  EXPECT_TRUE(!endsWell || shown.size() > 90) << "hundredths of the way";
  EXPECT_EQ(s.rig.result.ending, endsWell ? Ending::Done : trouble.ending);
  EXPECT_THAT(s.rig.result.reason, testing::HasSubstr(trouble.reason));
  const bool holdsImage = s.board->chip() != nullptr && s.chipContents() == image;
  EXPECT_EQ(holdsImage, endsWell);
  s.expectRest();
  s.expectNoFinding();
}

INSTANTIATE_TEST_SUITE_P(Sheets, Troubles, testing::ValuesIn(kTroubles),
                         [](const auto& test) { return test.param.name; });

TEST(Protection, isLeftAsItWasFoundOrSet) {
  for (const bool before : {false, true}) {
    for (const auto& [wanted, after] : {std::pair{std::size_t{0}, before}, {1, true}, {2, false}}) {
      BySheet s(k28C256);
      s.board->setChip({.softwareProtection = before});
      s.rig.controls.ProtectionSelection.at(wanted).press();
      s.rig.openImage(Bytes(0x8000, 0x5A));
      s.rig.program();
      EXPECT_TRUE(s.chipContents() == Bytes(0x8000, 0x5A));
      EXPECT_EQ(s.board->chip()->settings().softwareProtection, after);
      s.expectNoFinding();
    }
  }
}

TEST(Stop, takesTheVoltageOffInTheMiddleOfARun) {
  BySheet s(k2764);
  s.rig.openImage(randomBytes(0x2000, 4));
  s.rig.screen.onTurn = [&] {
    if (s.chipContents()[0x100] != 0xFF) s.rig.stop.stopCommand();
  };
  s.rig.program();
  EXPECT_EQ(s.rig.result.ending, Ending::Stopped);
  EXPECT_EQ(s.board->latch(0), 0x40);
  // The byte that it fell into is left without its overprogram pulse.
  EXPECT_EQ(s.bench.findings().all().size(),
            s.bench.findings().count(sim::FindingKind::missingOverprogram));
}

TEST(Stop, ofAnEraseTakesTheVoltageOffAndSaysSo) {
  BySheet s(k28F010);
  s.board->loadChip(Bytes(0x20000, 0));
  const std::string inPart = "Erasing was stopped, the chip is erased in part";
  s.rig.screen.onTurn = [&] {
    s.rig.stop.stopCommand();
    EXPECT_TRUE(!s.rig.logged(inPart) || s.board->latch(0) == 0x40) << "at rest, then told";
  };
  s.rig.press("EraseFlash_button");
  EXPECT_EQ(s.rig.result.ending, Ending::Stopped);
  EXPECT_TRUE(s.rig.logged("Erasing Device Flash Catalyst CAT28F010"));
  const auto log = s.rig.log();
  ASSERT_GE(log.size(), 2U);
  EXPECT_EQ(log[log.size() - 2], inPart);
  EXPECT_EQ(log.back(), "Operation stopped by operator");
  s.expectRest();
}

// A line sticks for a part of the first read.
TEST(RepeatedRead, takesWhatWasReadMostOftenInBothWays) {
  for (const std::size_t algorithms : {0U, 1U}) {
    SimulatedForm s(sim::Model::kestrel5, SimulatedForm::Trace::Off);
    s.rig.controls.AlgorithmSelection.at(algorithms).press();
    s.start();
    const Bytes image = randomBytes(0x2000, 7);
    s.insert("27C64", image);
    s.rig.select("Eprom 27C64");
    s.rig.controls.ReadTimes.setValue(3);
    s.rig.screen.onTurn = [&, isOver = false]() mutable {
      const int page = s.rig.controls.ProgressBar1.value();
      if (page > 8 && !isOver) s.board->stickDataLine(3, false);
      isOver = isOver || page > 16;
      if (isOver) s.board->freeDataLines();
    };
    s.rig.press("Read_button");
    EXPECT_TRUE(std::equal(image.begin(), image.end(), s.rig.state.CodeBuffer.begin()));
    EXPECT_THAT(s.rig.result.remark, testing::HasSubstr("did not read the same each time"));
    EXPECT_THAT(s.rig.controls.SystemLog.text(), testing::HasSubstr("and more that are not"));
  }
}

TEST(Codes, areAskedForWithoutAFinding) {
  const std::pair<Part, const char*> kNamed[]{
      {k29F010, "Device ID# 0120 - AMD am29F010 Flash Memory"},
      {k28F010, "Device ID# 31B4 - Flash Catalyst CAT28F010"},
      {{"Flash EON EN29F040", "EN29F040", 0x80000, 0},
       "Device ID# 1C04 - EON EN29F040 Flash Memory"},
      {{"Flash Atmel AT29C256", "AT29C256", 0x8000, 0},
       "Device ID# 1FDC - ATMEL 29C256 Flash Memory"}};
  for (const auto& [part, line] : kNamed) {
    BySheet s(part);
    s.rig.press("menuFlashShowCodeID");
    EXPECT_TRUE(s.rig.logged(line)) << part.device;
    s.expectNoFinding();
  }
}

}  // namespace
}  // namespace kestrel::test
