#pragma once

#include <QObject>
#include <cstdint>
#include <functional>

#include "app/form/buffer_editor.h"

class QAction;
class QMainWindow;
class QMenu;

namespace kestrel::window {

/// What the Buffer menu does to the bytes of the code buffer, with undo and redo.
class BufferChanges final : public QObject {
 public:
  /// The entries stand at the top of the menu.
  BufferChanges(QMainWindow& window, form::BufferEditor& editor, QMenu& menu);

  /// Something was changed, at this address first.
  void onChanged(std::function<void(std::int32_t address)> changed) {
    changed_ = std::move(changed);
  }

  /// The entries say what they would take back and make again.
  void showSteps();

  struct Operation;

 private:
  QAction* addStep(QMenu& menu, const char* name, const char* key,
                   std::optional<std::size_t> (form::BufferEditor::*step)());
  void run(const Operation& operation);

  QMainWindow& window_;
  form::BufferEditor& editor_;
  QAction* undo_ = nullptr;
  QAction* redo_ = nullptr;
  std::function<void(std::int32_t)> changed_;
};

}  // namespace kestrel::window
