#include "app/window/running_look.h"

#include <QApplication>
#include <utility>

namespace kestrel::window {
namespace {

constexpr int kSoonMs = 100;  // a shorter command would only make the window flicker

bool canHaveFocus(const QWidget* widget) {
  return widget != nullptr && widget->isEnabled() && widget->isVisible() &&
         widget->focusPolicy() != Qt::NoFocus;
}

}  // namespace

RunningLook::RunningLook(QWidget& window, std::function<void(bool)> show)
    : window_(window), show_(std::move(show)) {
  soon_.setSingleShot(true);
  soon_.setInterval(kSoonMs);
  connect(&soon_, &QTimer::timeout, this, [this] { show_(true); });
}

void RunningLook::begin() {
  focus_ = window_.focusWidget();
  soon_.start();
}

void RunningLook::end(QWidget* alert, QWidget& otherwise) {
  soon_.stop();
  show_(false);
  if (alert != nullptr) {
    if (focus_ != alert) focusBeforeAlert_ = focus_;
    alert->setFocus();
    return;
  }
  const QPointer<QWidget> beforeAlert = std::exchange(focusBeforeAlert_, nullptr);
  for (QWidget* const widget : {beforeAlert.data(), focus_.data()}) {
    if (!canHaveFocus(widget)) continue;
    if (!widget->hasFocus()) widget->setFocus();
    return;
  }
  if (focus_ || beforeAlert) otherwise.setFocus();
}

}  // namespace kestrel::window
