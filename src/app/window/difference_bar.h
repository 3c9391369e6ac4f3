#pragma once

#include <QWidget>
#include <cstdint>
#include <functional>

#include "images/compare.h"

class QLabel;

namespace kestrel::window {

/// The bar below the display that walks through the differences of the buffer from a chip or a
/// file: how many there are, what they mean, and both sides of the one that is shown.
class DifferenceBar final : public QWidget {
 public:
  explicit DifferenceBar(QWidget* parent);

  /// Bytes from `first` on, `count` of them, are to be shown.
  void onShow(std::function<void(std::int32_t first, std::int32_t count)> show);
  void onClosed(std::function<void()> closed) { closed_ = std::move(closed); }

  /// Shows a comparison of the buffer's image with another one, "chip" or the name of a file.
  void setComparison(images::Bytes image, images::Bytes other, const QString& otherName);

  /// The image has changed: compares anew and stays where it is. False for the same image.
  bool setImage(images::Bytes image);

  [[nodiscard]] bool hasDifferences() const { return !comparison_.ranges.empty(); }
  [[nodiscard]] const images::Comparison& comparison() const { return comparison_; }

  void next() { go(1); }
  void previous() { go(-1); }
  void close();

 private:
  void go(int step);
  void compare();
  void showCurrent();
  [[nodiscard]] QString summary() const;

  std::function<void(std::int32_t, std::int32_t)> show_;
  std::function<void()> closed_;
  images::Comparison comparison_;
  images::Bytes image_;
  images::Bytes other_;
  QString otherName_;
  int current_ = -1;
  QLabel* summary_ = nullptr;
  QLabel* meaning_ = nullptr;
  QLabel* sides_ = nullptr;
};

}  // namespace kestrel::window
