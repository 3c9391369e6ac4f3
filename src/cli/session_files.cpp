// The files of a session: -i, -o, --backup.

#include <algorithm>
#include <span>

#include "app/form/backup.h"
#include "app/work/work_at_form.h"
#include "cli/exit_status.h"
#include "cli/session.h"
#include "devices/families.h"
#include "images/identity.h"
#include "images/image_file.h"
#include "platform/file_names.h"
#include "platform/file_target.h"
#include "platform/runtime_error.h"

namespace kestrel::cli {
namespace {

/// The code file's full path, as a file dialog gives it.
std::string fullPath(const std::string& name) { return fullName(name).string(); }

}  // namespace

// What cannot be written is met before the work that would be lost with it. A chip that is only
// read leaves its file as it is.
void Session::tryFiles(const std::vector<const Command*>& commands) const {
  if (p_.arguments.saveFile) const FileTarget tried(fullPath(*p_.arguments.saveFile));
  if (p_.simulated != nullptr)
    p_.simulated->tryChipFile(std::ranges::any_of(commands, &Command::writesChip));
}

// What is in the chip goes into a file of its own before it is written over.
void Session::keepChip() {
  if (!controls().Read_button.enabled()) {
    throw EarlyEnd(kBadUsage, unless("--backup", "not offered for this device"));
  }
  std::vector<std::uint8_t> chip;
  endUnlessDone(p_.form.readAside(chip));
  if (images::isAll(chip, kErased) && !p_.arguments.quiet) {
    p_.out << "The chip is blank: there is nothing to keep" << std::endl;
  }
  endUnlessDone(form::keepContents(p_.form, *p_.arguments.backup, chip));
  last_ = {};
}

void Session::openCodeFile(const std::string& name) {
  if (p_.arguments.image.isImport()) {
    importCodeFile(name);
    printLengths(name);
    return;
  }
  const auto open = [&] {
    answerWith(fullPath(name));
    press(controls().mnuFileOpenCode, {});
  };
  work::openPadded(p_.arguments.padFF, open, [this] {
    press(controls().Erase_button, "--pad-ff: there is no buffer to fill");
  });
  printLengths(name);
  hintForRaw(name);
}

// Holes are FFh, as far as the chip goes.
void Session::importCodeFile(const std::string& name) {
  const work::ImageOptions& image = p_.arguments.image;
  try {
    const images::Records records = images::readImageFile(name, image.formatToRead(), &p_.stop);
    const auto size = static_cast<std::size_t>(state().DeviceSizeBytes);
    endUnlessDone(p_.form.loadImage(fullPath(name), place(records, image.placement, size),
                                    images::describe(records)));
  } catch (const images::ImageError& error) {
    throw EarlyEnd(kBadUsage, shownName(name) + ": " + error.what());
  } catch (const OperationStopped&) {
    throw EarlyEnd(p_.signals.exitStatus());
  }
}

void Session::hintForRaw(const std::string& name) const {
  const auto bytes =
      std::span(state().CodeBuffer).first(static_cast<std::size_t>(state().CodeLength));
  const std::string hint = images::hintForRaw(bytes);
  if (!hint.empty()) printMessage(shownName(name) + ": " + hint);
}

// A file of another length than the chip's is no error.
void Session::printLengths(const std::string& name) const {
  const std::int64_t bytes = state().CodeLength;
  const std::int64_t size = state().DeviceSizeBytes;
  const bool programs = p_.arguments.runs("program");
  for (const char* const command : {"program", "compare"}) {
    if (bytes != 0 || !p_.arguments.runs(command)) continue;
    throw EarlyEnd(kBadUsage, shownName(name) + " is empty: there is nothing to " + command);
  }
  if (size == 0 || bytes == size) return;
  const std::string lengths = shownName(name) + " holds " + std::to_string(bytes) +
                              (bytes == 1 ? " byte" : " bytes") + ", the device " +
                              std::to_string(size) + ": ";
  const auto last = [](std::int64_t count) { return "the last " + std::to_string(count); };
  if (bytes > size) {
    printMessage(lengths + last(bytes - size) + " are left out");
  } else if (programs) {
    printMessage(lengths + shortFileText(last(size - bytes)));
  } else if (p_.arguments.runs("verify") || p_.arguments.runs("compare")) {
    printMessage(lengths + "it is compared as far as the file goes");
  }
}

std::string Session::shortFileText(const std::string& rest) const {
  const std::int32_t kept =
      devices::bytesKept(devices::familyOf(state().FamilyCode), state().algorithms,
                         state().DeviceSizeBytes, state().CodeLength);
  if (kept > 0) {
    return "the last " + std::to_string(kept) +
           " stay as they are; --algorithms datasheet writes them too";
  }
  return rest +
         (p_.arguments.padFF ? " get FFh" : " get what the buffer held before; --pad-ff gives FFh");
}

void Session::exportBuffer(const std::string& name) {
  const work::ImageOptions& image = p_.arguments.image;
  const bool isForInput = p_.arguments.codeFile.has_value();
  const auto bytes =
      std::span(state().CodeBuffer).first(static_cast<std::size_t>(state().CodeLength));
  try {
    const images::Bytes file = images::exported(
        bytes, isForInput ? images::Placement{} : image.placement, image.formatToWrite(name));
    endUnlessDone(p_.form.exportImage(fullPath(name), file));
  } catch (const images::ImageError& error) {
    throw EarlyEnd(kBadUsage, std::string("-o: ") + error.what());
  }
}

void Session::saveBuffer(const std::string& name) {
  if (p_.arguments.image.isExport(p_.arguments.codeFile.has_value())) {
    exportBuffer(name);
    return;
  }
  answerWith(fullPath(name));
  press(controls().mnuFileSaveCodeAs,
        "-o: the buffer holds nothing to save; use it with read, or give -i FILE");
}

}  // namespace kestrel::cli
