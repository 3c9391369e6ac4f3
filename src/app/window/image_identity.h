#pragma once

#include <QThreadPool>
#include <QTimer>
#include <QWidget>
#include <functional>
#include <vector>

#include "images/identity.h"

class QLabel;

namespace kestrel::window {

/// Under the code file: what the image in the buffer is known by. It is worked out beside the
/// window, once the buffer rests: two megabytes must not hold up a typed byte or a pulse.
class ImageIdentity final : public QWidget {
 public:
  explicit ImageIdentity(QWidget* parent);
  ~ImageIdentity() override;
  ImageIdentity(const ImageIdentity&) = delete;
  ImageIdentity& operator=(const ImageIdentity&) = delete;

  /// Where a copy of the image comes from; empty when there is none. Not asked while `isBusy`.
  void lookAt(std::function<images::Bytes()> image, std::function<bool()> isBusy);

  /// The buffer may hold something else.
  void lookSoon() { rests_.start(); }

 private:
  void look();
  void show(const images::Identity& identity);

  std::function<images::Bytes()> image_;
  std::function<bool()> isBusy_;
  images::Bytes last_;
  std::vector<QLabel*> lines_;
  QTimer rests_;
  QThreadPool worker_;
};

}  // namespace kestrel::window
