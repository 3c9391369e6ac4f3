#include "app/form/backup.h"

#include <algorithm>

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

CommandResult keepContents(frmMain& form, const std::filesystem::path& folder,
                           const std::vector<std::uint8_t>& chip) {
  if (images::isAll(chip, kErased)) return {};
  std::string device(trimmed(form.state().DeviceName));
  std::ranges::replace_if(
      device, [](char c) { return c == ' ' || c == '/'; }, '_');
  std::string time = form.dateAndTime();
  std::erase_if(time, [](char c) { return c == '-' || c == ':'; });
  const std::string sum = images::addressText(images::sum16(chip));
  return form.exportImage(freeName(folder, device + "-" + time + "-" + sum).string(), chip);
}

}  // namespace kestrel::form
