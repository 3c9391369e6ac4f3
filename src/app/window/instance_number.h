#pragma once

#include <QDir>
#include <QLockFile>
#include <memory>

namespace kestrel::window {

/// The number of this program among those that the user has running, from 0, as long as it lives:
/// a second window comes up beside the first, not on it.
class InstanceNumber {
 public:
  explicit InstanceNumber(const QString& folder = QDir::tempPath()) {
    constexpr int kMost = 8;
    const QString user = qEnvironmentVariable("USER", "user");
    for (; number_ < kMost; ++number_) {
      const QString name = QString("kestrel-%1-%2.lock").arg(user).arg(number_);
      lock_ = std::make_unique<QLockFile>(QDir(folder).filePath(name));
      lock_->setStaleLockTime(0);  // only a program that is gone leaves it behind
      if (lock_->tryLock(0)) return;
    }
    number_ = 0;
  }

  [[nodiscard]] int value() const { return number_; }

 private:
  int number_ = 0;
  std::unique_ptr<QLockFile> lock_;
};

}  // namespace kestrel::window
