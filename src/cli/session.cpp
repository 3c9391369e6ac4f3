#include "cli/session.h"

#include <algorithm>
#include <iostream>

#include "app/state/text_format.h"
#include "app/work/work_at_form.h"
#include "cli/exit_status.h"
#include "platform/file_names.h"
#include "platform/runtime_error.h"

namespace kestrel::cli {
namespace {

constexpr const char* kNoBoardText =
    "no board answers. Connect it to a parallel port with its power on and its socket empty, then "
    "run kestrel-cli detect; --simulate works without a board";

constexpr const char* kTestText =
    ". Run kestrel-cli detect: the hardware test finds the board and writes that file anew";

}  // namespace

void printMessage(const std::string& text) {
  if (!text.empty()) std::cerr << "kestrel-cli: " << shownName(text) << std::endl;
}

int Session::run(const std::vector<const Command*>& commands) {
  tryFiles(commands);
  int status = attempt(commands);
  shutDown(status);
  return p_.signals.isEndRequested() ? p_.signals.exitStatus() : status;
}

int Session::attempt(const std::vector<const Command*>& commands) {
  try {
    if (p_.json != nullptr) {
      p_.json->start(p_.arguments.commands, p_.device != nullptr ? p_.device->name : "",
                     p_.simulated != nullptr);
    }
    startUp(commands);
    applyOptions();
    for (const Command* const command : commands) runOne(*command);
    if (p_.arguments.saveFile) saveBuffer(*p_.arguments.saveFile);
    return kDone;
  } catch (const EarlyEnd& end) {
    return ended(*commands.front(), end.status(), end.what());
  } catch (const FileError& error) {
    return ended(*commands.front(), kBadUsage, error.what());
  } catch (const std::exception& error) {
    return ended(*commands.front(), kFailed, error.what());
  }
}

/// What ended a run before its first command is reported as that command's end.
int Session::ended(const Command& first, int status, const std::string& reason) {
  p_.view.clearProgress();
  printMessage(reason);
  if (!isReported_) {
    if (last_.reason.empty()) last_.reason = reason;
    reportResult(first, status, std::chrono::steady_clock::now());
  }
  return status;
}

void Session::runOne(const Command& command) {
  const auto begin = std::chrono::steady_clock::now();
  last_ = {};
  if (p_.json != nullptr) p_.json->beginCommand();
  try {
    if (command.needsBoard) checkBoard();
    if (command.worksOnMemory) checkMemory(command);
    const bool isOne = !p_.arguments.several;  // a series keeps each chip in its turn
    if (command.writesChip && p_.arguments.backup && isOne) keepChip();
    command.press(*this);
  } catch (const EarlyEnd& end) {
    if (last_.reason.empty()) last_.reason = end.what();
    reportResult(command, end.status(), begin);
    throw;
  }
  reportResult(command, kDone, begin);
}

void Session::reportResult(const Command& command, int status,
                           std::chrono::steady_clock::time_point begin) {
  isReported_ = true;
  if (p_.json == nullptr) return;
  if (status != kDone && last_.ending == Ending::Done) last_.ending = endingOf(status);
  const std::chrono::duration<double> time = std::chrono::steady_clock::now() - begin;
  p_.json->result(command.name, last_, status, state(), time.count());
}

// The hardware test wants the socket empty: it reads the bus while chip and outputs are enabled.
// The chip goes in when it is over, as at the bench.
void Session::startUp(const std::vector<const Command*>& commands) {
  const bool testsHardware = std::ranges::any_of(commands, &Command::testsHardware);
  const bool needsBoard = std::ranges::any_of(commands, &Command::needsBoard);
  if (p_.simulated != nullptr) p_.simulated->takeChipOut();
  p_.form.Form_Load();
  if (p_.simulated != nullptr) {
    if (!testsHardware) p_.simulated->putChipBack();
    p_.simulated->startUpDone();
  }
  endUnlessDone({});
  const bool isChosen = p_.arguments.port || p_.arguments.model;
  if (needsBoard && !isChosen) checkBoard();
}

void Session::checkBoard() const {
  const std::string reason = p_.form.whyNoBoard();
  if (!reason.empty()) throw EarlyEnd(kNoBoard, reason + kTestText);
  if (!p_.form.hasBoard()) throw EarlyEnd(kNoBoard, kNoBoardText);
}

// A setup may tick neither; the command would do nothing, and well.
void Session::checkMemory(const Command& command) const {
  const Controls& c = p_.form.controls();
  if (p_.device == nullptr && p_.form.state().FamilyCode.empty())
    return;  // reported by the command
  if (c.CheckCode.isTicked() || c.CheckData.isTicked()) return;
  throw EarlyEnd(kBadUsage, "neither the code nor the data memory is ticked: there is nothing to " +
                                std::string(command.name) + "; -d NAME ticks the code");
}

void Session::applyOptions() {
  const Arguments& a = p_.arguments;
  // On at first in one way of working; here it is asked for.
  use([this] { controls().CheckChipFirst.setValue(0); });
  try {
    work::applyWork(p_.form, a, p_.device, [this](const auto& event) { use(event); });
  } catch (const launch::UsageError& error) {
    throw EarlyEnd(kBadUsage, error.what());
  }
  if (a.codeFile) openCodeFile(*a.codeFile);
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
  last_ = p_.form.runner().press(button);
  return last_;
}

void Session::use(const std::function<void()>& event) {
  endUnlessDone(p_.form.runner().run(event));
}

void Session::endUnlessDone(const CommandResult& result) {
  last_ = result;
  if (p_.signals.isEndRequested()) throw EarlyEnd(p_.signals.exitStatus());
  printMessage(result.remark);
  // What a box or a question has said already is not said again.
  const bool isReported = result.ending != Ending::Differs && result.ending != Ending::Failed;
  if (result.ending != Ending::Done) {
    throw EarlyEnd(statusOf(result.ending), isReported ? std::string() : result.reason);
  }
}

std::string Session::remark(std::string_view (*find)(const devices::Family&)) {
  return std::string(find(devices::familyOf(state().FamilyCode)));
}

std::string Session::unless(const std::string& what, const std::string& reason) const {
  return work::unless(state(), what, reason);
}

void Session::finish(int& status, const char* option, const std::function<void()>& steps) {
  try {
    steps();
  } catch (const FileError& error) {
    printMessage(std::string(option) + ": " + error.what());
    if (status == kDone) status = kBadUsage;
  } catch (const OperationStopped&) {
    // By the signal that the status tells.
  }
}

std::string Session::deviceName() const { return std::string(trimmed(state().DeviceName)); }

std::optional<std::string> Session::lineFromPerson() {
  p_.view.clearProgress();
  return p_.dialogs.readLine();
}

void Session::keepSimulatedChip() {
  if (p_.simulated != nullptr) p_.simulated->saveChip();
}

void Session::changeSimulatedChip(std::size_t number) {
  if (p_.simulated != nullptr) p_.simulated->changeChip(number);
}

// The contents of the simulated chip are kept whatever happened before.
void Session::shutDown(int& status) {
  p_.form.Form_Unload();
  p_.view.clearProgress();
  warnOfVoltage(status);
  finish(status, "--trace", [this] { p_.trace.finish(); });
  if (p_.waves != nullptr) {
    finish(status, "--waves", [this] {
      p_.waves->end();
      printMessage("--waves: " + p_.waves->summary());
    });
  }
  if (p_.simulated == nullptr) return;
  printFindings();
  p_.simulated->putChipBack();
  finish(status, "--chip", [this] { p_.simulated->saveChip(); });
}

// In the classic way the read-back lets two drivers meet on the data lines, which is known.
void Session::printFindings() const {
  if (p_.arguments.launch.algorithms != Algorithms::DataSheet) return;
  for (const auto& finding : p_.simulated->bench().findings().all()) {
    printMessage("simulated board: " + finding.text + " (" + std::to_string(finding.count) +
                 " times)");
  }
}

void Session::warnOfVoltage(int& status) const {
  if (!p_.form.mayVoltageBeOn()) return;
  printMessage(form::kVoltageWarning);
  if (status == kDone) status = kFailed;
}

}  // namespace kestrel::cli
