#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

namespace kestrel {

class Control;
class TextBox;

/// A colour as the procedures name it: blue-green-red, or the number of a system colour.
enum class Colour : std::uint32_t {
  Red = 0x0000FF,
  Green = 0x008000,
  Highlight = 0x8000000D,
  ButtonFace = 0x8000000F,
  ButtonText = 0x80000012,
};

/// What a front end hears of the controls. It mirrors them and asks nothing back.
class ControlListener {
 public:
  virtual ~ControlListener() = default;

  /// Something that a person can see of the control has changed.
  virtual void controlChanged(const Control& control) = 0;

  /// The text of the box has grown at its end by the piece; called instead of controlChanged, so
  /// that a long log costs no more per line than a short one.
  virtual void textAppended(const TextBox& box, std::string_view piece) = 0;
};

/// All controls of the form, in the order of their declaration, and the one listener.
class ControlRegistry {
 public:
  void add(Control& control) { controls_.push_back(&control); }
  void setListener(ControlListener* listener) { listener_ = listener; }

  [[nodiscard]] ControlListener* listener() const { return listener_; }
  [[nodiscard]] const std::vector<Control*>& all() const { return controls_; }

  /// The control of that name, or nullptr.
  [[nodiscard]] Control* find(std::string_view name) const;

 private:
  std::vector<Control*> controls_;
  ControlListener* listener_ = nullptr;
};

/// What every control has: a name, and what a person can see of it.
class Control {
 public:
  Control(ControlRegistry& registry, std::string name);
  virtual ~Control() = default;
  Control(const Control&) = delete;
  Control& operator=(const Control&) = delete;

  [[nodiscard]] const std::string& name() const { return name_; }
  [[nodiscard]] bool enabled() const { return enabled_; }
  [[nodiscard]] bool visible() const { return visible_; }
  [[nodiscard]] const std::string& caption() const { return caption_; }
  /// Background of lamps and buttons, foreground of the hardware caption.
  [[nodiscard]] Colour colour() const { return colour_; }

  void setEnabled(bool enabled) { assign(enabled_, enabled); }
  void setVisible(bool visible) { assign(visible_, visible); }
  void setCaption(std::string caption) { assign(caption_, std::move(caption)); }
  void setColour(Colour colour) { assign(colour_, colour); }

 protected:
  void changed() const;
  [[nodiscard]] ControlListener* listener() const { return registry_.listener(); }

  /// Stores the value and notifies the listener if it is a new one.
  template <typename T>
  bool assign(T& field, T value) {
    if (field == value) return false;
    field = std::move(value);
    changed();
    return true;
  }

 private:
  ControlRegistry& registry_;
  std::string name_;
  std::string caption_;
  bool enabled_ = true;
  bool visible_ = true;
  Colour colour_ = Colour::ButtonFace;
};

/// A window or a frame: a control with a place. Units are those of its container: 1/1440 inch for a
/// window on the screen.
class Pane : public Control {
 public:
  using Control::Control;

  [[nodiscard]] std::int32_t left() const { return left_; }
  [[nodiscard]] std::int32_t top() const { return top_; }
  [[nodiscard]] std::int32_t width() const { return width_; }
  [[nodiscard]] std::int32_t height() const { return height_; }
  [[nodiscard]] bool minimised() const { return minimised_; }

  void setLeft(std::int32_t left) { assign(left_, left); }
  void setTop(std::int32_t top) { assign(top_, top); }
  void setWidth(std::int32_t width) { assign(width_, width); }
  void setHeight(std::int32_t height) { assign(height_, height); }
  void setMinimised(bool minimised) { assign(minimised_, minimised); }

 private:
  std::int32_t left_ = 0;
  std::int32_t top_ = 0;
  std::int32_t width_ = 0;
  std::int32_t height_ = 0;
  bool minimised_ = false;
};

}  // namespace kestrel
