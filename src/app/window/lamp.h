#pragma once

#include <QPushButton>
#include <QWidget>

#include "app/state/controls.h"
#include "app/window/binder.h"

namespace kestrel::window {

/// An indicator with a caption: filled with its colour when lit, an outline when not.
class Lamp : public QWidget {
 public:
  explicit Lamp(QWidget* parent);

  void setCaption(const QString& caption);
  /// An invalid colour is an unlit lamp.
  void setGround(const QColor& ground);
  [[nodiscard]] QColor ground() const { return ground_; }
  /// The width of the widest caption that it will show, so that nothing moves.
  void setWidestCaption(const QString& caption);

  [[nodiscard]] QSize sizeHint() const override;
  [[nodiscard]] QSize minimumSizeHint() const override { return sizeHint(); }

 protected:
  void paintEvent(QPaintEvent* event) override;

 private:
  QString caption_;
  QString widest_;
  QColor ground_;
};

struct LampTips {
  QString lit;
  QString unlit;
};

/// Joins a lamp to its label: colour and caption, and a tip for either state.
void bindLamp(const Control& control, Lamp& lamp, const Binder& binder, const LampTips& tips);

/// The error indicator: a quiet outline, and a red button while an alert is up.
class ErrorLamp final : public QPushButton {
 public:
  ErrorLamp(Button& control, const Binder& binder, QWidget* parent);

  [[nodiscard]] bool isAlert() const { return alert_; }
  [[nodiscard]] QSize sizeHint() const override;
  /// Without the words that say what to do.
  [[nodiscard]] QSize minimumSizeHint() const override;

 protected:
  void paintEvent(QPaintEvent* event) override;

 private:
  void setAlert(bool alert);

  QString caption_;
  bool alert_ = false;
};

}  // namespace kestrel::window
