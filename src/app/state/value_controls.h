#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "app/state/control.h"

namespace kestrel {

/// A text that may change: the log, the display, the status bar, the selected port.
class TextBox : public Control {
 public:
  using Control::Control;

  [[nodiscard]] const std::string& text() const { return text_; }
  void setText(std::string text) { assign(text_, std::move(text)); }
  void append(std::string_view piece);

 private:
  std::string text_;
};

/// A scroll bar or slider. Its value is never below the minimum, nor above the maximum while that
/// is not below the minimum itself (an empty buffer has a maximum of -1).
class RangeControl : public Control {
 public:
  RangeControl(ControlRegistry& registry, std::string name, std::int32_t minimum,
               std::int32_t maximum, std::int32_t value);

  void onChange(std::function<void()> handler) { handler_ = std::move(handler); }
  [[nodiscard]] std::int32_t value() const { return value_; }
  [[nodiscard]] std::int32_t minimum() const { return minimum_; }
  [[nodiscard]] std::int32_t maximum() const { return maximum_; }

  /// Goes to the nearest value in range; runs the change handler if that is a new value.
  void setValue(std::int32_t value);

  /// A maximum that falls below the value takes the value along and runs the change handler.
  void setMaximum(std::int32_t maximum);

  /// Gives it an earlier maximum back, its value within it; nothing runs.
  void putBackMaximum(std::int32_t maximum);

  /// Gives it an earlier value back; nothing runs.
  void putBack(std::int32_t value) { assign(value_, value); }

 private:
  std::function<void()> handler_;
  std::int32_t minimum_;
  std::int32_t maximum_;
  std::int32_t value_;
};

/// A bar whose value stays between 0 and its maximum.
class ProgressBar : public Control {
 public:
  using Control::Control;

  [[nodiscard]] std::int32_t value() const { return value_; }
  [[nodiscard]] std::int32_t maximum() const { return maximum_; }
  void setValue(std::int32_t value);
  void setMaximum(std::int32_t maximum);
  void advance(std::int32_t by = 1) { setValue(value_ + by); }

 private:
  std::int32_t value_ = 0;
  std::int32_t maximum_ = 100;
};

/// A drop-down list with an edit text. Position -1 is no selection.
class DropDownList : public Control {
 public:
  using Control::Control;

  void onClick(std::function<void()> handler) { handler_ = std::move(handler); }
  [[nodiscard]] const std::vector<std::string>& items() const { return items_; }
  [[nodiscard]] std::int32_t position() const { return position_; }
  [[nodiscard]] const std::string& text() const { return text_; }

  void addItem(std::string item);
  void removeFirst();
  void setText(std::string text) { assign(text_, std::move(text)); }

  /// Selects an entry (or none with -1), shows its text and runs the click handler, also when it
  /// was selected before. Called from inside the handler it only selects.
  /// Throws RuntimeError 9 for a position outside the list.
  void setPosition(std::int32_t position);

  /// Gives it an earlier selection and text back; nothing runs.
  void putBack(std::int32_t position, const std::string& text);

 private:
  std::function<void()> handler_;
  std::vector<std::string> items_;
  std::int32_t position_ = -1;
  std::string text_;
  bool inHandler_ = false;
};

}  // namespace kestrel
