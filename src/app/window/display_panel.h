#pragma once

#include <QPlainTextEdit>
#include <QTimer>
#include <QWidget>
#include <cstdint>
#include <functional>

#include "app/state/controls.h"
#include "app/state/programmer_state.h"
#include "app/window/binder.h"
#include "app/window/buffer_find.h"
#include "app/window/difference_bar.h"
#include "display/memory_map.h"

class QBoxLayout;

namespace kestrel::window {

class HexCursor;
class MemoryMapStrip;
class RangeReporter;

inline constexpr int kPageLines = 17;  ///< an empty first line, then sixteen of sixteen bytes

/// The hex display: a page of 16 lines, its scroll bar, and what it shows.
class DisplayPanel final : public QWidget {
 public:
  DisplayPanel(Controls& controls, const SelectionState& device, const BufferState& buffers,
               const Binder& binder, QWidget* parent);

  /// Bytes are typed into the code buffer while that is on view. `size`: addresses that can be
  /// changed.
  void letType(std::function<bool()> isCodeOnView, std::function<std::int32_t()> size,
               std::function<void(std::int32_t address, std::uint8_t value, bool goesOn)> type);

  /// Turns to the page of the address and marks the bytes there.
  void showAddress(std::int32_t address, std::int32_t count = 1);

  /// Asks for an address and goes there.
  void askForAddress();

  /// Bytes or a text in the code buffer.
  void openFind() { find_->open(); }
  /// The next place of what was looked for, or the next difference.
  void goOn();
  void goBack() { differences_->previous(); }

  /// Shows where the buffer's image differs from another one. `image` is asked for it again when
  /// the buffer may hold something else.
  void showComparison(images::Bytes other, const QString& otherName,
                      std::function<images::Bytes()> image);
  void compareSoon();
  void closeComparison() { differences_->close(); }

  /// The buffer may hold something else.
  void showMap();

  /// The line above the page; a sign may lie over it.
  [[nodiscard]] QWidget& header() const { return *header_; }

  /// While a page that was scrolled to is drawn.
  [[nodiscard]] bool isDrawing() const;

  /// What cannot be used while a command runs looks so; the page itself can be read on.
  void setCommandsOff(bool off);

  [[nodiscard]] QSize sizeHint() const override;

 protected:
  bool eventFilter(QObject* receiver, QEvent* event) override;

 private:
  void buildHeader(QBoxLayout& column);
  void buildPage(QBoxLayout& column);
  void buildScrollBar(QBoxLayout& row);
  void showPage();
  void compareAgain();
  void markDifferences();
  void fitFont();
  void showMarks();
  void copyAddressAt(const QPoint& place);
  bool turnPage(int key);

  Controls& controls_;
  const SelectionState& device_;
  const BufferState& buffers_;
  const Binder& binder_;
  QWidget* header_ = nullptr;
  QPlainTextEdit* page_ = nullptr;
  HexCursor* cursor_ = nullptr;
  RangeReporter* scroll_ = nullptr;
  BufferFind* find_ = nullptr;
  DifferenceBar* differences_ = nullptr;
  MemoryMapStrip* map_ = nullptr;
  std::function<images::Bytes()> image_;  // of the comparison on view
  QTimer compares_;                       // once the buffer rests: a megabyte takes its time
  display::AddressRange marked_;
};

/// The size that so many lines of a hex page take in the font.
[[nodiscard]] QSize hexPageSize(const QPlainTextEdit& view, const QFont& font, int lines);

}  // namespace kestrel::window
