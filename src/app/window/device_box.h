#pragma once

#include <QComboBox>
#include <functional>

#include "app/state/programmer_state.h"
#include "app/state/value_controls.h"
#include "app/window/binder.h"

namespace kestrel::window {

/// The device list: all entries of the catalogue, searched as one types, also by what is printed on
/// a chip. Entries that are not available are greyed; choosing one is the form's business.
///
/// The text in it names the device in force. One that was typed and not chosen yet is red, and goes
/// when the focus goes.
class DeviceBox final : public QComboBox {
 public:
  DeviceBox(DropDownList& control, const SelectionState& selected, const Binder& binder,
            QWidget* parent);

  /// `changed` hears when the text becomes, or no longer is, one that names no device in force.
  void onTyping(std::function<void(bool isTyping)> changed) { typingChanged_ = std::move(changed); }

 protected:
  void focusInEvent(QFocusEvent* event) override;
  void focusOutEvent(QFocusEvent* event) override;
  void keyPressEvent(QKeyEvent* event) override;
  void wheelEvent(QWheelEvent* event) override;
  void changeEvent(QEvent* event) override;

 private:
  void buildSearch();
  void show();
  void showItems();
  void greyUnavailable();
  void setTyping(bool isTyping);
  void choose(int position);
  void takeTypedText();
  void showHint(const QString& text);
  [[nodiscard]] QString textInForce() const;
  [[nodiscard]] bool isAvailable(int position) const;
  [[nodiscard]] int bestMatch(const QString& typed) const;
  [[nodiscard]] int firstThat(const std::function<bool(const QString& name)>& fits) const;

  DropDownList& control_;
  const SelectionState& selected_;
  const Binder& binder_;
  std::function<void(bool)> typingChanged_;
  bool isTyping_ = false;
};

}  // namespace kestrel::window
