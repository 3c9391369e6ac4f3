#pragma once

#include <QObject>
#include <QWidget>

namespace kestrel::window {

/// Tells the desktop that something has ended: through its notification service
/// (org.freedesktop.Notifications, version 1.2), and where there is none, by the window's entry in
/// the task bar.
class DesktopNotice final : public QObject {
 public:
  explicit DesktopNotice(QWidget& window) : window_(window) {}

  /// Does not wait for an answer. The notice takes the place of the one before it.
  void send(const QString& summary, const QString& text);

 private:
  QWidget& window_;
  uint last_ = 0;  // the service's number of the notice that may still be shown
};

}  // namespace kestrel::window
