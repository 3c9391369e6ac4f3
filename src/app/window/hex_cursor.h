#pragma once

#include <QList>
#include <QObject>
#include <QPlainTextEdit>
#include <cstdint>
#include <functional>
#include <optional>

class QKeyEvent;

namespace kestrel::window {

/// Where the digits and the character of a byte stand on a page, and the byte at a place of it.
struct HexPlace {
  int line = 0;    ///< from 0: the heads of the columns
  int digits = 0;  ///< column of the first of the two
  int text = 0;    ///< column of its character

  [[nodiscard]] static HexPlace of(std::int32_t inPage);
};

/// The cursor in a hex page: arrows move it, Tab changes the side, digits or characters change the
/// byte that it stands on. It is shown strongly where the keyboard is, weakly elsewhere.
class HexCursor final : public QObject {
 public:
  /// What the cursor needs to know and to have done.
  struct Page {
    std::function<bool()> isCode;            ///< the code buffer is on view, to be changed
    std::function<std::int32_t()> size;      ///< addresses below it can be gone to
    std::function<std::int32_t()> number;    ///< of the page that is shown
    std::function<void(std::int32_t)> turn;  ///< to another page
    std::function<void()> show;              ///< the marks again
  };
  using Type = std::function<void(std::int32_t address, std::uint8_t value, bool goesOn)>;
  using ByteAt = std::function<std::uint8_t(std::int32_t address)>;

  HexCursor(QPlainTextEdit& view, Page page, ByteAt byteAt);

  void onType(Type type) { type_ = std::move(type); }

  [[nodiscard]] std::int32_t address() const { return address_; }

  /// Goes to an address; its page is shown already.
  void setAddress(std::int32_t address);

  /// Another page is shown: the cursor stays at its place of it.
  void followPage();

  /// What shows the cursor on the page.
  [[nodiscard]] QList<QTextEdit::ExtraSelection> marks() const;

  bool eventFilter(QObject* receiver, QEvent* event) override;

 private:
  enum class Side : std::uint8_t { Digits, Text };

  bool takesKey(const QKeyEvent& event);
  bool moves(int key);
  void moveBy(std::int32_t bytes);
  void step(int direction);
  bool changesSide(int key);
  bool types(const QString& text);
  void typeDigit(int digit);
  void put(std::uint8_t value, bool goesOn);
  void clickAt(const QPoint& place);
  void mark(QList<QTextEdit::ExtraSelection>& marks, int line, int column, int length,
            const QTextCharFormat& format) const;

  QPlainTextEdit& view_;
  Page page_;
  ByteAt byteAt_;
  Type type_;
  std::int32_t address_ = 0;
  Side side_ = Side::Digits;
  bool isSecondDigit_ = false;
  bool wasUsed_ = false;
};

}  // namespace kestrel::window
