#include "cli/session.h"

#include <iostream>

#include "cli/exit_status.h"
#include "platform/file_names.h"
#include "platform/runtime_error.h"

namespace kestrel::cli {
namespace {

constexpr const char* kNoBoardText =
    "no board answers. Connect it to a parallel port with its power on and its socket empty, then "
    "run kestrel-cli detect; --simulate works without a board";

/// The code file's full path, as a file dialog gives it.
std::string fullPath(const std::string& name) { return fullName(name).string(); }

void tell(const std::string& text) {
  if (!text.empty()) std::cerr << "kestrel-cli: " << text << std::endl;
}

}  // namespace

int Session::run(const Command& command) {
  int status = attempt(command);
  shutDown(status);
  return p_.signals.isEndRequested() ? p_.signals.exitStatus() : status;
}

int Session::attempt(const Command& command) {
  try {
    startUp(command);
    applyOptions();
    command.press(*this);
    if (p_.arguments.saveFile) saveBuffer(*p_.arguments.saveFile);
    return kDone;
  } catch (const EarlyEnd& end) {
    p_.view.clearProgress();
    tell(end.what());
    return end.status();
  } catch (const std::exception& error) {
    p_.view.clearProgress();
    tell(error.what());
    return kFailed;
  }
}

// The hardware test wants the socket empty: it reads the bus while chip and outputs are enabled.
// The chip goes in when it is over, as at the bench.
void Session::startUp(const Command& command) {
  if (p_.simulated != nullptr) p_.simulated->takeChipOut();
  p_.form.Form_Load();
  if (p_.simulated != nullptr) {
    if (!command.testsHardware) p_.simulated->putChipBack();
    p_.simulated->startUpDone();
  }
  endUnlessDone({});
  if (command.needsBoard && !isReady()) throw EarlyEnd(kNoBoard, kNoBoardText);
}

bool Session::isReady() { return controls().Ready_label.caption() == "Ready"; }

void Session::applyOptions() {
  const Arguments& a = p_.arguments;
  Controls& c = controls();
  if (a.setup) loadSetup(*a.setup);
  if (p_.device != nullptr) {
    use([&] { c.Device.setPosition(p_.device->position); });
  }
  if (a.speed) use([&] { c.Slider1.setValue(*a.speed); });
  if (a.voltage) chooseVoltage(*a.voltage);
  if (a.lane) use([&] { c.HiLow_button.at(*a.lane).press(); });
  if (a.blankCheck) tick(c.CheckBlankPriorProgramming, "--blank-check");
  if (a.verify) tick(c.VerifyAfterProgramming, "--verify");
  if (a.codeFile) openCodeFile(*a.codeFile);
}

void Session::loadSetup(std::size_t slot) {
  const std::string digit = std::to_string(slot);
  press(controls().Setup, {});
  press(controls().LoadSetup.at(slot - 1), "--setup " + digit + ": there is no file KSSetup" +
                                               digit + ".INI in this folder; save-setup " + digit +
                                               " NAME makes one");
}

void Session::chooseVoltage(std::size_t index) {
  OptionButton& button = controls().Voltage_button.at(index);
  if (!button.enabled()) {
    std::string offered;
    for (const OptionButton& other : controls().Voltage_button) {
      if (other.enabled()) offered += (offered.empty() ? "" : ", ") + other.caption();
    }
    throw EarlyEnd(kBadUsage, unless("--vpp", state().DeviceName + " does not take " +
                                                  button.caption() + " (offered: " + offered +
                                                  "); leave --vpp out or choose one of these"));
  }
  use([&button] { button.press(); });
}

// The boxes are not on the form before a device is selected.
void Session::tick(CheckBox& box, const char* option) {
  if (!box.visible() || !box.enabled()) {
    throw EarlyEnd(kBadUsage, unless(option, "not offered"));
  }
  if (!box.isTicked()) use([&box] { box.press(); });
}

void Session::openCodeFile(const std::string& name) {
  const auto open = [&] {
    answerWith(fullPath(name));
    press(controls().mnuFileOpenCode, {});
  };
  open();
  if (p_.arguments.padFF) {
    // The buffer is erased behind the name of the file, which is then read into it once more.
    press(controls().Erase_button, "--pad-ff: there is no buffer to fill");
    open();
  }
  tellLengths(name);
}

// A file of another length than the chip's is no error: the rest keeps what the buffer held.
void Session::tellLengths(const std::string& name) const {
  const auto bytes = static_cast<std::int64_t>(p_.form.state().CodeLength);
  const auto size = static_cast<std::int64_t>(p_.form.state().DeviceSizeBytes);
  if (bytes == 0 && p_.arguments.command == "program") {
    throw EarlyEnd(kBadUsage, shownName(name) + " is empty: there is nothing to program");
  }
  if (size == 0 || bytes == size) return;
  const std::string lengths = shownName(name) + " holds " + std::to_string(bytes) +
                              " bytes, the device " + std::to_string(size) + ": ";
  if (bytes > size) {
    tell(lengths + "the last " + std::to_string(bytes - size) + " are left out");
  } else {
    tell(
        lengths + "the last " + std::to_string(size - bytes) +
        (p_.arguments.padFF ? " get FFh" : " get what the buffer held before; --pad-ff gives FFh"));
  }
}

void Session::saveBuffer(const std::string& name) {
  answerWith(fullPath(name));
  press(controls().mnuFileSaveCodeAs,
        "-o: the buffer holds nothing to save; use it with read, or give -i FILE");
}

void Session::press(Button& button, const std::string& whyDisabled) {
  endUnlessDone(tryToPress(button, whyDisabled));
}

CommandResult Session::tryToPress(Button& button, const std::string& whyDisabled) {
  if (!button.enabled()) throw EarlyEnd(kBadUsage, whyDisabled);
  return p_.form.runner().press(button);
}

void Session::use(const std::function<void()>& event) {
  endUnlessDone(p_.form.runner().run(event));
}

void Session::endUnlessDone(const CommandResult& result) const {
  if (p_.signals.isEndRequested()) throw EarlyEnd(p_.signals.exitStatus());
  tell(result.remark);
  // What a box or a question has told already is not told again.
  const bool isTold = result.ending != Ending::Differs && result.ending != Ending::Failed;
  if (result.ending != Ending::Done) {
    throw EarlyEnd(statusOf(result.ending), isTold ? std::string() : result.reason);
  }
}

std::string Session::remark(std::string_view (*find)(const devices::Family&)) {
  return std::string(find(devices::familyOf(state().FamilyCode)));
}

std::string Session::unless(const std::string& what, const std::string& reason) {
  const bool isSelected = !state().FamilyCode.empty();
  return what + ": " + (isSelected ? reason : "no device is selected; add -d NAME");
}

void Session::endWaves(int& status) {
  if (p_.waves == nullptr) return;
  try {
    p_.waves->end();
    tell("--waves: " + p_.waves->summary());
  } catch (const FileError& error) {
    tell(std::string("--waves: ") + error.what());
    if (status == kDone) status = kBadUsage;
  }
}

// The contents of the simulated chip are kept whatever happened before.
void Session::shutDown(int& status) {
  p_.form.Form_Unload();
  p_.view.clearProgress();
  endWaves(status);
  if (p_.simulated == nullptr) return;
  p_.simulated->putChipBack();
  try {
    p_.simulated->saveChip();
  } catch (const FileError& error) {
    tell(std::string("--chip: ") + error.what());
    if (status == kDone) status = kBadUsage;
  }
}

}  // namespace kestrel::cli
