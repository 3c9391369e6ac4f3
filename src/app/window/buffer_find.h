#pragma once

#include <QWidget>
#include <cstdint>
#include <functional>
#include <optional>

#include "app/state/programmer_state.h"

class QLabel;
class QLineEdit;

namespace kestrel::window {

/// The line in which bytes or a text of the code buffer are looked for.
class BufferFind final : public QWidget {
 public:
  BufferFind(const BufferState& buffers, const SelectionState& device, QWidget* parent);

  /// So many bytes were found at the address.
  void onFound(std::function<void(std::int32_t address, std::int32_t count)> show);
  /// The line was closed.
  void onClosed(std::function<void()> closed) { closed_ = std::move(closed); }

  void open();
  /// The next place, if something was looked for already.
  void findNext();

 protected:
  void keyPressEvent(QKeyEvent* event) override;

 private:
  const BufferState& buffers_;
  const SelectionState& device_;
  std::function<void(std::int32_t, std::int32_t)> show_;
  std::function<void()> closed_;
  QLineEdit* wanted_ = nullptr;
  QLabel* found_ = nullptr;
  std::optional<std::int32_t> last_;
};

}  // namespace kestrel::window
