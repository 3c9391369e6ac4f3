#include "app/window/desktop_notice.h"

#include <QApplication>
#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>

namespace kestrel::window {
namespace {

constexpr int kDesktopsTime = -1;  // as long as the desktop shows any

}  // namespace

// The text may hold a file's name; the service takes it for a kind of HTML.
void DesktopNotice::send(const QString& summary, const QString& text) {
  const QString service = "org.freedesktop.Notifications";
  QDBusMessage call =
      QDBusMessage::createMethodCall(service, "/org/freedesktop/Notifications", service, "Notify");
  const QVariantMap hints{{"desktop-entry", "kestrel"}};
  call << "Kestrel" << last_ << "kestrel" << summary << text.toHtmlEscaped() << QStringList()
       << hints << kDesktopsTime;
  auto* const answer =
      new QDBusPendingCallWatcher(QDBusConnection::sessionBus().asyncCall(call), this);
  connect(answer, &QDBusPendingCallWatcher::finished, this, [this, answer] {
    const QDBusPendingReply<uint> reply = *answer;
    if (reply.isError()) {
      QApplication::alert(window_.window());
    } else {
      last_ = reply.value();
    }
    answer->deleteLater();
  });
}

}  // namespace kestrel::window
