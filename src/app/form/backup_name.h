#pragma once

#include <cstdint>
#include <ctime>
#include <filesystem>
#include <string>

#include "images/ranges.h"

namespace kestrel::form {

/// The local date and time, for example 2026-11-21T17:05:09.
[[nodiscard]] inline std::string dateAndTime() {
  const std::time_t now = std::time(nullptr);
  std::tm local{};
  ::localtime_r(&now, &local);
  std::string text(32, '\0');
  text.resize(std::strftime(text.data(), text.size(), "%Y-%m-%dT%H:%M:%S", &local));
  return text;
}

/// A file for what a chip held: device, time, sum. A name that is taken gets a number behind it.
[[nodiscard]] inline std::string backupName(const std::filesystem::path& folder, std::string device,
                                            std::uint32_t sum) {
  for (char& c : device) {
    if (c == ' ' || c == '/') c = '_';
  }
  std::string time = dateAndTime();
  std::erase_if(time, [](char c) { return c == '-' || c == ':'; });
  const std::string name = device + "-" + time + "-" + images::addressText(sum);
  std::filesystem::path file = folder / (name + ".bin");
  for (int i = 2; std::filesystem::exists(file); ++i) {
    file = folder / (name + "-" + std::to_string(i) + ".bin");
  }
  return file.string();
}

}  // namespace kestrel::form
