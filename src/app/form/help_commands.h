#pragma once

#include "platform/dialogs.h"
#include "platform/folders.h"
#include "platform/help_viewer.h"

namespace kestrel::form {

/// The entries of the Help menu, and the two placeholders that only show a message.
class HelpCommands {
 public:
  HelpCommands(HelpViewer& viewer, Dialogs& dialogs, const Folders& folders)
      : viewer_(viewer), dialogs_(dialogs), folders_(folders) {}

  void mnuHelpContents_Click() { show(HelpPage::Contents); }
  void mnuHelpSearchForHelpOn_Click() { show(HelpPage::Search); }
  void mnuHelpAbout_Click() { dialogs_.about(); }
  void mnuToolsOptions_Click();

 private:
  void show(HelpPage page);

  HelpViewer& viewer_;
  Dialogs& dialogs_;
  const Folders& folders_;
};

}  // namespace kestrel::form
