#pragma once

#include "platform/atomic_file.h"
#include "support/form_rig.h"
#include "support/port_script.h"

namespace kestrel::test {

/// The form with no board: every read gives FFh, unless the port has a script. Not yet loaded.
struct ScriptForm {
  ScriptForm() { port.joinsSleeps = true; }

  PortScript port;
  FormRig rig{port, port};
  Controls& c = rig.controls;
  ProgrammerState& s = rig.state;

  ScriptForm& load() {
    rig.form.Form_Load();
    rig.clearLog();
    rig.sounds.played.clear();
    (void)port.taken();
    return *this;
  }

  /// The path of a file with the contents, in the working folder.
  std::string file(const std::string& name, const std::string& contents) {
    const std::filesystem::path path = rig.folder / name;
    writeFileAtomically(path, contents);
    return path.string();
  }

  /// Opens a file through a menu entry or a button.
  void open(const std::string& entry, const std::string& path) {
    rig.dialogs.files = {path};
    if (!rig.press(entry)) throw std::logic_error(entry + " is disabled");
  }
};

}  // namespace kestrel::test
