#include "app/window/buffer_find.h"

#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <algorithm>
#include <span>
#include <utility>

#include "display/byte_search.h"

namespace kestrel::window {

BufferFind::BufferFind(const BufferState& buffers, const SelectionState& device, QWidget* parent)
    : QWidget(parent), buffers_(buffers), device_(device) {
  auto* const row = new QHBoxLayout(this);
  row->setContentsMargins(0, 0, 0, 0);
  wanted_ = new QLineEdit(this);
  wanted_->setObjectName("bufferWanted");
  wanted_->setPlaceholderText("Bytes (4B 45 53) or text (\"KES\"); Enter or F3 goes on");
  wanted_->setAccessibleName("Find in the code buffer");
  found_ = new QLabel(this);
  found_->setObjectName("bufferFound");
  row->addWidget(wanted_, 1);
  row->addWidget(found_);
  connect(wanted_, &QLineEdit::textEdited, this, [this] {
    last_.reset();
    found_->clear();
  });
  hide();
}

void BufferFind::onFound(std::function<void(std::int32_t, std::int32_t)> show) {
  show_ = std::move(show);
}

void BufferFind::open() {
  show();
  wanted_->setFocus();
  wanted_->selectAll();
}

void BufferFind::findNext() {
  const auto wanted = display::bytesOf(wanted_->text().toStdString());
  if (wanted.empty()) return open();
  const int length = std::max(buffers_.CodeLength, device_.DeviceSizeBytes);
  const auto memory = std::span(buffers_.CodeBuffer).first(static_cast<std::size_t>(length));
  last_ = display::findBytes(memory, wanted, last_ ? *last_ + 1 : 0);
  found_->setText(last_ ? QString() : QString("Not found"));
  if (last_ && show_) show_(*last_, static_cast<std::int32_t>(wanted.size()));
}

void BufferFind::keyPressEvent(QKeyEvent* event) {
  switch (event->key()) {
    case Qt::Key_Return:
    case Qt::Key_Enter:
      return findNext();
    case Qt::Key_Escape:
      hide();
      if (closed_) closed_();
      return;
    default:
      QWidget::keyPressEvent(event);
  }
}

}  // namespace kestrel::window
