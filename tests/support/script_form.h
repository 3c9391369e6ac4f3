#pragma once

#include <unistd.h>

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

/// A folder in which nothing can be created as long as this lives, not even by root.
class ReadOnlyFolder {
 public:
  explicit ReadOnlyFolder(const std::filesystem::path& folder) : folder_(folder) {
    using std::filesystem::perms;
    std::filesystem::permissions(
        folder_, perms::owner_read | perms::owner_exec | perms::others_read | perms::others_exec);
    changed_ = ::geteuid() == 0 && ::seteuid(kNobody) == 0;
  }
  ~ReadOnlyFolder() {
    if (changed_ && ::seteuid(0) != 0) std::abort();
    std::filesystem::permissions(folder_, std::filesystem::perms::owner_all);
  }
  ReadOnlyFolder(const ReadOnlyFolder&) = delete;
  ReadOnlyFolder& operator=(const ReadOnlyFolder&) = delete;

 private:
  static constexpr uid_t kNobody = 65534;
  std::filesystem::path folder_;
  bool changed_ = false;
};

}  // namespace kestrel::test
