#pragma once

#include <QWidget>
#include <functional>

#include "app/state/controls.h"
#include "app/window/binder.h"
#include "app/window/qt_dialogs.h"

class QBoxLayout;
class QLabel;
class QLineEdit;

namespace kestrel::window {

class LogView;

/// The system log with what one does with it: copy, find, save under a name, clear.
class LogPanel final : public QWidget {
 public:
  LogPanel(Controls& controls, const Binder& binder, QtDialogs& dialogs, QWidget* parent);

  void openFind();
  /// The keyboard is in the log.
  [[nodiscard]] bool hasKeyboard() const;

  /// Clearing waits until the running command has said all it has to say.
  void setCommandsOff(bool off);

 protected:
  void keyPressEvent(QKeyEvent* event) override;

 private:
  void buildHeader(QBoxLayout& column);
  void buildFind(QBoxLayout& column);
  QWidget* addButton(QBoxLayout& row, const QString& caption, const QString& name,
                     const QString& toolTip, std::function<void()> handler);
  void copy();
  void save();
  void closeFind();
  void find(bool backward);

  Controls& controls_;
  QtDialogs& dialogs_;
  LogView* view_ = nullptr;
  QWidget* clear_ = nullptr;
  QWidget* findBar_ = nullptr;
  QLineEdit* wanted_ = nullptr;
  QLabel* found_ = nullptr;
};

}  // namespace kestrel::window
