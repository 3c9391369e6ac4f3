#include "cli/session.h"

#include <array>
#include <iostream>

#include "cli/exit_status.h"
#include "platform/file_names.h"
#include "platform/file_target.h"
#include "platform/runtime_error.h"
#include "setups/setup_files.h"

namespace kestrel::cli {
namespace {

constexpr const char* kNoBoardText =
    "no board answers. Connect it to a parallel port with its power on and its socket empty, then "
    "run kestrel-cli detect; --simulate works without a board";

constexpr const char* kTestText =
    ". Run kestrel-cli detect: the hardware test finds the board and writes that file anew";

/// The code file's full path, as a file dialog gives it.
std::string fullPath(const std::string& name) { return fullName(name).string(); }

void tell(const std::string& text) {
  if (!text.empty()) std::cerr << "kestrel-cli: " << shownName(text) << std::endl;
}

}  // namespace

int Session::run(const Command& command) {
  tryFiles(command);
  int status = attempt(command);
  shutDown(status);
  return p_.signals.isEndRequested() ? p_.signals.exitStatus() : status;
}

int Session::attempt(const Command& command) {
  try {
    startUp(command);
    applyOptions();
    if (command.needsBoard) checkBoard();
    if (command.worksOnMemory) checkMemory();
    command.press(*this);
    if (p_.arguments.saveFile) saveBuffer(*p_.arguments.saveFile);
    return kDone;
  } catch (const EarlyEnd& end) {
    p_.view.clearProgress();
    tell(end.what());
    return end.status();
  } catch (const FileError& error) {
    p_.view.clearProgress();
    tell(error.what());
    return kBadUsage;
  } catch (const std::exception& error) {
    p_.view.clearProgress();
    tell(error.what());
    return kFailed;
  }
}

// What cannot be written is met before the work that would be lost with it. A chip that is only
// read leaves its file as it is.
void Session::tryFiles(const Command& command) const {
  if (p_.arguments.saveFile) const FileTarget tried(fullPath(*p_.arguments.saveFile));
  if (p_.simulated != nullptr) p_.simulated->tryChipFile(command.writesChip);
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
  const bool isChosen = p_.arguments.port || p_.arguments.model;
  if (command.needsBoard && !isChosen) checkBoard();
}

void Session::checkBoard() const {
  const std::string reason = p_.form.whyNoBoard();
  if (!reason.empty()) throw EarlyEnd(kNoBoard, reason + kTestText);
  if (!isReady()) throw EarlyEnd(kNoBoard, kNoBoardText);
}

// A setup may tick neither; the command would do nothing, and well.
void Session::checkMemory() const {
  const Controls& c = p_.form.controls();
  if (p_.device == nullptr && p_.form.state().FamilyCode.empty()) return;  // told by the command
  if (c.CheckCode.isTicked() || c.CheckData.isTicked()) return;
  throw EarlyEnd(kBadUsage, "neither the code nor the data memory is ticked: there is nothing to " +
                                std::string(p_.arguments.command) + "; -d NAME ticks the code");
}

bool Session::isReady() const { return p_.form.controls().Ready_label.caption() == "Ready"; }

void Session::applyOptions() {
  const Arguments& a = p_.arguments;
  Controls& c = controls();
  if (a.setup) loadSetup(*a.setup);
  choosePort();
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

void Session::choosePort() {
  Controls& c = controls();
  const std::array<Button*, 3> models{&c.ForceKestrel4, &c.ForceKestrel5, &c.ForceKestrel6};
  if (p_.arguments.port) use([&] { c.LPTSelection.at(*p_.arguments.port).press(); });
  if (p_.arguments.model) press(*models.at(*p_.arguments.model), {});
}

void Session::loadSetup(std::size_t slot) {
  const std::string digit = std::to_string(slot);
  press(controls().Setup, {});
  // A file that is there and cannot be used has its own reason.
  if (!controls().LoadSetup.at(slot - 1).enabled()) (void)setups::summaryOf(".", slot);
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

void Session::confirm(const std::string& question) {
  const Answer answer = p_.dialogs.messageBox({.text = question,
                                               .title = "Safety Question",
                                               .icon = MessageIcon::Question,
                                               .buttons = MessageButtons::OkCancel,
                                               .defaultAnswer = Answer::Cancel});
  if (p_.signals.isEndRequested()) throw EarlyEnd(p_.signals.exitStatus());
  if (answer != Answer::Ok) throw EarlyEnd(kCancelled);
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

void Session::finish(int& status, const char* option, const std::function<void()>& steps) {
  try {
    steps();
  } catch (const FileError& error) {
    tell(std::string(option) + ": " + error.what());
    if (status == kDone) status = kBadUsage;
  } catch (const OperationStopped&) {
    // By the signal that the status tells.
  }
}

// The contents of the simulated chip are kept whatever happened before.
void Session::shutDown(int& status) {
  p_.form.Form_Unload();
  p_.view.clearProgress();
  tellVoltage(status);
  finish(status, "--trace", [this] { p_.trace.finish(); });
  if (p_.waves != nullptr) {
    finish(status, "--waves", [this] {
      p_.waves->end();
      tell("--waves: " + p_.waves->summary());
    });
  }
  if (p_.simulated == nullptr) return;
  p_.simulated->putChipBack();
  finish(status, "--chip", [this] { p_.simulated->saveChip(); });
}

void Session::tellVoltage(int& status) const {
  if (!p_.form.mayVoltageBeOn()) return;
  tell(form::kVoltageWarning);
  if (status == kDone) status = kFailed;
}

}  // namespace kestrel::cli
