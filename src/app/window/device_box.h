#pragma once

#include <QComboBox>

#include "app/state/value_controls.h"
#include "app/window/binder.h"

namespace kestrel::window {

/// The device list: all entries of the catalogue, searched as one types. Entries that are not
/// available are greyed; choosing one is the form's business.
class DeviceBox final : public QComboBox {
 public:
  DeviceBox(DropDownList& control, const Binder& binder, QWidget* parent);

 protected:
  bool eventFilter(QObject* receiver, QEvent* event) override;
  void keyPressEvent(QKeyEvent* event) override;
  void wheelEvent(QWheelEvent* event) override;
  void changeEvent(QEvent* event) override;

 private:
  void buildSearch();
  void show();
  void showItems();
  void greyUnavailable();
  void choose(int position);
  void takeTypedText();

  DropDownList& control_;
  const Binder& binder_;
};

}  // namespace kestrel::window
