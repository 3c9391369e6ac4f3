#include <gmock/gmock.h>

#include <cstdio>
#include <map>

#include "cli/run_program.h"

namespace kestrel::test {
namespace {

using ::testing::HasSubstr;

std::string outputOf(const std::string& command) {
  std::string text;
  FILE* const pipe = ::popen(command.c_str(), "r");
  for (int byte = 0; (byte = std::fgetc(pipe)) != EOF;) text += static_cast<char>(byte);
  ::pclose(pipe);
  return text;
}

/// What the decoders of a logic analyser read in the wave file.
std::string decoded(const Workplace& place, const std::string& decoder, const std::string& shown) {
  return outputOf("sigrok-cli -i " + place.path("w.vcd") + " -I vcd -P i2c:scl=SCL:sda=SDA" +
                  decoder + " -A " + shown + " 2>&1");
}

TEST(Waves, ofASerialChipAreReadByALogicAnalyser) {
  if (outputOf("command -v sigrok-cli").empty()) GTEST_SKIP() << "sigrok-cli is not installed";
  const Workplace place;
  std::string image(4'096, '\xFF');
  for (std::size_t i = 0; i < 64; ++i) image[i] = static_cast<char>(i * 37);
  place.put("image.bin", image.substr(0, 64));
  const std::string eeprom = ",eeprom24xx:chip=microchip_24lc64";
  for (const char* const model : {"4", "5"}) {
    const std::string board = std::string("--model ") + model + " --chip 24C32=chip.bin ";
    ASSERT_EQ(place.simulate(board + "program -d 24C32 -i image.bin -y --waves w.vcd").status, 0);
    EXPECT_THAT(decoded(place, eeprom, "eeprom24xx=page-write"),
                HasSubstr("(addr=0000, 32 bytes): 00 25 4A 6F 94"));
    EXPECT_THAT(decoded(place, "", "i2c=data-write"),
                HasSubstr("Data write: 20\ni2c-1: Data write: A0"))
        << "the second page";
    const Outcome read = place.simulate(board + "read -d 24C32 --waves w.vcd");
    EXPECT_THAT(read.err, HasSubstr("--waves: w.vcd: "));
    EXPECT_THAT(decoded(place, eeprom, "eeprom24xx=seq-random-read"),
                HasSubstr("4096 bytes): 00 25 4A 6F 94"));
  }
}

/// When each signal of a wave file took which value, in ticks of 100 ns.
std::map<std::string, std::map<long, std::string>> signalsOf(const std::string& file) {
  std::map<std::string, std::string> names;
  std::map<std::string, std::map<long, std::string>> signals;
  std::istringstream lines(file);
  long tick = 0;
  for (std::string line; std::getline(lines, line);) {
    std::istringstream words(line);
    std::string word, code, name;
    words >> word;
    if (word == "$var") {
      words >> word >> word >> code >> name;
      names[code] = name;
    } else if (word[0] == '#') {
      tick = std::stol(word.substr(1));
    } else if (word[0] == 'r') {
      words >> code;
      signals[names[code]][tick] = word.substr(1);
    } else if (word[0] == '0' || word[0] == '1') {
      signals[names[word.substr(1)]][tick] = word[0];
    }
  }
  return signals;
}

TEST(Waves, ofAnEpromShowThePulseUnderItsVoltage) {
  const Workplace place;
  place.put("image.bin", std::string(1, '\x5A'));
  ASSERT_EQ(
      place.simulate("program -d 2764 --vpp 21 --pad-ff -i image.bin -y --waves w.vcd").status, 0);
  EXPECT_THAT(place.text("w.vcd"), HasSubstr("$timescale 100 ns $end\n"));
  auto signals = signalsOf(place.text("w.vcd"));
  int pulses = 0;
  for (const auto& [tick, level] : signals["/PGM"]) {
    if (level != "0" || tick < 100) continue;
    const long width = signals["/PGM"].upper_bound(tick)->first - tick;
    const auto levelThen = [&](const char* name) {
      return std::prev(signals[name].upper_bound(tick))->second;
    };
    EXPECT_NEAR(static_cast<double>(width), 10'000, 200) << "1 ms";
    EXPECT_EQ(levelThen("VPP_volts"), "21");
    EXPECT_EQ(levelThen("data[6]") + levelThen("D6") + levelThen("D7"), "110");
    EXPECT_EQ(levelThen("/CE") + levelThen("/OE") + levelThen("VCC"), "011");
    ++pulses;
  }
  EXPECT_EQ(pulses, 1);
  ASSERT_EQ(place.simulate("read -d 27C256 --waves w.vcd").status, 0);
  EXPECT_THAT(place.text("w.vcd"), HasSubstr("$comment Eprom 27C256 in the socket"));
  signals = signalsOf(place.text("w.vcd"));
  EXPECT_EQ(signals["chip_drives_data"].size(), 3U) << "on for the whole read, though without /WE";
}

}  // namespace
}  // namespace kestrel::test
