#include "app/window/notices.h"

#include <utility>

#include "app/window/notice_bar.h"
#include "app/window/texts.h"
#include "devices/remarks.h"

namespace kestrel::window {
namespace {

constexpr const char* kBoard = "board";
constexpr const char* kSame = "same";
constexpr const char* kLimit = "limit";

}  // namespace

Notices::Notices(form::frmMain& form, const Binder& binder, NoticeBar& bar)
    : form_(form), binder_(binder), bar_(bar) {}

void Notices::offerSimulation(std::function<void()> simulate) { simulate_ = std::move(simulate); }

void Notices::look() {
  lookAtBoard();
  lookAtLimit();
}

QString Notices::whatWasFound() const {
  const bool isModelKnown = form_.state().KestrelModel != 0;
  const std::string why = isModelKnown ? form_.whyNoBoard() : "";
  QStringList lines{toQString((why.empty() ? "No board answers" : why) + ".")};
  const std::vector<std::string> found = form_.diagnosis();
  // The command stands on a line of its own, ready to be copied.
  for (const std::string& line : found) lines << toQString(line).replace(" Cure: ", "\nCure: ");
  if (found.empty()) lines << "Check its cable and its supply, and that the socket is empty.";
  return lines.join('\n');
}

void Notices::lookAtBoard() {
  if (form_.hasBoard()) return bar_.withdraw(kBoard);
  Notice notice{.about = kBoard, .text = whatWasFound()};
  notice.actions.push_back({.caption = "Test Again", .name = "testAgain", .act = [this] {
                              binder_.press(form_.controls().TestHardware_button);
                            }});
  if (simulate_) {
    notice.actions.push_back(
        {.caption = "Use the Simulated Board", .name = "useSimulated", .act = simulate_});
  }
  bar_.post(notice);
}

void Notices::commandEnded(const CommandResult& result) {
  if (result.remark.empty() || !form_.hasBoard()) return bar_.withdraw(kSame);
  bar_.post({.about = kSame,
             .text = "All bytes are the same. A chip that holds nothing else reads so, and so do "
                     "an empty socket and a board without its supply or cable.",
             .actions = {{.caption = "Test Hardware", .name = "testBoard", .act = [this] {
                            binder_.press(form_.controls().TestHardware_button);
                          }}}});
}

void Notices::lookAtLimit() {
  const ProgrammerState& state = form_.state();
  const bool isClassic = state.algorithms == Algorithms::Classic;
  const std::string limit(isClassic ? devices::classicLimit(state.DeviceName) : "");
  if (limit.empty()) return bar_.withdraw(kLimit);
  bar_.post({.about = kLimit,
             .text = toQString(state.DeviceName + ", classic algorithms: " + limit + "."),
             .actions = {{.caption = "Use Data Sheet", .name = "useDataSheet", .act = [this] {
                            (void)binder_.runner().run(
                                [this] { form_.controls().AlgorithmSelection[1].press(); });
                          }}}});
}

}  // namespace kestrel::window
