#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <string>
#include <vector>

#include "simulator/board.h"
#include "support/form_rig.h"

namespace kestrel::test {

/// A device of each family, to be handled by the whole program.
struct Family {
  const char *code, *device, *chip;
  std::int32_t bytes;  // handled: of EPROMs the beginning, to be quick
  sim::Model model = sim::Model::kestrel5;
  std::size_t voltage = 0;   // Voltage_button: 1 = 12.5 V, 2 = 21 V; 0: none is pressed
  bool isProgrammed = true;  // these two end with the acknowledge report on a true chip
};

inline constexpr auto k4 = sim::Model::kestrel4, k5 = sim::Model::kestrel5,
                      k6 = sim::Model::kestrel6;

// clang-format off
inline constexpr Family kFamilies[]{
    {"P1", "Eprom 2732A",        "2732A",    512, k5, 2},
    {"P2", "Eprom 2764",         "2764",     512, k6, 2},
    {"P3", "Eprom 27C128",       "27C128",   512, k4, 1},
    {"P4", "Eprom 27C256",       "27C256",   512, k5, 1},
    {"P5", "Eprom 27C512",       "27C512",   512, k6, 1},
    {"P6", "Eprom 27C010",       "27C010",   512, k4, 1},
    {"P7", "Eprom 27C020",       "27C020",   512, k5, 1},
    {"P8", "Eprom 27C040",       "27C040",   512, k6, 1},
    {"P9", "Eprom 27C080",       "27C080",   512, k4, 1},
    {"EN", "Eeprom XICOR X28C256", "28C256", 512, k5},
    {"SA", "Eeprom 24C08",       "24C08",   1024, k6, 0, false},
    {"SB", "Eeprom 24C16",       "24C16",   2048, k4, 0, false},
    {"SC", "Eeprom 24C32",       "24C32",    512, k5},
};
// clang-format on

[[nodiscard]] inline Bytes padded(Bytes bytes, std::size_t size) {
  bytes.resize(size, 0xFF);
  return bytes;
}

/// What the procedures asked of the port.
struct FamilyTrace {
  std::string programming;
  std::string reading;
  std::vector<std::string> findings;  // what the bench has seen that no real socket forgives

  bool operator==(const FamilyTrace&) const = default;
};

/// Programs, verifies and reads back.
template <typename Form>
FamilyTrace traceOf(const Family& family) {
  Form f(family.model);
  Bytes image = randomBytes(static_cast<std::size_t>(family.bytes), 41);
  image[0] = 0xC3;  // a 24Cxx whose first bit is 0 holds SDA, and the next command, after a verify
  if (family.model == k4 && family.voltage == 2) f.board->setVppByHand(21'000);
  f.start();
  f.insert(family.chip);
  if (!family.isProgrammed) f.insert(family.chip, padded(image, f.chipContents().size()));
  f.rig.select(family.device);
  EXPECT_EQ(f.rig.state.FamilyCode, family.code);
  EXPECT_EQ(f.rig.state.KestrelModel, static_cast<int>(family.model)) << "told apart by its port";
  f.rig.openImage(image);
  if (family.voltage != 0) f.rig.controls.Voltage_button[family.voltage].press();
  f.rig.state.DeviceSizeBytes = family.bytes;
  f.rig.clearLog();
  f.trace.str("");
  if (family.isProgrammed) {
    f.rig.program();
    EXPECT_TRUE(f.rig.logged("Programming Device Successfull"));
  }
  FamilyTrace trace{.programming = f.trace.str(), .reading = {}, .findings = {}};
  f.trace.str("");
  f.rig.press("Verify_button");
  EXPECT_TRUE(f.rig.logged("Device Contents MATCHES with Buffer Contents"));
  std::ranges::fill(f.rig.state.CodeBuffer, std::uint8_t{0});
  f.rig.press("Read_button");
  EXPECT_TRUE(std::equal(image.begin(), image.end(), f.rig.state.CodeBuffer.begin()));
  EXPECT_EQ(f.board->vppPins(), 0U);
  trace.reading = f.trace.str();
  for (const auto& finding : f.bench.findings().all()) trace.findings.push_back(finding.text);
  return trace;
}

}  // namespace kestrel::test
