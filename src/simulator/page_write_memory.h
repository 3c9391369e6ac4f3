#pragma once

#include <array>
#include <bitset>
#include <cstdint>
#include <span>
#include <string_view>

#include "simulator/byte_wide_memory.h"

namespace kestrel::sim {

// Memories of 32 KB that write whole pages by themselves: 28C256, CAT28C257, AT29C256.
//
//   pin        28C256   AT29C256
//   1          A14      /WE
//   27         /WE      A14
//
// Every byte is a strobe of its own. A load stays open while the next strobe comes within the load
// window; then the write cycle begins, and all bytes of the load go into the page of the last
// address. On the AT29C256 the bytes of the page that were not loaded become FFh.
//
// Commands are the first bytes of a load, AAh at 5555h, 55h at 2AAAh, and at 5555h:
//   A0h                               one load is let through; protection on
//   80h, AAh, 55h (as above), 20h     protection off
//   90h, F0h                          AT29C256: identify (maker at 0, device at 1), and leave
// A lone F0h leaves the identify mode too. A command takes effect with the write cycle of its load,
// like the data; a protected chip goes through the cycle for a refused load as well.
//
// Not modelled: wear, the chip erase command, the modes with 12 V on /OE or A9.

/// One part of the family.
struct PageWriteType {
  std::string_view name;
  std::uint32_t pageBytes = 64;  ///< at most 128
  int pinWe = 0;
  int pinA14 = 0;
  Nanoseconds loadWindow = 0;
  bool windowFromFall = false;  ///< it begins with the falling edge of /WE, not the rising one
  Nanoseconds writeCycle = 0;   ///< of a typical part, from the last byte
  bool fillsPage = false;       ///< bytes not loaded become FFh
  std::uint8_t makerCode = 0;   ///< 0: no identify mode
  std::uint8_t deviceCode = 0;
};

[[nodiscard]] std::span<const PageWriteType> pageWriteTypes();

class PageWriteMemory final : public ByteWideMemory {
 public:
  explicit PageWriteMemory(const PageWriteType& type);

  [[nodiscard]] ChipSettings settings() const override;
  void apply(const ChipSettings& settings) override;

 protected:
  void settle(Nanoseconds now) override;
  [[nodiscard]] Nanoseconds busyUntil() const override;
  bool beginWrite() override;
  void endWrite(const Strobe& strobe, Findings& findings) override;
  [[nodiscard]] std::uint8_t read(std::uint32_t address, bool toggle) const override;
  void losePower() override;
  void contentsReplaced() override { phase_ = Phase::idle; }

 private:
  static constexpr std::uint32_t kGreatestPage = 128;
  static constexpr int kNoCommand = -1;

  enum class Phase { idle, loading, writing };
  enum class Command { none, openLoad, unprotect, identify, leaveIdentify };
  struct Load {
    std::array<std::uint8_t, kGreatestPage> data{};
    std::bitset<kGreatestPage> loaded;  // those of data that were sent
    Strobe last;
    int matched = 0;  // bytes of a command so far, or kNoCommand
    Command command = Command::none;
  };

  void followCommand(const Strobe& strobe);
  [[nodiscard]] Command commandOf(int matched, const Strobe& strobe) const;
  void finishLoad();
  void storePage();

  PageWriteType type_;
  Nanoseconds writeCycle_;
  bool isProtected_ = false;
  bool neverEnds_ = false;
  bool identifies_ = false;
  Phase phase_ = Phase::idle;
  Nanoseconds phaseEnds_ = kNever;
  Load load_;
};

}  // namespace kestrel::sim
