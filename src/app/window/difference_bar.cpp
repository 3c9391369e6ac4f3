#include "app/window/difference_bar.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QToolButton>
#include <QVBoxLayout>
#include <algorithm>
#include <utility>

#include "app/window/elided_label.h"
#include "app/window/theme.h"

namespace kestrel::window {
namespace {

constexpr std::size_t kShownBytes = 8;  // of each side

QString hexOf(const images::Bytes& bytes, const images::Range& range) {
  constexpr int kHex = 16;
  QString text;
  const std::size_t end = std::min(bytes.size(), range.first + std::min(range.size(), kShownBytes));
  for (std::size_t i = range.first; i < end; ++i) {
    text += QString("%1 ").arg(bytes[i], 2, kHex, QChar('0')).toUpper();
  }
  return range.size() > kShownBytes ? text + QStringLiteral("\u2026") : text.trimmed();
}

}  // namespace

DifferenceBar::DifferenceBar(QWidget* parent) : QWidget(parent) {
  setObjectName("differenceBar");
  auto* const column = new QVBoxLayout(this);
  column->setContentsMargins(0, 2, 0, 0);
  column->setSpacing(2);
  auto* const top = new QHBoxLayout;
  column->addLayout(top);
  summary_ = new ElidedLabel(Qt::ElideRight, this);
  summary_->setObjectName("differenceSummary");
  top->addWidget(summary_, 1);
  const auto add = [&](const char* caption, const char* name, const char* tip, auto handler) {
    auto* const button = new QToolButton(this);
    button->setText(caption);
    button->setObjectName(name);
    button->setToolTip(tip);
    button->setAutoRaise(true);
    connect(button, &QToolButton::clicked, this, handler);
    top->addWidget(button);
  };
  add("Previous", "previousDifference", "The difference before (Shift+F3)", [this] { previous(); });
  add("Next", "nextDifference", "The next difference (F3)", [this] { next(); });
  add("Close", "closeDifferences", "Put the comparison away", [this] { close(); });
  meaning_ = new QLabel(this);
  meaning_->setObjectName("differenceMeaning");
  meaning_->setWordWrap(true);
  meaning_->setTextFormat(Qt::PlainText);
  column->addWidget(meaning_);
  sides_ = new ElidedLabel(Qt::ElideRight, this);
  sides_->setObjectName("differenceSides");
  sides_->setFont(fixedFont());
  column->addWidget(sides_);
  hide();
}

void DifferenceBar::onShow(std::function<void(std::int32_t, std::int32_t)> show) {
  show_ = std::move(show);
}

void DifferenceBar::setComparison(images::Bytes image, images::Bytes other,
                                  const QString& otherName) {
  image_ = std::move(image);
  other_ = std::move(other);
  otherName_ = otherName;
  current_ = -1;
  compare();
  show();
  next();
}

bool DifferenceBar::setImage(images::Bytes image) {
  if (image == image_) return false;
  image_ = std::move(image);
  compare();
  current_ = std::min(std::max(current_, 0), static_cast<int>(comparison_.ranges.size()) - 1);
  showCurrent();
  return true;
}

void DifferenceBar::compare() {
  comparison_ = images::compare(other_, image_);
  QStringList meanings;
  for (const images::Finding& finding : comparison_.findings) {
    meanings << QString::fromStdString(finding.text);
  }
  meaning_->setText(meanings.join('\n'));
  meaning_->setVisible(!meanings.isEmpty());
  sides_->setVisible(hasDifferences());
  summary_->setText(summary());
}

QString DifferenceBar::summary() const {
  const QString with = "Compared with " + otherName_ + ": ";
  if (!hasDifferences()) {
    return with + QString("all %1 bytes are equal").arg(comparison_.comparedBytes);
  }
  return with + QString("%1 of %2 bytes differ; difference %3 of %4")
                    .arg(comparison_.differentBytes)
                    .arg(comparison_.comparedBytes)
                    .arg(current_ + 1)
                    .arg(comparison_.ranges.size());
}

// Behind the last one the first one follows.
void DifferenceBar::go(int step) {
  if (!hasDifferences()) return;
  const auto count = static_cast<int>(comparison_.ranges.size());
  current_ = (current_ + step + count) % count;
  showCurrent();
  const images::Range& range = comparison_.ranges[static_cast<std::size_t>(current_)];
  if (show_) {
    show_(static_cast<std::int32_t>(range.first), static_cast<std::int32_t>(range.size()));
  }
}

void DifferenceBar::showCurrent() {
  summary_->setText(summary());
  if (!hasDifferences()) return;
  const images::Range& range = comparison_.ranges[static_cast<std::size_t>(current_)];
  sides_->setText(QString("%1 %2: buffer %3  %4 %5")
                      .arg(QString::fromStdString(images::rangeText(range)),
                           QString::fromStdString(images::rangeMeaning(other_, image_, range)),
                           hexOf(image_, range), otherName_, hexOf(other_, range)));
}

void DifferenceBar::close() {
  comparison_ = {};
  hide();
  if (closed_) closed_();
}

}  // namespace kestrel::window
