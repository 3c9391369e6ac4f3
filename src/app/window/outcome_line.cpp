#include "app/window/outcome_line.h"

#include <QTextDocumentFragment>
#include <array>
#include <span>
#include <utility>

#include "app/window/texts.h"
#include "app/window/theme.h"
#include "images/checksums.h"

namespace kestrel::window {
namespace {

constexpr int kLookMs = 100;
constexpr double kMsPerSecond = 1000.0;
constexpr qint64 kLongMs = 5'000;  // who waits longer may look elsewhere: the desktop tells
constexpr const char* kCompare = "compare";
constexpr const char* kHardwareTest = "Hardware test";
constexpr const char* kOffered = "offered";

}  // namespace

OutcomeLine::OutcomeLine(const Controls& controls, const ProgrammerState& state, QWidget* parent)
    : QLabel(parent), controls_(controls), state_(state) {
  setObjectName("outcome");
  setAccessibleName("What happened");
  setTextFormat(Qt::RichText);
  setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Fixed);
  setTextInteractionFlags(Qt::LinksAccessibleByMouse | Qt::LinksAccessibleByKeyboard);
  setText("&nbsp;");  // the line keeps its height
  connect(this, &QLabel::linkActivated, this, [this](const QString& address) {
    if (address == kCompare) {
      if (compare_) compare_();
    } else if (address == kOffered) {
      if (offered_) offered_();
    } else if (go_) {
      go_(address.toInt());
    }
  });
  timer_.setInterval(kLookMs);
  connect(&timer_, &QTimer::timeout, this, [this] { showRunning(); });
}

QString OutcomeLine::nameOf(const Control& control) const {
  const Controls& c = controls_;
  const std::array<std::pair<const Control*, const char*>, 13> commands{{
      {&c.Read_button, "Read"},
      {&c.menuReadCode, "Read"},
      {&c.Blank_button, "Blank check"},
      {&c.menuBlankCheck, "Blank check"},
      {&c.Verify_button, "Verify"},
      {&c.menuVerifyCode, "Verify"},
      {&c.Program_button, "Program"},
      {&c.menuProgramCode, "Program"},
      {&c.EraseFlash_button, "Erase chip"},
      {&c.menuEraseFlash, "Erase chip"},
      {&c.Display_button, "Display"},
      {&c.TestHardware_button, kHardwareTest},
      {&c.menuTestHardware, kHardwareTest},
  }};
  for (const auto& [pressed, name] : commands) {
    if (pressed == &control) return name;
  }
  return {};
}

void OutcomeLine::begin(const Control& control) {
  running_ = nameOf(control);
  clock_.start();
  if (running_.isEmpty()) return;
  showRunning();
  timer_.start();
}

void OutcomeLine::showRunning() {
  const std::int32_t address = state_.LinearAddress;
  const bool isWalking = controls_.ProgressBar1.value() > 0 && address < state_.DeviceSizeBytes;
  const QString where = isWalking ? " at " + addressText(address) : QString();
  showText(running_ + " is running" + where, Colour::ButtonText);
}

void OutcomeLine::end(const Control& control, const CommandResult& result, qint64 asked) {
  timer_.stop();
  lasted_ = clock_.isValid() ? clock_.elapsed() - asked : 0;
  const QString command = nameOf(control);
  const QString remark = QString::fromStdString(result.remark).toHtmlEscaped();
  if (command.isEmpty()) {
    if (!remark.isEmpty()) showText(remark, Colour::Red);
    return;
  }
  showEnd(command, result);
  if (lasted_ >= kLongMs && !isActiveWindow()) {
    desktop_.send(result.ending == Ending::Done ? command + " is done" : command + " has ended",
                  accessibleDescription());
  }
}

void OutcomeLine::showEnd(const QString& command, const CommandResult& result) {
  const QString remark = QString::fromStdString(result.remark).toHtmlEscaped();
  switch (result.ending) {
    case Ending::Done:
      if (running_ == kHardwareTest && state_.KestrelModel == 0) {
        return showText(running_ + ": no board answers", Colour::Red);
      }
      if (!remark.isEmpty()) return showText(doneText(command) + ", but " + remark, Colour::Red);
      return showText(doneText(command), Colour::Green);
    case Ending::Cancelled:
    case Ending::Stopped:
      return showText(failedText(command, result), Colour::ButtonText);
    default:
      return showText(failedText(command, result), Colour::Red);
  }
}

QString OutcomeLine::doneText(const QString& command) const {
  const bool isVerified = command == "Program" && controls_.VerifyAfterProgramming.isTicked();
  QString text = command + (isVerified ? ": done and verified" : ": done");
  const QString sum = QString::fromStdString(state_.DeviceChecksumText);
  const bool isWalk = command == "Read" || command == "Verify" || isVerified;
  if (isWalk && !sum.isEmpty()) text += ", sum " + sum.toHtmlEscaped() + ", CRC-32 " + crcText();
  return text + QString(", %1 s").arg(static_cast<double>(lasted_) / kMsPerSecond, 0, 'f', 1);
}

// The buffer holds what was read, or what the chip was found equal to.
QString OutcomeLine::crcText() const {
  constexpr int kDigits = 8;
  constexpr int kHex = 16;
  const auto length = static_cast<std::size_t>(state_.DeviceSizeBytes);
  const std::uint32_t crc = images::crc32(std::span(state_.CodeBuffer).first(length));
  return QString("%1").arg(crc, kDigits, kHex, QChar('0')).toUpper();
}

QString OutcomeLine::failedText(const QString& command, const CommandResult& result) const {
  QString reason = QString::fromStdString(result.reason).toHtmlEscaped();
  if (result.address) {
    reason += QString(" <a href=\"%1\">show %2</a>")
                  .arg(*result.address)
                  .arg(addressText(*result.address));
  }
  const bool isOfChip = result.address && (command == "Verify" || command == "Program");
  if (isOfChip) reason += QString(", <a href=\"%1\">compare all</a>").arg(kCompare);
  return command + ": " + reason;
}

void OutcomeLine::showMessage(const QString& text) {
  showText(text.toHtmlEscaped(), Colour::ButtonText);
}

void OutcomeLine::offer(const QString& text, const QString& link, std::function<void()> action) {
  offered_ = std::move(action);
  showText(text.toHtmlEscaped() + QString(" <a href=\"%1\">%2</a>").arg(kOffered, link),
           Colour::ButtonText);
}

void OutcomeLine::showText(const QString& richText, Colour colour) {
  setPalette({});  // without the colour of the text before
  QPalette own = palette();
  own.setColor(QPalette::WindowText, inkColour(colour, own));
  setPalette(own);
  setText(richText);
  const QString plain = QTextDocumentFragment::fromHtml(richText).toPlainText();
  setToolTip(plain);  // it may be longer than the line
  setAccessibleDescription(plain);
}

}  // namespace kestrel::window
