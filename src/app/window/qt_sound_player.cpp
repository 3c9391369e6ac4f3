#include "app/window/qt_sound_player.h"

#include <QAudioDevice>
#include <QLoggingCategory>
#include <QMediaDevices>
#include <QSoundEffect>
#include <QUrl>

namespace kestrel::window {
namespace {

QtMessageHandler otherMessages = nullptr;

/// A machine without sound is no error: what the sound system has to say about it is dropped.
void dropSoundMessages(QtMsgType type, const QMessageLogContext& context, const QString& message) {
  if (message.contains("PulseAudio") || message.contains("QSoundEffect") ||
      message.contains("QAudio") || message.startsWith("pa_") || message.contains("ALSA")) {
    return;
  }
  otherMessages(type, context, message);
}

}  // namespace

QtSoundPlayer::QtSoundPlayer() {
  QLoggingCategory::setFilterRules("qt.multimedia.*=false");
  otherMessages = qInstallMessageHandler(dropSoundMessages);
}

QtSoundPlayer::~QtSoundPlayer() { qInstallMessageHandler(nullptr); }

void QtSoundPlayer::play(const std::filesystem::path& file) {
  if (QMediaDevices::defaultAudioOutput().isNull()) return;
  effect_ = std::make_unique<QSoundEffect>();  // a new one ends the sound that is still playing
  effect_->setSource(QUrl::fromLocalFile(QString::fromStdString(file.string())));
  effect_->play();
}

}  // namespace kestrel::window
