#include "app/form/backup.h"

#include <algorithm>
#include <ctime>

#include "app/state/text_format.h"
#include "images/checksums.h"
#include "images/identity.h"

namespace kestrel::form {
namespace {

/// A name that is taken gets a number behind it. One that cannot be looked at (a closed folder, a
/// name that is too long) stands as it is: writing it tells why.
std::filesystem::path freeName(const std::filesystem::path& folder, const std::string& name) {
  std::filesystem::path file = folder / (name + ".bin");
  std::error_code unseen;
  for (int i = 2; std::filesystem::exists(file, unseen); ++i) {
    file = folder / (name + "-" + std::to_string(i) + ".bin");
  }
  return file;
}

}  // namespace

std::string dateAndTime() {
  const std::time_t now = std::time(nullptr);
  std::tm local{};
  ::localtime_r(&now, &local);
  std::string text(32, '\0');
  text.resize(std::strftime(text.data(), text.size(), "%Y-%m-%dT%H:%M:%S", &local));
  return text;
}

bool isBlank(const std::vector<std::uint8_t>& chip) { return images::isAll(chip, kErased); }

CommandResult keepContents(frmMain& form, const std::filesystem::path& folder,
                           const std::vector<std::uint8_t>& chip) {
  if (isBlank(chip)) return {};
  std::string device(trimmed(form.state().DeviceName));
  std::ranges::replace_if(
      device, [](char c) { return c == ' ' || c == '/'; }, '_');
  std::string time = dateAndTime();
  std::erase_if(time, [](char c) { return c == '-' || c == ':'; });
  const std::string sum = images::addressText(images::sum16(chip));
  return form.exportImage(freeName(folder, device + "-" + time + "-" + sum).string(), chip);
}

}  // namespace kestrel::form
