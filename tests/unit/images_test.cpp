#include <gmock/gmock.h>

#include <algorithm>

#include "images/changes.h"
#include "images/compare.h"
#include "images/edit_history.h"
#include "images/identity.h"
#include "images/image_file.h"
#include "images/record_writer.h"
#include "images/serial_numbers.h"
#include "support/temporary_folder.h"

namespace kestrel::images {
namespace {

Bytes bytesOf(std::string_view text) { return {text.begin(), text.end()}; }

auto refuses(const char* why) {
  return testing::ThrowsMessage<ImageError>(testing::HasSubstr(why));
}

// One block of four bytes at 30h, a hole, two bytes at 40h; sums by hand after the format's manual.
constexpr const char* kIntel = ":0400300001020304C2\n:02004000AA55BF\n:00000001FF\n";

TEST(Records, areReadAsTheirFormatsSayAndADamagedOneIsToldByItsLine) {
  const struct {
    const char* text;
    const char* told;  ///< the description, or the refusal
  } cases[] = {
      {kIntel,
       "Intel HEX, 6 bytes at 0030-0033, 0040-0041, 1 hole: 0034-003F, 2 records, "
       "checksums right"},
      {"S107003001020304BE\nS105004055AABB\n", "no execution start"},
      {"S107003001020304BE\nS105004055AABB\nS9030030CC\n",
       "Motorola S-records, 6 bytes at 0030-0033, 0040-0041, 1 hole: 0034-003F, start address "
       "0030, 2 records, checksums right"},
      {"@F000\n01 02\nq\n", "TI text, 2 bytes at F000-F001, 1 record, a format without checksums"},
      {":0400300001020304C2\n:02004000AA55BE\n:00000001FF\n", "line 2: checksum mismatch"},
      {":0400300001020304C2\n", "no end-of-file record"},
      {":0400300001020304C2\nO2004000AA55BF\n:00000001FF\n", "line 2: ignoring garbage lines"},
      {":0400300001020304C2\n:020032000305C4\n:00000001FF\n", "address 0033 has another byte"},
      {":0400300001020304C2\n:020032000304C5\n:00000001FF\n", "Intel HEX, 4 bytes at 0030-0033, "},
      {":00000001FF\n", "no data"},
      {":02000004FFFFFC\n:02FFFF000102FD\n:00000001FF\n", ""},
      {"no records", "binary, 10 bytes"},
  };
  for (const auto& c : cases) {
    const Bytes file = bytesOf(c.text);
    std::string told;
    try {
      told = describe(readRecords(file, formatByLook(file)));
    } catch (const ImageError& error) {
      told = error.what();
    }
    EXPECT_NE(told.find(c.told), std::string::npos) << c.text << told;
  }
}

TEST(Placement, movesAndCutsAndLeavesFFhInHolesAndRefusesWhatIsOutside) {
  const Bytes file = bytesOf(kIntel);
  const Records records = readRecords(file, formatOf(FormatId::IntelHex));
  Bytes chip(80, 0xFF);
  chip[0x30] = 1, chip[0x31] = 2, chip[0x32] = 3, chip[0x33] = 4;
  chip[0x40] = 0xAA, chip[0x41] = 0x55;
  EXPECT_EQ(place(records, {}, 80), chip);
  const Bytes moved{1, 2, 3, 4};
  EXPECT_EQ(place(records, {.at = 0, .range = Range{0x30, 0x3F}}, 0), moved);
  const Bytes behind{0xFF, 0xFF, 4};
  EXPECT_EQ(place(records, {.at = 1, .range = Range{0x32, 0x33}}, 3)[2], 4);
  EXPECT_THAT([&] { (void)place(records, {}, 64); }, refuses("data at 0040-0041, the chip ends"));
  EXPECT_THAT([&] { (void)place(records, {.at = 0xFFFFFFFF, .range = {}}, 0); },
              refuses("largest image ends"));
  const Placement elsewhere{.at = {}, .range = Range{0, 9}};
  EXPECT_THAT([&] { (void)place(records, elsewhere, 64); },
              refuses("nothing of it is at 0000-0009"));
}

// Odd length, odd address: what each format's blocks and words have to bear.
TEST(Formats, giveBackWhatWasWrittenAndNeverEndTheProgram) {
  Bytes image(777);
  for (std::size_t i = 0; i < image.size(); ++i)
    image[i] = static_cast<std::uint8_t>(i * 37 + i / 9);
  for (const Format& format : formats()) {
    if (!format.isWritten) continue;
    const Bytes file = writeRecords(image, 0x0101, format);
    const Records read = readRecords(file, format);
    const std::uint32_t at = format.id == FormatId::Binary ? 0 : 0x0101;
    ASSERT_EQ(read.blocks.size(), 1U) << format.name;
    EXPECT_EQ(read.blocks[0].address, at) << format.name;
    EXPECT_EQ(read.blocks[0].bytes, image) << format.name;
    if (format.id == FormatId::Binary) continue;
    const Bytes pair{1, 2};
    const Bytes last = writeRecords(pair, format.greatest - 1, format);
    EXPECT_EQ(readRecords(last, format).blocks.at(0).bytes, pair) << format.name;
    EXPECT_THROW((void)writeRecords(pair, format.greatest, format), ImageError);
  }
}

// The check values of the catalogues of CRCs; the digest of "abc" is in FIPS 180-4.
TEST(Identity, isTheOneThatOtherToolsTell) {
  const Bytes digits = bytesOf("123456789");
  EXPECT_EQ(sum16(digits), 0x1DDU);
  EXPECT_EQ(crc16(digits), 0x29B1U);
  EXPECT_EQ(crc32(digits), 0xCBF43926U);
  EXPECT_EQ(sha256(bytesOf("abc")),
            "ba7816bf8f01cfea414140de5dae2223b00361a396177a9cb410ff61f20015ad");
  Bytes image(4096, 0xFF);
  std::ranges::copy(bytesOf("Monitor 1.2\n"), image.begin() + 0x80);
  std::copy_n(image.begin(), 1024, image.begin() + 1024);
  std::copy_n(image.begin(), 2048, image.begin() + 2048);
  const Identity found = identify(image);
  EXPECT_EQ(found.period, 1024U);
  EXPECT_EQ(found.blankBytes, 4096U - 4 * 12);
  EXPECT_EQ(found.looksLike.at(1), "text at 0080: \"Monitor 1.2\"");
}

TEST(Changes, giveTheNewImageOrRefuse) {
  const Bytes image{0x01, 0x02, 0x03, 0x04, 0x05, 0x06};
  const auto is = [](const Bytes& a, const Bytes& b) { EXPECT_EQ(a, b); };
  is(fillRange(image, {1, 3}, Bytes{0xAA, 0xBB}), {0x01, 0xAA, 0xBB, 0xAA, 0x05, 0x06});
  is(copyRange(image, {0, 3}, 2), {0x01, 0x02, 0x01, 0x02, 0x03, 0x04});
  is(swapWordBytes(image, {2, 5}), {0x01, 0x02, 0x04, 0x03, 0x06, 0x05});
  is(reverseBits(image, {0, 2}), {0x80, 0x40, 0xC0, 0x04, 0x05, 0x06});
  is(splitLane(image, Lane::Odd), {0x02, 0x04, 0x06});
  is(joinLanes({1, 3}, {2, 4}), {1, 2, 3, 4});
  is(halve(image, Half::High), {0x04, 0x05, 0x06});
  is(twice({1, 2}), {1, 2, 1, 2});
  is(putChecksum(image, checksumNamed("sum"), {0, 3}, 4, ByteOrder::BigEndian),
     {0x01, 0x02, 0x03, 0x04, 0x00, 0x0A});
  is(putChecksum(image, checksumNamed("sum"), {0, 3}, 4, ByteOrder::LittleEndian),
     {0x01, 0x02, 0x03, 0x04, 0x0A, 0x00});
  EXPECT_THROW((void)fillRange(image, {5, 6}, Bytes{0}), ImageError);
  EXPECT_THROW((void)copyRange(image, {0, 3}, 3), ImageError);
  EXPECT_THROW((void)swapWordBytes(image, {1, 2}), ImageError);
  EXPECT_THROW((void)splitLane({1, 2, 3}, Lane::Even), ImageError);
  EXPECT_THROW((void)joinLanes({1}, {}), ImageError);
  EXPECT_THROW((void)insertAt(image, image, 0xFFFFFFFF), ImageError);
  EXPECT_THROW((void)twice(Bytes(kMostImageBytes)), ImageError);
  const ChecksumKind& crc = checksumNamed("crc32");
  EXPECT_THROW((void)putChecksum(image, crc, {0, 3}, 3, ByteOrder::BigEndian), ImageError);
}

TEST(EditHistory, goesBackAndForthAndKnowsWhatIsSaved) {
  EditHistory history;
  Bytes image{1, 2, 3, 4};
  const auto change = [&](const char* name, Bytes after) {
    history.note(name, image, after);
    image = std::move(after);
  };
  change("fill", {1, 9, 9, 4});
  change("nothing", {1, 9, 9, 4});
  history.markSaved();
  change("double", {1, 9, 9, 4, 1, 9, 9, 4});
  EXPECT_TRUE(history.isChanged());
  EXPECT_EQ(history.undo(image)->name, "double");
  EXPECT_FALSE(history.isChanged());
  EXPECT_EQ(history.undo(image)->name, "fill");
  EXPECT_EQ(image, (Bytes{1, 2, 3, 4}));
  EXPECT_FALSE(history.undo(image));
  EXPECT_EQ(history.redo(image)->name, "fill");
  EXPECT_EQ(history.redo(image)->name, "double");
  EXPECT_EQ(image, (Bytes{1, 9, 9, 4, 1, 9, 9, 4}));
  (void)history.undo(image);
  (void)history.undo(image);
  change("other", {1, 2, 3});
  EXPECT_TRUE(history.isChanged()) << "the saved image cannot be reached any more";
  EXPECT_FALSE(history.redo(image));
  EXPECT_EQ(history.undo(image)->name, "other");
}

TEST(EditHistory, takesBackEveryChangeWhereverTheMemoriesDiffer) {
  EditHistory history;
  std::vector<Bytes> images{Bytes(9, 0)};
  for (unsigned step = 1; step < 300; ++step) {
    Bytes next(step * 7 % 11, static_cast<std::uint8_t>(step % 2));
    for (std::size_t i = 0; i < next.size(); ++i) {
      if ((step * 5 + i * 3) % 7 < 2) next[i] ^= std::uint8_t{1};
    }
    history.note("change", images.back(), next);
    if (next != images.back()) images.push_back(std::move(next));
  }
  Bytes image = images.back();
  for (std::size_t i = images.size() - 1; i-- > 0;) {
    ASSERT_TRUE(history.undo(image));
    EXPECT_EQ(image, images[i]);
  }
}

TEST(EditHistory, takesTheDigitsOfAByteAsOneChangeAndForgetsTheOldest) {
  EditHistory history(1'000);  // bytes: a few changes
  Bytes memory{0x00, 0xAB};
  history.noteByte("typing", 1, 0x00, 0xA0, {.before = 1, .after = 2}, false);
  history.noteByte("typing", 1, 0xA0, 0xAB, {.before = 2, .after = 2}, true);
  EXPECT_EQ(history.undo(memory)->length, 1U);
  EXPECT_EQ(memory, (Bytes{0x00, 0x00}));
  for (int value = 0; value < 100; ++value) history.noteByte("typing", 0, 0, 1, {}, false);
  int steps = 0;
  while (history.undo(memory)) ++steps;
  EXPECT_LT(steps, 10);
  EXPECT_GT(steps, 1);
  EXPECT_TRUE(history.isChanged()) << "the image of the file cannot be reached any more";
}

TEST(SerialCounter, givesNoNumberTwiceAfterACrashAndThatOfABadChipAgain) {
  const test::TemporaryFolder folder;
  const SerialPlan plan{.start = 7, .step = 2, .counter = folder / "counter"};
  {
    SerialCounter counter(plan);
    EXPECT_EQ(counter.take(), "7");
    counter.confirm();
    EXPECT_EQ(counter.take(), "9");
    counter.giveBack();
    EXPECT_EQ(counter.take(), "9");
    EXPECT_THAT([&] { SerialCounter(SerialPlan(plan)); }, refuses("another run"));
  }  // the power fails
  SerialCounter again(plan);
  EXPECT_EQ(again.doubtful(), "9");
  EXPECT_EQ(again.take(), "11");
  EXPECT_EQ(serialBytes(parseSerialPlan("at=7FF0,bytes=3,order=be"), "258"), (Bytes{0, 1, 2}));
  EXPECT_EQ(serialBytes(parseSerialPlan("at=0,bytes=4,form=ascii"), "42"), bytesOf("0042"));
}

TEST(Compare, tellsEveryDifferenceAndWhatItMeans) {
  Bytes image(256);
  for (std::size_t i = 0; i < image.size(); ++i)
    image[i] = static_cast<std::uint8_t>(i * 167 + i / 7);
  const auto changed = [&](auto change) {
    Bytes chip(image.size());
    for (std::size_t i = 0; i < chip.size(); ++i) chip[i] = change(i);
    return chip;
  };
  const auto at = [&](std::size_t i) { return image[i % image.size()]; };
  const struct {
    Bytes chip;
    Meaning meaning;
    const char* text;
  } cases[] = {
      {changed([&](auto i) { return i == 9 ? std::uint8_t(image[i] | 1U) : image[i]; }),
       Meaning::Programmable, "a 1 that has to be a 0"},
      {changed([&](auto i) { return i == 7 ? std::uint8_t(image[i] & 0xFDU) : image[i]; }),
       Meaning::NeedsErasing, "1 bits are 0"},
      {changed([](auto) { return std::uint8_t{0xFF}; }), Meaning::AllBlank, "no chip"},
      {changed([](auto) { return std::uint8_t{0}; }), Meaning::AllZero, "00h"},
      {changed([&](auto i) { return std::uint8_t(image[i] | 8U); }), Meaning::DataLineStuck,
       "data line D3 is always 1"},
      {changed([&](auto i) { return image[i & ~std::size_t{0x20}]; }), Meaning::AddressLineStuck,
       "A5 is always 0"},
      {changed([&](auto i) { return std::uint8_t(image[i & ~std::size_t{0x80}] ^ 0x55U); }),
       Meaning::Aliased, "A7 0 and 1"},
      {changed([&](auto i) { return at(i + 256 - 16); }), Meaning::Shifted, "16 bytes later"},
      {changed([&](auto i) { return at(i + 1); }), Meaning::Shifted, "1 byte earlier"},
      {changed([&](auto i) { return image[i ^ 1U]; }), Meaning::LanesSwapped, "exchanged"},
  };
  for (const auto& c : cases) {
    const Comparison result = compare(c.chip, image);
    ASSERT_FALSE(result.findings.empty()) << c.text;
    EXPECT_EQ(result.findings.front().meaning, c.meaning) << c.text << result.findings.front().text;
    EXPECT_NE(result.findings.front().text.find(c.text), std::string::npos)
        << result.findings.front().text;
  }
  EXPECT_TRUE(compare(image, image).isEqual());
  Bytes chip = image;
  for (const std::size_t i : {3U, 4U, 200U}) chip[i] = static_cast<std::uint8_t>(~image[i]);
  const Comparison few = compare(chip, image);
  EXPECT_EQ(few.ranges, (std::vector<Range>{{3, 4}, {200, 200}}));
  EXPECT_EQ(few.bitsToProgram + few.bitsToErase, 24U);
  EXPECT_EQ(rangeMeaning(chip, image, {3, 4}), "needs erasing");
  std::fill_n(chip.begin() + 16, 4, std::uint8_t{0xFF});
  for (std::size_t i = 32; i < 36; ++i) chip[i] = image[i] | 0x0FU;
  std::copy_n(image.begin() + 64, 16, chip.begin() + 66);
  EXPECT_EQ(rangeMeaning(chip, image, {16, 19}), "FFh in the chip");
  EXPECT_EQ(rangeMeaning(chip, image, {32, 35}), "can be programmed");
  EXPECT_EQ(rangeMeaning(chip, image, {66, 81}), "shifted, 2 bytes later");
}

}  // namespace
}  // namespace kestrel::images
