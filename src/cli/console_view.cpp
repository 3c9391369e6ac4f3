#include "cli/console_view.h"

#include <sys/ioctl.h>
#include <unistd.h>

#include <cstdlib>
#include <string>

#include "app/state/text_format.h"

namespace kestrel::cli {
namespace {

using Clock = std::chrono::steady_clock;
constexpr std::chrono::milliseconds kFrame{1000 / 60};

/// A terminal whose current line can be taken back.
bool canDrawOver() {
  const char* const term = std::getenv("TERM");
  return ::isatty(STDERR_FILENO) == 1 && term != nullptr && std::string_view(term) != "dumb";
}

std::size_t columns() {
  constexpr std::size_t kUsual = 80;
  winsize size{};
  const bool isKnown = ::ioctl(STDERR_FILENO, TIOCGWINSZ, &size) == 0 && size.ws_col > 1;
  return isKnown ? size.ws_col - std::size_t{1} : kUsual - 1;  // the last column may wrap
}

}  // namespace

ConsoleView::ConsoleView(bool quiet, std::ostream& out, JsonReport* json)
    : out_(out), json_(json), quiet_(quiet) {
  if (canDrawOver()) terminal_.emplace();
}

ConsoleView::~ConsoleView() { clearProgress(); }

void ConsoleView::mirror(Controls& controls) {
  controls_ = &controls;
  controls.setListener(this);
}

void ConsoleView::controlChanged(const Control& control) {
  if (&control != &controls_->ProgressBar1) return;
  const ProgressBar& bar = controls_->ProgressBar1;
  if (json_ != nullptr) json_->progress(bar.value(), bar.maximum());
  if (!terminal_) return;
  progress_.set(bar.value(), bar.maximum(), Clock::now());
  isDue_ = progress_.isMoving();
  if (!isDue_) clearProgress();
}

// An entry of the log begins with its line break; a terminal wants it at the end.
void ConsoleView::textAppended(const TextBox& box, std::string_view piece) {
  if (&box != &controls_->SystemLog) return;
  if (piece.starts_with("\r\n")) piece.remove_prefix(2);
  if (json_ != nullptr) json_->log(piece);
  if (quiet_) return;
  clearProgress();
  out_ << piece << std::endl;
}

void ConsoleView::turn() {
  const auto now = Clock::now();
  if (!isDue_ || now - drawnAt_ < kFrame) return;
  terminal_->write('\r' + progress_.text(columns(), now) + "\033[K");
  drawnAt_ = now;
  isDrawn_ = true;
  isDue_ = false;
}

void ConsoleView::clearProgress() {
  if (!isDrawn_) return;
  terminal_->write("\r\033[K");
  isDrawn_ = false;
  isDue_ = progress_.isMoving();
}

void ConsoleView::printPage(const TextBox& box) {
  clearProgress();
  for (const std::string& line : linesOf(box.text())) {
    if (!line.empty()) out_ << line << '\n';
  }
  out_ << std::flush;
}

}  // namespace kestrel::cli
