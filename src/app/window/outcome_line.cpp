#include "app/window/outcome_line.h"

#include <QTextDocumentFragment>
#include <algorithm>
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
constexpr const char* kOffered = "offered";

/// Empty for what the line does not follow.
QString nameOf(CommandKind command) {
  switch (command) {
    case CommandKind::Read:
      return "Read";
    case CommandKind::BlankCheck:
      return "Blank check";
    case CommandKind::Verify:
      return "Verify";
    case CommandKind::Program:
      return "Program";
    case CommandKind::EraseChip:
      return "Erase chip";
    case CommandKind::Display:
      return "Display";
    case CommandKind::TestHardware:
      return "Hardware test";
    default:
      return {};
  }
}

}  // namespace

OutcomeLine::OutcomeLine(const Controls& controls, const LatchState& latches,
                         const SelectionState& device, const BufferState& buffers,
                         std::function<bool()> hasBoard, QWidget* parent)
    : QLabel(parent),
      controls_(controls),
      latches_(latches),
      device_(device),
      buffers_(buffers),
      hasBoard_(std::move(hasBoard)) {
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

void OutcomeLine::begin(const Control& control) {
  running_ = nameOf(commandKind(controls_, control));
  clock_.start();
  if (running_.isEmpty()) return;
  showRunning();
  timer_.start();
}

void OutcomeLine::showRunning() {
  const std::int32_t address = latches_.LinearAddress;
  const bool isWalking = controls_.ProgressBar1.value() > 0 && address < device_.DeviceSizeBytes;
  const QString where = isWalking ? " at " + addressText(address) : QString();
  showText(running_ + " is running" + where, Colour::ButtonText);
}

void OutcomeLine::end(const Control& control, const CommandResult& result, qint64 asked) {
  timer_.stop();
  lasted_ = clock_.isValid() ? clock_.elapsed() - asked : 0;
  const CommandKind command = commandKind(controls_, control);
  const QString name = nameOf(command);
  const QString remark = QString::fromStdString(result.remark).toHtmlEscaped();
  if (name.isEmpty()) {
    if (!remark.isEmpty()) showText(remark, Colour::Red);
    return;
  }
  showEnd(command, result);
  if (lasted_ >= kLongMs && !isActiveWindow()) {
    desktop_.send(result.ending == Ending::Done ? name + " is done" : name + " has ended",
                  accessibleDescription());
  }
}

void OutcomeLine::showEnd(CommandKind command, const CommandResult& result) {
  const QString remark = QString::fromStdString(result.remark).toHtmlEscaped();
  switch (result.ending) {
    case Ending::Done:
      if (command == CommandKind::TestHardware && !hasBoard_()) {
        return showText(nameOf(command) + ": no board answers", Colour::Red);
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

QString OutcomeLine::doneText(CommandKind command) const {
  const bool isVerified =
      command == CommandKind::Program && controls_.VerifyAfterProgramming.isTicked();
  QString text = nameOf(command) + (isVerified ? ": done and verified" : ": done");
  const QString sum = QString::fromStdString(buffers_.DeviceChecksumText);
  const bool isWalk = command == CommandKind::Read || command == CommandKind::Verify || isVerified;
  if (isWalk && !sum.isEmpty()) text += ", sum " + sum.toHtmlEscaped() + ", CRC-32 " + crcText();
  return text + QString(", %1 s").arg(static_cast<double>(lasted_) / kMsPerSecond, 0, 'f', 1);
}

// The buffer holds what was read, or what the chip was found equal to: after a file shorter than
// the chip that is the file's length.
QString OutcomeLine::crcText() const {
  constexpr int kDigits = 8;
  constexpr int kHex = 16;
  const auto length = static_cast<std::size_t>(std::max(buffers_.CodeLength, 0));
  const auto bytes = std::span(buffers_.CodeBuffer);
  const std::uint32_t crc = images::crc32(bytes.first(std::min(length, bytes.size())));
  return QString("%1").arg(crc, kDigits, kHex, QChar('0')).toUpper();
}

QString OutcomeLine::failedText(CommandKind command, const CommandResult& result) const {
  QString reason = QString::fromStdString(result.reason).toHtmlEscaped();
  if (result.address) {
    reason += QString(" <a href=\"%1\">show %2</a>")
                  .arg(*result.address)
                  .arg(addressText(*result.address));
  }
  const bool isOfChip = command == CommandKind::Verify || command == CommandKind::Program;
  if (result.address && isOfChip)
    reason += QString(", <a href=\"%1\">compare all</a>").arg(kCompare);
  return nameOf(command) + ": " + reason;
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
