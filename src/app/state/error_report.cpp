#include "app/state/error_report.h"

namespace kestrel {

void ErrorReport::report(const RuntimeError& error) {
  const std::string text = "Run-time error " + std::to_string(error.number()) + ": " + error.what();
  reporting_.LogMessage(text);
  reporting_.PlaySoundEvent("ERROR");
  dialogs_.messageBox({.text = text, .title = "Kestrel", .icon = MessageIcon::Critical});
}

}  // namespace kestrel
