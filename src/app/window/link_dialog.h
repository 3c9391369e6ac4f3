#pragma once

#include <QDialog>
#include <string>
#include <vector>

#include "app/launch/program.h"
#include "link/serial_devices.h"
#include "platform/settings_store.h"

class QComboBox;

namespace kestrel::window {

/// Asks at which serial line the adapter is that stands in for a parallel port.
class LinkDialog final : public QDialog {
 public:
  /// `inForce` is a choice as --port has it, such as "378=link:/dev/ttyACM0", or empty.
  LinkDialog(const std::string& inForce, const std::vector<link::SerialDevice>& devices,
             QWidget* parent);

  /// After it was accepted: the same; empty for no adapter.
  [[nodiscard]] const std::string& choice() const { return choice_; }

 private:
  void build(const std::vector<link::SerialDevice>& devices);
  void show(const std::string& inForce);
  void use();

  QComboBox* line_ = nullptr;
  QComboBox* base_ = nullptr;
  std::string choice_;
};

/// The options with the adapter that was chosen in an earlier run, unless they name a port.
[[nodiscard]] launch::LaunchOptions withKeptLink(launch::LaunchOptions options,
                                                 const SettingsStore& settings);

/// Asks for an adapter and keeps the answer; false when it was cancelled.
[[nodiscard]] bool askForLink(launch::LaunchedProgram& program, SettingsStore& settings,
                              QWidget& owner);

}  // namespace kestrel::window
