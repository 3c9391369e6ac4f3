#include "app/window/notice_bar.h"

#include <QAccessible>
#include <QEvent>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QToolButton>
#include <QVBoxLayout>
#include <utility>

#include "app/window/theme.h"

namespace kestrel::window {

NoticeBar::NoticeBar(QWidget& focusHome, QWidget* parent)
    : QWidget(parent), focusHome_(focusHome), rows_(new QVBoxLayout(this)) {
  setObjectName("notices");
  rows_->setContentsMargins(0, 0, 8, 0);
  hide();
}

void NoticeBar::post(const Notice& notice) {
  Shown& shown = shown_[notice.about];
  if (shown.text == notice.text) return;
  putAway(shown);
  shown.text = notice.text;
  shown.frame = frameOf(notice);
  rows_->addWidget(shown.frame);
  setVisible(true);
  QAccessibleEvent said(shown.frame, QAccessible::Alert);
  QAccessible::updateAccessibility(&said);
}

void NoticeBar::withdraw(const std::string& about) {
  const auto found = shown_.find(about);
  if (found == shown_.end()) return;
  putAway(found->second);
  shown_.erase(found);
}

// Its own button may have been pressed: it goes when that is over.
void NoticeBar::putAway(Shown& shown) {
  QFrame* const frame = std::exchange(shown.frame, nullptr);
  if (frame == nullptr) return;
  if (frame->isAncestorOf(focusWidget())) focusHome_.setFocus();
  rows_->removeWidget(frame);
  frame->hide();
  frame->deleteLater();
  setVisible(rows_->count() > 0);
}

QFrame* NoticeBar::frameOf(const Notice& notice) {
  auto* const frame = new QFrame(this);
  frame->setObjectName("notice-" + QString::fromStdString(notice.about));
  frame->setFrameShape(QFrame::StyledPanel);
  frame->setAutoFillBackground(true);
  frame->setPalette(noticePalette(palette()));
  frame->setAccessibleName("Notice: " + notice.text);
  auto* const row = new QHBoxLayout(frame);
  row->setContentsMargins(8, 4, 4, 4);
  auto* const text = new QLabel(notice.text, frame);
  text->setTextFormat(Qt::PlainText);
  text->setWordWrap(true);
  text->setTextInteractionFlags(Qt::TextSelectableByMouse);
  row->addWidget(text, 1);
  for (const Notice::Action& action : notice.actions) {
    auto* const button = new QPushButton(action.caption, frame);
    button->setObjectName(action.name);
    button->setFocusPolicy(Qt::TabFocus);
    row->addWidget(button, 0, Qt::AlignTop);
    connect(button, &QPushButton::clicked, this, action.act);
  }
  addCloser(*frame, notice.about);
  return frame;
}

void NoticeBar::addCloser(QFrame& frame, const std::string& about) {
  auto* const closer = new QToolButton(&frame);
  closer->setObjectName("close-" + QString::fromStdString(about));
  closer->setText(QStringLiteral("\u2715"));
  closer->setAutoRaise(true);
  closer->setFocusPolicy(Qt::TabFocus);
  closer->setToolTip("Put this notice away");
  closer->setAccessibleName("Put this notice away");
  frame.layout()->addWidget(closer);
  frame.layout()->setAlignment(closer, Qt::AlignTop);
  connect(closer, &QToolButton::clicked, this, [this, about] { putAway(shown_[about]); });
}

void NoticeBar::changeEvent(QEvent* event) {
  QWidget::changeEvent(event);
  if (event->type() != QEvent::PaletteChange) return;
  for (const auto& [about, shown] : shown_) {
    if (shown.frame != nullptr) shown.frame->setPalette(noticePalette(palette()));
  }
}

}  // namespace kestrel::window
