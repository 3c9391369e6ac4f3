#include "app/form/help_commands.h"

namespace kestrel::form {

void HelpCommands::mnuToolsOptions_Click() {
  dialogs_.messageBox({.text = "This menu option is not available."});
}

void HelpCommands::show(HelpPage page) {
  const std::filesystem::path file = folders_.data / "help" / "kestrel5.hlp";
  std::error_code ignored;
  if (!std::filesystem::exists(file, ignored)) {
    dialogs_.messageBox({.text = "Unable to display Help Contents. There is no Help associated "
                                 "with this project.",
                         .title = "Kestrel",
                         .icon = MessageIcon::Information});
    return;
  }
  viewer_.show(file, page);
}

}  // namespace kestrel::form
