#include "hardware/ports/suspend_watch.h"

#include <gtest/gtest.h>

namespace kestrel {
namespace {

constexpr std::int64_t kSecond = 1'000'000'000;

TEST(SuspendWatch, noticesASleepBetweenTwoPulsesOnce) {
  SuspendWatch watch;
  EXPECT_FALSE(watch.look(100 * kSecond, 130 * kSecond)) << "slept before the program began";
  EXPECT_FALSE(watch.look(101 * kSecond, 131 * kSecond));
  EXPECT_TRUE(watch.look(102 * kSecond, 192 * kSecond));
  EXPECT_FALSE(watch.look(103 * kSecond, 193 * kSecond));
}

TEST(SuspendWatch, doesNotMindASleepBetweenCommands) {
  SuspendWatch watch;
  static_cast<void>(watch.look(100 * kSecond, 100 * kSecond));
  EXPECT_FALSE(watch.look(110 * kSecond, 3'710 * kSecond));
}

TEST(SuspendWatch, doesNotTakeABusyMachineForASleep) {
  SuspendWatch watch;
  static_cast<void>(watch.look(100 * kSecond, 100 * kSecond));
  EXPECT_FALSE(watch.look(101 * kSecond, 101 * kSecond + kSecond / 2));
}

}  // namespace
}  // namespace kestrel
