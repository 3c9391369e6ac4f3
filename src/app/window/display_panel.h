#pragma once

#include <QPlainTextEdit>
#include <QWidget>

#include "app/state/controls.h"
#include "app/window/binder.h"

class QBoxLayout;

namespace kestrel::window {

class RangeReporter;

/// The hex display: a page of 16 lines, its scroll bar, and what it shows.
class DisplayPanel final : public QWidget {
 public:
  DisplayPanel(Controls& controls, const Binder& binder, QWidget* parent);

 protected:
  bool eventFilter(QObject* receiver, QEvent* event) override;

 private:
  void buildHeader(QBoxLayout& column);
  void buildPage(QBoxLayout& column);
  void buildScrollBar(QBoxLayout& row);
  void showPage();
  void fitFont();
  bool turnPage(int key);

  Controls& controls_;
  const Binder& binder_;
  QPlainTextEdit* page_ = nullptr;
  RangeReporter* scroll_ = nullptr;
};

/// The size that a hex page of 17 lines of 62 columns takes in the font.
[[nodiscard]] QSize hexPageSize(const QPlainTextEdit& view, const QFont& font);

}  // namespace kestrel::window
