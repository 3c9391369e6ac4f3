#pragma once

#include <QPlainTextEdit>
#include <cstddef>

#include "app/state/controls.h"
#include "app/window/binder.h"

namespace kestrel::window {

/// The system log. A new line costs the same however long the log is; the view follows the newest
/// line unless the user has scrolled up.
class LogView final : public QPlainTextEdit {
 public:
  LogView(Controls& controls, const Binder& binder, QWidget* parent);

 protected:
  void mouseDoubleClickEvent(QMouseEvent* event) override;

 private:
  void show();

  Controls& controls_;
  const Binder& binder_;
  std::size_t shownBytes_ = 0;
};

}  // namespace kestrel::window
